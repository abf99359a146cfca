#include "draw/read/diagram.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "draw/read/node_ids.h"

namespace tessera_draw {

using basekit2::variant_bag_t;
using basekit2::variant_t;

namespace {

std::string_view textOf(const variant_bag_t& bag, std::string_view name) {
    const variant_t* value = bag.get(name);
    return value && value->can_get<std::string_view>() ? value->get<std::string_view>() : std::string_view();
}

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

// Calls `take` with each child of that name in the child bag `list`.
template <class Take>
void forEach(const variant_bag_t& bag, std::string_view list, std::string_view name, Take take) {
    const variant_bag_t* children = bag.get_variant_bag(list);
    if (!children) return;
    for (auto it = children->begin(); !it.at_end(); it.next())
        if (it.get_name() == name) take(it.get_value());
}

Info readInfo(const variant_bag_t& bag, std::string_view name) {
    Info info;
    const variant_bag_t* found = bag.get_variant_bag(name);
    if (!found) return info;
    info.name = textOf(*found, "name");
    forEach(*found, "rows", "row", [&](const variant_bag_t& row) {
        info.rows.push_back({textOf(row, "name"), textOf(row, "value")});
    });
    return info;
}

Node readNode(const variant_bag_t& bag) {
    Node node;
    node.id = textOf(bag, "id");
    node.name = textOf(bag, "displayName");
    node.type = textOf(bag, "type");
    node.displayType = textOf(bag, "displayType");
    node.aligning = textOf(bag, "aligning");
    node.location = textOf(bag, "location");
    node.isGroup = flagOf(bag, "isGroup");
    node.level = levelOf(bag);
    node.info = readInfo(bag, "info");
    return node;
}

Link readLink(const variant_bag_t& bag, const NodeIds& ids) {
    Link link;
    link.id = textOf(bag, "id");
    link.name = textOf(bag, "displayName");
    link.direction = textOf(bag, "direction");
    link.from = ids.find(textOf(bag, "from"));
    link.to = ids.find(textOf(bag, "to"));
    link.fromInfo = readInfo(bag, "fromInfo");
    link.toInfo = readInfo(bag, "toInfo");
    link.totalInfo = readInfo(bag, "totalInfo");
    return link;
}

// Takes every group that is inside itself to top level. What is merely inside such a group stays there.
void cutCycles(std::vector<Node>& nodes) {
    constexpr Index notSeen = nothing;
    std::vector<Index> walks(nodes.size(), notSeen);  // the first one that came by
    for (Index start = 0; start < nodes.size(); ++start) {
        Index at = start;
        for (; at != nothing && walks[at] == notSeen; at = nodes[at].group)
            walks[at] = start;
        if (at == nothing || walks[at] != start) continue;
        while (at != nothing)
            at = std::exchange(nodes[at].group, nothing);
    }
}

}  // namespace

Diagram readDiagram(const variant_bag_t& bag) {
    Diagram diagram;
    if (const variant_bag_t* head = bag.get_variant_bag("diagram")) {
        diagram.id = textOf(*head, "id");
        diagram.name = textOf(*head, "name");
        diagram.displayMode = textOf(*head, "displayMode");
    }
    std::vector<std::string_view> groups;
    forEach(bag, "nodes", "node", [&](const variant_bag_t& node) {
        diagram.nodes.push_back(readNode(node));
        groups.push_back(textOf(node, "group"));
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
    forEach(bag, "links", "link",
            [&](const variant_bag_t& link) { diagram.links.push_back(readLink(link, ids)); });
    return diagram;
}

}  // namespace tessera_draw
