#include "draw/read/diagram.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "draw/read/node_ids.h"

namespace tessera_draw {

using basekit2::variant_bag_t;
using basekit2::variant_t;

namespace {

bool flagOf(const variant_bag_t& bag, std::string_view name) {
    const variant_t* value = bag.get(name);
    return value && value->can_get<bool>() && value->get<bool>();
}

std::int32_t levelOf(const variant_bag_t& bag) {
    const variant_t* value = bag.get("hierarchicalLevel");
    if (!value || !value->can_get<std::int64_t>()) return -1;
    constexpr std::int64_t last = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value->get<std::int64_t>(), -1, last));
}

Node readNode(const variant_bag_t& bag, bool hasValues) {
    Node node;
    node.id = bag.get_text("id");
    node.name = bag.get_text("displayName");
    node.type = bag.get_text("type");
    node.displayType = bag.get_text("displayType");
    node.aligning = bag.get_text("aligning");
    node.location = bag.get_text("location");
    node.isGroup = flagOf(bag, "isGroup");
    node.level = levelOf(bag);
    if (hasValues) node.info = readInfo(bag, "info");
    return node;
}

Link readLink(const variant_bag_t& bag, const NodeIds& ids, bool hasValues) {
    Link link;
    link.id = bag.get_text("id");
    link.name = bag.get_text("displayName");
    link.direction = bag.get_text("direction");
    link.from = ids.find(bag.get_text("from"));
    link.to = ids.find(bag.get_text("to"));
    if (!hasValues) return link;
    link.fromInfo = readInfo(bag, "fromInfo");
    link.toInfo = readInfo(bag, "toInfo");
    link.totalInfo = readInfo(bag, "totalInfo");
    return link;
}

// Moves every group that is inside itself to top level. Nodes that are only inside such a group stay there.
void cutCycles(std::vector<Node>& nodes) {
    constexpr Index notSeen = nothing;
    std::vector<Index> walks(nodes.size(), notSeen);  // by node: the walk that reached it first
    for (Index start = 0; start < nodes.size(); ++start) {
        Index at = start;
        for (; at != nothing && walks[at] == notSeen; at = nodes[at].group)
            walks[at] = start;
        if (at == nothing || walks[at] != start) continue;
        while (at != nothing)
            at = std::exchange(nodes[at].group, nothing);
    }
}

Diagram read(const variant_bag_t& bag, bool hasValues) {
    Diagram diagram;
    if (const variant_bag_t* head = bag.get_variant_bag("diagram")) {
        diagram.id = head->get_text("id");
        diagram.name = head->get_text("name");
        diagram.displayMode = head->get_text("displayMode");
    }
    std::vector<std::string_view> groups;
    forEachChild(bag, "nodes", "node", [&](const variant_bag_t& node) {
        diagram.nodes.push_back(readNode(node, hasValues));
        groups.push_back(node.get_text("group"));
    });
    const NodeIds ids(diagram.nodes);
    const NodeIds groupIds(diagram.nodes, [&](Index i) { return diagram.nodes[i].isGroup; });
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const Index group = groupIds.find(groups[i]);
        diagram.nodes[i].group = group != nothing ? group : ids.find(groups[i]);
    }
    cutCycles(diagram.nodes);
    for (const Node& node : diagram.nodes)
        if (node.group != nothing) diagram.nodes[node.group].isGroup = true;
    forEachChild(bag, "links", "link",
                 [&](const variant_bag_t& link) { diagram.links.push_back(readLink(link, ids, hasValues)); });
    return diagram;
}

}  // namespace

Info readInfo(const variant_bag_t& bag, std::string_view name) {
    Info info;
    const variant_bag_t* found = bag.get_variant_bag(name);
    if (!found) return info;
    info.name = found->get_text("name");
    forEachChild(*found, "rows", "row", [&](const variant_bag_t& row) {
        info.rows.push_back({row.get_text("name"), row.get_text("value")});
    });
    return info;
}

Diagram readDiagram(const variant_bag_t& bag) {
    return read(bag, true);
}

Diagram readStructure(const variant_bag_t& bag) {
    return read(bag, false);
}

}  // namespace tessera_draw
