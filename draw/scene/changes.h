// How the change of a value to another result looks: a small text below the value. Lengths are pixels.
#pragma once

#include <string>

#include "draw/scene/scene_builder.h"

namespace tessera_draw {

// By how much a value is drawn higher, so that its change has room below it, and how far below the usual base line
// that is.
struct ChangeLines {
    double lift = 0;
    double drop = 0;
    TextRole role = TextRole::change;
};
inline constexpr ChangeLines cardChange = {6, 5, TextRole::change};
inline constexpr ChangeLines labelChange = {6, 5.5, TextRole::labelChange};
inline constexpr ChangeLines labelRowChange = {5, 4, TextRole::labelRowChange};
// In boxes that are no higher than those without changes.
inline constexpr ChangeLines tightCardChange = {5, 3, TextRole::change};
inline constexpr ChangeLines tightLabelChange = {5.5, 3.5, TextRole::labelChange};
inline constexpr ChangeLines tightLabelRowChange = {4.6, 1.8, TextRole::labelRowChange};
inline constexpr double tightTitleLift = 1.5;  // of the title above a single value of a label

[[nodiscard]] inline bool hasChange(const Row& row) noexcept {
    return !row.change.empty();
}

// Whether only the other result has the value.
[[nodiscard]] inline bool isGone(const Row& row) noexcept {
    return row.change == "there";
}

// The whole change for tooltips: "vs 63.4 kB/s, +7.6 kB/s, +12.0 %", or "same".
[[nodiscard]] std::string changeText(const Row& row);

// Draws as much of the change as fits: the other value and the difference, absolute and in per cent; an arrow and
// a colour say where it goes. Nothing for a row without one. Returns the index of the text, or `nothing`.
Index drawChange(SceneBuilder& builder, const Row& row, Point at, TextRole role, double maxWidth);

}  // namespace tessera_draw
