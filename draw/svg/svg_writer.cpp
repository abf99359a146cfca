#include "draw/svg_writer.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <string_view>

#include "draw/picture_writer.h"
#include "draw/scene/role_names.h"
#include "draw/scene/scene_lines.h"
#include "draw/scene/shapes.h"
#include "draw/scene/shown_text.h"
#include "draw/svg/svg_style.h"
#include "draw/svg/svg_text.h"

namespace tessera_draw {
namespace {

constexpr std::size_t maxTooltipBytes = 1000;  // bytes of a name or value

// What the element is to screen readers. A header repeats what its group says.
std::string_view roleOf(Element::Kind kind) {
    if (kind == Element::Kind::header) return " aria-hidden=\"true\"";
    return kind == Element::Kind::group ? " role=\"group\"" : " role=\"img\"";
}

// Content hash (FNV-1a) as id prefix; collisions are unlikely.
std::string idOf(const Scene& scene, Theme theme) {
    std::uint32_t hash = 2166136261;
    const auto add = [&](std::string_view text) {
        for (const char c : text)
            hash = (hash ^ static_cast<unsigned char>(c)) * 16777619;
        // 0xFF is not in any UTF-8 text: it keeps "ab", "c" apart from "a", "bc".
        hash = (hash ^ 0xFF) * 16777619;
    };
    add(classOf(theme));
    add(scene.name);
    add(scene.mode);
    add(fmt::format("{:.0f} {:.0f}", scene.size.width, scene.size.height));
    for (const Element& element : scene.elements)
        add(element.id);
    return fmt::format("t{:08x}", hash);
}

class SvgWriter {
  public:
    SvgWriter(const Scene& scene, const SvgOptions& options, Output& output)
        : m_scene(scene),
          m_theme(options.theme),
          m_id(options.idPrefix.empty() ? idOf(scene, options.theme) : options.idPrefix),
          m_text(output) {}

    bool write() {
        begin();
        for (std::size_t i = 0; i < m_scene.elements.size(); ++i)
            element(m_scene.elements[i], i);
        m_text.raw("</svg>\n");
        return m_text.finish();
    }

  private:
    void begin() {
        // In whole pixels, as in the other formats.
        const double width = std::ceil(m_scene.size.width);
        const double height = std::ceil(m_scene.size.height);
        m_text.raw("<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"tessera-diagram ");
        m_text.raw(classOf(m_theme)).raw("\"");
        m_text.attribute("width", width).attribute("height", height);
        // A page that is narrower still scrolls, where else no text could be read.
        m_text.raw(fmt::format(" style=\"min-width:{:.0f}px\"", width * minReadableScale));
        m_text.raw(" viewBox=\"0 0 ").point({width, height}).raw("\" role=\"graphics-document document\"");
        m_text.raw(fmt::format(" aria-labelledby=\"{0}-title {0}-desc\"", m_id));
        m_text.attribute("data-mode", m_scene.mode);
        m_text.raw(fmt::format(">\n<title id=\"{}-title\">", m_id));
        m_text.escaped(m_scene.name.empty() ? "Diagram" : m_scene.name);
        m_text.raw(fmt::format("</title>\n<desc id=\"{}-desc\">", m_id)).escaped(description());
        m_text.raw("</desc>\n<style>\n").raw(styleSheet(m_theme, m_scene)).raw("</style>\n");
        m_text.raw("<rect class=\"bg\" width=\"100%\" height=\"100%\"/>\n");
    }

    // For screen readers, which cannot see how large the diagram is.
    std::string description() const {
        const auto counted = [](std::size_t count, std::string_view what) {
            return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
        };
        std::string text =
            fmt::format("A diagram of {} in {}, with {}.", counted(m_scene.nodeCount, "node"),
                        counted(m_scene.groupCount, "group"), counted(m_scene.lineCount, "link"));
        for (const LevelLook& level : m_scene.levels)
            text += fmt::format(" {} {}.", level.count, level.name);
        return text;
    }

    // docs/drawing.md describes the attributes for scripts.
    void element(const Element& element, std::size_t number) {
        m_text.raw("<g id=\"").raw(m_id).raw("-").number(static_cast<double>(number));
        m_text.raw("\"").raw(roleOf(element.kind)).attribute("data-kind", nameOf(element.kind));
        if (element.index != nothing) m_text.attribute("data-id", element.id);
        if (element.kind == Element::Kind::line)
            m_text.attribute("data-from", element.from).attribute("data-to", element.to);
        if (!element.link.empty()) m_text.attribute("data-link", element.link);
        if (!element.place.empty()) m_text.attribute("data-place", element.place);
        if (isMarked(element.type)) m_text.attribute("data-type", element.type);
        if (!element.level.empty()) m_text.attribute("data-level", element.level);
        m_text.raw(">");
        tooltips(element);
        for (std::uint32_t i = 0; i < element.boxes.count; ++i)
            box(m_scene.boxes[element.boxes.first + i]);
        for (std::uint32_t i = 0; i < element.symbols.count; ++i)
            symbol(m_scene.symbols[element.symbols.first + i]);
        for (std::uint32_t i = 0; i < element.lines.count; ++i)
            line(element.lines.first + i);
        for (std::uint32_t i = 0; i < element.texts.count; ++i)
            text(m_scene.texts[element.texts.first + i]);
        m_text.raw("</g>\n");
    }

    void tooltips(const Element& element) {
        if (element.tooltips.count == 0) return;
        // As the first child of its element, where viewers look for a tooltip.
        m_text.raw("<title>");
        for (std::uint32_t i = 0; i < element.tooltips.count; ++i) {
            const TooltipLine& tooltip = m_scene.tooltips[element.tooltips.first + i];
            if (i > 0) m_text.raw("\n");
            // Isolates are needed only where one of two parts runs from right to left.
            const bool isMixed =
                !tooltip.second.empty() && (hasRightToLeft(tooltip.first) || hasRightToLeft(tooltip.second));
            tooltipPart(tooltip.first, isMixed);
            m_text.escaped(tooltip.between);
            tooltipPart(tooltip.second, isMixed);
        }
        m_text.raw("</title>");
    }

    // Isolates keep the characters of a name from changing the direction of the text around it.
    void tooltipPart(std::string_view text, bool isIsolated) {
        const std::size_t end = tessera_support::truncatedUtf8Length(text, maxTooltipBytes);
        if (isIsolated) m_text.raw("\u2068");
        m_text.escaped(text.substr(0, end));
        if (end < text.size()) m_text.raw("…");
        if (isIsolated) m_text.raw("\u2069");
    }

    void box(const BoxShape& box) {
        const Rect& rect = box.rect;
        m_text.raw("<rect class=\"").raw(classOf(box.role));
        if (box.role == BoxRole::levelBadge)
            m_text.raw(" ").raw(fillClassOf(box.level));
        else
            m_text.raw(levelBorderClassOf(box.level));
        m_text.raw("\"");
        m_text.attribute("x", rect.x).attribute("y", rect.y);
        m_text.attribute("width", rect.width).attribute("height", rect.height);
        m_text.attribute("rx", styleOf(box.role).radius).raw("/>");
        if (box.bar == ColorRole::none) return;
        m_text.raw("<path class=\"").raw(fillClassOf(box.bar)).raw("\" d=\"");
        path(barOf(rect, styleOf(box.role).radius));
        m_text.raw("\"/>");
    }

    void symbol(const SymbolShape& symbol) {
        // Rings and crosses are strokes; the other symbols are filled.
        const bool isOutline = isOutlined(symbol.look.symbol);
        m_text.raw("<path class=\"");
        m_text.raw(isOutline ? strokeClassOf(symbol.look.accent) : fillClassOf(symbol.look.accent))
            .raw("\" d=\"");
        path(outlineOf(symbol));
        m_text.raw("\"/>");
    }

    void path(const Outline& outline) {
        for (const OutlineStep& step : outline) {
            switch (step.kind) {
                case OutlineStep::Kind::move:
                    m_text.raw("M").point(step.end);
                    break;
                case OutlineStep::Kind::line:
                    m_text.raw("L").point(step.end);
                    break;
                case OutlineStep::Kind::curve:
                    m_text.raw("C")
                        .point(step.control1)
                        .raw(" ")
                        .point(step.control2)
                        .raw(" ")
                        .point(step.end);
                    break;
                case OutlineStep::Kind::close:
                    m_text.raw("z");
                    break;
            }
        }
    }

    void line(std::size_t number) {
        const LineShape& line = m_scene.lines[number];
        // A path without data would be valid, but of no use.
        if (line.stretches.empty()) return;
        m_text.raw("<path class=\"l")
            .raw(widthClassOf(m_scene, number))
            .raw(m_scene.isGone(number) ? " lg" : "")
            .raw("\" d=\"")
            .path(line)
            .raw("\"/>");
        const double width = m_scene.widthOf(number);
        if (line.hasFromHead) head(line.fromHead, width);
        if (line.hasToHead) head(line.toHead, width);
    }

    void head(const ArrowHead& head, double lineWidth) {
        m_text.raw("<path class=\"a\" d=\"");
        path(outlineOf(head, lineWidth));
        m_text.raw("\"/>");
    }

    // A text whose width is not exactly known is clipped at its maximum width.
    void text(const TextShape& text) {
        const TextStyle& style = styleOf(text.role);
        double x = text.at.x;
        double y = text.at.y;
        if (!text.isExact) {
            // The nested <svg> clips, from 1.2 font sizes above the base line to 0.4 below it.
            const double left = leftOf(text);
            m_text.raw("<svg overflow=\"hidden\"").attribute("x", left);
            m_text.attribute("y", y - 1.2 * style.size).attribute("width", text.maxWidth);
            m_text.attribute("height", 1.6 * style.size).raw(">");
            x -= left;
            y = 1.2 * style.size;
        }
        m_text.raw("<text class=\"")
            .raw(classOf(text.role))
            .raw(textHaloClassOf(text.textHalo))
            .raw(text.color == ColorRole::none ? "" : " ")
            .raw(text.color == ColorRole::none ? "" : fillClassOf(text.color))
            .raw("\"")
            .attribute("x", x)
            .attribute("y", y);
        m_text.raw(">").escaped(text.text);
        if (text.isShortened) m_text.raw("…");
        m_text.raw(text.isExact ? "</text>" : "</text></svg>");
    }

    const Scene& m_scene;
    const Theme m_theme;
    const std::string m_id;
    SvgText m_text;
};

}  // namespace

bool writeSvg(const Scene& scene, const SvgOptions& options, Output& output) {
    return SvgWriter(scene, options, output).write();
}

}  // namespace tessera_draw
