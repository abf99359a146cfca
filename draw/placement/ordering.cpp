#include "draw/placement/ordering.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "draw/placement/crossings.h"
#include "draw/placement/sifting.h"

namespace tessera_draw::placing {
namespace {

constexpr int rounds = 3;  // inwards and outwards again

// What may be spent, in comparisons: much on each vertex of a small diagram, less on those of a large one.
constexpr double freeWork = 5e6;
constexpr double smallDiagram = 1200;  // vertices; beyond, the free work shrinks with their square
constexpr double workPerVertex = 150;
constexpr std::size_t smallEnoughForAll = 3000;  // vertices and edges
constexpr Index siftingReach = 10;

// Orders the layers of one container.
class ContainerOrdering {
  public:
    ContainerOrdering(LayeredGraph& graph, const Nesting& nesting, const CancelToken& cancel)
        : m_graph(graph),
          m_cancel(cancel),
          m_ranks(graph, nesting),
          m_counter(graph, m_ranks),
          m_sifting(graph, m_ranks) {}

    [[nodiscard]] PortRanks& ranks() noexcept { return m_ranks; }

    // Finds a first order, spending at most this work: in a small container on each of several initial
    // orders, else on the one that is best after sweeps.
    void begin(Index container, double work) {
        enter(container, false);
        if (m_size == 0) return;
        const bool isSmall = m_size <= smallEnoughForAll;
        m_starts.assign(m_graph.order.begin() + m_graph.layerBegin[m_first],
                        m_graph.order.begin() + m_graph.layerBegin[m_last + 1]);
        const double endOfAll = spent() + work;
        std::uint64_t fewest = unknown;
        std::vector<Index> order;
        for (const Walk walk : {Walk::depthFirst, Walk::depthFirstFromEnd, Walk::breadthFirst}) {
            if (fewest == 0 || (walk == Walk::breadthFirst && !isSmall)) break;
            // There are at most three walks, so each has a third.
            const double end = spent() + work / 3;
            walkThrough(walk);
            sweep();
            if (isSmall) siftAndSweep(end);
            if (m_bestCrossings >= fewest) continue;
            fewest = m_bestCrossings;
            order = m_best;
        }
        m_bestCrossings = fewest;
        m_best = order;
        restore(m_best);
        if (!isSmall) siftAndSweep(endOfAll);
    }

    // Improves the current order.
    void improve(Index container, bool keepBorders, double work) {
        enter(container, keepBorders);
        if (m_size == 0) return;
        const double end = spent() + work;
        sweep();
        siftAndSweep(end);
    }

    void refresh(Index container) {
        for (Index layer = m_graph.firstLayer[container]; layer < m_graph.firstLayer[container + 1]; ++layer)
            m_ranks.refresh(layer);
    }

    [[nodiscard]] std::uint64_t crossings(Index container) { return m_counter.inContainer(container); }

  private:
    void enter(Index container, bool keepBorders) {
        m_first = m_graph.firstLayer[container];
        m_last = m_graph.lastLayer(container);
        m_keepBorders = keepBorders;
        m_size = m_graph.layerBegin[m_last + 1] - m_graph.layerBegin[m_first];
        for (Index i = m_graph.layerBegin[m_first]; i < m_graph.layerBegin[m_last + 1]; ++i)
            m_size += m_graph.outBegin[m_graph.order[i] + 1] - m_graph.outBegin[m_graph.order[i]];
        refresh(container);
        m_crossings.assign(m_last - m_first, unknown);
    }

    enum class Walk : std::uint8_t { depthFirst, depthFirstFromEnd, breadthFirst };

    // Initial order: that of a walk along the edges.
    void walkThrough(Walk walk) {
        m_isSeen.resize(m_graph.vertexCount(), 0);
        std::vector<Index> next(m_graph.layerBegin.begin() + m_first,
                                m_graph.layerBegin.begin() + m_last + 1);
        for (const Index start : m_starts) {
            m_way.assign(1, start);
            for (std::size_t head = 0; head < m_way.size();) {
                const bool isDepthFirst = walk != Walk::breadthFirst;
                const Index vertex = isDepthFirst ? m_way.back() : m_way[head];
                if (isDepthFirst)
                    m_way.pop_back();
                else
                    ++head;
                if (m_isSeen[vertex] != 0) continue;
                m_isSeen[vertex] = 1;
                m_graph.order[next[m_graph.layer[vertex] - m_first]++] = vertex;
                addNeighbours(vertex, walk);
            }
        }
        for (const Index vertex : m_starts)
            m_isSeen[vertex] = 0;
        for (Index layer = m_first; layer <= m_last; ++layer)
            settle(layer);
    }

    // The stack of a depth-first walk reverses its entries, so neighbours are pushed in reverse: they then
    // keep the document's order.
    void addNeighbours(Index vertex, Walk walk) {
        const auto add = [&](Index next) {
            if (m_isSeen[next] == 0) m_way.push_back(next);
        };
        const auto turnFrom = [&](std::size_t begin) {
            if (walk == Walk::depthFirst)
                std::reverse(m_way.begin() + static_cast<std::ptrdiff_t>(begin), m_way.end());
        };
        const std::size_t heads = m_way.size();
        for (Index i = m_graph.outBegin[vertex]; i < m_graph.outBegin[vertex + 1]; ++i)
            add(m_graph.outHeads[i].vertex);
        turnFrom(heads);
        const std::size_t tails = m_way.size();
        for (Index i = m_graph.inBegin[vertex]; i < m_graph.inBegin[vertex + 1]; ++i)
            add(m_graph.inTails[i].vertex);
        turnFrom(tails);
    }

    // Updates what depends on the layer's order.
    void settle(Index layer) {
        const Index begin = m_graph.layerBegin[layer];
        for (Index i = begin; i < m_graph.layerBegin[layer + 1]; ++i)
            m_graph.place[m_graph.order[i]] = i - begin;
        m_ranks.refresh(layer);
        if (layer > m_first) m_crossings[layer - 1 - m_first] = unknown;
        if (layer < m_last) m_crossings[layer - m_first] = unknown;
    }

    // Runs a few sweeps and keeps the best order.
    void sweep() {
        // Bounds the time, together with the number of failures below.
        constexpr int maxWalks = 8;
        m_bestCrossings = countAll();
        keep();
        int failures = 0;
        for (int i = 0; i < maxWalks && m_bestCrossings > 0 && failures < 3 && !m_cancel.isCancelled(); ++i) {
            sweepOnce(i % 2 == 0, i % 4 >= 2);
            const std::uint64_t crossings = countAll();
            ++failures;
            if (crossings >= m_bestCrossings) continue;
            // A gain below one percent is kept, but does not prolong the search.
            if (crossings < m_bestCrossings - m_bestCrossings / 100) failures = 0;
            m_bestCrossings = crossings;
            keep();
        }
        restore(m_best);
    }

    // Improves the best order until the work is spent.
    void siftAndSweep(double end) {
        std::uint64_t crossings = m_bestCrossings;
        bool isForwards = true;
        for (int failures = 0; failures < 12 && m_bestCrossings > 0; isForwards = !isForwards) {
            crossings -= sift(isForwards, end);
            ++failures;
            if (crossings < m_bestCrossings) {
                m_bestCrossings = crossings;
                keep();
                failures = 0;
            }
            if (m_bestCrossings == 0 || isOver(end)) break;
            sweepOnce(isForwards, failures % 2 == 1);
            crossings = countAll();
        }
        restore(m_best);
    }

    void sweepOnce(bool isForwards, bool mayFlip) {
        for (Index k = 1; k <= m_last - m_first; ++k)
            reorder(isForwards ? m_first + k : m_last - k, isForwards, mayFlip);
        // In comparisons, as sifting counts its work: ten for each vertex and edge.
        m_sweepWork += static_cast<double>(m_size) * 10;
    }

    [[nodiscard]] double spent() const { return static_cast<double>(m_sifting.work()) + m_sweepWork; }
    [[nodiscard]] bool isOver(double end) { return spent() > end || m_cancel.isCancelled(); }

    [[nodiscard]] bool isKept(Index layer) const {
        return m_keepBorders && (layer == m_first || layer == m_last);
    }

    // Sorts by the mean rank of the neighbours in the layer before, or after. Vertices without neighbours
    // keep their places.
    void reorder(Index layer, bool isForwards, bool mayFlip) {
        if (isKept(layer)) return;
        m_sorted.clear();
        m_stops.clear();
        const Index begin = m_graph.layerBegin[layer];
        for (Index i = begin; i < m_graph.layerBegin[layer + 1]; ++i) {
            const Index vertex = m_graph.order[i];
            const double mean = isForwards ? meanOfTails(vertex) : meanOfHeads(vertex);
            if (mean < 0) continue;
            m_stops.push_back(i);
            // With mayFlip, ties are broken in another order, which can lead out of a local minimum.
            m_sorted.push_back({mean, mayFlip ? m_graph.layerBegin[layer + 1] - i : i, vertex});
        }
        std::sort(m_sorted.begin(), m_sorted.end(), [](const Sorted& a, const Sorted& b) {
            return a.mean != b.mean ? a.mean < b.mean : a.place < b.place;
        });
        bool hasChanged = false;
        for (std::size_t i = 0; i < m_stops.size(); ++i) {
            hasChanged = hasChanged || m_graph.order[m_stops[i]] != m_sorted[i].vertex;
            m_graph.order[m_stops[i]] = m_sorted[i].vertex;
        }
        if (hasChanged) settle(layer);
    }

    [[nodiscard]] double meanOfTails(Index vertex) const {
        const Index begin = m_graph.inBegin[vertex];
        const Index end = m_graph.inBegin[vertex + 1];
        double sum = 0;
        for (Index i = begin; i < end; ++i)
            sum += m_ranks.ofTail(m_graph.inTails[i]);
        return begin == end ? -1 : sum / (end - begin);
    }
    [[nodiscard]] double meanOfHeads(Index vertex) const {
        const Index begin = m_graph.outBegin[vertex];
        const Index end = m_graph.outBegin[vertex + 1];
        double sum = 0;
        for (Index i = begin; i < end; ++i)
            sum += m_ranks.ofHead(m_graph.outHeads[i]);
        return begin == end ? -1 : sum / (end - begin);
    }

    // Sifts layer by layer until nothing changes or the work is spent. Returns
    // the number of crossings removed.
    std::uint64_t sift(bool isForwards, double end) {
        const Index count = m_last - m_first + 1;
        std::uint64_t gained = 0;
        m_isStale.assign(count, 1);
        for (bool hasGained = true; hasGained && !isOver(end); isForwards = !isForwards) {
            hasGained = false;
            for (Index k = 0; k < count; ++k) {
                const Index layer = isForwards ? k : count - 1 - k;
                if (m_isStale[layer] == 0 || isKept(m_first + layer) || isOver(end)) continue;
                m_isStale[layer] = 0;
                const std::uint64_t gain = m_sifting.sift(m_first + layer, siftingReach);
                if (gain == 0) continue;
                settle(m_first + layer);
                gained += gain;
                hasGained = true;
                m_isStale[layer] = 1;
                if (layer > 0) m_isStale[layer - 1] = 1;
                if (layer + 1 < count) m_isStale[layer + 1] = 1;
            }
        }
        return gained;
    }

    // Counts again only next to layers that have changed since the last call.
    [[nodiscard]] std::uint64_t countAll() {
        std::uint64_t count = 0;
        for (Index layer = m_first; layer < m_last; ++layer) {
            std::uint64_t& crossings = m_crossings[layer - m_first];
            if (crossings == unknown) crossings = m_counter.after(layer);
            count += crossings;
        }
        return count;
    }

    void keep() {
        m_best.assign(m_graph.order.begin() + m_graph.layerBegin[m_first],
                      m_graph.order.begin() + m_graph.layerBegin[m_last + 1]);
    }

    void restore(const std::vector<Index>& order) {
        auto kept = order.begin();
        for (Index layer = m_first; layer <= m_last; ++layer) {
            const auto begin = m_graph.order.begin() + m_graph.layerBegin[layer];
            const auto end = m_graph.order.begin() + m_graph.layerBegin[layer + 1];
            const bool hasChanged = !std::equal(begin, end, kept);
            std::copy_n(kept, end - begin, begin);
            kept += end - begin;
            if (hasChanged) settle(layer);
        }
    }

    struct Sorted {
        double mean;
        Index place;
        Index vertex;
    };

    LayeredGraph& m_graph;
    const CancelToken& m_cancel;
    PortRanks m_ranks;
    CrossingCounter m_counter;
    Sifting m_sifting;
    Index m_first = 0;
    Index m_last = 0;
    bool m_keepBorders = false;
    std::size_t m_size = 0;
    static constexpr std::uint64_t unknown = std::numeric_limits<std::uint64_t>::max();
    std::vector<std::uint64_t> m_crossings;  // after each of its layers
    std::uint64_t m_bestCrossings = 0;
    std::vector<Index> m_best;
    double m_sweepWork = 0;
    std::vector<char> m_isStale;  // layers that are worth sifting
    std::vector<char> m_isSeen;
    std::vector<Index> m_way;
    std::vector<Index> m_starts;  // where walks start, in this order
    std::vector<Sorted> m_sorted;
    std::vector<Index> m_stops;
};

// Goes through the containers, inwards and outwards.
class NestedOrdering {
  public:
    NestedOrdering(LayeredGraph& graph, const Nesting& nesting, const CancelToken& cancel)
        : m_graph(graph),
          m_nesting(nesting),
          m_cancel(cancel),
          m_inner(graph, nesting, cancel),
          m_outerEnd(graph.hierarchicalPorts.size()) {
        for (Index i = 0; i < graph.edges.size(); ++i) {
            if (graph.edges[i].tailPort != nothing) m_outerEnd[graph.edges[i].tailPort] = {i, true};
            if (graph.edges[i].headPort != nothing) m_outerEnd[graph.edges[i].headPort] = {i, false};
        }
    }

    void run() {
        const Index count = m_nesting.containerCount();
        for (Index i = count; i-- > 0 && !m_cancel.isCancelled();)
            m_inner.begin(i, workOn(i) * (m_graph.hierarchicalPorts.empty() ? 1 : 0.5));
        if (m_graph.hierarchicalPorts.empty() || m_cancel.isCancelled()) return;
        std::uint64_t best = std::numeric_limits<std::uint64_t>::max();
        std::vector<Index> bestOrder;
        for (int round = 0; round < rounds; ++round) {
            if (round > 0)
                for (Index i = count; i-- > 0;)
                    m_inner.improve(i, false, workOn(i) / (4 * rounds));
            for (Index i = 0; i < count && !m_cancel.isCancelled(); ++i)
                goInto(i);
            const std::uint64_t crossings = crossingsOf(m_graph, m_nesting);
            if (crossings >= best) continue;
            best = crossings;
            bestOrder = m_graph.order;
            if (best == 0) break;
        }
        m_graph.order = bestOrder;
        for (Index layer = 0; layer < m_graph.firstLayer.back(); ++layer)
            for (Index i = 0; i < m_graph.sizeOf(layer); ++i)
                m_graph.place[m_graph.at(layer, i)] = i;
    }

  private:
    struct OuterEnd {
        Index edge = nothing;
        bool isTail = false;
    };

    // The container's share.
    [[nodiscard]] double workOn(Index container) const {
        const Index begin = m_graph.layerBegin[m_graph.firstLayer[container]];
        const double vertices = m_graph.layerBegin[m_graph.firstLayer[container + 1]] - begin;
        const double all = m_graph.vertexCount();
        const double small = std::min(smallDiagram / all, 1.0);
        return vertices * (workPerVertex + freeWork * small * small / all);
    }

    void goInto(Index container) {
        if (container == 0) return;
        const Index first = m_graph.firstLayer[container];
        const Index last = m_graph.lastLayer(container);
        if (m_graph.sizeOf(first) + m_graph.sizeOf(last) == 0) return;
        orderBorder(first);
        orderBorder(last);
        m_inner.improve(container, true, workOn(container) / (4 * rounds));
    }

    // Orders hierarchical ports as their lines continue outside. Ports without an outside keep their places.
    void orderBorder(Index layer) {
        m_points.clear();
        m_stops.clear();
        const Index begin = m_graph.layerBegin[layer];
        for (Index i = begin; i < m_graph.layerBegin[layer + 1]; ++i) {
            const OuterEnd end = m_outerEnd[m_graph.order[i] - m_graph.boxCount];
            if (end.edge == nothing) continue;
            SideKey key = sideKey(m_graph, m_inner.ranks(), end.edge, end.isTail);
            key.edge = i - begin;
            m_points.emplace_back(key, m_graph.order[i]);
            m_stops.push_back(i);
        }
        std::sort(m_points.begin(), m_points.end());
        for (std::size_t i = 0; i < m_stops.size(); ++i)
            m_graph.order[m_stops[i]] = m_points[i].second;
        for (Index i = begin; i < m_graph.layerBegin[layer + 1]; ++i)
            m_graph.place[m_graph.order[i]] = i - begin;
    }

    LayeredGraph& m_graph;
    const Nesting& m_nesting;
    const CancelToken& m_cancel;
    ContainerOrdering m_inner;
    std::vector<OuterEnd> m_outerEnd;  // of each hierarchical port
    std::vector<std::pair<SideKey, Index>> m_points;
    std::vector<Index> m_stops;
};

}  // namespace

void orderLayers(LayeredGraph& graph, const Nesting& nesting, const CancelToken& cancel) {
    NestedOrdering(graph, nesting, cancel).run();
}

std::uint64_t crossingsOf(const LayeredGraph& graph, const Nesting& nesting) {
    const PortRanks ranks(graph, nesting);
    CrossingCounter counter(graph, ranks);
    std::uint64_t count = 0;
    for (Index container = 0; container < nesting.containerCount(); ++container)
        count += counter.inContainer(container);
    return count;
}

}  // namespace tessera_draw::placing
