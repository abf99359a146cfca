#include "host/engine/sqlite/sql_guard.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tessera_host {
namespace {

constexpr std::string_view whiteSpace = " \t\n\f\r";

// Letters, digits, "_" and every byte of a character beyond ASCII make names; "$" may stand inside of one.
bool isNameByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '$' || static_cast<unsigned char>(c) >= 0x80;
}

bool isWith(std::string_view name) {
    constexpr std::string_view with = "with";
    // Setting the bit 0x20 makes ASCII letters small, and nothing else becomes one of these four.
    return std::equal(name.begin(), name.end(), with.begin(), with.end(),
                      [](char a, char b) { return (a | 0x20) == b; });
}

char closingQuote(char opening) {
    return opening == '[' ? ']' : opening;
}

class Scanner {
  public:
    explicit Scanner(std::string_view sql) : m_sql(sql) {}

    Expected<SqlFragment> scan() {
        while (m_result && m_at < m_sql.size())
            scanToken();
        if (!m_result) return std::move(m_result);
        if (!m_open.empty())
            fail(m_open.back(), "has a parenthesis that is never closed");
        else if (!m_hasToken)
            fail(0, "is empty");
        return std::move(m_result);
    }

  private:
    void fail(std::size_t offset, std::string reason) {
        m_result = Error{ErrorKind::failed, std::move(reason), {1, static_cast<std::uint32_t>(offset + 1)}};
    }

    [[nodiscard]] bool startsWith(std::string_view text) const {
        return m_sql.substr(m_at, text.size()) == text;
    }

    void scanToken() {
        const char c = m_sql[m_at];
        if (whiteSpace.find(c) != std::string_view::npos) {
            ++m_at;
        } else if (startsWith("--")) {
            if (!skipPast("\n", m_at + 2)) m_at = m_sql.size();  // a line end follows the text
        } else if (startsWith("/*")) {
            if (!skipPast("*/", m_at + 2)) fail(m_at, "has a comment that is never closed");
        } else {
            m_hasToken = true;
            scanMeaningful(c);
        }
    }

    // Parameters are for keys only, and SQLite takes a ";" or a NUL as the end of the statement.
    void scanMeaningful(char c) {
        switch (c) {
            case '\'':
            case '"':
            case '`':
            case '[':
                scanQuoted(c);
                return;
            case '(':
                m_open.push_back(m_at++);
                return;
            case ')':
                scanClosing();
                return;
            case ';':
                fail(m_at, "has a \";\"");
                return;
            case '\0':
                fail(m_at, "has a NUL character");
                return;
            case '?':
            case ':':
            case '@':
            case '$':
            case '#':
                fail(m_at, std::string("has a parameter (\"") + c + "\")");
                return;
            default:
                scanName();
        }
    }

    // A doubled quote inside is the end of one text and the start of the next; that makes no difference.
    void scanQuoted(char opening) {
        const char closing = closingQuote(opening);
        const std::size_t start = m_at;
        if (skipPast(std::string_view(&closing, 1), m_at + 1)) return;
        fail(start, std::string("has a ") + opening + " that is never closed");
    }

    // Without this check a fragment could close the parentheses that are put around it.
    void scanClosing() {
        if (m_open.empty()) {
            fail(m_at, "closes a parenthesis that it did not open");
            return;
        }
        m_open.pop_back();
        ++m_at;
    }

    void scanName() {
        const std::size_t start = m_at++;
        if (!isNameByte(m_sql[start])) return;
        while (m_at < m_sql.size() && isNameByte(m_sql[m_at]))
            ++m_at;
        if (isWith(m_sql.substr(start, m_at - start))) m_result->hasWith = true;
    }

    // Moves past the next `end` at or after `from`; false when there is none.
    bool skipPast(std::string_view end, std::size_t from) {
        const std::size_t found = m_sql.find(end, from);
        if (found == std::string_view::npos) return false;
        m_at = found + end.size();
        return true;
    }

    std::string_view m_sql;
    std::size_t m_at = 0;
    std::vector<std::size_t> m_open;  // offsets of the open parentheses
    bool m_hasToken = false;
    Expected<SqlFragment> m_result = SqlFragment();
};

}  // namespace

Expected<SqlFragment> scanSql(std::string_view sql) {
    return Scanner(sql).scan();
}

}  // namespace tessera_host
