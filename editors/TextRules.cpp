#include "editors/TextRules.h"

#include <algorithm>

#include "base/MMain.h"
#include "base/Utf8.h"
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
    if (c < 0x80) {
        return true;
    }
    // The encoder's own table, so that what the box allows is exactly what the bytes keep.
    for (uint32_t byte = 0x80; byte <= 0xFF; ++byte) {
        if (Windows1252CodePoint(static_cast<uint8_t>(byte)) == c) {
            return true;
        }
    }
    return false;
}

}  // namespace zerbin
