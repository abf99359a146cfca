// Which links of a document form cycles.
#pragma once

#include <cstddef>
#include <vector>

#include "host/document/document_structure.h"
#include "host/lint/feedback/arc_graph.h"
#include "support/cancel_token.h"

namespace tessera_host {

// Nodes and links are those of the DocumentStructure, by index.

// Nodes of one group of which each can be reached from every other by links.
struct CyclicComponent {
    std::size_t group = DocumentStructure::topLevel;
    std::vector<std::size_t> nodes;  // ascending; the arcs name them by their place here
    std::vector<std::size_t> links;  // ascending; link number i is arc number i
    ArcGraph arcs{0, {}};
    // A node without incoming links from which links lead to the component; `none` when there is none.
    std::size_t origin = DocumentStructure::none;
};

// A link from a node to itself, or between a group and what is inside it. Reversal does not help there.
struct LoopLink {
    std::size_t link = 0;
    std::size_t node = 0;                          // the node or group that both ends are lifted to
    std::size_t origin = DocumentStructure::none;  // as above
};

// The links that lie on cycles inside their groups. A link between groups counts for the two members of the
// common group that contain its ends.
struct CyclicLinks {
    std::vector<CyclicComponent> components;  // in the order of their first links
    std::vector<LoopLink> loops;              // in the order of the links

    [[nodiscard]] bool isEmpty() const noexcept { return components.empty() && loops.empty(); }
};

// Finds them in n log n time. Once `token` is cancelled the result is incomplete, and the caller discards it.
[[nodiscard]] CyclicLinks findCyclicLinks(const DocumentStructure& structure,
                                          const tessera_support::CancelToken& token);

// The links to reverse so that no cycle but the loops is left, ascending: few, as feedbackArcs() says.
[[nodiscard]] std::vector<std::size_t> linksToReverse(const CyclicLinks& cyclic,
                                                      const tessera_support::CancelToken& token);

}  // namespace tessera_host
