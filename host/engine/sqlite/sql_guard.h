// Keeps a piece of SQL from a document inside the parentheses that it is put into.
#pragma once

#include <string_view>

#include "host/error.h"

namespace tessera_host {

// A piece of SQL that ends nowhere but at its end.
struct SqlFragment {
    bool hasWith = false;  // the word WITH occurs, as at the start of a common table expression
};

// Scans an expression or predicate that is to stand in "(\n" TEXT "\n)", where nothing of it may reach beyond
// the parentheses. Accepted is a text in which
// - quotes ('..', "..", `..`, [..]) and /* comments */ are closed,
// - no parenthesis closes one that the text did not open, and none stays open,
// - there is no ";", no NUL and no parameter (?, :name, @name, $name, #name),
// - there is more than white space and comments.
// A -- comment reaches the end of its line at most. Whether the text is an expression at all is the
// database's to say.
//
// The text of the error completes "the expression ..."; its position is in `sql`, with columns in bytes, as
// if that were one line. Linear time.
[[nodiscard]] Expected<SqlFragment> scanSql(std::string_view sql);

}  // namespace tessera_host
