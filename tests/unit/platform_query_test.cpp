// Vector queries, table-tree queries and the walk over a result.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/qlibhelpers_1_x/table_tree_helper.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

using qlib_1::IQuery;
using qlib_1::IVectorQuery;
using slicekit_1_0::ITableTreeQuery;
using Names = std::vector<std::string>;

sptr_t<IQuery> query(const std::string& name) {
    return basekit2::make_counted<MemoryQuery>(name);
}

Names members(const sptr_t<IVectorQuery>& vector) {
    Names names;
    for (std::size_t i = 0; i < vector->size(); ++i)
        names.push_back(vector->at(i)->getIdentifier());
    return names;
}

TEST(VectorQuery, PushBackOnNothingMakesAVectorOfOneMember) {
    EXPECT_EQ(members(IVectorQuery::pushBack(nullptr, query("a"))), (Names{"a"}));
}

TEST(VectorQuery, PushBackAppendsAndLeavesItsSourceAlone) {
    const auto one = IVectorQuery::pushBack(nullptr, query("a"));
    const auto two = IVectorQuery::pushBack(one, query("b"));
    EXPECT_EQ(members(two), (Names{"a", "b"}));
    EXPECT_EQ(members(one), (Names{"a"}));
}

TEST(VectorQuery, PushBackOfNoQueryIsEmpty) {
    EXPECT_TRUE(IVectorQuery::pushBack(nullptr, nullptr).is_null());
    EXPECT_TRUE(IVectorQuery::pushBack(IVectorQuery::create({}), nullptr).is_null());
}

TEST(VectorQuery, CastFindsVectorQueriesOnly) {
    const sptr_t<IQuery> vector = IVectorQuery::create({query("a"), query("b")});
    const auto cast = IVectorQuery::cast(vector);
    ASSERT_FALSE(cast.is_null());
    EXPECT_EQ(members(cast), (Names{"a", "b"}));
    EXPECT_TRUE(IVectorQuery::cast(query("a")).is_null());
    EXPECT_TRUE(IVectorQuery::cast(nullptr).is_null());
}

TEST(VectorQuery, HasNoIdentifierOfItsOwn) {
    EXPECT_EQ(IVectorQuery::create({query("a")})->getIdentifier(), "");
}

struct TableTreeQuery : testing::Test {
    std::shared_ptr<MemoryResult> result = std::make_shared<MemoryResult>();
    sptr_t<MemoryInputData> inputData = basekit2::make_counted<MemoryInputData>(result);
    sptr_t<ITableTreeQuery> tableTree = ITableTreeQuery::create();
    sptr_t<qlib_1::ITableTree> tree;
};

TEST_F(TableTreeQuery, CallsTheEngineWithGroupingColumnsAndFiltersInOrder) {
    tableTree->setInputData(inputData);
    EXPECT_TRUE(tableTree->setRowGrouping(IVectorQuery::create({query("total")})).is_success());
    EXPECT_TRUE(tableTree->setColumns(IVectorQuery::create({query("a"), query("b")})).is_success());
    tableTree->endColumns();
    EXPECT_TRUE(tableTree->addFilter("selection").is_success());
    EXPECT_TRUE(tableTree->addFilter("global").is_success());
    EXPECT_TRUE(tableTree->run(nullptr, true, tree).is_success());
    ASSERT_EQ(result->runs.size(), 1U);
    EXPECT_EQ(members(result->runs[0].rowGrouping), (Names{"total"}));
    EXPECT_EQ(members(result->runs[0].columns), (Names{"a", "b"}));
    EXPECT_EQ(result->runs[0].filters, (Names{"selection", "global"}));
    ASSERT_FALSE(tree.is_null());
    EXPECT_EQ(tree->getColumnCount(), 2U);
}

TEST_F(TableTreeQuery, EmptyGroupingOrColumnsAreNotValid) {
    EXPECT_TRUE(tableTree->setRowGrouping(nullptr).is(bk2::error::IsNot.Valid.Data));
    EXPECT_TRUE(tableTree->setColumns(nullptr).is(bk2::error::IsNot.Valid.Data));
}

TEST_F(TableTreeQuery, RunWithoutInputDataIsNotValid) {
    EXPECT_TRUE(tableTree->run(nullptr, true, tree).is(bk2::error::IsNot.Valid.Data));
    EXPECT_TRUE(tree.is_null());
}

TEST_F(TableTreeQuery, RunOnInputDataWithoutAnEngineIsNotValid) {
    result->hasEngine = false;
    tableTree->setInputData(inputData);
    EXPECT_TRUE(tableTree->run(nullptr, true, tree).is(bk2::error::IsNot.Valid.Data));
    EXPECT_TRUE(tree.is_null());
}

TEST_F(TableTreeQuery, HelperWalksColumnsAndRowsAndCanStartAgain) {
    result->values = {{"a", "1"}, {"b", "2"}};
    result->rowCount = 2;
    tableTree->setInputData(inputData);
    EXPECT_TRUE(tableTree->setRowGrouping(IVectorQuery::create({query("total")})).is_success());
    EXPECT_TRUE(tableTree->setColumns(IVectorQuery::create({query("a"), query("b")})).is_success());
    ASSERT_TRUE(tableTree->run(nullptr, true, tree).is_success());
    auto helper = qlibhelpers_1_x::createTableTreeHelper(tree);
    tree = nullptr;  // the helper keeps it
    for (int round = 0; round < 2; ++round) {
        Names cells;
        for (helper.reset_columns(); !helper.columns_at_end(); helper.next_column())
            for (helper.reset_rows(); !helper.rows_at_end(); helper.next_row())
                cells.push_back(helper.cell_text());
        EXPECT_EQ(cells, (Names{"1", "row1 1", "2", "row1 2"}));
    }
}

}  // namespace
}  // namespace tessera_test
