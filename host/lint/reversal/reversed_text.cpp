#include <algorithm>
#include <utility>
#include <vector>

#include "host/lint/reversal/opposites.h"
#include "host/lint/reversal/reversed_bag.h"
#include "host/lint/reversal/start_tag.h"
#include "host/text/text_position.h"

namespace tessera_host {
namespace {

using basekit2::source_position_t;
using basekit2::variant_bag_t;

bool isBefore(source_position_t a, source_position_t b) {
    return std::pair(a.line, a.column) < std::pair(b.line, b.column);
}

// Finds start tags by their positions, which come in ascending order.
class TagFinder {
  public:
    explicit TagFinder(std::string_view text) : m_text(text), m_position(text) {}

    // Where the tag begins, npos when there is none.
    std::size_t find(source_position_t wanted) {
        while (m_offset < m_text.size()) {
            m_offset = m_text.find('<', m_offset);
            if (m_offset == std::string_view::npos) return m_offset;
            const source_position_t here = m_position.at(m_offset);
            if (here == wanted) return m_offset;
            if (isBefore(wanted, here)) return std::string_view::npos;
            ++m_offset;
        }
        return std::string_view::npos;
    }

  private:
    std::string_view m_text;
    TextPosition m_position;
    std::size_t m_offset = 0;
};

// Copies a text piece by piece.
class Patch {
  public:
    explicit Patch(std::string_view text) : m_text(text) {}

    // REQUIRES: `piece` is a part of the text after those replaced before.
    void replace(std::string_view piece, std::string_view by) {
        const auto begin = static_cast<std::size_t>(piece.data() - m_text.data());
        m_out.append(m_text.substr(m_done, begin - m_done)).append(by);
        m_done = begin + piece.size();
    }
    std::string finish() { return std::move(m_out.append(m_text.substr(m_done))); }

  private:
    std::string_view m_text;
    std::size_t m_done = 0;
    std::string m_out;
};

void reverseLink(const StartTag& tag, const variant_bag_t& link, Patch& patch) {
    const StartTag::Attribute* from = tag.find("from");
    const StartTag::Attribute* to = tag.find("to");
    for (const StartTag::Attribute& each : tag.attributes) {
        if (&each == from || &each == to) {
            if (from && to)
                patch.replace(each.quoted, &each == from ? to->quoted : from->quoted);
            else
                patch.replace(each.name, otherEnd(each.name));
        } else if (each.name == "direction") {
            const std::string_view direction = link.get_text(each.name);
            if (oppositeDirection(direction) != direction)
                patch.replace(each.value, oppositeDirection(direction));
        }
    }
}

void reverseLabel(const StartTag& tag, const variant_bag_t& label, Patch& patch) {
    if (const StartTag::Attribute* location = tag.find("location"))
        patch.replace(location->value, otherEnd(label.get_text("location")));
}

}  // namespace

std::optional<std::string> reversedText(std::string_view text, const ReversedElements& elements) {
    std::vector<const variant_bag_t*> inOrder(elements.begin(), elements.end());
    std::sort(inOrder.begin(), inOrder.end(), [](const variant_bag_t* a, const variant_bag_t* b) {
        return isBefore(a->position(), b->position());
    });
    TagFinder finder(text);
    Patch patch(text);
    for (const variant_bag_t* element : inOrder) {
        const std::size_t begin = finder.find(element->position());
        if (begin == std::string_view::npos) return std::nullopt;
        const StartTag tag = readStartTag(text.substr(begin));
        if (tag.name == "link")
            reverseLink(tag, *element, patch);
        else
            reverseLabel(tag, *element, patch);
    }
    return patch.finish();
}

}  // namespace tessera_host
