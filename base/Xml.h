// The XML port: parsing with a readable error, first-match lookup by a slash path at any
// depth, node kinds and local names, and node creation that checks names the way a DOM does.
// pugixml is the DOM; these functions add what the component expects of one beyond it.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
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
};

// Comments and processing instructions are kept (callers skip comments by node type);
// whitespace-only text is dropped. UTF-8, UTF-16 and windows-1252 or ISO-8859-1 texts
// (by their declaration) are read. nullptr on failure, with *error filled when given.
std::shared_ptr<pugi::xml_document> LoadFile(const std::filesystem::path& file, ParseError* error);
std::shared_ptr<pugi::xml_document> LoadString(std::string_view text, ParseError* error);

// The first element in document order anywhere below root (root may be a document) whose
// name and the names of its nearest ancestors are the segments of slashPath, compared
// exactly: "SNVTS/SNVT_105" finds SNVT_105 under SNVTS at any depth. The whole path lies
// below root. An empty node when nothing matches or the path has an empty segment.
pugi::xml_node FindFirst(pugi::xml_node root, std::string_view slashPath);

// The node after node in document order among the descendants of root; an empty node after
// the last. Lets a walk run without recursion: documents may nest deeper than any call stack.
pugi::xml_node NextInDocumentOrder(pugi::xml_node node, pugi::xml_node root);

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

// The Name production of XML 1.0 over UTF-8; malformed UTF-8 is not a name.
bool IsValidName(std::string_view name);

// Appends an element as parent's last child. Throws Error when name is not a valid XML name,
// when parent is empty or cannot hold an element (a second document element included);
// the tree is not touched then.
pugi::xml_node AppendChildElement(pugi::xml_node parent, const std::string& name);
// Appends a text node, even an empty one. Throws Error when node cannot hold text.
void AppendText(pugi::xml_node node, const std::string& text);
// Sets or replaces an attribute of an element. Throws Error for an invalid name or a node
// that is not an element.
void SetAttribute(pugi::xml_node element, const std::string& name, const std::string& value);

}  // namespace zerbin::xml
