// The steps of a strict read that the whole-document reader and the element stream share;
// private to base/.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <pugixml.hpp>

#include "base/CheckedFile.h"
#include "base/Xml.h"
#include "base/XmlElementStream.h"
#include "interfaces/Error.h"

namespace zerbin::xml::detail {

// Comments and processing instructions stay in the tree, as in the DOM the definition files
// were written for: the member walks skip comments themselves and count what is left.
inline constexpr unsigned kParseOptions = pugi::parse_default | pugi::parse_comments |
                                          pugi::parse_pi | pugi::parse_declaration |
                                          pugi::parse_doctype;

// The file whole, in memory pugixml can own. Throws IoError as ReadRegularFile does.
FileBytes ReadDocumentFile(const std::filesystem::path& file, std::uintmax_t maxBytes);
// The same, nullopt when the file cannot be read, with *error filled when given.
std::optional<FileBytes> ReadDocumentFileOrTell(const std::filesystem::path& file,
                                                std::uintmax_t maxBytes, ParseError* error);
// A copy of text in memory pugixml can own, with a NUL after it.
FileBytes CopyOf(std::string_view text);

// The document's text in UTF-8: a byte order mark dropped, a declared encoding decoded.
// nullopt when it cannot be decoded, with *error filled when given.
std::optional<FileBytes> DocumentText(FileBytes raw, ParseError* error);

// Checks and parses the text DocumentText gave, in place. original gives the file's bytes
// again, for the line a message shows when the failure is found after the parse began.
std::shared_ptr<pugi::xml_document> ParseDocumentText(FileBytes text, ParseError* error,
                                                      const std::function<FileBytes()>& original);

// The elements under the document element, in order, when the text alone proves the document
// well-formed and within what the strict reader accepts, so that each element parses alone
// to the nodes the whole parse gives. nullopt when it cannot prove that, whether or not the
// document is good: the whole-document reader is then the judge. The byte after the text
// must be a NUL, as in the buffers DocumentText gives.
std::optional<std::vector<ElementSpan>> ScanChildElements(std::string_view text);

}  // namespace zerbin::xml::detail
