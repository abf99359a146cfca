#include "cli/layout_inspector.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>

#include "cli/interrupt.h"
#include "cli/message.h"

namespace tessera_cli {

LayoutInspector::LayoutInspector(const Options& options) : m_options(options) {}

int LayoutInspector::prepare() const {
    if (m_options.dumpFolder.empty()) return exitDone;
    std::error_code error;
    std::filesystem::create_directories(m_options.dumpFolder, error);
    if (error) {
        printMessage(m_options.dumpFolder + ": cannot be made: " + error.message());
        return exitCannotOpen;
    }
    const auto& stages = tessera_1::layoutStages();
    for (std::size_t i = 0; i < stages.size(); ++i) {
        const std::string path = dumpPath(i + 1, stages[i]);
        for (const std::string& used : {m_options.document, m_options.database, m_options.output}) {
            if (used.empty() || used == "-") continue;
            std::error_code ignored;
            const bool isSame = std::filesystem::weakly_canonical(path, ignored) ==
                                    std::filesystem::weakly_canonical(used, ignored) ||
                                std::filesystem::equivalent(path, used, ignored);
            if (!isSame) continue;
            printMessage(used + ": would be written over by --dump-passes");
            return exitUsage;
        }
    }
    return exitDone;
}

// Files sort in the order of the stages.
std::string LayoutInspector::dumpPath(std::size_t number, const std::string& stage) const {
    return std::filesystem::path(m_options.dumpFolder) / fmt::format("{:02}-{}.txt", number, stage);
}

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
    if (!m_isDumped) return;
    const std::string path = dumpPath(m_times.size(), stage);
    std::error_code ignored;
    if (std::filesystem::is_symlink(path, ignored)) std::filesystem::remove(path, ignored);
    std::ofstream file(path, std::ios::binary);
    tessera_1::writeGraphText(graph, file);
    file.close();
    m_isDumped = !file.fail();
    if (!m_isDumped) printMessage(path + ": cannot be written");
}

int LayoutInspector::report() const {
    if (m_options.timePasses) {
        std::chrono::duration<double, std::milli> total{};
        const auto line = [](const std::string& name, std::chrono::duration<double, std::milli> time) {
            printMessage(fmt::format("{:20}{:12.3f} ms", name, time.count()));
        };
        for (const auto& [stage, time] : m_times) {
            line(stage, time);
            total += time;
        }
        line("together", total);
    }
    if (m_isTruncated)
        printMessage(
            m_options.document +
            ": the diagram was written, but it is not whole: it would be larger than --max-elements and "
            "--max-id-bytes allow");
    if (!m_isDumped) return exitCannotOpen;
    return m_isSound && !m_isTruncated ? exitDone : exitFailed;
}

}  // namespace tessera_cli
