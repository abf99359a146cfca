#include "host/text/xml_stop.h"

#include <array>
#include <cstdio>

#include "host/text/xml_references.h"
#include "support/utf8.h"

namespace tessera_host {
namespace {

std::string quoted(std::string_view text) {
    return '\'' + tessera_support::repairUtf8(text) + '\'';
}

// The name at the offset, or nothing when the document cannot be quoted.
std::string_view nameAt(const XmlStop& stop) {
    if (!stop.isUtf8) return {};
    const std::string_view rest = stop.document.substr(stop.offset);
    const std::size_t start = rest.find_first_not_of("</&");
    if (start == std::string_view::npos) return {};
    return rest.substr(start, rest.find_first_of(" \t\r\n/>=;<&'\"", start) - start);
}

std::string openElement(const XmlStop& stop) {
    return "element " + quoted(stop.openElement) + ", opened at line " +
           std::to_string(stop.openPosition.line) + ", column " + std::to_string(stop.openPosition.column);
}

std::string mismatchedTag(const XmlStop& stop) {
    const std::string_view name = nameAt(stop);
    const std::string tag = name.empty() ? "the end tag" : "the end tag " + quoted(name);
    return tag + " does not match " + openElement(stop);
}

// The parser has one code for all of these; the document's bytes tell which mistake it is.
std::string unexpectedCharacter(const XmlStop& stop) {
    const std::string_view rest = stop.document.substr(stop.offset);
    if (!stop.isUtf8 || rest.empty()) return "this is not well-formed XML";
    const tessera_support::Utf8Character character = tessera_support::decodeUtf8(rest);
    if (!character.isValid) return "this is not valid UTF-8";
    if (stop.offset > 0 && stop.document[stop.offset - 1] == '&') return "'&' must be written as '&amp;'";
    const bool isControl = character.code < ' ' && rest.find_first_of("\t\r\n") != 0;
    if (isControl || character.code == 0xFFFE || character.code == 0xFFFF) {
        std::array<char, 48> text{};
        std::snprintf(text.data(), text.size(), "XML does not allow the character U+%04X",
                      static_cast<unsigned>(character.code));
        return text.data();
    }
    if (character.code <= ' ') return "white space is not allowed here";
    return "unexpected character " + quoted(rest.substr(0, character.length));
}

// Names the thing where that is possible.
std::string withName(const char* before, std::string_view name, const char* after) {
    return before + (name.empty() ? "" : ' ' + quoted(name)) + after;
}

}  // namespace

std::size_t offendingOffset(const XmlStop& stop) {
    if (!stop.isUtf8) return stop.offset;
    if (stop.code == XML_ERROR_TAG_MISMATCH) return stop.offset - std::string_view("</").size();
    if (stop.code == XML_ERROR_UNCLOSED_CDATA_SECTION) {
        const std::size_t start = stop.document.rfind("<![CDATA[", stop.offset);
        if (start != std::string_view::npos) return start;
    } else if (stop.code == XML_ERROR_UNDEFINED_ENTITY) {  // in an attribute, the parser stops at its tag
        const auto unknown = unknownReference(stop.document.substr(stop.offset), XmlUnits::bytes);
        if (unknown) return stop.offset + unknown->offset;
    }
    return stop.offset;
}

std::string errorText(const XmlStop& stop) {
    switch (stop.code) {
        case XML_ERROR_NO_ELEMENTS:
            return stop.openElement.empty() ? "there is no root element"
                                            : openElement(stop) + ", is not closed";
        case XML_ERROR_TAG_MISMATCH:
            return mismatchedTag(stop);
        case XML_ERROR_INVALID_TOKEN:
            return unexpectedCharacter(stop);
        case XML_ERROR_PARTIAL_CHAR:
            return "the document ends within a character";
        case XML_ERROR_UNCLOSED_TOKEN:
            return "the document ends within a tag, comment or other markup";
        case XML_ERROR_UNCLOSED_CDATA_SECTION:
            return "the document ends within a CDATA section";
        case XML_ERROR_DUPLICATE_ATTRIBUTE:
            return withName("the attribute", nameAt(stop), " is given twice");
        case XML_ERROR_UNDEFINED_ENTITY:
            return withName("the entity", nameAt(stop), " is not known");
        case XML_ERROR_BAD_CHAR_REF:
            return "the reference is to no character of XML";
        case XML_ERROR_JUNK_AFTER_DOC_ELEMENT:
            return "something follows the end of the root element";
        case XML_ERROR_SYNTAX:
            return "this cannot stand before the root element";
        case XML_ERROR_MISPLACED_XML_PI:
            return "the XML declaration must stand at the very beginning";
        case XML_ERROR_UNKNOWN_ENCODING:
            return "the encoding " + quoted(stop.encoding) + " is not known";
        case XML_ERROR_INCORRECT_ENCODING:
            return "the document is not in the encoding that it declares, " + quoted(stop.encoding);
        default:
            return XML_ErrorString(stop.code);
    }
}

}  // namespace tessera_host
