// How much room a drawing's boxes keep for their values.
#pragma once

#include "draw/reservation.h"
#include "host/document/declarations.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_cli {

// The rows that `viewpoint` declares for its nodes, groups and labels, in all display modes, with the widths
// of their names in the language that is set, and of values as their queries' formats write them.
[[nodiscard]] tessera_draw::Reservation reserveRoom(const basekit2::variant_bag_t& viewpoint,
                                                    const tessera_host::Declarations& declarations);

}  // namespace tessera_cli
