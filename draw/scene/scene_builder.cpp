#include "draw/scene/scene_builder.h"

#include <utility>

#include "draw/scene/box_sizes.h"

namespace tessera_draw {
namespace {

template <typename List>
Span spanAtEnd(const List& list) {
    return {static_cast<std::uint32_t>(list.size()), 0};
}

template <typename List>
void close(Span& span, const List& list) {
    span.count = static_cast<std::uint32_t>(list.size()) - span.first;
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
    element.lines = spanAtEnd(m_scene.lines);
    element.texts = spanAtEnd(m_scene.texts);
    element.tooltips = spanAtEnd(m_scene.tooltips);
    m_isOpen = true;
    return m_scene.elements.emplace_back(element);
}

void SceneBuilder::end() {
    if (!m_isOpen) return;
    m_isOpen = false;
    m_textHalo = ColorRole::none;
    Element& element = m_scene.elements.back();
    close(element.boxes, m_scene.boxes);
    close(element.symbols, m_scene.symbols);
    close(element.lines, m_scene.lines);
    close(element.texts, m_scene.texts);
    close(element.tooltips, m_scene.tooltips);
}

void SceneBuilder::box(const Rect& rect, BoxRole role, ColorRole bar) {
    m_scene.boxes.push_back({rect, role, bar});
}

void SceneBuilder::symbol(Point center, const TypeLook& look) {
    if (look.symbol != Symbol::none) m_scene.symbols.push_back({center, symbolSize, look});
}

void SceneBuilder::line(LineShape line) {
    m_scene.lines.push_back(std::move(line));
}

void SceneBuilder::tooltip(std::string_view first, std::string_view between, std::string_view second) {
    m_scene.tooltips.push_back({first, between, second});
}

void SceneBuilder::tooltips(const Info& info) {
    if (!info.name.empty()) tooltip(info.name);
    for (const Row& row : info.rows)
        tooltip(row.name, row.name.empty() ? "" : ": ", row.value);
}

double SceneBuilder::text(Point at, TextRole role, std::string_view text, double maxWidth) {
    const TextStyle& style = styleOf(role);
    const FittedText fitted = fitText(text, maxWidth, style.size, style.weight);
    if (fitted.kept.empty() && !fitted.isShortened) return 0;
    m_scene.texts.push_back(
        {at, role, fitted.kept, fitted.isShortened, fitted.width, maxWidth, fitted.isExact, m_textHalo});
    return fitted.width;
}

std::string_view SceneBuilder::own(std::string text) {
    return m_scene.ownedTexts.emplace_back(std::move(text));
}

}  // namespace tessera_draw
