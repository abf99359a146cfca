#include <algorithm>
#include <array>
#include <limits>

#include "host/lint/feedback/node_order.h"

namespace tessera_host {
namespace {

using Index = std::size_t;

struct Beginning {
    Index backwards = std::numeric_limits<Index>::max();  // arcs
    Index last = 0;                                       // node of it
};

}  // namespace

// Dynamic programming: the best order of each set of nodes is the best one without some node, then that node.
std::vector<std::size_t> exactOrder(const ArcGraph& graph) {
    const Index count = graph.nodeCount();
    std::array<std::array<Index, maxExactNodes>, maxExactNodes> arcs{};
    for (Index arc = 0; arc < graph.arcCount(); ++arc)
        ++arcs[graph[arc].from][graph[arc].to];
    std::vector<Beginning> best(Index{1} << count);
    best[0].backwards = 0;
    for (Index set = 0; set + 1 < best.size(); ++set)
        for (Index node = 0; node < count; ++node) {
            if ((set >> node & 1U) != 0) continue;
            Index backwards = best[set].backwards;
            for (Index other = 0; other < count; ++other)
                if ((set >> other & 1U) != 0) backwards += arcs[node][other];
            Beginning& longer = best[set | Index{1} << node];
            if (backwards < longer.backwards) longer = {backwards, node};
        }
    std::vector<Index> order(count);
    for (Index set = best.size() - 1, i = count; i > 0; --i) {
        order[i - 1] = best[set].last;
        set &= ~(Index{1} << order[i - 1]);
    }
    return order;
}

}  // namespace tessera_host
