// Something wrong in a document, at its place.
#pragma once

#include <string>

#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

struct Problem {
    basekit2::source_position_t position;
    std::string text;  // one sentence without a full stop, for people

    friend bool operator==(const Problem&, const Problem&) = default;
};

}  // namespace tessera_host
