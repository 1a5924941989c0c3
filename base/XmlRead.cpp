// Strict reading: pugixml parses, and this file refuses what pugixml lets through but XML 1.0
// does not: bytes that are not in the document's encoding, characters XML does not allow,
// a bare "&", entity references other than XML's five, entity declarations, "<" in an
// attribute value, "]]>" in text, "--" in a comment, names that are no XML names, repeated
// attributes, a second document element and text outside it.
#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/CheckedFile.h"
#include "base/Utf8.h"
#include "base/Xml.h"
#include "base/XmlChars.h"
#include "interfaces/Error.h"

namespace zerbin::xml {
namespace {

using detail::CodePointName;
using detail::DecodeUtf8;
using detail::IsXmlChar;

// Comments and processing instructions stay in the tree, as in the DOM the definition files
// were written for: the member walks skip comments themselves and count what is left.
constexpr unsigned kParseOptions = pugi::parse_default | pugi::parse_comments | pugi::parse_pi |
                                   pugi::parse_declaration | pugi::parse_doctype;

// Why a document is refused and where, in bytes of its UTF-8 text; -1 when nowhere.
struct Failure {
    std::string reason;
    std::ptrdiff_t offset = -1;
};

class Refused {
public:
    explicit Refused(Failure failure) : failure_(std::move(failure)) {}
    const Failure& What() const { return failure_; }

private:
    Failure failure_;
};

[[noreturn]] void Refuse(std::string reason, std::ptrdiff_t offset = -1) {
    throw Refused(Failure{std::move(reason), offset});
}

// Memory that pugixml can own: the text is parsed where it lies.
FileBytes PugiBytes(std::size_t size) {
    auto* data = static_cast<char*>(pugi::get_memory_allocation_function()(size + 1));
    if (data == nullptr) {
        throw std::bad_alloc();
    }
    data[size] = '\0';
    return FileBytes(data, size, pugi::get_memory_deallocation_function());
}

bool StartsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
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

// The encoding named in an XML declaration at the very start; empty if none.
std::string DeclaredEncoding(std::string_view text) {
    if (!StartsWith(text, "<?xml")) {
        return {};
    }
    const std::string_view declaration = text.substr(0, text.find("?>"));
    const std::size_t at = declaration.find("encoding");
    if (at == std::string_view::npos) {
        return {};
    }
    const std::size_t quote = declaration.find_first_of("\"'", at);
    if (quote == std::string_view::npos) {
        return {};
    }
    const std::size_t close = declaration.find(declaration[quote], quote + 1);
    if (close == std::string_view::npos) {
        return {};
    }
    return std::string(declaration.substr(quote + 1, close - quote - 1));
}

// The EncName production: it also keeps iconv's own suffixes ("//TRANSLIT") out.
bool IsEncodingName(std::string_view name) {
    if (name.empty() ||
        !((name[0] >= 'A' && name[0] <= 'Z') || (name[0] >= 'a' && name[0] <= 'z'))) {
        return false;
    }
    return std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
               c == '.' || c == '_' || c == '-';
    });
}

class Converter {
public:
    explicit Converter(const std::string& from) : handle_(iconv_open("UTF-8", from.c_str())) {}
    ~Converter() {
        if (Valid()) {
            iconv_close(handle_);
        }
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    bool Valid() const { return handle_ != reinterpret_cast<iconv_t>(-1); }
    iconv_t Get() const { return handle_; }

private:
    iconv_t handle_;
};

// The bytes in encoding, as UTF-8 in new memory; refused when glibc cannot decode them.
FileBytes Convert(const char* bytes, std::size_t size, const std::string& encoding) {
    const Converter converter(encoding);
    if (!converter.Valid()) {
        Refuse("the document is in the encoding '" + encoding + "', which cannot be read");
    }
    std::size_t capacity = size + size / 2 + 16;
    FileBytes out = PugiBytes(capacity);
    char* in = const_cast<char*>(bytes);
    std::size_t inLeft = size;
    std::size_t written = 0;
    while (inLeft > 0) {
        char* to = out.Data() + written;
        std::size_t outLeft = capacity - written;
        const std::size_t done = iconv(converter.Get(), &in, &inLeft, &to, &outLeft);
        written = capacity - outLeft;
        if (done != static_cast<std::size_t>(-1)) {
            break;
        }
        if (errno == E2BIG) {
            capacity = capacity * 2;
            FileBytes larger = PugiBytes(capacity);
            std::memcpy(larger.Data(), out.Data(), written);
            out = std::move(larger);
            continue;
        }
        Refuse("byte " + std::to_string(in - bytes) +
               " of the file is not valid in the encoding '" + encoding + "'");
    }
    // A stateful encoding may owe bytes that return to its initial state.
    while (true) {
        char* to = out.Data() + written;
        std::size_t outLeft = capacity - written;
        const std::size_t done = iconv(converter.Get(), nullptr, nullptr, &to, &outLeft);
        written = capacity - outLeft;
        if (done != static_cast<std::size_t>(-1) || errno != E2BIG) {
            break;
        }
        capacity = capacity * 2;
        FileBytes larger = PugiBytes(capacity);
        std::memcpy(larger.Data(), out.Data(), written);
        out = std::move(larger);
    }
    out.Data()[written] = '\0';
    char* data = out.Release();
    return FileBytes(data, written, pugi::get_memory_deallocation_function());
}

// The document's text in UTF-8, ready for pugixml: byte order marks and declared encodings
// are decoded here, so that offsets, lines and columns all count in the one text that a
// message can show. A text without a declaration that says otherwise must be UTF-8.
FileBytes ToUtf8(FileBytes raw) {
    const std::string_view bytes(raw.Data(), raw.Size());
    const auto skip = [&](std::size_t count, const std::string& encoding) {
        return Convert(raw.Data() + count, raw.Size() - count, encoding);
    };
    if (StartsWith(bytes, "\xEF\xBB\xBF")) {
        std::memmove(raw.Data(), raw.Data() + 3, raw.Size() - 3 + 1);
        char* data = raw.Release();
        return FileBytes(data, bytes.size() - 3, pugi::get_memory_deallocation_function());
    }
    if (StartsWith(bytes, "\xFF\xFE")) {
        return skip(2, "UTF-16LE");
    }
    if (StartsWith(bytes, "\xFE\xFF")) {
        return skip(2, "UTF-16BE");
    }
    if (StartsWith(bytes, std::string_view("<\0?\0", 4))) {
        return skip(0, "UTF-16LE");
    }
    if (StartsWith(bytes, std::string_view("\0<\0?", 4))) {
        return skip(0, "UTF-16BE");
    }
    const std::string encoding = DeclaredEncoding(bytes);
    const std::string lower = LowerAscii(encoding);
    if (encoding.empty() || lower == "utf-8" || lower == "utf8") {
        return raw;
    }
    if (!IsEncodingName(encoding)) {
        Refuse("the document declares the encoding '" + encoding + "', which is no encoding name");
    }
    return skip(0, encoding);
}

// One pass over the text for what pugixml does not check; pugixml finds the rest.
class TextChecker {
public:
    explicit TextChecker(std::string_view text) : text_(text) {}

    // Whether the text alone shows that the tree below the top holds nothing to refuse: every
    // start tag's name is a plain ASCII XML name, no tag carries an attribute (its value
    // would need quotes), and no processing instruction stands anywhere but at the very
    // start. Most documents are such, and walking their trees again was a third of a read.
    bool TreeIsPlain() const { return plainTree_; }

    void Run() {
        while (i_ < text_.size()) {
            SkipPlainRun();
            if (i_ >= text_.size()) {
                break;
            }
            const auto byte = static_cast<unsigned char>(text_[i_]);
            if (byte >= 0x80 || (byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r')) {
                CheckCharacter();
                continue;
            }
            switch (state_) {
                case State::Content:
                    Content();
                    break;
                case State::Tag:
                    Tag();
                    break;
                case State::Comment:
                    Until("-->", [&] {
                        if (At("--")) {
                            Refuse("'--' is not allowed inside a comment", Offset());
                        }
                    });
                    break;
                case State::CData:
                    Until("]]>", [] {});
                    break;
                case State::Instruction:
                    Until("?>", [] {});
                    break;
                case State::DocumentType:
                    DocumentType();
                    break;
            }
        }
    }

private:
    enum class State { Content, Tag, Comment, CData, Instruction, DocumentType };

    bool At(std::string_view what) const { return text_.substr(i_, what.size()) == what; }

    // Passes over the bytes that the state's own step would only step over: printable ASCII
    // and blanks that can neither end nor begin anything where the text stands. Most of a
    // document is such runs of text and tag, so each byte costs one table look-up.
    void SkipPlainRun() {
        const std::array<bool, 256>* plain = nullptr;
        if (state_ == State::Content && elements_ > 0) {
            plain = &kPlain.content;
        } else if (state_ == State::Tag) {
            plain = quote_ == 0     ? &kPlain.tag
                    : quote_ == '"' ? &kPlain.doubleQuoted
                                    : &kPlain.singleQuoted;
        } else {
            return;
        }
        // A local index: through a char pointer the compiler would store i_ at every byte.
        const char* const data = text_.data();
        const std::size_t size = text_.size();
        std::size_t i = i_;
        while (i < size && (*plain)[static_cast<unsigned char>(data[i])]) {
            ++i;
        }
        i_ = i;
    }

    struct PlainBytes {
        std::array<bool, 256> content{};
        std::array<bool, 256> tag{};
        std::array<bool, 256> doubleQuoted{};
        std::array<bool, 256> singleQuoted{};

        PlainBytes() {
            for (int byte = 0; byte < 256; ++byte) {
                const bool plain =
                    (byte >= 0x20 && byte < 0x80) || byte == '\t' || byte == '\n' || byte == '\r';
                content[byte] = plain && byte != '<' && byte != '&' && byte != ']';
                tag[byte] = plain && byte != '"' && byte != '\'' && byte != '>';
                const bool inValue = plain && byte != '<' && byte != '&';
                doubleQuoted[byte] = inValue && byte != '"';
                singleQuoted[byte] = inValue && byte != '\'';
            }
        }
    };
    static inline const PlainBytes kPlain{};

    std::ptrdiff_t Offset() const { return static_cast<std::ptrdiff_t>(i_); }

    void CheckCharacter() {
        const std::size_t at = i_;
        const std::optional<uint32_t> cp = DecodeUtf8(text_, i_);
        if (!cp) {
            Refuse("the bytes are not UTF-8, and the document declares no other encoding",
                   static_cast<std::ptrdiff_t>(at));
        }
        if (!IsXmlChar(*cp)) {
            Refuse("the character " + CodePointName(*cp) + " is not allowed in XML 1.0",
                   static_cast<std::ptrdiff_t>(at));
        }
    }

    template <class Inside>
    void Until(std::string_view end, Inside&& inside) {
        if (At(end)) {
            i_ += end.size();
            state_ = State::Content;
            return;
        }
        inside();
        ++i_;
    }

    void Content() {
        const char c = text_[i_];
        if (elements_ == 0 && c != '<' && c != ' ' && c != '\t' && c != '\n' && c != '\r') {
            Refuse("text outside the document element", Offset());
        }
        const char next = i_ + 1 < text_.size() ? text_[i_ + 1] : '\0';
        if (c == '<' && next != '!' && next != '?') {
            // An element's tag, start or end: by far the most common way out of text.
            if (next != '/') {
                NotePlainName(i_ + 1);
            }
            state_ = State::Tag;
            quote_ = 0;
            endTag_ = next == '/';
            ++i_;
        } else if (c == '&') {
            Reference();
        } else if (At("]]>")) {
            Refuse("']]>' is not allowed in text", Offset());
        } else if (At("<!--")) {
            state_ = State::Comment;
            i_ += 4;
        } else if (At("<![CDATA[")) {
            state_ = State::CData;
            i_ += 9;
        } else if (At("<?")) {
            plainTree_ = plainTree_ && i_ == 0;
            state_ = State::Instruction;
            i_ += 2;
        } else if (At("<!DOCTYPE")) {
            state_ = State::DocumentType;
            depth_ = 0;
            quote_ = 0;
            i_ += 9;
        } else {
            if (c == '<') {
                plainTree_ = false;
                state_ = State::Tag;
                quote_ = 0;
                endTag_ = At("</");
            }
            ++i_;
        }
    }

    // Clears plainTree_ unless the name from start is plain ASCII, ending where pugixml's does.
    void NotePlainName(std::size_t start) {
        if (!plainTree_) {
            return;
        }
        const std::size_t size = text_.size();
        std::size_t j = start;
        if (j >= size || !kName.start[static_cast<unsigned char>(text_[j])]) {
            plainTree_ = false;
            return;
        }
        do {
            ++j;
        } while (j < size && kName.inside[static_cast<unsigned char>(text_[j])]);
        const char end = j < size ? text_[j] : '\0';
        plainTree_ =
            end == ' ' || end == '\t' || end == '\n' || end == '\r' || end == '/' || end == '>';
    }

    struct NameBytes {
        std::array<bool, 256> start{};
        std::array<bool, 256> inside{};

        NameBytes() {
            for (int byte = 0; byte < 128; ++byte) {
                const bool letter = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
                start[byte] = letter || byte == '_' || byte == ':';
                inside[byte] =
                    start[byte] || (byte >= '0' && byte <= '9') || byte == '-' || byte == '.';
            }
        }
    };
    static inline const NameBytes kName{};

    void Tag() {
        const char c = text_[i_];
        if (quote_ == 0) {
            if (c == '"' || c == '\'') {
                quote_ = c;
                plainTree_ = false;
            } else if (c == '>') {
                state_ = State::Content;
                // Counted for the text outside the document element, which pugixml drops.
                if (endTag_) {
                    --elements_;
                } else if (i_ == 0 || text_[i_ - 1] != '/') {
                    ++elements_;
                }
            }
            ++i_;
        } else if (c == quote_) {
            quote_ = 0;
            ++i_;
        } else if (c == '<') {
            Refuse("'<' is not allowed in an attribute value", Offset());
        } else if (c == '&') {
            Reference();
        } else {
            ++i_;
        }
    }

    // Declarations are read only far enough to find their end: a document that declares an
    // entity is refused, so that no reference expands to anything but XML's five.
    void DocumentType() {
        const char c = text_[i_];
        if (quote_ != 0) {
            if (c == quote_) {
                quote_ = 0;
            }
        } else if (c == '"' || c == '\'') {
            quote_ = c;
        } else if (depth_ > 0 && At("<!ENTITY")) {
            Refuse("the document declares an entity; entity declarations are not supported",
                   Offset());
        } else if (depth_ > 0 && At("<!--")) {
            const std::size_t end = text_.find("-->", i_ + 4);
            i_ = end == std::string_view::npos ? text_.size() : end + 3;
            return;
        } else if (c == '[') {
            ++depth_;
        } else if (c == ']') {
            --depth_;
        } else if (c == '>' && depth_ <= 0) {
            state_ = State::Content;
        }
        ++i_;
    }

    // "&" starts one of XML's five entity references or a character reference of a
    // character that XML 1.0 allows; anything else is refused.
    void Reference() {
        const std::size_t start = i_;
        const std::size_t semicolon = text_.find(';', start + 1);
        const std::size_t end =
            std::min(semicolon == std::string_view::npos ? text_.size() : semicolon,
                     std::min(text_.size(), start + 64));
        const std::string_view body = text_.substr(start + 1, end - start - 1);
        if (end == text_.size() || text_[end] != ';' || body.empty()) {
            Refuse("'&' that starts no reference; write '&amp;' for the character",
                   static_cast<std::ptrdiff_t>(start));
        }
        if (body[0] == '#') {
            CharacterReference(body, start);
        } else if (body != "lt" && body != "gt" && body != "amp" && body != "apos" &&
                   body != "quot") {
            if (!IsValidName(body)) {
                Refuse("'&' that starts no reference; write '&amp;' for the character",
                       static_cast<std::ptrdiff_t>(start));
            }
            Refuse("undefined entity '&" + std::string(body) + ";'",
                   static_cast<std::ptrdiff_t>(start));
        }
        i_ = end + 1;
    }

    static void CharacterReference(std::string_view body, std::size_t start) {
        const bool hex = body.size() > 1 && body[1] == 'x';
        const std::string_view digits = body.substr(hex ? 2 : 1);
        uint32_t value = 0;
        bool valid = !digits.empty() && digits.size() <= 8;
        for (const char c : digits) {
            int digit = -1;
            if (c >= '0' && c <= '9') {
                digit = c - '0';
            } else if (hex && c >= 'a' && c <= 'f') {
                digit = c - 'a' + 10;
            } else if (hex && c >= 'A' && c <= 'F') {
                digit = c - 'A' + 10;
            }
            valid = valid && digit >= 0;
            value = value * (hex ? 16 : 10) + static_cast<uint32_t>(std::max(digit, 0));
        }
        if (!valid) {
            Refuse("malformed character reference '&" + std::string(body) + ";'",
                   static_cast<std::ptrdiff_t>(start));
        }
        if (!IsXmlChar(value)) {
            Refuse("the character reference '&" + std::string(body) + ";' names " +
                       CodePointName(value) + ", which XML 1.0 does not allow",
                   static_cast<std::ptrdiff_t>(start));
        }
    }

    std::string_view text_;
    std::size_t i_ = 0;
    State state_ = State::Content;
    char quote_ = 0;
    int depth_ = 0;
    bool endTag_ = false;
    bool plainTree_ = true;
    std::ptrdiff_t elements_ = 0;  // open elements
};

std::ptrdiff_t OffsetOf(pugi::xml_node node) {
    return node.offset_debug();
}

bool IsVersion(std::string_view version) {
    return version.size() >= 3 && StartsWith(version, "1.") &&
           std::all_of(version.begin() + 2, version.end(),
                       [](char c) { return c >= '0' && c <= '9'; });
}

void CheckAttributes(pugi::xml_node element) {
    const pugi::xml_attribute first = element.first_attribute();
    if (!first) {
        return;  // most elements: nothing to check, nothing to allocate
    }
    // A few attributes are compared pair by pair where they stand; many are sorted.
    constexpr std::size_t kFew = 8;
    std::array<std::string_view, kFew> few;
    std::size_t count = 0;
    std::vector<std::string_view> names;
    for (pugi::xml_attribute attribute = first; attribute; attribute = attribute.next_attribute()) {
        if (!IsValidName(attribute.name())) {
            Refuse("'" + std::string(attribute.name()) + "' is not a valid XML name",
                   OffsetOf(element));
        }
        if (count < kFew) {
            few[count] = attribute.name();
        } else {
            if (names.empty()) {
                names.assign(few.begin(), few.end());
            }
            names.emplace_back(attribute.name());
        }
        ++count;
    }
    if (names.empty()) {
        // The least repeated name, which is the one the sorted search below names.
        std::optional<std::string_view> twice;
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t j = i + 1; j < count; ++j) {
                if (few[i] == few[j] && (!twice || few[i] < *twice)) {
                    twice = few[i];
                }
            }
        }
        if (twice) {
            Refuse("the attribute '" + std::string(*twice) + "' is given twice", OffsetOf(element));
        }
        return;
    }
    std::sort(names.begin(), names.end());
    const auto twice = std::adjacent_find(names.begin(), names.end());
    if (twice != names.end()) {
        Refuse("the attribute '" + std::string(*twice) + "' is given twice", OffsetOf(element));
    }
}

// What pugixml accepts in the tree but XML 1.0 does not; walked without recursion, for
// documents nest deeper than any call stack.
void CheckNode(pugi::xml_node node, const pugi::xml_document& document);

void CheckTree(const pugi::xml_document& document, bool plainText) {
    int elements = 0;
    for (pugi::xml_node top : document.children()) {
        switch (top.type()) {
            case pugi::node_element:
                if (++elements > 1) {
                    Refuse("a second document element '" + std::string(top.name()) + "'",
                           OffsetOf(top));
                }
                break;
            case pugi::node_pcdata:
            case pugi::node_cdata:
                Refuse("text outside the document element", OffsetOf(top));
            default:
                break;
        }
    }
    if (plainText) {
        // Below the top there is nothing that the text did not show to be fine.
        for (pugi::xml_node top : document.children()) {
            CheckNode(top, document);
        }
        return;
    }
    // pugixml's own walk: iterative, so any depth is fine, and it steps through the tree
    // without a library call per step.
    struct Walker : pugi::xml_tree_walker {
        const pugi::xml_document* document;
        bool for_each(pugi::xml_node& node) override {
            CheckNode(node, *document);
            return true;
        }
    } walker;
    walker.document = &document;
    pugi::xml_node root = document;
    root.traverse(walker);
}

void CheckNode(pugi::xml_node node, const pugi::xml_document& document) {
    {
        switch (node.type()) {
            case pugi::node_element:
                if (!IsValidName(node.name())) {
                    Refuse("'" + std::string(node.name()) + "' is not a valid XML name",
                           OffsetOf(node));
                }
                CheckAttributes(node);
                break;
            case pugi::node_declaration:
                // The declaration's name "xml" stands two bytes into the text.
                if (node != document.first_child() || OffsetOf(node) != 2) {
                    Refuse("the XML declaration is allowed only at the very start", OffsetOf(node));
                }
                if (!IsVersion(node.attribute("version").value())) {
                    Refuse("the XML declaration has no version 1.x", OffsetOf(node));
                }
                break;
            case pugi::node_pi:
                if (!IsValidName(node.name()) || LowerAscii(node.name()) == "xml") {
                    Refuse("'" + std::string(node.name()) +
                               "' is not allowed as a processing instruction target",
                           OffsetOf(node));
                }
                break;
            default:
                break;
        }
    }
}

void FillError(ParseError* error, std::string_view text, const Failure& failure) {
    if (error == nullptr) {
        return;
    }
    *error = ParseError{};
    if (failure.offset < 0 || text.empty()) {
        error->reason = failure.reason;
        return;
    }
    const auto offset = static_cast<std::size_t>(
        std::clamp<std::ptrdiff_t>(failure.offset, 0, static_cast<std::ptrdiff_t>(text.size())));
    const std::size_t lineStart =
        offset == 0 ? std::string_view::npos : text.rfind('\n', offset - 1);
    const std::size_t begin = lineStart == std::string_view::npos ? 0 : lineStart + 1;
    std::size_t end = text.find('\n', offset);
    if (end == std::string_view::npos) {
        end = text.size();
    }
    std::string line(text.substr(begin, end - begin));
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    const int column = 1 + static_cast<int>(CharacterCount(text.substr(begin, offset - begin)));
    error->offset = static_cast<std::ptrdiff_t>(offset);
    error->line = static_cast<int>(
        std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(begin), '\n') + 1);
    error->column = column;
    error->srcText = std::move(line);
    error->reason = failure.reason + " at line " + std::to_string(error->line) + ", column " +
                    std::to_string(column);
}

// Parses raw bytes. The text is parsed in place, so a failure found after pugixml has
// begun is placed in the text that original() gives again.
std::shared_ptr<pugi::xml_document> Load(FileBytes raw, ParseError* error,
                                         const std::function<FileBytes()>& original) {
    std::optional<FileBytes> text;
    bool plainTree = false;
    try {
        text.emplace(ToUtf8(std::move(raw)));
        TextChecker checker(std::string_view(text->Data(), text->Size()));
        checker.Run();
        plainTree = checker.TreeIsPlain();
    } catch (const Refused& refused) {
        FillError(error, text ? std::string_view(text->Data(), text->Size()) : std::string_view(),
                  refused.What());
        return nullptr;
    }

    auto document = std::make_shared<pugi::xml_document>();
    const std::size_t size = text->Size();
    const pugi::xml_parse_result result = document->load_buffer_inplace_own(
        text->Release(), size, kParseOptions, pugi::encoding_utf8);
    std::optional<Failure> failure;
    if (!result) {
        if (result.status == pugi::status_out_of_memory) {
            throw std::bad_alloc();
        }
        failure = Failure{result.description(), result.offset};
    } else {
        try {
            CheckTree(*document, plainTree);
        } catch (const Refused& refused) {
            failure = refused.What();
        }
    }
    if (!failure) {
        return document;
    }
    document.reset();
    if (error != nullptr) {
        // Only a failed load reads its bytes again, to show the line as it stands.
        std::optional<FileBytes> again;
        try {
            again.emplace(ToUtf8(original()));
        } catch (...) {
            again.reset();
        }
        FillError(error,
                  again ? std::string_view(again->Data(), again->Size()) : std::string_view(),
                  *failure);
    }
    return nullptr;
}

FileBytes CopyOf(std::string_view text) {
    FileBytes bytes = PugiBytes(text.size());
    std::memcpy(bytes.Data(), text.data(), text.size());
    return bytes;
}

}  // namespace

std::shared_ptr<pugi::xml_document> LoadFile(const std::filesystem::path& file, ParseError* error,
                                             std::uintmax_t maxBytes) {
    const auto read = [&] {
        return ReadRegularFile(file, maxBytes, pugi::get_memory_allocation_function(),
                               pugi::get_memory_deallocation_function());
    };
    std::optional<FileBytes> bytes;
    try {
        bytes.emplace(read());
    } catch (const IoError& failure) {
        if (error != nullptr) {
            *error = ParseError{};
            error->reason = failure.Reason();
            error->unreadable = true;
            error->systemError = failure.Code();
        }
        return nullptr;
    }
    return Load(std::move(*bytes), error, read);
}

std::shared_ptr<pugi::xml_document> LoadString(std::string_view text, ParseError* error) {
    return Load(CopyOf(text), error, [text] { return CopyOf(text); });
}

}  // namespace zerbin::xml
