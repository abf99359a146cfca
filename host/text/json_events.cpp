#include "host/text/json_events.h"

#include <charconv>

#include "support/utf8.h"

namespace tessera_host {

bool JsonEvents::fail(std::string_view error) {
    m_error = error;
    return false;
}

bool JsonEvents::passed(std::size_t end) {
    m_passed = end;
    return true;
}

// Only white space, a comma or a colon stands between one event's text and the next.
std::size_t JsonEvents::errorOffset() const noexcept {
    const std::size_t at = m_text.find_first_not_of(" \t\r\n,:", m_passed);
    return at == std::string_view::npos ? m_text.size() : at;
}

// Bags hold arrays of objects only: a value in an array would have no name.
bool JsonEvents::acceptsValue() {
    if (m_levels.empty()) return fail("the outermost value must be an object");
    if (m_levels.back().isInArray) return fail("an array may hold objects only");
    return true;
}

bool JsonEvents::StartObject() {
    basekit2::variant_bag_t* bag = &m_root;
    if (!m_levels.empty()) {
        const Level& level = m_levels.back();
        const std::string_view name =
            level.isInArray ? std::string_view(m_arrayNames).substr(level.nameStart) : m_key;
        bag = &level.bag->add_variant_bag(name);
    }
    m_levels.push_back({bag});
    return passed(m_stream.Tell() + 1);  // the parser is still before the bracket
}

bool JsonEvents::EndObject(rapidjson::SizeType) {
    m_levels.pop_back();
    return passed(m_stream.Tell() + 1);
}

bool JsonEvents::StartArray() {
    if (!acceptsValue()) return false;
    Level& level = m_levels.back();
    level.isInArray = true;
    level.nameStart = m_arrayNames.size();
    m_arrayNames += m_key;
    return passed(m_stream.Tell() + 1);
}

bool JsonEvents::EndArray(rapidjson::SizeType) {
    Level& level = m_levels.back();
    level.isInArray = false;
    m_arrayNames.resize(level.nameStart);
    return passed(m_stream.Tell() + 1);
}

// The text as a whole is valid UTF-8, but the parser lets an escape pass that is the second half of a
// surrogate pair.
bool JsonEvents::acceptsString(std::string_view text) {
    return tessera_support::isValidUtf8(text) || fail("half of a surrogate pair stands alone");
}

bool JsonEvents::Key(const char* text, rapidjson::SizeType size, bool) {
    if (!acceptsString({text, size})) return false;
    m_key.assign(text, size);
    return passed(m_stream.Tell());
}

bool JsonEvents::String(const char* text, rapidjson::SizeType size, bool) {
    if (!acceptsValue() || !acceptsString({text, size})) return false;
    m_levels.back().bag->put(m_key, std::string_view(text, size));
    return passed(m_stream.Tell());
}

bool JsonEvents::RawNumber(const char* digits, rapidjson::SizeType size, bool) {
    if (!acceptsValue()) return false;
    // Bags have no type for real numbers.
    if (std::string_view(digits, size).find_first_of(".eE") != std::string_view::npos)
        return fail("a number must be an integer, without fraction and exponent");
    std::int64_t number = 0;
    if (std::from_chars(digits, digits + size, number).ec != std::errc())
        return fail("the number does not fit into 64 bits");
    m_levels.back().bag->put(m_key, number);
    return passed(m_stream.Tell());
}

bool JsonEvents::Bool(bool flag) {
    if (!acceptsValue()) return false;
    m_levels.back().bag->put(m_key, flag);
    return passed(m_stream.Tell());
}

bool JsonEvents::Null() {
    return acceptsValue() && fail("null is not accepted as a value");
}

}  // namespace tessera_host
