#include "editors/TextRules.h"

#include <algorithm>

#include "base/MMain.h"
#include "base/Utf8.h"
#include "editors/NumberRules.h"

namespace zerbin {
namespace {

// C0 and C1 control characters and DEL: the code page's table passes its undefined bytes
// through as C1 controls, which no one-line value should hold either.
bool IsControl(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c <= 0x9F);
}

}  // namespace

TextKeyDecision FilterTextKey(char32_t key) {
    switch (key) {
        case kKeyEscape:
            return {TextKeyAction::Restore, key};
        case kKeyEnter:
            return {TextKeyAction::Confirm, key};
        case kKeyBackspace:
            return {TextKeyAction::BackspaceLast, key};
        case U' ':
            return {TextKeyAction::Pass, U'_'};
        default:
            return {TextKeyAction::Pass, key};
    }
}

TextLengthVerdict CheckTextLength(const std::string& text, int32_t limit) {
    const int32_t bounded = std::max<int32_t>(limit, 0);
    if (CharCount(text) <= bounded) {
        return {};
    }
    std::size_t end = 0;
    for (int32_t kept = 0; end < text.size(); ++end) {
        if ((static_cast<unsigned char>(text[end]) & 0xC0) != 0x80 && kept++ == bounded) {
            break;
        }
    }
    return {true, "The text cannot exceed " + std::to_string(limit) + " characters",
            text.substr(0, end)};
}

std::string UnfitCharacterMessage(char32_t c) {
    if (IsControl(c)) {
        return "The value is one line of text: it cannot hold tabs, line ends or other control "
               "characters.";
    }
    std::string character;
    AppendUtf8(character, c);
    return "The character \"" + character +
           "\" is not in the value's 8-bit code page (Windows-1252) and cannot be stored.";
}

}  // namespace zerbin
