// Character data and attribute values as XML wants them written.
#pragma once

#include <string_view>

#include "host/text/text_sink.h"

namespace tessera_host {

// In an attribute, tab and line ends too are escaped, as a reader would make blanks of them.
enum class XmlPlace { text, attribute };

// What XML cannot hold is written as U+FFFD.
void writeXmlEscaped(std::string_view text, XmlPlace place, TextSink& sink);

}  // namespace tessera_host
