// Ids in messages.
#pragma once

#include <cstddef>
#include <string>

#include "support/utf8.h"

namespace tessera_1::view_model {

// The id, or the beginning of a long one and "..."; a UTF-8 character is never split.
inline std::string truncatedId(const std::string& id) {
    constexpr std::size_t maxBytes = 200;
    if (id.size() <= maxBytes) return id;
    return id.substr(0, tessera_support::truncatedUtf8Length(id, maxBytes)) + "...";
}

}  // namespace tessera_1::view_model
