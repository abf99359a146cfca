#include "draw/pictures/text_painter.h"

#include <cmath>

#include "draw/picture_writer.h"
#include "draw/pictures/painter.h"
#include "draw/scene/shapes.h"
#include "draw/scene/shown_text.h"

namespace tessera_draw {
namespace {

// Of two areas that share a side, a point on it is in the right or lower one.
bool isIn(Point point, const Rect& area) {
    return point.x >= area.x && point.x < area.right() && point.y >= area.y && point.y < area.bottom();
}

}  // namespace

TextPainter::TextPainter(cairo_t* cairo, const Palette& palette, double scale)
    : m_cairo(cairo),
      m_palette(palette),
      m_hasHalos(scale >= minReadableScale),
      m_layout(pango_cairo_create_layout(cairo)) {
    // Without hinting, glyphs keep their positions at every scale.
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(pango_layout_get_context(m_layout.get()), options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(pango_layout_get_context(m_layout.get()), FALSE);
    pango_layout_context_changed(m_layout.get());
    pango_layout_set_single_paragraph_mode(m_layout.get(), TRUE);
    for (std::size_t i = 0; i < textRoleCount; ++i) {
        const TextStyle& style = styleOf(static_cast<TextRole>(i));
        m_fonts[i].reset(pango_font_description_new());
        pango_font_description_set_family_static(m_fonts[i].get(), fontFamily);
        pango_font_description_set_absolute_size(m_fonts[i].get(), style.size * PANGO_SCALE);
        pango_font_description_set_weight(
            m_fonts[i].get(), style.weight == Weight::bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    }
}

void TextPainter::paint(const TextShape& text) {
    m_shown.clear();
    appendShown(m_shown, text.text);
    if (text.isShortened) m_shown += "…";
    PangoLayout* layout = m_layout.get();
    pango_layout_set_width(layout, -1);
    pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_NONE);
    pango_layout_set_font_description(layout, m_fonts[static_cast<std::size_t>(text.role)].get());
    pango_layout_set_text(layout, m_shown.data(), static_cast<int>(m_shown.size()));
    PangoRectangle extents;
    pango_layout_get_extents(layout, nullptr, &extents);
    const bool isCounted = !m_counted || isIn(text.at, *m_counted);
    const double difference = std::abs(extents.width / static_cast<double>(PANGO_SCALE) - text.width);
    // The boxes for missing characters have widths of their own.
    if (isCounted && text.isExact && pango_layout_get_unknown_glyphs_count(layout) == 0 &&
        difference > 2 + 0.04 * text.width)
        ++m_otherWidths;
    // Wider than measured, as with another font: shortened once more instead of drawn over its neighbours.
    if (extents.width > (text.maxWidth + 1) * PANGO_SCALE) {
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
        pango_layout_set_width(layout, static_cast<int>(text.maxWidth * PANGO_SCALE));
    }
    PangoLayoutLine* line = pango_layout_get_line_readonly(layout, 0);
    if (line == nullptr) return;
    // Pango draws a box with the code for each of these.
    if (isCounted) m_missing += static_cast<std::size_t>(pango_layout_get_unknown_glyphs_count(layout));
    pango_layout_line_get_extents(line, nullptr, &extents);
    const double width = extents.width / static_cast<double>(PANGO_SCALE);
    const Anchor anchor = styleOf(text.role).anchor;
    const double back = anchor == Anchor::start ? 0 : anchor == Anchor::middle ? width / 2 : width;
    cairo_move_to(m_cairo, text.at.x - back, text.at.y);
    if (m_hasHalos && text.textHalo != ColorRole::none) {
        pango_cairo_layout_line_path(m_cairo, line);
        setColor(m_cairo, m_palette, text.textHalo);
        cairo_set_line_width(m_cairo, textHaloWidth);
        cairo_stroke(m_cairo);
        cairo_move_to(m_cairo, text.at.x - back, text.at.y);
    }
    setColor(m_cairo, m_palette, text.color == ColorRole::none ? styleOf(text.role).color : text.color);
    pango_cairo_show_layout_line(m_cairo, line);
}

}  // namespace tessera_draw
