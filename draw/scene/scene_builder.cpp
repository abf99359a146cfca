#include "draw/scene/scene_builder.h"

#include <fmt/format.h>

#include <utility>

#include "draw/scene/changes.h"
#include "draw/scene/shown_text.h"

namespace tessera_draw {
namespace {

template <typename List>
Span spanAtEnd(const List& list) {  // empty, at what is added next
    return {static_cast<std::uint32_t>(list.size()), 0};
}

template <typename List>
void close(Span& span, const List& list) {  // up to the last that was added
    span.count = static_cast<std::uint32_t>(list.size()) - span.first;
}

// The value, its level and its change.
std::string described(const Row& row) {
    std::string text(row.value);
    if (!row.level.empty()) text += fmt::format(" ({})", row.level);
    if (hasChange(row)) text += fmt::format(" – {}", changeText(row));
    return text;
}

// The longest end of the text that is not wider, if it is of characters that never join with others.
std::string_view plainEnd(std::string_view text, double maxWidth, const TextStyle& style) {
    constexpr char32_t firstJoining = 0x300;
    std::size_t begin = text.size();
    while (begin > 0) {
        std::size_t next = begin - 1;
        while (next > 0 && (static_cast<unsigned char>(text[next]) & 0xC0U) == 0x80U)
            --next;
        const auto [code, length, isValid] = tessera_support::decodeUtf8(text.substr(next));
        if (!isValid || next + length != begin || code >= firstJoining || shownAs(code) != code) break;
        if (measureText(text.substr(next), style.size, style.weight).width > maxWidth) break;
        begin = next;
    }
    return text.substr(begin);
}

}  // namespace

Element& SceneBuilder::begin(Element::Kind kind, std::string_view id, Index index) {
    end();
    Element element;
    element.kind = kind;
    element.id = id;
    element.index = index;
    element.boxes = spanAtEnd(m_scene.boxes);
    element.symbols = spanAtEnd(m_scene.symbols);
    element.texts = spanAtEnd(m_scene.texts);
    element.tooltips = spanAtEnd(m_scene.tooltips);
    element.rows = spanAtEnd(m_scene.rows);
    m_isOpen = true;
    return m_scene.elements.emplace_back(element);
}

void SceneBuilder::end() {
    if (!m_isOpen) return;
    m_isOpen = false;
    // A halo is for one element only.
    m_textHalo = ColorRole::none;
    Element& element = m_scene.elements.back();
    close(element.boxes, m_scene.boxes);
    close(element.symbols, m_scene.symbols);
    close(element.texts, m_scene.texts);
    close(element.tooltips, m_scene.tooltips);
    close(element.rows, m_scene.rows);
}

void SceneBuilder::box(const Rect& rect, BoxRole role, ColorRole bar, ColorRole level) {
    m_scene.boxes.push_back({rect, role, bar, level});
}

void SceneBuilder::symbol(Point center, const TypeLook& look, double size) {
    if (look.symbol != Symbol::none) m_scene.symbols.push_back({center, size, look});
}

void SceneBuilder::line(std::uint32_t number) {
    m_scene.elements.back().lines = {number, 1};
}

void SceneBuilder::rows(const Info& info, std::string_view place) {
    for (std::uint32_t i = 0; i < info.rows.size(); ++i)
        m_scene.rows.push_back({place, i, info.rows[i].name, info.rows[i].value, nothing, nothing,
                                info.rows[i].level, info.rows[i].change, info.rows[i].other, nothing});
}

RowShape& SceneBuilder::row(std::size_t number) {
    return m_scene.rows[m_scene.elements.back().rows.first + number];
}

void SceneBuilder::tooltip(std::string_view first, std::string_view between, std::string_view second) {
    m_scene.tooltips.push_back({first, between, second});
}

void SceneBuilder::tooltips(const Info& info) {
    if (!info.name.empty()) tooltip(info.name);
    for (const Row& row : info.rows) {
        const std::string_view between = row.name.empty() ? "" : ": ";
        if (m_scene.levelOf(row.level) == nullptr && row.change.empty())
            tooltip(row.name, between, row.value);
        else
            tooltip(row.name, between, own(described(row)));
    }
}

double SceneBuilder::text(Point at, TextRole role, std::string_view text, double maxWidth) {
    const TextStyle& style = styleOf(role);
    return this->text(at, role, fitText(text, maxWidth, style.size, style.weight), maxWidth);
}

double SceneBuilder::text(Point at, TextRole role, const FittedText& fitted, double maxWidth) {
    if (fitted.kept.empty() && !fitted.isShortened) return 0;
    m_scene.texts.push_back({at, role, fitted.kept, fitted.isShortened, fitted.width, maxWidth,
                             fitted.isExact, m_textHalo, ColorRole::none});
    return fitted.width;
}

double SceneBuilder::name(Point at, std::string_view name, double maxWidth) {
    constexpr double endShare = 0.4;
    const TextStyle& style = styleOf(TextRole::name);
    const FittedText fitted = fitText(name, maxWidth, style.size, style.weight);
    if (!fitted.isShortened) return text(at, TextRole::name, fitted, maxWidth);
    name = name.substr(0, name.find_last_not_of(" \t\n\r") + 1);
    const std::string_view end = plainEnd(name, maxWidth * endShare, style);
    if (end.empty()) return text(at, TextRole::name, fitted, maxWidth);
    const double endWidth = measureText(end, style.size, style.weight).width;
    name.remove_suffix(end.size());
    const FittedText begin = fitText(name, maxWidth - endWidth, style.size, style.weight);
    if (!begin.isShortened || begin.kept.empty()) return text(at, TextRole::name, fitted, maxWidth);
    const std::string_view both = own(fmt::format("{}…{}", begin.kept, end));
    return text(at, TextRole::name, {both, false, begin.width + endWidth, begin.isExact}, maxWidth);
}

}  // namespace tessera_draw
