// The filters of a pane. The library knows filters by name only (qlib_1::IFilterRegistry); their SQL stays on
// this side and never reaches it.
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <string_view>

#include "core/vocabulary.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

using tessera_1::filterNames;

// Whether the library applies a filter of this name. Case matters.
[[nodiscard]] constexpr bool isFilterName(std::string_view name) noexcept {
    return std::find(filterNames.begin(), filterNames.end(), name) != filterNames.end();
}

// "selection" and "global", in quotation marks, for messages.
[[nodiscard]] std::string filterNameList();

// What limits the rows that queries see.
struct Filter {
    std::string predicate;                 // SQL of the engine, not checked and not trusted
    basekit2::source_position_t position;  // in the document; line 0 when it was given otherwise

    friend bool operator==(const Filter&, const Filter&) = default;
};

// By name. A filter with another name than those above may be in it and has no effect.
using Filters = std::map<std::string, Filter>;

// Replaces the filter `name`, or adds it. A predicate that is empty or white space removes it.
void setFilter(Filters& filters, const std::string& name, Filter filter);

}  // namespace tessera_host
