#include "bench/draw/generated_drawing.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <random>

namespace tessera_bench {
namespace {

using tessera_draw::BoxToPlace;
using tessera_draw::Index;
using tessera_draw::LineToPlace;
using tessera_draw::nothing;
using tessera_draw::PlacementInput;

constexpr double pixelsPerInch = 72;

Index addGroup(PlacementInput& input, Index around) {
    BoxToPlace box;
    box.group = around;
    box.isContainer = true;
    box.size = {80, 40};
    box.padding = {16, 36, 16, 16};
    input.boxes.push_back(box);
    return static_cast<Index>(input.boxes.size()) - 1;
}

// Nodes come first, so that a node's number is its index.
void addGroups(PlacementInput& input, std::size_t nodes) {
    Index outer = nothing;
    Index inner = nothing;
    for (std::size_t i = 0; i < nodes; ++i) {
        if (i % (groupSize * groupSize) == 0) outer = addGroup(input, nothing);
        if (i % groupSize == 0) inner = addGroup(input, outer);
        input.boxes[i].group = inner;
    }
}

Index addLabel(PlacementInput& input, Index from, Index to) {
    std::vector<Index> around;
    for (Index group = input.boxes[from].group; group != nothing; group = input.boxes[group].group)
        around.push_back(group);
    BoxToPlace box;
    box.group = input.boxes[to].group;
    while (box.group != nothing && std::find(around.begin(), around.end(), box.group) == around.end())
        box.group = input.boxes[box.group].group;
    box.size = {70, 30};
    box.isLabel = true;
    input.boxes.push_back(box);
    return static_cast<Index>(input.boxes.size()) - 1;
}

void writeDotBoxes(std::ostream& out, const PlacementInput& input,
                   const std::vector<std::vector<Index>>& members, Index group) {
    for (const Index i : members[group]) {
        const BoxToPlace& box = input.boxes[i];
        if (box.isLabel) continue;
        if (!box.isContainer) {
            out << fmt::format("n{} [shape=box,fixedsize=true,width={:.3f},height={:.3f}];\n", i,
                               box.size.width / pixelsPerInch, box.size.height / pixelsPerInch);
            continue;
        }
        out << fmt::format("subgraph cluster_{} {{\n", i);
        writeDotBoxes(out, input, members, i);
        out << "}\n";
    }
}

}  // namespace

PlacementInput generatedDrawing(const InputShape& shape) {
    PlacementInput input;
    BoxToPlace node;
    node.size = {110, 56};
    input.boxes.assign(shape.nodes, node);
    if (!shape.isFlat) addGroups(input, shape.nodes);
    LinkEnds ends(shape);
    std::mt19937 random(shape.seed + 1);
    const auto links = static_cast<std::size_t>(static_cast<double>(shape.nodes) * shape.linksPerNode);
    for (std::size_t i = 0; i < links; ++i) {
        const auto [from, to] = ends.next();
        LineToPlace line{static_cast<Index>(from), static_cast<Index>(to), {}};
        if (static_cast<double>(random() % 1000) < shape.linksWithLabels * 1000)
            line.through.push_back(addLabel(input, line.from, line.to));
        input.lines.push_back(line);
    }
    return input;
}

void writeDot(const PlacementInput& input, const std::string& path) {
    std::vector<std::vector<Index>> members(input.boxes.size() + 1);
    const auto drawing = static_cast<Index>(input.boxes.size());
    for (Index i = 0; i < drawing; ++i)
        members[input.boxes[i].group == nothing ? drawing : input.boxes[i].group].push_back(i);
    std::ofstream out(path);
    out << "digraph g {\nrankdir=LR;\n";
    writeDotBoxes(out, input, members, drawing);
    for (const LineToPlace& line : input.lines)
        out << fmt::format("n{} -> n{}{};\n", line.from, line.to,
                           line.through.empty() ? "" : " [label=\"12.3 MB/s\"]");
    out << "}\n";
}

}  // namespace tessera_bench
