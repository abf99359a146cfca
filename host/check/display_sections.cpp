#include "host/check/display_sections.h"

#include <string>
#include <utility>

#include "host/check/element.h"
#include "host/document/text.h"

namespace tessera_host {

using basekit2::variant_bag_t;

void DisplaySections::read(const variant_bag_t& section) {
    static constexpr Kind node{"node", "displayName and rows"};
    static constexpr Kind link{"link", "displayName"};
    for (auto child = section.begin(); !child.at_end() && !m_watch.mustStop(); child.next()) {
        const std::string_view name = child.get_name();
        const variant_bag_t& element = child.get_value();
        const std::string_view id = attribute(element, "id");
        if (name == "graph") {
            readGraph(element);
        } else if (name == "node") {
            readEntry(element, node, m_graph.findNode(id), m_graph.allNodes(), m_nodes);
            readRowSets(element);
        } else if (name == "link") {
            const auto target = m_graph.findLink(id);
            Labels ofNone;
            readEntry(element, link, target, m_graph.allLinks(), m_links);
            readLabels(element, target ? m_labels[*target] : ofNone);
        }
    }
}

void DisplaySections::readGraph(const variant_bag_t& element) {
    if (m_named)
        tellReplaced(element, "this <graph> replaces the displayName of the one", m_named->position());
    m_named = &element;
}

void DisplaySections::readEntry(const variant_bag_t& element, const Kind& kind,
                                std::optional<std::size_t> target, const GraphSections::Positions& all,
                                Entries& entries) {
    const std::string what(kind.name);
    const std::string_view id = attribute(element, "id");
    const std::string entry = "display entry of " + what + " " + quoted(id);
    if (!element.get("id")) {
        std::string text = "a display entry of a " + what + " without id";
        if (target) text += "; it counts for the " + what + " whose id is empty";
        m_findings.error(element.position(), std::move(text));
    } else if (!target) {
        const auto later = all.find(id);
        m_findings.error(element.position(),
                         later == all.end()
                             ? entry + ": there is no such " + what
                             : entry + " comes before the " + what + ", which is declared at " +
                                   placeOf(later->second, element.position()) + "; move it behind");
    }
    if (!target) return;
    const auto [it, isNew] = entries.try_emplace(*target, element.position());
    if (isNew) return;
    tellReplaced(element, entry + " replaces " + std::string(kind.replaced) + " of the one", it->second);
    it->second = element.position();
}

void DisplaySections::readLabels(const variant_bag_t& element, Labels& labels) {
    for (auto child = element.begin(); !child.at_end() && !m_watch.mustStop(); child.next()) {
        if (child.get_name() != "label") continue;
        const variant_bag_t& label = child.get_value();
        std::string_view location = attribute(label, "location");
        if (location != "from" && location != "to") location = "center";
        const auto [it, isNew] = labels.try_emplace(location, label.position());
        if (!isNew)
            tellReplaced(label, "this label at " + quoted(location) + " replaces the one", it->second);
        it->second = label.position();
        Modes modes;
        for (auto transfer = label.begin(); !transfer.at_end() && !m_watch.mustStop(); transfer.next())
            if (transfer.get_name() == "dataTransfer") readTransfer(transfer.get_value(), modes);
    }
}

// All data transfers of a label share its modes.
void DisplaySections::readTransfer(const variant_bag_t& transfer, Modes& modes) {
    for (auto mode = transfer.begin(); !mode.at_end() && !m_watch.mustStop(); mode.next()) {
        const std::string_view name = mode.get_name();
        if (name != "bandwidth" && name != "ratio" && name != "size") continue;
        const auto [it, isNew] = modes.try_emplace(name, mode.get_value().position());
        if (!isNew)
            tellReplaced(mode.get_value(), "this <" + std::string(name) + "> replaces the one of this label",
                         it->second);
        it->second = mode.get_value().position();
        readRowSets(mode.get_value());
    }
}

void DisplaySections::readRowSets(const variant_bag_t& element) {
    const variant_bag_t* last = nullptr;
    for (auto child = element.begin(); !child.at_end() && !m_watch.mustStop(); child.next()) {
        if (child.get_name() != "rowSet") continue;
        if (last) tellReplaced(child.get_value(), "this rowSet replaces the one", last->position());
        last = &child.get_value();
        m_rowSets.push_back(last);
    }
}

void DisplaySections::tellReplaced(const variant_bag_t& element, std::string what, Position replaced) {
    m_findings.warning(element.position(), std::move(what) + " at " + placeOf(replaced, element.position()));
}

}  // namespace tessera_host
