#include "base/MMain.h"

#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>

#include "base/ProcessState.h"
#include "base/SkipMode.h"
#include "interfaces/Error.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

using zerbin::testing::ScopedLocale;

TEST(NthToken, PicksTokensByTheirSeparatorCount) {
    const struct {
        const char* text;
        int32_t index;
        const char* separator;
        const char* expected;
    } rows[] = {
        {"a;b;c", 2, ";", "c"},      {"a;b;c", 3, ";", ""},
        {"abc", 0, ";", ""},  // no separator: not the whole text
        {"a;b", -1, ";", ""},        {"a;;c", 2, ";", "c"},
        {"0,OFF;1,ON;", 2, ";", ""},  // the trailing separator ends the list
        {"0,OFF", 1, ",", "OFF"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(NthToken(row.text, row.index, row.separator), row.expected)
            << '"' << row.text << "\" index " << row.index;
    }
}

// The byte form clamps only from above and formats the low byte; the word form clamps at
// 65535. Both write the clamped value back into the caller's variable.
TEST(HexDigits, FormatTheLowBytesAndClampTheCallersVariable) {
    const struct {
        bool word;
        int32_t value;
        const char* expected;
        int32_t afterwards;
    } rows[] = {
        {false, 10, "0A", 10},
        {false, 256, "FF", 255},
        {false, -1, "FF", -1},
        {false, -44, "D4", -44},
        {false, std::numeric_limits<int32_t>::min(), "00", std::numeric_limits<int32_t>::min()},
        {true, 65535, "FFFF", 65535},
        {true, 65536, "FFFF", 65535},
        {true, 258, "0102", 258},
    };
    for (const auto& row : rows) {
        int32_t value = row.value;
        EXPECT_EQ(row.word ? HexWord(value) : HexByte(value), row.expected) << row.value;
        EXPECT_EQ(value, row.afterwards) << row.value;
        if (!row.word) {
            EXPECT_EQ(HexByteOf(row.value), row.expected) << row.value;
        }
    }
}

TEST(NvReferenceCode, CombinesIndexAndExportIndexUnderSelectorTwoWithinInt32) {
    EXPECT_EQ(NvReferenceCode(3, 2), 2 * 256 + 16384 + 3);
    EXPECT_EQ(HexWordOf(NvReferenceCode(3, 2)), "4203");
    EXPECT_EQ(NvReferenceCode(256, 0), 0x4100);  // an export index past 255 carries over
    EXPECT_EQ(NvReferenceCode(0, -64), 0);
    // Each step is checked against the 32-bit range, not only the result.
    EXPECT_THROW(NvReferenceCode(0, 8388608), OverflowError);       // the product
    EXPECT_THROW(NvReferenceCode(-20000, 8388607), OverflowError);  // late recovery is no help
    EXPECT_EQ(NvReferenceCode(255, 8388543), std::numeric_limits<int32_t>::max());
}

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
    EXPECT_EQ(LeadingNumber("1e400"), std::numeric_limits<double>::infinity());
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

struct Counter {
    int value = 7;
};

TEST(ProcessStateTest, APartLivesUntilResetAndThenStartsAgain) {
    ProcessState::Get<Counter>().value = 1;
    EXPECT_EQ(ProcessState::Get<Counter>().value, 1);

    SetSnvtDictionary(std::make_shared<pugi::xml_document>());
    ProcessState::Reset();
    EXPECT_EQ(ProcessState::Get<Counter>().value, 7);
    EXPECT_EQ(DecimalSeparator(), ".");
    EXPECT_EQ(SnvtDictionary(), nullptr);
}

// A failing step is dropped; running out of memory and a file that cannot be read are not
// failing steps but failures the user must hear of.
TEST(SkipStep, DropsFailuresButNotOutOfMemoryOrUnreadableFiles) {
    EXPECT_TRUE(SkipStep([] {}));
    EXPECT_FALSE(SkipStep([] { throw Error("step failed"); }));
    EXPECT_FALSE(SkipStep([] { throw std::runtime_error("anything else"); }));
    EXPECT_THROW(SkipStep([] { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_THROW(SkipStep([] { throw IoError("T.xml", "input/output error", 5); }), IoError);
}

}  // namespace
}  // namespace zerbin
