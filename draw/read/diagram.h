// The finished diagram as drawing needs it, read from its property bag. All texts are views of bytes that the
// bag or an arena owns; they may be invalid UTF-8. Absent texts are "".
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "draw/index.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_draw {

// One named value. Both texts are shown as they are; nothing is computed from the value. What the value means
// was described by the host.
struct Row {
    std::string_view name;
    std::string_view value;
    std::string_view level{};  // the name of its level
    bool isWorst = false;      // the worst value of the diagram
    std::uint8_t width = 0;    // the step of its line's width, from 1; 0 when it says nothing about that
    // Beside another result: "same", "more", "less", "text", "here" or "there", which results have it; "" otherwise.
    std::string_view change{};
    std::string_view other{};       // the value of the other result
    std::string_view difference{};  // with its sign
    std::string_view percent{};
};

// The values that a node or a part of a link shows at the moment. Without rows it shows none.
struct Info {
    std::string_view name;
    std::vector<Row> rows;
};

// A node, group, label or dummy of the diagram.
struct Node {
    std::string_view id;
    std::string_view name;
    std::string_view type;         // as written: "node", "group", "label", "dummy", "groupInfo", ...
    std::string_view displayType;  // "none", "interface" or a type that the document defines
    std::string_view aligning;     // "none", "from", "to"
    std::string_view location;     // of labels: "from", "to", "center"
    Index group = nothing;         // the node that contains this one; `nothing` at top level
    bool isGroup = false;          // marked as one, or contains a node
    std::int32_t level = -1;       // layer inside the group, from 0; -1 when it has none
    Info info;
};

// A link of the document, or a part of one that the layout has split.
struct Link {
    std::string_view id;
    std::string_view name;
    std::string_view direction;  // "forward", "back", "both", "none"
    Index from = nothing;        // in Diagram::nodes; `nothing` when no node has the id
    Index to = nothing;
    Info fromInfo;
    Info toInfo;
    Info totalInfo;
};

// Nodes and links in the bag's order, which tells parallel links apart (see draw/read/link_paths.h).
struct Diagram {
    std::string_view id;
    std::string_view name;
    std::string_view displayMode;
    std::vector<Node> nodes;
    std::vector<Link> links;
};

// Reads what "create" and the requests after it have written. All texts are views into `bag`, which must
// outlive the result. Accepts any bag: what is missing or of another type is empty. An empty id, or one that
// no node has, gives `nothing`. Where several nodes have one id, the last one is used, for a group the last
// that is marked as one. Groups that contain each other in a cycle are moved to top level. Linear time.
[[nodiscard]] Diagram readDiagram(const basekit2::variant_bag_t& bag);

// The same without values: every `Info` is empty. For layouts, which do not depend on values.
[[nodiscard]] Diagram readStructure(const basekit2::variant_bag_t& bag);

// Reads the info in the child bag of that name, as views into `bag`. Empty when there is no such bag.
[[nodiscard]] Info readInfo(const basekit2::variant_bag_t& bag, std::string_view name);

// Calls `take` with each child bag named `name` in the child bag `list`, in order. Other children are skipped,
// and so is a list that the bag lacks.
template <class Take>
void forEachChild(const basekit2::variant_bag_t& bag, std::string_view list, std::string_view name,
                  Take take) {
    const basekit2::variant_bag_t* children = bag.get_variant_bag(list);
    if (!children) return;
    for (auto it = children->begin(); !it.at_end(); it.next())
        if (it.get_name() == name) take(it.get_value());
}

}  // namespace tessera_draw
