// The 8-bit code page of Textual values: UTF-8 text to Windows-1252 bytes. Private to the
// data types. A character the code page lacks, and each malformed UTF-8 sequence, is one "?".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace zerbin {

// Characters of a UTF-8 text: code points, a malformed sequence counting as one.
std::size_t CharacterCount(std::string_view utf8);

// The Windows-1252 bytes of the first maxCharacters characters of a UTF-8 text.
std::vector<uint8_t> Windows1252Bytes(std::string_view utf8, std::size_t maxCharacters);

}  // namespace zerbin
