#include "draw/scene/role_names.h"

#include <array>

namespace tessera_draw {
namespace {

// In the order of the enumerations.
constexpr std::array<std::string_view, 8> kinds = {"group", "line",    "header", "node",
                                                   "label", "heading", "legend", "note"};
constexpr std::array<std::string_view, boxRoleCount> boxRoles = {
    "container", "innerContainer", "card",       "interfaceCard", "labelCard",
    "note",      "badge",          "levelBadge", "widthSample"};
constexpr std::array<std::string_view, textRoleCount> textRoles = {
    "heading",   "badge",      "name",         "rowName",       "rowValue",    "more",
    "labelName", "labelValue", "labelRowName", "labelRowValue", "noteTitle",   "note",
    "legend",    "summary",    "levelWord",    "change",        "labelChange", "labelRowChange"};
constexpr std::array<std::string_view, colorRoleCount> colorRoles = {"none",
                                                                     "ground",
                                                                     "text",
                                                                     "muted",
                                                                     "container",
                                                                     "innerContainer",
                                                                     "containerBorder",
                                                                     "card",
                                                                     "cardBorder",
                                                                     "labelBorder",
                                                                     "line",
                                                                     "badge",
                                                                     "accent1",
                                                                     "accent2",
                                                                     "accent3",
                                                                     "accent4",
                                                                     "critical",
                                                                     "warning",
                                                                     "good",
                                                                     "own1",
                                                                     "own2",
                                                                     "own3",
                                                                     "own4",
                                                                     "own5",
                                                                     "own6",
                                                                     "more",
                                                                     "less"};
constexpr std::array<std::string_view, 16> symbols = {
    "none",    "disc",  "square", "diamond", "triangle", "ring",   "cross",   "alert",
    "caution", "check", "star",   "flag",    "hexagon",  "window", "rhombus", "pentagon"};

template <typename Names, typename Value>
std::string_view nameIn(const Names& names, Value value) noexcept {
    const auto at = static_cast<std::size_t>(value);
    return at < names.size() ? names[at] : std::string_view{};
}

static_assert(kinds[static_cast<std::size_t>(Element::Kind::note)] == "note");
static_assert(boxRoles[static_cast<std::size_t>(BoxRole::badge)] == "badge");
static_assert(textRoles[static_cast<std::size_t>(TextRole::legend)] == "legend");
static_assert(colorRoles[static_cast<std::size_t>(ColorRole::badge)] == "badge");
static_assert(symbols[static_cast<std::size_t>(Symbol::cross)] == "cross");
static_assert(symbols[static_cast<std::size_t>(Symbol::pentagon)] == "pentagon");

}  // namespace

std::string_view nameOf(Element::Kind kind) noexcept {
    return nameIn(kinds, kind);
}

std::string_view nameOf(BoxRole role) noexcept {
    return nameIn(boxRoles, role);
}

std::string_view nameOf(TextRole role) noexcept {
    return nameIn(textRoles, role);
}

std::string_view nameOf(ColorRole role) noexcept {
    return nameIn(colorRoles, role);
}

std::string_view nameOf(Symbol symbol) noexcept {
    return nameIn(symbols, symbol);
}

}  // namespace tessera_draw
