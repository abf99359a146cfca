// Short ways to build and inspect diagrams in the tests of layout passes.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/view_model/graph.h"
#include "tests/support/model_building.h"

namespace tessera_test {

// A graph whose nodes and links are named by their ids.
struct Diagram {
    using Layers = std::vector<Names>;

    NodePtr node(const std::string& id, const NodePtr& group = nullptr, const std::string& type = "node") {
        const NodePtr made = group ? makeMember(id, group) : makeNode(id);
        made->m_type = type;
        graph.addNode(made);
        return made;
    }
    NodePtr label(const std::string& id, const std::string& location, const NodePtr& group = nullptr) {
        const NodePtr made = node(id, group, "label");
        made->m_location = location;
        return made;
    }
    LinkPtr link(const NodePtr& from, const NodePtr& to, const std::string& direction = "none") {
        const LinkPtr made = makeLink(from, to, "link " + std::to_string(graph.m_linkList.size()));
        made->m_direction = direction;
        graph.addLink(made);
        return made;
    }
    // Links each of them to the next.
    void chain(const std::vector<NodePtr>& nodes) {
        for (std::size_t i = 1; i < nodes.size(); ++i)
            link(nodes[i - 1], nodes[i]);
    }
    // Places a node into a layer of its group.
    void place(const NodePtr& which, int level) {
        (void)graph.m_levelManagers[which->m_group].setLevel(which, level, false);
    }

    Names nodes() const { return idsOf(graph.m_nodeList); }
    NodePtr found(const std::string& id) const { return graph.findNode(id); }
    // "from>to" of every link, in order.
    Names links() const {
        Names out;
        for (const LinkPtr& each : graph.m_linkList)
            out.push_back(endsOf(*each));
        return out;
    }
    static std::string endsOf(const tessera_1::view_model::Link& link) {
        return (link.m_from ? link.m_from->m_id : "") + ">" + (link.m_to ? link.m_to->m_id : "");
    }
    // Placeholders included.
    Layers layers(const NodePtr& group = nullptr) {
        Layers out;
        for (const auto& layer : graph.m_levelManagers[group].m_levels)
            out.push_back(idsOf(*layer));
        return out;
    }

    tessera_1::view_model::Graph graph;
};

// A display info that shows this value.
inline InfoPtr makeValue(const std::string& value, const std::string& name = "info") {
    const InfoPtr info = makeInfo(name);
    info->m_rowSet.rows.push_back({"row", value, "/q"});
    return info;
}

}  // namespace tessera_test
