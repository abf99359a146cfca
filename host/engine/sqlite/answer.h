// What became of a reference.
#pragma once

#include <string>
#include <variant>

#include "host/engine/sqlite/failure.h"

namespace tessera_host {

// The text of the cell, or why there is none.
using Answer = std::variant<std::string, Failure>;

}  // namespace tessera_host
