// References to entities in raw markup.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tessera_host {

// How ASCII characters lie in a document.
enum class XmlUnits { bytes, utf16BigEndian, utf16LittleEndian };

// Judged by the first bytes of a document.
XmlUnits unitsOf(std::string_view document) noexcept;

struct EntityReference {
    std::string name;
    std::size_t offset;  // of its '&', in bytes
};

// The first reference in `markup` to an entity that is none of XML's own five, if there is one.
std::optional<EntityReference> unknownReference(std::string_view markup, XmlUnits units);

}  // namespace tessera_host
