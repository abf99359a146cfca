#include "host/text/xml_names.h"

#include <expat.h>

namespace tessera_host {
namespace {

constexpr bool isNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
}

constexpr bool isAsciiNameCharacter(char c) {
    return isNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

constexpr bool isAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

}  // namespace

XmlNames::XmlNames() : m_parser(nullptr, XML_ParserFree) {}
XmlNames::~XmlNames() = default;

bool XmlNames::isName(std::string_view text) {
    if (text.empty() || (isAscii(text.front()) && !isNameStart(text.front()))) return false;
    bool isAllAscii = true;
    for (const char c : text) {
        if (isAsciiNameCharacter(c)) continue;
        if (isAscii(c)) return false;
        isAllAscii = false;
    }
    if (isAllAscii || m_accepted.contains(text)) return true;

    std::string name(text);
    if (!parserAccepts(name)) return false;
    m_accepted.insert(std::move(name));
    return true;
}

// REQUIRES: `name` holds no ASCII characters but those of names, so that it cannot be mistaken for anything
// else.
bool XmlNames::parserAccepts(const std::string& name) {
    if (m_parser)
        XML_ParserReset(m_parser.get(), "UTF-8");
    else
        m_parser.reset(XML_ParserCreate("UTF-8"));
    const std::string document = '<' + name + "/>";
    return XML_Parse(m_parser.get(), document.data(), static_cast<int>(document.size()), XML_TRUE) ==
           XML_STATUS_OK;
}

}  // namespace tessera_host
