// Where the XML parser stopped, and the error in words for people. xml_reader.cpp makes an Error of it.
#pragma once

#include <expat.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

struct XmlStop {
    XML_Error code;
    std::string_view document;
    std::size_t offset;       // in the document, where the parser stopped
    bool isUtf8;              // so that the document can be quoted
    std::string encoding;     // as declared, or empty
    std::string openElement;  // name of the innermost element that is open; empty when none is
    basekit2::source_position_t openPosition;
};

// Where a reader would look for the mistake: the beginning of the end tag, the CDATA section or the reference
// that is wrong. The parser stops after it.
[[nodiscard]] std::size_t offendingOffset(const XmlStop& stop);

// One line, without the position. REQUIRES: `stop.offset` is the offending offset.
[[nodiscard]] std::string errorText(const XmlStop& stop);

}  // namespace tessera_host
