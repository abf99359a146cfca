// How wide texts are, and how much of them fits.
//
// Widths are those of DejaVu Sans, from a table: layouts come out alike on every machine, and without looking
// for a font. Drawings name wider and narrower fonts behind it, of which the wide ones are hardly wider.
#pragma once

#include <cstdint>
#include <string_view>

namespace tessera_draw {

enum class Weight : std::uint8_t { regular, bold };

struct TextWidth {
    double width = 0;
    // Whether every character is in the table. Others are taken to be wide, but a font may make them wider.
    bool isExact = true;
};

// Any bytes; see utf8.h for what stands in for those that cannot be shown.
[[nodiscard]] TextWidth measureText(std::string_view text, double size, Weight weight) noexcept;

// What is shown of a text: its beginning, with "…" behind when something was cut off.
struct FittedText {
    std::string_view kept;
    bool isShortened = false;
    double width = 0;  // with the "…"
    bool isExact = true;
};

// The longest beginning that is not wider than `maxWidth`. Cuts between characters that people see as one: an
// accent stays with its letter, an emoji with what modifies it. White space at both ends is left out. Takes
// time in proportion to what fits, not to the whole text.
[[nodiscard]] FittedText fitText(std::string_view text, double maxWidth, double size, Weight weight) noexcept;

}  // namespace tessera_draw
