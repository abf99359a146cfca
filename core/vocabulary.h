// Names that documents, hosts and this library share. For hosts too: each name is spelled here and nowhere else.
// The names of the message catalogues are in platform/optstore2/message_catalog_source.h.
#pragma once

#include <array>
#include <string_view>

namespace tessera_1 {

// The display modes: which of its values a label shows. The elements of a "dataTransfer" and the "mode" of a
// "changeDisplayMode" request have these names. A new diagram is in the first mode.
inline constexpr std::array<std::string_view, 3> displayModeNames{"bandwidth", "ratio", "size"};

// The filters of the input data under which all values are fetched, in the order in which they are added. Each is
// skipped where the input data's IFilterRegistry does not have it. Other filters are never applied.
inline constexpr std::array<std::string_view, 2> filterNames{"selection", "global"};

}  // namespace tessera_1
