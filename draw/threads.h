// Puts the pieces of links together again: one thread for each link of the document.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "draw/diagram.h"

namespace tessera_draw {

// A place on a thread, between its ends: the label or dummy that stands there, and where.
struct Slot {
    Index node = nothing;
    Index group = nothing;    // the group whose layers it is in
    std::int32_t level = -1;  // its layer there; not always the node's own (see findThreads)
};

// One link as a document has it, drawn as one line. Its direction names the arrow heads as the document does.
struct Thread {
    std::string_view id;
    std::string_view name;
    std::string_view direction;
    Index from = nothing;  // a node or a group; `nothing` when the diagram lacks it
    Index to = nothing;
    std::uint32_t firstSlot = 0;  // its slots, from `from` to `to`, in Threads::slots
    std::uint32_t slotCount = 0;
    Index link = nothing;  // the link of the diagram that carries the thread's own id
};

struct Threads {
    std::vector<Thread> threads;  // in the order in which the diagram has their first piece
    std::vector<Slot> slots;
    std::vector<Index> strays;  // labels that no thread passes or ends in
};

// The layout splits a link around each label and dummy node that it inserts, and exchanges some labels with
// dummies by rewriting the pieces' ends, which can leave a chain that ends in a label, or a label that links
// to itself while a dummy has its place. Answers what was meant: each label and each dummy is on exactly one
// thread, labels in the order "from", "center", "to", an exchanged label in the slot of the dummy that it was
// exchanged with, group and level included. Parallel links can share the ids of all that was put onto them;
// the order in which a bag lists nodes and links tells them apart. A link that cannot be understood so, in a
// diagram that no library has written, is a thread of its own. Linear time.
[[nodiscard]] Threads findThreads(const Diagram& diagram);

}  // namespace tessera_draw
