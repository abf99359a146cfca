// Text as XML needs it written: in content, in attributes, and in drawings.
//
// Any bytes are accepted: what is not UTF-8, or what XML cannot carry, is written as U+FFFD, so the result is always
// well-formed. Any thread. Nothing here allocates, and nothing throws unless `write` does.
#pragma once

#include <cstddef>
#include <string_view>

#include "support/xml_escape_detail.h"
#include "support/xml_place.h"

namespace tessera_support {

// Calls `write(std::string_view)` with pieces that are together the escaped text, in order: runs that need no escape,
// as views into `text`, and escapes, which are literals. An empty text is no call. A text that needs no escape is one
// call. Takes time in proportion to the text, and reads eight bytes at once where it can. For a place that is known
// when the program is compiled:
//     writeXmlEscaped<XmlPlace::text>(name, [&](std::string_view piece) { out << piece; });
// What comes out of `"a" & <b>` followed by a line end: `"a" &amp; &lt;b&gt;` and the line end as a text,
// `&quot;a&quot; &amp; &lt;b&gt;&#10;` as an attribute, `&quot;a&quot; &amp; &lt;b&gt; ` in a drawing.
template <XmlPlace place, typename Write>
void writeXmlEscaped(std::string_view text, const Write& write) {
    detail::writeXmlEscaped<place>(text, write);
}

// The same where the place is known only at run time. `write` is called in the same way.
// It costs one branch more than the other form.
template <typename Write>
void writeXmlEscaped(std::string_view text, XmlPlace place, const Write& write) {
    switch (place) {
        case XmlPlace::text:
            return writeXmlEscaped<XmlPlace::text>(text, write);
        case XmlPlace::attribute:
            return writeXmlEscaped<XmlPlace::attribute>(text, write);
        case XmlPlace::drawing:
            return writeXmlEscaped<XmlPlace::drawing>(text, write);
    }
}

}  // namespace tessera_support
