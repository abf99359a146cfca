#include "draw/read/splits.h"

#include <algorithm>

#include "draw/read/node_ids.h"

namespace tessera_draw {
namespace {

// Removes "_" and `tail` from the end of `text`. Returns false if it does not end with them.
bool takeOff(std::string_view& text, std::string_view tail) {
    if (text.size() <= tail.size() || !text.ends_with(tail)) return false;
    const std::string_view rest = text.substr(0, text.size() - tail.size());
    if (!rest.ends_with('_')) return false;
    text = rest.substr(0, rest.size() - 1);
    return true;
}

// Reads the ends from the ids: TO_FROM_TYPE is the node's, TO_FROM_TYPE_FROM the half's.
bool readEnds(Split& split, const Diagram& diagram, const NodeIds& ids) {
    const Node& node = diagram.nodes[split.node];
    const std::string_view half = diagram.links[split.half].id;
    if (half.size() <= node.id.size() || !half.starts_with(node.id) || half[node.id.size()] != '_')
        return false;
    const std::string_view from = half.substr(node.id.size() + 1);
    std::string_view to = node.id;
    if (!takeOff(to, node.type) || !takeOff(to, from)) return false;
    split.from = ids.find(from);
    split.to = ids.find(to);
    return (split.from != nothing || from.empty()) && (split.to != nothing || to.empty());
}

}  // namespace

Splits readSplits(const Diagram& diagram) {
    const NodeIds ids(diagram.nodes);
    Splits splits;
    splits.classes.reserve(diagram.nodes.size());
    for (const Node& node : diagram.nodes)
        splits.classes.push_back(ids.find(node.id));
    splits.documentLinks = diagram.links.size();
    for (std::size_t i = diagram.nodes.size(); i > 0 && splits.documentLinks > 0; --i) {
        const Node& node = diagram.nodes[i - 1];
        if (!isLabel(node) && !isDummy(node)) continue;
        Split split;
        split.node = static_cast<Index>(i - 1);
        split.half = static_cast<Index>(splits.documentLinks - 1);
        if (!readEnds(split, diagram, ids)) break;
        splits.all.push_back(split);
        --splits.documentLinks;
    }
    std::reverse(splits.all.begin(), splits.all.end());
    return splits;
}

}  // namespace tessera_draw
