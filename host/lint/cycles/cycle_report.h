// Messages about links that form cycles.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/document/document_structure.h"
#include "host/document/problem.h"
#include "host/lint/cycles/cycle_finder.h"
#include "support/cancel_token.h"

namespace tessera_host {

// What the messages are for; it decides about their severity and about what they advise.
enum class CycleReport : std::uint8_t {
    check,    // every cycle, an error each, with what the layering makes of it
    drawing,  // a warning each, with what helps; at most `maxCycleMessages` of each kind, then their number
};

inline constexpr std::size_t maxCycleMessages = 10;

// Messages are single sentences; ids in them are quoted and shortened.

// A message for each cyclic component, which names a shortest cycle through the first of its links, and one
// for each loop, at the positions of those links. Linear time. Incomplete once `token` is cancelled.
[[nodiscard]] std::vector<Problem> reportCycles(const DocumentStructure& structure, const CyclicLinks& cyclic,
                                                CycleReport report,
                                                const tessera_support::CancelToken& token);

// Loops only, which stay when the other cycles have been opened; for a drawing, without those between a group and
// what is inside it.
[[nodiscard]] std::vector<Problem> reportLoops(const DocumentStructure& structure, const CyclicLinks& cyclic,
                                               CycleReport report);

// One note that says which links were reversed. REQUIRES: there is one.
[[nodiscard]] Problem reportReversed(const DocumentStructure& structure,
                                     const std::vector<std::size_t>& links);

}  // namespace tessera_host
