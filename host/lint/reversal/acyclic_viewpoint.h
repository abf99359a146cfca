// A viewpoint whose links form no cycles.
#pragma once

#include <vector>

#include "host/document/problem.h"
#include "host/document/viewpoint.h"
#include "host/error.h"
#include "support/cancel_token.h"

namespace tessera_host {

struct AcyclicViewpoint {
    Viewpoint::Pointer viewpoint;
    std::vector<Problem> messages;  // which links were reversed, and which cycles are left
};

// Reverses as few links as it can so that none form a cycle inside a group. The viewpoint itself stays as it
// is; the result is a new one, or the same when there is nothing to reverse. n log n time. Fails only when it
// is cancelled.
[[nodiscard]] Expected<AcyclicViewpoint> makeAcyclic(const Viewpoint::Pointer& viewpoint,
                                                     const tessera_support::CancelToken& token);

// For those who leave the links as they are: a warning for each cycle, a few of many, and what would help.
// Empty once `token` is cancelled.
[[nodiscard]] std::vector<Problem> describeCycles(const Viewpoint& viewpoint,
                                                  const tessera_support::CancelToken& token);

}  // namespace tessera_host
