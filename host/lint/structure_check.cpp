#include "host/lint/structure_check.h"

#include <string>
#include <utility>
#include <vector>

#include "host/document/text.h"
#include "host/lint/first_by_id.h"
#include "host/lint/place_text.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;
using tessera_support::CancelToken;
using Element = DocumentStructure::Element;
using Index = DocumentStructure::Index;

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
        m_problems.error(here, "duplicate node id " + quoted(node.id) + ": the node " +
                                   (index > node.replacedBy ? "inside this group at " : "at ") + place +
                                   " loses the id and gets no layer");
    }

    void checkLink(Index index) {
        const auto& link = m_structure.links()[index];
        reportMissingId(*link.element, "a link");
        checkEnd(link, "from", link.from);
        checkEnd(link, "to", link.to);
        if (link.replacedBy == none || link.id.empty()) return;
        const auto here = m_structure.links()[link.replacedBy].element->position();
        m_problems.error(here, "duplicate link id " + quoted(link.id) + ": the link at " +
                                   placeText(link.element->position(), here) + " loses the id");
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

class DisplayCheck {
  public:
    DisplayCheck(const DocumentStructure& structure, ProblemList& problems, const CancelToken& token)
        : m_structure(structure),
          m_problems(problems),
          m_token(token),
          m_firstNodes(structure.nodes()),
          m_firstLinks(structure.links()) {}

    void run() {
        checkGraphs();
        checkEntries(m_structure.nodeEntries(), "node", "displayName and rows");
        checkEntries(m_structure.linkEntries(), "link", "displayName");
        const auto& labels = m_structure.labels();
        checkReplaced(labels, [](const auto& label) {
            return "this label at " + quoted(labelPlaceNames[static_cast<std::size_t>(label.place)]) +
                   " replaces the one";
        });
        checkReplaced(m_structure.modes(), [](const auto& values) {
            return "this <" + std::string(nameOf(values.mode)) + "> replaces the one of this label";
        });
        checkReplaced(m_structure.rowSets(),
                      [](const auto&) { return std::string("this rowSet replaces the one"); });
    }

  private:
    void checkGraphs() {
        const auto& graphs = m_structure.displayGraphs();
        for (Index i = 1; i < graphs.size() && !m_token.isCancelled(); ++i)
            reportReplaced(*graphs[i], "this <graph> replaces the displayName of the one", *graphs[i - 1]);
    }

    // What `entry` reaches, or null.
    [[nodiscard]] Element targetOf(const DocumentStructure::NodeEntry& entry) const {
        return entry.node == none ? nullptr : m_structure.nodes()[entry.node].element;
    }
    [[nodiscard]] Element targetOf(const DocumentStructure::LinkEntry& entry) const {
        return entry.link == none ? nullptr : m_structure.links()[entry.link].element;
    }
    // What has its id anywhere in the document.
    [[nodiscard]] Element laterTargetOf(const DocumentStructure::NodeEntry& entry) {
        return m_firstNodes.find(entry.id);
    }
    [[nodiscard]] Element laterTargetOf(const DocumentStructure::LinkEntry& entry) {
        return m_firstLinks.find(entry.id);
    }

    template <class Entries>
    void checkEntries(const Entries& entries, const std::string& what, const char* replaced) {
        for (const auto& entry : entries) {
            if (m_token.isCancelled()) return;
            checkTarget(entry, what);
            if (entry.replacedBy == none) continue;
            reportReplaced(
                *entries[entry.replacedBy].element,
                "display entry of " + what + " " + quoted(entry.id) + " replaces " + replaced + " of the one",
                *entry.element);
        }
    }

    template <class Entry>
    void checkTarget(const Entry& entry, const std::string& what) {
        const variant_bag_t& element = *entry.element;
        const Element target = targetOf(entry);
        std::string text;
        if (element.get("id") == nullptr) {
            text = "a display entry of a " + what + " without id";
            if (target != nullptr) text += "; it counts for the " + what + " whose id is empty";
        } else if (target == nullptr) {
            text = "display entry of " + what + " " + quoted(entry.id);
            const Element later = laterTargetOf(entry);
            text += later == nullptr
                        ? ": there is no such " + what
                        : " comes before the " + what + ", which is declared at " +
                              placeText(later->position(), element.position()) + "; move it after that";
        }
        if (!text.empty()) m_problems.error(element.position(), std::move(text));
    }

    // `describe` is called with the replacing object.
    template <class Objects, class Describe>
    void checkReplaced(const Objects& objects, Describe describe) {
        for (const auto& object : objects) {
            if (m_token.isCancelled()) return;
            if (object.replacedBy == none) continue;
            const auto& later = objects[object.replacedBy];
            reportReplaced(*later.element, describe(later), *object.element);
        }
    }

    void reportReplaced(const variant_bag_t& later, std::string text, const variant_bag_t& replaced) {
        m_problems.warning(later.position(),
                           std::move(text) + " at " + placeText(replaced.position(), later.position()));
    }

    const DocumentStructure& m_structure;
    ProblemList& m_problems;
    const CancelToken& m_token;
    FirstById<std::vector<DocumentStructure::Node>> m_firstNodes;
    FirstById<std::vector<DocumentStructure::Link>> m_firstLinks;
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

void checkDisplay(const DocumentStructure& structure, ProblemList& problems, const CancelToken& token) {
    DisplayCheck(structure, problems, token).run();
}

}  // namespace tessera_host
