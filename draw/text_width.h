// Measures texts and shortens them to a width.
//
// Widths are those of DejaVu Sans, from a table: layouts are the same on every machine, whatever fonts it
// has. Drawings name other fonts after it as substitutes; the widest of these is hardly wider.
//
// All functions accept any bytes and any thread, do not allocate, and do not throw. Invalid UTF-8 and control
// characters count as U+FFFD, line breaks and tabs as a space (see draw/scene/shown_text.h).
#pragma once

#include <cstdint>
#include <string_view>

namespace tessera_draw {

enum class Weight : std::uint8_t { regular, bold };

struct TextWidth {
    double width = 0;  // in the unit of the font size
    // Whether the width of every character is known. Other characters count as one em or more, but a font may
    // draw them wider still.
    bool isExact = true;
};

// The width of the whole text on one line, white space included. `size` is the font size in pixels.
[[nodiscard]] TextWidth measureText(std::string_view text, double size, Weight weight) noexcept;

// The part of a text that is shown: its beginning, followed by "…" when something was cut off.
struct FittedText {
    std::string_view kept;  // a part of the measured text, without the "…"; valid as long as that
    bool isShortened = false;
    double width = 0;     // in pixels, the "…" included
    bool isExact = true;  // as in TextWidth
};

// Returns the longest beginning that, with its "…", is not wider than `maxWidth` pixels. Never cuts inside
// what people see as one character: an accent stays with its letter, an emoji with its modifiers. White space
// at both ends is left out. Text after the first 1024 bytes is always cut off. Where not even "…" fits, the
// result is "…" all the same, and wider than `maxWidth`; an empty text stays empty. Takes time in proportion
// to the part that fits, not to the whole text.
[[nodiscard]] FittedText fitText(std::string_view text, double maxWidth, double size, Weight weight) noexcept;

}  // namespace tessera_draw
