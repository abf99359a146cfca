// The display sections of a document.
#pragma once

#include <cstddef>
#include <map>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/check/graph_sections.h"

namespace tessera_host {

// Looks through display sections for entries that reach nothing, and for what replaces something that came
// before it. Each section has to come after the graph sections that stand before it and before the others.
class DisplaySections {
  public:
    using RowSets = std::vector<const basekit2::variant_bag_t*>;

    DisplaySections(const GraphSections& graph, Findings& findings, Watch& watch)
        : m_graph(graph), m_findings(findings), m_watch(watch) {}
    DisplaySections(const DisplaySections&) = delete;
    DisplaySections& operator=(const DisplaySections&) = delete;

    void read(const basekit2::variant_bag_t& section);

    // Gives away every row set read so far, those that will be replaced among them.
    [[nodiscard]] RowSets takeRowSets() { return std::move(m_rowSets); }

  private:
    using Position = basekit2::source_position_t;
    using Entries = std::unordered_map<std::size_t, Position>;  // by what they reach
    using Labels = std::map<std::string_view, Position>;        // by location
    using Modes = std::map<std::string_view, Position>;         // by name

    struct Kind {
        std::string_view name;
        std::string_view replaced;  // what a later entry takes away from an earlier one
    };

    void readGraph(const basekit2::variant_bag_t& element);
    void readEntry(const basekit2::variant_bag_t& element, const Kind& kind,
                   std::optional<std::size_t> target, const GraphSections::Positions& all, Entries& entries);
    void readLabels(const basekit2::variant_bag_t& element, Labels& labels);
    void readTransfer(const basekit2::variant_bag_t& transfer, Modes& modes);
    void readRowSets(const basekit2::variant_bag_t& element);
    void tellReplaced(const basekit2::variant_bag_t& element, std::string what, Position replaced);

    const GraphSections& m_graph;
    Findings& m_findings;
    Watch& m_watch;
    RowSets m_rowSets;
    Entries m_nodes;
    Entries m_links;
    std::unordered_map<std::size_t, Labels> m_labels;  // by link
    const basekit2::variant_bag_t* m_named = nullptr;
};

}  // namespace tessera_host
