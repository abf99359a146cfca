#include "host/values/cell_format.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <string>

namespace tessera_host {
namespace {

constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

std::string format(const CellValue& value, std::string_view name, std::string_view unit = "") {
    const auto parsed = CellFormat::parse(name);
    EXPECT_TRUE(parsed) << name;
    return formatCell(value, parsed.value_or(CellFormat()), unit);
}

CellValue integer(std::int64_t value) {
    return value;
}

TEST(CellFormatParse, TakesNamesWithAndWithoutDigits) {
    EXPECT_EQ(CellFormat::parse(""), (CellFormat{CellFormat::Kind::plain, 0}));
    EXPECT_EQ(CellFormat::parse("plain"), (CellFormat{CellFormat::Kind::plain, 0}));
    EXPECT_EQ(CellFormat::parse("fixed"), (CellFormat{CellFormat::Kind::fixed, 2}));
    EXPECT_EQ(CellFormat::parse("fixed:0"), (CellFormat{CellFormat::Kind::fixed, 0}));
    EXPECT_EQ(CellFormat::parse("si:17"), (CellFormat{CellFormat::Kind::si, 17}));
    EXPECT_EQ(CellFormat::parse("binary"), (CellFormat{CellFormat::Kind::binary, 3}));
    EXPECT_EQ(CellFormat::parse("percent"), (CellFormat{CellFormat::Kind::percent, 1}));
    EXPECT_EQ(CellFormat::parse("duration:4"), (CellFormat{CellFormat::Kind::duration, 4}));
}

TEST(CellFormatParse, RejectsEverythingElse) {
    for (const char* text :
         {"Plain", "plain:1", "fixed:", "fixed:18", "fixed:-1", "fixed:-0", "fixed:+1", "fixed:1x",
          "fixed: 1", "fixed:001", "fixed:99999999999", "si 3", "hex", ":", "si:3:4", " si"})
        EXPECT_FALSE(CellFormat::parse(text)) << text;
}

TEST(CellFormat, NullIsEmptyInEveryFormatAndHasNoUnit) {
    for (const char* name : {"plain", "fixed", "si", "binary", "percent", "duration"})
        EXPECT_EQ(format(CellValue(), name, "B/s"), "") << name;
}

TEST(CellFormat, PlainLeavesIntegersAndTextAsTheyAre) {
    EXPECT_EQ(format(integer(0), "plain"), "0");
    EXPECT_EQ(format(integer(smallest), "plain"), "-9223372036854775808");
    EXPECT_EQ(format(integer(42), "plain", "flights"), "42 flights");
    EXPECT_EQ(format("as is ", "plain"), "as is ");
    EXPECT_EQ(format("007", "plain", "x"), "007 x");
    EXPECT_EQ(format("", "plain", "x"), "");
}

TEST(CellFormat, PlainWritesRealsInTheShortestFormThatReadsBack) {
    EXPECT_EQ(format(0.1, "plain"), "0.1");
    EXPECT_EQ(format(0.1 + 0.2, "plain"), "0.30000000000000004");
    EXPECT_EQ(format(5.0, "plain"), "5");
    EXPECT_EQ(format(-2.5, "plain", "m"), "-2.5 m");
    EXPECT_EQ(format(-0.0, "plain"), "0");
    EXPECT_EQ(format(1e300, "plain"), "1e+300");
}

TEST(CellFormat, PlainRealsReadBackEqual) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        const std::string text = format(value, "plain");
        double read = 0;
        std::from_chars(text.data(), text.data() + text.size(), read);
        ASSERT_EQ(read, value) << text;
    }
}

TEST(CellFormat, FixedRoundsTheExactValue) {
    EXPECT_EQ(format(integer(5), "fixed:2"), "5.00");
    EXPECT_EQ(format(integer(5), "fixed:0"), "5");
    EXPECT_EQ(format(integer(smallest), "fixed:1"), "-9223372036854775808.0");
    EXPECT_EQ(format(1.005, "fixed:2"), "1.00");  // the nearest double is below 1.005
    EXPECT_EQ(format(0.125, "fixed:2"), "0.12");  // the middle, so to the even digit
    EXPECT_EQ(format(0.375, "fixed:2"), "0.38");
    EXPECT_EQ(format(2.5, "fixed:0"), "2");
    EXPECT_EQ(format(9.996, "fixed:2", "/day"), "10.00 /day");
    EXPECT_EQ(format(1e22, "fixed:1"), "10000000000000000000000.0");
}

TEST(CellFormat, ZeroHasNoSign) {
    EXPECT_EQ(format(-0.0, "fixed:2"), "0.00");
    EXPECT_EQ(format(-0.001, "fixed:2"), "0.00");
    EXPECT_EQ(format(-0.0, "si:3"), "0.00");
    EXPECT_EQ(format(-0.0, "binary:3"), "0.00");
    EXPECT_EQ(format(-0.0001, "percent:1"), "0.0 %");
    EXPECT_EQ(format(-0.0, "duration"), "0 s");
}

TEST(CellFormat, SiKeepsSignificantDigits) {
    EXPECT_EQ(format(integer(12345678), "si:3", "B/s"), "12.3 MB/s");
    EXPECT_EQ(format(12345678.0, "si:3", "B/s"), "12.3 MB/s");
    EXPECT_EQ(format(integer(5), "si:3", "B"), "5.00 B");
    EXPECT_EQ(format(integer(5), "si:3"), "5.00");
    EXPECT_EQ(format(integer(1000), "si:3"), "1.00 k");
    EXPECT_EQ(format(integer(123456), "si:2"), "120 k");
    EXPECT_EQ(format(integer(-2500000000), "si:2"), "-2.5 G");
    EXPECT_EQ(format(3.5e12, "si:2", "B"), "3.5 TB");
    EXPECT_EQ(format(integer(0), "si:3"), "0.00");
    EXPECT_EQ(format(integer(7), "si:0"), "7");  // taken as one digit
}

TEST(CellFormat, SiChoosesThePrefixAfterRounding) {
    EXPECT_EQ(format(integer(999499), "si:3"), "999 k");
    EXPECT_EQ(format(integer(999600), "si:3"), "1.00 M");
    EXPECT_EQ(format(999.6, "si:3"), "1.00 k");
    EXPECT_EQ(format(999.4, "si:3"), "999");
    EXPECT_EQ(format(integer(-999999999), "si:4"), "-1.000 G");
    EXPECT_EQ(format(integer(950), "si:1"), "1 k");  // 9.5 hundreds: the middle, to the even 10
    EXPECT_EQ(format(integer(850), "si:1"), "800");
}

TEST(CellFormat, SiIsExactForLargeIntegers) {
    EXPECT_EQ(format(integer(9007199254740993), "si:17"),
              "9.0071992547409930 P");  // no double has this value
    EXPECT_EQ(format(integer(largest), "si:17"), "9223.3720368547758 P");
    EXPECT_EQ(format(integer(smallest), "si:3"), "-9220 P");
    EXPECT_EQ(format(integer(9500000000000000), "si:1"), "10 P");
    EXPECT_EQ(format(integer(9999999999999999), "si:3"), "10.0 P");
}

TEST(CellFormat, SiOutsideOfItsPrefixes) {
    EXPECT_EQ(format(0.5, "si:3", "s"), "0.500 s");
    EXPECT_EQ(format(0.00012345, "si:3"), "0.000123");
    EXPECT_EQ(format(1.5e-6, "si:2"), "0.0000015");
    EXPECT_EQ(format(1.5e-7, "si:2", "m"), "1.5e-07 m");
    EXPECT_EQ(format(1e18, "si:3"), "1000 P");
    EXPECT_EQ(format(9.99e20, "si:3"), "999000 P");
    EXPECT_EQ(format(9.999e20, "si:3"), "1.00e+21");
    EXPECT_EQ(format(-1e300, "si:3", "B"), "-1.00e+300 B");
}

TEST(CellFormat, BinaryCountsInPowersOf1024) {
    EXPECT_EQ(format(integer(1536), "binary:3", "B"), "1.50 KiB");
    EXPECT_EQ(format(integer(-1536), "binary:3", "B"), "-1.50 KiB");
    EXPECT_EQ(format(integer(1023), "binary:4"), "1023");
    EXPECT_EQ(format(integer(1024), "binary:4"), "1.000 Ki");
    EXPECT_EQ(format(integer(1024), "binary:3", "B"), "1.00 KiB");
    EXPECT_EQ(format(integer(1048576), "binary:3", "B"), "1.00 MiB");
    EXPECT_EQ(format(1023.5, "binary:4"), "1.000 Ki");
    EXPECT_EQ(format(integer(1023 * 1024), "binary:4"), "1023 Ki");
    EXPECT_EQ(format(integer(1024 * 1024 - 1), "binary:4"),
              "1.000 Mi");  // 1023.999 would be written as 1024 Ki
    EXPECT_EQ(format(integer(std::int64_t{3} << 30), "binary:2"), "3.0 Gi");
    EXPECT_EQ(format(std::ldexp(1.0, 43), "binary:2"), "8.0 Ti");
    EXPECT_EQ(format(integer(smallest), "binary:4"), "-8192 Pi");
    EXPECT_EQ(format(0.25, "binary:2"), "0.25");
    EXPECT_EQ(format(1e30, "binary:2", "B"), "1.0e+30 B");
}

TEST(CellFormat, PercentMultipliesExactly) {
    EXPECT_EQ(format(0.1234, "percent:1"), "12.3 %");
    EXPECT_EQ(format(0.285, "percent:0"), "28 %");  // the nearest double is below 0.285
    EXPECT_EQ(format(0.375, "percent:0"), "38 %");
    EXPECT_EQ(format(integer(1), "percent:1"), "100.0 %");
    EXPECT_EQ(format(integer(smallest), "percent:0"), "-922337203685477580800 %");
    EXPECT_EQ(format(-0.5, "percent:1"), "-50.0 %");
    EXPECT_EQ(format(0.0004, "percent:1"), "0.0 %");
    EXPECT_EQ(format(0.05, "percent:0"), "5 %");
    EXPECT_EQ(format(123.456, "percent:2"), "12345.60 %");
}

TEST(CellFormat, PercentDoesNotRepeatItsSign) {
    EXPECT_EQ(format(0.5, "percent:1", "%"), "50.0 %");
    EXPECT_EQ(format(0.5, "percent:1", "of all"), "50.0 % of all");
}

TEST(CellFormat, DurationsBelowAMinute) {
    EXPECT_EQ(format(integer(0), "duration"), "0 s");
    EXPECT_EQ(format(integer(1), "duration"), "1.00 s");
    EXPECT_EQ(format(59.94, "duration"), "59.9 s");
    EXPECT_EQ(format(0.00125, "duration"), "1.25 ms");
    EXPECT_EQ(format(0.5, "duration:2"), "500 ms");
    EXPECT_EQ(format(42e-6, "duration"), "42.0 µs");
    EXPECT_EQ(format(7.5e-9, "duration:2"), "7.5 ns");
    EXPECT_EQ(format(1e-12, "duration"), "0.00100 ns");
    EXPECT_EQ(format(1.5e-20, "duration:2"), "1.5e-20 s");
    EXPECT_EQ(format(0.9996, "duration"), "1.00 s");  // the unit is chosen after rounding
    EXPECT_EQ(format(999.6e-6, "duration"), "1.00 ms");
    EXPECT_EQ(format(-0.25, "duration"), "-250 ms");
}

TEST(CellFormat, DurationsFromAMinuteOn) {
    EXPECT_EQ(format(59.96, "duration"), "1 min");
    EXPECT_EQ(format(integer(60), "duration"), "1 min");
    EXPECT_EQ(format(integer(125), "duration"), "2 min 5 s");
    EXPECT_EQ(format(125.4, "duration:6"), "2 min 5 s");
    EXPECT_EQ(format(3599.4, "duration"), "59 min 59 s");
    EXPECT_EQ(format(3599.7, "duration"), "1 h");
    EXPECT_EQ(format(integer(12000), "duration"), "3 h 20 min");
    EXPECT_EQ(format(integer(86399), "duration"), "1 d");
    EXPECT_EQ(format(integer(4 * 86400 + 6 * 3600), "duration"), "4 d 6 h");
    EXPECT_EQ(format(integer(-125), "duration"), "-2 min 5 s");
    EXPECT_EQ(format(integer(86400000000), "duration"), "1000000 d");
    EXPECT_EQ(format(integer(smallest), "duration:2"), "-9.2e+18 s");
    EXPECT_EQ(format(1e20, "duration"), "1.00e+20 s");
}

TEST(CellFormat, DurationsHaveUnitsOfTheirOwn) {
    EXPECT_EQ(format(integer(125), "duration", "s"), "2 min 5 s");
    EXPECT_EQ(format(integer(125), "duration", "per flight"), "2 min 5 s per flight");
}

TEST(CellFormat, InfinitiesAndNaNStandForThemselves) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const char* name : {"plain", "fixed:2", "si", "binary"}) {
        EXPECT_EQ(format(infinity, name, "B"), "inf B") << name;
        EXPECT_EQ(format(-infinity, name), "-inf") << name;
        EXPECT_EQ(format(nan, name), "nan") << name;
    }
    EXPECT_EQ(format(-infinity, "percent", "%"), "-inf %");
    EXPECT_EQ(format(infinity, "duration"), "inf");
}

TEST(CellFormat, TextThatIsANumberIsFormattedAsOne) {
    EXPECT_EQ(format("12345678", "si:3", "B"), "12.3 MB");
    EXPECT_EQ(format("+2.5e3", "fixed:1"), "2500.0");
    EXPECT_EQ(format(".5", "percent:0"), "50 %");
    EXPECT_EQ(format("9223372036854775808", "fixed:0"), "9223372036854775808");
}

TEST(CellFormat, OtherTextStaysAndHasNoUnit) {
    for (const char* text : {"n/a", "12 apples", " 12", "0x10", "inf", "1e999", "1e", ".", "-", "1.2.3"})
        EXPECT_EQ(format(text, "si:3", "B"), text);
}

TEST(CellFormat, InvalidUtf8IsRepaired) {
    EXPECT_EQ(format("a\xFF"
                     "b",
                     "plain"),
              "a\uFFFDb");
    EXPECT_EQ(format("\xC0\x80", "plain"), "\uFFFD\uFFFD");         // overlong
    EXPECT_EQ(format("\xED\xA0\x80", "si"), "\uFFFD\uFFFD\uFFFD");  // a surrogate
    EXPECT_EQ(format("\xE2\x82", "plain"), "\uFFFD");               // broken off
    EXPECT_EQ(format("\xF4\x90\x80\x80", "plain"), "\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(format("\u00E9\u20AC\U0001F600", "plain"), "\u00E9\u20AC\U0001F600");
    EXPECT_EQ(format(integer(1), "plain", "\xFF"), "1 \uFFFD");
}

TEST(CellFormat, DoesNotDependOnTheLocale) {
    class Comma : public std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Comma));
    EXPECT_EQ(format(1234567.5, "fixed:2"), "1234567.50");
    EXPECT_EQ(format(integer(1234567), "plain"), "1234567");
    EXPECT_EQ(format(0.5, "plain"), "0.5");
    std::locale::global(before);
}

}  // namespace
}  // namespace tessera_host
