// Keeps a piece of SQL from a document inside the parentheses that it is put into.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tessera_host {

// Why a text is not one self-contained piece of SQL.
struct SqlDefect {
    std::size_t offset;  // in bytes, of the character that is to blame
    std::string reason;  // completes "the expression ..."
};

// What the scan of a piece of SQL found out.
struct SqlFragment {
    std::optional<SqlDefect> defect;
    bool hasWith = false;  // the word WITH occurs, as at the start of a common table expression
};

// Scans an expression or predicate that is to stand in "(\n" TEXT "\n)". Without a defect it ends nowhere but
// at its end: quotes ('..', "..", `..`, [..]) and /* comments */ are closed, a -- comment reaches the end of
// its line at most, no parenthesis closes one that the text did not open and none stays open, there is no
// ";", no NUL and no parameter
// (?, :name, @name, $name, #name), and there is more than white space and comments. Whether the text is an
// expression at all is the database's to say. Linear time.
[[nodiscard]] SqlFragment scanSql(std::string_view sql);

}  // namespace tessera_host
