#include "host/engine/sqlite/pattern_functions.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "host/engine/sqlite/limit_enforcer.h"
#include "host/engine/sqlite/sql_function.h"

namespace tessera_host {
namespace {

using Character = std::uint32_t;

// The next character, as SQLite reads it: bytes that are no UTF-8 make characters, too. 0 at the end.
Character readCharacter(const unsigned char*& at) {
    Character c = *at;
    if (c == 0) return 0;
    ++at;
    if (c < 0xC0) return c;
    // How many bits of the first byte count, by its leading ones.
    constexpr Character masks[] = {0x1F, 0x1F, 0x0F, 0x07, 0x03, 0x01, 0x00};
    const int ones = std::countl_one(static_cast<unsigned char>(c));
    c &= masks[std::min(ones, 7) - 1];
    for (; (*at & 0xC0U) == 0x80U; ++at)
        c = (c << 6U) + (*at & 0x3FU);
    const bool isNone = c < 0x80 || (c & 0xFFFFF800U) == 0xD800U || (c & 0xFFFFFFFEU) == 0xFFFEU;
    return isNone ? 0xFFFD : c;
}

Character toSmall(Character c) {
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c;
}

struct Syntax {
    Character any;     // any characters
    Character one;     // one character
    bool hasSets;      // [a-z]
    bool ignoresCase;  // of ASCII letters
};
constexpr Syntax likeSyntax{'%', '_', false, true};
constexpr Syntax globSyntax{'*', '?', true, false};

// A pattern taken apart.
class Pattern {
  public:
    Pattern(const unsigned char* text, const Syntax& syntax, Character escape)
        : m_ignoresCase(syntax.ignoresCase) {
        while (const Character c = readCharacter(text)) {
            if (escape != 0 && c == escape) {
                const Character escaped = readCharacter(text);
                add(escaped == 0 ? Kind::nothing : Kind::character, escaped);
            } else if (c == syntax.any) {
                add(Kind::any, 0);
            } else if (c == syntax.one) {
                add(Kind::one, 0);
            } else if (c == '[' && syntax.hasSets) {
                addSet(text);
            } else {
                add(Kind::character, c);
            }
        }
    }

    enum class Result { matches, differs, stopped };

    // When a part does not match, only the last run of any characters has to become longer.
    [[nodiscard]] Result match(const unsigned char* text) const {
        constexpr int comparisonsPerLook = 1 << 16;
        LimitEnforcer* const enforcer = LimitEnforcer::current();
        int untilLook = comparisonsPerLook;
        std::size_t part = 0;
        std::size_t partAfterAny = 0;
        const unsigned char* afterAny = nullptr;
        while (true) {
            if (--untilLook == 0) {
                if (enforcer != nullptr && enforcer->isDue()) return Result::stopped;
                untilLook = comparisonsPerLook;
            }
            if (part < m_parts.size() && m_parts[part].kind == Kind::any) {
                partAfterAny = ++part;
                if (part == m_parts.size()) return Result::matches;
                text = afterAny = candidate(text, m_parts[part]);
                continue;
            }
            const unsigned char* next = text;
            const Character c = readCharacter(next);
            if (c == 0 && part == m_parts.size()) return Result::matches;
            if (c != 0 && part < m_parts.size() && matches(m_parts[part], c)) {
                text = next;
                ++part;
            } else {
                if (c == 0 || afterAny == nullptr) return Result::differs;
                (void)readCharacter(afterAny);
                text = afterAny = candidate(afterAny, m_parts[partAfterAny]);
                part = partAfterAny;
            }
        }
    }

  private:
    enum class Kind : std::uint8_t { any, one, character, set, nothing };
    struct Range {
        Character first;
        Character last;
    };
    struct Part {
        Kind kind;
        bool isInverted;      // of a set
        Character character;  // in small letters where case does not count
        std::vector<Range> set;
    };

    void add(Kind kind, Character c) { m_parts.push_back({kind, false, m_ignoresCase ? toSmall(c) : c, {}}); }

    // A set that is never closed contains nothing.
    void addSet(const unsigned char*& text) {
        Part part{Kind::set, false, 0, {}};
        Character c = readCharacter(text);
        if (c == '^') {
            part.isInverted = true;
            c = readCharacter(text);
        }
        if (c == ']') {
            part.set.push_back({c, c});
            c = readCharacter(text);
        }
        Character before = 0;
        for (; c != 0 && c != ']'; c = readCharacter(text)) {
            if (c == '-' && *text != ']' && *text != 0 && before > 0) {
                part.set.push_back({before, readCharacter(text)});
                before = 0;
            } else {
                part.set.push_back({c, c});
                before = c;
            }
        }
        if (c == 0) part.kind = Kind::nothing;
        m_parts.push_back(std::move(part));
    }

    // Where `part` may match first, at `text` or after it. No byte of another character is one of ASCII.
    [[nodiscard]] const unsigned char* candidate(const unsigned char* text, const Part& part) const {
        if (part.kind != Kind::character || part.character >= 0x80) return text;
        while (*text != 0 && (m_ignoresCase ? toSmall(*text) : *text) != part.character)
            ++text;
        return text;
    }

    [[nodiscard]] bool matches(const Part& part, Character c) const {
        switch (part.kind) {
            case Kind::one:
                return true;
            case Kind::character:
                return (m_ignoresCase ? toSmall(c) : c) == part.character;
            case Kind::set:
                return part.isInverted !=
                       std::any_of(part.set.begin(), part.set.end(),
                                   [c](const Range& range) { return c >= range.first && c <= range.last; });
            default:
                return false;
        }
    }

    const bool m_ignoresCase;
    std::vector<Part> m_parts;
};

bool isBlob(sqlite3_value* value) {
    return sqlite3_value_type(value) == SQLITE_BLOB;
}

const unsigned char* bytesOf(sqlite3_value* value) {
    return sqlite3_value_text(value);
}

// The escape character of LIKE ... ESCAPE; 0 and an error when there is not exactly one.
Character escapeOf(sqlite3_context* context, sqlite3_value* value) {
    const unsigned char* text = bytesOf(value);
    if (text == nullptr) return 0;
    const Character escape = readCharacter(text);
    if (escape != 0 && *text == 0) return escape;
    sqlite3_result_error(context, "ESCAPE expression must be a single character", -1);
    return 0;
}

// Arguments are the pattern, the text, and for LIKE perhaps the escape character.
void match(sqlite3_context* context, int count, sqlite3_value** arguments) {
    const Syntax& syntax = *static_cast<const Syntax*>(sqlite3_user_data(context));
    if (isBlob(arguments[0]) || isBlob(arguments[1])) return sqlite3_result_int(context, 0);
    const int limit = sqlite3_limit(sqlite3_context_db_handle(context), SQLITE_LIMIT_LIKE_PATTERN_LENGTH, -1);
    if (sqlite3_value_bytes(arguments[0]) > limit)
        return sqlite3_result_error(context, "LIKE or GLOB pattern too complex", -1);
    const Character escape = count == 3 ? escapeOf(context, arguments[2]) : 0;
    if (count == 3 && escape == 0) return;
    const unsigned char* const text = bytesOf(arguments[1]);
    const unsigned char* const patternText = bytesOf(arguments[0]);
    if (text == nullptr || patternText == nullptr) return;
    // Kept as long as the arguments are constant.
    const auto* pattern = count == 3 ? nullptr : static_cast<const Pattern*>(sqlite3_get_auxdata(context, 0));
    std::unique_ptr<const Pattern> made;
    if (pattern == nullptr) {
        made = std::make_unique<const Pattern>(patternText, syntax, escape);
        pattern = made.get();
    }
    const Pattern::Result result = pattern->match(text);
    if (result == Pattern::Result::stopped)
        sqlite3_result_error(context, "it was stopped", -1);
    else
        sqlite3_result_int(context, result == Pattern::Result::matches ? 1 : 0);
    if (made && count == 2)
        sqlite3_set_auxdata(context, 0, const_cast<Pattern*>(made.release()),
                            [](void* kept) { delete static_cast<Pattern*>(kept); });
}

}  // namespace

int registerPatterns(sqlite3* database) {
    constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    struct Function {
        const char* name;
        int arguments;
        const Syntax* syntax;
    };
    for (const auto& [name, arguments, syntax] :
         {Function{"like", 2, &likeSyntax}, {"like", 3, &likeSyntax}, {"glob", 2, &globSyntax}}) {
        const int code =
            sqlite3_create_function_v2(database, name, arguments, flags, const_cast<Syntax*>(syntax),
                                       guarded<match>, nullptr, nullptr, nullptr);
        if (code != SQLITE_OK) return code;
    }
    return SQLITE_OK;
}

}  // namespace tessera_host
