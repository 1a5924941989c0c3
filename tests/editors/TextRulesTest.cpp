// The text editor's rules without a window: the key filter, the length rule and the message
// of a character that does not fit.
#include "editors/TextRules.h"

#include <gtest/gtest.h>

#include "editors/NumberRules.h"

namespace zerbin {
namespace {

TEST(TextRules, ABlankIsTypedAsAnUnderscoreAndControlKeysAct) {
    const struct {
        char32_t key;
        TextKeyAction action;
        char32_t character;
    } rows[] = {
        {U'a', TextKeyAction::Pass, U'a'},
        {U' ', TextKeyAction::Pass, U'_'},
        {U'\u20AC', TextKeyAction::Pass, U'\u20AC'},
        {kKeyEscape, TextKeyAction::Restore, kKeyEscape},
        {kKeyEnter, TextKeyAction::Confirm, kKeyEnter},
        {kKeyBackspace, TextKeyAction::BackspaceLast, kKeyBackspace},
    };
    for (const auto& row : rows) {
        const TextKeyDecision decision = FilterTextKey(row.key);
        EXPECT_EQ(decision.action, row.action) << static_cast<uint32_t>(row.key);
        EXPECT_EQ(decision.character, row.character) << static_cast<uint32_t>(row.key);
    }
}

TEST(TextRules, ATextLongerThanItsTypeIsCutToWholeCharacters) {
    const struct {
        const char* text;
        int32_t limit;
        const char* cut;  // nullptr: not too long
    } rows[] = {
        {"abcd", 4, nullptr},
        {"abcde", 4, "abcd"},
        {"", 0, nullptr},
        {"x", 0, ""},
        {"x", -5, ""},                         // a negative limit counts as 0
        {"\xE2\x82\xAC\xC3\xA9", 2, nullptr},  // characters, not bytes
        {"\xE2\x82\xAC\xC3\xA9x", 2, "\xE2\x82\xAC\xC3\xA9"},
        {"a\xE2\x82\xAC", 1, "a"},
    };
    for (const auto& row : rows) {
        const TextLengthVerdict verdict = CheckTextLength(row.text, row.limit);
        EXPECT_EQ(verdict.tooLong, row.cut != nullptr) << row.text;
        if (row.cut != nullptr) {
            EXPECT_EQ(verdict.cut, row.cut) << row.text;
            EXPECT_EQ(verdict.message,
                      "The text cannot exceed " + std::to_string(row.limit) + " characters");
        }
    }
}

TEST(TextRules, AControlCharacterAndOneOutsideTheCodePageAreToldApart) {
    const std::string line =
        "The value is one line of text: it cannot hold tabs, line ends or other control "
        "characters.";
    for (const char32_t c : {U'\t', U'\n', U'\x1F', U'\x7F', U'\x80', U'\x9F'}) {
        EXPECT_EQ(UnfitCharacterMessage(c), line) << static_cast<uint32_t>(c);
    }
    EXPECT_EQ(UnfitCharacterMessage(U'\u0142'),
              "The character \"\xC5\x82\" is not in the value's 8-bit code page (Windows-1252) and "
              "cannot be stored.");
    EXPECT_NE(UnfitCharacterMessage(U'\xA0'), line);
    EXPECT_NE(UnfitCharacterMessage(U'~'), line);
}

}  // namespace
}  // namespace zerbin
