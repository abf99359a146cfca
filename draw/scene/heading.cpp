#include "draw/scene/heading.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "draw/scene/box_sizes.h"
#include "draw/scene/layout_data.h"
#include "draw/text_width.h"

namespace tessera_draw {
namespace {

// Lengths in pixels. Texts are placed by their base lines.
constexpr double margin = sceneMargin;
constexpr double headingLine = 40;
constexpr double badgeHeight = 28;
constexpr double badgeTop = 20;
constexpr double maxHeading = 640;
constexpr double minHeading = 160;
constexpr double legendGap = 26;
constexpr double legendStep = 20;
constexpr double legendBetween = 20;
constexpr double maxLegendText = 180;
constexpr std::size_t maxLegendEntries = 24;

}  // namespace

std::string_view titleOf(const Diagram& diagram) {
    return diagram.name.empty() ? diagram.id : diagram.name;
}

// 28 pixels are for the margins left and right of the text.
double badgeWidth(double modeWidth) {
    return std::ceil(modeWidth * styleOf(TextRole::badge).size) + 28;
}

double headingWidth(const Diagram& diagram, double badge) {
    const TextStyle& style = styleOf(TextRole::heading);
    const double title = fitText(titleOf(diagram), maxHeading, style.size, style.weight).width;
    return std::max(title, minHeading) + 24 + badge;
}

void drawHeading(SceneBuilder& builder, const Diagram& diagram, std::string_view mode, double badge,
                 double width) {
    builder.begin(Element::Kind::heading, {});
    builder.text({margin, headingLine}, TextRole::heading, titleOf(diagram), width - 2 * margin - 24 - badge);
    if (!titleOf(diagram).empty()) builder.tooltip(titleOf(diagram));
    if (mode.empty()) return;
    const Rect rect{width - margin - badge, badgeTop, badge, badgeHeight};
    builder.box(rect, BoxRole::badge);
    builder.text({rect.x + badge / 2, rect.y + 18.5}, TextRole::badge, mode, badge - 16);
    builder.tooltip("display mode", ": ", mode);
}

double drawLegend(SceneBuilder& builder, const DisplayTypes& types, double top, double width) {
    if (types.entries().empty()) return 0;
    builder.begin(Element::Kind::legend, {});
    double x = margin;
    double line = top + legendGap;
    const TextStyle& style = styleOf(TextRole::legend);
    // Reserves the next place for an item of this width, on a new line where the present one is full.
    const auto place = [&](double itemWidth) {
        if (x > margin && x + itemWidth > width - margin) {
            x = margin;
            line += legendStep;
        }
        x += itemWidth + legendBetween;
        return x - itemWidth - legendBetween;
    };
    const std::size_t all = types.entries().size();
    // A single entry more is shown itself: "+1 more" would take the same place.
    const std::size_t shown = all <= maxLegendEntries + 1 ? all : maxLegendEntries;
    for (std::size_t i = 0; i < shown; ++i) {
        const auto& [type, look] = types.entries()[i];
        const double text = fitText(type, maxLegendText, style.size, style.weight).width;
        const double at = place(symbolSpace + text);
        builder.symbol({at + symbolSize / 2, line - 4}, look);
        builder.text({at + symbolSpace, line}, TextRole::legend, type, maxLegendText);
    }
    if (shown < all)
        builder.text({place(maxLegendText / 2), line}, TextRole::legend,
                     builder.own(fmt::format("+{} more", all - shown)), maxLegendText / 2);
    return line + 4 - top;
}

void drawNothing(SceneBuilder& builder, const Rect& rect) {
    builder.begin(Element::Kind::note, {});
    builder.box(rect, BoxRole::note);
    const double middle = rect.x + rect.width / 2;
    builder.text({middle, rect.y + rect.height / 2 - 4}, TextRole::noteTitle, "Nothing to show yet",
                 rect.width);
    builder.text({middle, rect.y + rect.height / 2 + 20}, TextRole::note, "This diagram has no nodes.",
                 rect.width);
}

}  // namespace tessera_draw
