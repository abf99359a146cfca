#include "host/text/xml_problem.h"

#include <array>
#include <cstdio>

#include "host/text/xml_references.h"
#include "support/utf8.h"

namespace tessera_host {
namespace {

std::string quoted(std::string_view text) {
    return '\'' + tessera_support::repairUtf8(text) + '\'';
}

// The name at the problem's place, or nothing when the document cannot be quoted.
std::string_view nameAt(const XmlProblem& problem) {
    if (!problem.isUtf8) return {};
    const std::string_view rest = problem.document.substr(problem.offset);
    const std::size_t start = rest.find_first_not_of("</&");
    if (start == std::string_view::npos) return {};
    return rest.substr(start, rest.find_first_of(" \t\r\n/>=;<&'\"", start) - start);
}

std::string openElement(const XmlProblem& problem) {
    return "element " + quoted(problem.openElement) + ", opened at line " +
           std::to_string(problem.openPosition.line) + ", column " +
           std::to_string(problem.openPosition.column);
}

std::string mismatchedTag(const XmlProblem& problem) {
    const std::string_view name = nameAt(problem);
    const std::string tag = name.empty() ? "the end tag" : "the end tag " + quoted(name);
    return tag + " does not match " + openElement(problem);
}

std::string unexpectedCharacter(const XmlProblem& problem) {
    const std::string_view rest = problem.document.substr(problem.offset);
    if (!problem.isUtf8 || rest.empty()) return "this is not well-formed XML";
    const tessera_support::Utf8Character character = tessera_support::decodeUtf8(rest);
    if (!character.isValid) return "this is not valid UTF-8";
    if (problem.offset > 0 && problem.document[problem.offset - 1] == '&')
        return "'&' must be written as '&amp;'";
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

void locate(XmlProblem& problem) {
    if (!problem.isUtf8) return;
    if (problem.code == XML_ERROR_TAG_MISMATCH) {
        problem.offset -= std::string_view("</").size();
    } else if (problem.code == XML_ERROR_UNCLOSED_CDATA_SECTION) {
        const std::size_t start = problem.document.rfind("<![CDATA[", problem.offset);
        if (start != std::string_view::npos) problem.offset = start;
    } else if (problem.code == XML_ERROR_UNDEFINED_ENTITY) {  // in an attribute, the parser stops at its tag
        const auto unknown = unknownReference(problem.document.substr(problem.offset), XmlUnits::bytes);
        if (unknown) problem.offset += unknown->offset;
    }
}

std::string describe(const XmlProblem& problem) {
    switch (problem.code) {
        case XML_ERROR_NO_ELEMENTS:
            return problem.openElement.empty() ? "there is no root element"
                                               : openElement(problem) + ", is not closed";
        case XML_ERROR_TAG_MISMATCH:
            return mismatchedTag(problem);
        case XML_ERROR_INVALID_TOKEN:
            return unexpectedCharacter(problem);
        case XML_ERROR_PARTIAL_CHAR:
            return "the document ends within a character";
        case XML_ERROR_UNCLOSED_TOKEN:
            return "the document ends within a tag, comment or other markup";
        case XML_ERROR_UNCLOSED_CDATA_SECTION:
            return "the document ends within a CDATA section";
        case XML_ERROR_DUPLICATE_ATTRIBUTE:
            return withName("the attribute", nameAt(problem), " is given twice");
        case XML_ERROR_UNDEFINED_ENTITY:
            return withName("the entity", nameAt(problem), " is not known");
        case XML_ERROR_BAD_CHAR_REF:
            return "the reference is to no character of XML";
        case XML_ERROR_JUNK_AFTER_DOC_ELEMENT:
            return "something follows the end of the root element";
        case XML_ERROR_SYNTAX:
            return "this cannot stand before the root element";
        case XML_ERROR_MISPLACED_XML_PI:
            return "the XML declaration must stand at the very beginning";
        case XML_ERROR_UNKNOWN_ENCODING:
            return "the encoding " + quoted(problem.encoding) + " is not known";
        case XML_ERROR_INCORRECT_ENCODING:
            return "the document is not in the encoding that it declares, " + quoted(problem.encoding);
        default:
            return XML_ErrorString(problem.code);
    }
}

}  // namespace tessera_host
