// Text from documents and databases, made fit for messages and cells.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tessera_host {

// `bytes` on one line: valid UTF-8 in which control characters and whatever else ends lines are spaces, cut
// after about 300 bytes with "...".
[[nodiscard]] std::string oneLine(std::string_view bytes);

// `bytes` as one line between double quotes, to name something in a message.
[[nodiscard]] std::string quoted(std::string_view bytes);

// "a, b or c" for " or " as `last`: what `show` makes of each entry of a list, in its order.
template <class List, class Show = std::identity>
[[nodiscard]] std::string listed(const List& list, std::string_view last, Show show = {}) {
    std::string text;
    std::size_t left = list.size();
    for (const auto& entry : list) {
        if (!text.empty()) text += left == 1 ? last : ", ";
        text += show(entry);
        --left;
    }
    return text;
}

// The words of `text`, separated by white space as XML has it; none of them is empty.
[[nodiscard]] std::vector<std::string> splitAtSpaces(std::string_view text);

// True when there is nothing but spaces, tabs and line ends.
[[nodiscard]] bool isBlank(std::string_view text);

}  // namespace tessera_host
