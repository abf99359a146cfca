#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <utility>

#include "cli/commands.h"
#include "cli/fail_on.h"
#include "cli/interrupt.h"
#include "cli/layout_inspector.h"
#include "cli/message.h"
#include "cli/output_file.h"
#include "cli/output_format.h"
#include "cli/program_end.h"
#include "cli/reserved_space.h"
#include "host/meaning/described_values.h"

namespace tessera_cli {
namespace {

using basekit2::error_code_t;
using basekit2::variant_bag_t;
using tessera_host::CellRecord;
using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Expected;

variant_bag_t modeRequest(const std::string& mode) {
    variant_bag_t in;
    in.add_variant_bag("mode").put("", mode);
    return in;
}

// The record that is needed to know what values mean; null where it is not needed.
std::shared_ptr<CellRecord> recordFor(const Options& options, const tessera_host::Viewpoint& viewpoint) {
    const bool isNeeded =
        !options.failOn.empty() || (options.format->isPicture() && !viewpoint.meaning().isEmpty());
    return isNeeded ? std::make_shared<CellRecord>() : nullptr;
}

// Takes the tags of the record off the diagram; for pictures, describes what its values mean.
tessera_host::LevelSummary describe(const Options& options, const tessera_host::Viewpoint& viewpoint,
                                    const CellRecord* record, MadeDiagram& made) {
    using tessera_host::Description;
    if (record == nullptr) return {};
    const auto described = [&](const variant_bag_t& bag, Description description) {
        return describeValues(bag, *record, viewpoint.meaning(), *viewpoint.declarations(), description);
    };
    if (made.created) made.created = described(*made.created, Description::none).bag;
    auto diagram =
        described(made.diagram, options.format->isPicture() ? Description::full : Description::none);
    made.diagram = std::move(diagram.bag);
    return std::move(diagram.summary);
}

// The diagram in the wanted mode, without reserved space.
Expected<MadeDiagram> makeDiagram(const Options& options, tessera_host::Pane& pane,
                                  relay2::IMessenger& messages) {
    const tessera_host::RequestOptions request{interruptToken(), &messages};
    MadeDiagram made;
    error_code_t code = pane.request("create", {}, made.diagram, request);
    if (code.is_success() && options.mode) {
        made.created = std::exchange(made.diagram, {});
        code = pane.request("changeDisplayMode", modeRequest(*options.mode), made.diagram, request);
    }
    if (code.is_success()) return made;
    const std::string reason = code.message().empty() ? "the reason was reported above" : code.message();
    return Error{ErrorKind::failed, fmt::format("{}: no diagram: {}", options.document, reason)};
}

Expected<void> writeDiagram(const Options& options, const MadeDiagram& made, OutputFile& file) {
    if (auto written = options.format->write(options, made, file); !written) return written;
    if (isInterrupted()) return tessera_host::cancelledError();
    return file.commit();
}

// Destroying the pane takes a tenth of the whole run, so it is done only where drawing needs the memory. The
// diagram's bag has all that is drawn.
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
        printMessage(options.output + ": is an input and would be overwritten");
        return exitUsage;
    }
    ConsoleMessenger messenger(options.document);
    auto input = openInput(options, messenger);
    if (!input) return reportError(input.error());
    const tessera_host::Viewpoint& viewpoint = *input->viewpoint;
    if (const auto known = checkFailOn(options, viewpoint); !known) return reportError(known.error());
    tessera_draw::Reservation reservation;
    if (options.format->isPicture()) reservation = measureReservedSpace(*input);
    LayoutInspector inspector(options);
    const std::shared_ptr<CellRecord> record = recordFor(options, viewpoint);
    auto pane = makePane(*input, options, &inspector, record);
    OutputFile file;  // opened before the work: a place that cannot be written is known at once
    if (const auto opened = file.open(options.output); !opened) return reportError(opened.error());
    if (const auto prepared = inspector.prepare(); !prepared) return reportError(prepared.error());
    auto made = makeDiagram(options, *pane, messenger);
    if (!made) return reportError(made.error());
    made->reservation = std::move(reservation);
    const tessera_host::LevelSummary summary = describe(options, viewpoint, record.get(), *made);
    if (options.format->isPicture() && isLarge(viewpoint)) pane.reset();
    if (const auto written = writeDiagram(options, *made, file); !written)
        return reportError(written.error());
    inspector.reportTimes();
    inspector.reportTruncation();
    const bool failed = failsOn(options, viewpoint, summary);
    if (messenger.errorCount() > 0) {
        printMessage(fmt::format("{}: the diagram was written, but it is incomplete because of the {} above",
                                 options.document, messenger.errorCount() == 1 ? "error" : "errors"));
        return endProgram(exitFailed);
    }
    return endProgram(failed ? exitFailed : inspector.exitStatus());
}

}  // namespace tessera_cli
