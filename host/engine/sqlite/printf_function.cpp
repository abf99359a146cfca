#include "host/engine/sqlite/printf_function.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "host/engine/sqlite/sql_function.h"

namespace tessera_host {
namespace {

struct FreeString {
    void operator()(sqlite3_str* string) const { sqlite3_free(sqlite3_str_finish(string)); }
};
using String = std::unique_ptr<sqlite3_str, FreeString>;

// What follows a "%". Widths and precisions of 2^31 and more are taken modulo 2^31.
struct Conversion {
    std::string flags;
    std::int64_t width = 0;
    std::int64_t precision = -1;  // none
    char type = '\0';

    [[nodiscard]] bool isLeft() const { return flags.find('-') != std::string::npos; }
    [[nodiscard]] std::string text(std::string_view length) const {
        std::string format = "%" + flags;
        if (width > 0) format += std::to_string(width);
        if (precision >= 0) format += "." + std::to_string(precision);
        return format.append(length) + type;
    }
};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isFlag(char c) {
    return std::string_view("-+ #!0,").find(c) != std::string_view::npos;
}

// Whether more than the type may follow a width.
bool continues(char c) {
    return c == '.' || c == 'l';
}

class Printer {
  public:
    Printer(sqlite3_context* context, std::span<sqlite3_value*> arguments)
        : m_string(sqlite3_str_new(sqlite3_context_db_handle(context))), m_arguments(arguments) {}

    // Ends, like SQLite's own, at a conversion that there is not, and when the text is too long.
    void print(const char* format) {
        m_at = format;
        while (*m_at != '\0' && sqlite3_str_errcode(m_string.get()) == SQLITE_OK) {
            const std::string_view rest(m_at);
            const std::size_t plain = std::min(rest.find('%'), rest.size());
            if (plain > 0) sqlite3_str_append(m_string.get(), m_at, static_cast<int>(plain));
            m_at += plain;
            if (*m_at == '\0') return;
            ++m_at;
            if (*m_at == '\0') return sqlite3_str_append(m_string.get(), "%", 1);
            if (!printConversion(readConversion())) return;
        }
    }

    void returnTo(sqlite3_context* context) {
        const int code = sqlite3_str_errcode(m_string.get());
        if (code == SQLITE_TOOBIG) return sqlite3_result_error_toobig(context);
        if (code != SQLITE_OK) return sqlite3_result_error_nomem(context);
        const auto length = static_cast<sqlite3_uint64>(sqlite3_str_length(m_string.get()));
        char* const text = sqlite3_str_finish(m_string.release());
        if (text == nullptr) return;  // no text is NULL to SQLite's own, too
        sqlite3_result_text64(context, text, length, sqlite3_free, SQLITE_UTF8);
    }

  private:
    sqlite3_value* nextArgument() { return m_used < m_arguments.size() ? m_arguments[m_used++] : nullptr; }
    std::int64_t nextInteger() {
        sqlite3_value* const value = nextArgument();
        return value == nullptr ? 0 : sqlite3_value_int64(value);
    }
    const char* nextText() {
        sqlite3_value* const value = nextArgument();
        return value == nullptr ? nullptr : reinterpret_cast<const char*>(sqlite3_value_text(value));
    }

    std::int64_t readNumber() {
        std::uint32_t number = 0;
        for (; isDigit(*m_at); ++m_at)
            number = number * 10 + static_cast<std::uint32_t>(*m_at - '0');
        return number & 0x7FFFFFFFU;
    }
    // For "*": a negative number means its amount; what it means beyond that is the caller's.
    std::int64_t readArgument(bool& isNegative) {
        const auto number = static_cast<std::int32_t>(nextInteger());
        isNegative = number < 0;
        return isNegative ? -std::int64_t{number} & 0x7FFFFFFF : number;
    }

    // Flags, a width and a precision come in any order; lengths say nothing here.
    Conversion readConversion() {
        Conversion conversion;
        bool isNegative = false;
        for (;; ++m_at) {
            if (isFlag(*m_at)) {
                conversion.flags += *m_at;
            } else if (isDigit(*m_at)) {
                conversion.width = readNumber();
                if (!continues(*m_at)) break;
                --m_at;
            } else if (*m_at == '*') {
                conversion.width = readArgument(isNegative);
                if (isNegative) conversion.flags += '-';
                if (!continues(m_at[1])) {
                    ++m_at;
                    break;
                }
            } else if (*m_at == '.') {
                ++m_at;
                conversion.precision = *m_at == '*' ? readArgument(isNegative) : readNumber();
                if (*m_at == '*') ++m_at;
                if (*m_at != 'l') break;
                --m_at;
            } else {
                while (*m_at == 'l')
                    ++m_at;
                break;
            }
        }
        conversion.type = *m_at;
        if (*m_at != '\0') ++m_at;
        return conversion;
    }

    bool printConversion(Conversion conversion) {
        sqlite3_str* const out = m_string.get();
        switch (conversion.type) {
            case 'd':
            case 'i':
            case 'u':
            case 'o':
            case 'x':
            case 'X':
            case 'r':
            case 'p':
                sqlite3_str_appendf(out, conversion.text(conversion.type == 'p' ? "" : "ll").c_str(),
                                    nextInteger());
                return true;
            case 'f':
            case 'e':
            case 'E':
            case 'g':
            case 'G': {
                sqlite3_value* const value = nextArgument();
                const double number = value == nullptr ? 0.0 : sqlite3_value_double(value);
                sqlite3_str_appendf(out, conversion.text("").c_str(), number);
                return true;
            }
            case 'z':  // in C, this one would free the text
                conversion.type = 's';
                [[fallthrough]];
            case 's':
            case 'q':
            case 'Q':
            case 'w':
                sqlite3_str_appendf(out, conversion.text("").c_str(), nextText());
                return true;
            case 'c':
                printCharacter(conversion, nextText());
                return true;
            case '%':
                sqlite3_str_appendf(out, conversion.text("").c_str());
                return true;
            case 'n':  // of no length, but no longer NULL
                sqlite3_str_append(out, "", 0);
                return true;
            default:
                return false;
        }
    }

    // The first character, as often as the precision says: the one conversion that takes SQLite long.
    void printCharacter(const Conversion& conversion, const char* text) {
        std::string_view character("\0", 1);
        if (text != nullptr && *text != '\0') {
            std::size_t size = 1;
            if ((static_cast<unsigned char>(*text) & 0xC0U) == 0xC0U)
                while (size < 4 && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U)
                    ++size;
            character = {text, size};
        }
        const std::int64_t count = std::max<std::int64_t>(conversion.precision, 1);
        const auto blanks = static_cast<int>(std::max<std::int64_t>(conversion.width - count, 0));
        if (!conversion.isLeft()) sqlite3_str_appendchar(m_string.get(), blanks, ' ');
        // In blocks: near its limit, SQLite's string grows with each piece and not before.
        constexpr std::int64_t blockCount = 1024;
        std::string block;
        for (std::int64_t i = 0; i < std::min(count, blockCount); ++i)
            block += character;
        for (std::int64_t left = count; left > 0 && sqlite3_str_errcode(m_string.get()) == SQLITE_OK;
             left -= blockCount)
            sqlite3_str_append(
                m_string.get(), block.data(),
                static_cast<int>(character.size()) * static_cast<int>(std::min(left, blockCount)));
        if (conversion.isLeft()) sqlite3_str_appendchar(m_string.get(), blanks, ' ');
    }

    String m_string;
    std::span<sqlite3_value*> m_arguments;
    std::size_t m_used = 0;
    const char* m_at = nullptr;
};

void print(sqlite3_context* context, int count, sqlite3_value** arguments) {
    if (count < 1) return;
    const auto* format = reinterpret_cast<const char*>(sqlite3_value_text(arguments[0]));
    if (format == nullptr) return;
    Printer printer(context, std::span(arguments, static_cast<std::size_t>(count)).subspan(1));
    printer.print(format);
    printer.returnTo(context);
}

}  // namespace

int registerPrintf(sqlite3* database) {
    constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    for (const char* name : {"printf", "format"}) {
        const int code = sqlite3_create_function_v2(database, name, -1, flags, nullptr, guarded<print>,
                                                    nullptr, nullptr, nullptr);
        if (code != SQLITE_OK) return code;
    }
    return SQLITE_OK;
}

}  // namespace tessera_host
