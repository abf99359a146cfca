#include "platform/basekit2/variant.h"

#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

#include "platform/RTBASE_2_18/assertion.h"

namespace basekit2 {
namespace {

const char* duplicate(const char* text, std::size_t size) {
    char* copy = new char[size + 1];
    if (size != 0) std::memcpy(copy, text, size);
    copy[size] = '\0';
    return copy;
}

std::uint32_t checkedSize(std::string_view text) {
    if (text.size() > std::numeric_limits<std::uint32_t>::max()) throw std::length_error("text of a variant");
    return static_cast<std::uint32_t>(text.size());
}

// Returns whether a value may be read; raises the assertion for a wrong type.
bool expect(bool can_get, const char* condition, int line) {
    if (!can_get)
        RTBASE_2_18::assertion_failed(condition, "basekit2::variant_t::get", "platform/basekit2/variant",
                                      line);
    return can_get;
}

}  // namespace

variant_t::variant_t(std::string_view text)
    : m_size(checkedSize(text)), m_type(type_t::string), m_owned(true) {
    m_data.text = duplicate(text.data(), text.size());
}

variant_t::variant_t(borrowed_t, std::string_view text) : m_size(checkedSize(text)), m_type(type_t::string) {
    m_data.text = text.data();
}

variant_t::variant_t(const variant_t& other)
    : m_data(other.m_data), m_size(other.m_size), m_type(other.m_type) {
    if (m_type != type_t::string) return;
    m_data.text = duplicate(other.m_data.text, m_size);
    m_owned = true;
}

variant_t::variant_t(variant_t&& other) noexcept
    : m_data(other.m_data), m_size(other.m_size), m_type(other.m_type), m_owned(other.m_owned) {
    // A value inside a bag stays what it is, and this one gets a copy of its text.
    if (!m_owned && m_type == type_t::string) {
        m_data.text = duplicate(other.m_data.text, m_size);
        m_owned = true;
        return;
    }
    other.m_owned = false;
    other.m_type = type_t::none;
}

variant_t& variant_t::operator=(variant_t other) noexcept {
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    std::swap(m_owned, other.m_owned);
    std::swap(m_type, other.m_type);
    return *this;
}

variant_t::~variant_t() {
    if (m_owned) delete[] m_data.text;
}

template <>
const char* variant_t::get<const char*>() const {
    return expect(can_get<const char*>(), "can_get<const char*>()", __LINE__) ? m_data.text : "";
}

template <>
std::string_view variant_t::get<std::string_view>() const {
    // The assertion names one condition for both forms in which a string is read.
    if (!expect(can_get<const char*>(), "can_get<const char*>()", __LINE__)) return {};
    return {m_data.text, m_size};
}

template <>
std::int64_t variant_t::get<std::int64_t>() const {
    return expect(can_get<std::int64_t>(), "can_get<std::int64_t>()", __LINE__) ? m_data.integer : 0;
}

template <>
bool variant_t::get<bool>() const {
    return expect(can_get<bool>(), "can_get<bool>()", __LINE__) && m_data.boolean;
}

bool operator==(const variant_t& a, const variant_t& b) noexcept {
    if (a.m_type != b.m_type) return false;
    switch (a.m_type) {
        case variant_t::type_t::none:
            return true;
        case variant_t::type_t::string:
            return std::string_view(a.m_data.text, a.m_size) == std::string_view(b.m_data.text, b.m_size);
        case variant_t::type_t::integer:
            return a.m_data.integer == b.m_data.integer;
        case variant_t::type_t::boolean:
            return a.m_data.boolean == b.m_data.boolean;
    }
    return false;
}

}  // namespace basekit2
