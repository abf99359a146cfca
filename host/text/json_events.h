// Builds a property bag from the events of a JSON parser.
#pragma once

#include <rapidjson/memorystream.h>
#include <rapidjson/rapidjson.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// The parser calls the upper-case members. They return false to make it stop; errorText() then says why.
class JsonEvents {
  public:
    // `stream` is where the parser reads `text` from; `root` takes what is read.
    JsonEvents(std::string_view text, const rapidjson::MemoryStream& stream, basekit2::variant_bag_t& root)
        : m_text(text), m_stream(stream), m_root(root) {}

    bool StartObject();
    bool EndObject(rapidjson::SizeType);
    bool StartArray();
    bool EndArray(rapidjson::SizeType);
    bool Key(const char* text, rapidjson::SizeType size, bool);
    bool String(const char* text, rapidjson::SizeType size, bool);
    bool RawNumber(const char* digits, rapidjson::SizeType size, bool);
    bool Bool(bool flag);
    bool Null();
    // Numbers come as text only.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(std::int64_t) { return false; }
    bool Uint64(std::uint64_t) { return false; }
    bool Double(double) { return false; }

    [[nodiscard]] std::string_view errorText() const noexcept { return m_error; }
    // Where the value begins that is not accepted.
    [[nodiscard]] std::size_t errorOffset() const noexcept;

  private:
    // An object that is being read.
    struct Level {
        basekit2::variant_bag_t* bag = nullptr;
        std::size_t nameStart = 0;  // of the array's name in m_arrayNames
        bool isInArray = false;     // one of its members, an array, is being read
    };

    bool acceptsValue();
    bool acceptsString(std::string_view text);
    bool fail(std::string_view error);
    bool passed(std::size_t end);

    std::string_view m_text;
    const rapidjson::MemoryStream& m_stream;
    basekit2::variant_bag_t& m_root;
    std::vector<Level> m_levels;
    std::string m_key;
    std::string m_arrayNames;  // of all arrays that are being read, one after the other
    std::size_t m_passed = 0;  // up to here the text was reported as events
    std::string_view m_error;
};

}  // namespace tessera_host
