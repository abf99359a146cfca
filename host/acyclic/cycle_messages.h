// What people are told of links that go in circles.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/acyclic/turning.h"
#include "platform/relay2/messenger.h"

namespace tessera_host {

// Of each kind of message so many are posted, then one that counts the others.
inline constexpr std::size_t maxCycleMessages = 10;

// A warning for each tangle: the links of a shortest one through the first of its links.
void postTangles(const DeclaredGraph& graph, const std::vector<Tangle>& tangles,
                 relay2::IMessenger& messenger);

// A warning for each link that no turning helps.
void postLoops(const DeclaredGraph& graph, const std::vector<std::size_t>& loops,
               relay2::IMessenger& messenger);

// One note on how many links were turned around, and which; none when there are none.
void postTurned(const DeclaredGraph& graph, const std::vector<std::size_t>& links,
                relay2::IMessenger& messenger);

// What is wrong with a link that no turning helps.
[[nodiscard]] std::string describeLoop(const DeclaredGraph& graph, std::size_t link);

}  // namespace tessera_host
