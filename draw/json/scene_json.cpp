#include "draw/scene_json.h"

#include <rapidjson/writer.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "draw/scene/role_names.h"
#include "draw/svg/svg_text.h"
#include "support/utf8.h"

namespace tessera_draw {
namespace {

// Collects what the JSON writer puts, and hands it on in blocks.
class BlockStream {
  public:
    using Ch = char;

    explicit BlockStream(Output& output) : m_output(output) {}

    void Put(char c) {  // NOLINT(readability-identifier-naming): the writer's name
        m_block += c;
        if (m_block.size() >= blockSize) Flush();
    }
    void Flush() {  // NOLINT(readability-identifier-naming)
        // After a failure the output is not called again; what follows is dropped.
        if (m_isGood && !m_block.empty()) m_isGood = m_output.write(m_block);
        m_block.clear();
    }

    [[nodiscard]] bool isGood() const noexcept { return m_isGood; }

  private:
    // In bytes.
    static constexpr std::size_t blockSize = 65536;

    Output& m_output;
    std::string m_block;
    bool m_isGood = true;
};

// Takes the data of a path as the SVG writer forms it, so that both formats have the same numbers.
class PathOutput final : public Output {
  public:
    bool write(std::string_view piece) override {
        text += piece;
        return true;
    }

    std::string text;
};

class JsonSceneWriter {
  public:
    JsonSceneWriter(const Scene& scene, Output& output)
        : m_scene(scene), m_stream(output), m_json(m_stream) {}

    bool write() {
        m_json.StartObject();
        member("name", m_scene.name);
        member("mode", m_scene.mode);
        member("width", m_scene.size.width);
        member("height", m_scene.size.height);
        count("nodes", m_scene.nodeCount);
        count("groups", m_scene.groupCount);
        count("links", m_scene.lineCount);
        if (!m_scene.levels.empty())
            array("levels", m_scene.levels.size(), [&](std::size_t i) { level(m_scene.levels[i]); });
        array("elements", m_scene.elements.size(), [&](std::size_t i) { element(m_scene.elements[i]); });
        m_json.EndObject();
        m_stream.Flush();
        return m_stream.isGood();
    }

  private:
    void element(const Element& element) {
        m_json.StartObject();
        member("kind", nameOf(element.kind));
        // The heading, the legend and notes stand for nothing in the diagram and have no id.
        if (element.index != nothing) member("id", element.id);
        if (element.kind == Element::Kind::line) {
            member("from", element.from);
            member("to", element.to);
        }
        memberUnlessEmpty("link", element.link);
        memberUnlessEmpty("place", element.place);
        memberUnlessEmpty("type", element.type);
        memberUnlessEmpty("level", element.level);
        shapes("boxes", element.boxes, m_scene.boxes, [&](const BoxShape& shape) { box(shape); });
        shapes("symbols", element.symbols, m_scene.symbols, [&](const SymbolShape& shape) { symbol(shape); });
        // The builder gives an element one line at most.
        if (element.lines.count > 0) line(element.lines.first);
        shapes("texts", element.texts, m_scene.texts, [&](const TextShape& shape) { text(shape); });
        // Rows name their texts by number within the element, so that it can be read without the others.
        shapes("rows", element.rows, m_scene.rows,
               [&](const RowShape& shape) { row(shape, element.texts.first); });
        shapes("tooltips", element.tooltips, m_scene.tooltips, [&](const TooltipLine& shape) {
            m_scratch.assign(shape.first).append(shape.between).append(shape.second);
            string(m_scratch);
        });
        m_json.EndObject();
    }

    void level(const LevelLook& level) {
        m_json.StartObject();
        member("name", level.name);
        member("sign", nameOf(level.sign));
        member("color", nameOf(level.color));
        count("count", static_cast<std::size_t>(std::max<std::int64_t>(level.count, 0)));
        m_json.EndObject();
    }

    void box(const BoxShape& box) {
        m_json.StartObject();
        member("role", nameOf(box.role));
        member("x", box.rect.x);
        member("y", box.rect.y);
        member("width", box.rect.width);
        member("height", box.rect.height);
        if (box.bar != ColorRole::none) member("bar", nameOf(box.bar));
        if (box.level != ColorRole::none) member("level", nameOf(box.level));
        m_json.EndObject();
    }

    void symbol(const SymbolShape& symbol) {
        m_json.StartObject();
        member("symbol", nameOf(symbol.look.symbol));
        member("color", nameOf(symbol.look.accent));
        member("x", symbol.center.x);
        member("y", symbol.center.y);
        member("size", symbol.size);
        m_json.EndObject();
    }

    // As the data of an SVG path, which scripts can use as it is.
    void line(std::size_t number) {
        const LineShape& line = m_scene.lines[number];
        PathOutput path;
        SvgText text(path);
        text.path(line);
        text.finish();
        member("path", path.text);
        if (!m_scene.lineSteps.empty()) member("strokeWidth", m_scene.widthOf(number));
        if (m_scene.isGone(number)) flag("isDashed");
        if (line.hasFromHead) head("fromHead", line.fromHead);
        if (line.hasToHead) head("toHead", line.toHead);
    }

    void head(std::string_view name, const ArrowHead& head) {
        key(name);
        m_json.StartObject();
        member("x", head.tip.x);
        member("y", head.tip.y);
        member("dx", head.direction.x);
        member("dy", head.direction.y);
        m_json.EndObject();
    }

    void text(const TextShape& text) {
        m_json.StartObject();
        member("role", nameOf(text.role));
        member("x", text.at.x);
        member("y", text.at.y);
        member("width", text.width);
        member("maxWidth", text.maxWidth);
        member("text", text.text);
        if (text.color != ColorRole::none) member("color", nameOf(text.color));
        // Flags are written only where they are true.
        if (text.isShortened) flag("isShortened");
        if (!text.isExact) flag("isClipped");
        m_json.EndObject();
    }

    void row(const RowShape& row, Index firstText) {
        m_json.StartObject();
        memberUnlessEmpty("place", row.place);
        count("number", row.number);
        member("name", row.name);
        member("value", row.value);
        memberUnlessEmpty("level", row.level);
        memberUnlessEmpty("change", row.change);
        memberUnlessEmpty("other", row.other);
        // Left out for texts that only the tooltip shows.
        if (row.nameText != nothing) count("nameText", row.nameText - firstText);
        if (row.valueText != nothing) count("valueText", row.valueText - firstText);
        if (row.changeText != nothing) count("changeText", row.changeText - firstText);
        m_json.EndObject();
    }

    template <typename Write>
    void array(std::string_view name, std::size_t size, Write write) {
        key(name);
        m_json.StartArray();
        for (std::size_t i = 0; i < size; ++i)
            write(i);
        m_json.EndArray();
    }

    template <typename List, typename Write>
    void shapes(std::string_view name, const Span& span, const List& list, Write write) {
        array(name, span.count, [&](std::size_t i) { write(list[span.first + i]); });
    }

    void key(std::string_view name) {
        m_json.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
    }
    void string(std::string_view text) {
        // The repaired text is valid, so this calls itself once at most.
        if (!tessera_support::isValidUtf8(text)) {
            string(tessera_support::repairUtf8(text));
            return;
        }
        m_json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    }
    void member(std::string_view name, std::string_view text) {
        key(name);
        string(text);
    }
    void memberUnlessEmpty(std::string_view name, std::string_view text) {
        if (!text.empty()) member(name, text);
    }
    void member(std::string_view name, double number) {
        key(name);
        // JSON has neither infinity nor NaN.
        m_json.Double(std::isfinite(number) ? number : 0);
    }
    void count(std::string_view name, std::size_t number) {
        key(name);
        m_json.Uint64(number);
    }
    void flag(std::string_view name) {
        key(name);
        m_json.Bool(true);
    }

    const Scene& m_scene;
    BlockStream m_stream;
    rapidjson::Writer<BlockStream> m_json;
    std::string m_scratch;
};

}  // namespace

bool writeSceneJson(const Scene& scene, Output& output) {
    return JsonSceneWriter(scene, output).write();
}

}  // namespace tessera_draw
