#include <fmt/format.h>

#include <filesystem>

#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/layout_inspector.h"
#include "cli/message.h"
#include "cli/output_file.h"
#include "cli/output_format.h"
#include "cli/program_end.h"
#include "cli/reserved_space.h"

namespace tessera_cli {
namespace {

using basekit2::error_code_t;
using basekit2::variant_bag_t;

variant_bag_t modeRequest(const std::string& mode) {
    variant_bag_t in;
    in.add_variant_bag("mode").put("", mode);
    return in;
}

// Asks for the diagram in the wanted mode. False, with the message printed, when there is none.
bool makeDiagram(const Options& options, tessera_host::Pane& pane, relay2::IMessenger& messages,
                 variant_bag_t& diagram) {
    const tessera_host::RequestOptions request{interruptToken(), &messages};
    error_code_t code = pane.request("create", {}, diagram, request);
    if (code.is_success() && options.mode) {
        diagram = {};
        code = pane.request("changeDisplayMode", modeRequest(*options.mode), diagram, request);
    }
    if (!code.is_success() && !isInterrupted())
        printMessage(
            fmt::format("{}: no diagram: {}", options.document,
                        code.message().empty() ? "what is wrong was reported above" : code.message()));
    return code.is_success();
}

bool writeDiagram(const Options& options, const variant_bag_t& diagram,
                  const tessera_draw::Reservation& reservation, OutputFile& file) {
    if (!options.format->write(options, diagram, reservation, file) && file.sink().good()) return false;
    if (isInterrupted()) return false;
    const auto committed = file.commit();
    if (!committed) (void)reportError(committed.error());
    return committed.hasValue();
}

// The diagram's bag has all that is drawn. To take the pane apart costs a tenth of the whole run, so it is done
// only where drawing needs the memory.
bool isLarge(const tessera_host::Viewpoint& viewpoint) {
    constexpr std::size_t largeFrom = 100'000;
    const auto& structure = viewpoint.structure();
    return structure.nodes().size() + structure.links().size() >= largeFrom;
}

// Whether both paths lead to one existing file.
bool isSameFile(const std::string& a, const std::string& b) {
    std::error_code ignored;
    return std::filesystem::equivalent(a, b, ignored) && std::filesystem::is_regular_file(a, ignored);
}

}  // namespace

int render(const Options& options) {
    if (isSameFile(options.output, options.document) || isSameFile(options.output, options.database)) {
        printMessage(options.output + ": is what is to be read; it will not be written over");
        return exitUsage;
    }
    ConsoleMessenger messenger(options.document);
    auto input = openInput(options, messenger);
    if (!input) return reportError(input.error());
    tessera_draw::Reservation reservation;
    if (options.format->isPicture()) reservation = measureReservedSpace(input->viewpoint);
    LayoutInspector inspector(options);
    auto pane = makePane(*input, options, &inspector);
    OutputFile file;  // opened before the work: a place that cannot be written is known at once
    if (const auto opened = file.open(options.output); !opened) return reportError(opened.error());
    if (const int problem = inspector.prepare(); problem != exitDone) return orInterrupted(problem);
    variant_bag_t diagram;
    if (!makeDiagram(options, *pane, messenger, diagram)) return orInterrupted(exitFailed);
    if (options.format->isPicture() && isLarge(*input->viewpoint)) pane.reset();
    if (!writeDiagram(options, diagram, reservation, file)) return orInterrupted(exitCannotOpen);
    const int inspected = inspector.report();
    if (messenger.errorCount() == 0) return endProgram(inspected);
    printMessage(fmt::format("{}: the diagram was written in spite of the {} above", options.document,
                             messenger.errorCount() == 1 ? "error" : "errors"));
    return endProgram(exitFailed);
}

}  // namespace tessera_cli
