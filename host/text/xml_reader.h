// XML documents into property bags.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/text/read_error.h"
#include "platform/basekit2/variant_bag.h"
#include "platform/relay2/progress.h"

namespace tessera_host {

// Reads an XML document into `bag`. Answers what is wrong, or nothing when all is well; in case of an error
// `bag` stays as it was. The first error ends the reading. `progress` may be null; once it is cancelled, so
// is the reading.
//
// The root element is the bag, whatever its name. An element is a child bag, in document order; an attribute
// is a string value; an element's own text, all its pieces of text and CDATA joined and white space (blank,
// tab, CR, LF) cut off at both ends, is the value under the empty name, put after the attributes and only
// when not empty. Comments and processing instructions are skipped. Names are taken as they stand, with their
// prefixes. Each bag has the position of its start tag; columns count characters, from 1.
//
// The document is UTF-8, or UTF-16, ISO-8859-1 or US-ASCII when it says so. Nothing outside it is ever
// opened. A DOCTYPE is skipped over: it adds no attributes, and entities cannot be declared in it, so that a
// document cannot become larger than it is. Besides the characters' own (&amp; &lt; &gt; &quot; &apos; and
// numbers), no reference is accepted.
//
// Takes time in proportion to the document, at any depth.
std::optional<ReadError> readXmlText(std::string_view text, basekit2::variant_bag_t& bag,
                                     relay2::IProgress* progress = nullptr);

// The same for a file, which may also be a pipe.
std::optional<ReadError> readXmlFile(const std::string& path, basekit2::variant_bag_t& bag,
                                     relay2::IProgress* progress = nullptr);

}  // namespace tessera_host
