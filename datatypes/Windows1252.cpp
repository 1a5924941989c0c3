#include "datatypes/Windows1252.h"

#include <array>

namespace zerbin {
namespace {

constexpr uint32_t kMalformed = 0xFFFFFFFFu;
constexpr uint8_t kQuestionMark = 0x3F;

// Code points of bytes 0x80 to 0x9F. The five positions the code page leaves undefined map
// to the C1 control of the same number, as Windows' own conversion does, so they round-trip.
constexpr std::array<uint16_t, 32> kHighBlock = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// Decodes the character at text[i] and moves i past it. A malformed sequence (bad lead,
// overlong form, surrogate, beyond U+10FFFF, cut short) is consumed as its longest valid
// prefix and gives kMalformed, the way browsers' decoders count replacement characters.
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
        return kMalformed;
    }
    for (int k = 0; k < need; ++k) {
        if (i >= text.size()) {
            return kMalformed;
        }
        const auto next = static_cast<uint8_t>(text[i]);
        if (next < lower || next > upper) {
            return kMalformed;
        }
        ++i;
        cp = (cp << 6) | (next & 0x3Fu);
        lower = 0x80;
        upper = 0xBF;
    }
    return cp;
}

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

std::size_t CharacterCount(std::string_view utf8) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < utf8.size(); ++count) {
        NextCodePoint(utf8, i);
    }
    return count;
}

std::vector<uint8_t> Windows1252Bytes(std::string_view utf8, std::size_t maxCharacters) {
    std::vector<uint8_t> bytes;
    for (std::size_t i = 0; i < utf8.size() && bytes.size() < maxCharacters;) {
        bytes.push_back(Windows1252Byte(NextCodePoint(utf8, i)));
    }
    return bytes;
}

}  // namespace zerbin
