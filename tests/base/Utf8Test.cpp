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
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CharCount(row.text), row.count) << row.text;
        EXPECT_EQ(CharacterCount(row.text), static_cast<std::size_t>(row.count)) << row.text;
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
