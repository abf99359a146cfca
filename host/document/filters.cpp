#include "host/document/filters.h"

#include <utility>

#include "host/document/text.h"

namespace tessera_host {

std::string filterNameList() {
    std::string text;
    for (std::size_t i = 0; i < filterNames.size(); ++i)
        text += (i == 0 ? "" : i + 1 == filterNames.size() ? " and " : ", ") + quoted(filterNames[i]);
    return text;
}

void setFilter(Filters& filters, const std::string& name, Filter filter) {
    if (isBlank(filter.predicate))
        filters.erase(name);
    else
        filters.insert_or_assign(name, std::move(filter));
}

}  // namespace tessera_host
