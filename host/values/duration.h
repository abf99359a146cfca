// Durations for people.
#pragma once

#include <string>

#include "host/values/number_text.h"

namespace tessera_host {

// `seconds` as a duration; `digits` significant digits below a minute. CellFormat describes the forms.
// REQUIRES: `seconds` is finite, 1 <= digits <= 17.
[[nodiscard]] std::string durationText(const Number& seconds, int digits);

}  // namespace tessera_host
