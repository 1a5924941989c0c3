#include "editors/TextRules.h"

#include <algorithm>
#include <array>

#include "base/MMain.h"
#include "editors/NumberRules.h"

namespace zerbin {

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

bool InWindows1252(char32_t c) {
    // The characters that the code page puts between 0x80 and 0x9F.
    static constexpr std::array<char32_t, 27> kHigh = {
        0x20AC, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030,
        0x0160, 0x2039, 0x0152, 0x017D, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x017E, 0x0178};
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
        return true;
    }
    return std::find(kHigh.begin(), kHigh.end(), c) != kHigh.end();
}

}  // namespace zerbin
