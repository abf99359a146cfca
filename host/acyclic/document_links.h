// Where a document speaks of its links.
#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>

#include "host/check/graph_sections.h"

namespace tessera_host {

// Refers to the document.
struct DocumentLinks {
    using Element = const basekit2::variant_bag_t*;
    struct Entry {
        Element element;
        std::size_t link;
    };

    DeclaredGraph graph;
    std::vector<Element> elements;  // of the graph's links
    std::vector<Entry> entries;     // in the display sections, in their order
};

// Reads the document as the diagram library will. An entry that reaches no link there, because it stands
// before it, is held to mean the link that has its id in the end; other entries that reach none are left out.
[[nodiscard]] DocumentLinks readLinks(const basekit2::variant_bag_t& viewpoint, Watch& watch);

// The elements that change when links (by their index in the graph) are turned around: their own, and the
// labels at their ends.
[[nodiscard]] std::unordered_set<DocumentLinks::Element> elementsToTurn(
    const DocumentLinks& document, const std::vector<std::size_t>& links);

}  // namespace tessera_host
