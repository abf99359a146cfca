// What `render` shows of the layout while it runs.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cli/options.h"
#include "core/layout_watch.h"

namespace tessera_cli {

// Follows "create" of the pane that it is given to, as the options say: writes the graph into one file for
// each stage, measures, verifies, stops. After Ctrl-C it leaves out the remaining stages. Used by the thread
// of the request.
class LayoutInspector final : public tessera_1::ILayoutWatcher {
  public:
    explicit LayoutInspector(const Options& options);
    LayoutInspector(const LayoutInspector&) = delete;
    LayoutInspector& operator=(const LayoutInspector&) = delete;
    ~LayoutInspector() override = default;

    // Makes the folder of the dumps. The error has the kind cannotOpen when that fails, and usage when a dump
    // would overwrite a file that is used otherwise.
    [[nodiscard]] tessera_host::Expected<void> prepare() const;

    bool stageEnded(const tessera_1::LayoutStage& stage) override;

    // Prints how long each stage took, if the options say so.
    void reportTimes() const;
    // Prints that the diagram is incomplete when a limit has stopped the layout. Once: a second call prints
    // nothing.
    void reportTruncation();
    // The exit status that follows from what was found.
    [[nodiscard]] int exitStatus() const;

  private:
    [[nodiscard]] std::string dumpPath(std::size_t number, const std::string& stage) const;
    void writeDump(const std::string& stage, const tessera_1::view_model::Graph& graph);

    const Options& m_options;
    std::vector<std::pair<std::string, std::chrono::nanoseconds>> m_times;
    bool m_isSound = true;
    bool m_isDumped = true;
    bool m_isTruncated = false;
    bool m_isTruncationReported = false;
};

}  // namespace tessera_cli
