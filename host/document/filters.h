// The filters of a pane.
#pragma once

#include <map>
#include <string>

#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// An SQL predicate over the rows of a query, and where it was written (line 0: not in the document).
struct Filter {
    std::string predicate;
    basekit2::source_position_t position;

    friend bool operator==(const Filter&, const Filter&) = default;
};

using Filters = std::map<std::string, Filter>;

// Gives the filter `name` this predicate in the place of any that it had; a blank predicate removes the
// filter.
void setFilter(Filters& filters, const std::string& name, Filter filter);

}  // namespace tessera_host
