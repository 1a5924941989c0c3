#include "base/Utf8.h"

#include <algorithm>
#include <array>
#include <limits>

#include "base/MMain.h"

namespace zerbin {
namespace {

constexpr uint8_t kQuestionMark = 0x3F;

// Code points of bytes 0x80 to 0x9F; the holes hold the C1 control of their own number.
constexpr std::array<uint16_t, 32> kHighBlock = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

uint8_t Windows1252Byte(uint32_t cp) {
    if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) {
        return static_cast<uint8_t>(cp);
    }
    for (std::size_t b = 0; b < kHighBlock.size(); ++b) {
        if (kHighBlock[b] == cp) {
            return static_cast<uint8_t>(0x80 + b);
        }
    }
    return kQuestionMark;
}

}  // namespace

uint32_t NextCodePoint(std::string_view text, std::size_t& i) {
    const auto lead = static_cast<uint8_t>(text[i++]);
    if (lead < 0x80) {
        return lead;
    }
    int need = 0;
    uint32_t cp = 0;
    uint8_t lower = 0x80;
    uint8_t upper = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        need = 1, cp = lead & 0x1Fu;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        need = 2, cp = lead & 0x0Fu;
        lower = lead == 0xE0 ? 0xA0 : 0x80;
        upper = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        need = 3, cp = lead & 0x07u;
        lower = lead == 0xF0 ? 0x90 : 0x80;
        upper = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return kMalformedUtf8;
    }
    for (int k = 0; k < need; ++k) {
        if (i >= text.size()) {
            return kMalformedUtf8;
        }
        const auto next = static_cast<uint8_t>(text[i]);
        if (next < lower || next > upper) {
            return kMalformedUtf8;
        }
        ++i;
        cp = (cp << 6) | (next & 0x3Fu);
        lower = 0x80;
        upper = 0xBF;
    }
    return cp;
}

void AppendUtf8(std::string& out, uint32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

std::size_t CharacterCount(std::string_view utf8) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < utf8.size(); ++count) {
        NextCodePoint(utf8, i);
    }
    return count;
}

int32_t CharCount(const std::string& utf8) {
    const std::size_t count = CharacterCount(utf8);
    return static_cast<int32_t>(std::min<std::size_t>(count, std::numeric_limits<int32_t>::max()));
}

uint32_t Windows1252CodePoint(uint8_t byte) {
    return byte >= 0x80 && byte <= 0x9F ? kHighBlock[byte - 0x80] : byte;
}

std::vector<uint8_t> Windows1252Bytes(std::string_view utf8, std::size_t maxCharacters) {
    std::vector<uint8_t> bytes;
    for (std::size_t i = 0; i < utf8.size() && bytes.size() < maxCharacters;) {
        bytes.push_back(Windows1252Byte(NextCodePoint(utf8, i)));
    }
    return bytes;
}

}  // namespace zerbin
