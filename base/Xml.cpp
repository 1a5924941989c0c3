#include "base/Xml.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/SkipMode.h"
#include "base/Utf8.h"
#include "base/XmlChars.h"
#include "interfaces/Error.h"

namespace zerbin::xml {
namespace {

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

// Refused at the write: a document that holds such text is one that other tools reject, and
// no escape of XML 1.0 can carry it.
void RequireWritable(std::string_view text, const std::string& where) {
    if (const auto fault = detail::FindTextFault(text)) {
        throw Error("the value of '" + where + "' holds " + fault->reason);
    }
}

}  // namespace

namespace detail {

std::optional<uint32_t> DecodeUtf8(std::string_view text, std::size_t& i) {
    std::size_t next = i;
    const uint32_t cp = NextCodePoint(text, next);
    if (cp == kMalformedUtf8) {
        return std::nullopt;
    }
    i = next;
    return cp;
}

bool IsXmlChar(uint32_t c) {
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) ||
           (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

std::string CodePointName(uint32_t c) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string digits;
    do {
        digits.insert(digits.begin(), kDigits[c % 16]);
        c /= 16;
    } while (c != 0);
    while (digits.size() < 4) {
        digits.insert(digits.begin(), '0');
    }
    return "U+" + digits;
}

std::optional<TextFault> FindTextFault(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        const auto byte = static_cast<unsigned char>(text[i]);
        // Most text is printable ASCII: one comparison a byte.
        if (byte >= 0x20 && byte < 0x80) {
            ++i;
            continue;
        }
        const std::size_t at = i;
        const std::optional<uint32_t> cp = DecodeUtf8(text, i);
        if (!cp) {
            return TextFault{"bytes that are not UTF-8", at};
        }
        if (!IsXmlChar(*cp)) {
            return TextFault{"the character " + CodePointName(*cp) + ", which XML 1.0 cannot carry",
                             at};
        }
    }
    return std::nullopt;
}

}  // namespace detail

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
        throw Error("'" + std::string(node.name()) + "' holds no text", ErrorKind::NoText);
    }
    return child.value();
}

std::optional<std::string_view> FirstChildTextView(pugi::xml_node node) {
    const pugi::xml_node child = node ? node.first_child() : pugi::xml_node();
    if (!child || child.type() == pugi::node_element) {
        return std::nullopt;
    }
    return std::string_view(child.value());
}

bool IsValidName(std::string_view name) {
    if (name.empty()) {
        return false;
    }
    // Nearly every name is ASCII: a table decides it without decoding, and the first byte
    // beyond ASCII hands the rest to the decoder.
    static constexpr auto kAscii = [] {
        // Bit 1: may start a name; bit 2: may stand inside one.
        std::array<unsigned char, 128> table{};
        for (int c = 0; c < 128; ++c) {
            const bool start =
                (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == ':';
            const bool inside = start || (c >= '0' && c <= '9') || c == '-' || c == '.';
            table[static_cast<std::size_t>(c)] =
                static_cast<unsigned char>((start ? 1 : 0) | (inside ? 2 : 0));
        }
        return table;
    }();
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(name[at]); };
    std::size_t i = 0;
    if (byte(0) < 0x80) {
        if ((kAscii[byte(0)] & 1) == 0) {
            return false;
        }
        for (i = 1; i < name.size() && byte(i) < 0x80; ++i) {
            if ((kAscii[byte(i)] & 2) == 0) {
                return false;
            }
        }
    }
    bool first = i == 0;
    while (i < name.size()) {
        const std::optional<uint32_t> cp = detail::DecodeUtf8(name, i);
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
        throw Error("a document has one element at its top", ErrorKind::XmlStructure);
    }
    pugi::xml_node element = parent.append_child(name.c_str());
    if (!element) {
        throw Error("only an element can take this node", ErrorKind::XmlStructure);
    }
    return element;
}

void AppendText(pugi::xml_node node, const std::string& text) {
    Need(node);
    if (node.type() != pugi::node_element) {
        throw Error("only an element can take this node", ErrorKind::XmlStructure);
    }
    RequireWritable(text, node.name());
    node.append_child(pugi::node_pcdata).set_value(text.c_str());
}

void SetAttribute(pugi::xml_node element, const std::string& name, const std::string& value) {
    if (!IsValidName(name)) {
        throw Error("'" + name + "' is not a valid XML name");
    }
    Need(element);
    if (element.type() != pugi::node_element) {
        throw Error("only an element can take this node", ErrorKind::XmlStructure);
    }
    RequireWritable(value, std::string(element.name()) + "/@" + name);
    pugi::xml_attribute attribute = element.attribute(name.c_str());
    if (!attribute) {
        attribute = element.append_attribute(name.c_str());
    }
    attribute.set_value(value.c_str());
}

}  // namespace zerbin::xml
