// Walks over a table tree.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "platform/qlib_1/table_tree.h"

namespace qlibhelpers_1_x {

using basekit2::sptr_t;

// Iterates over columns and rows of one tree, which it keeps alive. It has two positions, one in the columns
// and one in the rows, that move independently, so rows can be walked again for each column:
//     for (helper.reset_columns(); !helper.columns_at_end(); helper.next_column())
//         for (helper.reset_rows(); !helper.rows_at_end(); helper.next_row()) use(helper.cell_text());
// A copy walks the same tree by itself. One helper is used by one thread at a time; several helpers may walk
// one tree on several threads.
class table_tree_helper_t {
  public:
    // REQUIRES: tree is not empty.
    explicit table_tree_helper_t(sptr_t<qlib_1::ITableTree> tree) : m_tree(std::move(tree)) {}

    // Back to the first column; the row stays.
    void reset_columns() noexcept { m_column = 0; }
    [[nodiscard]] bool columns_at_end() const noexcept { return m_column >= m_tree->getColumnCount(); }
    void next_column() noexcept { ++m_column; }
    // The current column; empty when the tree lost it. REQUIRES: !columns_at_end().
    [[nodiscard]] sptr_t<qlib_1::IColumnInfo> column() const { return m_tree->getColumn(m_column); }

    // Back to the first row; the column stays.
    void reset_rows() noexcept { m_row = 0; }
    [[nodiscard]] bool rows_at_end() const noexcept { return m_row >= m_tree->getRowCount(); }
    void next_row() noexcept { ++m_row; }

    // The text of the cell in the current row and the current column, "" when it has no value.
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
