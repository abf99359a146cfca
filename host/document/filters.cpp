#include "host/document/filters.h"

#include <utility>

#include "host/document/text.h"

namespace tessera_host {

std::string filterNameList() {
    return listed(filterNames, " and ", quoted);
}

void setFilter(Filters& filters, const std::string& name, Filter filter) {
    if (isBlank(filter.predicate))
        filters.erase(name);
    else
        filters.insert_or_assign(name, std::move(filter));
}

}  // namespace tessera_host
