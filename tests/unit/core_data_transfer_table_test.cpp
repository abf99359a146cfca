// Display infos by display mode.
#include "core/view_model/data_transfer_table.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

#include "core/view_model/display_info.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::DataTransferTable;
using tessera_1::view_model::DisplayInfo;
using Entries = std::map<std::string, std::shared_ptr<DisplayInfo>>;

const std::string longMode(40, 'm');

Entries entriesOf(const DataTransferTable& table) {
    return {table.begin(), table.end()};
}

TEST(DataTransfers, FindingLeavesNothingAndLookingUpAnEmptyEntry) {
    for (const std::string& mode : {std::string("size"), std::string(), longMode}) {
        DataTransferTable table;
        EXPECT_EQ(table.find(mode), nullptr);
        EXPECT_FALSE(table.contains(mode));
        EXPECT_TRUE(table.empty());
        EXPECT_EQ(table.lookUp(mode), nullptr);
        EXPECT_EQ(table.lookUp(mode), nullptr);
        EXPECT_TRUE(table.contains(mode));
        EXPECT_FALSE(table.contains(mode + "x"));
        EXPECT_EQ(entriesOf(table), (Entries{{mode, nullptr}}));
        EXPECT_EQ(table.size(), 1U);
    }
}

TEST(DataTransfers, AnEmptyEntryStaysBesideOthersAndCanBeFilled) {
    const auto info = std::make_shared<DisplayInfo>();
    DataTransferTable table;
    (void)table.lookUp("size");
    table["ratio"] = info;
    EXPECT_EQ(entriesOf(table), (Entries{{"size", nullptr}, {"ratio", info}}));
    table["size"] = info;
    EXPECT_EQ(table.lookUp("size"), info);
    EXPECT_EQ(table.size(), 2U);
}

TEST(DataTransfers, CopiesAreTheirOwnAndWhatWasMovedFromIsEmpty) {
    const auto info = std::make_shared<DisplayInfo>();
    DataTransferTable asked;
    (void)asked.lookUp("size");
    const DataTransferTable filled{{"ratio", info}};
    for (const DataTransferTable& table : {asked, filled}) {
        DataTransferTable copy(table);
        EXPECT_EQ(copy, table);
        DataTransferTable moved(std::move(copy));
        EXPECT_EQ(moved, table);
        EXPECT_TRUE(copy.empty());  // NOLINT(bugprone-use-after-move): that is the point
        moved["other"] = info;
        EXPECT_EQ(table.size(), 1U);
        copy = moved;
        EXPECT_EQ(copy.size(), 2U);
        copy.clear();
        EXPECT_TRUE(copy.empty());
        EXPECT_EQ(entriesOf(copy), Entries{});
    }
}

TEST(DataTransfers, AnswerAsAMapDoes) {
    std::mt19937 random(3);
    const std::string modes[] = {"", "size", "ratio", "bandwidth", longMode};
    for (int round = 0; round < 2'000; ++round) {
        DataTransferTable table;
        Entries expected;
        for (int step = 0; step < 6; ++step) {
            const std::string& mode = modes[random() % std::size(modes)];
            if (random() % 3 == 0) {
                table[mode] = expected[mode] = std::make_shared<DisplayInfo>();
            } else {
                ASSERT_EQ(table.lookUp(mode), expected[mode]);
            }
            ASSERT_EQ(table.size(), expected.size());
            ASSERT_EQ(table.find(mode), expected.at(mode));
            if (step % 4 == 3) {
                ASSERT_EQ(entriesOf(table), expected);
            }
        }
    }
}

}  // namespace
}  // namespace tessera_test
