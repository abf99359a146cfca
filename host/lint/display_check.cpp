#include "host/lint/display_check.h"

#include <string>
#include <utility>

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

void checkDisplay(const DocumentStructure& structure, ProblemList& problems, const CancelToken& token) {
    DisplayCheck(structure, problems, token).run();
}

}  // namespace tessera_host
