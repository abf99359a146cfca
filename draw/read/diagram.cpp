#include "draw/read/diagram.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "draw/read/node_ids.h"
#include "draw/theme.h"

namespace tessera_draw {

using basekit2::variant_bag_t;
using basekit2::variant_t;

namespace {

std::string_view textOf(const variant_t& value) {
    return value.can_get<std::string_view>() ? value.get<std::string_view>() : std::string_view();
}

bool flagOf(const variant_t& value) {
    return value.can_get<bool>() && value.get<bool>();
}

// -1 is a node without a level; other negative levels count as none, too.
std::int32_t levelOf(const variant_t& value) {
    if (!value.can_get<std::int64_t>()) return -1;
    constexpr std::int64_t last = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value.get<std::int64_t>(), -1, last));
}

// `group` becomes the id of the node's group. One walk over the values: a look-up of each name would read the
// whole bag for each.
Node readNode(const variant_bag_t& bag, std::string_view& group, bool hasValues) {
    Node node;
    group = {};
    for (auto it = bag.begin_values(); !it.at_end(); it.next()) {
        const std::string_view name = it.get_name();
        const variant_t& value = it.get_value();
        if (name == "id") node.id = textOf(value);
        if (name == "displayName") node.name = textOf(value);
        if (name == "group") group = textOf(value);
        if (name == "isGroup") node.isGroup = flagOf(value);
        if (name == "type") node.type = textOf(value);
        if (name == "hierarchicalLevel") node.level = levelOf(value);
        if (name == "aligning") node.aligning = textOf(value);
        if (name == "displayType") node.displayType = textOf(value);
        if (name == "location") node.location = textOf(value);
    }
    if (hasValues) node.info = readInfo(bag, "info");
    return node;
}

Link readLink(const variant_bag_t& bag, const NodeIds& ids, bool hasValues) {
    Link link;
    for (auto it = bag.begin_values(); !it.at_end(); it.next()) {
        const std::string_view name = it.get_name();
        const variant_t& value = it.get_value();
        if (name == "id") link.id = textOf(value);
        if (name == "displayName") link.name = textOf(value);
        if (name == "from") link.from = ids.find(textOf(value));
        if (name == "to") link.to = ids.find(textOf(value));
        if (name == "direction") link.direction = textOf(value);
    }
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
            // Each node is entered by one walk only, so all walks together take linear time.
            walks[at] = start;
        if (at == nothing || walks[at] != start) continue;
        while (at != nothing)
            at = std::exchange(nodes[at].group, nothing);
    }
}

std::size_t countChildren(const variant_bag_t& bag, std::string_view list, std::string_view name) {
    std::size_t count = 0;
    forEachChild(bag, list, name, [&](const variant_bag_t&) { ++count; });
    return count;
}

// Members of one group are mostly next to each other; then its id is looked up once.
void setGroups(std::vector<Node>& nodes, const NodeIds& ids, const std::vector<std::string_view>& groups) {
    const NodeIds groupIds(nodes, [&](Index i) { return nodes[i].isGroup; });
    std::string_view latestId;
    Index latest = nothing;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (groups[i] != latestId) {
            latestId = groups[i];
            latest = groupIds.find(latestId);
            // A node that is not marked as a group can be one by having members.
            if (latest == nothing) latest = ids.find(latestId);
        }
        nodes[i].group = latest;
    }
}

Diagram read(const variant_bag_t& bag, bool hasValues) {
    Diagram diagram;
    if (const variant_bag_t* head = bag.get_variant_bag("diagram")) {
        diagram.id = head->get_text("id");
        diagram.name = head->get_text("name");
        diagram.displayMode = head->get_text("displayMode");
    }
    diagram.nodes.reserve(countChildren(bag, "nodes", "node"));
    diagram.links.reserve(countChildren(bag, "links", "link"));
    std::vector<std::string_view> groups;  // by node: the id of its group
    groups.reserve(diagram.nodes.capacity());
    forEachChild(bag, "nodes", "node", [&](const variant_bag_t& node) {
        diagram.nodes.push_back(readNode(node, groups.emplace_back(), hasValues));
    });
    const NodeIds ids(diagram.nodes);
    setGroups(diagram.nodes, ids, groups);
    cutCycles(diagram.nodes);
    for (const Node& node : diagram.nodes)
        if (node.group != nothing) diagram.nodes[node.group].isGroup = true;
    forEachChild(bag, "links", "link",
                 [&](const variant_bag_t& link) { diagram.links.push_back(readLink(link, ids, hasValues)); });
    return diagram;
}

}  // namespace

namespace {

void readMeaningOf(const variant_bag_t& bag, Row& row) {
    row.level = bag.get_text("level");
    row.change = bag.get_text("change");
    row.other = bag.get_text("other");
    row.difference = bag.get_text("difference");
    row.percent = bag.get_text("percent");
    if (const basekit2::variant_t* worst = bag.get("isWorst")) row.isWorst = flagOf(*worst);
    if (const basekit2::variant_t* width = bag.get("width"))
        row.width = static_cast<std::uint8_t>(
            std::clamp<std::int32_t>(levelOf(*width), 0, static_cast<std::int32_t>(lineWidths.size())));
}

}  // namespace

Info readInfo(const variant_bag_t& bag, std::string_view name) {
    Info info;
    const variant_bag_t* found = bag.get_variant_bag(name);
    if (!found) return info;
    info.name = found->get_text("name");
    forEachChild(*found, "rows", "row", [&](const variant_bag_t& row) {
        info.rows.push_back({row.get_text("name"), row.get_text("value")});
        // Most rows have these two values only.
        if (row.value_count() > 2) readMeaningOf(row, info.rows.back());
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
