// Characters as the XML port reads and writes them; private to base/.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zerbin::xml::detail {

// Decodes one UTF-8 sequence at text[i] and steps past it; nullopt when malformed, overlong
// or a surrogate, with i unchanged.
std::optional<uint32_t> DecodeUtf8(std::string_view text, std::size_t& i);

// The Char production of XML 1.0: what a document may hold, raw or as a reference.
bool IsXmlChar(uint32_t c);

// "U+0001" for messages.
std::string CodePointName(uint32_t c);

// Why text can't stand in an XML 1.0 document (not UTF-8, or a character XML 1.0 does not
// allow), with the byte offset of the first offender; nullopt when it can.
struct TextFault {
    std::string reason;
    std::size_t offset;
};
std::optional<TextFault> FindTextFault(std::string_view text);

}  // namespace zerbin::xml::detail
