// What a reader of documents answers when it cannot read one.
#pragma once

#include <string>
#include <string_view>

#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

struct ReadError {
    // One line for people, without the position.
    std::string text;
    // Line and column count from 1; line 0 when the error is in no one place.
    basekit2::source_position_t position;
    // The progress sink asked to stop; nothing is wrong with the document.
    bool cancelled = false;
    // The file could not be opened or read.
    bool unopened = false;
};

// "file:line:column: text", or "file: text" when the error is in no one place.
inline std::string describe(const ReadError& error, std::string_view file) {
    std::string line(file);
    if (error.position.line != 0)
        line += ':' + std::to_string(error.position.line) + ':' + std::to_string(error.position.column);
    return line + ": " + error.text;
}

}  // namespace tessera_host
