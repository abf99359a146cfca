// Identifiers in messages.
#pragma once

#include <cstddef>
#include <string>

namespace tessera_1::view_model {

// The id, or its beginning when it is long; never a part of a UTF-8 character.
inline std::string shownId(const std::string& id) {
    constexpr std::size_t longest = 200;
    if (id.size() <= longest) return id;
    std::size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(id[end]) & 0xC0U) == 0x80U)
        --end;
    return id.substr(0, end) + "...";
}

}  // namespace tessera_1::view_model
