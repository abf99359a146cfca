#include "host/check/structure.h"

#include <algorithm>

namespace tessera_host {
namespace {

using basekit2::source_position_t;
using basekit2::variant_bag_t;

std::string_view attribute(const variant_bag_t& bag, std::string_view name) {
    const basekit2::variant_t* value = bag.get(name);
    return value ? value->get<std::string_view>() : std::string_view();
}

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::string line(source_position_t position) {
    return "line " + std::to_string(position.line);
}

// Walks the document once in the order in which the library reads it. What comes later in it is known from a
// first walk that only collects ids.
class StructureCheck {
  public:
    explicit StructureCheck(Findings& findings) : m_findings(findings) {}

    void collect(const variant_bag_t& diagram);
    void read(const variant_bag_t& diagram);

    DeclaredGraph graph;

  private:
    using Index = std::unordered_map<std::string_view, std::size_t>;
    using Positions = std::unordered_map<std::string_view, source_position_t>;

    void readGraph(const variant_bag_t& section);
    void readNodes(const variant_bag_t& top);
    void readLink(const variant_bag_t& element);
    std::size_t linkEnd(const variant_bag_t& element, std::string_view end);
    void readDisplay(const variant_bag_t& section);
    void readDisplayEntry(std::string_view what, const variant_bag_t& element, const Positions& all,
                          bool known, Positions& seen);
    void readLabels(const variant_bag_t& element);
    void checkRowSets(const variant_bag_t& element);

    Findings& m_findings;
    Index m_nodes;  // read so far
    Index m_links;
    Positions m_allNodes;  // of the whole document, the first of each id
    Positions m_allLinks;
    Positions m_displayedNodes;
    Positions m_displayedLinks;
};

void StructureCheck::collect(const variant_bag_t& diagram) {
    std::vector<const variant_bag_t*> open;
    for (auto section = diagram.begin(); !section.at_end(); section.next())
        if (section.get_name() == "graph") open.push_back(&section.get_value());
    while (!open.empty()) {
        const variant_bag_t& parent = *open.back();
        open.pop_back();
        for (auto child = parent.begin(); !child.at_end(); child.next()) {
            const bool isNode = child.get_name() == "node";
            if (!isNode && child.get_name() != "link") continue;
            const variant_bag_t& bag = child.get_value();
            (isNode ? m_allNodes : m_allLinks).try_emplace(attribute(bag, "id"), bag.position());
            if (isNode) open.push_back(&bag);
        }
    }
}

void StructureCheck::read(const variant_bag_t& diagram) {
    for (auto section = diagram.begin(); !section.at_end(); section.next()) {
        if (section.get_name() == "graph") readGraph(section.get_value());
        if (section.get_name() == "display") readDisplay(section.get_value());
    }
}

void StructureCheck::readGraph(const variant_bag_t& section) {
    for (auto child = section.begin(); !child.at_end(); child.next()) {
        if (child.get_name() == "node") readNodes(child.get_value());
        if (child.get_name() == "link") readLink(child.get_value());
    }
}

void StructureCheck::readNodes(const variant_bag_t& top) {
    struct Open {
        const variant_bag_t* bag;
        std::size_t parent;
    };
    std::vector<Open> open{{&top, 0}};
    while (!open.empty()) {
        const auto [bag, parent] = open.back();
        open.pop_back();
        const std::string_view id = attribute(*bag, "id");
        const std::size_t index = graph.nodes.size();
        graph.nodes.push_back({id, parent, bag->position()});
        if (id.empty()) {
            m_findings.error(bag->position(), "a node without id");
        } else if (const auto [it, isNew] = m_nodes.try_emplace(id, index); !isNew) {
            m_findings.error(bag->position(), "node id " + quoted(id) + " is used before, at " +
                                                  line(graph.nodes[it->second].position) +
                                                  "; only one of the two is found by its id");
            it->second = index;
        }
        const auto firstChild = static_cast<std::ptrdiff_t>(open.size());
        for (auto child = bag->begin(); !child.at_end(); child.next())
            if (child.get_name() == "node") open.push_back({&child.get_value(), index});
        std::reverse(open.begin() + firstChild, open.end());  // the first child is read first
    }
}

void StructureCheck::readLink(const variant_bag_t& element) {
    const std::string_view id = attribute(element, "id");
    if (id.empty()) {
        m_findings.error(element.position(), "a link without id");
    } else if (const auto [it, isNew] = m_links.try_emplace(id, graph.links.size()); !isNew) {
        m_findings.error(element.position(), "link id " + quoted(id) + " is used before, at " +
                                                 line(graph.links[it->second].position) +
                                                 "; only one of the two is found by its id");
        it->second = graph.links.size();
    }
    const std::size_t from = linkEnd(element, "from");
    const std::size_t to = linkEnd(element, "to");
    graph.links.push_back({id, from, to, element.position()});
}

// The node at that end, 0 when the link will not find it.
std::size_t StructureCheck::linkEnd(const variant_bag_t& element, std::string_view end) {
    const std::string_view id = attribute(element, end);
    const std::string link = "link " + quoted(attribute(element, "id")) + ": ";
    if (const auto it = m_nodes.find(id); it != m_nodes.end()) return it->second;
    if (id.empty())
        m_findings.error(element.position(), link + "has no " + quoted(end));
    else if (const auto later = m_allNodes.find(id); later != m_allNodes.end())
        m_findings.error(element.position(), link + "comes before its node " + quoted(id) +
                                                 ", which is declared at " + line(later->second) +
                                                 "; move the link behind it");
    else
        m_findings.error(element.position(), link + "there is no node " + quoted(id));
    return 0;
}

void StructureCheck::readDisplay(const variant_bag_t& section) {
    for (auto child = section.begin(); !child.at_end(); child.next()) {
        const std::string_view name = child.get_name();
        const variant_bag_t& element = child.get_value();
        const std::string_view id = attribute(element, "id");
        if (name == "node") {
            readDisplayEntry("node", element, m_allNodes, m_nodes.contains(id), m_displayedNodes);
            checkRowSets(element);
        } else if (name == "link") {
            readDisplayEntry("link", element, m_allLinks, m_links.contains(id), m_displayedLinks);
            readLabels(element);
        }
    }
}

void StructureCheck::readDisplayEntry(std::string_view what, const variant_bag_t& element,
                                      const Positions& all, bool known, Positions& seen) {
    const std::string_view id = attribute(element, "id");
    const std::string entry = "display entry of " + std::string(what) + " " + quoted(id);
    if (id.empty()) {
        m_findings.error(element.position(), "a display entry of a " + std::string(what) + " without id");
        return;
    }
    if (!known) {
        const auto later = all.find(id);
        m_findings.error(element.position(), later == all.end()
                                                 ? entry + ": there is no such " + std::string(what)
                                                 : entry + " comes before the " + std::string(what) +
                                                       ", which is declared at " + line(later->second) +
                                                       "; move it behind");
        return;
    }
    const auto [it, isNew] = seen.try_emplace(id, element.position());
    if (!isNew) m_findings.warning(element.position(), entry + " replaces the one at " + line(it->second));
    it->second = element.position();
}

void StructureCheck::readLabels(const variant_bag_t& element) {
    Positions seen;
    for (auto child = element.begin(); !child.at_end(); child.next()) {
        if (child.get_name() != "label") continue;
        std::string_view location = attribute(child.get_value(), "location");
        if (location != "from" && location != "to") location = "center";
        const auto [it, isNew] = seen.try_emplace(location, child.get_value().position());
        if (!isNew)
            m_findings.warning(child.get_value().position(), "this label at " + quoted(location) +
                                                                 " replaces the one at " + line(it->second));
        for (auto transfer = child.get_value().begin(); !transfer.at_end(); transfer.next())
            for (auto mode = transfer.get_value().begin(); !mode.at_end(); mode.next())
                checkRowSets(mode.get_value());
    }
}

void StructureCheck::checkRowSets(const variant_bag_t& element) {
    const variant_bag_t* first = nullptr;
    for (auto child = element.begin(); !child.at_end(); child.next()) {
        if (child.get_name() != "rowSet") continue;
        if (first)
            m_findings.warning(child.get_value().position(),
                               "this rowSet replaces the one at " + line(first->position()));
        first = &child.get_value();
    }
}

}  // namespace

DeclaredGraph checkStructure(const variant_bag_t& viewpoint, Findings& findings) {
    StructureCheck check(findings);
    bool hasDiagram = false;
    for (auto child = viewpoint.begin(); !child.at_end(); child.next())
        if (child.get_name() == "diagram") check.collect(child.get_value());
    for (auto child = viewpoint.begin(); !child.at_end(); child.next()) {
        if (child.get_name() != "diagram") continue;
        hasDiagram = true;
        check.read(child.get_value());
    }
    if (viewpoint.is_empty())
        findings.error(viewpoint.position(), "the document is empty");
    else if (!hasDiagram)
        findings.error(viewpoint.position(), "there is no <diagram>, so nothing will be shown");
    return std::move(check.graph);
}

}  // namespace tessera_host
