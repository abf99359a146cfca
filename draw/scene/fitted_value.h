// Shortens values to a width. A number is kept whole as long as that fits.
#pragma once

#include <string_view>

#include "draw/text_width.h"

namespace tessera_draw {

// Whether the value is a number, with a unit or without.
[[nodiscard]] bool beginsWithNumber(std::string_view value) noexcept;

// The part of a value that is shown. As fitText(), but of a number with a unit, words of the unit go first, each
// as a whole: "47.3 …" of "47.3 MB/s", because part of a unit would read as another one. A number that does not fit
// keeps its first digits, and of an exponent the "e", but no digit: "1.23e…". Only "…" is shown where no digit fits.
// A value that does not begin with a number is shortened as any text. Accepts any bytes; any thread.
[[nodiscard]] FittedText fitValue(std::string_view value, double maxWidth, double size,
                                  Weight weight) noexcept;

}  // namespace tessera_draw
