#include "host/acyclic/acyclic_document.h"

#include "host/acyclic/cycle_messages.h"
#include "host/acyclic/document_links.h"
#include "host/acyclic/turned_document.h"
#include "host/acyclic/turning.h"

namespace tessera_host {

void makeAcyclic(basekit2::variant_bag_t& viewpoint, relay2::IMessenger& messenger, Watch& watch) {
    const DocumentLinks document = readLinks(viewpoint, watch);
    const CyclicLinks cyclic = findCyclicLinks(document.graph, watch);
    const std::vector<std::size_t> links = linksToTurn(cyclic, watch);
    if (watch.mustStopNow()) return;
    postTurned(document.graph, links, messenger);
    postLoops(document.graph, cyclic.loops, messenger);
    if (!links.empty()) viewpoint = turnedDocument(viewpoint, elementsToTurn(document, links));
}

void tellCycles(const basekit2::variant_bag_t& viewpoint, relay2::IMessenger& messenger, Watch& watch) {
    const DocumentLinks document = readLinks(viewpoint, watch);
    const CyclicLinks cyclic = findCyclicLinks(document.graph, watch);
    if (watch.mustStopNow()) return;
    postTangles(document.graph, cyclic.tangles, messenger);
    postLoops(document.graph, cyclic.loops, messenger);
}

}  // namespace tessera_host
