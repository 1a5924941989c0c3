#include "datatypes/SNVTDataConversion.h"

#include <cmath>
#include <ostream>
#include <random>
#include <tuple>

#include "interfaces/Error.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

struct EncodeRow {
    const char* typeClass;
    int32_t length;
    int16_t a, b, c;
    const char* value;
    const char* bigEndian;
    const char* intel;
};

std::ostream& operator<<(std::ostream& out, const EncodeRow& row) {
    return out << row.typeClass << " " << row.length << " (" << row.a << "," << row.b << ","
               << row.c << ") \"" << row.value << "\"";
}

// The worked examples of the encoding: both byte orders, and the same digits whichever
// decimal separator is in force, since values are normalised first.
constexpr EncodeRow kWorkedExamples[] = {
    {"SignedNumeric", 2, 1, -2, 0, "20.5", "0802", "0208"},
    {"SignedNumeric", 2, 1, -2, 0, "20,5", "0802", "0208"},
    {"SignedNumeric", 2, 1, -2, 0, "-0.01", "FFFF", "FFFF"},
    {"SignedNumeric", 2, 1, -2, 0, "-327.68", "8000", "0080"},
    {"SignedNumeric", 2, 1, -2, 0, "327.68", "", ""},
    {"SignedNumeric", 1, 1, 0, 0, "-5", "FB", "FB"},
    {"SignedNumeric", 1, 1, 0, 0, "200", "C8", "C8"},
    {"SignedNumeric", 2, 0, 0, 0, "5", "0000", "0000"},
    {"SignedNumeric", 4, 1, 0, 0, "1", "3F800000", "0000803F"},
    {"SignedNumeric", 4, 1, 0, 0, "-2", "C0000000", "000000C0"},
    {"SignedNumeric", 3, 1, 0, 0, "1", "", ""},
    {"UnsignedNumeric", 2, 5, -3, 0, "100", "4E20", "204E"},
    {"UnsignedNumeric", 2, 1, -1, -2740, "20", "0B7C", "7C0B"},
    {"UnsignedNumeric", 2, 1, 0, 0, "2.5", "0002", "0200"},
    {"UnsignedNumeric", 2, 1, 0, 0, "3.5", "0004", "0400"},
    {"UnsignedNumeric", 2, 1, 0, 0, "70000", "", ""},
    {"UnsignedNumeric", 2, 1, 0, 0, "65535", "FFFF", "FFFF"},
    {"UnsignedNumeric", 2, 1, 0, 0, "65536", "", ""},  // the first that needs a third byte
    {"UnsignedNumeric", 2, 1, 0, 0, "-1", "", ""},
    {"UnsignedNumeric", 1, 1, 0, 0, "300", "FF", "FF"},
    {"UnsignedNumeric", 1, 1, 0, 0, "-1", "FF", "FF"},
    {"UnsignedNumeric", 4, 1, 0, 0, "12345678", "4B3C6150", "50613C4B"},
    {"UnsignedNumeric", 4, 1, 0, 0, "16777217", "4B800002", "0200804B"},
    {"Bitfield", 1, 0, 0, 0, "5", "05", "05"},
    {"Bitfield", 2, 0, 0, 0, "258", "0102", "0201"},
    {"Enum", 1, 0, 0, 0, "3", "03", "03"},
    {"Enum", 1, 0, 0, 0, "300", "FF", "FF"},
    {"Float", 4, 0, 0, 0, "1.5", "3FC00000", "0000C03F"},
    {"Float", 4, 0, 0, 0, "-0.1", "BDCCCCCD", "CDCCCCBD"},
    {"Float", 2, 0, 0, 0, "0", "0000", "0000"},
    {"Float", 2, 0, 0, 0, "1", "1400", "0014"},
    {"Float", 2, 0, 0, 0, "-1", "1C00", "001C"},
    {"Float", 2, 0, 0, 0, "21.5", "5560", "6055"},
    {"Float", 2, 0, 0, 0, "100", "7640", "4076"},
    {"Float", 2, 0, 0, 0, "0.0005", "0001", "0100"},
    {"Float", 2, 0, 0, 0, "32752", "F7FF", "FFF7"},
    {"Float", 3, 0, 0, 0, "1", "", ""},
    {"Textual", 5, 0, 0, 0, "AB", "4142202020", "4142202020"},
    {"Textual", 3, 0, 0, 0, "ABCDE", "414243", "414243"},
    {"Struct", 4, 0, 0, 0, "1", "", ""},
};

// Further cases that hold under both separators.
constexpr EncodeRow kEdgeCases[] = {
    {"Float", 2, 0, 0, 0, "32768", "10400", "0010"},
    {"Float", 2, 0, 0, 0, "0.99990", "0800", "0008"},  // m rounds up to 2048: the carry
    {"Float", 2, 0, 0, 0, "1e20", "4356C", "6C43"},
    {"Enum", 2, 0, 0, 0, "4", "04", "04"},
    {"Bitfield", 2, 1, -2, 7, "258", "0102", "0201"},  // coefficients play no part
    {"SignedNumeric", 2, 1, 0, 274, "0", "FEEE", "EEFE"},
    {"SignedNumeric", 4, 1, -38, 0, "1e10", "", ""},  // beyond a single after scaling
    {"Textual", 0, 0, 0, 0, "AB", "", ""},
    {"Textual", 3, 0, 0, 0, "\xC3\xA9t\xC3\xA9", "E974E9", "E974E9"},  // one byte a character
    // € and Ÿ have codes in 0x80-0x9F; Ā, 日 and an emoji have none; U+0081 keeps its byte.
    {"Textual", 7, 0, 0, 0,
     "\xE2\x82\xAC\xC5\xB8\xC4\x80\xE6\x97\xA5\xF0\x9F\x98\x80\xC2\x81\xC2\x80", "809F3F3F3F813F",
     "809F3F3F3F813F"},
    // A stray byte and a cut-short sequence are one "?" each.
    {"Textual", 4, 0, 0, 0,
     "\xFF"
     "a\xE2\x82"
     "b",
     "3F613F62", "3F613F62"},
    {"SignedNumeric", 300, 1, 0, 0, "1", "", ""},
    {"", 1, 1, 0, 0, "1", "", ""},
    {"signednumeric", 1, 1, 0, 0, "1", "", ""},
};

// Switches to the comma separator when asked; the tests skip when it is not installed.
#define ZERBIN_SEPARATOR(comma, locale)  \
    ZERBIN_SEPARATOR_FOR(comma, locale); \
    ASSERT_EQ(DecimalSeparator(), (comma) ? "," : ".")

class EncodeTest : public ::testing::TestWithParam<std::tuple<EncodeRow, bool>> {};

TEST_P(EncodeTest, GivesTheDigitsInBothByteOrders) {
    const auto& [row, comma] = GetParam();
    ZERBIN_SEPARATOR(comma, locale);
    std::string value = row.value;
    EXPECT_EQ(EncodeStream(value, ParseTypeClass(row.typeClass), row.length, row.a, row.b, row.c),
              row.bigEndian);
    value = row.value;
    EXPECT_EQ(
        EncodeIntelStream(value, ParseTypeClass(row.typeClass), row.length, row.a, row.b, row.c),
        row.intel);
}

INSTANTIATE_TEST_SUITE_P(WorkedExamples, EncodeTest,
                         ::testing::Combine(::testing::ValuesIn(kWorkedExamples),
                                            ::testing::Bool()));
INSTANTIATE_TEST_SUITE_P(EdgeCases, EncodeTest,
                         ::testing::Combine(::testing::ValuesIn(kEdgeCases), ::testing::Bool()));

// Cases whose digits depend on the separator: "." reads a leading number and never fails,
// "," reads the whole text by the locale and fails on anything else.
struct SeparatorRow {
    const char* typeClass;
    int32_t length;
    const char* value;
    const char* withPoint;
    const char* withComma;
};

TEST(Encode, ReadingANumberDependsOnTheSeparator) {
    const SeparatorRow rows[] = {
        {"SignedNumeric", 2, "abc", "0000", ""},
        {"SignedNumeric", 2, "12abc", "04B0", ""},
        {"SignedNumeric", 2, "1e400", "", ""},
        {"Float", 4, "abc", "00000000", "00000000"},
        {"Float", 4, "1e400", "7F800000", "00000000"},
        {"Float", 2, "1e400", "", "0000"},
        {"Enum", 1, "1e400", "00", "00"},
        {"Enum", 1, "2,7", "03", "03"},
        {"Bitfield", 1, "7 apples", "07", "00"},
    };
    for (const bool comma : {false, true}) {
        ZERBIN_SEPARATOR(comma, locale);
        for (const SeparatorRow& row : rows) {
            std::string value = row.value;
            EXPECT_EQ(EncodeStream(value, ParseTypeClass(row.typeClass), row.length, 1, -2, 0),
                      comma ? row.withComma : row.withPoint)
                << row.typeClass << " \"" << row.value << "\" comma " << comma;
        }
    }
}

TEST(Encode, ReplacesTheValueByTheTextItEncoded) {
    const struct {
        const char* typeClass;
        int32_t length;
        int16_t a, b;
        const char* value;
        const char* withPoint;
        const char* withComma;
    } rows[] = {
        {"SignedNumeric", 2, 1, -2, "20.5", "2050", "2050"},
        {"UnsignedNumeric", 4, 1, 0, "12345678", "12345680", "12345680"},
        {"UnsignedNumeric", 2, 1, 1, "5", "0.5", "0,5"},
        {"Float", 4, 1, 0, "1,5", "1.5", "1,5"},
        {"Textual", 5, 1, 0, "AB", "AB   ", "AB   "},
        {"Textual", 300, 1, 0, "x", "x", "x"},
    };
    for (const bool comma : {false, true}) {
        ZERBIN_SEPARATOR(comma, locale);
        for (const auto& row : rows) {
            std::string value = row.value;
            EncodeIntelStream(value, ParseTypeClass(row.typeClass), row.length, row.a, row.b, 0);
            if (row.length <= 255) {
                EXPECT_EQ(value, comma ? row.withComma : row.withPoint) << row.value;
            }
        }
    }
    // A text is padded to its length even where the length fails the encoding, up to the
    // longest text a value may hold; beyond that it is left as it was.
    for (const int32_t length : {300, 65536, 65537}) {
        std::string value = "x";
        EXPECT_EQ(EncodeStream(value, TypeClass::Textual, length, 1, 0, 0), "");
        EXPECT_EQ(value.size(), length <= 65536 ? static_cast<std::size_t>(length) : 1U) << length;
    }
}

// The image's digits are made without the text of the scaled number; they must equal what the
// encoder that writes and reads back that text gives, for random whole-number shapes, for
// values at and near zero from either side, and with either separator.
TEST(EncodeDigits, GivesTheDigitsOfTheEncoderThatWritesTheText) {
    const char* const kNearZero[] = {"-0",      "0",      "-1e-50", "1e-50",      "-1.4e-45",
                                     "1.4e-45", "-1e-40", "3e-39",  "-0.0000001", "1.17549435E-38"};
    for (const bool comma : {false, true}) {
        ZERBIN_SEPARATOR(comma, locale);
        std::mt19937 random(20261125u);
        std::uniform_real_distribution<double> magnitude(-8.0, 8.0);
        std::uniform_int_distribution<int> coefficient(-4, 4);
        for (int n = 0; n < 20000; ++n) {
            const double number = (n % 2 == 0 ? 1 : -1) * std::pow(10.0, magnitude(random));
            std::string value = n % 7 == 0 ? std::to_string(n / 7) : FormatDouble(number);
            if (n % 11 == 0) {
                value = kNearZero[(n / 11) % std::size(kNearZero)];
            }
            const TypeClass typeClass =
                n % 2 == 0 ? TypeClass::SignedNumeric : TypeClass::UnsignedNumeric;
            const int32_t length = 1 << ((n / 2) % 3);
            const auto a = static_cast<int16_t>(coefficient(random) == 0 ? 1 : coefficient(random));
            const auto b = static_cast<int16_t>(n % 11 == 0 ? 0 : coefficient(random));
            const auto c =
                static_cast<int16_t>(n % 5 == 0 && n % 11 != 0 ? coefficient(random) : 0);
            std::string big = value;
            std::string intel = value;
            ASSERT_EQ(EncodeDigits(value, typeClass, length, a, b, c, false) + " " +
                          EncodeDigits(value, typeClass, length, a, b, c, true),
                      EncodeStream(big, typeClass, length, a, b, c) + " " +
                          EncodeIntelStream(intel, typeClass, length, a, b, c))
                << value << " length " << length << " a " << a << " b " << b << " c " << c
                << " comma " << comma;
        }
    }
}

TEST(FormatDisplayValue, FindsTheLabelOfAValueOrFailsOnABadEntry) {
    const struct {
        const char* key;
        const char* desc;
        const char* label;
    } rows[] = {
        {"1", "0,OFF;1,ON;", "ON"},    {"2", "0,OFF;1,ON;", ""},  {"1.0", "1,ON;", ""},
        {"1", "10,TEN;1,ONE;", "ONE"}, {"1", "0,OFF;1,ON", "ON"}, {"1", "0,OFF;junk;1,ON;", "ON"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FormatDisplayValue(row.key, row.desc), row.label)
            << row.key << " in " << row.desc;
    }
    // An entry without a comma fails once the search reaches it.
    EXPECT_THROW(FormatDisplayValue("1", "0,OFF;junk"), Error);
    EXPECT_THROW(FormatDisplayValue("1", "junk;"), Error);
    EXPECT_EQ(FormatDisplayValue("0", "0,OFF;junk"), "OFF") << "found before the bad entry";
}

TEST(OverwriteDigits, ReplacesInPlaceNeverGrowsAndThrowsPastTheEnd) {
    const struct {
        const char* image;
        int32_t position;
        const char* digits;
        int32_t maxDigits;
        const char* result;
    } rows[] = {
        {"000000", 2, "ABCD", 2, "00AB00"},
        {"000000", 5, "ABCD", 4, "00000A"},
        {"000000", 2, "ABCD", -2, "000000"},
    };
    for (const auto& row : rows) {
        std::string image = row.image;
        OverwriteDigits(image, row.position, row.digits, row.maxDigits);
        EXPECT_EQ(image, row.result) << row.position << " " << row.digits;
    }
    // A place at or past the end throws and leaves the image.
    std::string image = "0000";
    EXPECT_THROW(OverwriteDigits(image, 4, "AB", 2), Error);
    EXPECT_THROW(OverwriteDigits(image, -1, "AB", 2), Error);
    EXPECT_EQ(image, "0000");
}

}  // namespace
}  // namespace zerbin
