#include "host/lint/reversal/fixed_document.h"

#include <utility>

#include "host/document/text.h"
#include "host/lint/cycles/cycle_finder.h"
#include "host/lint/reversal/reversed_bag.h"

namespace tessera_host {

using tessera_support::CancelToken;

namespace {

Problem noteOf(const DocumentStructure& structure, std::size_t index) {
    const auto& [element, id, from, to, replacedBy] = structure.links()[index];
    return {element->position(),
            "link " + quoted(id) + " is reversed: it leads from " + quoted(structure.nodes()[to].id) +
                " to " + quoted(structure.nodes()[from].id) +
                " now, and its direction and labels are exchanged with it",
            relay2::severity_t::note};
}

}  // namespace

Expected<FixedDocument> fixDocument(std::string text, Viewpoint::Pointer viewpoint,
                                    const CancelToken& token) {
    FixedDocument fixed;
    const DocumentStructure& structure = viewpoint->structure();
    const std::vector<std::size_t> links = linksToReverse(findCyclicLinks(structure, token), token);
    if (token.isCancelled()) return cancelledError();
    if (links.empty()) return FixedDocument{std::move(text), std::move(viewpoint), {}};
    const ReversedElements elements = elementsToReverse(structure, links);
    for (const std::size_t link : links)
        fixed.reversed.push_back(noteOf(structure, link));
    auto reversed = reversedText(text, elements);
    if (reversed) {
        auto read = Viewpoint::readText(*reversed, viewpoint->name(), token);
        // The new text must say what was meant.
        if (read && (*read)->bag() == reversedBag(viewpoint->bag(), elements)) {
            fixed.text = std::move(*reversed);
            fixed.viewpoint = *std::move(read);
            return fixed;
        }
        if (!read && read.error().isCancelled()) return std::move(read).error();
    }
    return Error{ErrorKind::failed, "links form cycles, and only documents in UTF-8 can be fixed", {}};
}

}  // namespace tessera_host
