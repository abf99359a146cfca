// What a document declares: nodes, groups and links, and what they show.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/document/display_mode.h"
#include "platform/basekit2/variant_bag.h"
#include "support/cancel_token.h"

namespace tessera_host {

// Where a label stands on its link.
enum class LabelPlace : std::uint8_t { from, center, to };

// The names in a document, by LabelPlace. Any other name means the center.
inline constexpr std::array<std::string_view, 3> labelPlaceNames{"from", "center", "to"};

// The graph and display sections of a document as flat lists in document order. This is the one place that
// walks them; checks, the reversal of links and the reserved space read these lists.
//
// An id finds here what it finds in the diagram library: links and display entries see only what comes before
// them, the members of a group come before the group, and of several objects with one id the last one read is
// found. `replacedBy` says which later object took the place of this one.
//
// Refers to the bag that it was read from, which must outlive it. Does not change once read, so any thread
// may use it.
class DocumentStructure {
  public:
    using Element = const basekit2::variant_bag_t*;
    using Index = std::size_t;

    static constexpr Index none = std::numeric_limits<Index>::max();
    static constexpr Index topLevel = 0;  // among the nodes

    // A part of one of the lists below: from `begin` to before `end`.
    struct Range {
        Index begin = 0;
        Index end = 0;
    };

    // In what follows, `element` is the element of the document, with its position; never null unless said
    // otherwise. `replacedBy` is `none` as long as no later object took this one's place.

    // Groups stand before their members.
    struct Node {
        Element element = nullptr;  // null for the top level
        std::string_view id;
        Index parent = none;
        Index replacedBy = none;  // a node that took the id over; this one takes no part in the layout
    };
    // A <link> of a graph section, whether or not its ends exist.
    struct Link {
        Element element = nullptr;
        std::string_view id;
        Index from = none;  // nodes; `topLevel` when the id finds none
        Index to = none;
        Index replacedBy = none;
    };

    // A <queryRef>.
    struct Row {
        Element element = nullptr;
        std::string_view reference;  // its text, "" when there is none
    };
    // A <rowSet>. Only the last one of an element is shown.
    struct RowSet {
        Element element = nullptr;
        Range rows;
        Index replacedBy = none;  // a later row set of the same element
    };
    // The values of a label in one display mode.
    struct ModeValues {
        Element element = nullptr;
        Element dataTransfer = nullptr;  // the parent
        DisplayMode mode = {};
        Range rowSets;
        Index replacedBy = none;  // later values of the same label in this mode
    };
    // A <label> of a LinkEntry.
    struct Label {
        Element element = nullptr;
        LabelPlace place = {};
        Range modes;
        Index replacedBy = none;  // a later label at this place of the same link
    };
    // A <node> of a display section.
    struct NodeEntry {
        Element element = nullptr;
        std::string_view id;
        Index node = none;  // `none` when the id finds none
        Range rowSets;
        Index replacedBy = none;  // a later entry of the same node
    };
    // A <link> of a display section. Its labels add to those of earlier entries for the same link.
    struct LinkEntry {
        Element element = nullptr;
        std::string_view id;
        Index link = none;  // `none` when the id finds none
        Range labels;
        Index replacedBy = none;
    };

    // Reads every <diagram> of `viewpoint`. Linear time, no recursion. Once `token` is cancelled the
    // structure is incomplete, and the caller discards it.
    DocumentStructure(const basekit2::variant_bag_t& viewpoint, const tessera_support::CancelToken& token);

    // Lists and the elements in them are valid as long as this object and its bag. The <diagram> elements:
    [[nodiscard]] const std::vector<Element>& diagrams() const noexcept { return m_diagrams; }
    // The <graph> elements of the graph sections, and those of the display sections, which name the diagram.
    [[nodiscard]] const std::vector<Element>& graphs() const noexcept { return m_graphs; }
    [[nodiscard]] const std::vector<Element>& displayGraphs() const noexcept { return m_displayGraphs; }

    // Each list is in the order of the document. Objects that were replaced stay in the lists. The first node
    // is the top level.
    [[nodiscard]] const std::vector<Node>& nodes() const noexcept { return m_nodes; }
    [[nodiscard]] const std::vector<Link>& links() const noexcept { return m_links; }
    [[nodiscard]] const std::vector<NodeEntry>& nodeEntries() const noexcept { return m_nodeEntries; }
    [[nodiscard]] const std::vector<LinkEntry>& linkEntries() const noexcept { return m_linkEntries; }
    [[nodiscard]] const std::vector<Label>& labels() const noexcept { return m_labels; }
    [[nodiscard]] const std::vector<ModeValues>& modes() const noexcept { return m_modes; }
    [[nodiscard]] const std::vector<RowSet>& rowSets() const noexcept { return m_rowSets; }
    [[nodiscard]] const std::vector<Row>& rows() const noexcept { return m_rows; }

    // What the id finds at the end of the document; none when there is no such object. Constant time.
    [[nodiscard]] std::optional<Index> findNode(std::string_view id) const { return find(m_nodeIndex, id); }
    [[nodiscard]] std::optional<Index> findLink(std::string_view id) const { return find(m_linkIndex, id); }

  private:
    friend class DocumentReader;
    using IdIndex = std::unordered_map<std::string_view, Index>;

    [[nodiscard]] static std::optional<Index> find(const IdIndex& index, std::string_view id) {
        const auto it = index.find(id);
        return it == index.end() ? std::nullopt : std::optional(it->second);
    }

    std::vector<Element> m_diagrams;
    std::vector<Element> m_graphs;
    std::vector<Element> m_displayGraphs;
    std::vector<Node> m_nodes{Node{nullptr, {}, topLevel}};
    std::vector<Link> m_links;
    std::vector<NodeEntry> m_nodeEntries;
    std::vector<LinkEntry> m_linkEntries;
    std::vector<Label> m_labels;
    std::vector<ModeValues> m_modes;
    std::vector<RowSet> m_rowSets;
    std::vector<Row> m_rows;
    IdIndex m_nodeIndex;  // the last object of each id, as in the next one
    IdIndex m_linkIndex;
};

}  // namespace tessera_host
