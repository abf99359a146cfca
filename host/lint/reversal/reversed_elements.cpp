#include "host/lint/reversal/reversed_bag.h"

namespace tessera_host {

ReversedElements elementsToReverse(const DocumentStructure& structure,
                                   const std::vector<std::size_t>& links) {
    ReversedElements elements;
    std::vector<bool> isReversed(structure.links().size());
    for (const std::size_t link : links) {
        isReversed[link] = true;
        elements.insert(structure.links()[link].element);
    }
    for (const auto& entry : structure.linkEntries()) {
        const auto link = entry.link != DocumentStructure::none ? entry.link : structure.findLink(entry.id);
        if (!link || !isReversed[*link]) continue;
        for (auto i = entry.labels.begin; i < entry.labels.end; ++i)
            if (structure.labels()[i].place != LabelPlace::center)
                elements.insert(structure.labels()[i].element);
    }
    return elements;
}

}  // namespace tessera_host
