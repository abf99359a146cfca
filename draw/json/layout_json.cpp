#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "draw/saved_layout.h"
#include "draw/scene/layout_data.h"

namespace tessera_draw {
namespace {

using JsonText = rapidjson::StringBuffer;
// Bytes of ids that are not valid UTF-8 are written as they are, and read so.
using JsonWriter = rapidjson::Writer<JsonText>;

constexpr const char* kindOfFile = "tessera layout";
constexpr int version = 1;

class LayoutWriter {
  public:
    LayoutWriter(const SavedLayout& layout, Output& output) : m_layout(layout), m_output(output) {}

    bool write() {
        m_json.StartObject();
        member("kind", kindOfFile);
        m_json.Key("version");
        m_json.Int(version);
        member("direction", m_layout.direction == Direction::topToBottom ? "tb" : "lr");
        m_json.Key("groups");
        m_json.StartArray();
        for (const SavedGroup& group : m_layout.groups) {
            write(group);
            if (!handOn()) return false;
        }
        m_json.EndArray();
        m_json.EndObject();
        m_text.Put('\n');
        return handOn();
    }

  private:
    void write(const SavedGroup& group) {
        m_json.StartObject();
        if (!group.isTop) id("group", group.id);
        length("at", group.at);
        m_json.Key("layers");
        m_json.StartArray();
        for (const SavedLayer& layer : group.layers) {
            m_json.StartObject();
            if (layer.isRowEnd) {
                m_json.Key("rowEnd");
                m_json.Bool(true);
            }
            m_json.Key("points");
            m_json.StartArray();
            for (const SavedPoint& point : layer.points)
                write(point);
            m_json.EndArray();
            m_json.EndObject();
        }
        m_json.EndArray();
        m_json.EndObject();
    }

    void write(const SavedPoint& point) {
        m_json.StartObject();
        id(point.isLink ? "link" : "node", point.id);
        unlessZero("part", point.part);
        length("at", point.at);
        length("size", point.size);
        m_json.EndObject();
    }

    void id(const char* name, const SavedId& id) {
        m_json.Key(name);
        m_json.String(id.id.data(), static_cast<rapidjson::SizeType>(id.id.size()));
        unlessZero("copy", id.copy);
    }
    void member(const char* name, const char* value) {
        m_json.Key(name);
        m_json.String(value);
    }
    void length(const char* name, double pixels) {
        m_json.Key(name);
        m_json.Double(pixels);
    }
    void unlessZero(const char* name, std::uint32_t number) {
        if (number == 0) return;
        m_json.Key(name);
        m_json.Uint(number);
    }

    bool handOn() {
        const bool isTaken = m_output.write({m_text.GetString(), m_text.GetSize()});
        m_text.Clear();
        return isTaken;
    }

    const SavedLayout& m_layout;
    Output& m_output;
    JsonText m_text;
    JsonWriter m_json{m_text};
};

// Fills a layout as the text is read. What it does not know is passed over, at any depth.
class LayoutReader : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, LayoutReader> {
  public:
    LayoutReader(SavedLayout& layout, std::string& error) : m_layout(layout), m_error(error) {}

    bool read(std::string_view text) {
        rapidjson::MemoryStream stream(text.data(), text.size());
        rapidjson::Reader reader;
        // Without recursion, because the depth is whatever the file says; numbers to the last digit.
        const auto result =
            reader.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseFullPrecisionFlag>(stream, *this);
        if (!m_error.empty()) return false;
        if (result.IsError())
            return fail(std::string(rapidjson::GetParseError_En(result.Code())) + " (byte " +
                        std::to_string(result.Offset() + 1) + ")");
        if (!checkHead()) return false;
        return m_hasGroups || fail("a list of groups is missing");
    }

    // Called by the parser; false ends it. Null is a value like others.
    bool Default() { return isNoId() && scalar(); }
    bool Bool(bool value) {
        if (m_unknown == 0 && top() == Part::layer && m_key == "rowEnd") layer().isRowEnd = value;
        return isNoId() && scalar();
    }
    bool Int(int value) { return number(value); }
    bool Int64(std::int64_t value) { return number(static_cast<double>(value)); }
    bool Uint(unsigned value) { return number(value); }
    bool Uint64(std::uint64_t value) { return number(static_cast<double>(value)); }
    bool Double(double value) { return number(value); }
    bool String(const char* text, rapidjson::SizeType length, bool /*isCopied*/) {
        if (m_unknown == 0) takeText({text, length});
        return scalar();
    }
    bool Key(const char* text, rapidjson::SizeType length, bool /*isCopied*/) {
        m_key.assign(text, length);
        return true;
    }
    bool StartObject() {
        if (m_unknown > 0 || !opensObject()) return pass();
        return true;
    }
    bool EndObject(rapidjson::SizeType /*count*/) { return close(); }
    bool StartArray() {
        if (m_unknown > 0 || !opensArray()) return pass();
        if (top() == Part::groups) {
            m_hasGroups = true;
            return checkHead();
        }
        return true;
    }
    bool EndArray(rapidjson::SizeType /*count*/) { return close(); }

  private:
    enum class Part : std::uint8_t { outside, file, groups, group, layers, layer, points, point };

    // What a group or point has had so far.
    struct Seen {
        bool hasId = false;
        bool hasAt = false;
        bool hasSize = false;
        bool hasList = false;
    };

    [[nodiscard]] Part top() const { return m_parts.empty() ? Part::outside : m_parts.back(); }
    SavedGroup& group() { return m_layout.groups.back(); }
    SavedLayer& layer() { return group().layers.back(); }
    SavedPoint& point() { return layer().points.back(); }

    bool fail(const std::string& what) {
        if (m_error.empty()) m_error = what;
        return false;
    }

    bool checkHead() {
        if (m_kind != kindOfFile) return fail("it has no \"kind\": \"" + std::string(kindOfFile) + "\"");
        if (m_version != version) return fail("its version is not " + std::to_string(version));
        return m_hasDirection || fail("its direction is not lr or tb");
    }

    // Begins something unknown.
    bool pass() {
        if (!isNoId()) return false;
        ++m_unknown;
        return true;
    }

    // For values that are no texts.
    bool isNoId() {
        const bool isId = m_unknown == 0 && top() == Part::group && m_key == "group";
        return !isId || fail("the id of a group is missing");
    }

    // Elements of lists of objects are objects.
    bool scalar() {
        const bool isElement = top() == Part::groups || top() == Part::layers || top() == Part::points;
        return m_unknown > 0 || !isElement || fail("an element of a list is not an object");
    }

    bool opensObject() {
        switch (top()) {
            case Part::outside:
                m_parts.push_back(Part::file);
                return true;
            case Part::groups:
                m_layout.groups.emplace_back().isTop = true;
                m_group = {};
                m_parts.push_back(Part::group);
                return true;
            case Part::layers:
                group().layers.emplace_back();
                m_hasPoints = false;
                m_parts.push_back(Part::layer);
                return true;
            case Part::points:
                layer().points.emplace_back();
                m_point = {};
                m_parts.push_back(Part::point);
                return true;
            default:
                return false;
        }
    }

    bool opensArray() {
        if (top() == Part::file && m_key == "groups") {
            m_parts.push_back(Part::groups);
        } else if (top() == Part::group && m_key == "layers") {
            m_group.hasList = true;
            m_parts.push_back(Part::layers);
        } else if (top() == Part::layer && m_key == "points") {
            m_hasPoints = true;
            m_parts.push_back(Part::points);
        } else {
            return false;
        }
        return true;
    }

    bool close() {
        if (m_unknown > 0) {
            --m_unknown;
            return true;
        }
        const Part closed = top();
        m_parts.pop_back();
        if (closed == Part::layer) return m_hasPoints || fail("a list of points is missing");
        if (closed == Part::group) {
            if (!m_group.hasAt) return fail("the \"at\" of a group is missing");
            return m_group.hasList || fail("a list of layers is missing");
        }
        if (closed != Part::point) return true;
        if (!m_point.hasId) return fail("the id of a point is missing");
        return (m_point.hasAt && m_point.hasSize) || fail("the place of a point is missing");
    }

    void takeText(std::string_view text) {
        if (top() == Part::file && m_key == "kind") m_kind = text;
        if (top() == Part::file && m_key == "direction") {
            m_hasDirection = text == "tb" || text == "lr";
            m_layout.direction = text == "tb" ? Direction::topToBottom : Direction::leftToRight;
        }
        if (top() == Part::group && m_key == "group") {
            group().isTop = false;
            group().id.id = text;
        }
        if (top() == Part::point && (m_key == "node" || m_key == "link")) {
            m_point.hasId = true;
            point().isLink = m_key == "link";
            point().id.id = text;
        }
    }

    bool number(double value) {
        if (m_unknown > 0) return true;
        if (top() == Part::file && m_key == "version") m_version = value;
        if (top() == Part::group) {
            if (m_key == "at") return length(value, group().at, m_group.hasAt);
            if (m_key == "copy") return count(value, group().id.copy);
            return isNoId();
        }
        if (top() == Part::point) {
            if (m_key == "at") return length(value, point().at, m_point.hasAt);
            if (m_key == "size") return length(value, point().size, m_point.hasSize);
            if (m_key == "part") return count(value, point().part);
            if (m_key == "copy") return count(value, point().id.copy);
        }
        return scalar();
    }

    // Longer than any drawing that can be shown, and short enough for sums of many.
    bool length(double value, double& result, bool& isSeen) {
        constexpr double longest = 1e9;
        if (!(std::abs(value) <= longest)) return fail("\"" + m_key + "\" is not a number of pixels");
        result = value;
        isSeen = true;
        return true;
    }

    bool count(double value, std::uint32_t& result) {
        constexpr double most = 4'294'967'295.0;
        if (!(value >= 0 && value <= most) || value != std::floor(value))
            return fail("\"" + m_key + "\" is not an integer from 0 on");
        result = static_cast<std::uint32_t>(value);
        return true;
    }

    SavedLayout& m_layout;
    std::string& m_error;
    std::vector<Part> m_parts;  // that are open; not what is passed over
    std::size_t m_unknown = 0;  // the depth of what is passed over
    std::string m_key;
    std::string m_kind;
    double m_version = 0;
    bool m_hasDirection = false;
    bool m_hasGroups = false;
    bool m_hasPoints = false;
    Seen m_group;
    Seen m_point;
};

}  // namespace

bool writeLayout(const Layout& layout, Output& output) {
    return LayoutWriter(layout.data().saved, output).write();
}

bool readLayout(std::string_view text, SavedLayout& layout, std::string& error) {
    layout = {};
    return LayoutReader(layout, error).read(text);
}

}  // namespace tessera_draw
