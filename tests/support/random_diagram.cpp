#include "tests/support/random_diagram.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/support/model_building.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::DataTransferTable;
using tessera_1::view_model::Graph;

class Maker {
  public:
    Maker(Graph& graph, std::uint64_t seed)
        : m_graph(graph),
          m_random(seed),
          m_isAcyclic(seed % 3 == 0),
          m_isTame(chance(30)),
          m_hasShortIds(chance(30)),
          m_doubledIds(chance(20) ? 10U : 0U),
          m_labels(below(4) * 30),
          m_maxDepth(below(m_isTame ? 3 : 7)) {}

    void run() {
        if (chance(10)) m_graph.m_displayMode = "size";
        makeNodes(size());
        std::vector<NodePtr> order = m_nodes;
        if (chance(60)) std::reverse(order.begin(), order.end());  // members before their groups
        if (chance(30)) std::shuffle(order.begin(), order.end(), m_random);
        for (const NodePtr& node : order)
            m_graph.addNode(node);
        const std::size_t links = below(m_nodes.size() + m_nodes.size() / 2 + 2);
        for (std::size_t i = 0; i < links; ++i)
            makeLink();
    }

  private:
    std::size_t below(std::size_t n) { return static_cast<std::size_t>(m_random() % n); }
    bool chance(std::size_t percent) { return below(100) < percent; }
    template <class T>
    const T& oneOf(const std::vector<T>& all) {
        return all[below(all.size())];
    }

    std::size_t size() {
        if (chance(75)) return 2 + below(11);
        return chance(70) ? 13 + below(13) : 26 + below(15);
    }

    // Of few parts, so that ids made from them often exist already.
    std::string shortId() {
        static const std::vector<std::string> pieces{"a", "b", "a_b", "b_a", "c"};
        static const std::vector<std::string> ends{"", "", "", "_dummy", "_label", "_info", "_dummy1"};
        std::string id = oneOf(pieces) + oneOf(ends);
        return chance(30) ? oneOf(pieces) + "_" + id : id;
    }
    std::string nodeId() {
        if (!m_nodes.empty() && chance(m_doubledIds)) return oneOf(m_nodes)->m_id;
        return m_hasShortIds ? shortId() : "n" + std::to_string(below(1000));
    }

    // In the order of a walk through the nesting, groups first.
    void makeNodes(std::size_t count) {
        std::vector<NodePtr> way;  // the groups around the place, outermost first
        while (m_nodes.size() < count) {
            way.resize(std::min(below(m_maxDepth + 1), way.size()));
            const NodePtr node = makeNode(nodeId());
            if (!way.empty()) {
                node->m_group = way.back();
                if (!chance(1)) way.back()->m_groupChildren.push_back(node);
            }
            if (chance(3)) node->m_type = "group";
            if (chance(10)) node->m_displayType = "interface";
            if (chance(40)) node->m_info = makeValues();
            m_nodes.push_back(node);
            way.push_back(node);
        }
    }

    InfoPtr makeValues() {
        auto info = makeInfo("info " + std::to_string(m_infos++));
        for (std::size_t rows = below(3); rows > 0; --rows)
            info->m_rowSet.rows.push_back({"row", chance(80) ? "1" : "", "/q"});
        return info;
    }

    void fill(DataTransferTable& table) {
        if (!chance(m_labels)) return;
        for (const char* mode : {"bandwidth", "size"})
            if (chance(80)) table[mode] = chance(95) ? makeValues() : nullptr;
    }

    void makeLink() {
        static const std::vector<std::string> directions{"none", "forward", "back", "both"};
        const auto link = std::make_shared<tessera_1::view_model::Link>();
        setEnds(*link);
        const auto& links = m_graph.m_linkList;
        if (!links.empty() && chance(m_doubledIds))
            link->m_id = oneOf(links)->m_id;
        else
            link->m_id = m_hasShortIds ? shortId() : "l" + std::to_string(below(1000));
        link->m_direction = oneOf(directions);
        fill(link->m_displayInfo.m_fromInfo);
        fill(link->m_displayInfo.m_toInfo);
        fill(link->m_displayInfo.m_totalInfo);
        m_graph.addLink(link);
    }

    // Members of one group, when there are two.
    void setEndsInOneGroup(tessera_1::view_model::Link& link) {
        std::vector<NodePtr> besides;
        for (const NodePtr& node : m_nodes)
            if (node != link.m_from && node->m_group == link.m_from->m_group) besides.push_back(node);
        if (besides.empty()) return;
        link.m_to = oneOf(besides);
        if (m_isAcyclic && !isBefore(link.m_from, link.m_to)) std::swap(link.m_from, link.m_to);
    }

    void setEnds(tessera_1::view_model::Link& link) {
        std::size_t from = below(m_nodes.size());
        std::size_t to = below(m_nodes.size());
        // Along the walk through the nesting, and not into a group from itself, links make no cycle.
        if (m_isAcyclic && from > to) std::swap(from, to);
        link.m_from = m_nodes[from];
        link.m_to = m_nodes[to];
        const auto& links = m_graph.m_linkList;
        if (!links.empty() && chance(10)) {
            const auto& parallel = oneOf(links);
            link.m_from = parallel->m_from;
            link.m_to = parallel->m_to;
        } else if (!m_isAcyclic && chance(5) && link.m_from->m_group) {
            link.m_to = link.m_from->m_group;
        }
        if (m_isTame) {
            setEndsInOneGroup(link);
            return dropLoop(link);
        }
        if (chance(2)) link.m_from = nullptr;
        if (chance(2)) link.m_to = nullptr;
        dropLoop(link);
    }

    // An acyclic diagram has no link from a group into itself either.
    void dropLoop(tessera_1::view_model::Link& link) const {
        if (m_isAcyclic && isInside(link.m_to, link.m_from)) link.m_to = nullptr;
    }

    bool isBefore(const NodePtr& a, const NodePtr& b) const {
        return std::find(m_nodes.begin(), m_nodes.end(), a) < std::find(m_nodes.begin(), m_nodes.end(), b);
    }
    static bool isInside(NodePtr node, const NodePtr& group) {
        for (; node; node = node->m_group)
            if (node == group) return true;
        return false;
    }

    Graph& m_graph;
    std::mt19937_64 m_random;
    const bool m_isAcyclic;
    const bool m_isTame;  // links stay within their group and have both ends
    const bool m_hasShortIds;
    const std::size_t m_doubledIds;  // percent
    const std::size_t m_labels;      // percent
    const std::size_t m_maxDepth;
    std::size_t m_infos = 0;
    std::vector<NodePtr> m_nodes;
};

}  // namespace

void fillRandomDiagram(Graph& graph, std::uint64_t seed) {
    Maker(graph, seed).run();
}

}  // namespace tessera_test
