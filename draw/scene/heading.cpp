#include "draw/scene/heading.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "draw/scene/box_sizes.h"
#include "draw/scene/layout_data.h"
#include "draw/scene/levels.h"
#include "draw/text_width.h"

namespace tessera_draw {
namespace {

// Lengths in pixels. Texts are placed by their base lines.
constexpr double margin = sceneMargin;
constexpr double headingLine = 36;
constexpr double badgeHeight = 28;
constexpr double badgeTop = 16;
constexpr double maxHeading = 640;
constexpr double minHeading = 160;
constexpr double headingGap = 24;  // between the title, the badge, and a legend between them
constexpr double legendGap = 26;
constexpr double legendStep = 20;
constexpr double legendBetween = 20;
constexpr double maxLegendText = 180;
constexpr std::size_t maxLegendEntries = 24;
constexpr double sampleLength = 26;  // of a line's width
constexpr double sampleSpace = 32;   // with the gap beside it
constexpr double summaryLine = 56;   // below the heading, above the content
constexpr double summaryGap = 14;
constexpr double minLast = 190;  // for what comes last, before levels give way to it

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
    return std::max(title, minHeading) + headingGap + badge;
}

Rect drawHeading(SceneBuilder& builder, const Diagram& diagram, std::string_view mode, double badge,
                 double width) {
    builder.begin(Element::Kind::heading, {});
    const double title = builder.text({margin, headingLine}, TextRole::heading, titleOf(diagram),
                                      width - 2 * margin - headingGap - badge);
    if (!titleOf(diagram).empty()) builder.tooltip(titleOf(diagram));
    const double left = margin + title + headingGap;
    if (mode.empty()) return {left, badgeTop, width - margin - left, badgeHeight};
    const Rect rect{width - margin - badge, badgeTop, badge, badgeHeight};
    builder.box(rect, BoxRole::badge);
    builder.text({rect.x + badge / 2, rect.y + 18.5}, TextRole::badge, mode, badge - 16);
    builder.tooltip("display mode", ": ", mode);
    return {left, badgeTop, rect.x - headingGap - left, badgeHeight};
}

namespace {

// "3 critical", for each level that values are at.
struct LevelCount {
    const LevelLook* level;
    std::string_view text;
    double width;  // with its sign and the gap after it
};

std::vector<LevelCount> countsOf(SceneBuilder& builder) {
    const TextStyle& style = styleOf(TextRole::summary);
    std::vector<LevelCount> counts;
    for (const LevelLook& level : builder.scene().levels) {
        if (level.count == 0) continue;
        const std::string_view text = builder.own(fmt::format("{} {}", level.count, level.name));
        counts.push_back(
            {&level, text, symbolSpace + measureText(text, style.size, style.weight).width + summaryGap});
    }
    return counts;
}

}  // namespace

void drawSummary(SceneBuilder& builder, const Meaning& meaning, const std::string& worstPlace, double width) {
    if (builder.scene().levels.empty() && meaning.comparison.empty()) return;
    const double right = width - margin;
    const std::vector<LevelCount> counts = countsOf(builder);
    if (counts.empty() && meaning.comparison.empty()) {
        builder.text({margin, summaryLine}, TextRole::legend, "no value is at a level", right - margin);
        return;
    }
    const std::string_view worst = worstPlace.empty() ? "" : builder.own("worst: " + worstPlace);
    const std::string_view last = meaning.comparison.empty() ? worst : meaning.comparison;
    const TextStyle& style = styleOf(TextRole::legend);
    const double lastWidth = measureText(last, style.size, style.weight).width;
    // Where not everything fits, the best levels give way to the worst place; the tooltip has them all.
    double end = right - std::min(lastWidth, minLast);
    double x = margin;
    for (const auto& [level, text, itemWidth] : counts) {
        builder.tooltip(text);
        if (x > margin && x + itemWidth > end) end = 0;
        if (end == 0) continue;
        builder.symbol({x + signSize / 2, summaryLine - 4.2}, {level->sign, level->color}, signSize);
        if (builder.text({x + symbolSpace, summaryLine}, TextRole::summary, text, right - x - symbolSpace) >
            0)
            builder.colorLastText(level->color);
        x += itemWidth;
    }
    if (!worst.empty()) builder.tooltip(worst);
    if (!meaning.comparison.empty()) builder.tooltip(meaning.comparison);
    if (last.empty()) return;
    if (right - x > lastWidth || right - x >= minLast / 2)
        builder.text({x, summaryLine}, TextRole::legend, last, right - x);
}

namespace {

// Places the entries of a legend one after the other, and continues on a new line where one is full.
class LegendLines {
  public:
    LegendLines(double left, double line, double right)
        : m_left(left), m_right(right), m_x(left), m_line(line) {}

    // The left edge of the next item, which is this wide.
    double place(double itemWidth) {
        if (m_x > m_left && m_x + itemWidth > m_right) newLine();
        const double at = m_x;
        m_x += itemWidth + legendBetween;
        return at;
    }
    void newLine() {
        if (m_x > m_left) m_line += legendStep;
        m_x = m_left;
    }
    [[nodiscard]] double line() const noexcept { return m_line; }

  private:
    const double m_left;
    const double m_right;
    double m_x;
    double m_line;
};

double legendWidth(std::string_view text) {
    const TextStyle& style = styleOf(TextRole::legend);
    return fitText(text, maxLegendText, style.size, style.weight).width;
}

// In one line, all of them; infinite if that is not how they are shown.
double typesWidth(const DisplayTypes& types) {
    if (types.entries().size() > maxLegendEntries) return std::numeric_limits<double>::infinity();
    double width = 0;
    for (const auto& [type, look] : types.entries())
        width += symbolSpace + legendWidth(type) + legendBetween;
    return width - legendBetween;
}

void drawTypes(SceneBuilder& builder, const DisplayTypes& types, LegendLines& lines) {
    const std::size_t all = types.entries().size();
    // A single entry more is shown itself: "+1 more" would take the same place.
    const std::size_t shown = all <= maxLegendEntries + 1 ? all : maxLegendEntries;
    for (std::size_t i = 0; i < shown; ++i) {
        const auto& [type, look] = types.entries()[i];
        const double at = lines.place(symbolSpace + legendWidth(type));
        builder.symbol({at + symbolSize / 2, lines.line() - 4}, look);
        builder.text({at + symbolSpace, lines.line()}, TextRole::legend, type, maxLegendText);
    }
    if (shown == all) return;
    const double at = lines.place(maxLegendText / 2);
    builder.text({at, lines.line()}, TextRole::legend, builder.own(fmt::format("+{} more", all - shown)),
                 maxLegendText / 2);
}

void drawLevels(SceneBuilder& builder, LegendLines& lines) {
    for (const LevelLook& level : builder.scene().levels) {
        const double at = lines.place(symbolSpace + legendWidth(level.name));
        builder.symbol({at + signSize / 2, lines.line() - 4}, {level.sign, level.color}, signSize);
        builder.text({at + symbolSpace, lines.line()}, TextRole::legend, level.name, maxLegendText);
    }
}

void drawWidths(SceneBuilder& builder, const Meaning& meaning, LegendLines& lines) {
    if (meaning.widthSteps.empty()) return;
    const std::string_view name = builder.own(fmt::format("Width of lines: {}", meaning.widthsName));
    const double nameAt = lines.place(legendWidth(name));
    builder.text({nameAt, lines.line()}, TextRole::legend, name, maxLegendText);
    for (std::size_t i = 0; i < meaning.widthSteps.size(); ++i) {
        const double at = lines.place(sampleSpace + legendWidth(meaning.widthSteps[i]));
        const double middle = lines.line() - 4;
        builder.box({at, middle - lineWidths[i] / 2, sampleLength, lineWidths[i]}, BoxRole::widthSample);
        builder.text({at + sampleSpace, lines.line()}, TextRole::legend, meaning.widthSteps[i],
                     maxLegendText);
    }
}

void drawChanges(SceneBuilder& builder, LegendLines& lines) {
    constexpr std::string_view gone = "dashed lines: a value that only the other result has";
    const auto& lineFlags = builder.scene().goneLines;
    if (std::find(lineFlags.begin(), lineFlags.end(), 1) == lineFlags.end()) return;
    const TextStyle& style = styleOf(TextRole::legend);
    const double width = measureText(gone, style.size, style.weight).width;
    const double at = lines.place(width);
    builder.text({at, lines.line()}, TextRole::legend, gone, width + 1);
}

}  // namespace

double drawLegend(SceneBuilder& builder, const DisplayTypes& types, const Meaning& meaning, const Rect& room,
                  double top, double width) {
    const bool hasTypes = !types.entries().empty();
    const bool hasMeaning = !builder.scene().levels.empty() || !meaning.widthSteps.empty();
    if (!hasTypes && !hasMeaning) return 0;
    builder.begin(Element::Kind::legend, {});
    const double inHeading = typesWidth(types);
    if (!hasMeaning && inHeading <= room.width) {
        LegendLines line(room.right() - inHeading, room.y + room.height / 2 + 4, width - margin);
        drawTypes(builder, types, line);
        return 0;
    }
    LegendLines lines(margin, top + legendGap, width - margin);
    if (hasTypes) drawTypes(builder, types, lines);
    if (hasMeaning) {
        lines.newLine();
        drawLevels(builder, lines);
        lines.newLine();
        drawWidths(builder, meaning, lines);
        drawChanges(builder, lines);
    }
    return lines.line() + 4 - top;
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
