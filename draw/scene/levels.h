// How levels of values look: signs and colours. Lengths are pixels.
#pragma once

#include "draw/read/meaning.h"
#include "draw/scene.h"

namespace tessera_draw {

inline constexpr double signSize = 8;  // of a level, left of its value; fits between the columns of rows
inline constexpr double signSpace = 11;

// Gives each level of `meaning` a sign and a colour, by its name or in turn, and puts them into the scene.
// Texts of `meaning` must live as long as the scene.
void setLevels(Scene& scene, const Meaning& meaning);

// The colours of a theme with those of the scene's own levels.
[[nodiscard]] Palette paletteOf(const Scene& scene, bool isDark);

// The look of the worst level among the rows, or null.
[[nodiscard]] const LevelLook* worstLevelOf(const Scene& scene, const Info& info) noexcept;

}  // namespace tessera_draw
