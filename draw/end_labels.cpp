#include "draw/end_labels.h"

#include <utility>

#include "draw/splits.h"

namespace tessera_draw {
namespace {

// The nodes change places, group and level stay with the slots.
void exchange(Slot& a, Slot& b) {
    std::swap(a.node, b.node);
}

}  // namespace

void moveEndLabels(const Diagram& diagram, Threads& threads) {
    auto& slots = threads.slots;
    const auto nodeOf = [&](std::size_t slot) -> const Node& { return diagram.nodes[slots[slot].node]; };
    for (const Thread& thread : threads.threads) {
        const std::size_t begin = thread.firstSlot;
        const std::size_t end = begin + thread.slotCount;
        for (std::size_t i = begin + 1; i < end && !isLabel(nodeOf(begin)); ++i)
            if (isLabel(nodeOf(i), "from")) exchange(slots[begin], slots[i]);
        for (std::size_t i = end; i-- > begin && !isLabel(nodeOf(end - 1));)
            if (isLabel(nodeOf(i), "to")) exchange(slots[i], slots[end - 1]);
    }
}

}  // namespace tessera_draw
