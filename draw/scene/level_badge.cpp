#include "draw/scene/level_badge.h"

#include <algorithm>
#include <array>

#include "draw/scene/layout_data.h"
#include "draw/scene/scene_lines.h"
#include "draw/text_width.h"

namespace tessera_draw {
namespace {

constexpr double badgeHeight = 13;
constexpr double badgeOutside = 8.5;  // how far it is outside of its box
constexpr double badgeSide = 5;       // from its edges to sign and word
constexpr double badgeSign = 8;
constexpr double badgeGap = 3;  // between sign and word
constexpr double badgeInset = 8;

bool covers(const Rect& badge, Point tip) {
    return tip.x > badge.x - arrowWidth && tip.x < badge.right() + arrowWidth &&
           tip.y > badge.y - arrowLength && tip.y < badge.bottom() + arrowLength;
}

}  // namespace

BadgePlaces::BadgePlaces(const LayoutData& data, bool hasLevels) : m_data(data) {
    if (!hasLevels) return;
    for (std::size_t i = 0; i < data.lines.size(); ++i) {
        const LineShape& line = data.lines[i];
        const LinkPath& path = data.linkPaths.paths[data.pathOfLine[i]];
        if (line.stretches.empty()) continue;
        m_tips.emplace_back(path.from, line.hasFromHead ? line.fromHead.tip : line.stretches.front().start);
        m_tips.emplace_back(path.to,
                            line.hasToHead ? line.toHead.tip : line.stretches.back().segments.back().end);
    }
    std::sort(m_tips.begin(), m_tips.end(), [](const Tip& a, const Tip& b) { return a.first < b.first; });
}

Rect BadgePlaces::find(Index node, const Rect& box, Size badge) const {
    const double inset = std::clamp((box.width - badge.width) / 2, 0.0, badgeInset);
    const double right = box.right() - inset - badge.width;
    const double left = box.x + inset;
    double y = box.y - badgeOutside;
    double otherY = box.bottom() + badgeOutside - badge.height;
    if (m_data.isDownward && m_data.kinds.kinds[node] != BoxKind::label) std::swap(y, otherY);
    const std::array<Point, 4> corners = {{{right, y}, {left, y}, {right, otherY}, {left, otherY}}};
    const auto [begin, end] = std::equal_range(m_tips.begin(), m_tips.end(), Tip{node, {}},
                                               [](const Tip& a, const Tip& b) { return a.first < b.first; });
    for (const Point corner : corners) {
        const Rect rect{corner.x, corner.y, badge.width, badge.height};
        if (std::none_of(begin, end, [&](const Tip& tip) { return covers(rect, tip.second); })) return rect;
    }
    return {right, y, badge.width, badge.height};
}

void drawLevelBadge(SceneBuilder& builder, const LevelLook* level, Index node, const Rect& box,
                    const BadgePlaces& places) {
    if (level == nullptr) return;
    builder.setLevel(level->name);
    const TextStyle& style = styleOf(TextRole::levelWord);
    const double around = 2 * badgeSide + badgeSign + badgeGap;
    const FittedText word = fitText(level->name, box.width - around, style.size, style.weight);
    const Rect rect = places.find(node, box, {word.width + around, badgeHeight});
    builder.box(rect, BoxRole::levelBadge, ColorRole::none, level->color);
    const double middle = rect.y + badgeHeight / 2;
    builder.symbol({rect.x + badgeSide + badgeSign / 2, middle}, {level->sign, ColorRole::ground}, badgeSign);
    builder.text({rect.x + badgeSide + badgeSign + badgeGap, middle + 3.1}, TextRole::levelWord, word,
                 word.width);
}

}  // namespace tessera_draw
