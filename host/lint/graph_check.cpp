#include "host/lint/graph_check.h"

#include <string>

#include "host/document/text.h"
#include "host/lint/first_by_id.h"
#include "host/lint/place_text.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;
using tessera_support::CancelToken;
using Index = DocumentStructure::Index;
using Element = DocumentStructure::Element;

constexpr Index none = DocumentStructure::none;

class GraphCheck {
  public:
    GraphCheck(const DocumentStructure& structure, ProblemList& problems)
        : m_structure(structure), m_problems(problems), m_firstNodes(structure.nodes()) {}

    // The last <graph> decides on the id of the diagram.
    void checkIds() {
        Element last = nullptr;
        for (const Element graph : m_structure.graphs()) {
            if (last != nullptr && last->get_text("id") != graph->get_text("id"))
                m_problems.warning(graph->position(), "the id " + quoted(graph->get_text("id")) +
                                                          " of this <graph> replaces the diagram's id " +
                                                          quoted(last->get_text("id")) + " given at " +
                                                          placeText(last->position(), graph->position()));
            last = graph;
        }
    }

    void checkNode(Index index) {
        const auto& node = m_structure.nodes()[index];
        reportMissingId(*node.element, "a node");
        if (node.replacedBy == none || node.id.empty()) return;
        const auto here = m_structure.nodes()[node.replacedBy].element->position();
        const std::string place = placeText(node.element->position(), here);
        // A group is read after its members.
        m_problems.error(
            here, "node id " + quoted(node.id) +
                      (index > node.replacedBy ? " is used inside this group, too, at " + place +
                                                     "; the node there is read first, is"
                                               : " is used before, at " + place + "; the node there is") +
                      " no longer found by it and gets no layer");
    }

    void checkLink(Index index) {
        const auto& link = m_structure.links()[index];
        reportMissingId(*link.element, "a link");
        checkEnd(link, "from", link.from);
        checkEnd(link, "to", link.to);
        if (link.replacedBy == none || link.id.empty()) return;
        const auto here = m_structure.links()[link.replacedBy].element->position();
        m_problems.error(here, "link id " + quoted(link.id) + " is used before, at " +
                                   placeText(link.element->position(), here) +
                                   "; the link there is no longer found by it");
    }

    // What is missing as a whole; a document in which nothing else is wrong may still show nothing.
    void checkPresence(const variant_bag_t& viewpoint) {
        constexpr const char* noNodes = ", so the diagram has no nodes";
        if (viewpoint.is_empty())
            m_problems.error(viewpoint.position(), "the document is empty, so no diagram is made");
        else if (m_structure.diagrams().empty())
            m_problems.error(viewpoint.position(), std::string("there is no <diagram>") + noNodes);
        else if (m_structure.graphs().empty())
            m_problems.error(m_structure.diagrams().front()->position(),
                             std::string("there is no <graph> in <diagram>") + noNodes);
        else if (m_structure.nodes().size() == 1)
            m_problems.warning(m_structure.graphs().front()->position(),
                               std::string("there is no <node> in <graph>") + noNodes);
    }

  private:
    void reportMissingId(const variant_bag_t& element, const std::string& what) {
        if (element.get_text("id").empty())
            m_problems.error(element.position(),
                             what + (element.get("id") != nullptr ? " with an empty id" : " without id"));
    }

    void checkEnd(const DocumentStructure::Link& link, const char* end, Index node) {
        const variant_bag_t& element = *link.element;
        const bool isGiven = element.get(end) != nullptr;
        if (node != DocumentStructure::topLevel && isGiven) return;
        std::string text = "link " + quoted(link.id) + ": ";
        if (node != DocumentStructure::topLevel)
            text += "has no " + quoted(end) + "; it is connected to the node without id at " +
                    placeOf(node, element);
        else if (!isGiven)
            text += "has no " + quoted(end);
        else if (const Element later = m_firstNodes.find(element.get_text(end)))
            text += "comes before the node " + quoted(element.get_text(end)) + " of its " + quoted(end) +
                    ", which is declared at " + placeText(later->position(), element.position()) +
                    "; move the link after it";
        else
            text += "there is no node " + quoted(element.get_text(end)) + " for its " + quoted(end);
        m_problems.error(element.position(), std::move(text));
    }

    [[nodiscard]] std::string placeOf(Index node, const variant_bag_t& here) const {
        return placeText(m_structure.nodes()[node].element->position(), here.position());
    }

    const DocumentStructure& m_structure;
    ProblemList& m_problems;
    FirstById<std::vector<DocumentStructure::Node>> m_firstNodes;
};

}  // namespace

void checkGraph(const variant_bag_t& viewpoint, const DocumentStructure& structure, ProblemList& problems,
                const CancelToken& token) {
    GraphCheck check(structure, problems);
    check.checkIds();
    for (Index node = 1; node < structure.nodes().size() && !token.isCancelled(); ++node)
        check.checkNode(node);
    for (Index link = 0; link < structure.links().size() && !token.isCancelled(); ++link)
        check.checkLink(link);
    check.checkPresence(viewpoint);
}

}  // namespace tessera_host
