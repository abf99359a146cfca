#include "core/layout_watch.h"

#include <atomic>

#include "core/view_model/graph.h"

namespace tessera_1 {
namespace {

std::atomic<ILayoutWatcher*> theWatcher{nullptr};

}  // namespace

const std::vector<std::string>& layoutStages() {
    static const std::vector<std::string> stages{
        "viewpoint",     "data",       "info_nodes",      "group_links",    "hierarchical_levels",
        "label_dummies", "interfaces", "label_locations", "node_alignings", "group_levels"};
    return stages;
}

void setLayoutWatcher(ILayoutWatcher* watcher) {
    theWatcher = watcher;
}

ILayoutWatcher* layoutWatcher() {
    return theWatcher;
}

bool isCutShort(const view_model::Graph& graph) {
    return graph.m_isCutShort;
}

}  // namespace tessera_1
