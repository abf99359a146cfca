// Result codes: the three kinds, what a raised one remembers, and for how long.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/basekit2/error_code.h"

namespace tessera_test {
namespace {

using basekit2::error_code_t;
using RTBASE_2_18::strings::ustring8;
namespace error = bk2::error;

error_code_t raiseText(const std::string& text) {
    return error_code_t::raise(error::FailedTo(ustring8(text)), "function", "file", 1);
}

TEST(ErrorCode, HasSixtyFourBits) {
    static_assert(sizeof(error_code_t) == 8);
    static_assert(std::is_same_v<decltype(error_code_t().value()), std::uint64_t>);
}

TEST(ErrorCode, ZeroIsSuccess) {
    for (const error_code_t code : {error_code_t(), error_code_t::success()}) {
        EXPECT_EQ(code.value(), 0U);
        EXPECT_TRUE(code.succeeded());
        EXPECT_TRUE(code.is_success());
        EXPECT_FALSE(code.is_false());
        EXPECT_STREQ(code.name(), "success");
    }
}

TEST(ErrorCode, OneIsTheFalseCodeWhichSucceededAccepts) {
    const error_code_t code = error_code_t::false_code();
    EXPECT_EQ(code.value(), 1U);
    EXPECT_TRUE(code.succeeded());
    EXPECT_FALSE(code.is_success());
    EXPECT_TRUE(code.is_false());
    EXPECT_STREQ(code.name(), "false");
}

TEST(ErrorCode, SuccessAndFalseSayNothing) {
    for (const error_code_t code : {error_code_t::success(), error_code_t::false_code()}) {
        EXPECT_EQ(code.message(), "");
        EXPECT_EQ(code.function(), "");
        EXPECT_EQ(code.file(), "");
        EXPECT_EQ(code.line(), 0);
        EXPECT_FALSE(code.is(error::IsNot.Valid.Data));
        EXPECT_FALSE(code.is(error::FailedTo));
    }
}

TEST(ErrorCode, RaisedErrorIsRejectedBySucceeded) {
    for (const error::entry_t& entry :
         {error::IsNot.Valid.Data, error::IsNot.Valid.Range, error::FailedTo, error::Cancelled}) {
        const error_code_t code = error_code_t::raise(entry(_U("why")), "function", "file", 1);
        EXPECT_GT(code.value(), 1U);
        EXPECT_FALSE(code.succeeded());
        EXPECT_FALSE(code.is_success());
        EXPECT_FALSE(code.is_false());
    }
}

template <std::uint32_t number>
concept IsNumberOfAnEntry = requires {
    typename std::integral_constant<std::uint32_t, error::entry_t(number, "name").number>;
};
static_assert(IsNumberOfAnEntry<0> && IsNumberOfAnEntry<254>);
static_assert(!IsNumberOfAnEntry<255> && !IsNumberOfAnEntry<256>, "a code has no bits for them");

// What is raised comes from an entry, so raise() gets no other number: neither from parentheses, nor from braces,
// nor by assignment.
template <class Code>
concept RaisesAnyNumber = requires(const char* place) {
    Code::raise({300U, ustring8("why")}, place, place, 1);
};
static_assert(!RaisesAnyNumber<error_code_t>);
static_assert(!std::is_constructible_v<basekit2::error_t, std::uint32_t, ustring8>);
static_assert(!std::is_default_constructible_v<basekit2::error_t> && !std::is_aggregate_v<basekit2::error_t>);
static_assert(!std::is_aggregate_v<error::entry_t>);
static_assert(!std::is_assignable_v<decltype((std::declval<error::entry_t&>().number)), std::uint32_t>);

TEST(ErrorCode, LargestNumberOfAnEntryIsKept) {
    constexpr error::entry_t largest(254, "largest");
    const error_code_t code = error_code_t::raise(largest(_U("why")), "function", "file", 1);
    EXPECT_TRUE(code.is(largest));
    EXPECT_FALSE(code.succeeded());
}

TEST(ErrorCode, RaisedErrorHasTheNameOfItsEntry) {
    const auto nameOf = [](const error::entry_t& entry) {
        return std::string(error_code_t::raise(entry(_U("")), "", "", 0).name());
    };
    EXPECT_EQ(nameOf(error::IsNot.Valid.Data), "IsNot.Valid.Data");
    EXPECT_EQ(nameOf(error::IsNot.Valid.Range), "IsNot.Valid.Range");
    EXPECT_EQ(nameOf(error::FailedTo), "FailedTo");
    EXPECT_EQ(nameOf(error::Cancelled), "Cancelled");
}

TEST(ErrorCode, IsComparesTheEntryWhateverTheMessage) {
    const error_code_t code = error_code_t::raise(error::IsNot.Valid.Data(_U("one")), "", "", 0);
    EXPECT_TRUE(code.is(error::IsNot.Valid.Data));
    EXPECT_FALSE(code.is(error::IsNot.Valid.Range));
    EXPECT_FALSE(code.is(error::FailedTo));
    EXPECT_FALSE(code.is(error::Cancelled));
}

TEST(ErrorCode, MessageFunctionFileAndLineAreKeptAsCopies) {
    std::string function = "int f(char)", file = "core/unit";
    const error_code_t code =
        error_code_t::raise(error::FailedTo(_U("read it")), function.c_str(), file.c_str(), 42);
    function.assign(function.size(), '?');
    file.assign(file.size(), '?');
    const error_code_t copy = code;
    EXPECT_EQ(copy.message(), "read it");
    EXPECT_EQ(copy.function(), "int f(char)");
    EXPECT_EQ(copy.file(), "core/unit");
    EXPECT_EQ(copy.line(), 42);
}

TEST(ErrorCode, CodesAreEqualWhenTheyComeFromOneRaise) {
    const error_code_t first = raiseText("same"), second = raiseText("same"), copy = first;
    EXPECT_EQ(first, copy);
    EXPECT_FALSE(first == second);
    EXPECT_FALSE(first == error_code_t::success());
    EXPECT_EQ(error_code_t::success(), error_code_t());
    EXPECT_FALSE(error_code_t::success() == error_code_t::false_code());
}

TEST(ErrorCode, LongPastRaiseKeepsItsNameAndForgetsTheRest) {
    const error_code_t old = error_code_t::raise(error::IsNot.Valid.Range(_U("old")), "function", "file", 7);
    for (int i = 0; i < 1'000'000; ++i)
        (void)raiseText("new");
    EXPECT_STREQ(old.name(), "IsNot.Valid.Range");
    EXPECT_TRUE(old.is(error::IsNot.Valid.Range));
    EXPECT_FALSE(old.succeeded());
    EXPECT_EQ(old.message(), "");
    EXPECT_EQ(old.function(), "");
    EXPECT_EQ(old.file(), "");
    EXPECT_EQ(old.line(), 0);
}

TEST(ErrorCode, NumberOfRememberedRaisesIsBounded) {
    std::vector<error_code_t> codes;
    for (int i = 0; i < 200'000; ++i)
        codes.push_back(raiseText(std::to_string(i)));
    int remembered = 0;
    for (const error_code_t code : codes)
        remembered += code.line() != 0;
    EXPECT_LT(remembered, 100'000);
    EXPECT_GT(remembered, 10'000);
    EXPECT_EQ(codes.back().message(), "199999");
}

TEST(ErrorCode, BytesOfRememberedRaisesAreBounded) {
    constexpr std::size_t megabyte = 1'000'000;
    std::vector<error_code_t> codes;
    for (int i = 0; i < 100; ++i)
        codes.push_back(raiseText(std::string(megabyte, 'x')));
    std::size_t remembered = 0;
    for (const error_code_t code : codes)
        remembered += code.message().size();
    EXPECT_LE(remembered, 10 * megabyte);
    EXPECT_EQ(codes.back().message().size(), megabyte);
}

TEST(ErrorCode, NewestRaiseIsKeptHoweverLongItsMessage) {
    const error_code_t code = raiseText(std::string(20'000'000, 'x'));
    EXPECT_EQ(code.message().size(), 20'000'000U);
    const error_code_t next = raiseText("short");
    EXPECT_EQ(next.message(), "short");
    EXPECT_EQ(code.message(), "");
}

TEST(ErrorCode, ThreadsRaiseAtOnceAndEveryoneReadsWhatWasSaid) {
    constexpr int threadCount = 8;
    constexpr int raises = 64;  // few enough for all of them to be recent
    std::vector<std::vector<error_code_t>> codes(threadCount);
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < threadCount; ++t)
            threads.emplace_back([t, &mine = codes[static_cast<std::size_t>(t)]] {
                for (int i = 0; i < raises; ++i)
                    mine.push_back(raiseText(std::to_string(t) + ":" + std::to_string(i)));
            });
    }
    std::set<std::uint64_t> values;
    for (int t = 0; t < threadCount; ++t)
        for (int i = 0; i < raises; ++i) {
            const error_code_t code = codes[static_cast<std::size_t>(t)][static_cast<std::size_t>(i)];
            EXPECT_EQ(code.message(), std::to_string(t) + ":" + std::to_string(i));
            values.insert(code.value());
        }
    EXPECT_EQ(values.size(), static_cast<std::size_t>(threadCount * raises));
}

}  // namespace
}  // namespace tessera_test
