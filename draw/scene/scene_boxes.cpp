#include "draw/scene/scene_boxes.h"

#include <fmt/format.h>

#include <algorithm>

#include "draw/scene/changes.h"
#include "draw/scene/fitted_value.h"

namespace tessera_draw {
namespace {

// The positions of the two columns of rows, and the styles of their texts.
struct Columns {
    double left = 0;
    double right = 0;
    double firstLine = 0;
    double step = 0;
    double valueSpace = 0;  // reserved for values
    TextRole nameRole = TextRole::rowName;
    TextRole valueRole = TextRole::rowValue;
    ChangeLines change;
};

// Rows with changes are higher, and so the first one begins lower.
double firstRow(const BoxSize& size, double line) {
    return line + (size.hasChanges ? 4 : 0);
}

// Returns the index of the text, or `nothing` if the text is empty.
Index drawText(SceneBuilder& builder, Point at, TextRole role, const FittedText& fitted, double maxWidth) {
    return builder.text(at, role, fitted, maxWidth) > 0 ? builder.lastText() : nothing;
}

// Colours the value that was drawn last, and puts the sign of its level left of it.
void drawSign(SceneBuilder& builder, const Row& row, double valueLeft, double line) {
    const LevelLook* level = builder.scene().levelOf(row.level);
    if (level == nullptr) return;
    builder.colorLastText(level->color);
    builder.symbol({valueLeft - signSpace + signSize / 2, line - 4}, {level->sign, level->color}, signSize);
}

void drawRow(SceneBuilder& builder, const Row& row, RowShape& shape, const Columns& columns,
             double baseLine) {
    const double line = hasChange(row) ? baseLine - columns.change.lift : baseLine;
    shape.changeText = drawChange(builder, row, {columns.right, baseLine + columns.change.drop},
                                  columns.change.role, columns.right - columns.left);
    const TextStyle& nameStyle = styleOf(columns.nameRole);
    const TextStyle& valueStyle = styleOf(columns.valueRole);
    const double both = columns.right - columns.left - columnGap;
    // A value may use what a short name leaves, and of a long name as much as it would get when sizes are
    // computed; a name may use what a short value leaves.
    FittedText name = fitText(row.name, both, nameStyle.size, nameStyle.weight);
    const double valueSpace =
        std::max({std::min(columns.valueSpace, both), both * maxValueShare, both - name.width});
    const FittedText value = fitValue(row.value, valueSpace, valueStyle.size, valueStyle.weight);
    const double nameSpace = both - value.width;
    if (name.isShortened || name.width > nameSpace)
        name = fitText(row.name, nameSpace, nameStyle.size, nameStyle.weight);
    shape.nameText = drawText(builder, {columns.left, line}, columns.nameRole, name, nameSpace);
    shape.valueText = drawText(builder, {columns.right, line}, columns.valueRole, value, valueSpace);
    if (shape.valueText != nothing) drawSign(builder, row, columns.right - value.width, line);
}

void drawRows(SceneBuilder& builder, const std::vector<Row>& rows, std::uint32_t maxRows,
              const Columns& columns) {
    if (maxRows == 0) return;
    const bool allFit = rows.size() <= maxRows;
    // The last line then says how many rows are not shown.
    const std::size_t shown = allFit ? rows.size() : maxRows - 1;
    const auto lineOf = [&](std::size_t row) {
        return columns.firstLine + columns.step * static_cast<double>(row);
    };
    for (std::size_t i = 0; i < shown; ++i)
        drawRow(builder, rows[i], builder.row(i), columns, lineOf(i));
    if (!allFit)
        builder.text({columns.left, lineOf(shown)}, TextRole::more,
                     builder.own(fmt::format("+{} more", rows.size() - shown)), columns.right - columns.left);
}

// A centered text may come 4 pixels closer to each border of a label than rows do.
double labelSpace(const Rect& rect) {
    return rect.width - 2 * labelSide + 8;
}

// The sign of a level and the value beside it are centered together.
void drawLabelValue(SceneBuilder& builder, Point at, const Row& row, const ChangeLines& change,
                    const Rect& rect) {
    const TextStyle& style = styleOf(TextRole::labelValue);
    const double sign = builder.scene().levelOf(row.level) == nullptr ? 0 : signSpace;
    const double maxWidth = sign == 0 ? labelSpace(rect) : rect.width - 8 - sign;
    const FittedText fitted = fitValue(row.value, maxWidth, style.size, style.weight);
    const Point middle{at.x + sign / 2, hasChange(row) ? at.y - change.lift : at.y};
    builder.row(0).changeText =
        drawChange(builder, row, {at.x, at.y + change.drop}, change.role, rect.width - 6);
    if (builder.text(middle, TextRole::labelValue, fitted, maxWidth) == 0) return;
    builder.row(0).valueText = builder.lastText();
    drawSign(builder, row, middle.x - fitted.width / 2, middle.y);
}

// A title with the number of rows that are not shown after it.
std::string_view countedTitle(SceneBuilder& builder, std::string_view title, std::size_t hidden,
                              double maxWidth) {
    const TextStyle& style = styleOf(TextRole::labelName);
    const std::string count = fmt::format(" +{}", hidden);
    const double space = maxWidth - measureText(count, style.size, style.weight).width;
    const FittedText fitted = fitText(title, space, style.size, style.weight);
    return builder.own(fmt::format("{}{}{}", fitted.kept, fitted.isShortened ? "…" : "", count));
}

// A single row is shown without its own name: the title above the value is enough.
void drawSingleValue(SceneBuilder& builder, const Info& info, const BoxSize& size, const Rect& rect) {
    const double middle = rect.x + rect.width / 2;
    const double maxWidth = labelSpace(rect);
    const Row& row = info.rows.front();
    std::string_view title = info.name.empty() ? row.name : info.name;
    if (info.rows.size() > 1) title = countedTitle(builder, title, info.rows.size() - 1, maxWidth);
    const ChangeLines& change = size.hasChanges ? labelChange : tightLabelChange;
    if (title.empty())
        return drawLabelValue(builder, {middle, rect.y + rect.height / 2 + 4}, row, change, rect);
    const double titleLift = hasChange(row) && !size.hasChanges ? tightTitleLift : 0;
    builder.text({middle, rect.y + labelTitleLine - titleLift}, TextRole::labelName, title, maxWidth);
    drawLabelValue(builder, {middle, rect.y + (size.hasChanges ? changedLabelValueLine : labelValueLine)},
                   row, change, rect);
}

// Where the values of a header end: at the reserved column, or farther to the right as far as texts need it.
double rightOfHeaderRows(const Info& info, const BoxSize& size, double left, double mostRight) {
    const TextStyle& nameStyle = styleOf(TextRole::rowName);
    const TextStyle& valueStyle = styleOf(TextRole::rowValue);
    double width = size.nameColumn + columnGap + size.valueColumn;
    const double most = mostRight - left;
    for (std::size_t i = 0; i < std::min<std::size_t>(info.rows.size(), size.rows); ++i)
        width = std::max(
            width, fitText(info.rows[i].name, most, nameStyle.size, nameStyle.weight).width + columnGap +
                       fitText(info.rows[i].value, most, valueStyle.size, valueStyle.weight).width);
    return left + std::min(width, most);
}

ColorRole colorOf(const LevelLook* level) {
    return level == nullptr ? ColorRole::none : level->color;
}

}  // namespace

void drawCard(SceneBuilder& builder, const Node& node, const Info& info, const BoxSize& size,
              const Rect& rect, TypeLook look, Index at, const BadgePlaces& places) {
    builder.rows(info);
    const LevelLook* level = worstLevelOf(builder.scene(), info);
    // Without an accent, the bar has the neutral color of borders.
    builder.box(rect, ruleOf(node.displayType).card,
                look.accent == ColorRole::none ? ColorRole::labelBorder : look.accent, colorOf(level));
    const double left = rect.x + cardLeft;
    const double right = rect.right() - cardRight;
    const double nameLine = rect.y + (size.rows == 0 ? cardNameAlone : cardNameLine);
    if (look.symbol != Symbol::none) builder.symbol({right - symbolSize / 2, nameLine - 4.5}, look);
    builder.name({left, nameLine}, captionOf(node),
                 right - left - (look.symbol == Symbol::none ? 0 : symbolSpace));
    drawRows(builder, info.rows, size.rows,
             {left, right, firstRow(size, rect.y + cardFirstRow), size.rowStep, size.valueColumn,
              TextRole::rowName, TextRole::rowValue, size.hasChanges ? cardChange : tightCardChange});
    drawLevelBadge(builder, level, at, rect, places);
    builder.tooltip(captionOf(node));
    if (look.symbol != Symbol::none) builder.tooltip(node.displayType);
    builder.tooltips(info);
}

void drawLabel(SceneBuilder& builder, const Info& info, const BoxSize& size, const Rect& rect, Index at,
               const BadgePlaces& places) {
    builder.rows(info);
    const LevelLook* level = worstLevelOf(builder.scene(), info);
    builder.box(rect, BoxRole::labelCard, ColorRole::none, colorOf(level));
    drawLevelBadge(builder, level, at, rect, places);
    const double middle = rect.x + rect.width / 2;
    builder.tooltips(info);
    if (info.rows.empty()) {
        builder.text({middle, rect.y + rect.height / 2 + 4}, TextRole::labelName, "–", rect.width);
        return;
    }
    if (size.rows <= 1) {
        drawSingleValue(builder, info, size, rect);
        return;
    }
    builder.text({middle, rect.y + labelTitleLine}, TextRole::labelName, info.name, rect.width - 12);
    drawRows(builder, info.rows, size.rows,
             {rect.x + labelSide, rect.right() - labelSide, firstRow(size, rect.y + labelFirstRow),
              size.rowStep, size.valueColumn, TextRole::labelRowName, TextRole::labelRowValue,
              size.hasChanges ? labelRowChange : tightLabelRowChange});
}

void drawContainer(SceneBuilder& builder, const Node& node, const Info& info, const Rect& rect, TypeLook look,
                   bool isInner) {
    const LevelLook* level = worstLevelOf(builder.scene(), info);
    if (level != nullptr) builder.setLevel(level->name);
    builder.box(rect, isInner ? BoxRole::innerContainer : BoxRole::container, ColorRole::none,
                colorOf(level));
    builder.tooltip(captionOf(node));
    if (look.symbol != Symbol::none) builder.tooltip(node.displayType);
    builder.tooltips(info);
}

void drawHeader(SceneBuilder& builder, const Node& node, const Info& info, const BoxSize& size,
                const Rect& rect, TypeLook look, bool isInner, Index at, const BadgePlaces& places) {
    builder.rows(info);
    drawLevelBadge(builder, worstLevelOf(builder.scene(), info), at, rect, places);
    // Headers are drawn above lines, which the halo keeps off the letters.
    builder.setTextHalo(styleOf(isInner ? BoxRole::innerContainer : BoxRole::container).fill);
    double left = rect.x + groupSide;
    const double line = rect.y + groupTitleLine;
    if (look.symbol != Symbol::none) {
        builder.symbol({left + symbolSize / 2, line - 4.5}, look);
        left += symbolSpace;
    }
    builder.name({left, line}, captionOf(node), rect.right() - groupSide - left);
    const double rowsLeft = rect.x + groupSide;
    const double rowsRight = rightOfHeaderRows(info, size, rowsLeft, rect.right() - groupSide);
    drawRows(builder, info.rows, size.rows,
             {rowsLeft, rowsRight, firstRow(size, rect.y + groupFirstRow), size.rowStep, size.valueColumn,
              TextRole::rowName, TextRole::rowValue, size.hasChanges ? cardChange : tightCardChange});
}

}  // namespace tessera_draw
