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
#include "base/XmlDocumentText.h"
#include "interfaces/Error.h"

namespace zerbin::xml {
namespace {

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

std::shared_ptr<pugi::xml_document> Load(FileBytes raw, ParseError* error,
                                         const std::function<FileBytes()>& original) {
    std::optional<FileBytes> text = detail::DocumentText(std::move(raw), error);
    if (!text) {
        return nullptr;
    }
    return detail::ParseDocumentText(std::move(*text), error, original);
}

}  // namespace

namespace detail {

std::optional<FileBytes> DocumentText(FileBytes raw, ParseError* error) {
    try {
        return ToUtf8(std::move(raw));
    } catch (const Refused& refused) {
        FillError(error, std::string_view(), refused.What());
        return std::nullopt;
    }
}

FileBytes ReadDocumentFile(const std::filesystem::path& file, std::uintmax_t maxBytes) {
    return ReadRegularFile(file, maxBytes, pugi::get_memory_allocation_function(),
                           pugi::get_memory_deallocation_function());
}

std::optional<FileBytes> ReadDocumentFileOrTell(const std::filesystem::path& file,
                                                std::uintmax_t maxBytes, ParseError* error) {
    try {
        return ReadDocumentFile(file, maxBytes);
    } catch (const IoError& failure) {
        if (error != nullptr) {
            *error = ParseError{};
            error->reason = failure.Reason();
            error->unreadable = true;
            error->systemError = failure.Code();
        }
        return std::nullopt;
    }
}

FileBytes CopyOf(std::string_view text) {
    FileBytes bytes = PugiBytes(text.size());
    std::memcpy(bytes.Data(), text.data(), text.size());
    return bytes;
}

std::shared_ptr<pugi::xml_document> ParseDocumentText(FileBytes utf8, ParseError* error,
                                                      const std::function<FileBytes()>& original) {
    std::optional<FileBytes> text(std::move(utf8));
    bool plainTree = false;
    try {
        const detail::TextCheck check =
            detail::CheckDocumentText(std::string_view(text->Data(), text->Size()));
        if (check.fault) {
            Refuse(check.fault->reason, static_cast<std::ptrdiff_t>(check.fault->offset));
        }
        plainTree = check.treeIsPlain;
    } catch (const Refused& refused) {
        FillError(error, std::string_view(text->Data(), text->Size()), refused.What());
        return nullptr;
    }

    auto document = std::make_shared<pugi::xml_document>();
    const std::size_t size = text->Size();
    const pugi::xml_parse_result result = document->load_buffer_inplace_own(
        text->Release(), size, detail::kParseOptions, pugi::encoding_utf8);
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

}  // namespace detail

std::shared_ptr<pugi::xml_document> LoadFile(const std::filesystem::path& file, ParseError* error,
                                             std::uintmax_t maxBytes) {
    std::optional<FileBytes> bytes = detail::ReadDocumentFileOrTell(file, maxBytes, error);
    if (!bytes) {
        return nullptr;
    }
    return Load(std::move(*bytes), error, [&] { return detail::ReadDocumentFile(file, maxBytes); });
}

std::shared_ptr<pugi::xml_document> LoadString(std::string_view text, ParseError* error) {
    return Load(detail::CopyOf(text), error, [text] { return detail::CopyOf(text); });
}

}  // namespace zerbin::xml
