// What a question is about: rows of one table, and an expression over them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/document/declarations.h"

namespace tessera_host {

// A filter in force: an SQL predicate over the rows, in the engine's own SQL.
struct NamedFilter {
    std::string name;
    std::string predicate;

    friend bool operator==(const NamedFilter&, const NamedFilter&) = default;
};
using FilterList = std::vector<NamedFilter>;  // in the order in which the request names them

// The values of the key columns, one for each column, as text. A value finds equal text, and equal numbers
// when it is written as a number: "05" finds the text '05' and the number 5, but not the text '5'.
using KeyValues = std::vector<std::string>;

// One declared query under certain filters, without the key values of a reference. Owns its texts. They are
// SQL of the engine, as the document has them: not trusted and not checked yet. An engine keeps prepared
// statements by these contents, so equal selections of several panes share them.
struct Selection {
    std::string from;               // a table or view
    std::string expression;         // SQL, an aggregate over its rows
    std::string where;              // SQL, a predicate; may be empty
    std::vector<std::string> keys;  // names of the key columns
    FilterList filters;

    Selection(const QueryDeclaration& query, FilterList active)
        : from(query.from),
          expression(query.expression),
          where(query.where),
          keys(query.keys),
          filters(std::move(active)) {}

    friend bool operator==(const Selection&, const Selection&) = default;
};

// For maps of selections. Names of filters do not count: they are for messages only.
struct SelectionHash {
    [[nodiscard]] std::size_t operator()(const Selection& selection) const noexcept;
};

// The value of one selection over the rows whose key columns have these values. Borrows both: they outlive
// the call that the question is given to.
struct Question {
    const Selection* selection = nullptr;
    const KeyValues* keys = nullptr;  // as many values as the selection has key columns
};

}  // namespace tessera_host
