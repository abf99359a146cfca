// The graph sections of a document.
#pragma once

#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/check/finding.h"
#include "host/check/watch.h"

namespace tessera_host {

// The nodes and links that a document declares, in its order. Index 0 of the nodes stands for the top level.
struct DeclaredGraph {
    struct Node {
        std::string_view id;
        std::size_t parent;
        basekit2::source_position_t position;
        bool isReplaced = false;  // another node took its id over; it takes no part in layering
    };
    struct Link {
        std::string_view id;
        std::size_t from;  // 0: no such node
        std::size_t to;
        basekit2::source_position_t position;
    };

    std::vector<Node> nodes{Node{{}, 0, {}}};
    std::vector<Link> links;
};

// Reads the graph sections as the diagram library will, so that an id finds what it will find there: members
// of a group come before the group, and of several nodes with one id the last that was read is found. Reports
// missing and doubled ids and links without their nodes. Refers to text in the sections.
class GraphSections {
  public:
    using Positions = std::unordered_map<std::string_view, basekit2::source_position_t>;

    GraphSections(Findings& findings, Watch& watch) : m_findings(findings), m_watch(watch) {}
    GraphSections(const GraphSections&) = delete;
    GraphSections& operator=(const GraphSections&) = delete;

    // Notes what is declared anywhere in a section. Comes for all sections before the first is read, so that
    // what stands too early can be told from what does not exist.
    void collect(const basekit2::variant_bag_t& section);
    void read(const basekit2::variant_bag_t& section);

    [[nodiscard]] const DeclaredGraph& graph() const noexcept { return m_graph; }
    // Gives the graph away, when all has been read.
    [[nodiscard]] DeclaredGraph takeGraph() { return std::move(m_graph); }
    // What the id finds in the sections read so far, as an index of the graph.
    [[nodiscard]] std::optional<std::size_t> findNode(std::string_view id) const;
    [[nodiscard]] std::optional<std::size_t> findLink(std::string_view id) const;
    // Where each id is first used, in all collected sections.
    [[nodiscard]] const Positions& allNodes() const noexcept { return m_allNodes; }
    [[nodiscard]] const Positions& allLinks() const noexcept { return m_allLinks; }

  private:
    using Index = std::unordered_map<std::string_view, std::size_t>;

    void readId(const basekit2::variant_bag_t& section);
    void readNodes(const basekit2::variant_bag_t& top);
    std::size_t addNode(const basekit2::variant_bag_t& element, std::size_t parent);
    void fileNode(std::size_t node);
    void readLink(const basekit2::variant_bag_t& element);
    std::size_t readEnd(const basekit2::variant_bag_t& link, std::string_view end);
    void reportMissingId(const basekit2::variant_bag_t& element, const char* what);

    Findings& m_findings;
    Watch& m_watch;
    DeclaredGraph m_graph;
    Index m_nodes;  // read so far
    Index m_links;
    Positions m_allNodes;
    Positions m_allLinks;
    const basekit2::variant_bag_t* m_lastSection = nullptr;
};

}  // namespace tessera_host
