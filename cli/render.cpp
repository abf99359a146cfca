#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "cli/commands.h"
#include "cli/diagram.h"
#include "cli/fail_on.h"
#include "cli/interrupt.h"
#include "cli/layout_file.h"
#include "cli/layout_inspector.h"
#include "cli/message.h"
#include "cli/output_file.h"
#include "cli/output_format.h"
#include "cli/program_end.h"
#include "cli/reserved_space.h"
#include "host/meaning/described_values.h"

namespace tessera_cli {
namespace {

using basekit2::variant_bag_t;
using tessera_host::CellRecord;
using tessera_host::Expected;

// The record that is needed to know what values mean; null where it is not needed.
std::shared_ptr<CellRecord> recordFor(const Options& options, const tessera_host::Viewpoint& viewpoint) {
    const bool isNeeded = !options.failOn.empty() || !options.against.empty() ||
                          (options.format->isPicture() && !viewpoint.meaning().isEmpty());
    return isNeeded ? std::make_shared<CellRecord>() : nullptr;
}

// Takes the tags of the record off the diagram; for pictures, describes what its values mean.
tessera_host::LevelSummary describe(const Options& options, const tessera_host::Viewpoint& viewpoint,
                                    const CellRecord* record, const OtherDiagram* other, MadeDiagram& made) {
    using tessera_host::Comparison;
    using tessera_host::Description;
    if (record == nullptr) return {};
    const bool isPicture = options.format->isPicture();
    std::optional<Comparison> comparison;
    if (other != nullptr && isPicture) comparison.emplace(*record, other->diagram(), other->name());
    if (other != nullptr && !isPicture)
        made.changes = changesTable(tessera_host::changesOf({made.diagram, *record}, other->diagram()));
    const auto described = [&](const variant_bag_t& bag, Description description) {
        return describeValues(bag, *record, viewpoint.meaning(), *viewpoint.declarations(), description,
                              comparison ? &*comparison : nullptr);
    };
    if (made.created) made.created = described(*made.created, Description::none).bag;
    auto diagram = described(made.diagram, isPicture ? Description::full : Description::none);
    made.diagram = std::move(diagram.bag);
    return std::move(diagram.summary);
}

Expected<void> writeDiagram(const Options& options, const MadeDiagram& made, OutputFile& file) {
    if (auto written = options.format->write(options, made, file); !written) return written;
    if (isInterrupted()) return tessera_host::cancelledError();
    if (auto committed = file.commit(); !committed || made.layoutFile == nullptr) return committed;
    return made.layoutFile->commit();
}

Expected<void> openLayout(const Options& options, OutputFile& file) {
    return options.saveLayout.empty() ? Expected<void>() : file.open(options.saveLayout);
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

// The layout that is kept is none: the new one may replace it.
bool isInput(const std::string& path, const Options& options) {
    return isSameFile(path, options.document) || isSameFile(path, options.database) ||
           isSameFile(path, options.against);
}

}  // namespace

int render(const Options& options) {
    for (const std::string* output : {&options.output, &options.saveLayout})
        if (isInput(*output, options) || (output == &options.output && isSameFile(*output, options.keep))) {
            printMessage(*output + ": is an input and would be overwritten");
            return exitUsage;
        }
    ConsoleMessenger messenger(options.document);
    auto input = openInput(options, messenger);
    if (!input) return reportError(input.error());
    const tessera_host::Viewpoint& viewpoint = *input->viewpoint;
    if (const auto known = checkFailOn(options, viewpoint); !known) return reportError(known.error());
    tessera_draw::Reservation reservation;
    if (options.format->isPicture()) reservation = measureReservedSpace(*input, !options.against.empty());
    std::unique_ptr<OtherDiagram> other;
    if (!options.against.empty()) {
        auto opened = OtherDiagram::open(options, *input);
        if (!opened) return reportError(opened.error());
        other = *std::move(opened);
    }
    LayoutInspector inspector(options);
    StopAfterValues stopper;
    const bool isTable = options.format->kind == OutputFormat::Kind::changes;
    tessera_1::ILayoutWatcher* const watcher =
        isTable ? static_cast<tessera_1::ILayoutWatcher*>(&stopper) : &inspector;
    const std::shared_ptr<CellRecord> record = recordFor(options, viewpoint);
    auto pane = makePane(*input, options, watcher, record);
    auto kept = readKeptLayout(options);
    if (!kept) return reportError(kept.error());
    OutputFile file;  // opened before the work: a place that cannot be written is known at once
    if (const auto opened = file.open(options.output); !opened) return reportError(opened.error());
    OutputFile layoutFile;
    if (const auto opened = openLayout(options, layoutFile); !opened) return reportError(opened.error());
    if (const auto prepared = inspector.prepare(); !prepared) return reportError(prepared.error());
    auto made = makeDiagram(options, *pane, messenger);
    if (!made) return reportError(made.error());
    if (other) {
        if (const auto fetched = other->make(messenger); !fetched) return reportError(fetched.error());
    }
    made->reservation = std::move(reservation);
    made->kept = *std::move(kept);
    if (!options.saveLayout.empty()) made->layoutFile = &layoutFile;
    const tessera_host::LevelSummary summary = describe(options, viewpoint, record.get(), other.get(), *made);
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
