// Writes the finished diagram as a property bag.
#include <string>
#include <utility>

#include "core/view_model/graph.h"

namespace tessera_1::view_model {

using basekit2::variant_bag_t;

namespace {

// Looks the mode up, leaving an empty entry where the table has none, and writes what is found.
void dumpTransfer(DataTransferTable& table, variant_bag_t& info, const std::string& displayMode) {
    // One bucket is enough for the few modes that there are, and takes no memory of its own.
    if (table.empty()) table.max_load_factor(16);
    if (const auto& shown = table[displayMode]) shown->dump(info);
}

const std::string& idOf(const std::shared_ptr<Node>& node) {
    static const std::string none;
    return node ? node->m_id : none;
}

}  // namespace

void Graph::dumpTotalInfo(variant_bag_t& out) const {
    variant_bag_t& diagram = out.add_variant_bag("diagram");
    diagram.append_text("id", m_id);
    diagram.append_text("name", m_name);
    diagram.append_text("displayMode", m_displayMode);
}

void Graph::dumpNodes(variant_bag_t& out) {
    variant_bag_t& nodes = out.add_variant_bag("nodes");
    nodes.append_text("arrayOf", "node");
    const GroupLevels& levels = m_groupLevelManager.m_groupLevels;
    const auto& entries = m_nodes.unordered();
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const auto [id, level] = levels.entry(i);
        // Both are mostly in the order in which the nodes were added; then no id is hashed.
        const bool isInStep = i < entries.size() && entries[i].second && entries[i].first == id;
        if (const auto& node = isInStep ? entries[i].second : m_nodes[id]) node->m_groupLevel = level;
    }
    for (const auto& node : m_nodeList)
        if (node->m_type != "groupInfo") node->dump(nodes, m_displayMode);
    for (const auto& node : m_nodeList)
        if (node->m_type == "groupInfo") node->dump(nodes, m_displayMode);
}

void Graph::dumpLinks(variant_bag_t& out) {
    variant_bag_t& links = out.add_variant_bag("links");
    links.append_text("arrayOf", "link");
    for (const auto& link : m_linkList)
        if (link->m_type != "dummy") link->dump(links, m_displayMode);
}

void Node::dump(variant_bag_t& nodes, std::string displayMode) {
    const bool isLabel = m_type == "label";
    variant_bag_t& bag = nodes.add_variant_bag("node");
    bag.append_text("id", m_id);
    bag.append_text("displayName", m_displayName);
    bag.append_text("group", idOf(m_group));
    bag.append("isGroup", isGroup());
    bag.append_text("type", isGroup() ? std::string_view("group") : std::string_view(m_type));
    bag.append("hierarchicalLevel", m_hierarchicalLevel);
    bag.append("groupLevel", m_groupLevel);
    bag.append_text("aligning", m_aligning);
    bag.append_text("displayType", m_displayType);
    if (isLabel) bag.append_text("location", m_location);
    variant_bag_t& info = bag.add_variant_bag("info");
    if (m_info) m_info->dump(info);
    if (isLabel) dumpDataTransfer(m_dataTransfers, info, std::move(displayMode));
}

void Node::dumpDataTransfer(DataTransferTable& table, variant_bag_t& info, std::string displayMode) {
    dumpTransfer(table, info, displayMode);
}

void Link::dump(variant_bag_t& links, std::string displayMode) {
    variant_bag_t& bag = links.add_variant_bag("link");
    bag.append_text("id", m_id);
    bag.append_text("displayName", m_displayName);
    bag.append_text("from", idOf(m_from));
    bag.append_text("to", idOf(m_to));
    bag.append_text("direction", m_direction);
    dumpDataTransfer(m_displayInfo.m_fromInfo, bag.add_variant_bag("fromInfo"), displayMode);
    dumpDataTransfer(m_displayInfo.m_toInfo, bag.add_variant_bag("toInfo"), displayMode);
    dumpDataTransfer(m_displayInfo.m_totalInfo, bag.add_variant_bag("totalInfo"), std::move(displayMode));
}

void Link::dumpDataTransfer(DataTransferTable& table, variant_bag_t& info, std::string displayMode) {
    dumpTransfer(table, info, displayMode);
}

void DisplayInfo::dump(variant_bag_t& bag) const {
    if (m_rowSet.empty()) return;
    bag.put("name", m_name);  // the caller's bag may hold what another display info wrote
    m_rowSet.dump(bag);
}

void RowSet::dump(variant_bag_t& bag) const {
    if (empty()) return;
    variant_bag_t& bagOfRows = bag.add_variant_bag("rows");
    bagOfRows.append_text("name", m_name);
    bagOfRows.append_text("arrayOf", "row");
    for (const Row& row : rows)
        row.dump(bagOfRows);
}

void Row::dump(variant_bag_t& rows) const {
    if (m_value.empty()) return;
    variant_bag_t& bag = rows.add_variant_bag("row");
    bag.append_text("name", m_name);
    bag.append_text("value", m_value);
}

}  // namespace tessera_1::view_model
