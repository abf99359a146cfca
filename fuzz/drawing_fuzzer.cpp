// Feeds property bags to the drawing, and requires what it promises about its output. Input that begins with "{" or "<"
// is read as JSON or XML; anything else says how to put a bag together that looks like one of the library's.
#include <expat.h>
#include <rapidjson/reader.h>

#include <array>
#include <cmath>
#include <optional>
#include <string>

#include "draw/layout.h"
#include "draw/scene.h"
#include "draw/scene_json.h"
#include "draw/svg_writer.h"
#include "fuzz/support.h"
#include "host/text/json_reader.h"
#include "host/text/xml_reader.h"

namespace {

using basekit2::variant_bag_t;
using tessera_fuzz::require;

// Puts a bag together from bytes. Ids are few, so that links find their nodes and nodes their groups.
class BagMaker {
  public:
    explicit BagMaker(std::string_view bytes) : m_bytes(bytes) {}

    variant_bag_t make() {
        variant_bag_t bag;
        variant_bag_t& head = bag.add_variant_bag("diagram");
        head.put("id", text());
        head.put("name", text());
        head.put("displayMode", text());
        variant_bag_t& nodes = bag.add_variant_bag("nodes");
        variant_bag_t& links = bag.add_variant_bag("links");
        while (!m_bytes.empty()) {
            if (byte() % 2 == 0)
                putNode(nodes.add_variant_bag("node"));
            else
                putLink(links.add_variant_bag("link"));
        }
        return bag;
    }

  private:
    std::uint8_t byte() {
        if (m_bytes.empty()) return 0;
        const auto value = static_cast<std::uint8_t>(m_bytes.front());
        m_bytes.remove_prefix(1);
        return value;
    }

    template <std::size_t count>
    std::string_view oneOf(const std::array<std::string_view, count>& texts) {
        return texts[byte() % count];
    }

    // "b", or the id of something that the library makes: "b_c_label".
    std::string id() {
        constexpr std::array<std::string_view, 6> tails{"", "", "", "_label", "_dummy", "_info"};
        const std::uint8_t value = byte();
        std::string text(1, static_cast<char>('a' + value % 16));
        const std::string_view tail = tails[value / 16 % tails.size()];
        if (!tail.empty() && tail != "_info")
            text.append("_").append(1, static_cast<char>('a' + byte() % 16));
        return text.append(tail);
    }

    // Text as it comes, or one that is hard to draw.
    std::string text() {
        static const std::array<std::string, 12> hard{
            "",         "a & b <c> \"d\" 'e'", "]]>",  "-->",    "\xFF\xC3",           "\xED\xA0\x80",
            "\x01\x1F", "\xEF\xBF\xBE",        "شبكة", "日本語", "👩‍👩‍👧", std::string(300, 'W')};
        const std::uint8_t kind = byte();
        if (kind < 0x80) return hard[kind % hard.size()];
        const std::string_view taken = m_bytes.substr(0, kind % 32);
        m_bytes.remove_prefix(taken.size());
        return std::string(taken);
    }

    std::int64_t level() {
        constexpr std::array<std::int64_t, 4> odd{-1, -7, INT64_MAX, INT32_MAX};
        const std::uint8_t value = byte();
        return value < 0xF0 ? value % 12 : odd[value % odd.size()];
    }

    void putRows(variant_bag_t& owner, std::string_view name) {
        variant_bag_t& info = owner.add_variant_bag(name);
        const int count = byte() % 8;
        if (count == 0) return;
        info.put("name", text());
        variant_bag_t& rows = info.add_variant_bag("rows");
        for (int i = 0; i < count; ++i) {
            variant_bag_t& row = rows.add_variant_bag("row");
            row.put("name", text());
            row.put("value", text());
        }
    }

    void putNode(variant_bag_t& node) {
        constexpr std::array<std::string_view, 4> types{"node", "group", "label", "dummy"};
        constexpr std::array<std::string_view, 5> looks{"none", "process", "interface", "storage", "x"};
        constexpr std::array<std::string_view, 4> places{"from", "center", "to", ""};
        constexpr std::array<std::string_view, 4> alignings{"none", "from", "to", "x"};
        node.put("id", id());
        node.put("displayName", text());
        if (byte() % 2 == 0) node.put("group", id());
        const std::string_view type = oneOf(types);
        node.put("isGroup", type == "group");
        node.put("type", type);
        node.put("hierarchicalLevel", level());
        node.put("aligning", oneOf(alignings));
        node.put("displayType", oneOf(looks));
        node.put("location", oneOf(places));
        putRows(node, "info");
    }

    void putLink(variant_bag_t& link) {
        constexpr std::array<std::string_view, 5> directions{"none", "forward", "back", "both", "x"};
        link.put("id", id());
        link.put("displayName", text());
        link.put("from", id());
        link.put("to", id());
        link.put("direction", oneOf(directions));
        const std::uint8_t infos = byte();
        if ((infos & 1U) != 0) putRows(link, "fromInfo");
        if ((infos & 2U) != 0) putRows(link, "toInfo");
        if ((infos & 4U) != 0) putRows(link, "totalInfo");
    }

    std::string_view m_bytes;
};

// None when the input is text that cannot be read.
std::optional<variant_bag_t> readBag(std::string_view input) {
    const char first = input.empty() ? ' ' : input.front();
    if (first != '{' && first != '<') return BagMaker(input).make();
    auto bag = first == '{' ? tessera_host::readJson(input) : tessera_host::readXmlText(input);
    if (!bag) return std::nullopt;
    return *std::move(bag);
}

bool isFinite(const tessera_draw::Rect& rect) {
    return std::isfinite(rect.x) && std::isfinite(rect.y) && rect.width >= 0 && rect.height >= 0 &&
           std::isfinite(rect.right()) && std::isfinite(rect.bottom());
}

void checkScene(const tessera_draw::Scene& scene) {
    require(scene.size.width > 0 && scene.size.height > 0, "a drawing has a size");
    for (const tessera_draw::BoxShape& box : scene.boxes) {
        require(isFinite(box.rect), "a box has finite sides");
        require(box.rect.x >= 0 && box.rect.y >= 0 && box.rect.right() <= scene.size.width &&
                    box.rect.bottom() <= scene.size.height,
                "a box is inside of the drawing");
    }
}

bool isWellFormedXml(const std::string& text) {
    static const XML_Parser parser = XML_ParserCreate(nullptr);
    require(XML_ParserReset(parser, nullptr) == XML_TRUE, "there is a parser");
    return XML_Parse(parser, text.data(), static_cast<int>(text.size()), XML_TRUE) == XML_STATUS_OK;
}

bool isWellFormedJson(const std::string& text) {
    constexpr unsigned flags = rapidjson::kParseValidateEncodingFlag | rapidjson::kParseIterativeFlag;
    rapidjson::StringStream stream(text.c_str());
    rapidjson::BaseReaderHandler<> ignore;
    return !rapidjson::Reader().Parse<flags>(stream, ignore).IsError();
}

void checkSvg(const tessera_draw::Scene& scene, tessera_draw::Theme theme) {
    tessera_fuzz::StringOutput svg;
    require(tessera_draw::writeSvg(scene, {theme, {}}, svg), "the drawing is written");
    require(isWellFormedXml(svg.text), "the drawing is well-formed XML");
}

void checkJson(const tessera_draw::Scene& scene) {
    tessera_fuzz::StringOutput json;
    require(tessera_draw::writeSceneJson(scene, json), "the drawing's JSON is written");
    require(isWellFormedJson(json.text), "the drawing's JSON is well-formed");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bag = readBag(tessera_fuzz::textOf(data, size));
    if (!bag) return 0;
    tessera_draw::LayoutOptions options;
    if (size % 2 == 0) options.direction = tessera_draw::Direction::topToBottom;
    const tessera_draw::LayoutPointer layout = tessera_draw::layOut(*bag, options);
    require(layout != nullptr, "every bag has a layout");
    const tessera_draw::Scene scene = tessera_draw::fill(layout, *bag);
    checkScene(scene);
    // Writing takes longest, so each input gets one of the formats.
    if (size % 3 == 0) checkJson(scene);
    if (size % 3 == 1) checkSvg(scene, tessera_draw::Theme::automatic);
    // Without values everything stays where it is.
    if (size % 3 == 2) {
        const tessera_draw::Scene withoutValues = tessera_draw::fill(layout, {});
        require(withoutValues.lines.size() == scene.lines.size(), "values add no line");
        checkSvg(withoutValues, tessera_draw::Theme::dark);
    }
    return 0;
}
