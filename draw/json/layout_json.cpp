#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cmath>
#include <cstdint>

#include "draw/saved_layout.h"
#include "draw/scene/layout_data.h"

namespace tessera_draw {
namespace {

using rapidjson::Value;
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

// Reads what it expects; anything else is an error that says what was expected where.
class LayoutReader {
  public:
    LayoutReader(SavedLayout& layout, std::string& error) : m_layout(layout), m_error(error) {}

    bool read(std::string_view text) {
        rapidjson::Document document;
        // Without recursion, because the depth is whatever the file says; numbers to the last digit.
        document.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseFullPrecisionFlag>(text.data(),
                                                                                            text.size());
        if (document.HasParseError())
            return fail(std::string(rapidjson::GetParseError_En(document.GetParseError())) + " (byte " +
                        std::to_string(document.GetErrorOffset() + 1) + ")");
        if (textOf(document, "kind") != kindOfFile)
            return fail("it has no \"kind\": \"" + std::string(kindOfFile) + "\"");
        if (!document.HasMember("version") || !document["version"].IsInt() ||
            document["version"].GetInt() != version)
            return fail("its version is not " + std::to_string(version));
        const bool isDown = textOf(document, "direction") == "tb";
        if (!isDown && textOf(document, "direction") != "lr") return fail("its direction is not lr or tb");
        m_layout.direction = isDown ? Direction::topToBottom : Direction::leftToRight;
        return forEach(document, "groups", [&](const Value& group) { return readGroup(group); });
    }

  private:
    bool fail(const std::string& what) {
        m_error = what;
        return false;
    }

    static bool isText(const Value& object, const char* name) {
        return object.IsObject() && object.HasMember(name) && object[name].IsString();
    }

    // "" if there is none.
    static std::string_view textOf(const Value& object, const char* name) {
        if (!isText(object, name)) return {};
        return {object[name].GetString(), object[name].GetStringLength()};
    }

    template <class Take>
    bool forEach(const Value& object, const char* name, Take take) {
        if (!object.IsObject() || !object.HasMember(name) || !object[name].IsArray())
            return fail("a list of " + std::string(name) + " is missing");
        for (const Value& each : object[name].GetArray())
            if (!take(each)) return false;
        return true;
    }

    bool readGroup(const Value& value) {
        SavedGroup& group = m_layout.groups.emplace_back();
        if (!value.IsObject()) return fail("a group is not an object");
        group.isTop = !value.HasMember("group");
        if (!group.isTop && !readId(value, "group", group.id)) return false;
        if (!readLength(value, "at", group.at)) return false;
        return forEach(value, "layers", [&](const Value& layer) { return readLayer(layer, group); });
    }

    bool readLayer(const Value& value, SavedGroup& group) {
        SavedLayer& layer = group.layers.emplace_back();
        layer.isRowEnd = value.IsObject() && value.HasMember("rowEnd") && value["rowEnd"].IsTrue();
        return forEach(value, "points", [&](const Value& point) { return readPoint(point, layer); });
    }

    bool readPoint(const Value& value, SavedLayer& layer) {
        SavedPoint& point = layer.points.emplace_back();
        point.isLink = value.IsObject() && value.HasMember("link");
        return readId(value, point.isLink ? "link" : "node", point.id) &&
               readCount(value, "part", point.part) && readLength(value, "at", point.at) &&
               readLength(value, "size", point.size);
    }

    bool readId(const Value& value, const char* name, SavedId& id) {
        if (!isText(value, name)) return fail("the id of a " + std::string(name) + " is missing");
        id.id = textOf(value, name);
        return readCount(value, "copy", id.copy);
    }

    bool readCount(const Value& value, const char* name, std::uint32_t& count) {
        if (!value.HasMember(name)) return true;
        if (!value[name].IsUint()) return fail("a \"" + std::string(name) + "\" is not an integer from 0 on");
        count = value[name].GetUint();
        return true;
    }

    // Longer than any drawing that can be shown, and short enough for sums of many.
    bool readLength(const Value& value, const char* name, double& length) {
        constexpr double longest = 1e9;
        if (!value.HasMember(name) || !value[name].IsNumber() ||
            !(std::abs(value[name].GetDouble()) <= longest))
            return fail("a \"" + std::string(name) + "\" is not a number of pixels");
        length = value[name].GetDouble();
        return true;
    }

    SavedLayout& m_layout;
    std::string& m_error;
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
