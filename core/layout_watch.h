// A look inside "create" while it runs, for tools and for those who hunt an error.
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

// Is told of every stage that ends, on the thread that runs "create".
class ILayoutWatcher {
  public:
    virtual ~ILayoutWatcher() = default;

    // `took` is the time since the stage before. `graph` is there for the duration of the call. False leaves
    // out the stages behind this one; the diagram is then written as it is.
    virtual bool stageEnded(const std::string& stage, std::chrono::nanoseconds took,
                            const view_model::Graph& graph) = 0;

  protected:
    ILayoutWatcher() = default;
    ILayoutWatcher(const ILayoutWatcher&) = default;
    ILayoutWatcher& operator=(const ILayoutWatcher&) = default;
};

// Watches every "create" of the process that starts from now on; null ends that. The watcher is not owned and
// must outlive each "create" that has started. Any thread. Without a watcher nothing is measured.
TESSERA_EXPORT void setLayoutWatcher(ILayoutWatcher* watcher);
[[nodiscard]] TESSERA_EXPORT ILayoutWatcher* layoutWatcher();

// Whether a limit has kept the layout of this graph from being whole.
[[nodiscard]] TESSERA_EXPORT bool isCutShort(const view_model::Graph& graph);

// Writes the graph as text for people: a line a node, a line a link, a line a layer. Texts of the
// document are quoted, with \n and the like for what would break a line.
TESSERA_EXPORT void writeGraphText(const view_model::Graph& graph, std::ostream& out);

// What is wrong with a graph behind that stage, by the rules that hold for every document; at most a hundred
// findings. Linear time.
[[nodiscard]] TESSERA_EXPORT std::vector<std::string> verifyGraph(const view_model::Graph& graph,
                                                                  const std::string& stage);

}  // namespace tessera_1
