// Whether nodes, links and display entries of a document fit together.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/check/finding.h"

namespace tessera_host {

// The nodes and links that a document declares, in its order. Index 0 of the nodes stands for the top level.
struct DeclaredGraph {
    struct Node {
        std::string_view id;
        std::size_t parent;
        basekit2::source_position_t position;
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

// Reads the document as the diagram library will and reports missing, doubled and unknown ids, links that
// come before their nodes, and display entries that reach nothing or replace each other. The answer refers to
// text in `viewpoint`.
[[nodiscard]] DeclaredGraph checkStructure(const basekit2::variant_bag_t& viewpoint, Findings& findings);

}  // namespace tessera_host
