// Whether nodes, links and display entries of a document fit together.
#pragma once

#include "host/check/display_sections.h"
#include "host/check/graph_sections.h"

namespace tessera_host {

// What a document holds where the diagram library looks for it. Refers to the document.
struct Structure {
    DeclaredGraph graph;
    DisplaySections::RowSets rowSets;
};

// Reads the document as the diagram library will and reports missing, doubled and unknown ids, links that
// come before their nodes, display entries that reach nothing or replace each other, and a document that
// shows nothing.
[[nodiscard]] Structure checkStructure(const basekit2::variant_bag_t& viewpoint, Findings& findings,
                                       Watch& watch);

}  // namespace tessera_host
