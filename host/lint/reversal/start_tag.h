// The text of a start tag, taken apart.
#pragma once

#include <string_view>
#include <vector>

namespace tessera_host {

// Refers to the text.
struct StartTag {
    struct Attribute {
        std::string_view name;
        std::string_view value;   // as it stands, references and all
        std::string_view quoted;  // the same with its quotation marks
    };

    std::string_view name;
    std::vector<Attribute> attributes;

    [[nodiscard]] const Attribute* find(std::string_view attribute) const;
};

// REQUIRES: `text` begins with a start tag, after which anything may follow. Of other text nothing
// is read beyond its end.
[[nodiscard]] StartTag readStartTag(std::string_view text);

}  // namespace tessera_host
