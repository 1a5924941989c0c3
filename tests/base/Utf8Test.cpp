#include "base/Utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "base/MMain.h"

namespace zerbin {
namespace {

// The width rules (CharCount) and the 8-bit encoding (CharacterCount) must count alike.
TEST(Utf8Test, BothCountersCountEachMalformedSequenceAsOneCharacter) {
    const struct {
        std::string text;
        int32_t count;
    } rows[] = {
        {"", 0},
        {"abc", 3},
        {"\xC3\xA9t\xC3\xA9", 3},
        {"\xE2\x82\xAC", 1},
        {"\xC0\x80", 2},      // an overlong NUL: two bad bytes
        {"\xE2\x82", 1},      // cut short: one bad sequence
        {"\xED\xA0\x80", 3},  // a surrogate
        {"\xED\x9F\xBF", 1},  // the last code point before them
        {"\xE0\x9F\xBF", 3},  // an overlong of three bytes
        {"\xE0\xA0\x80", 1},
        {"\xF0\x8F\xBF\xBF", 4},  // an overlong of four bytes
        {"\xF0\x90\x80\x80", 1},
        {"\xF4\x8F\xBF\xBF", 1},  // the last code point
        {"\xF4\x90\x80\x80", 4},  // past it
        {"\xF5\x80\x80\x80", 4},
        {"\xC2\xC2\x80", 2},  // a lead where a continuation belongs
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CharCount(row.text), row.count) << row.text;
        EXPECT_EQ(CharacterCount(row.text), static_cast<std::size_t>(row.count)) << row.text;
    }
}

TEST(Utf8Test, EachSequenceDecodesToItsCodePointAndStepsPastItsBytes) {
    const struct {
        std::string text;
        uint32_t codePoint;
        std::size_t next;
    } rows[] = {
        {"A", 0x41, 1},
        {"\xC2\x80", 0x80, 2},
        {"\xDF\xBF", 0x7FF, 2},
        {"\xE2\x82\xAC", 0x20AC, 3},
        {"\xED\x9F\xBF", 0xD7FF, 3},
        {"\xF4\x8F\xBF\xBF", 0x10FFFF, 4},
        {"\xC3", kMalformedUtf8, 1},
        {"\xE2\x82x", kMalformedUtf8, 2},  // its valid prefix is consumed
    };
    for (const auto& row : rows) {
        std::size_t i = 0;
        EXPECT_EQ(NextCodePoint(row.text, i), row.codePoint) << row.text;
        EXPECT_EQ(i, row.next) << row.text;
    }
}

TEST(Utf8Test, TheCodePageTableReadsAndWritesAlike) {
    for (int byte = 0; byte < 256; ++byte) {
        std::string utf8;
        AppendUtf8(utf8, Windows1252CodePoint(static_cast<uint8_t>(byte)));
        EXPECT_EQ(Windows1252Bytes(utf8, 1), std::vector<uint8_t>{static_cast<uint8_t>(byte)})
            << byte;
    }
    EXPECT_EQ(Windows1252CodePoint(0x80), 0x20ACu);
    // The first code point of each UTF-8 length, written in that many bytes.
    for (const auto& [cp, bytes] :
         std::vector<std::pair<uint32_t, std::string>>{{0x7F, "\x7F"},
                                                       {0x80, "\xC2\x80"},
                                                       {0x7FF, "\xDF\xBF"},
                                                       {0x800, "\xE0\xA0\x80"},
                                                       {0xFFFF, "\xEF\xBF\xBF"},
                                                       {0x10000, "\xF0\x90\x80\x80"}}) {
        std::string utf8;
        AppendUtf8(utf8, cp);
        EXPECT_EQ(utf8, bytes) << cp;
    }
    EXPECT_EQ(Windows1252Bytes("\xE2\x84\xA6\xC0", 5), (std::vector<uint8_t>{'?', '?'}));
}

}  // namespace
}  // namespace zerbin
