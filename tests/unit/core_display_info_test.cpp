// Display infos, row sets, rows, and when they are empty.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

#include "core/view_model/display_info.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::DataTransferTable;
using tessera_1::view_model::DisplayInfo;
using tessera_1::view_model::LinkDisplayInfo;
using tessera_1::view_model::Row;
using tessera_1::view_model::RowSet;

std::shared_ptr<DisplayInfo> infoWithValue(const std::string& value) {
    auto info = std::make_shared<DisplayInfo>();
    info->m_rowSet.rows.push_back({"name", value, "/query"});
    return info;
}

TEST(DisplayInfos, NewRowSetHasNothing) {
    const RowSet rowSet;
    EXPECT_EQ(rowSet.m_name, "");
    EXPECT_TRUE(rowSet.rows.empty());
    EXPECT_FALSE(rowSet.m_flag);
    EXPECT_TRUE(rowSet.ds.is_null());
    EXPECT_TRUE(rowSet.m_bag.is_empty());
    EXPECT_TRUE(rowSet.empty());
}

TEST(DisplayInfos, NewDisplayInfoHasNothing) {
    const DisplayInfo info;
    EXPECT_EQ(info.m_name, "");
    EXPECT_EQ(info.m_rowSet.m_name, "");
    EXPECT_TRUE(info.m_rowSet.empty());
}

TEST(DisplayInfos, RowsAreNameValueAndQueryAndAreCopied) {
    Row row{"name", "value", "/query"};
    const Row copy = row;
    row = Row();
    EXPECT_EQ(copy.m_name, "name");
    EXPECT_EQ(copy.m_value, "value");
    EXPECT_EQ(copy.m_query, "/query");
    EXPECT_EQ(row.m_value, "");
}

TEST(DisplayInfos, RowSetWithoutValuesIsEmptyWhateverItsNames) {
    RowSet rowSet;
    rowSet.m_name = "name";
    rowSet.rows = {{"a", "", "/a"}, {"b", "", "/b"}};
    EXPECT_TRUE(rowSet.empty());
}

TEST(DisplayInfos, OneValueMakesARowSetNonEmptyWhereverItStands) {
    for (std::size_t place = 0; place < 3; ++place) {
        RowSet rowSet;
        rowSet.rows.resize(3);
        rowSet.rows[place].m_value = "0";
        EXPECT_FALSE(rowSet.empty()) << place;
    }
}

TEST(DisplayInfos, ASpaceIsAValue) {
    RowSet rowSet;
    rowSet.rows = {{"a", " ", "/a"}};
    EXPECT_FALSE(rowSet.empty());
}

TEST(DisplayInfos, TableWithoutTheKeyIsEmpty) {
    EXPECT_TRUE(LinkDisplayInfo::emptyDataTransfer({}, "bandwidth"));
    EXPECT_TRUE(LinkDisplayInfo::emptyDataTransfer({}, ""));
    const DataTransferTable table{{"size", infoWithValue("1")}};
    EXPECT_TRUE(LinkDisplayInfo::emptyDataTransfer(table, "bandwidth"));
    EXPECT_TRUE(LinkDisplayInfo::emptyDataTransfer(table, "Size"));
    EXPECT_TRUE(LinkDisplayInfo::emptyDataTransfer(table, "size "));
}

TEST(DisplayInfos, TableWithTheKeyIsAsEmptyAsItsRowSet) {
    EXPECT_FALSE(LinkDisplayInfo::emptyDataTransfer({{"size", infoWithValue("1")}}, "size"));
    EXPECT_TRUE(LinkDisplayInfo::emptyDataTransfer({{"size", infoWithValue("")}}, "size"));
    EXPECT_TRUE(LinkDisplayInfo::emptyDataTransfer({{"size", std::make_shared<DisplayInfo>()}}, "size"));
    EXPECT_FALSE(LinkDisplayInfo::emptyDataTransfer({{"", infoWithValue("1")}}, ""));
}

TEST(DisplayInfos, EntryThatALookUpLeftWithoutDisplayInfoIsEmpty) {
    EXPECT_TRUE(LinkDisplayInfo::emptyDataTransfer({{"size", nullptr}}, "size"));
}

TEST(DisplayInfos, TablesOfALinkAreEmptyOnlyTogether) {
    EXPECT_TRUE(LinkDisplayInfo().empty("size"));
    for (const auto table :
         {&LinkDisplayInfo::m_fromInfo, &LinkDisplayInfo::m_toInfo, &LinkDisplayInfo::m_totalInfo}) {
        LinkDisplayInfo link;
        (link.*table)["size"] = infoWithValue("1");
        EXPECT_FALSE(link.empty("size"));
        EXPECT_TRUE(link.empty("ratio"));
        link.m_fromInfo["ratio"] = link.m_toInfo["ratio"] = link.m_totalInfo["ratio"] = infoWithValue("");
        EXPECT_TRUE(link.empty("ratio"));
        EXPECT_FALSE(link.empty("size"));
    }
}

TEST(DisplayInfos, AskingChangesNoTable) {
    LinkDisplayInfo link;
    EXPECT_TRUE(link.empty("size"));
    EXPECT_TRUE(link.m_fromInfo.empty() && link.m_toInfo.empty() && link.m_totalInfo.empty());
}

TEST(DisplayInfos, TextOfTheLinkDoesNotCount) {
    LinkDisplayInfo link;
    EXPECT_EQ(link.m_extraText, "");
    link.m_extraText = "text";
    EXPECT_TRUE(link.empty("size"));
}

}  // namespace
}  // namespace tessera_test
