#include "draw/placement/nesting.h"

#include <numeric>

namespace tessera_draw::placing {
namespace {

// Breaks cycles of groups: the box of each at which the walk started is moved to top level.
void cutCycles(std::vector<Index>& parent, Index drawing) {
    std::vector<Index> seenFrom(parent.size(), nothing);
    seenFrom[drawing] = drawing;
    for (Index start = 0; start < drawing; ++start) {
        Index box = start;
        while (seenFrom[box] == nothing) {
            seenFrom[box] = start;
            box = parent[box];
        }
        if (box != drawing && seenFrom[box] == start) parent[box] = drawing;
    }
}

// The members of every box, as ranges of one list.
struct Children {
    std::vector<Index> begin;
    std::vector<Index> list;
};

Children childrenOf(const std::vector<Index>& parent, Index drawing) {
    Children children;
    children.begin.assign(parent.size() + 1, 0);
    for (Index box = 0; box < drawing; ++box)
        ++children.begin[parent[box] + 1];
    std::partial_sum(children.begin.begin(), children.begin.end(), children.begin.begin());
    children.list.resize(drawing);
    std::vector<Index> next(children.begin.begin(), children.begin.end() - 1);
    for (Index box = 0; box < drawing; ++box)
        children.list[next[parent[box]]++] = box;
    return children;
}

}  // namespace

Nesting nestingOf(const std::vector<BoxToPlace>& boxes) {
    Nesting nesting;
    const auto drawing = static_cast<Index>(boxes.size());
    nesting.drawing = drawing;
    std::vector<Index> parent(boxes.size() + 1, drawing);
    for (Index box = 0; box < drawing; ++box)
        if (boxes[box].group < drawing) parent[box] = boxes[box].group;
    cutCycles(parent, drawing);
    const Children children = childrenOf(parent, drawing);
    nesting.tree = tessera_support::AncestorIndex<Index>(boxes.size() + 1, drawing);
    nesting.containerOf.assign(boxes.size() + 1, nothing);
    nesting.containerOf[drawing] = 0;
    nesting.boxOf.push_back(drawing);
    nesting.members.reserve(boxes.size());
    for (Index container = 0; container < nesting.containerCount(); ++container) {
        const Index around = nesting.boxOf[container];
        nesting.memberBegin.push_back(static_cast<Index>(nesting.members.size()));
        for (Index i = children.begin[around]; i < children.begin[around + 1]; ++i) {
            const Index box = children.list[i];
            nesting.members.push_back(box);
            nesting.tree.setParent(box, around);
            if (!boxes[box].isContainer && children.begin[box] == children.begin[box + 1]) continue;
            nesting.containerOf[box] = nesting.containerCount();
            nesting.boxOf.push_back(box);
        }
    }
    nesting.memberBegin.push_back(static_cast<Index>(nesting.members.size()));
    return nesting;
}

}  // namespace tessera_draw::placing
