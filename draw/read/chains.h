// The way of each link of a document through the nodes that the layout has put onto it.
#pragma once

#include <cstdint>
#include <vector>

#include "draw/read/diagram.h"
#include "draw/read/splits.h"

namespace tessera_draw {

// How links ran before labels were exchanged with dummies.
struct Chains {
    std::vector<Index> end;             // by link: the node it leads to
    std::vector<Index> half;            // by node: the link that leads on from it
    std::vector<std::uint32_t> length;  // by link of the document: how many nodes were put onto it
    std::vector<bool> isOnChain;        // by link: the half of a split that a chain passes
};

// Applies the splits one after the other to the document's links. Every node that was put onto a link ends up
// on exactly one chain, unless the splits contradict the links. Linear time.
[[nodiscard]] Chains findChains(const Diagram& diagram, const Splits& splits);

}  // namespace tessera_draw
