#include "host/engine/sqlite/bounded_functions.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_set>

#include "host/engine/sqlite/json_group_functions.h"
#include "host/engine/sqlite/limit_enforcer.h"
#include "host/engine/sqlite/pattern_functions.h"
#include "host/engine/sqlite/printf_function.h"
#include "host/engine/sqlite/sql_function.h"

namespace tessera_host {
namespace {

constexpr std::size_t maxCharacterBytes = 4;

bool isNull(sqlite3_value* value) {
    return sqlite3_value_type(value) == SQLITE_NULL;
}

bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

std::string_view blobOf(sqlite3_value* value) {
    const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
    return bytes ? std::string_view(bytes, static_cast<std::size_t>(sqlite3_value_bytes(value)))
                 : std::string_view();
}

// Unlike std::string_view::find, memmem never takes more than linear time.
std::size_t findPart(std::string_view text, std::string_view part, std::size_t from) {
    if (from >= text.size()) return std::string_view::npos;
    const char* start = text.data() + from;
    const std::size_t size = text.size() - from;
    const void* found = part.size() == 1 ? std::memchr(start, static_cast<unsigned char>(part.front()), size)
                                         : memmem(start, size, part.data(), part.size());
    return found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data())
                 : std::string_view::npos;
}

// True, with an error for the statement, when the request is to end.
bool mustEnd(sqlite3_context* context, std::string_view text, std::string_view part) {
    LimitEnforcer* const enforcer = LimitEnforcer::current();
    if (enforcer == nullptr || !enforcer->isDueAfter(text.size() + part.size())) return false;
    sqlite3_result_error(context, "it was stopped", -1);
    return true;
}

void returnText(sqlite3_context* context, std::string_view text) {
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

// The offset of `part` in `text`, which are texts. Both count as beginning with a character, whatever their
// first bytes.
std::size_t findCharacters(std::string_view text, std::string_view part) {
    if (!isContinuation(part.front())) return findPart(text, part, 0);
    return text.starts_with(part) ? 0 : std::string_view::npos;
}

// Positions count characters; in two blobs, bytes.
void instr(sqlite3_context* context, int, sqlite3_value** arguments) {
    if (isNull(arguments[0]) || isNull(arguments[1])) return;
    const bool areBlobs =
        sqlite3_value_type(arguments[0]) == SQLITE_BLOB && sqlite3_value_type(arguments[1]) == SQLITE_BLOB;
    const std::string_view text = areBlobs ? blobOf(arguments[0]) : textOf(arguments[0]);
    const std::string_view part = areBlobs ? blobOf(arguments[1]) : textOf(arguments[1]);
    if (part.empty()) return sqlite3_result_int(context, 1);
    if (mustEnd(context, text, part)) return;
    const std::size_t at = areBlobs ? findPart(text, part, 0) : findCharacters(text, part);
    if (at == std::string_view::npos) return sqlite3_result_int(context, 0);
    const std::string_view before = text.substr(0, at).substr(at > 0 ? 1 : 0);
    const auto inside = areBlobs ? 0 : std::count_if(before.begin(), before.end(), isContinuation);
    sqlite3_result_int64(context, static_cast<sqlite3_int64>(at) - inside + 1);
}

// The size is checked after each replacement, so the result stays within a few times SQLite's limit.
void replace(sqlite3_context* context, int, sqlite3_value** arguments) {
    if (isNull(arguments[0]) || isNull(arguments[1])) return;
    const std::string_view text = textOf(arguments[0]);
    const std::string_view part = textOf(arguments[1]);
    if (part.empty() || part.front() == '\0') return sqlite3_result_value(context, arguments[0]);
    if (isNull(arguments[2]) || mustEnd(context, text, part)) return;
    const std::string_view replacement = textOf(arguments[2]);
    const auto limit =
        static_cast<std::size_t>(sqlite3_limit(sqlite3_context_db_handle(context), SQLITE_LIMIT_LENGTH, -1));
    std::string result;
    std::size_t done = 0;
    for (std::size_t at = 0; (at = findPart(text, part, done)) != std::string_view::npos;
         done = at + part.size()) {
        result.append(text.substr(done, at - done)).append(replacement);
        if (result.size() > limit) return sqlite3_result_error_toobig(context);
    }
    returnText(context, result.append(text.substr(done)));
}

class CharacterSet {
  public:
    explicit CharacterSet(std::string_view characters) {
        characters = characters.substr(0, characters.find('\0'));
        while (!characters.empty()) {
            std::size_t size = 1;
            if (static_cast<unsigned char>(characters.front()) >= 0xC0)
                while (size < characters.size() && isContinuation(characters[size]))
                    ++size;
            // A set, so that the time grows with the sum of both lengths and not with their product.
            if (size <= maxCharacterBytes) m_characters.insert(characters.substr(0, size));
            characters.remove_prefix(size);
        }
    }

    // The size of the character of this set at the start (or end) of `text`; 0 when there is none.
    [[nodiscard]] std::size_t match(std::string_view text, bool atEnd) const {
        for (std::size_t size = 1; size <= std::min(maxCharacterBytes, text.size()); ++size)
            if (m_characters.contains(text.substr(atEnd ? text.size() - size : 0, size))) return size;
        return 0;
    }

  private:
    std::unordered_set<std::string_view> m_characters;
};

template <bool left, bool right>
void trim(sqlite3_context* context, int, sqlite3_value** arguments) {
    if (isNull(arguments[0]) || isNull(arguments[1])) return;
    std::string_view text = textOf(arguments[0]);
    if (mustEnd(context, text, textOf(arguments[1]))) return;
    const CharacterSet set(textOf(arguments[1]));
    std::size_t size = 0;
    while (left && (size = set.match(text, false)) > 0)
        text.remove_prefix(size);
    while (right && (size = set.match(text, true)) > 0)
        text.remove_suffix(size);
    returnText(context, text);
}

// For COUNT(*) of a whole table SQLite has one instruction that cannot be interrupted until it has seen all
// pages. It uses that for its own function only.
void countStep(sqlite3_context* context, int, sqlite3_value**) {
    auto* count = static_cast<sqlite3_int64*>(sqlite3_aggregate_context(context, sizeof(sqlite3_int64)));
    if (count != nullptr) ++*count;
}

// For window frames, which rows leave again.
void countInverse(sqlite3_context* context, int, sqlite3_value**) {
    auto* count = static_cast<sqlite3_int64*>(sqlite3_aggregate_context(context, sizeof(sqlite3_int64)));
    if (count != nullptr) --*count;
}

void countValue(sqlite3_context* context) {
    const auto* count = static_cast<sqlite3_int64*>(sqlite3_aggregate_context(context, 0));
    sqlite3_result_int64(context, count != nullptr ? *count : 0);
}

struct Function {
    const char* name;
    int arguments;
    void (*call)(sqlite3_context*, int, sqlite3_value**);
};
constexpr Function functions[] = {{"instr", 2, guarded<instr>},
                                  {"replace", 3, guarded<replace>},
                                  {"trim", 2, guarded<trim<true, true>>},
                                  {"ltrim", 2, guarded<trim<true, false>>},
                                  {"rtrim", 2, guarded<trim<false, true>>}};

}  // namespace

int registerBoundedFunctions(sqlite3* database) {
    constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    for (const Function& function : functions) {
        const int code = sqlite3_create_function_v2(database, function.name, function.arguments, flags,
                                                    nullptr, function.call, nullptr, nullptr, nullptr);
        if (code != SQLITE_OK) return code;
    }
    const int code = sqlite3_create_window_function(database, "count", 0, flags, nullptr, countStep,
                                                    countValue, countValue, countInverse, nullptr);
    if (code != SQLITE_OK) return code;
    for (int (*const add)(sqlite3*) : {registerPatterns, registerPrintf, registerJsonGroups})
        if (const int added = add(database); added != SQLITE_OK) return added;
    return SQLITE_OK;
}

}  // namespace tessera_host
