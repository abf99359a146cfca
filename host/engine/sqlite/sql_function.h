// What the SQL functions of this engine have in common.
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <new>
#include <string_view>

#include "host/engine/sqlite/limit_enforcer.h"

namespace tessera_host {

// The value as text, "" for NULL. Valid until the value is asked for in another form.
[[nodiscard]] inline std::string_view textOf(sqlite3_value* value) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return text ? std::string_view(text, static_cast<std::size_t>(sqlite3_value_bytes(value)))
                : std::string_view();
}

// `call` as SQLite may call it. SQLite is C: an allocation of `call` that fails becomes an error of the statement.
template <auto call>
void guarded(sqlite3_context* context, int count, sqlite3_value** arguments) noexcept {
    try {
        call(context, count, arguments);
    } catch (const std::bad_alloc&) {
        if (LimitEnforcer* const enforcer = LimitEnforcer::current()) enforcer->setMemoryShort();
        sqlite3_result_error_nomem(context);
    }
}

}  // namespace tessera_host
