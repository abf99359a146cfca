#include "host/text/xml_references.h"

#include <algorithm>
#include <array>

#include "support/utf8.h"

namespace tessera_host {
namespace {

constexpr std::array<std::string_view, 5> ownEntities{"amp", "lt", "gt", "quot", "apos"};

// Bytes in which every ASCII character is one byte and no other character looks like one.
std::string asciiForm(std::string_view text, XmlUnits units) {
    const std::size_t high = units == XmlUnits::utf16BigEndian ? 0 : 1;
    std::string ascii;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        const char low = text[i + 1 - high];
        ascii += text[i + high] == '\0' && static_cast<unsigned char>(low) < 0x80 ? low : '?';
    }
    return ascii;
}

}  // namespace

XmlUnits unitsOf(std::string_view document) noexcept {
    const std::string_view start = document.substr(0, 2);
    using namespace std::string_view_literals;
    if (start == "\xFE\xFF"sv || start == "\0<"sv) return XmlUnits::utf16BigEndian;
    if (start == "\xFF\xFE"sv || start == "<\0"sv) return XmlUnits::utf16LittleEndian;
    return XmlUnits::bytes;
}

std::optional<EntityReference> unknownReference(std::string_view markup, XmlUnits units) {
    std::string converted;
    if (units != XmlUnits::bytes) markup = converted = asciiForm(markup, units);
    const std::size_t unitSize = units == XmlUnits::bytes ? 1 : 2;
    for (std::size_t at = markup.find('&'); at != std::string_view::npos; at = markup.find('&', at + 1)) {
        const std::string_view name = markup.substr(at + 1, markup.find(';', at) - at - 1);
        const bool isCharacter = name.starts_with('#');
        if (!isCharacter && std::find(ownEntities.begin(), ownEntities.end(), name) == ownEntities.end())
            return EntityReference{tessera_support::repairUtf8(name), at * unitSize};
    }
    return std::nullopt;
}

}  // namespace tessera_host
