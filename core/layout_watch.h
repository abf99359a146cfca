// Observing "create" while it runs: for tools, and for finding errors of the layout.
#pragma once

#include <chrono>
#include <iosfwd>
#include <string>
#include <vector>

#include "core/export.h"

namespace tessera_1 {

namespace view_model {
class Graph;
}

// The stages of "create" in their order: "viewpoint" (the document is read into the graph), "data" (values
// are fetched), and each pass of the layout by the name of its file.
[[nodiscard]] TESSERA_EXPORT const std::vector<std::string>& layoutStages();

// A stage of "create" that has ended.
struct LayoutStage {
    const std::string& name;         // one of layoutStages()
    std::chrono::nanoseconds took;   // since the stage before ended
    const view_model::Graph& graph;  // valid for the duration of the call
    bool isTruncated;                // a limit has stopped this stage or an earlier one
};

// Given with a handler (LayoutOptions); follows each "create" that builds a diagram.
class ILayoutWatcher {
  public:
    virtual ~ILayoutWatcher() = default;

    // Called after each stage, on the thread of the request, while the handler holds its lock: send no
    // request to that handler from here. False stops the layout after this stage; the diagram is then
    // written as it is.
    virtual bool stageEnded(const LayoutStage& stage) = 0;

  protected:
    ILayoutWatcher() = default;
    ILayoutWatcher(const ILayoutWatcher&) = default;
    ILayoutWatcher& operator=(const ILayoutWatcher&) = default;
};

// Writes the graph as text for people: a line a node, a line a link, a line a layer. Texts of the
// document are quoted, with \n and the like for what would break a line.
TESSERA_EXPORT void writeGraphText(const view_model::Graph& graph, std::ostream& out);

// What is wrong with a graph after that stage, by the rules that hold for every document; at most a hundred
// findings. Linear time.
[[nodiscard]] TESSERA_EXPORT std::vector<std::string> verifyGraph(const view_model::Graph& graph,
                                                                  const std::string& stage);

}  // namespace tessera_1
