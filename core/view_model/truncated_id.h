// Ids in messages.
#pragma once

#include <cstddef>
#include <string>

namespace tessera_1::view_model {

// The id, or the beginning of a long one and "..."; a UTF-8 character is never split.
inline std::string truncatedId(const std::string& id) {
    constexpr std::size_t maxBytes = 200;
    if (id.size() <= maxBytes) return id;
    std::size_t end = maxBytes;
    while (end > 0 && (static_cast<unsigned char>(id[end]) & 0xC0U) == 0x80U)
        --end;
    return id.substr(0, end) + "...";
}

}  // namespace tessera_1::view_model
