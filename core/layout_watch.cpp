#include "core/layout_watch.h"

namespace tessera_1 {

const std::vector<std::string>& layoutStages() {
    static const std::vector<std::string> stages{
        "viewpoint",     "data",       "info_nodes",      "group_links",    "hierarchical_levels",
        "label_dummies", "interfaces", "label_locations", "node_alignings", "group_levels"};
    return stages;
}

}  // namespace tessera_1
