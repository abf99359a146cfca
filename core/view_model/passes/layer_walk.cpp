#include "core/view_model/passes/layer_walk.h"

#include <algorithm>
#include <compare>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <span>
#include <unordered_map>
#include <utility>

namespace tessera_1::view_model {
namespace {

using Number = std::uint32_t;
using Layer = std::vector<Number>;

std::span<const Number> childrenOf(const LayerGraph& graph, Number node) {
    const auto* begin = graph.children.data();
    return {begin + graph.childrenStart[node], begin + graph.childrenStart[node + 1]};
}

// The nodes that can be reached from the roots.
struct Reached {
    Layer nodes;
    Layer order;  // each behind all of its parents; without those on cycles or behind them
};

Reached reach(const LayerGraph& graph) {
    const std::size_t size = graph.childrenStart.size() - 1;
    std::vector<Number> parents(size, 0);
    std::vector<bool> isReached(size, false);
    Reached reached{graph.roots, graph.roots};
    for (const Number root : graph.roots)
        isReached[root] = true;
    for (std::size_t i = 0; i < reached.nodes.size(); ++i) {
        for (const Number child : childrenOf(graph, reached.nodes[i])) {
            ++parents[child];
            if (isReached[child]) continue;
            isReached[child] = true;
            reached.nodes.push_back(child);
        }
    }
    for (std::size_t i = 0; i < reached.order.size(); ++i)
        for (const Number child : childrenOf(graph, reached.order[i]))
            if (--parents[child] == 0) reached.order.push_back(child);
    return reached;
}

// A node comes to stay in a layer when the first of its parents that stay in the layer above is read, and so
// the order in a layer follows from that of the layer above, whatever passed through on its way further down.
// `rootsOf` has the root of each node's way down, which is known for the roots.
std::vector<Layer> layersInOrder(const LayerGraph& graph, Layer roots, const Layer& order,
                                 std::vector<Number>& rootsOf) {
    std::vector<Number> depth(graph.childrenStart.size() - 1, 0);
    for (const Number node : order)
        for (const Number child : childrenOf(graph, node))
            depth[child] = std::max(depth[child], depth[node] + 1);
    std::vector<Layer> layers;
    std::vector<bool> isPlaced(depth.size(), false);
    for (Layer next = std::move(roots); !next.empty();) {
        layers.push_back(std::move(next));
        next.clear();
        for (const Number node : layers.back()) {
            for (const Number child : childrenOf(graph, node)) {
                if (depth[child] != layers.size() || isPlaced[child]) continue;
                isPlaced[child] = true;
                rootsOf[child] = rootsOf[node];
                next.push_back(child);
            }
        }
    }
    return layers;
}

// The parts of what can be reached that no link connects with each other. What one part does in the sweeps
// does not depend on the others.
class Parts {
  public:
    Parts(const LayerGraph& graph, const Reached& reached) : m_above(graph.childrenStart.size() - 1) {
        std::iota(m_above.begin(), m_above.end(), 0U);
        for (const Number node : reached.nodes)
            for (const Number child : childrenOf(graph, node))
                m_above[of(child)] = of(node);
        m_isCyclic.resize(m_above.size(), true);
        std::vector<Number> missing(m_above.size(), 0);  // in the order
        for (const Number node : reached.nodes)
            ++missing[of(node)];
        for (const Number node : reached.order)
            --missing[of(node)];
        for (const Number node : reached.nodes)
            m_isCyclic[of(node)] = missing[of(node)] > 0;
    }

    // The same number for all nodes of a part.
    Number of(Number node) {
        while (m_above[node] != node) {
            m_above[node] = m_above[m_above[node]];
            node = m_above[node];
        }
        return node;
    }
    bool isCyclic(Number node) { return m_isCyclic[of(node)]; }

  private:
    std::vector<Number> m_above;
    std::vector<bool> m_isCyclic;
};

// Where a node comes to stay. Of two nodes in a layer the one whose way down started at the earlier root
// comes first; ways from one root are told apart by the order of their arrival.
struct Stay {
    std::int64_t level;
    Number root;
    std::uint64_t arrival;
    Number node;

    friend auto operator<=>(const Stay&, const Stay&) = default;
};

// The sweeps of one part that has a cycle. There are up to as many as the graph has nodes, so this is kept
// lean: all that is known of a node is the number of its last arrival in any layer, and the root, as its
// place among the roots, from which its way there started.
class CyclicWalk {
  public:
    using Arrival = std::uint64_t;
    static constexpr Arrival nowhere = 0;

    // `arrivals` and `rootsOf` have an entry a node of the graph; the walk uses those of its part, `nodes`.
    CyclicWalk(const LayerGraph& graph, Number lastLayer, const Layer& nodes, const Layer& roots,
               std::vector<Arrival>& arrivals, std::vector<Number>& rootsOf)
        : m_graph(graph),
          m_lastLayer(lastLayer),
          m_nodes(nodes),
          m_hasManyRoots(roots.size() > 1),
          m_arrivals(arrivals),
          m_rootsOf(rootsOf),
          m_layer(nodes.size() + 1),
          m_next(nodes.size() + 1),
          m_size(roots.size()) {
        std::copy(roots.begin(), roots.end(), m_layer.begin());
        settle();
        remember();
    }

    void run(std::vector<Stay>& stays) {
        while (m_level < m_lastLayer) {
            ++m_level;
            if (m_hasManyRoots)
                sweep<true>();
            else
                sweep<false>();
            if (!m_hasJumped) jump();
        }
        for (const Number node : m_nodes) {
            const Arrival arrival = m_arrivals[node];
            if (arrival == nowhere) continue;
            const auto behind =
                std::upper_bound(m_starts.begin(), m_starts.end(), arrival,
                                 [](Arrival value, const Start& start) { return value < start.first; });
            const Number root = m_rootsOf[m_hasManyRoots ? node : m_nodes.front()];
            stays.push_back({std::prev(behind)->level, root, arrival, node});
        }
    }

  private:
    struct Start {
        Arrival first;  // of those in the layer
        std::int64_t level;
    };

    [[nodiscard]] std::span<const Number> layer() const { return {m_layer.data(), m_size}; }

    // The nodes of the present layer arrive in it.
    void settle() {
        m_starts.push_back({m_nextArrival, m_level});
        for (const Number node : layer())
            m_arrivals[node] = m_nextArrival++;
    }

    // Reads the present layer into the next one. There is a cycle below, so that one is never empty.
    template <bool hasManyRoots>
    void sweep() {
        const Arrival start = m_nextArrival;
        m_starts.push_back({start, m_level});
        Arrival nextArrival = start;
        Number* next = m_next.data();
        Arrival* const arrivals = m_arrivals.data();
        Number* const rootsOf = m_rootsOf.data();
        for (const Number node : layer()) {
            if (arrivals[node] >= start) continue;  // it has just moved on
            for (const Number child : childrenOf(m_graph, node)) {
                const Arrival before = arrivals[child];
                const bool isNew = before < start;  // whether it is cannot be foretold: no branch
                *next = child;
                next += isNew ? 1 : 0;
                arrivals[child] = isNew ? nextArrival : before;
                nextArrival += isNew ? 1 : 0;
                if constexpr (hasManyRoots) rootsOf[child] = isNew ? rootsOf[node] : rootsOf[child];
            }
        }
        m_nextArrival = nextArrival;
        m_size = static_cast<std::size_t>(next - m_next.data());
        std::swap(m_layer, m_next);
    }

    void remember() {
        m_seen.assign(layer().begin(), layer().end());
        m_seenRoots.clear();
        if (!m_hasManyRoots) return;
        for (const Number node : layer())
            m_seenRoots.push_back(m_rootsOf[node]);
    }

    [[nodiscard]] bool isAsRemembered() const {
        if (!std::equal(layer().begin(), layer().end(), m_seen.begin(), m_seen.end())) return false;
        for (std::size_t i = 0; i < m_seenRoots.size(); ++i)
            if (m_rootsOf[m_layer[i]] != m_seenRoots[i]) return false;
        return true;
    }

    // A layer depends on nothing but the one above it. When it has been there before, whole rounds are left
    // out, but for one: it gives every node its place. What a layer is compared with is renewed at ever
    // longer intervals, so a repetition is found soon after it begins.
    void jump() {
        ++m_sinceSeen;
        if (isAsRemembered()) {
            const std::int64_t rounds = (m_lastLayer - m_level) / m_sinceSeen;
            if (rounds > 1) m_level += (rounds - 1) * m_sinceSeen;
            settle();
            m_hasJumped = true;
        } else if (m_sinceSeen == m_interval) {
            remember();
            m_interval *= 2;
            m_sinceSeen = 0;
        }
    }

    const LayerGraph& m_graph;
    const std::int64_t m_lastLayer;
    const Layer& m_nodes;
    const bool m_hasManyRoots;
    std::vector<Arrival>& m_arrivals;
    std::vector<Number>& m_rootsOf;
    std::int64_t m_level = 0;
    Layer m_layer;  // the present one is its first m_size nodes; there is room for all, and one more
    Layer m_next;
    std::size_t m_size;
    Layer m_seen;
    Layer m_seenRoots;
    Arrival m_nextArrival = nowhere + 1;
    std::vector<Start> m_starts;  // of the layers that were swept into, in that order
    std::int64_t m_sinceSeen = 0;
    std::int64_t m_interval = 1;
    bool m_hasJumped = false;
};

struct Part {
    Layer nodes;
    Layer roots;
};

Layers layersWithCycles(const LayerGraph& graph, Number lastLayer, const Reached& reached) {
    const std::size_t size = graph.childrenStart.size() - 1;
    Parts parts(graph, reached);
    Part acyclic;
    std::unordered_map<Number, Part> cyclic;  // by the number of the part
    std::vector<Number> rootsOf(size, 0);
    for (std::size_t i = 0; i < graph.roots.size(); ++i) {
        const Number root = graph.roots[i];
        rootsOf[root] = static_cast<Number>(i);
        (parts.isCyclic(root) ? cyclic[parts.of(root)] : acyclic).roots.push_back(root);
    }
    for (const Number node : reached.nodes)
        if (parts.isCyclic(node)) cyclic[parts.of(node)].nodes.push_back(node);
    for (const Number node : reached.order)
        if (!parts.isCyclic(node)) acyclic.nodes.push_back(node);

    std::vector<Stay> stays;
    const auto layersOfAcyclic = layersInOrder(graph, std::move(acyclic.roots), acyclic.nodes, rootsOf);
    for (std::size_t level = 0; level < layersOfAcyclic.size(); ++level)
        for (const Number node : layersOfAcyclic[level])
            stays.push_back({static_cast<std::int64_t>(level), rootsOf[node], stays.size(), node});
    std::vector<CyclicWalk::Arrival> arrivals(size, CyclicWalk::nowhere);
    for (const auto& [number, part] : cyclic)
        CyclicWalk(graph, lastLayer, part.nodes, part.roots, arrivals, rootsOf).run(stays);
    std::sort(stays.begin(), stays.end());
    Layers layers;
    layers.isBroken = true;
    layers.nodes.resize(static_cast<std::size_t>(lastLayer) + 1);
    for (const Stay& stay : stays)
        layers.nodes[static_cast<std::size_t>(stay.level)].push_back(stay.node);
    return layers;
}

}  // namespace

Layers walkLayers(const LayerGraph& graph, Number lastLayer) {
    if (graph.roots.empty()) return {};
    const Reached reached = reach(graph);
    if (reached.order.size() < reached.nodes.size()) return layersWithCycles(graph, lastLayer, reached);
    std::vector<Number> rootsOf(graph.childrenStart.size() - 1, 0);
    return {layersInOrder(graph, graph.roots, reached.order, rootsOf), false};
}

}  // namespace tessera_1::view_model
