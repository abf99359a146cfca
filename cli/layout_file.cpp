#include "cli/layout_file.h"

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <unordered_set>

#include "cli/interrupt.h"
#include "cli/message.h"
#include "cli/sink_output.h"
#include "host/text/file_text.h"

namespace tessera_cli {

using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Expected;

// A layout of 100,000 nodes has 40 MB, and takes ten times that to read.
constexpr std::size_t maxBytes = std::size_t{64} << 20U;

Expected<std::optional<tessera_draw::SavedLayout>> readKeptLayout(const Options& options) {
    if (options.keep.empty()) return std::optional<tessera_draw::SavedLayout>();
    const auto text = tessera_host::readFileText(options.keep, interruptToken());
    if (!text && text.error().isCancelled()) return text.error();
    if (!text) return Error{text.error().kind, options.keep + ": " + text.error().text};
    const auto refused = [&](const std::string& reason) {
        return Error{
            ErrorKind::cannotOpen,
            fmt::format("{}: is not a layout that --save-layout has written: {}; without --keep, the "
                        "picture is laid out anew",
                        options.keep, reason)};
    };
    if (text->size() > maxBytes) return refused(fmt::format("it has more than {} MiB", maxBytes >> 20U));
    tessera_draw::SavedLayout layout;
    std::string reason;
    if (!tessera_draw::readLayout(*text, layout, reason)) return refused(reason);
    if (const std::size_t removed = tessera_draw::removeFarPlaces(layout); removed > 0)
        printMessage(
            fmt::format("{}: ignored {} place{} of it, too far away for a drawing of as many nodes and links",
                        options.keep, removed, removed == 1 ? "" : "s"));
    return std::optional(std::move(layout));
}

void reportForeignLayout(const Options& options, const tessera_draw::SavedLayout& layout,
                         const tessera_draw::Scene& scene) {
    std::unordered_set<std::string_view> ids;
    for (const tessera_draw::Element& element : scene.elements)
        ids.insert(element.id);
    bool hasBoxes = false;
    for (const tessera_draw::SavedGroup& group : layout.groups)
        for (const tessera_draw::SavedLayer& layer : group.layers)
            for (const tessera_draw::SavedPoint& point : layer.points) {
                if (point.isLink) continue;
                if (ids.contains(point.id.id)) return;
                hasBoxes = true;
            }
    if (hasBoxes)
        printMessage(
            fmt::format("{}: is the layout of another diagram: none of its nodes is in this one, which "
                        "was laid out anew",
                        options.keep));
}

void saveLayout(const tessera_draw::Layout& layout, OutputFile& file) {
    SinkOutput output(file.sink());
    (void)tessera_draw::writeLayout(layout, output);  // false: the file takes no more
}

}  // namespace tessera_cli
