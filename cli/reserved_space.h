// How much space a drawing's boxes keep for their values.
#pragma once

#include "cli/commands.h"
#include "draw/reservation.h"

namespace tessera_cli {

// Measures the rows that the viewpoint declares for its nodes, groups and labels, in all display modes: their
// names as the catalogues translate them, and values as wide as their queries' formats make them. `hasChanges`: whether
// they are shown beside those of another result.
[[nodiscard]] tessera_draw::Reservation measureReservedSpace(const Input& input, bool hasChanges);

}  // namespace tessera_cli
