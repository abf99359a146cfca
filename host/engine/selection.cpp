#include "host/engine/selection.h"

#include <functional>
#include <string_view>

namespace tessera_host {

std::size_t SelectionHash::operator()(const Selection& selection) const noexcept {
    std::size_t hash = 0;
    const auto add = [&hash](std::string_view text) {
        hash = hash * 1099511628211U + std::hash<std::string_view>()(text);
    };
    add(selection.from);
    add(selection.expression);
    add(selection.where);
    for (const std::string& key : selection.keys)
        add(key);
    for (const NamedFilter& filter : selection.filters)
        add(filter.predicate);
    return hash;
}

}  // namespace tessera_host
