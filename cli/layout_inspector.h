// What `render` shows of the layout while it runs.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cli/options.h"
#include "core/layout_watch.h"

namespace tessera_cli {

// Follows "create" of the pane that it is given to, as the options say: writes the graph into one file for each
// stage, measures, verifies, stops. After Ctrl-C it leaves out the remaining stages.
class LayoutInspector final : public tessera_1::ILayoutWatcher {
  public:
    explicit LayoutInspector(const Options& options);
    LayoutInspector(const LayoutInspector&) = delete;
    LayoutInspector& operator=(const LayoutInspector&) = delete;
    ~LayoutInspector() override = default;

    // Makes the folder of the dumps. exitDone, or what the program is to end with, the message printed: the
    // folder cannot be made, or a dump would be written over a file that is used otherwise.
    [[nodiscard]] int prepare() const;

    bool stageEnded(const tessera_1::LayoutStage& stage) override;

    // Prints what was measured, and whether the diagram is whole. exitDone, or what the program is to end
    // with because of what was found.
    [[nodiscard]] int report() const;

  private:
    [[nodiscard]] std::string dumpPath(std::size_t number, const std::string& stage) const;
    void writeDump(const std::string& stage, const tessera_1::view_model::Graph& graph);

    const Options& m_options;
    std::vector<std::pair<std::string, std::chrono::nanoseconds>> m_times;
    bool m_isSound = true;
    bool m_isDumped = true;
    bool m_isTruncated = false;
};

}  // namespace tessera_cli
