// How much space a drawing's boxes keep for their values.
#pragma once

#include "draw/reservation.h"
#include "host/document/viewpoint.h"

namespace tessera_cli {

// Measures the rows that `viewpoint` declares for its nodes, groups and labels, in all display modes: their
// names in the language that is set, and values as wide as their queries' formats make them.
[[nodiscard]] tessera_draw::Reservation measureReservedSpace(
    const tessera_host::Viewpoint::Pointer& viewpoint);

}  // namespace tessera_cli
