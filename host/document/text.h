// Text from documents and databases, made fit for messages and cells.
#pragma once

#include <string>
#include <string_view>

namespace tessera_host {

// `bytes` on one line: valid UTF-8 in which control characters and whatever else ends lines are spaces, cut
// after about 300 bytes with "...".
[[nodiscard]] std::string oneLine(std::string_view bytes);

// `bytes` as one line between double quotes, to name something in a message.
[[nodiscard]] std::string quoted(std::string_view bytes);

// True when there is nothing but spaces, tabs and line ends.
[[nodiscard]] bool isBlank(std::string_view text);

}  // namespace tessera_host
