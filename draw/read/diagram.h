// The finished diagram as drawing needs it, read from its property bag.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "draw/index.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_draw {

// One labelled value.
struct Row {
    std::string_view name;
    std::string_view value;
};

// What a node or an end of a link shows at the moment. No rows: nothing.
struct Info {
    std::string_view name;
    std::vector<Row> rows;
};

struct Node {
    std::string_view id;
    std::string_view name;
    std::string_view type;         // as written: "node", "group", "label", "dummy", "groupInfo", ...
    std::string_view displayType;  // "none", "interface" and what documents say
    std::string_view aligning;     // "none", "from", "to"
    std::string_view location;     // of labels: "from", "to", "center"
    Index group = nothing;         // the node that contains this one; `nothing` at top level
    bool isGroup = false;          // said to be one, or contains a node
    std::int32_t level = -1;       // layer inside the group; -1 when not levelled
    Info info;
};

struct Link {
    std::string_view id;
    std::string_view name;
    std::string_view direction;  // "forward", "back", "both", "none"
    Index from = nothing;
    Index to = nothing;
    Info fromInfo;
    Info toInfo;
    Info totalInfo;
};

// Nodes and links in the bag's order.
struct Diagram {
    std::string_view id;
    std::string_view name;
    std::string_view displayMode;
    std::vector<Node> nodes;
    std::vector<Link> links;
};

// Reads what "create" and the requests after it have written. All texts are views into `bag`, which must
// outlive the result. Accepts any bag: what is missing or of another type is empty, an id that no node has (or
// that is empty) is `nothing`, of several nodes with one id the last is meant, and a group that would contain
// itself stands at top level. Time grows with the bag's size.
[[nodiscard]] Diagram readDiagram(const basekit2::variant_bag_t& bag);

// The same without values: every `Info` is empty.
[[nodiscard]] Diagram readStructure(const basekit2::variant_bag_t& bag);

// The info in the child bag of that name, as views into `bag`.
[[nodiscard]] Info readInfo(const basekit2::variant_bag_t& bag, std::string_view name);

// Calls `take` with each child called `name` of the child bag `list`.
template <class Take>
void forEachChild(const basekit2::variant_bag_t& bag, std::string_view list, std::string_view name,
                  Take take) {
    const basekit2::variant_bag_t* children = bag.get_variant_bag(list);
    if (!children) return;
    for (auto it = children->begin(); !it.at_end(); it.next())
        if (it.get_name() == name) take(it.get_value());
}

}  // namespace tessera_draw
