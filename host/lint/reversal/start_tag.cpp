#include "host/lint/reversal/start_tag.h"

#include <algorithm>

namespace tessera_host {
namespace {

constexpr std::string_view white = " \t\r\n";

// Removes the text before any of these characters and returns it.
std::string_view takeUntil(std::string_view& text, std::string_view characters) {
    const std::string_view taken = text.substr(0, text.find_first_of(characters));
    text.remove_prefix(taken.size());
    return taken;
}

void skipWhite(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(white), text.size()));
}

}  // namespace

const StartTag::Attribute* StartTag::find(std::string_view attribute) const {
    const auto it = std::find_if(attributes.begin(), attributes.end(),
                                 [&](const Attribute& each) { return each.name == attribute; });
    return it == attributes.end() ? nullptr : &*it;
}

StartTag readStartTag(std::string_view text) {
    StartTag tag;
    if (!text.empty()) text.remove_prefix(1);
    tag.name = takeUntil(text, " \t\r\n/>");
    while (true) {
        skipWhite(text);
        StartTag::Attribute attribute;
        attribute.name = takeUntil(text, " \t\r\n=/>");
        skipWhite(text);
        if (attribute.name.empty() || !text.starts_with('=')) return tag;
        text.remove_prefix(1);
        skipWhite(text);
        if (text.empty()) return tag;
        const std::size_t end = text.find(text.front(), 1);
        if (end == std::string_view::npos) return tag;
        attribute.quoted = text.substr(0, end + 1);
        attribute.value = text.substr(1, end - 1);
        tag.attributes.push_back(attribute);
        text.remove_prefix(end + 1);
    }
}

}  // namespace tessera_host
