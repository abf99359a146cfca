// Errors of the XML parser, in words for people.
#pragma once

#include <expat.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

struct XmlProblem {
    XML_Error code;
    std::string_view document;
    std::size_t offset;       // in the document, where the parser stopped
    bool isUtf8;              // so that the document can be quoted
    std::string encoding;     // as declared, or empty
    std::string openElement;  // name of the innermost element that is open; empty when none is
    basekit2::source_position_t openPosition;
};

// Moves the offset from where the parser stopped to where a reader would look: the beginning of the end tag,
// the CDATA section or the reference that is wrong.
void locate(XmlProblem& problem);

// One line, without the position.
std::string describe(const XmlProblem& problem);

}  // namespace tessera_host
