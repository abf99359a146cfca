#include "draw/read/diagram.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace tessera_draw {
namespace {

using basekit2::variant_bag_t;

struct Bag {
    variant_bag_t root;
    variant_bag_t& nodes = root.add_variant_bag("nodes");
    variant_bag_t& links = root.add_variant_bag("links");

    variant_bag_t& node(const char* id, const char* group = "") {
        variant_bag_t& bag = nodes.add_variant_bag("node");
        bag.put("id", id);
        bag.put("group", group);
        return bag;
    }
    variant_bag_t& link(const char* from, const char* to) {
        variant_bag_t& bag = links.add_variant_bag("link");
        bag.put("from", from);
        bag.put("to", to);
        return bag;
    }
    [[nodiscard]] Diagram read() const { return readDiagram(root); }
};

TEST(DrawDiagram, AnEmptyBagIsAnEmptyDiagram) {
    const Diagram diagram = readDiagram(variant_bag_t());
    EXPECT_TRUE(diagram.nodes.empty());
    EXPECT_TRUE(diagram.links.empty());
    EXPECT_EQ(diagram.name, "");
}

TEST(DrawDiagram, EverythingThatIsWrittenIsRead) {
    Bag bag;
    variant_bag_t& head = bag.root.add_variant_bag("diagram");
    head.put("id", "d");
    head.put("name", "Rates");
    head.put("displayMode", "ratio");
    variant_bag_t& group = bag.node("g");
    group.put("isGroup", true);
    group.put("type", "group");
    variant_bag_t& node = bag.node("n", "g");
    node.put("displayName", "Node");
    node.put("type", "label");
    node.put("displayType", "interface");
    node.put("aligning", "from");
    node.put("location", "to");
    node.put("isGroup", false);
    node.put("hierarchicalLevel", 7);
    variant_bag_t& info = node.add_variant_bag("info");
    info.put("name", "Info");
    variant_bag_t& rows = info.add_variant_bag("rows");
    variant_bag_t& row = rows.add_variant_bag("row");
    row.put("name", "in");
    row.put("value", "12");
    rows.add_variant_bag("row").put("value", "13");
    variant_bag_t& link = bag.link("g", "n");
    link.put("id", "l");
    link.put("displayName", "Link");
    link.put("direction", "both");
    link.add_variant_bag("fromInfo").put("name", "f");
    link.add_variant_bag("toInfo").put("name", "t");
    link.add_variant_bag("totalInfo").put("name", "a");

    const Diagram diagram = bag.read();
    EXPECT_EQ(diagram.id, "d");
    EXPECT_EQ(diagram.name, "Rates");
    EXPECT_EQ(diagram.displayMode, "ratio");
    ASSERT_EQ(diagram.nodes.size(), 2U);
    EXPECT_TRUE(diagram.nodes[0].isGroup);
    EXPECT_EQ(diagram.nodes[0].level, -1);
    const Node& read = diagram.nodes[1];
    EXPECT_EQ(read.id, "n");
    EXPECT_EQ(read.name, "Node");
    EXPECT_EQ(read.type, "label");
    EXPECT_EQ(read.displayType, "interface");
    EXPECT_EQ(read.aligning, "from");
    EXPECT_EQ(read.location, "to");
    EXPECT_EQ(read.group, 0U);
    EXPECT_FALSE(read.isGroup);
    EXPECT_EQ(read.level, 7);
    EXPECT_EQ(read.info.name, "Info");
    ASSERT_EQ(read.info.rows.size(), 2U);
    EXPECT_EQ(read.info.rows[0].name, "in");
    EXPECT_EQ(read.info.rows[0].value, "12");
    EXPECT_EQ(read.info.rows[1].name, "");
    ASSERT_EQ(diagram.links.size(), 1U);
    EXPECT_EQ(diagram.links[0].id, "l");
    EXPECT_EQ(diagram.links[0].name, "Link");
    EXPECT_EQ(diagram.links[0].direction, "both");
    EXPECT_EQ(diagram.links[0].from, 0U);
    EXPECT_EQ(diagram.links[0].to, 1U);
    EXPECT_EQ(diagram.links[0].fromInfo.name, "f");
    EXPECT_EQ(diagram.links[0].toInfo.name, "t");
    EXPECT_EQ(diagram.links[0].totalInfo.name, "a");
}

TEST(DrawDiagram, ValuesOfOtherTypesAreNone) {
    Bag bag;
    variant_bag_t& node = bag.node("n");
    node.put("displayName", 3);
    node.put("isGroup", "true");
    node.put("hierarchicalLevel", "2");
    bag.node("high").put("hierarchicalLevel", std::int64_t{1} << 40U);
    bag.node("low").put("hierarchicalLevel", -5);
    bag.nodes.add_variant_bag("link");  // not a node
    bag.link("n", "").put("to", true);
    const Diagram diagram = bag.read();
    ASSERT_EQ(diagram.nodes.size(), 3U);
    EXPECT_EQ(diagram.nodes[0].name, "");
    EXPECT_FALSE(diagram.nodes[0].isGroup);
    EXPECT_EQ(diagram.nodes[0].level, -1);
    EXPECT_EQ(diagram.nodes[1].level, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(diagram.nodes[2].level, -1);
    EXPECT_EQ(diagram.links[0].from, 0U);
    EXPECT_EQ(diagram.links[0].to, nothing);
}

TEST(DrawDiagram, UnknownIdsAreNothing) {
    Bag bag;
    bag.node("");
    bag.node("a", "gone");
    bag.link("gone", "a");
    bag.link("a", "");
    const Diagram diagram = bag.read();
    EXPECT_EQ(diagram.nodes[1].group, nothing);
    EXPECT_EQ(diagram.links[0].from, nothing);
    EXPECT_EQ(diagram.links[1].to, nothing) << "an empty id does not count";
}

TEST(DrawDiagram, OfSeveralNodesWithOneIdTheLastIsMeant) {
    Bag bag;
    bag.node("x");
    bag.node("x");
    bag.node("y", "x");
    bag.link("x", "y");
    const Diagram diagram = bag.read();
    EXPECT_EQ(diagram.nodes[2].group, 1U);
    EXPECT_EQ(diagram.links[0].from, 1U);
    EXPECT_FALSE(diagram.nodes[0].isGroup);
    EXPECT_TRUE(diagram.nodes[1].isGroup) << "it contains something";
}

TEST(DrawDiagram, OfSeveralNodesWithOneIdTheGroupContainsItsMembers) {
    Bag bag;
    bag.node("x").put("isGroup", true);
    bag.node("member", "x");
    bag.node("x").put("type", "dummy");
    const Diagram diagram = bag.read();
    EXPECT_EQ(diagram.nodes[1].group, 0U);
    EXPECT_FALSE(diagram.nodes[2].isGroup);
}

TEST(DrawDiagram, GroupsInsideThemselvesStandAtTopLevel) {
    Bag bag;
    bag.node("self", "self");
    bag.node("a", "b");
    bag.node("b", "c");
    bag.node("c", "a");
    bag.node("inside", "b");
    bag.node("deeper", "inside");
    const Diagram diagram = bag.read();
    for (const std::size_t onCycle : {0, 1, 2, 3})
        EXPECT_EQ(diagram.nodes[onCycle].group, nothing) << onCycle;
    EXPECT_EQ(diagram.nodes[4].group, 2U);
    EXPECT_EQ(diagram.nodes[5].group, 4U);
    EXPECT_TRUE(diagram.nodes[2].isGroup);
    EXPECT_FALSE(diagram.nodes[0].isGroup) << "nothing is in it any more";
}

// With members before their groups and after them.
TEST(DrawDiagram, DeepNestingAndLongCyclesAreRead) {
    constexpr int count = 100000;
    for (const bool isCycle : {false, true}) {
        for (const int step : {1, count - 1}) {
            Bag bag;
            for (int i = 0; i < count; ++i) {
                const bool isLast = i == (step == 1 ? count - 1 : 0);
                const std::string group = std::to_string((i + step) % count);
                bag.node(std::to_string(i).c_str(), isLast && !isCycle ? "" : group.c_str());
            }
            std::size_t atTop = 0;
            for (const Node& node : bag.read().nodes)
                atTop += node.group == nothing ? 1U : 0U;
            EXPECT_EQ(atTop, isCycle ? 100000U : 1U);
        }
    }
}

}  // namespace
}  // namespace tessera_draw
