// The filters of a pane.
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <string_view>

#include "core/vocabulary.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

using tessera_1::filterNames;

[[nodiscard]] constexpr bool isFilterName(std::string_view name) noexcept {
    return std::find(filterNames.begin(), filterNames.end(), name) != filterNames.end();
}

// "selection" and "global", in quotation marks, for messages.
[[nodiscard]] std::string filterNameList();

// An SQL predicate over the rows of a query, and where it was written (line 0: not in the document).
struct Filter {
    std::string predicate;
    basekit2::source_position_t position;

    friend bool operator==(const Filter&, const Filter&) = default;
};

// By name. A filter with another name than those above may be in it and has no effect.
using Filters = std::map<std::string, Filter>;

// Replaces the filter `name`, or adds it. A predicate that is empty or white space removes it.
void setFilter(Filters& filters, const std::string& name, Filter filter);

}  // namespace tessera_host
