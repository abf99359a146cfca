// Fetching the values of a display info: which query runs, and which rows receive its values.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/binding_fixture.h"

namespace tessera_test {
namespace {

TEST_F(Binding, WithoutAQueryItIsASuccessThatChangesNothing) {
    rows({"/q1"});
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(values(), (Reports{"old"}));
    EXPECT_TRUE(result->runs.empty());
    EXPECT_TRUE(info.setDataFromResult(nullptr, nullptr, nullptr).is_success());
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(ThreeRows, EachRowReceivesTheValueOfItsQuery) {
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(values(), (Reports{"1", "2", "3"}));
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(ThreeRows, QuestionIsTheTotalOfTheRowSetsOwnQuery) {
    EXPECT_TRUE(fetch().is_success());
    ASSERT_EQ(result->runs.size(), 1U);
    const auto& run = result->runs[0];
    EXPECT_EQ(run.columns, info.m_rowSet.ds);
    ASSERT_EQ(run.rowGrouping->size(), 1U);
    EXPECT_EQ(run.rowGrouping->at(0)->getIdentifier(), "RootGrouping");
    EXPECT_TRUE(run.filters.empty());
}

TEST_F(ThreeRows, ColumnMayReturnTheMemberItselfOrTheVectorAndItsIndex) {
    for (const bool vector : {false, true}) {
        result->columnsAnswerVector = vector;
        EXPECT_TRUE(fetch().is_success());
        EXPECT_EQ(values(), (Reports{"1", "2", "3"}));
        result->values = {{"q1", "4"}, {"q2", "5"}, {"q3", "6"}};
        EXPECT_TRUE(fetch().is_success());
        EXPECT_EQ(values(), (Reports{"4", "5", "6"}));
        result->values = {{"q1", "1"}, {"q2", "2"}, {"q3", "3"}};
    }
}

TEST_F(ThreeRows, OrderOfTheRowsNeedNotBeThatOfTheColumns) {
    std::swap(info.m_rowSet.rows[0], info.m_rowSet.rows[2]);
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(values(), (Reports{"3", "2", "1"}));
}

TEST_F(ThreeRows, EmptyResultOverwritesAnOldValue) {
    result->values["q2"] = "";
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(values(), (Reports{"1", "", "3"}));
}

TEST_F(ThreeRows, LastOfSeveralResultRowsWinsAndNoneChangesNothing) {
    result->rowCount = 3;
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(values(), (Reports{"row2 1", "row2 2", "row2 3"}));
    result->rowCount = 0;
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(values(), (Reports{"row2 1", "row2 2", "row2 3"}));
}

TEST_F(ThreeRows, WithoutRootGroupingItIsReportedAndTheFalseCode) {
    memoryLibrary->hasRootGrouping = false;
    expectFailure("!rowBy.is_null()");
    EXPECT_TRUE(result->runs.empty());
}

TEST(BindingPipeline, WithoutRootGroupingEveryDisplayInfoReportsAndNoRowIsWritten) {
    const LogCapture log;
    MemoryHost host(R"(<v><diagram><graph><node id="a"/><node id="b"/></graph><display>
      <node id="a"><rowSet><queryRef>/q</queryRef></rowSet></node>
      <node id="b"><rowSet><queryRef>/q</queryRef></rowSet></node></display></diagram></v>)");
    host.result->values = {{"q", "1"}};
    host.library->hasRootGrouping = false;
    variant_bag_t out;
    EXPECT_TRUE(host.makeHandler()->handleRequest("create", {}, out, nullptr).is_success());
    EXPECT_EQ(log.reports(), (Reports{"ERROR check !rowBy.is_null()", "ERROR check !rowBy.is_null()"}));
    int nodes = 0;
    for (auto node = out.get_variant_bag("nodes")->begin(); !node.at_end(); node.next(), ++nodes)
        EXPECT_TRUE(node.get_value().get_variant_bag("info")->is_empty());
    EXPECT_EQ(nodes, 2);
}

TEST_F(Binding, ColumnWithoutARowStopsThereAndKeepsWhatIsWritten) {
    rows({"/q1", "/q3"});
    info.m_rowSet.ds = vectorOf({"q1", "q2", "q3"});
    result->values = {{"q1", "1"}, {"q2", "2"}, {"q3", "3"}};
    EXPECT_TRUE(fetch().is_false());
    EXPECT_EQ(log.reports(), (Reports{"ERROR check it != rowSet.rows.end()"}));
    EXPECT_EQ(values(), (Reports{"1", "old"}));
}

TEST_F(Binding, ReferenceIsASlashAndTheIdentifierExactly) {
    for (const char* reference : {"q1", "/Q1", "/q1 ", "//q1", "/q", ""}) {
        info.m_rowSet.rows.clear();
        rows({reference});
        info.m_rowSet.ds = vectorOf({"q1"});
        EXPECT_TRUE(fetch().is_false()) << reference;
        EXPECT_EQ(values(), (Reports{"old"})) << reference;
    }
    EXPECT_EQ(log.reports(), Reports(6, "ERROR check it != rowSet.rows.end()"));
}

TEST_F(Binding, FirstRowOfAReferenceReceivesTheValue) {
    rows({"/other", "/q1", "/q1"});
    info.m_rowSet.ds = vectorOf({"q1"});
    result->values = {{"q1", "1"}};
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(values(), (Reports{"old", "1", "old"}));
}

TEST_F(Binding, RowsMayBeMany) {
    constexpr int count = 500;
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        names.push_back("q" + std::to_string(i));
        result->values[names.back()] = std::to_string(i);
        rows({"/" + names.back()});
    }
    rows({"/q0", "/q499", "/unknown"});
    info.m_rowSet.ds = vectorOf(names);
    EXPECT_TRUE(fetch().is_success());
    for (int i = 0; i < count; ++i)
        EXPECT_EQ(info.m_rowSet.rows[static_cast<std::size_t>(i)].m_value, std::to_string(i));
    for (std::size_t i = count; i < count + 3; ++i)
        EXPECT_EQ(info.m_rowSet.rows[i].m_value, "old") << "the first row of a reference receives the value";
}

TEST_F(Binding, AmongManyRowsAColumnWithoutARowStopsAsWell) {
    for (int i = 0; i < 100; ++i)
        rows({"/q" + std::to_string(i)});
    info.m_rowSet.ds = vectorOf({"q7", "unknown", "q8"});
    result->values = {{"q7", "7"}, {"q8", "8"}};
    EXPECT_TRUE(fetch().is_false());
    EXPECT_EQ(info.m_rowSet.rows[7].m_value, "7");
    EXPECT_EQ(info.m_rowSet.rows[8].m_value, "old");
}

TEST_F(ThreeRows, OnlyColumnsWithTheValueFlagAreConsidered) {
    for (const std::uint32_t flags : {0U, 1U, 2U, 3U, 8U, 0xFFFFFFFBU}) {
        result->columnFlags = flags;
        EXPECT_TRUE(fetch().is_success()) << flags;
        EXPECT_EQ(values(), (Reports{"old", "old", "old"})) << flags;
    }
    for (const std::uint32_t flags : {4U, 5U, 6U, 7U, 12U, 0xFFFFFFFFU}) {
        for (auto& row : info.m_rowSet.rows)
            row.m_value = "old";
        result->columnFlags = flags;
        EXPECT_TRUE(fetch().is_success()) << flags;
        EXPECT_EQ(values(), (Reports{"1", "2", "3"})) << flags;
    }
}

TEST_F(ThreeRows, OtherColumnsNeedNoRow) {
    result->extraColumns = {"unknown"};
    result->columnFlags = qlib_1::columnIsKey;
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(ThreeRows, ValueColumnThatWasNotRequestedStopsAtOnce) {
    result->extraColumns = {"unknown"};
    expectFailure("it != rowSet.rows.end()");
}

TEST_F(Binding, QueryWithoutColumnsIsASuccess) {
    rows({""});
    info.m_rowSet.ds = vectorOf({});
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(values(), (Reports{"old"}));
    EXPECT_EQ(result->runs.size(), 1U);
}

class OneColumn final : public basekit2::ref_counted_t<qlib_1::IColumnInfo> {
  public:
    OneColumn(sptr_t<qlib_1::IQuery> columnQuery, std::size_t member)
        : m_query(std::move(columnQuery)), m_member(member) {}
    std::uint32_t getFlags() const noexcept override { return qlib_1::columnIsValue; }
    sptr_t<qlib_1::IQuery> getQuery() const override {
        ++calls;
        return m_query;
    }
    std::size_t getMemberIndex() const noexcept override { return m_member; }
    mutable int calls = 0;

  private:
    sptr_t<qlib_1::IQuery> m_query;
    std::size_t m_member;
};

TEST(ColumnQuery, OfAVectorIsTheMemberThatTheColumnRepresents) {
    const auto vector = vectorOf({"a", "b"});
    for (std::size_t i = 0; i < 2; ++i)
        EXPECT_EQ(tessera_1::view_model::getColumnQuery(basekit2::make_counted<OneColumn>(vector, i)),
                  vector->at(i));
}

TEST(ColumnQuery, OfASingleQueryIsWhatTheColumnReturnsOnTheSecondCall) {
    const auto single = query("a");
    const auto column = basekit2::make_counted<OneColumn>(single, 0);
    EXPECT_EQ(tessera_1::view_model::getColumnQuery(column), single);
    EXPECT_EQ(column->calls, 2);
}

TEST(ColumnQuery, BeyondTheVectorIsNone) {
    EXPECT_TRUE(tessera_1::view_model::getColumnQuery(basekit2::make_counted<OneColumn>(vectorOf({"a"}), 1))
                    .is_null());
    EXPECT_TRUE(
        tessera_1::view_model::getColumnQuery(basekit2::make_counted<OneColumn>(nullptr, 0)).is_null());
}

}  // namespace
}  // namespace tessera_test
