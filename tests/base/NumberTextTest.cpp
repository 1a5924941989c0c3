// The number texts of MMain (base/NumberText.cpp): reading, rounding and writing numbers.
#include "base/MMain.h"

#include <gtest/gtest.h>

#include <limits>

#include "interfaces/Error.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

using zerbin::testing::ScopedLocale;

struct DecimalRow {
    const char* text;
    const char* withPoint;
    const char* withComma;
};

constexpr DecimalRow kDecimalRows[] = {
    {"1.5", "1.5", "1,5"},
    {"1,5", "1.5", "1,5"},
    {"1.234,5", "1.234,5", "1,234,5"},  // the point wins wherever it stands
    {"1.2.3", "1.2.3", "1,2.3"},        // only the first point is replaced
};

TEST(NormalizeDecimal, ReplacesOneSeparatorUnderEitherLocale) {
    for (const DecimalRow& row : kDecimalRows) {
        EXPECT_EQ(NormalizeDecimal(row.text), row.withPoint) << row.text;
        EXPECT_EQ(DecimalToDisplay(row.text), row.withPoint) << row.text;
    }
    ScopedLocale comma;
    ZERBIN_REQUIRE_COMMA_LOCALE(comma);
    for (const DecimalRow& row : kDecimalRows) {
        EXPECT_EQ(NormalizeDecimal(row.text), row.withComma) << row.text;
        EXPECT_EQ(DecimalToDisplay(row.text), row.withComma) << row.text;
    }
}

TEST(LeadingNumber, ReadsTheLongestLeadingNumber) {
    const struct {
        const char* text;
        double expected;
    } rows[] = {
        {"12abc", 12},      {"abc", 0},     {"&hff", 255}, {"&O18", 1},    {"1,5", 1},
        {" -1.5e2x", -150}, {"1d-2", 0.01}, {"+.5", 0.5},  {"1.2.3", 1.2}, {"1 2", 12},
        {"1e+", 1},         {"--1", 0},     {"1\r2", 1},   {"& h 1F", 31}, {"1e-400", 0},
    };
    for (const auto& row : rows) {
        EXPECT_DOUBLE_EQ(LeadingNumber(row.text), row.expected) << '"' << row.text << '"';
    }
}

TEST(LeadingNumber, IgnoresTheLocaleAndSaturatesBeyondTheDoubleRange) {
    const double inf = std::numeric_limits<double>::infinity();
    // An exponent beyond a long still says which way the number went, whatever the mantissa.
    const struct {
        const char* text;
        double expected;
    } beyond[] = {
        {"1e400", inf},
        {"10e99999999999999999999", inf},
        {"-1e99999999999999999999", -inf},
        {"0.01e-99999999999999999999", 0},
        {"0.001e-99999999999999999999", 0},
        {"123e-99999999999999999999", 0},
    };
    for (const auto& row : beyond) {
        EXPECT_EQ(LeadingNumber(row.text), row.expected) << row.text;
    }
    ScopedLocale comma;
    ZERBIN_REQUIRE_COMMA_LOCALE(comma);
    EXPECT_DOUBLE_EQ(LeadingNumber("2.5"), 2.5);
    EXPECT_DOUBLE_EQ(LeadingNumber("2,5"), 2.0);
}

TEST(LocaleNumber, ReadsWholeTextsWithTheSeparatorInForce) {
    const struct {
        const char* text;
        float expected;
    } withPoint[] = {{"1.5", 1.5F}, {" -2 ", -2.0F}, {"2.5e-1", 0.25F}, {".5", 0.5F}};
    for (const auto& row : withPoint) {
        EXPECT_FLOAT_EQ(LocaleNumber(row.text), row.expected) << row.text;
    }
    for (const char* bad : {"", "1,5", "1.5x", "1e", "1 2", "&H10", "1.2.3", "1..5"}) {
        EXPECT_THROW(LocaleNumber(bad), Error) << '"' << bad << '"';
    }
    EXPECT_THROW(LocaleNumber("1e39"), OverflowError);
    EXPECT_FLOAT_EQ(LocaleNumber("3.4e38"), 3.4e38F);
    EXPECT_EQ(LocaleNumber("3.4028234663852886e38"), std::numeric_limits<float>::max());
    EXPECT_EQ(LocaleNumber("-3.4028234663852886e38"), -std::numeric_limits<float>::max());

    ScopedLocale comma;
    ZERBIN_REQUIRE_COMMA_LOCALE(comma);
    EXPECT_FLOAT_EQ(LocaleNumber("1,5"), 1.5F);
    EXPECT_THROW(LocaleNumber("1.5"), Error);
}

TEST(Rounding, GoesHalfToEven) {
    const struct {
        double value;
        double expected;
    } rows[] = {{2.5, 2}, {3.5, 4}, {-2.5, -2}, {2.6, 3}, {4503599627370497.0, 4503599627370497.0}};
    for (const auto& row : rows) {
        EXPECT_EQ(RoundHalfEven(row.value), row.expected) << row.value;
    }
    EXPECT_EQ(ToInt32(2147483647.4), 2147483647);
    EXPECT_EQ(ToInt32(-2147483648.5), std::numeric_limits<int32_t>::min());  // even
    EXPECT_EQ(ToInt16(-32768.5), -32768);
    EXPECT_EQ(ToByte(254.5), 254);
}

TEST(Rounding, ThrowsOverflowOutsideTheTarget) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (double bad : {2147483647.5, -2147483649.0, nan, inf, -inf}) {
        EXPECT_THROW(ToInt32(bad), OverflowError) << bad;
    }
    for (double bad : {255.5, 256.0, -0.6, nan}) {
        EXPECT_THROW(ToByte(bad), OverflowError) << bad;
    }
    EXPECT_EQ(ToByte(-0.5), 0);
    EXPECT_EQ(NarrowToInt16(-32768), -32768);
    EXPECT_EQ(NarrowToInt16(32767), 32767);
    EXPECT_THROW(NarrowToInt16(-32769), OverflowError);
    EXPECT_THROW(NarrowToInt16(32768), OverflowError);
}

TEST(FormatDouble, WritesTheGeneralFormWithFifteenDigits) {
    const struct {
        double value;
        const char* withPoint;
        const char* withComma;
    } rows[] = {
        {120.5, "120.5", "120,5"},
        {-0.0, "0", "0"},
        {1.0 / 3.0, "0.333333333333333", "0,333333333333333"},
        {123456789012345.0, "123456789012345", "123456789012345"},
        {1e15, "1E+15", "1E+15"},
        {0.0001, "0.0001", "0,0001"},
        {0.00001, "1E-05", "1E-05"},
        {-1.25e-7, "-1.25E-07", "-1,25E-07"},
        {0.1 + 0.2, "0.3", "0,3"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FormatDouble(row.value), row.withPoint) << row.value;
    }
    ScopedLocale comma;
    ZERBIN_REQUIRE_COMMA_LOCALE(comma);
    for (const auto& row : rows) {
        EXPECT_EQ(FormatDouble(row.value), row.withComma) << row.value;
    }
}

}  // namespace
}  // namespace zerbin
