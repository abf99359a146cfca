// Builds the lists of a scene, element by element.
#pragma once

#include <string_view>

#include "draw/scene.h"
#include "draw/scene/box_sizes.h"

namespace tessera_draw {

// Shapes that are added between begin() and the next begin() or end() belong to one element. Adding a shape
// REQUIRES an open element. The builder keeps views of all texts: they must live as long as the scene, as the
// layout's texts, literals and those from own() do. The scene must outlive the builder.
class SceneBuilder {
  public:
    explicit SceneBuilder(Scene& scene) : m_scene(scene) {}

    // Ends the open element, if any, and opens another one. The reference is valid until the next begin().
    Element& begin(Element::Kind kind, std::string_view id, Index index = nothing);
    // Ends the open element, if any.
    void end();

    void box(const Rect& rect, BoxRole role, ColorRole bar = ColorRole::none,
             ColorRole level = ColorRole::none);
    // Adds nothing for a look without a symbol.
    void symbol(Point center, const TypeLook& look, double size = symbolSize);
    // Adds the layout's line of that number. One line for each element.
    void line(std::uint32_t number);
    void tooltip(std::string_view first, std::string_view between = {}, std::string_view second = {});
    // Adds the tooltips of `info`: its name, if any, and each row.
    void tooltips(const Info& info);

    // Adds as much of `text` as fits into `maxWidth` pixels. Returns the width of what is shown; adds nothing
    // and returns 0 for an empty text.
    double text(Point at, TextRole role, std::string_view text, double maxWidth);
    // The same for a text that is fitted already.
    double text(Point at, TextRole role, const FittedText& fitted, double maxWidth);
    // The same for a name. Of one that does not fit, beginning and end are shown, because names that begin alike
    // often differ at their ends.
    double name(Point at, std::string_view name, double maxWidth);
    // Gives all further texts of the element a halo of this colour, which should be that of their background.
    // For texts that are drawn above lines.
    void setTextHalo(ColorRole ground) { m_textHalo = ground; }

    // Adds the rows of `info`, without texts that show them yet. `place` must be a literal.
    void rows(const Info& info, std::string_view place = {});
    // The element's row of that number. REQUIRES: rows() was called once for the element, and `number` is
    // less than the number of its rows.
    [[nodiscard]] RowShape& row(std::size_t number);
    // The index in Scene::texts of the text that was added last. REQUIRES: a text was added.
    [[nodiscard]] Index lastText() const noexcept { return static_cast<Index>(m_scene.texts.size() - 1); }

    // The scene that is built, for its levels.
    [[nodiscard]] const Scene& scene() const noexcept { return m_scene; }
    // The level of the open element.
    void setLevel(std::string_view level) { m_scene.elements.back().level = level; }
    // Gives the text that was added last the colour of a level.
    void colorLastText(ColorRole color) { m_scene.texts.back().color = color; }

    // Copies a text that does not live as long as the scene.
    std::string_view own(std::string_view text) { return m_scene.ownedTexts.add(text); }

  private:
    Scene& m_scene;
    bool m_isOpen = false;
    ColorRole m_textHalo = ColorRole::none;
};

}  // namespace tessera_draw
