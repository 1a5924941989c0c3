#include "base/Xml.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <optional>
#include <vector>

#include "base/SkipMode.h"
#include "base/Utf8.h"
#include "interfaces/Error.h"

namespace zerbin::xml {
namespace {

// Comments and processing instructions stay in the tree, as in the DOM the definition files
// were written for: the member walks skip comments themselves and count what is left.
constexpr unsigned kParseOptions = pugi::parse_default | pugi::parse_comments | pugi::parse_pi |
                                   pugi::parse_declaration | pugi::parse_doctype;

std::string FromSingleByte(std::string_view bytes, bool cp1252) {
    std::string out;
    out.reserve(bytes.size() + bytes.size() / 8);
    for (const char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        AppendUtf8(out, cp1252 ? Windows1252CodePoint(b) : b);
    }
    return out;
}

std::string FromUtf16(std::string_view bytes, bool bigEndian) {
    std::string out;
    out.reserve(bytes.size());
    auto unit = [&](std::size_t i) -> uint32_t {
        const auto a = static_cast<unsigned char>(bytes[i]);
        const auto b = static_cast<unsigned char>(bytes[i + 1]);
        return bigEndian ? (a << 8 | b) : (b << 8 | a);
    };
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        uint32_t cp = unit(i);
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 3 < bytes.size()) {
            const uint32_t low = unit(i + 2);
            if (low >= 0xDC00 && low <= 0xDFFF) {
                cp = 0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00);
                i += 2;
            }
        }
        AppendUtf8(out, cp);
    }
    return out;
}

std::string LowerAscii(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return out;
}

// The encoding named in an XML declaration at the very start, lower-cased; empty if none.
std::string DeclaredEncoding(std::string_view text) {
    if (text.substr(0, 5) != "<?xml") {
        return {};
    }
    const std::size_t end = text.find("?>");
    const std::string_view decl = text.substr(0, end);
    const std::size_t at = decl.find("encoding");
    if (at == std::string_view::npos) {
        return {};
    }
    const std::size_t quote = decl.find_first_of("\"'", at);
    if (quote == std::string_view::npos) {
        return {};
    }
    const std::size_t close = decl.find(decl[quote], quote + 1);
    if (close == std::string_view::npos) {
        return {};
    }
    return LowerAscii(decl.substr(quote + 1, close - quote - 1));
}

// Brings every input to UTF-8 before parsing, so that parser offsets, line and column all
// count in the one text we can show back to the user.
std::string ToUtf8(std::string_view bytes) {
    auto starts = [&](std::initializer_list<unsigned char> prefix) {
        return bytes.size() >= prefix.size() &&
               std::equal(prefix.begin(), prefix.end(), bytes.begin(), [](unsigned char p, char b) {
                   return p == static_cast<unsigned char>(b);
               });
    };
    if (starts({0xEF, 0xBB, 0xBF})) {
        return std::string(bytes.substr(3));
    }
    if (starts({0xFF, 0xFE})) {
        return FromUtf16(bytes.substr(2), false);
    }
    if (starts({0xFE, 0xFF})) {
        return FromUtf16(bytes.substr(2), true);
    }
    if (starts({'<', 0, '?', 0})) {
        return FromUtf16(bytes, false);
    }
    if (starts({0, '<', 0, '?'})) {
        return FromUtf16(bytes, true);
    }
    const std::string encoding = DeclaredEncoding(bytes);
    if (encoding == "windows-1252" || encoding == "cp1252") {
        return FromSingleByte(bytes, true);
    }
    if (encoding == "iso-8859-1" || encoding == "latin1" || encoding == "iso_8859-1") {
        return FromSingleByte(bytes, false);
    }
    return std::string(bytes);
}

void FillError(ParseError* error, const std::string& text, const pugi::xml_parse_result& result) {
    if (error == nullptr) {
        return;
    }
    const auto offset =
        std::clamp<std::ptrdiff_t>(result.offset, 0, static_cast<std::ptrdiff_t>(text.size()));
    const std::size_t lineStart = text.rfind('\n', offset == 0 ? 0 : offset - 1);
    const std::size_t begin = (lineStart == std::string::npos || offset == 0) ? 0 : lineStart + 1;
    std::size_t end = text.find('\n', static_cast<std::size_t>(offset));
    if (end == std::string::npos) {
        end = text.size();
    }
    std::string line = text.substr(begin, end - begin);
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    int column = 1;
    for (std::size_t i = begin; i < static_cast<std::size_t>(offset); ++i) {
        if ((static_cast<unsigned char>(text[i]) & 0xC0u) != 0x80u) {
            ++column;
        }
    }
    error->offset = offset;
    error->line = static_cast<int>(
        std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(begin), '\n') + 1);
    error->column = column;
    error->srcText = std::move(line);
    error->reason = std::string(result.description()) + " at line " + std::to_string(error->line) +
                    ", column " + std::to_string(column);
}

std::shared_ptr<pugi::xml_document> Parse(const std::string& utf8, ParseError* error) {
    auto doc = std::make_shared<pugi::xml_document>();
    const pugi::xml_parse_result result =
        doc->load_buffer(utf8.data(), utf8.size(), kParseOptions, pugi::encoding_utf8);
    if (!result) {
        FillError(error, utf8, result);
        return nullptr;
    }
    return doc;
}

// Decodes one UTF-8 sequence at text[i]; nullopt when malformed, overlong or a surrogate.
std::optional<uint32_t> DecodeUtf8(std::string_view text, std::size_t& i) {
    const auto lead = static_cast<unsigned char>(text[i]);
    int extra = 0;
    uint32_t cp = 0;
    uint32_t min = 0;
    if (lead < 0x80) {
        ++i;
        return lead;
    } else if ((lead & 0xE0) == 0xC0) {
        extra = 1, cp = lead & 0x1F, min = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        extra = 2, cp = lead & 0x0F, min = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        extra = 3, cp = lead & 0x07, min = 0x10000;
    } else {
        return std::nullopt;
    }
    if (i + static_cast<std::size_t>(extra) >= text.size()) {
        return std::nullopt;
    }
    for (int k = 1; k <= extra; ++k) {
        const auto b = static_cast<unsigned char>(text[i + static_cast<std::size_t>(k)]);
        if ((b & 0xC0) != 0x80) {
            return std::nullopt;
        }
        cp = (cp << 6) | (b & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        return std::nullopt;
    }
    i += static_cast<std::size_t>(extra) + 1;
    return cp;
}

bool IsNameStartChar(uint32_t c) {
    return c == ':' || (c >= 'A' && c <= 'Z') || c == '_' || (c >= 'a' && c <= 'z') ||
           (c >= 0xC0 && c <= 0xD6) || (c >= 0xD8 && c <= 0xF6) || (c >= 0xF8 && c <= 0x2FF) ||
           (c >= 0x370 && c <= 0x37D) || (c >= 0x37F && c <= 0x1FFF) ||
           (c >= 0x200C && c <= 0x200D) || (c >= 0x2070 && c <= 0x218F) ||
           (c >= 0x2C00 && c <= 0x2FEF) || (c >= 0x3001 && c <= 0xD7FF) ||
           (c >= 0xF900 && c <= 0xFDCF) || (c >= 0xFDF0 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= 0xEFFFF);
}

bool IsNameChar(uint32_t c) {
    return IsNameStartChar(c) || c == '-' || c == '.' || (c >= '0' && c <= '9') || c == 0xB7 ||
           (c >= 0x300 && c <= 0x36F) || (c >= 0x203F && c <= 0x2040);
}

std::string_view AfterPrefix(const char* name) {
    const std::string_view view(name);
    const std::size_t colon = view.find(':');
    return colon == std::string_view::npos ? view : view.substr(colon + 1);
}

// Splits "A/B/C" into its segments; false when a segment is empty.
bool SplitPath(std::string_view path, std::vector<std::string_view>& segments) {
    while (true) {
        const std::size_t slash = path.find('/');
        const std::string_view segment = path.substr(0, slash);
        if (segment.empty()) {
            return false;
        }
        segments.push_back(segment);
        if (slash == std::string_view::npos) {
            return true;
        }
        path.remove_prefix(slash + 1);
    }
}

}  // namespace

std::shared_ptr<pugi::xml_document> LoadFile(const std::filesystem::path& file, ParseError* error) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        if (error != nullptr) {
            *error = ParseError{};
            error->reason = "File was not found";
        }
        return nullptr;
    }
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (in.bad()) {
        if (error != nullptr) {
            *error = ParseError{};
            error->reason = "Error reading from file";
        }
        return nullptr;
    }
    return Parse(ToUtf8(bytes), error);
}

std::shared_ptr<pugi::xml_document> LoadString(std::string_view text, ParseError* error) {
    return Parse(ToUtf8(text), error);
}

pugi::xml_node FindFirst(pugi::xml_node root, std::string_view slashPath) {
    // One allocation for the segments; the walk itself allocates nothing.
    std::vector<std::string_view> segments;
    if (!root || !SplitPath(slashPath, segments)) {
        return {};
    }
    const std::string_view last = segments.back();
    for (pugi::xml_node node = root.first_child(); node; node = NextInDocumentOrder(node, root)) {
        if (node.type() != pugi::node_element || last != node.name()) {
            continue;
        }
        // The whole path lies below root: root itself never stands for a segment.
        pugi::xml_node ancestor = node.parent();
        std::size_t k = segments.size() - 1;
        while (k > 0 && ancestor != root && segments[k - 1] == ancestor.name()) {
            ancestor = ancestor.parent();
            --k;
        }
        if (k == 0) {
            return node;
        }
    }
    return {};
}

pugi::xml_node NextInDocumentOrder(pugi::xml_node node, pugi::xml_node root) {
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

int NodeType(pugi::xml_node node) {
    switch (node.type()) {
        case pugi::node_element:
            return kNodeElement;
        case pugi::node_pcdata:
            return kNodeText;
        case pugi::node_cdata:
            return kNodeCData;
        case pugi::node_pi:
        case pugi::node_declaration:
            return kNodeProcessingInstruction;
        case pugi::node_comment:
            return kNodeComment;
        case pugi::node_document:
            return kNodeDocument;
        case pugi::node_doctype:
            return kNodeDocumentType;
        case pugi::node_null:
            break;
    }
    return 0;
}

bool IsComment(pugi::xml_node node) {
    return node.type() == pugi::node_comment;
}

std::string_view BaseNameView(pugi::xml_node node) {
    switch (node.type()) {
        case pugi::node_element:
        case pugi::node_pi:
        case pugi::node_declaration:
            return AfterPrefix(node.name());
        default:
            return {};
    }
}

std::string_view BaseNameView(pugi::xml_attribute attribute) {
    return AfterPrefix(attribute.name());
}

std::string BaseName(pugi::xml_node node) {
    return std::string(BaseNameView(node));
}

std::string BaseName(pugi::xml_attribute attribute) {
    return std::string(BaseNameView(attribute));
}

std::string FirstChildText(pugi::xml_node node) {
    const pugi::xml_node child = Need(Need(node).first_child());
    if (child.type() == pugi::node_element) {
        throw Error("Invalid use of Null", kErrInvalidNull);
    }
    return child.value();
}

bool IsValidName(std::string_view name) {
    if (name.empty()) {
        return false;
    }
    std::size_t i = 0;
    bool first = true;
    while (i < name.size()) {
        const std::optional<uint32_t> cp = DecodeUtf8(name, i);
        if (!cp || !(first ? IsNameStartChar(*cp) : IsNameChar(*cp))) {
            return false;
        }
        first = false;
    }
    return true;
}

pugi::xml_node AppendChildElement(pugi::xml_node parent, const std::string& name) {
    if (!IsValidName(name)) {
        throw Error("'" + name + "' is not a valid XML name");
    }
    Need(parent);
    if (parent.type() == pugi::node_document &&
        parent.find_child([](pugi::xml_node n) { return n.type() == pugi::node_element; })) {
        throw Error("Only one top level element is allowed in an XML document");
    }
    pugi::xml_node element = parent.append_child(name.c_str());
    if (!element) {
        throw Error("This operation cannot be performed with a node of this type");
    }
    return element;
}

void AppendText(pugi::xml_node node, const std::string& text) {
    Need(node);
    if (node.type() != pugi::node_element) {
        throw Error("This operation cannot be performed with a node of this type");
    }
    node.append_child(pugi::node_pcdata).set_value(text.c_str());
}

void SetAttribute(pugi::xml_node element, const std::string& name, const std::string& value) {
    if (!IsValidName(name)) {
        throw Error("'" + name + "' is not a valid XML name");
    }
    Need(element);
    if (element.type() != pugi::node_element) {
        throw Error("This operation cannot be performed with a node of this type");
    }
    pugi::xml_attribute attribute = element.attribute(name.c_str());
    if (!attribute) {
        attribute = element.append_attribute(name.c_str());
    }
    attribute.set_value(value.c_str());
}

}  // namespace zerbin::xml
