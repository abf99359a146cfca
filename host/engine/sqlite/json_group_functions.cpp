#include "host/engine/sqlite/json_group_functions.h"

#include <fmt/format.h>

#include <cstddef>
#include <string_view>

#include "host/engine/sqlite/sql_function.h"

namespace tessera_host {
namespace {

// By this subtype SQLite's JSON functions know a text that is JSON from one that is not.
constexpr unsigned jsonSubtype = 'J';

// In the memory that SQLite keeps for a group, which begins as zeros.
struct Group {
    // Elements with commas between. SQLite counts its memory and limits its length. Null before the first
    // element.
    sqlite3_str* text;
    int begin;  // of the first element that is still in the window
};

void append(sqlite3_str* out, std::string_view text) {
    sqlite3_str_append(out, text.data(), static_cast<int>(text.size()));
}

void appendEscaped(sqlite3_str* out, char c) {
    constexpr std::string_view letters = "btn?fr";  // of the characters 8 to 13; 11 has none
    const auto code = static_cast<unsigned char>(c);
    if (code >= 0x20)
        append(out, fmt::format("\\{}", c));
    else if (code >= 8 && code <= 13 && code != 11)
        append(out, fmt::format("\\{}", letters[code - 8U]));
    else
        append(out, fmt::format("\\u{:04x}", code));
}

void appendString(sqlite3_str* out, std::string_view text) {
    append(out, "\"");
    std::size_t done = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (static_cast<unsigned char>(text[i]) >= 0x20 && text[i] != '"' && text[i] != '\\') continue;
        append(out, text.substr(done, i - done));
        appendEscaped(out, text[i]);
        done = i + 1;
    }
    append(out, text.substr(done));
    append(out, "\"");
}

// False for a value that JSON does not have.
bool appendValue(sqlite3_str* out, sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
        case SQLITE_NULL:
            append(out, "null");
            return true;
        case SQLITE_INTEGER:
        case SQLITE_FLOAT:
            append(out, textOf(value));
            return true;
        case SQLITE_TEXT:
            if (sqlite3_value_subtype(value) == jsonSubtype)
                append(out, textOf(value));
            else
                appendString(out, textOf(value));
            return true;
        default:
            return false;
    }
}

void step(sqlite3_context* context, int count, sqlite3_value** arguments) {
    auto* const group = static_cast<Group*>(sqlite3_aggregate_context(context, sizeof(Group)));
    if (group == nullptr) return sqlite3_result_error_nomem(context);
    if (group->text == nullptr)
        group->text = sqlite3_str_new(sqlite3_context_db_handle(context));
    else if (sqlite3_str_length(group->text) > group->begin)
        append(group->text, ",");
    if (count == 2) {
        appendString(group->text, textOf(arguments[0]));
        append(group->text, ":");
    }
    if (!appendValue(group->text, arguments[count - 1]))
        return sqlite3_result_error(context, "JSON cannot hold BLOB values", -1);
    const int code = sqlite3_str_errcode(group->text);
    if (code == SQLITE_TOOBIG) return sqlite3_result_error_toobig(context);
    if (code != SQLITE_OK) return sqlite3_result_error_nomem(context);
}

std::string_view elementsOf(const Group& group) {
    const auto size = static_cast<std::size_t>(sqlite3_str_length(group.text));
    return std::string_view(sqlite3_str_value(group.text), size)
        .substr(static_cast<std::size_t>(group.begin));
}

// The size of the first element: commas inside of texts and of nested JSON do not count.
std::size_t firstSize(std::string_view elements) {
    int depth = 0;
    bool isText = false;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const char c = elements[i];
        if (isText) {
            if (c == '\\')
                ++i;
            else if (c == '"')
                isText = false;
        } else if (c == '"') {
            isText = true;
        } else if (c == '[' || c == '{') {
            ++depth;
        } else if (c == ']' || c == '}') {
            --depth;
        } else if (c == ',' && depth == 0) {
            return i;
        }
    }
    return elements.size();
}

// For window frames, which rows leave again.
void inverse(sqlite3_context* context, int, sqlite3_value**) {
    auto* const group = static_cast<Group*>(sqlite3_aggregate_context(context, 0));
    if (group == nullptr || group->text == nullptr) return;
    const std::size_t size = firstSize(elementsOf(*group));
    const bool isLast = size == elementsOf(*group).size();
    group->begin += static_cast<int>(size) + (isLast ? 0 : 1);
    if (2 * group->begin < sqlite3_str_length(group->text)) return;
    // What left counts for the limit no longer.
    sqlite3_str* const rest = sqlite3_str_new(sqlite3_context_db_handle(context));
    append(rest, elementsOf(*group));
    sqlite3_free(sqlite3_str_finish(group->text));
    *group = {rest, 0};
}

void returnText(sqlite3_context* context, const Group* group) {
    const bool isObject = sqlite3_user_data(context) != nullptr;
    const std::string_view elements = group != nullptr && group->text != nullptr ? elementsOf(*group) : "";
    sqlite3_str* const text = sqlite3_str_new(sqlite3_context_db_handle(context));
    append(text, isObject ? "{" : "[");
    append(text, elements);
    append(text, isObject ? "}" : "]");
    const int code = sqlite3_str_errcode(text);
    const auto size = static_cast<sqlite3_uint64>(sqlite3_str_length(text));
    char* const bytes = sqlite3_str_finish(text);
    if (code == SQLITE_TOOBIG) return sqlite3_result_error_toobig(context);
    if (bytes == nullptr) return sqlite3_result_error_nomem(context);
    sqlite3_result_text64(context, bytes, size, sqlite3_free, SQLITE_UTF8);
    sqlite3_result_subtype(context, jsonSubtype);
}

void value(sqlite3_context* context) {
    returnText(context, static_cast<const Group*>(sqlite3_aggregate_context(context, 0)));
}

void finish(sqlite3_context* context) {
    auto* const group = static_cast<Group*>(sqlite3_aggregate_context(context, 0));
    returnText(context, group);
    if (group != nullptr && group->text != nullptr) sqlite3_free(sqlite3_str_finish(group->text));
}

}  // namespace

int registerJsonGroups(sqlite3* database) {
    constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS | SQLITE_SUBTYPE;
    static int isObject = 1;
    const int code = sqlite3_create_window_function(database, "json_group_array", 1, flags, nullptr, step,
                                                    finish, value, inverse, nullptr);
    if (code != SQLITE_OK) return code;
    return sqlite3_create_window_function(database, "json_group_object", 2, flags, &isObject, step, finish,
                                          value, inverse, nullptr);
}

}  // namespace tessera_host
