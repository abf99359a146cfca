#include "host/engine/sqlite/grouped_values.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/engine/sqlite/query_sql.h"
#include "host/values/number_text.h"

namespace tessera_host {
namespace {

// Adds the text by which a reference names the value in `column`; false when no reference that can be served
// names it.
bool appendGroupKey(KeyText& text, const StatementRun& run, int column) {
    switch (run.columnType(column)) {
        case SQLITE_TEXT:
            appendKey(text, run.columnText(column));
            return true;
        case SQLITE_INTEGER:
            appendKey(text, std::to_string(run.columnInteger(column)));
            return true;
        case SQLITE_FLOAT: {
            constexpr double limit = 9223372036854775808.0;
            const double value = run.columnReal(column);
            if (!(value >= -limit && value < limit) || std::trunc(value) != value) return false;
            appendKey(text, std::to_string(static_cast<std::int64_t>(value)));
            return true;
        }
        default:
            return false;
    }
}

}  // namespace

std::uint64_t GroupedValues::maxBytes(Connection& connection) {
    return connection.enforcer().limits().memory / 8;
}

bool GroupedValues::canServe(const KeyValues& keys) {
    return std::all_of(keys.begin(), keys.end(),
                       [](const std::string& key) { return !isNumeric(key) || isCanonicalInteger(key); });
}

Expected<GroupedValues> GroupedValues::load(Connection& connection, const Selection& selection,
                                            std::span<const Question> questions) {
    auto statement = connection.prepare(groupedSql(selection), mayRecurse(selection));
    if (!statement) return std::move(statement).error();
    GroupedValues values;
    values.m_groups.reserve(questions.size());
    for (const Question& question : questions)
        values.m_groups.try_emplace(keyTextOf(*question.keys));
    StatementRun run(connection, *statement);
    std::uint64_t bytes = 0;
    auto hasRow = run.step();
    for (; hasRow && *hasRow && bytes <= maxBytes(connection); hasRow = run.step())
        bytes += values.insertRow(run, selection.keys.size());
    if (hasRow && *hasRow) return Error{ErrorKind::failed, "the values of all groups are too large"};
    if (!hasRow) return std::move(hasRow).error();
    return values;
}

std::uint64_t GroupedValues::insertRow(const StatementRun& run, std::size_t keyCount) {
    KeyText key;
    const int count = static_cast<int>(keyCount);
    for (int column = 0; column < count; ++column)
        if (!appendGroupKey(key, run, column)) return 0;
    const auto it = m_groups.find(key);
    if (it == m_groups.end()) return 0;
    if (++it->second.count > 1) return 0;
    it->second.value = run.columnValue(count);
    return sizeOf(it->second.value);
}

GroupedValues::Found GroupedValues::find(const KeyValues& keys) const {
    const Group& group = m_groups.find(keyTextOf(keys))->second;
    return {group.count, &group.value};
}

}  // namespace tessera_host
