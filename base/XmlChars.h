// Characters as the XML port reads and writes them; private to base/.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zerbin::xml::detail {

// Decodes one UTF-8 sequence at text[i] with NextCodePoint of Utf8.h and steps past it;
// nullopt when malformed, overlong or a surrogate, with i unchanged.
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

// A document's UTF-8 text checked for what pugixml lets through but XML 1.0 does not, before
// pugixml parses it: the first fault, if any, and whether the tree below the top then holds
// nothing to refuse (every start tag's name a plain ASCII XML name, no attribute, no
// processing instruction but at the very start), so that the tree need not be walked again.
struct TextCheck {
    std::optional<TextFault> fault;
    bool treeIsPlain = false;
};
TextCheck CheckDocumentText(std::string_view text);

}  // namespace zerbin::xml::detail
