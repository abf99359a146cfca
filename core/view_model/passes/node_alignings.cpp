// Towards which end of its link a label is drawn: the end of its location; for one in the centre, the end that
// is farther away.
//
// Needs:  label locations settled.
// Leaves: "to" and "from" labels are aligned so; a "center" label towards the end with more nodes in between,
//         and as it was when both have as many.
// Order:  after the label locations.
// Fails:  at the first "center" label, by id, with a node on its path that has not exactly one neighbour;
//         the labels after it stay as they are.
#include <optional>
#include <utility>
#include <vector>

#include "core/check.h"
#include "core/view_model/graph.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/graph");

namespace {

using Neighbours = std::vector<std::shared_ptr<Node>> Node::*;
using Entry = IdMap<Node>::value_type;

// How many nodes lie between the label and the first node of type "node". Nothing when a node on the path has
// not exactly one neighbour, or when there are more than `maxSteps`: the path is a cycle then.
std::optional<std::size_t> stepsAlong(Neighbours neighbours, const Node& label, std::size_t maxSteps) {
    if ((label.*neighbours).size() != 1) return std::nullopt;
    std::size_t steps = 0;
    for (const Node* n = &label; (n->*neighbours).empty() || (n->*neighbours)[0]->m_type != "node";
         n = (n->*neighbours)[0].get(), ++steps)
        if ((n->*neighbours).size() != 1 || steps == maxSteps) return std::nullopt;
    return steps;
}

// Reports the first check that fails for a label in the centre.
void reportFailure(const Entry& node, std::size_t maxSteps, const char* signature) {
    TESSERA_CHECK_IN(signature, node.second->getChildren().size() == 1);
    TESSERA_CHECK_IN(signature, node.second->getParents().size() == 1);
    const bool isOfChildren = !stepsAlong(&Node::m_children, *node.second, maxSteps);
    check::failed(TESSERA_HERE_IN(signature),
                  isOfChildren ? "n->getChildren().size() == 1" : "n->getParents().size() == 1", false);
}

}  // namespace

void Graph::setNodeAlignings() {
    setChildrenAndParents();
    // In any order, which spares sorting the ids: what comes after the first failure is left out at the end.
    std::vector<std::pair<const Entry*, const char*>> alignings;
    const Entry* failed = nullptr;
    for (const Entry& node : m_nodes.unordered()) {
        if (!node.second || node.second->m_type != "label") continue;
        const std::string& location = node.second->m_location;
        if (location == "to" || location == "from")
            alignings.emplace_back(&node, location == "to" ? "to" : "from");
        if (location != "center") continue;
        const auto toSteps = stepsAlong(&Node::m_children, *node.second, m_nodeList.size());
        const auto fromSteps = stepsAlong(&Node::m_parents, *node.second, m_nodeList.size());
        if (!toSteps || !fromSteps) {
            if (!failed || node.first < failed->first) failed = &node;
        } else if (*fromSteps != *toSteps) {
            alignings.emplace_back(&node, *fromSteps < *toSteps ? "to" : "from");
        }
    }
    for (const auto& [node, aligning] : alignings)
        if (!failed || node->first < failed->first) node->second->m_aligning = aligning;
    if (failed) reportFailure(*failed, m_nodeList.size(), TESSERA_SIGNATURE);
}

}  // namespace tessera_1::view_model
