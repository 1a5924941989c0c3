// The XML port: parsing with a readable error, first-match lookup by a slash path at any
// depth, node kinds and local names, and node creation that checks names the way a DOM does.
// pugixml is the DOM; these functions add what the component expects of one beyond it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <pugixml.hpp>

namespace zerbin::xml {

// Why a document did not load.
struct ParseError {
    std::string srcText;         // the text of the offending line, without its line end
    std::string reason;          // the parser's description with "at line L, column C" when known
    int line = 0;                // 1-based; 0 when the failure has no place (a missing file)
    int column = 0;              // 1-based, in characters
    std::ptrdiff_t offset = -1;  // bytes into the UTF-8 text; -1 when the failure has no place
    bool unreadable = false;     // the file itself could not be read; reason says why
    int systemError = 0;         // then the errno value, 0 when none fits (a FIFO, a device)
};

// The largest document LoadFile reads unless told otherwise.
inline constexpr std::uintmax_t kMaxDocumentBytes = std::uintmax_t{512} << 20;

// Reads well-formed XML 1.0 only; anything else fails with the reason, line and column.
// Comments and processing instructions are kept (callers skip comments by node type);
// whitespace-only text is dropped. The text is UTF-8 unless a byte order mark or the XML
// declaration names another encoding, which glibc's iconv then decodes; an encoding it
// cannot decode fails, naming the encoding. External entities are never fetched, and a
// document that declares entities fails: no reference expands beyond XML's five. The file
// is read once, and only when it is a regular file of at most maxBytes (ReadRegularFile);
// when it cannot be read the reason is in words ("permission denied"). nullptr on failure,
// with *error filled when given. Throws std::bad_alloc when memory runs out.
std::shared_ptr<pugi::xml_document> LoadFile(const std::filesystem::path& file, ParseError* error,
                                             std::uintmax_t maxBytes = kMaxDocumentBytes);
std::shared_ptr<pugi::xml_document> LoadString(std::string_view text, ParseError* error);

// Writes the document as UTF-8 text with two blanks of indentation that any XML 1.0 parser
// reads back to the same text: a carriage return in text, and blanks, tabs and line ends at
// either end of a text, are written as character references, so that neither line-end
// handling nor whitespace dropping eats them (attribute values get the same from pugixml).
// Throws Error, writing nothing, when a name is no XML name or a text holds what XML 1.0
// cannot carry (bytes that are not UTF-8, control characters other than tab, line feed and
// carriage return).
void Save(const pugi::xml_document& document, std::ostream& out);

// The first element in document order anywhere below root (root may be a document) whose
// name and the names of its nearest ancestors are the segments of slashPath, compared
// exactly: "SNVTS/SNVT_105" finds SNVT_105 under SNVTS at any depth. The whole path lies
// below root. An empty node when nothing matches or the path has an empty segment.
pugi::xml_node FindFirst(pugi::xml_node root, std::string_view slashPath);

// The node after node in document order among the descendants of root; an empty node after
// the last. Lets a walk run without recursion: documents may nest deeper than any call stack.
// Inline: whole-document walks take it at every node.
inline pugi::xml_node NextInDocumentOrder(pugi::xml_node node, pugi::xml_node root) {
    if (pugi::xml_node child = node.first_child()) {
        return child;
    }
    while (node && node != root && !node.next_sibling()) {
        node = node.parent();
    }
    if (!node || node == root) {
        return {};
    }
    return node.next_sibling();
}

// Node kinds by the numbers of the DOM: element 1, text 3, CDATA 4, processing instruction
// (and the XML declaration) 7, comment 8, document 9, document type 10; 0 for an empty node.
inline constexpr int kNodeElement = 1;
inline constexpr int kNodeText = 3;
inline constexpr int kNodeCData = 4;
inline constexpr int kNodeProcessingInstruction = 7;
inline constexpr int kNodeComment = 8;
inline constexpr int kNodeDocument = 9;
inline constexpr int kNodeDocumentType = 10;
int NodeType(pugi::xml_node node);
bool IsComment(pugi::xml_node node);

// The local name: the part after a namespace prefix. Empty for text and similar nodes.
std::string BaseName(pugi::xml_node node);
std::string BaseName(pugi::xml_attribute attribute);
// The same, viewing the node's own name: valid while the node and its name are unchanged.
std::string_view BaseNameView(pugi::xml_node node);
std::string_view BaseNameView(pugi::xml_attribute attribute);

// The value of the node's first child node (the text of an element that holds text). Throws
// Error when the node is empty or has no child, and when the first child has no value
// because it is an element: reading the text of a node that has none is a failing step.
std::string FirstChildText(pugi::xml_node node);
// The same text as a view into the document; empty where FirstChildText throws.
std::optional<std::string_view> FirstChildTextView(pugi::xml_node node);

// The Name production of XML 1.0 over UTF-8; malformed UTF-8 is not a name.
bool IsValidName(std::string_view name);

// Appends an element as parent's last child. Throws Error when name is not a valid XML name,
// when parent is empty or cannot hold an element (a second document element included);
// the tree is not touched then.
pugi::xml_node AppendChildElement(pugi::xml_node parent, const std::string& name);
// Appends a text node, even an empty one. Throws Error when node cannot hold text, and when
// text holds what XML 1.0 cannot carry: it is refused here, at the write, with a message that
// names the element, rather than written into a file that other tools reject.
void AppendText(pugi::xml_node node, const std::string& text);
// Sets or replaces an attribute of an element. Throws Error for an invalid name, a node that
// is not an element, or a value that XML 1.0 cannot carry.
void SetAttribute(pugi::xml_node element, const std::string& name, const std::string& value);

}  // namespace zerbin::xml
