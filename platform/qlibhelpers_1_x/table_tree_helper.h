// Walks over a table tree.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "platform/qlib_1/table_tree.h"

namespace qlibhelpers_1_x {

using basekit2::sptr_t;

// Iterates over columns and rows of one tree, which it keeps alive. One thread at a time.
class table_tree_helper_t {
  public:
    explicit table_tree_helper_t(sptr_t<qlib_1::ITableTree> tree) : m_tree(std::move(tree)) {}

    void reset_columns() noexcept { m_column = 0; }
    [[nodiscard]] bool columns_at_end() const noexcept { return m_column >= m_tree->getColumnCount(); }
    void next_column() noexcept { ++m_column; }
    // REQUIRES: !columns_at_end().
    [[nodiscard]] sptr_t<qlib_1::IColumnInfo> column() const { return m_tree->getColumn(m_column); }

    void reset_rows() noexcept { m_row = 0; }
    [[nodiscard]] bool rows_at_end() const noexcept { return m_row >= m_tree->getRowCount(); }
    void next_row() noexcept { ++m_row; }

    // The text of the cell where the current row and the current column meet.
    // REQUIRES: !columns_at_end() and !rows_at_end().
    [[nodiscard]] std::string cell_text() const { return m_tree->getRow(m_row)->getCellText(m_column); }

  private:
    sptr_t<qlib_1::ITableTree> m_tree;
    std::size_t m_column = 0;
    std::size_t m_row = 0;
};

// A helper at the first column and the first row. REQUIRES: tree is not empty.
[[nodiscard]] inline table_tree_helper_t createTableTreeHelper(sptr_t<qlib_1::ITableTree> tree) {
    return table_tree_helper_t(std::move(tree));
}

}  // namespace qlibhelpers_1_x
