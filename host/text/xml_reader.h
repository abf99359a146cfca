// XML documents into property bags.
#pragma once

#include <string>
#include <string_view>

#include "host/error.h"
#include "platform/basekit2/variant_bag.h"
#include "support/cancel_token.h"

namespace tessera_host {

// Reads an XML document. The first error ends the reading; its position is where the document is wrong. Once
// `token` is cancelled, so is the reading.
//
// The root element is the bag, whatever its name. An element is a child bag, in document order; an attribute
// is a string value; an element's own text, all its pieces of text and CDATA joined and white space (space,
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
[[nodiscard]] Expected<basekit2::variant_bag_t> readXmlText(std::string_view text,
                                                            const tessera_support::CancelToken& token = {});

// The same for a file, which may also be a pipe. The error has the kind cannotOpen when it cannot be read.
[[nodiscard]] Expected<basekit2::variant_bag_t> readXmlFile(const std::string& path,
                                                            const tessera_support::CancelToken& token = {});

}  // namespace tessera_host
