// Puts the shapes of a scene together, element by element.
#pragma once

#include <string>
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
    void line(LineShape line);
    void tooltip(std::string_view first, std::string_view between = {}, std::string_view second = {});
    // The tooltips of what an info shows: its name, and each row.
    void tooltips(const Info& info);

    // As much of `text` as fits into `maxWidth`; returns its width. Nothing for an empty text.
    double text(Point at, TextRole role, std::string_view text, double maxWidth);
    // What texts stand on from now on, until the element ends, when lines pass behind them.
    void setTextHalo(ColorRole ground) { m_textHalo = ground; }

    // A text of the scene's own.
    std::string_view own(std::string text);

  private:
    Scene& m_scene;
    bool m_isOpen = false;
    ColorRole m_textHalo = ColorRole::none;
};

}  // namespace tessera_draw
