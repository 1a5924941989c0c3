#include "app_object/MMain.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <string>

#include "app_object/SkipMode.h"
#include "interfaces/Error.h"
#include "tests/TestSupport.h"

namespace zerbin {
namespace {

using zerbin::testing::ScopedLocale;

// ---- Tokens ----------------------------------------------------------------------------------

TEST(NthToken, PicksTokensByTheirSeparatorCount) {
    struct Row {
        const char* text;
        int32_t index;
        const char* separator;
        const char* expected;
    };
    const Row rows[] = {
        {"a;b;c", 0, ";", "a"},      {"a;b;c", 1, ";", "b"},     {"a;b;c", 2, ";", "c"},
        {"a;b;c", 3, ";", ""},       {"abc", 0, ";", ""},  // no separator: not the whole text
        {"abc", 1, ";", ""},         {"", 0, ";", ""},           {"a;b", -1, ";", ""},
        {"a;;c", 1, ";", ""},  // adjacent separators
        {"a;;c", 2, ";", "c"},       {";b", 0, ";", ""},         {"0,OFF;1,ON;", 1, ";", "1,ON"},
        {"0,OFF;1,ON;", 2, ";", ""},  // the trailing separator ends the list
        {"0,OFF", 1, ",", "OFF"},    {"10 20 30", 2, " ", "30"}, {"h:m:s", 1, ":", "m"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(NthToken(row.text, row.index, row.separator), row.expected)
            << '"' << row.text << "\" index " << row.index;
    }
}

// ---- Hexadecimal digits ------------------------------------------------------------------

TEST(HexByte, FormatsTheLowByteAndClampsTheCallersVariable) {
    struct Row {
        int32_t value;
        const char* expected;
        int32_t afterwards;
    };
    const Row rows[] = {
        {0, "00", 0},
        {10, "0A", 10},
        {255, "FF", 255},
        {256, "FF", 255},
        {70000, "FF", 255},
        {-1, "FF", -1},
        {-44, "D4", -44},
        {-256, "00", -256},
        {std::numeric_limits<int32_t>::min(), "00", std::numeric_limits<int32_t>::min()},
    };
    for (const Row& row : rows) {
        int32_t value = row.value;
        EXPECT_EQ(HexByte(value), row.expected) << row.value;
        EXPECT_EQ(value, row.afterwards) << row.value;
        EXPECT_EQ(HexByteOf(row.value), row.expected) << row.value;
    }
}

TEST(HexWord, SplitsIntoBytesAndClampsOnlyItsOwnArgument) {
    struct Row {
        int32_t value;
        const char* expected;
        int32_t afterwards;
    };
    const Row rows[] = {
        {0, "0000", 0},         {5, "0005", 5},         {300, "012C", 300},
        {65535, "FFFF", 65535}, {70000, "FFFF", 65535}, {-1, "00FF", -1},
        {-256, "FF00", -256},   {-300, "FFD4", -300},   {16899, "4203", 16899},
    };
    for (const Row& row : rows) {
        int32_t value = row.value;
        EXPECT_EQ(HexWord(value), row.expected) << row.value;
        EXPECT_EQ(value, row.afterwards) << row.value;
    }
}

// ---- Reference codes -----------------------------------------------------------------------

TEST(NvReferenceCode, CombinesIndexAndExportIndexUnderSelectorTwo) {
    EXPECT_EQ(NvReferenceCode(3, 2), 2 * 256 + 16384 + 3);
    EXPECT_EQ(HexWordOf(NvReferenceCode(3, 2)), "4203");
    EXPECT_EQ(NvReferenceCode(256, 0), 0x4100);  // an export index past 255 carries over
    EXPECT_EQ(NvReferenceCode(0, -64), 0);
}

TEST(NvReferenceCode, ThrowsWhenAnyStepLeavesTheInt32Range) {
    EXPECT_THROW(NvReferenceCode(0, 8388608), OverflowError);       // the product
    EXPECT_THROW(NvReferenceCode(0, 8388607), OverflowError);       // the offset
    EXPECT_THROW(NvReferenceCode(256, 8388543), OverflowError);     // the export index
    EXPECT_THROW(NvReferenceCode(-20000, 8388607), OverflowError);  // late recovery is no help
    EXPECT_EQ(NvReferenceCode(255, 8388543), std::numeric_limits<int32_t>::max());
}

// ---- XML -----------------------------------------------------------------------------------

TEST(AppendElement, AddsTextUnlessGivenTheExactMarker) {
    pugi::xml_document doc;
    pugi::xml_node root = doc.append_child("Root");

    pugi::xml_node withText = AppendElement(doc, root, "Name", "Pump 1");
    pugi::xml_node empty = AppendElement(doc, root, "Empty", "");
    pugi::xml_node bare = AppendElement(doc, root, "Bare", kNoTextField);
    pugi::xml_node lower = AppendElement(doc, root, "Lower", "notextfield");

    EXPECT_EQ(root.last_child(), lower);
    EXPECT_STREQ(withText.first_child().value(), "Pump 1");
    ASSERT_TRUE(empty.first_child());
    EXPECT_EQ(empty.first_child().type(), pugi::node_pcdata);
    EXPECT_STREQ(empty.first_child().value(), "");
    EXPECT_FALSE(bare.first_child());
    EXPECT_STREQ(lower.first_child().value(), "notextfield");
}

TEST(AppendElement, RefusesAnInvalidNameWithoutTouchingTheTree) {
    pugi::xml_document doc;
    pugi::xml_node root = doc.append_child("Root");
    EXPECT_THROW(AppendElement(doc, root, "1st", "x"), Error);
    EXPECT_THROW(AppendElement(doc, root, "", "x"), Error);
    EXPECT_THROW(AppendAttributeElement(doc, root, "Ok", "bad name", "v"), Error);
    EXPECT_THROW(AppendAttributeElement(doc, root, "bad name", "Ok", "v"), Error);
    EXPECT_THROW(AppendElement(doc, pugi::xml_node(), "Name", "x"), Error);
    EXPECT_FALSE(root.first_child());
}

// ---- Decimal separator -------------------------------------------------------------------

TEST(DecimalSeparator, FollowsTheNumericLocaleOnDetection) {
    DetectDecimalSeparator();
    EXPECT_EQ(DecimalSeparator(), ".");
    {
        ScopedLocale comma;
        ZERBIN_REQUIRE_COMMA_LOCALE(comma);
        EXPECT_EQ(DecimalSeparator(), ",");
    }
    EXPECT_EQ(DecimalSeparator(), ".");
}

struct DecimalRow {
    const char* text;
    const char* withPoint;
    const char* withComma;
};

constexpr DecimalRow kDecimalRows[] = {
    {"1.5", "1.5", "1,5"},
    {"1,5", "1.5", "1,5"},
    {"1.234,5", "1.234,5", "1,234,5"},  // the point wins wherever it stands
    {"1,234.5", "1,234.5", "1,234,5"},
    {"1.2.3", "1.2.3", "1,2.3"},  // only the first point is replaced
    {"12", "12", "12"},
    {"", "", ""},
    {".", ".", ","},
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

// ---- Reading numbers -----------------------------------------------------------------------

TEST(LeadingNumber, ReadsTheLongestLeadingNumber) {
    struct Row {
        const char* text;
        double expected;
    };
    const Row rows[] = {
        {"12abc", 12},      {"abc", 0},     {"", 0},        {"&H10", 16},   {"&hff", 255},
        {"&o17", 15},       {"&O18", 1},    {"&Hx", 0},     {"&", 0},       {"1,5", 1},
        {" -1.5e2x", -150}, {"1D2", 100},   {"1d-2", 0.01}, {".", 0},       {"+.5", 0.5},
        {"-", 0},           {"1.2.3", 1.2}, {"\t\n 7", 7},  {"1 2", 12},    {"1e", 1},
        {"1e+", 1},         {"2E3", 2000},  {"--1", 0},     {"5.", 5},      {"0.1", 0.1},
        {"80", 80},         {"1\r2", 1},    {"true", 0},    {"-0.5", -0.5}, {"& h 1F", 31},
        {"&H", 0},          {"1e-400", 0},
    };
    for (const Row& row : rows) {
        EXPECT_DOUBLE_EQ(LeadingNumber(row.text), row.expected) << '"' << row.text << '"';
    }
}

TEST(LeadingNumber, IgnoresTheLocaleAndSaturatesBeyondTheDoubleRange) {
    EXPECT_EQ(LeadingNumber("1e400"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(LeadingNumber("-1e400"), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(LeadingNumber("0.0001e-400"), 0.0);
    ScopedLocale comma;
    ZERBIN_REQUIRE_COMMA_LOCALE(comma);
    EXPECT_DOUBLE_EQ(LeadingNumber("2.5"), 2.5);
    EXPECT_DOUBLE_EQ(LeadingNumber("2,5"), 2.0);
}

TEST(LocaleNumber, ReadsWholeTextsWithTheSeparatorInForce) {
    struct Row {
        const char* text;
        float expected;
    };
    const Row withPoint[] = {{"1.5", 1.5F}, {" -2 ", -2.0F},   {"+3", 3.0F},
                             {"1E3", 1000}, {"2.5e-1", 0.25F}, {".5", 0.5F}};
    for (const Row& row : withPoint) {
        EXPECT_FLOAT_EQ(LocaleNumber(row.text), row.expected) << row.text;
    }
    for (const char* bad : {"", " ", "1,5", "abc", "1.5x", "1e", "-", "1 2", "1.2.3", "&H10"}) {
        EXPECT_THROW(LocaleNumber(bad), Error) << '"' << bad << '"';
    }
    EXPECT_THROW(LocaleNumber("1e39"), OverflowError);
    EXPECT_FLOAT_EQ(LocaleNumber("3.4e38"), 3.4e38F);

    ScopedLocale comma;
    ZERBIN_REQUIRE_COMMA_LOCALE(comma);
    EXPECT_FLOAT_EQ(LocaleNumber("1,5"), 1.5F);
    EXPECT_THROW(LocaleNumber("1.5"), Error);
}

// ---- Rounding ----------------------------------------------------------------------------

TEST(Rounding, GoesHalfToEven) {
    struct Row {
        double value;
        double expected;
    };
    const Row rows[] = {
        {2.5, 2}, {3.5, 4}, {-2.5, -2}, {-3.5, -4}, {0.5, 0},
        {1.5, 2}, {2.4, 2}, {2.6, 3},   {-0.4, 0},  {4503599627370497.0, 4503599627370497.0}};
    for (const Row& row : rows) {
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
    for (double bad : {32767.5, -32769.0, nan}) {
        EXPECT_THROW(ToInt16(bad), OverflowError) << bad;
    }
    for (double bad : {255.5, 256.0, -0.6, nan}) {
        EXPECT_THROW(ToByte(bad), OverflowError) << bad;
    }
    EXPECT_EQ(ToByte(-0.5), 0);
    EXPECT_EQ(NarrowToInt16(-32768), -32768);
    EXPECT_THROW(NarrowToInt16(32768), OverflowError);
    EXPECT_THROW(NarrowToInt16(-32769), OverflowError);
}

// ---- Writing numbers -----------------------------------------------------------------------

TEST(FormatDouble, WritesTheGeneralFormWithFifteenDigits) {
    struct Row {
        double value;
        const char* withPoint;
        const char* withComma;
    };
    const Row rows[] = {
        {80, "80", "80"},
        {120.5, "120.5", "120,5"},
        {2.5, "2.5", "2,5"},
        {0.1, "0.1", "0,1"},
        {-0.0, "0", "0"},
        {1.0 / 3.0, "0.333333333333333", "0,333333333333333"},
        {123456789012345.0, "123456789012345", "123456789012345"},
        {1e15, "1E+15", "1E+15"},
        {1e20, "1E+20", "1E+20"},
        {0.0001, "0.0001", "0,0001"},
        {0.00001, "1E-05", "1E-05"},
        {-1.25e-7, "-1.25E-07", "-1,25E-07"},
        {0.1 + 0.2, "0.3", "0,3"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(FormatDouble(row.value), row.withPoint) << row.value;
    }
    ScopedLocale comma;
    ZERBIN_REQUIRE_COMMA_LOCALE(comma);
    for (const Row& row : rows) {
        EXPECT_EQ(FormatDouble(row.value), row.withComma) << row.value;
    }
}

TEST(FormatSingle, KeepsSevenSignificantDigits) {
    struct Row {
        float value;
        const char* expected;
    };
    const Row rows[] = {
        {12345678.0F, "12345680"},
        {0.1F, "0.1"},
        {1.0F / 3.0F, "0.3333333"},
        {80.0F, "80"},
        {-2.5F, "-2.5"},
        {3.4028235e38F, "3.402823E+38"},
        {1e-6F, "1E-06"},
        {16777216.0F, "16777220"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(FormatSingle(row.value), row.expected) << row.value;
    }
    ScopedLocale comma;
    ZERBIN_REQUIRE_COMMA_LOCALE(comma);
    EXPECT_EQ(FormatSingle(0.1F), "0,1");
}

TEST(FormatDouble, RoundTripsThroughLeadingNumberAndLocaleNumber) {
    for (double value : {0.5, 120.5, -3.75, 1e20, 1e-5, 65535.0}) {
        EXPECT_DOUBLE_EQ(LeadingNumber(FormatDouble(value)), value);
        EXPECT_FLOAT_EQ(LocaleNumber(FormatDouble(value)), static_cast<float>(value));
    }
}

// ---- Text ----------------------------------------------------------------------------------

TEST(TextHelpers, FoldAsciiOnlyTrimBlanksAndCountCodePoints) {
    EXPECT_EQ(UpperCase("snvt_105 \xC3\xA4z"), "SNVT_105 \xC3\xA4Z");  // "ä" left alone
    EXPECT_TRUE(EqualsNoCase("Units", "UNITS"));
    EXPECT_FALSE(EqualsNoCase("Unit", "UNITS"));
    EXPECT_FALSE(EqualsNoCase("\xC3\xA4", "\xC3\x84"));
    EXPECT_EQ(Trim("  a b  "), "a b");
    EXPECT_EQ(Trim("\ta\t"), "\ta\t");
    EXPECT_EQ(Trim("   "), "");
    EXPECT_EQ(CharCount("abc"), 3);
    EXPECT_EQ(CharCount("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"), 3);  // ä € and an emoji
    EXPECT_EQ(BoolDigit(true), "1");
    EXPECT_EQ(BoolDigit(false), "0");
}

// ---- Skip mode -----------------------------------------------------------------------------

TEST(SkipStep, DropsAFailingStepAndRunsTheNext) {
    int written = 0;
    EXPECT_FALSE(SkipStep([&] {
        throw Error("step fails");
        written = 1;
    }));
    EXPECT_FALSE(SkipStep([&] { throw std::bad_alloc(); }));
    EXPECT_TRUE(SkipStep([&] { written = 2; }));
    EXPECT_EQ(written, 2);
}

TEST(Need, ThrowsObjectNotSetForMissingObjects) {
    std::shared_ptr<int> none;
    try {
        Need(none);
        FAIL() << "no throw";
    } catch (const Error& e) {
        EXPECT_EQ(e.Number(), kErrObjectNotSet);
    }
    EXPECT_THROW(Need(pugi::xml_node()), Error);
    auto value = std::make_shared<int>(4);
    EXPECT_EQ(&Need(value), value.get());
}

}  // namespace
}  // namespace zerbin
