// The graph section: which nodes, groups and links there are.
#include <string>
#include <utility>
#include <vector>

#include "core/check.h"
#include "core/viewpointparser.h"

namespace tessera_1 {

TESSERA_SOURCE_UNIT("core/viewpointparser");

using view_model::Link;
using view_model::Node;

void DViewpointParser::parseGraph(const variant_bag_t& graph) {
    m_targetGraph->m_id = getAttrAndLocalize(graph, "id", false);
    for (auto child = graph.begin(); !child.at_end(); child.next()) {
        const std::string_view name = child.get_name();
        if (name == "node") {
            auto node = std::make_shared<Node>();
            parseNode(node, child.get_value());
            m_targetGraph->addNode(std::move(node));
        } else if (name == "link") {
            auto link = std::make_shared<Link>();
            parseLink(link, child.get_value());
            m_targetGraph->addLink(std::move(link));
        } else {
            TESSERA_ALERT("Unknown element <" + std::string(name) +
                          "> found under <graph>. Expected <node>, <link>.");
        }
    }
}

void DViewpointParser::parseNode(std::shared_ptr<Node> node, const variant_bag_t& bag) {
    struct OpenGroup {
        std::shared_ptr<Node> node;
        variant_bag_t::iterator_t child;
    };
    // A stack of our own: documents nest deeper than the call stack reaches.
    std::vector<OpenGroup> open;
    node->m_id = getAttrAndLocalize(bag, "id", false);
    open.push_back({std::move(node), bag.begin()});
    while (true) {
        OpenGroup& group = open.back();
        if (group.child.at_end()) {
            if (open.size() == 1) return;
            std::shared_ptr<Node> member = std::move(group.node);
            open.pop_back();
            member->m_group = open.back().node;
            m_targetGraph->addNode(member);
            open.back().node->m_groupChildren.push_back(std::move(member));
            continue;
        }
        const std::string_view name = group.child.get_name();
        const variant_bag_t& element = group.child.get_value();
        group.child.next();
        if (name == "node") {
            auto member = std::make_shared<Node>();
            member->m_id = getAttrAndLocalize(element, "id", false);
            open.push_back({std::move(member), element.begin()});
        } else {
            TESSERA_ALERT("Unknown element <" + std::string(name) + "> found under <node>. Expected <node>");
        }
    }
}

void DViewpointParser::parseLink(std::shared_ptr<Link> link, const variant_bag_t& bag) {
    link->m_id = getAttrAndLocalize(bag, "id", false);
    for (const auto& [attribute, end] : {std::pair{"from", &link->m_from}, std::pair{"to", &link->m_to}}) {
        const std::string id = getAttrAndLocalize(bag, attribute, false);
        *end = m_targetGraph->findNode(id);
        if (!*end) TESSERA_ALERT("Diagram: Unknown node id in link found <" + id + ">");
    }
    link->m_direction = getAttrAndLocalize(bag, "direction", false);
}

}  // namespace tessera_1
