// Puts the shapes of a scene together, element by element.
#pragma once

#include <string_view>

#include "draw/scene.h"

namespace tessera_draw {

// Shapes added between begin() and the next begin() or end() belong to one element.
class SceneBuilder {
  public:
    explicit SceneBuilder(Scene& scene) : m_scene(scene) {}

    Element& begin(Element::Kind kind, std::string_view id, Index index = nothing);
    void end();

    void box(const Rect& rect, BoxRole role, ColorRole bar = ColorRole::none);
    void symbol(Point center, const TypeLook& look);
    // The layout's line of that number; lines are added in their order.
    void line(std::uint32_t number);
    void tooltip(std::string_view first, std::string_view between = {}, std::string_view second = {});
    // The tooltips of what an info shows: its name, and each row.
    void tooltips(const Info& info);

    // As much of `text` as fits into `maxWidth`; returns its width. Nothing for an empty text.
    double text(Point at, TextRole role, std::string_view text, double maxWidth);
    // The same, fitted before.
    double text(Point at, TextRole role, const FittedText& fitted, double maxWidth);
    // What texts stand on from now on, until the element ends, when lines pass behind them.
    void setTextHalo(ColorRole ground) { m_textHalo = ground; }

    // The rows of `info`, shown by no text yet. `place` must be a literal.
    void rows(const Info& info, std::string_view place = {});
    // The element's row of that number. REQUIRES: rows() was called for it, for one info.
    [[nodiscard]] RowShape& row(std::size_t number);
    // The number of the text that was added last. REQUIRES: there is one.
    [[nodiscard]] Index lastText() const noexcept { return static_cast<Index>(m_scene.texts.size() - 1); }

    // A text of the scene's own.
    std::string_view own(std::string_view text) { return m_scene.ownedTexts.add(text); }

  private:
    Scene& m_scene;
    bool m_isOpen = false;
    ColorRole m_textHalo = ColorRole::none;
};

}  // namespace tessera_draw
