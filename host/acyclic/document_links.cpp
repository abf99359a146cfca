#include "host/acyclic/document_links.h"

#include "host/check/element.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;

class Reader {
  public:
    explicit Reader(Watch& watch) : m_watch(watch), m_graphs(m_findings, watch) {}

    DocumentLinks read(const variant_bag_t& viewpoint) {
        for (auto child = viewpoint.begin(); !child.at_end() && !m_watch.mustStop(); child.next())
            if (child.get_name() == "diagram") readDiagram(child.get_value());
        for (auto& [element, link] : m_links.entries)
            if (link == noLink) link = linkOf(*element);
        std::erase_if(m_links.entries, [](const auto& entry) { return entry.link == noLink; });
        m_links.graph = m_graphs.takeGraph();
        return std::move(m_links);
    }

  private:
    static constexpr std::size_t noLink = ~std::size_t{0};

    [[nodiscard]] std::size_t linkOf(const variant_bag_t& entry) const {
        return m_graphs.findLink(attribute(entry, "id")).value_or(noLink);
    }

    void readDiagram(const variant_bag_t& diagram) {
        for (auto section = diagram.begin(); !section.at_end() && !m_watch.mustStop(); section.next()) {
            const bool isGraph = section.get_name() == "graph";
            if (!isGraph && section.get_name() != "display") continue;
            if (isGraph) m_graphs.read(section.get_value());
            for (auto child = section.get_value().begin(); !child.at_end(); child.next()) {
                if (m_watch.mustStop()) return;
                if (child.get_name() != "link") continue;
                if (isGraph)
                    m_links.elements.push_back(&child.get_value());
                else
                    m_links.entries.push_back({&child.get_value(), linkOf(child.get_value())});
            }
        }
    }

    Watch& m_watch;
    Findings m_findings;  // what is wrong with the document is told by others
    GraphSections m_graphs;
    DocumentLinks m_links;
};

}  // namespace

DocumentLinks readLinks(const variant_bag_t& viewpoint, Watch& watch) {
    return Reader(watch).read(viewpoint);
}

std::unordered_set<DocumentLinks::Element> elementsToTurn(const DocumentLinks& document,
                                                          const std::vector<std::size_t>& links) {
    std::unordered_set<DocumentLinks::Element> elements;
    std::vector<bool> isTurned(document.elements.size());
    for (const std::size_t link : links) {
        isTurned[link] = true;
        elements.insert(document.elements[link]);
    }
    for (const auto& [element, link] : document.entries) {
        if (!isTurned[link]) continue;
        for (auto child = element->begin(); !child.at_end(); child.next()) {
            const std::string_view location = attribute(child.get_value(), "location");
            if (child.get_name() == "label" && (location == "from" || location == "to"))
                elements.insert(&child.get_value());
        }
    }
    return elements;
}

}  // namespace tessera_host
