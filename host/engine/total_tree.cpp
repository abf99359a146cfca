#include "host/engine/total_tree.h"

#include <utility>

#include "platform/basekit2/ref_counted.h"

namespace tessera_host {
namespace {

using qlib_1::sptr_t;

class Column final : public basekit2::ref_counted_t<qlib_1::IColumnInfo> {
  public:
    Column(sptr_t<qlib_1::IQuery> query, std::size_t member) : m_query(std::move(query)), m_member(member) {}

    std::uint32_t getFlags() const noexcept override { return qlib_1::columnIsValue; }
    sptr_t<qlib_1::IQuery> getQuery() const override { return m_query; }
    std::size_t getMemberIndex() const noexcept override { return m_member; }

  private:
    const sptr_t<qlib_1::IQuery> m_query;
    const std::size_t m_member;
};

class Row final : public basekit2::ref_counted_t<qlib_1::ITableRow> {
  public:
    explicit Row(std::vector<std::string> cells) : m_cells(std::move(cells)) {}

    std::string getCellText(std::size_t column) const override { return m_cells[column]; }

  private:
    const std::vector<std::string> m_cells;
};

// A single row without groups; cells and columns have the same indices.
class TotalTree final : public basekit2::ref_counted_t<qlib_1::ITableTree> {
  public:
    TotalTree(sptr_t<qlib_1::IVectorQuery> columns, std::vector<std::string> cells)
        : m_columns(std::move(columns)), m_row(basekit2::make_counted<Row>(std::move(cells))) {}

    std::size_t getColumnCount() const noexcept override { return m_columns->size(); }
    sptr_t<qlib_1::IColumnInfo> getColumn(std::size_t index) const override {
        return basekit2::make_counted<Column>(m_columns, index);
    }
    std::size_t getRowCount() const noexcept override { return 1; }
    sptr_t<qlib_1::ITableRow> getRow(std::size_t) const override { return m_row; }

  private:
    const sptr_t<qlib_1::IVectorQuery> m_columns;
    const sptr_t<qlib_1::ITableRow> m_row;
};

}  // namespace

sptr_t<qlib_1::ITableTree> makeTotalTree(sptr_t<qlib_1::IVectorQuery> columns,
                                         std::vector<std::string> cells) {
    return basekit2::make_counted<TotalTree>(std::move(columns), std::move(cells));
}

}  // namespace tessera_host
