#include "cli/layout_inspector.h"

#include <fmt/format.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <utility>

#include "cli/interrupt.h"
#include "cli/message.h"

namespace tessera_cli {

using tessera_host::Error;
using tessera_host::ErrorKind;

LayoutInspector::LayoutInspector(const Options& options) : m_options(options) {}

tessera_host::Expected<void> LayoutInspector::prepare() const {
    if (m_options.dumpFolder.empty()) return {};
    std::error_code error;
    std::filesystem::create_directories(m_options.dumpFolder, error);
    if (error)
        return Error{ErrorKind::cannotOpen, m_options.dumpFolder + ": cannot be made: " + error.message()};
    const auto& stages = tessera_1::layoutStages();
    for (std::size_t i = 0; i < stages.size(); ++i) {
        const std::string path = dumpPath(i + 1, stages[i]);
        // Compared as paths, since the dump may not exist yet, and as files, which finds hard links.
        for (const std::string& used : {m_options.document, m_options.database, m_options.output}) {
            if (used.empty() || used == "-") continue;
            std::error_code ignored;
            const bool isSame = std::filesystem::weakly_canonical(path, ignored) ==
                                    std::filesystem::weakly_canonical(used, ignored) ||
                                std::filesystem::equivalent(path, used, ignored);
            if (isSame) return Error{ErrorKind::usage, used + ": would be overwritten by --dump-passes"};
        }
    }
    return {};
}

// Files sort in the order of the stages.
std::string LayoutInspector::dumpPath(std::size_t number, const std::string& stage) const {
    return std::filesystem::path(m_options.dumpFolder) / fmt::format("{:02}-{}.txt", number, stage);
}

// Times are recorded first: their number is that of the stage in the dump's name.
bool LayoutInspector::stageEnded(const tessera_1::LayoutStage& stage) {
    m_times.emplace_back(stage.name, stage.took);
    m_isTruncated = stage.isTruncated;
    if (!m_options.dumpFolder.empty()) writeDump(stage.name, stage.graph);
    if (m_options.verify) {
        for (const std::string& finding : tessera_1::verifyGraph(stage.graph, stage.name)) {
            printMessage(fmt::format("{}: after {}: {}", m_options.document, stage.name, finding));
            m_isSound = false;
        }
    }
    return stage.name != m_options.stopAfter && !isInterrupted();
}

void LayoutInspector::writeDump(const std::string& stage, const tessera_1::view_model::Graph& graph) {
    // After one failure no further dumps are tried: the reason would be the same.
    if (!m_isDumped) return;
    const std::string path = dumpPath(m_times.size(), stage);
    std::error_code ignored;
    // A symbolic link is replaced, not followed: it may lead out of the folder.
    if (std::filesystem::is_symlink(path, ignored)) std::filesystem::remove(path, ignored);
    std::ofstream file(path, std::ios::binary);
    tessera_1::writeGraphText(graph, file);
    file.close();
    m_isDumped = !file.fail();
    if (!m_isDumped) printMessage(path + ": cannot be written");
}

void LayoutInspector::reportTimes() const {
    if (!m_options.timePasses) return;
    using Milliseconds = std::chrono::duration<double, std::milli>;
    const auto line = [](const std::string& name, Milliseconds time) {
        printMessage(fmt::format("{:20}{:12.3f} ms", name, time.count()));
    };
    Milliseconds total{};
    for (const auto& [stage, time] : m_times) {
        line(stage, time);
        total += time;
    }
    line("total", total);
}

void LayoutInspector::reportTruncation() {
    // Reported once in a session, whose later diagrams stop at the same limits.
    if (!m_isTruncated || std::exchange(m_isTruncationReported, true)) return;
    printMessage(fmt::format(
        "{}: the diagram is incomplete: the layout stopped at a limit; the log says at which, and "
        "--max-elements or --max-id-bytes raises it",
        m_options.document));
}

int LayoutInspector::exitStatus() const {
    if (!m_isDumped) return exitCannotOpen;
    return m_isSound && !m_isTruncated ? exitDone : exitFailed;
}

}  // namespace tessera_cli
