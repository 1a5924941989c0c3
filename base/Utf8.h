// UTF-8, the component's text form, and Windows-1252, its one 8-bit code page: the one
// decoder, the one encoder and the one code-page table that every reader and writer uses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zerbin {

// What NextCodePoint gives for a malformed sequence.
inline constexpr uint32_t kMalformedUtf8 = 0xFFFFFFFFu;

// Decodes the character at text[i] and moves i past it. A malformed sequence (bad lead,
// overlong form, surrogate, beyond U+10FFFF, cut short) is consumed as its longest valid
// prefix and gives kMalformedUtf8, the way browsers' decoders count replacement characters.
uint32_t NextCodePoint(std::string_view text, std::size_t& i);
// Appends the UTF-8 form of a code point up to U+10FFFF.
void AppendUtf8(std::string& out, uint32_t cp);

// Characters of a UTF-8 text: code points, each malformed sequence counting as one.
std::size_t CharacterCount(std::string_view utf8);

// The code point of a Windows-1252 byte. The five bytes the code page leaves undefined map to
// the C1 control of the same number, as Windows' own conversion does, so that they round-trip.
uint32_t Windows1252CodePoint(uint8_t byte);
// The Windows-1252 bytes of the first maxCharacters characters of a UTF-8 text. A character
// the code page lacks, and each malformed sequence, becomes one "?".
std::vector<uint8_t> Windows1252Bytes(std::string_view utf8, std::size_t maxCharacters);

}  // namespace zerbin
