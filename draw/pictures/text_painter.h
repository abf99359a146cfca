// Paints texts of scenes with Pango, which finds fonts for scripts that the drawing's own font lacks.
#pragma once

#include <pango/pangocairo.h>

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "draw/scene.h"
#include "draw/theme.h"

namespace tessera_draw {

// Keeps one font for each text role, since creating them for every text would take most of the time. Cairo
// context and palette must outlive this object.
class TextPainter {
  public:
    // `scale` is that of the surface. Below minReadableScale texts have no halo: its outlines of all letters
    // would be most of a picture's data, and show nothing.
    TextPainter(cairo_t* cairo, const Palette& palette, double scale);

    // Paints one text. If the fonts make it wider than its maxWidth, it is shortened with "…".
    void paint(const TextShape& text);

    // From now on, counts only texts that stand at a point of this area, for drawings that are painted in parts.
    void countIn(const Rect& area) { m_counted = area; }

    // Number of characters painted so far that no font has; a box was painted for each.
    [[nodiscard]] std::size_t missing() const noexcept { return m_missing; }

    // Number of texts painted so far whose width is not what it was measured: another font, or no room to shape them.
    [[nodiscard]] std::size_t otherWidths() const noexcept { return m_otherWidths; }

  private:
    struct Freed {
        void operator()(PangoFontDescription* font) const { pango_font_description_free(font); }
        void operator()(PangoLayout* layout) const { g_object_unref(layout); }
    };

    cairo_t* m_cairo;
    const Palette& m_palette;
    const bool m_hasHalos;
    std::unique_ptr<PangoLayout, Freed> m_layout;
    std::array<std::unique_ptr<PangoFontDescription, Freed>, textRoleCount> m_fonts;
    std::string m_shown;
    std::optional<Rect> m_counted;
    std::size_t m_missing = 0;
    std::size_t m_otherWidths = 0;
};

}  // namespace tessera_draw
