#include "core/view_model/passes/layer_walk.h"

#include <algorithm>
#include <compare>
#include <cstddef>
#include <numeric>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "core/view_model/passes/layer_sweeps.h"

namespace tessera_1::view_model {
namespace {

using Number = std::uint32_t;
using Layer = std::vector<Number>;

// The nodes that can be reached from the roots.
struct Reached {
    Layer nodes;
    Layer order;  // each after all of its parents; without those on cycles or after them
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

// A node gets its final place in a layer when the first of its parents in the layer above is read. So the order
// in a layer follows from that of the layer above, whatever nodes passed through on their way further down.
// `rootsOf` holds the root of the path to each node; it is set for the roots.
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

// Connected components: a number for each node, the same for all nodes of one component.
class Components {
  public:
    // Of the graph, or of what is left without the nodes in `leftOut`.
    Components(const LayerGraph& graph, const Layer& nodes, const std::vector<bool>& leftOut)
        : m_above(graph.childrenStart.size() - 1) {
        std::iota(m_above.begin(), m_above.end(), 0U);
        for (const Number node : nodes) {
            if (leftOut[node]) continue;
            for (const Number child : childrenOf(graph, node))
                if (!leftOut[child]) m_above[of(child)] = of(node);
        }
    }

    Number of(Number node) {
        while (m_above[node] != node) {
            m_above[node] = m_above[m_above[node]];
            node = m_above[node];
        }
        return node;
    }

  private:
    std::vector<Number> m_above;
};

// Final position of a node. Disconnected components are swept independently, and merged by these rules: of two
// nodes in a layer, the one whose path started at the earlier root comes first; after one root, the one whose
// path passed the earlier place of the layer in which a component was split; then whichever arrived earlier.
struct FinalRank {
    std::int64_t level = -1;  // nowhere
    Number root = 0;
    Number place = 0;
    std::uint64_t arrival = 0;
    Number node = 0;

    friend auto operator<=>(const FinalRank&, const FinalRank&) = default;
};

// Layers of a graph that has cycles.
class CyclicLayers {
  public:
    CyclicLayers(const LayerGraph& graph, Number lastLayer, const Reached& reached,
                 const relay2::IProgress* progress)
        : m_graph(graph),
          m_lastLayer(lastLayer),
          m_progress(progress),
          m_isAcyclic(graph.childrenStart.size() - 1, false),
          m_swept(m_isAcyclic.size()),
          m_ranks(m_isAcyclic.size()) {
        for (const Number node : reached.order)
            m_isAcyclic[node] = true;
        findParts(reached);
    }

    Layers run() {
        layOutWithoutCycles();
        Components cores(m_graph, m_reached, m_isAcyclic);
        for (const auto& [number, part] : m_cyclic)
            if (!layOut(part, cores)) m_isCancelled = true;
        Layers layers;
        layers.isBroken = true;
        layers.isCancelled = m_isCancelled;
        if (m_isCancelled) return layers;
        std::sort(m_ranks.begin(), m_ranks.end());
        layers.nodes.resize(static_cast<std::size_t>(m_lastLayer) + 1);
        for (const FinalRank& rank : m_ranks)
            if (rank.level >= 0) layers.nodes[static_cast<std::size_t>(rank.level)].push_back(rank.node);
        return layers;
    }

  private:
    struct Part {
        Layer nodes;
        Layer roots;
        Layer rootPlaces;  // among all roots
    };

    // A connected set of nodes on cycles or after them, and those of them that are in the first layer that no
    // node before the cycles passes.
    struct Core {
        Layer nodes;
        Layer first;
        Layer roots;   // of each of the first
        Layer places;  // of each of the first, in the whole layer; from 1
    };

    void findParts(const Reached& reached) {
        m_reached = reached.nodes;
        Components parts(m_graph, m_reached, std::vector<bool>(m_isAcyclic.size(), false));
        std::unordered_set<Number> cyclic;
        for (const Number node : m_reached)
            if (!m_isAcyclic[node]) cyclic.insert(parts.of(node));
        for (const Number node : m_reached)
            if (cyclic.contains(parts.of(node))) m_cyclic[parts.of(node)].nodes.push_back(node);
        for (std::size_t i = 0; i < m_graph.roots.size(); ++i) {
            const Number root = m_graph.roots[i];
            Part& part = cyclic.contains(parts.of(root)) ? m_cyclic[parts.of(root)] : m_acyclic;
            part.roots.push_back(root);
            part.rootPlaces.push_back(static_cast<Number>(i));
        }
        for (const Number node : reached.order)
            if (!cyclic.contains(parts.of(node))) m_acyclic.nodes.push_back(node);
    }

    void layOutWithoutCycles() {
        std::vector<Number> rootsOf(m_ranks.size(), 0);
        for (std::size_t i = 0; i < m_acyclic.roots.size(); ++i)
            rootsOf[m_acyclic.roots[i]] = m_acyclic.rootPlaces[i];
        const auto layers = layersInOrder(m_graph, m_acyclic.roots, m_acyclic.nodes, rootsOf);
        std::uint64_t arrival = 0;
        for (std::size_t level = 0; level < layers.size(); ++level)
            for (const Number node : layers[level])
                m_ranks[node] = {static_cast<std::int64_t>(level), rootsOf[node], 0, arrival++, node};
    }

    // False when it was cancelled.
    bool layOut(const Part& part, Components& cores) {
        Sweeps sweeps(m_graph, m_swept, part.roots, 0, part.nodes.size(), 1);
        if (!sweeps.run(m_lastLayer, &m_isAcyclic, m_progress)) return false;
        const auto rootOf = [&](Number node) { return part.rootPlaces[sweeps.wayOf(node)]; };
        std::unordered_map<Number, Core> coresHere;
        for (const Number node : part.nodes) {
            if (!m_isAcyclic[node]) coresHere[cores.of(node)].nodes.push_back(node);
            const std::int64_t level = sweeps.levelOf(node);
            if (level >= 0) m_ranks[node] = {level, rootOf(node), 0, m_swept.arrivals[node], node};
        }
        if (sweeps.level() == m_lastLayer) return true;
        Number place = 0;
        for (const Number node : sweeps.layer()) {
            Core& core = coresHere[cores.of(node)];
            core.first.push_back(node);
            core.roots.push_back(rootOf(node));
            core.places.push_back(++place);
        }
        for (const auto& [number, core] : coresHere)
            if (!core.first.empty() && !layOut(core, sweeps)) return false;
        return true;
    }

    bool layOut(const Core& core, const Sweeps& before) {
        Sweeps sweeps(m_graph, m_swept, core.first, before.level(), core.nodes.size(), before.nextArrival());
        if (!sweeps.run(m_lastLayer, nullptr, m_progress)) return false;
        for (const Number node : core.nodes) {
            const std::int64_t level = sweeps.levelOf(node);
            const Number way = sweeps.wayOf(node);
            if (level >= 0)
                m_ranks[node] = {level, core.roots[way], core.places[way], m_swept.arrivals[node], node};
        }
        return true;
    }

    const LayerGraph& m_graph;
    const Number m_lastLayer;
    const relay2::IProgress* const m_progress;
    std::vector<bool> m_isAcyclic;  // neither on a cycle nor after one
    SweptNodes m_swept;
    std::vector<FinalRank> m_ranks;  // of each node, and then in order
    Layer m_reached;
    Part m_acyclic;
    std::unordered_map<Number, Part> m_cyclic;
    bool m_isCancelled = false;
};

}  // namespace

Layers walkLayers(const LayerGraph& graph, Number lastLayer, const relay2::IProgress* progress) {
    if (graph.roots.empty()) return {};
    const Reached reached = reach(graph);
    if (reached.order.size() < reached.nodes.size())
        return CyclicLayers(graph, lastLayer, reached, progress).run();
    std::vector<Number> rootsOf(graph.childrenStart.size() - 1, 0);
    Layers layers;
    layers.nodes = layersInOrder(graph, graph.roots, reached.order, rootsOf);
    return layers;
}

}  // namespace tessera_1::view_model
