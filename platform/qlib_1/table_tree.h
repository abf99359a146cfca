// The answer of a table-tree query.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/qlib_1/query.h"

namespace qlib_1 {

// Bits of IColumnInfo::getFlags.
enum column_flag_t : std::uint32_t {
    columnIsKey = 1,     // names the row
    columnIsHidden = 2,  // is there for the query's own sake
    columnIsValue = 4,   // holds values to show
};

// One column of an answer. Unchanging.
class IColumnInfo : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::IColumnInfo"};

    [[nodiscard]] virtual std::uint32_t getFlags() const noexcept = 0;
    // The query that the column answers: a single one, or the whole vector query of which it answers the
    // member getMemberIndex().
    [[nodiscard]] virtual sptr_t<IQuery> getQuery() const = 0;
    [[nodiscard]] virtual std::size_t getMemberIndex() const noexcept = 0;

  protected:
    ~IColumnInfo() override = default;
};

// One row of an answer. Unchanging.
class ITableRow : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::ITableRow"};

    // The text of the cell under column `column` (counted from 0 in the tree's order), formatted for people;
    // "" when the cell has no value. REQUIRES: column < the tree's column count.
    [[nodiscard]] virtual std::string getCellText(std::size_t column) const = 0;

  protected:
    ~ITableRow() override = default;
};

// A finished answer: columns and rows. Unchanging; any thread.
class ITableTree : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::ITableTree"};

    [[nodiscard]] virtual std::size_t getColumnCount() const noexcept = 0;
    // REQUIRES: index < getColumnCount(). Empty only when the host lost the column.
    [[nodiscard]] virtual sptr_t<IColumnInfo> getColumn(std::size_t index) const = 0;
    [[nodiscard]] virtual std::size_t getRowCount() const noexcept = 0;
    // REQUIRES: index < getRowCount().
    [[nodiscard]] virtual sptr_t<ITableRow> getRow(std::size_t index) const = 0;

  protected:
    ~ITableTree() override = default;
};

}  // namespace qlib_1
