#include "host/check/graph_sections.h"

#include <string>
#include <utility>

#include "host/check/element.h"
#include "host/document/text.h"

namespace tessera_host {

using basekit2::source_position_t;
using basekit2::variant_bag_t;

namespace {

void keepFirst(GraphSections::Positions& positions, const variant_bag_t& element) {
    const source_position_t here = element.position();
    source_position_t& first = positions.try_emplace(attribute(element, "id"), here).first->second;
    if (std::pair(here.line, here.column) < std::pair(first.line, first.column)) first = here;
}

}  // namespace

void GraphSections::collect(const variant_bag_t& section) {
    std::vector<const variant_bag_t*> open{&section};
    while (!open.empty()) {
        const variant_bag_t& parent = *open.back();
        open.pop_back();
        for (auto child = parent.begin(); !child.at_end(); child.next()) {
            if (m_watch.mustStop()) return;
            if (child.get_name() == "node") {
                keepFirst(m_allNodes, child.get_value());
                open.push_back(&child.get_value());
            } else if (child.get_name() == "link" && &parent == &section) {
                keepFirst(m_allLinks, child.get_value());
            }
        }
    }
}

void GraphSections::read(const variant_bag_t& section) {
    readId(section);
    for (auto child = section.begin(); !child.at_end() && !m_watch.mustStop(); child.next()) {
        if (child.get_name() == "node") readNodes(child.get_value());
        if (child.get_name() == "link") readLink(child.get_value());
    }
}

void GraphSections::readId(const variant_bag_t& section) {
    const std::string_view id = attribute(section, "id");
    if (m_lastSection && attribute(*m_lastSection, "id") != id)
        m_findings.warning(section.position(), "the id " + quoted(id) +
                                                   " of this <graph> replaces the diagram's id " +
                                                   quoted(attribute(*m_lastSection, "id")) + " given at " +
                                                   placeOf(m_lastSection->position(), section.position()));
    m_lastSection = &section;
}

void GraphSections::readNodes(const variant_bag_t& top) {
    struct Open {
        std::size_t node;
        variant_bag_t::iterator_t child;
    };
    std::vector<Open> open{{addNode(top, 0), top.begin()}};
    while (!open.empty() && !m_watch.mustStop()) {
        Open& group = open.back();
        if (group.child.at_end()) {
            fileNode(group.node);
            open.pop_back();
            continue;
        }
        const bool isNode = group.child.get_name() == "node";
        const variant_bag_t& element = group.child.get_value();
        group.child.next();
        if (isNode) open.push_back({addNode(element, group.node), element.begin()});
    }
}

std::size_t GraphSections::addNode(const variant_bag_t& element, std::size_t parent) {
    reportMissingId(element, "a node");
    m_graph.nodes.push_back({attribute(element, "id"), parent, element.position()});
    return m_graph.nodes.size() - 1;
}

void GraphSections::fileNode(std::size_t node) {
    const auto& [id, parent, position, isReplaced] = m_graph.nodes[node];
    const auto [it, isNew] = m_nodes.try_emplace(id, node);
    if (isNew) return;
    const std::size_t other = std::exchange(it->second, node);
    m_graph.nodes[other].isReplaced = true;
    if (id.empty()) return;  // told of each of them
    const std::string place = placeOf(m_graph.nodes[other].position, position);
    // What was filed before its elder stands inside it.
    m_findings.error(position, "node id " + quoted(id) +
                                   (other > node ? " is used inside this group, too, at " + place +
                                                       "; the node there is read first, is"
                                                 : " is used before, at " + place + "; the node there is") +
                                   " no longer found by it and gets no layer");
}

void GraphSections::readLink(const variant_bag_t& element) {
    reportMissingId(element, "a link");
    const std::string_view id = attribute(element, "id");
    const auto [it, isNew] = m_links.try_emplace(id, m_graph.links.size());
    if (!isNew && !id.empty())
        m_findings.error(element.position(),
                         "link id " + quoted(id) + " is used before, at " +
                             placeOf(m_graph.links[it->second].position, element.position()) +
                             "; the link there is no longer found by it");
    it->second = m_graph.links.size();
    const std::size_t from = readEnd(element, "from");
    const std::size_t to = readEnd(element, "to");
    m_graph.links.push_back({id, from, to, element.position()});
}

std::size_t GraphSections::readEnd(const variant_bag_t& link, std::string_view end) {
    const bool isGiven = link.get(end) != nullptr;
    const std::string_view id = attribute(link, end);
    const std::size_t node = findNode(id).value_or(0);
    if (node != 0 && isGiven) return node;
    std::string text = "link " + quoted(attribute(link, "id")) + ": ";
    if (node != 0)
        text += "has no " + quoted(end) + "; it is tied to the node without id at " +
                placeOf(m_graph.nodes[node].position, link.position());
    else if (!isGiven)
        text += "has no " + quoted(end);
    else if (const auto later = m_allNodes.find(id); later != m_allNodes.end())
        text += "comes before the node " + quoted(id) + " of its " + quoted(end) + ", which is declared at " +
                placeOf(later->second, link.position()) + "; move the link behind it";
    else
        text += "there is no node " + quoted(id) + " for its " + quoted(end);
    m_findings.error(link.position(), std::move(text));
    return node;
}

void GraphSections::reportMissingId(const variant_bag_t& element, const char* what) {
    if (attribute(element, "id").empty())
        m_findings.error(element.position(),
                         what + std::string(element.get("id") ? " with an empty id" : " without id"));
}

std::optional<std::size_t> GraphSections::findNode(std::string_view id) const {
    const auto it = m_nodes.find(id);
    if (it == m_nodes.end()) return std::nullopt;
    return it->second;
}

std::optional<std::size_t> GraphSections::findLink(std::string_view id) const {
    const auto it = m_links.find(id);
    if (it == m_links.end()) return std::nullopt;
    return it->second;
}

}  // namespace tessera_host
