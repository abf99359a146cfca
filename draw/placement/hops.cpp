#include "draw/placement/hops.h"

#include <algorithm>

namespace tessera_draw::placing {
namespace {

bool isWhole(const LineToPlace& line, std::size_t boxCount) {
    return line.from < boxCount && line.to < boxCount &&
           std::all_of(line.through.begin(), line.through.end(), [&](Index box) { return box < boxCount; });
}

Hop hopBetween(Index from, Index to, const Nesting& nesting) {
    Hop hop;
    hop.from = from;
    hop.to = to;
    const Index common = from == to ? nesting.parent[from] : nesting.commonBox(from, to);
    hop.container = nesting.containerOf[common];
    const Index depth = nesting.depth[common] + 1;
    if (from != common) hop.fromMember = nesting.ancestorAt(from, depth);
    if (to != common) hop.toMember = nesting.ancestorAt(to, depth);
    return hop;
}

// Borders that the hop passes between its ends and the container.
std::size_t bordersOf(const Hop& hop, const Nesting& nesting) {
    std::size_t count = 0;
    if (hop.fromMember != nothing) count += nesting.depth[hop.from] - nesting.depth[hop.fromMember];
    if (hop.toMember != nothing) count += nesting.depth[hop.to] - nesting.depth[hop.toMember];
    return count;
}

// Only diagrams of thousands of levels get there. Hops that pass few borders go first.
void limitBorders(std::vector<Hop>& hops, const Nesting& nesting) {
    const std::size_t limit = 8 * (hops.size() + nesting.parent.size()) + 200'000;
    std::size_t sum = 0;
    for (const Hop& hop : hops)
        sum += bordersOf(hop, nesting);
    if (sum <= limit) return;
    std::vector<std::pair<std::size_t, Index>> byBorders;
    byBorders.reserve(hops.size());
    for (Index i = 0; i < hops.size(); ++i)
        byBorders.emplace_back(bordersOf(hops[i], nesting), i);
    std::sort(byBorders.begin(), byBorders.end());
    sum = 0;
    for (const auto& [borders, hop] : byBorders) {
        sum += borders;
        hops[hop].isDirect = sum > limit;
    }
}

}  // namespace

std::vector<Hop> hopsOf(const PlacementInput& input, const Nesting& nesting) {
    std::vector<Hop> hops;
    hops.reserve(input.lines.size());
    for (Index i = 0; i < input.lines.size(); ++i) {
        const LineToPlace& line = input.lines[i];
        if (!isWhole(line, input.boxes.size())) continue;
        Index from = line.from;
        for (std::size_t k = 0; k <= line.through.size(); ++k) {
            const Index to = k < line.through.size() ? line.through[k] : line.to;
            hops.push_back(hopBetween(from, to, nesting));
            hops.back().line = i;
            from = to;
        }
    }
    limitBorders(hops, nesting);
    return hops;
}

}  // namespace tessera_draw::placing
