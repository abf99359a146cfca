// Strongly connected components.
#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "host/lint/cycles/group_edges.h"

namespace tessera_host {

inline constexpr std::size_t noIndex = std::numeric_limits<std::size_t>::max();

// A number for each node; two nodes have the same one when each can be reached from the other. Linear time,
// no recursion. Once `token` is cancelled the result is incomplete.
[[nodiscard]] std::vector<std::size_t> componentsOf(std::size_t nodeCount, const GroupEdges& edges,
                                                    const tessera_support::CancelToken& token);

}  // namespace tessera_host
