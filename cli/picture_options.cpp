#include "cli/picture_options.h"

#include <string>
#include <utility>

#include "cli/output_format.h"

namespace tessera_cli {
namespace {

using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Expected;

Error usageError(std::string text) {
    return {ErrorKind::usage, std::move(text)};
}

}  // namespace

Expected<void> checkPictureOptions(const Options& options, bool hasScale, bool hasFit) {
    const OutputFormat& format = *options.format;
    const std::string pictures = " is for pictures: " + formatNames(true);
    if (!options.theme.empty() && !format.isPicture()) return usageError("--theme" + pictures);
    if (!options.direction.empty() && !format.isPicture()) return usageError("--direction" + pictures);
    if (!options.layers.empty() && !format.isPicture()) return usageError("--layers" + pictures);
    if (hasFit && !format.isPicture()) return usageError("--fit" + pictures);
    if (!options.fold.empty() && !format.isPicture()) return usageError("--fold" + pictures);
    const bool hasDirection = !options.direction.empty() && options.direction != "auto";
    if (hasFit && hasDirection && options.fold == "off")
        return usageError("--fit is for --direction auto and --fold auto");
    if (!options.keep.empty() && !format.isPicture()) return usageError("--keep" + pictures);
    if (!options.saveLayout.empty() && !format.isPicture()) return usageError("--save-layout" + pictures);
    if (!options.keep.empty() && (hasFit || !options.direction.empty() || !options.fold.empty()))
        return usageError(
            "--keep keeps the direction and the rows of its layout: --direction, --fit and --fold do not go "
            "with it");
    if (!options.saveLayout.empty() &&
        (options.saveLayout == options.output ||
         (isStandardOutput(options.saveLayout) && isStandardOutput(options.output))))
        return usageError("--save-layout and the picture need different files");
    if (!options.paper.empty() && format.name != "pdf") return usageError("--paper is for pdf");
    if (hasScale && format.kind != OutputFormat::Kind::pixels) return usageError("--scale is for png");
    return {};
}

Expected<void> checkAgainst(const Options& options) {
    const bool isTable = options.format->kind == OutputFormat::Kind::changes;
    if (isTable && options.against.empty()) return usageError("--format changes needs --against RESULT");
    if (!options.against.empty() && !isTable && !options.format->isPicture())
        return usageError("--against is for " + formatNames(true) + ", and for changes");
    return {};
}

}  // namespace tessera_cli
