// Reconstructs the chain of labels and dummies that the layout has inserted into each link of a document.
#pragma once

#include <cstdint>
#include <vector>

#include "draw/read/diagram.h"
#include "draw/read/splits.h"

namespace tessera_draw {

// The links as they were before labels were exchanged with dummies. Indices are those of the diagram's lists.
struct Chains {
    std::vector<Index> end;             // by link: the node it leads to, or `nothing`
    std::vector<Index> half;            // by node: the link that continues from it; else `nothing`
    std::vector<std::uint32_t> length;  // by link of the document: the number of nodes inserted into it
    std::vector<bool> isOnChain;        // by link: it is the half of a split that belongs to a chain
};

// Applies the splits in their order to the document's links. Every inserted node is then on exactly one
// chain, unless the splits contradict the links. `splits` must come from readSplits() for the same diagram.
// Linear time.
[[nodiscard]] Chains findChains(const Diagram& diagram, const Splits& splits);

}  // namespace tessera_draw
