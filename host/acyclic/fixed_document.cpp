#include "host/acyclic/fixed_document.h"

#include "host/acyclic/document_links.h"
#include "host/acyclic/turned_document.h"
#include "host/acyclic/turning.h"
#include "host/document/text.h"
#include "host/text/xml_reader.h"

namespace tessera_host {
namespace {

Finding noteOf(const DeclaredGraph& graph, std::size_t index) {
    const auto& [id, from, to, position] = graph.links[index];
    return {position, relay2::severity_t::note,
            "link " + quoted(id) + " is turned around: it leads from " + quoted(graph.nodes[to].id) + " to " +
                quoted(graph.nodes[from].id) + " now, and its direction and labels are exchanged with it"};
}

}  // namespace

std::optional<FixedDocument> fixDocument(std::string text, basekit2::variant_bag_t viewpoint, Watch& watch) {
    FixedDocument fixed;
    {
        const DocumentLinks document = readLinks(viewpoint, watch);
        const CyclicLinks cyclic = findCyclicLinks(document.graph, watch);
        const std::vector<std::size_t> links = linksToTurn(cyclic, watch);
        if (watch.mustStopNow()) return std::nullopt;
        if (!links.empty()) {
            const auto elements = elementsToTurn(document, links);
            for (const std::size_t link : links)
                fixed.turned.push_back(noteOf(document.graph, link));
            auto turned = turnedText(text, elements);
            // What the text says now has to be what was meant.
            if (!turned || readXmlText(*turned, fixed.viewpoint) ||
                !(fixed.viewpoint == turnedDocument(viewpoint, elements)))
                return std::nullopt;
            text = std::move(*turned);
        }
    }
    if (fixed.turned.empty()) fixed.viewpoint = std::move(viewpoint);
    fixed.text = std::move(text);
    return fixed;
}

}  // namespace tessera_host
