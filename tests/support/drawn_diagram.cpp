#include "tests/support/drawn_diagram.h"

#include "core/view_model/graph.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_diagram.h"

namespace tessera_test {

using basekit2::variant_bag_t;

variant_bag_t randomDrawing(std::uint64_t seed) {
    const LogCapture quiet;  // reports that random diagrams cause
    tessera_1::view_model::Graph graph;
    fillRandomDiagram(graph, seed);
    graph.m_name = "Random diagram";
    (void)graph.setLinkInfoAsNodes();
    (void)graph.setGroupInfoAsNodes();
    graph.createDummyLinksForGroups();
    (void)graph.calculateHierarchicalLevels();
    (void)graph.addDummyNodesForLabels();
    (void)graph.addDummyNodesForInterfaces();
    (void)graph.adjustLabelLocations();
    graph.setNodeAlignings();
    (void)graph.setGroupLevels();
    variant_bag_t bag;
    graph.dumpTotalInfo(bag);
    graph.dumpNodes(bag);
    graph.dumpLinks(bag);
    return bag;
}

namespace {

bool isName(std::string_view key) {
    return key == "name" || key == "displayName";
}

// Copies with another text under each key that `isReplaced` accepts. Recurses; a diagram's bag is five deep.
template <typename Predicate>
void copyWith(const variant_bag_t& from, variant_bag_t& to, Predicate isReplaced, std::string_view text) {
    for (auto it = from.begin_values(); !it.at_end(); it.next())
        if (isReplaced(it.get_name()))
            to.put(it.get_name(), text);
        else
            to.put(it.get_name(), it.get_value());
    for (auto it = from.begin(); !it.at_end(); it.next())
        copyWith(it.get_value(), to.add_variant_bag(it.get_name()), isReplaced, text);
}

}  // namespace

variant_bag_t withValues(const variant_bag_t& bag, std::string_view value) {
    variant_bag_t copy;
    copyWith(
        bag, copy, [](std::string_view key) { return key == "value"; }, value);
    return copy;
}

variant_bag_t withNames(const variant_bag_t& bag, std::string_view name) {
    variant_bag_t copy;
    copyWith(bag, copy, isName, name);
    return copy;
}

DrawnBag::DrawnBag() {
    variant_bag_t& diagram = bag.add_variant_bag("diagram");
    diagram.put("id", "d");
    diagram.put("name", "Diagram");
    diagram.put("displayMode", "bandwidth");
    m_nodes = &bag.add_variant_bag("nodes");
    m_nodes->put("arrayOf", "node");
    m_links = &bag.add_variant_bag("links");
    m_links->put("arrayOf", "link");
}

variant_bag_t& DrawnBag::node(std::string_view id, std::string_view name, std::int64_t level,
                              std::string_view type, std::string_view group) {
    variant_bag_t& node = m_nodes->add_variant_bag("node");
    node.put("id", id);
    node.put("displayName", name);
    node.put("group", group);
    node.put("isGroup", type == "group");
    node.put("type", type);
    node.put("hierarchicalLevel", level);
    node.put("aligning", "none");
    node.put("displayType", "none");
    if (type == "label") node.put("location", "center");
    node.add_variant_bag("info");
    return node;
}

variant_bag_t& DrawnBag::row(variant_bag_t& node, std::string_view name, std::string_view value) {
    // The bag of a node is ours, so its children may be changed.
    auto& info = const_cast<variant_bag_t&>(*node.get_variant_bag("info"));
    info.put("name", "info");
    if (info.get_variant_bag("rows") == nullptr) info.add_variant_bag("rows").put("arrayOf", "row");
    auto& row = const_cast<variant_bag_t&>(*info.get_variant_bag("rows")).add_variant_bag("row");
    row.put("name", name);
    row.put("value", value);
    return row;
}

void DrawnBag::link(std::string_view id, std::string_view from, std::string_view to,
                    std::string_view direction) {
    variant_bag_t& link = m_links->add_variant_bag("link");
    link.put("id", id);
    link.put("displayName", id);
    link.put("from", from);
    link.put("to", to);
    link.put("direction", direction);
}

}  // namespace tessera_test
