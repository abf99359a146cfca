// The result of a table-tree query.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/qlib_1/query.h"

namespace qlib_1 {

// Bits of IColumnInfo::getFlags. The diagram library reads columns with columnIsValue and skips all others.
enum column_flag_t : std::uint32_t {
    columnIsKey = 1,     // names the row
    columnIsHidden = 2,  // is there for the query's own sake
    columnIsValue = 4,   // holds values to show
};

// One column of a table tree. Implemented by the host's engine. Unchanging; any thread.
class IColumnInfo : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::IColumnInfo"};

    // Any of the bits of column_flag_t; further bits are ignored.
    [[nodiscard]] virtual std::uint32_t getFlags() const noexcept = 0;
    // The query whose values the column holds: a single one, or the whole vector query whose member
    // getMemberIndex() it is. The caller gets a reference of its own. The identifier of that single query is
    // what the rows of a diagram refer to; an empty pointer matches no row.
    [[nodiscard]] virtual sptr_t<IQuery> getQuery() const = 0;
    // Counted from 0; without meaning when getQuery() is a single query. An index that the vector query does
    // not have matches no row.
    [[nodiscard]] virtual std::size_t getMemberIndex() const noexcept = 0;

  protected:
    ~IColumnInfo() override = default;
};

// One row of a table tree. Implemented by the host's engine. Unchanging; any thread. It may outlive the tree.
class ITableRow : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::ITableRow"};

    // The text of the cell in column `column` (counted from 0 in the tree's order): UTF-8, formatted for
    // people, with unit where the query has one; "" when the cell has no value. REQUIRES: column < the tree's
    // column count.
    [[nodiscard]] virtual std::string getCellText(std::size_t column) const = 0;

  protected:
    ~ITableRow() override = default;
};

// A finished result: columns and rows, fetched completely; reading it runs no query. Made by the host's
// engine, which keeps no reference to it. Unchanging; any thread.
class ITableTree : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::ITableTree"};

    // 0 is possible: then there is nothing to bind and that is not an error.
    [[nodiscard]] virtual std::size_t getColumnCount() const noexcept = 0;
    // REQUIRES: index < getColumnCount(). Empty only when the host lost the column; the diagram library
    // reports that and leaves the values of the columns from there on as they were.
    [[nodiscard]] virtual sptr_t<IColumnInfo> getColumn(std::size_t index) const = 0;
    // With the single "RootGrouping" as row grouping: 1. Of several rows the diagram shows the last.
    [[nodiscard]] virtual std::size_t getRowCount() const noexcept = 0;
    // REQUIRES: index < getRowCount(). Never empty.
    [[nodiscard]] virtual sptr_t<ITableRow> getRow(std::size_t index) const = 0;

  protected:
    ~ITableTree() override = default;
};

}  // namespace qlib_1
