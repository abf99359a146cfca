// Values on links and of groups become nodes of their own, which the layers then give a place.
//
// Needs:  the graph as it was read, its values fetched.
// Leaves: a link with values runs through a "label" node for each end and the centre that shows something in
//         the display mode, and through a "dummy" node that keeps a single end label away from the other
//         end. A group with values has a member "groupInfo" that holds them. What became a node is gone
//         from its link or group.
// Order:  first of the passes, links before groups.
// Fails:  never. A link with a missing end takes no part.
#include <utility>

#include "core/view_model/graph.h"
#include "core/view_model/passes/nesting.h"

namespace tessera_1::view_model {

using basekit2::error_code_t;

namespace {

// The arrow head belongs to the half that touches the end where the head was.
void splitDirection(Link& oldHalf, Link& newHalf) {
    if (oldHalf.m_direction == "forward") {
        newHalf.m_direction = "forward";
        oldHalf.m_direction = "none";
    } else if (oldHalf.m_direction == "both") {
        newHalf.m_direction = "forward";
        oldHalf.m_direction = "back";
    }
}

// Puts a label for one place of the link onto it, which takes `transfers` from the link. Null when they show
// nothing.
std::shared_ptr<Node> insertLabel(Graph& graph, const std::shared_ptr<Link>& link,
                                  DataTransferTable& transfers, const std::shared_ptr<Node>& group,
                                  const char* location) {
    if (!showsValues(transfers, graph.m_displayMode)) return nullptr;
    std::shared_ptr<Node> label = graph.insertNode(link, std::exchange(transfers, {}), "label").first;
    (void)label->addToGroup(group);
    label->setLocation(location);
    return label;
}

void insertFiller(Graph& graph, const std::shared_ptr<Link>& link, const std::shared_ptr<Node>& group) {
    if (const auto dummy = graph.insertDummyNode(link).first) (void)dummy->addToGroup(group);
}

}  // namespace

Graph::NodeAndLink Graph::insertNode(const std::shared_ptr<Link>& link, DataTransferTable transfers,
                                     const std::string& type) {
    const bool isDummy = type == "dummy";
    if (!link->m_from || !link->m_to) return {};
    if (!isDummy && !showsValues(transfers, m_displayMode)) return {};

    std::string id = link->m_to->m_id + "_" + link->m_from->m_id + "_" + type;
    const auto half = std::make_shared<Link>(id + "_" + link->m_from->m_id);
    std::shared_ptr<Node> node;
    if (isDummy) {
        node = std::make_shared<Node>(type);
        node->m_id = std::move(id);
    } else {
        node = std::make_shared<Node>(std::move(id), std::move(transfers), type);
    }
    addNode(node);
    addLink(half);
    half->m_to = link->m_to;
    half->m_from = node;
    link->m_to = node;
    half->m_dummyLink = link->m_dummyLink;
    splitDirection(*link, *half);
    return {node, half};
}

Graph::NodeAndLink Graph::insertDummyNode(const std::shared_ptr<Link>& link) {
    return insertNode(link, {}, "dummy");
}

error_code_t Graph::setLinkInfoAsNodes() {
    Nesting nesting;
    const std::size_t count = m_linkList.size();  // those added here are not visited
    for (std::size_t i = 0; i < count; ++i) {
        const std::shared_ptr<Link> link = m_linkList[i];
        if (!link->m_from || !link->m_to || link->m_displayInfo.empty(m_displayMode)) continue;
        LinkDisplayInfo& info = link->m_displayInfo;
        const auto group = nesting.liftedToCommonGroup(*link).first->m_group;
        const bool fromShows = showsValues(info.m_fromInfo, m_displayMode);
        // From the to end backwards: each split leaves the link itself at its from end.
        const bool toShows = insertLabel(*this, link, info.m_toInfo, group, "to") != nullptr;
        if (!toShows && fromShows) insertFiller(*this, link, group);
        (void)insertLabel(*this, link, info.m_totalInfo, group, "center");
        if (!insertLabel(*this, link, info.m_fromInfo, group, "from") && toShows)
            insertFiller(*this, link, group);
    }
    return {};
}

error_code_t Graph::setGroupInfoAsNodes() {
    const std::size_t count = m_nodeList.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::shared_ptr<Node> node = m_nodeList[i];
        if (node->isGroup()) (void)createInfoNode(node);
    }
    return {};
}

std::shared_ptr<Node> Graph::createInfoNode(const std::shared_ptr<Node>& group) {
    if (!group->isGroup() || !group->m_info || group->m_info->m_rowSet.empty()) return nullptr;
    auto node = std::make_shared<Node>(group->m_id + "_info", group->m_info, "groupInfo");
    group->m_info = nullptr;
    addNode(node);
    (void)node->addToGroup(group);
    return node;
}

}  // namespace tessera_1::view_model
