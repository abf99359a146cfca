// Property bags as XML.
#pragma once

#include <string_view>

#include "host/error.h"
#include "host/text/text_sink.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// Writes `bag` as an XML document in UTF-8, the inverse of readXmlText(), and flushes the sink. The root
// element is called `rootName`. Values are attributes in their order, integers and booleans as text; the
// value under the empty name is the element's own text, children are elements in their order.
//
// The error says which name XML does not allow; what has been written by then is incomplete. Whether the sink
// took everything is its `good()`.
//
// Elements stand on lines of their own, two spaces a level (from level 40 on the indentation stays as it is),
// but in an element with own text no white space is added, nor further inside.
//
// Reading gives the same bag back, except that integers and booleans are strings then, the empty name's value
// comes last among the values, without white space (space, tab, CR, LF) at its ends and not at all when
// nothing is left of it. Characters that XML has no place for (control characters, U+FFFE, U+FFFF) and bytes
// that are not UTF-8 are written as U+FFFD.
//
// Takes time in proportion to the bag, at any depth.
[[nodiscard]] Expected<void> writeXml(const basekit2::variant_bag_t& bag, TextSink& sink,
                                      std::string_view rootName = "bag");

}  // namespace tessera_host
