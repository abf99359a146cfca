// Towards which end of its link a label is drawn: that of its location, for one in the centre the farther
// one.
//
// Needs:  label locations settled.
// Leaves: "to" and "from" labels are aligned so; a "center" label towards the end with more nodes in between,
//         and as it was when both have as many.
// Order:  behind the label locations.
// Fails:  at the first "center" label on its way from which some node has not exactly one neighbour; the
//         labels behind it stay as they are.
#include "core/check.h"
#include "core/view_model/graph.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/graph");

void Graph::setNodeAlignings() {
    setChildrenAndParents();
    for (const auto& node : m_nodes) {
        if (!node.second || node.second->m_type != "label") continue;
        const std::string& location = node.second->m_location;
        if (location == "to" || location == "from") node.second->m_aligning = location;
        if (location != "center") continue;
        TESSERA_CHECK(node.second->getChildren().size() == 1);
        TESSERA_CHECK(node.second->getParents().size() == 1);
        // A walk over more nodes than there are goes in a circle.
        std::size_t toSteps = 0;
        for (const Node* n = node.second.get();
             n->getChildren().empty() || n->getChildren()[0]->m_type != "node";
             n = n->getChildren()[0].get(), ++toSteps) {
            TESSERA_CHECK(n->getChildren().size() == 1);
            if (toSteps == m_nodeList.size())
                return check::failed(TESSERA_HERE, "n->getChildren().size() == 1", false);
        }
        std::size_t fromSteps = 0;
        for (const Node* n = node.second.get();
             n->getParents().empty() || n->getParents()[0]->m_type != "node";
             n = n->getParents()[0].get(), ++fromSteps) {
            TESSERA_CHECK(n->getParents().size() == 1);
            if (fromSteps == m_nodeList.size())
                return check::failed(TESSERA_HERE, "n->getParents().size() == 1", false);
        }
        if (fromSteps != toSteps) node.second->m_aligning = fromSteps < toSteps ? "to" : "from";
    }
}

}  // namespace tessera_1::view_model
