#include "host/document/document_structure.h"

#include <array>
#include <utility>

namespace tessera_host {

using basekit2::variant_bag_t;
using tessera_support::CancelToken;

namespace {

// Any other location, and none, counts as the center.
LabelPlace placeOf(const variant_bag_t& label) {
    const std::string_view location = label.get_text("location");
    return location == "from" ? LabelPlace::from : location == "to" ? LabelPlace::to : LabelPlace::center;
}

}  // namespace

class DocumentReader {
  public:
    DocumentReader(DocumentStructure& structure, const CancelToken& token)
        : m_out(structure), m_token(token) {}

    void read(const variant_bag_t& viewpoint) {
        forEachChild(viewpoint, [this](std::string_view name, const variant_bag_t& diagram) {
            if (name != "diagram") return;
            m_out.m_diagrams.push_back(&diagram);
            forEachChild(diagram, [this](std::string_view section, const variant_bag_t& element) {
                if (section == "graph") readGraph(element);
                if (section == "display") readDisplay(element);
            });
        });
    }

  private:
    using Index = DocumentStructure::Index;
    using Range = DocumentStructure::Range;
    using Labels = std::array<Index, labelPlaceNames.size()>;  // the last label at each place, or none

    static constexpr Index none = DocumentStructure::none;
    static constexpr Labels noLabels{none, none, none};

    template <class Visit>
    void forEachChild(const variant_bag_t& parent, Visit visit) const {
        for (auto child = parent.begin(); !child.at_end() && !m_token.isCancelled(); child.next())
            visit(child.get_name(), child.get_value());
    }

    // Makes `index` the last object under `key`; the one before it is replaced.
    template <class Objects, class Map, class Key>
    static void replaceLast(Objects& objects, Map& lastByKey, const Key& key, Index index) {
        const auto [last, isNew] = lastByKey.try_emplace(key, index);
        if (!isNew) objects[std::exchange(last->second, index)].replacedBy = index;
    }
    template <class Objects>
    static void replaceLast(Objects& objects, Index& last, Index index) {
        if (last != none) objects[last].replacedBy = index;
        last = index;
    }

    void readGraph(const variant_bag_t& section) {
        m_out.m_graphs.push_back(&section);
        forEachChild(section, [this](std::string_view name, const variant_bag_t& element) {
            if (name == "node") readNodes(element);
            if (name == "link") readLink(element);
        });
    }

    // A node and all that is inside it.
    void readNodes(const variant_bag_t& top) {
        struct OpenGroup {
            Index node;
            variant_bag_t::iterator_t child;
        };
        // A stack of its own instead of recursion: groups may nest to any depth.
        std::vector<OpenGroup> open{{addNode(top, DocumentStructure::topLevel), top.begin()}};
        while (!open.empty() && !m_token.isCancelled()) {
            OpenGroup& group = open.back();
            // A group is entered after its members, so it replaces a member that has the same id.
            if (group.child.at_end()) {
                replaceLast(m_out.m_nodes, m_out.m_nodeIndex, m_out.m_nodes[group.node].id, group.node);
                open.pop_back();
                continue;
            }
            const bool isNode = group.child.get_name() == "node";
            const variant_bag_t& element = group.child.get_value();
            group.child.next();
            if (isNode) open.push_back({addNode(element, group.node), element.begin()});
        }
    }

    Index addNode(const variant_bag_t& element, Index parent) {
        m_out.m_nodes.push_back({&element, element.get_text("id"), parent});
        return m_out.m_nodes.size() - 1;
    }

    // Ends are looked up now: a link connects only nodes that the document declares before it.
    void readLink(const variant_bag_t& element) {
        const auto end = [&](std::string_view name) {
            return m_out.findNode(element.get_text(name)).value_or(DocumentStructure::topLevel);
        };
        const std::string_view id = element.get_text("id");
        m_out.m_links.push_back({&element, id, end("from"), end("to")});
        replaceLast(m_out.m_links, m_out.m_linkIndex, id, m_out.m_links.size() - 1);
    }

    void readDisplay(const variant_bag_t& section) {
        forEachChild(section, [this](std::string_view name, const variant_bag_t& element) {
            if (name == "graph") m_out.m_displayGraphs.push_back(&element);
            if (name == "node") readNodeEntry(element);
            if (name == "link") readLinkEntry(element);
        });
    }

    void readNodeEntry(const variant_bag_t& element) {
        const std::string_view id = element.get_text("id");
        // An entry reaches only a node that is declared before it.
        const Index node = m_out.findNode(id).value_or(none);
        m_out.m_nodeEntries.push_back({&element, id, node, readRowSets(element)});
        if (node != none)
            replaceLast(m_out.m_nodeEntries, m_lastOfNode, node, m_out.m_nodeEntries.size() - 1);
    }

    void readLinkEntry(const variant_bag_t& element) {
        const std::string_view id = element.get_text("id");
        const Index link = m_out.findLink(id).value_or(none);
        // Entries of one link share their labels: a later label replaces the earlier one at its place only.
        // Labels of an entry that reaches no link replace just each other.
        Labels own = noLabels;  // NOLINT(misc-const-correctness): the reference below changes it
        Labels& last = link == none ? own : m_labelsOfLink.try_emplace(link, noLabels).first->second;
        const Index begin = m_out.m_labels.size();
        forEachChild(element, [&](std::string_view name, const variant_bag_t& label) {
            if (name == "label") readLabel(label, last);
        });
        m_out.m_linkEntries.push_back({&element, id, link, {begin, m_out.m_labels.size()}});
        if (link != none)
            replaceLast(m_out.m_linkEntries, m_lastOfLink, link, m_out.m_linkEntries.size() - 1);
    }

    void readLabel(const variant_bag_t& label, Labels& lastLabels) {
        // The modes of one label are next to each other in m_modes, so a range tells which they are.
        std::array<Index, displayModeNames.size()> lastModes{none, none, none};
        const Index begin = m_out.m_modes.size();
        forEachChild(label, [&](std::string_view name, const variant_bag_t& transfer) {
            if (name != "dataTransfer") return;
            forEachChild(transfer, [&](std::string_view modeName, const variant_bag_t& element) {
                const auto mode = displayModeOf(modeName);
                if (!mode) return;
                m_out.m_modes.push_back({&element, &transfer, *mode, readRowSets(element)});
                replaceLast(m_out.m_modes, lastModes[static_cast<std::size_t>(*mode)],
                            m_out.m_modes.size() - 1);
            });
        });
        const LabelPlace place = placeOf(label);
        m_out.m_labels.push_back({&label, place, {begin, m_out.m_modes.size()}});
        replaceLast(m_out.m_labels, lastLabels[static_cast<std::size_t>(place)], m_out.m_labels.size() - 1);
    }

    Range readRowSets(const variant_bag_t& parent) {
        Index last = none;
        const Index begin = m_out.m_rowSets.size();
        forEachChild(parent, [&](std::string_view name, const variant_bag_t& element) {
            if (name != "rowSet") return;
            m_out.m_rowSets.push_back({&element, readRows(element)});
            replaceLast(m_out.m_rowSets, last, m_out.m_rowSets.size() - 1);
        });
        return {begin, m_out.m_rowSets.size()};
    }

    Range readRows(const variant_bag_t& rowSet) {
        const Index begin = m_out.m_rows.size();
        forEachChild(rowSet, [this](std::string_view name, const variant_bag_t& element) {
            if (name == "queryRef") m_out.m_rows.push_back({&element, element.get_text("")});
        });
        return {begin, m_out.m_rows.size()};
    }

    DocumentStructure& m_out;
    const CancelToken& m_token;
    std::unordered_map<Index, Index> m_lastOfNode;  // entries
    std::unordered_map<Index, Index> m_lastOfLink;
    std::unordered_map<Index, Labels> m_labelsOfLink;
};

DocumentStructure::DocumentStructure(const variant_bag_t& viewpoint, const CancelToken& token) {
    DocumentReader(*this, token).read(viewpoint);
}

}  // namespace tessera_host
