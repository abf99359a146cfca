// Breaks links that skip layers into chains of "dummy" nodes, one a layer.
//
// Needs:  the layers, the dummy links between groups.
// Leaves: a link inside a group that goes down joins neighbouring layers. A link between groups climbs
//         out of the group of its to end up to layer 0 of each group that it leaves, and out of that of
//         its from end down to the last layer of each.
// Order:  behind the hierarchical levels, before the interfaces.
// Fails:  with the false code, reported, when the diagram would grow beyond a limit; what was made until
//         then stays. A link with a missing end takes no part, nor does one between groups without a
//         dummy link.
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/check.h"
#include "core/view_model/graph.h"
#include "core/view_model/passes/marked_groups.h"
#include "core/view_model/shown_id.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/graph");

using basekit2::error_code_t;

namespace {

using NodePtr = std::shared_ptr<Node>;
using LinkPtr = std::shared_ptr<Link>;

// Puts dummies on links, within the graph's limits.
class DummyMaker {
  public:
    explicit DummyMaker(Graph& graph) : m_graph(graph) {}

    // On the link, into layer `level` of the group. Both are null beyond a limit, and after a cancellation.
    Graph::NodeAndLink insert(const LinkPtr& link, const NodePtr& group, std::int32_t level) {
        HierarchicalLevelManager& layers = m_graph.m_levelManagers[group];
        const std::size_t before = layers.m_levels.size();
        const std::size_t needed = level < 0 ? 0 : static_cast<std::size_t>(level) + 1;
        m_newLayers += needed > before ? needed - before : 0;
        if (m_newLayers > m_graph.m_limits.maxElements || isCancelled()) return {};
        Graph::NodeAndLink made = m_graph.insertDummyNode(link);
        if (!made.first) return {};
        (void)made.first->addToGroup(group);
        (void)layers.setLevel(made.first, level, false);
        return made;
    }

    // Why the last insert on the link has failed.
    [[nodiscard]] std::string problem(const Link& link) const {
        const LayoutLimits& limits = m_graph.m_limits;
        const std::string text =
            "Link <" + shownId(link.m_id) + "> has no room for its dummy nodes: the diagram may have ";
        if (m_newLayers > limits.maxElements)
            return text + std::to_string(limits.maxElements) + " more layers";
        if (m_graph.m_nodeList.size() + m_graph.m_linkList.size() + 2 > limits.maxElements)
            return text + std::to_string(limits.maxElements) + " nodes and links";
        return text + std::to_string(limits.maxIdBytes) + " bytes in the ids of its nodes and links";
    }

  private:
    static constexpr std::size_t insertsUnasked = 16'384;

    bool isCancelled() {
        if (++m_inserts % insertsUnasked == 0 && m_graph.m_progress && m_graph.m_progress->isCancelled())
            m_graph.m_isCancelled = true;
        return m_graph.m_isCancelled;
    }

    Graph& m_graph;
    std::size_t m_newLayers = 0;
    std::size_t m_inserts = 0;
};

// The climbs of links out of groups. A climb goes through all groups on its way and puts dummies into those
// that need some; here it passes by the groups from which it would go on with nothing done.
class Climbs {
  public:
    explicit Climbs(Graph& graph) : m_graph(graph), m_dummies(graph), m_up(graph), m_down(graph) {
        for (const Node* group : m_up.groups()) {
            const std::int32_t level = group->getHierarchicalLevel();
            const std::int32_t last = lastLevel(group->m_group);
            if (level > 0) m_up.mark(group);
            if (level != last)
                m_down.mark(group);
            else
                m_inLastLayer[group->m_group.get()].push_back(group);
        }
    }

    // From the node up to layer 0 of each group around it, until `stop`. False beyond a limit.
    bool up(const LinkPtr& link, const NodePtr& node, const NodePtr& stop) {
        for (Place at(link, node); at.group != stop;) {
            while (at.level > 0)
                if (!insert(at, at.node->getHierarchicalLevel() - 1)) return false;
            if (!leave(at, stop, m_up)) break;
        }
        return true;
    }

    // From the node down to the last layer of each group around it.
    bool down(const LinkPtr& link, const NodePtr& node, const NodePtr& stop) {
        for (Place at(link, node); at.group != stop;) {
            while (at.level != lastLevel(at.group))
                if (!insert(at, at.node->getHierarchicalLevel() + 1)) return false;
            if (!leave(at, stop, m_down)) break;
        }
        return true;
    }

    [[nodiscard]] std::string problem(const Link& link) const { return m_dummies.problem(link); }

  private:
    struct Place {
        Place(LinkPtr splitLink, const NodePtr& start)
            : link(std::move(splitLink)),
              node(start),
              group(start->m_group),
              level(start->getHierarchicalLevel()) {}
        LinkPtr link;
        NodePtr node;  // the last one made, in whatever group
        NodePtr group;
        std::int32_t level;
    };

    [[nodiscard]] std::int32_t lastLevel(const NodePtr& group) const {
        const auto manager = m_graph.m_levelManagers.find(group);
        if (manager == m_graph.m_levelManagers.end()) return -1;
        return static_cast<std::int32_t>(manager->second.m_levels.size()) - 1;
    }

    bool insert(Place& at, std::int32_t level) {
        const std::int32_t last = lastLevel(at.group);
        auto [node, half] = m_dummies.insert(at.link, at.group, level);
        if (!node) return false;
        at.node = std::move(node);
        at.link = std::move(half);
        at.level = at.node->getHierarchicalLevel();
        if (lastLevel(at.group) == last) return true;
        for (const Node* group : std::exchange(m_inLastLayer[at.group.get()], {}))
            m_down.mark(group);
        return true;
    }

    // Goes out of a marked group to where that is, or to `stop` at most. False when there is none on the way.
    static bool leave(Place& at, const NodePtr& stop, const MarkedGroups& marked) {
        const Node* left = marked.innermostMarked(at.group.get());
        if (!left) return false;
        const bool isInsideStop = marked.contains(stop.get(), at.group.get());
        if (isInsideStop && !marked.contains(stop.get(), left->m_group.get())) return false;
        at.level = left->getHierarchicalLevel();
        at.group = left->m_group;
        return true;
    }

    Graph& m_graph;
    DummyMaker m_dummies;
    MarkedGroups m_up;    // those that are not in layer 0 of the group around them
    MarkedGroups m_down;  // at least those that are not in its last layer
    std::unordered_map<const Node*, std::vector<const Node*>> m_inLastLayer;  // of the groups not in m_down
};

}  // namespace

error_code_t Graph::addDummyNodesForLabels() {
    // A link that is visited for a group has both ends there from the start: what is split meanwhile for a
    // dummy link stands before it in the list.
    std::unordered_map<const Node*, std::vector<LinkPtr>> linksInside;
    for (const auto& link : m_linkList)
        if (link->m_from && link->m_to && link->m_from->m_group == link->m_to->m_group)
            linksInside[link->m_to->m_group.get()].push_back(link);
    DummyMaker dummies(*this);
    for (const auto& group : m_groups) {
        for (const auto& link : linksInside[group.get()]) {
            const LinkPtr& split = link->m_type == "dummy" ? link->m_realLink : link;
            if (!split || !split->m_from || !split->m_to) continue;
            std::int32_t gap = link->m_to->getHierarchicalLevel() - link->m_from->getHierarchicalLevel() - 1;
            for (; gap > 0; --gap) {
                if (dummies.insert(split, group, link->m_to->getHierarchicalLevel() - 1).first) continue;
                m_isCutShort = !m_isCancelled;
                if (m_isCutShort) TESSERA_ALERT(dummies.problem(*split));
                return error_code_t::false_code();
            }
        }
    }
    return addDummyNodesForLabelsOnCrosslevelLinks();
}

error_code_t Graph::addDummyNodesForLabelsOnCrosslevelLinks() {
    std::optional<Climbs> climbs;  // made when it is needed
    const auto links = m_linkList;
    for (const auto& link : links) {
        if (!link->m_from || !link->m_to || link->m_from->m_group == link->m_to->m_group) continue;
        const LinkPtr sideBySide = link->m_dummyLink;
        if (!sideBySide || !sideBySide->m_from || !sideBySide->m_to) continue;
        if (!climbs) climbs.emplace(*this);
        const bool isDone = climbs->up(link, link->m_to, sideBySide->m_to->m_group) &&
                            climbs->down(link, link->m_from, sideBySide->m_from->m_group);
        if (isDone) continue;
        m_isCutShort = !m_isCancelled;
        if (m_isCutShort) TESSERA_ALERT(climbs->problem(*link));
        return error_code_t::false_code();
    }
    return {};
}

}  // namespace tessera_1::view_model
