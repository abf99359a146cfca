#include "host/lint/reversal/acyclic_viewpoint.h"

#include <utility>

#include "host/lint/cycles/cycle_finder.h"
#include "host/lint/cycles/cycle_report.h"
#include "host/lint/reversal/reversed_bag.h"

namespace tessera_host {

using tessera_support::CancelToken;

Expected<AcyclicViewpoint> makeAcyclic(const Viewpoint::Pointer& viewpoint, const CancelToken& token) {
    const DocumentStructure& structure = viewpoint->structure();
    const CyclicLinks cyclic = findCyclicLinks(structure, token);
    const std::vector<std::size_t> links = linksToReverse(cyclic, token);
    if (token.isCancelled()) return cancelledError();
    AcyclicViewpoint acyclic{viewpoint, {}};
    if (!links.empty()) {
        auto reversed = Viewpoint::fromBag(reversedBag(viewpoint->bag(), elementsToReverse(structure, links)),
                                           viewpoint->name(), token);
        if (!reversed) return std::move(reversed).error();
        acyclic.viewpoint = *std::move(reversed);
        acyclic.messages.push_back(reportReversed(structure, links));
    }
    for (Problem& loop : reportLoops(structure, cyclic, CycleReport::drawing))
        acyclic.messages.push_back(std::move(loop));
    return acyclic;
}

std::vector<Problem> describeCycles(const Viewpoint& viewpoint, const CancelToken& token) {
    const CyclicLinks cyclic = findCyclicLinks(viewpoint.structure(), token);
    if (token.isCancelled()) return {};
    return reportCycles(viewpoint.structure(), cyclic, CycleReport::drawing, token);
}

}  // namespace tessera_host
