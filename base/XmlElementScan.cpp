// One pass over a document's text that proves it well-formed and within what the strict reader
// accepts, and finds where each element under the document element starts and ends, so that
// those elements can be parsed one at a time. It proves only the plain shape most documents
// have (ASCII names, few attributes, comments and CDATA sections, XML's five entities and
// character references); anything else, good or bad, it leaves to the whole-document reader,
// which accepts or refuses it and names the fault. Taking nothing it cannot prove keeps the
// two readers' answers the same, where sharing one checker would not.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

#include "base/XmlChars.h"
#include "base/XmlDocumentText.h"

namespace zerbin::xml::detail {
namespace {

// Thrown when the text leaves the shape this pass proves; rare, so a throw costs nothing.
struct Unproven {};

[[noreturn]] void GiveUp() {
    throw Unproven{};
}

enum ByteClass : std::uint8_t {
    kOther = 0,
    kNameStart = 1,  // also a name byte
    kNameByte = 2,
    kText = 4,   // stands for itself in text: printable ASCII but '<', '&' and ']'
    kValue = 8,  // the same in an attribute value, quotes aside: all but '<' and '&'
};

struct ByteClasses {
    std::array<std::uint8_t, 256> of{};

    ByteClasses() {
        for (int byte = 0x20; byte < 0x80; ++byte) {
            std::uint8_t bits = 0;
            const bool letter = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
            if (letter || byte == '_' || byte == ':') {
                bits |= kNameStart | kNameByte;
            } else if ((byte >= '0' && byte <= '9') || byte == '-' || byte == '.') {
                bits |= kNameByte;
            }
            if (byte != '<' && byte != '&' && byte != ']') {
                bits |= kText;
            }
            if (byte != '<' && byte != '&' && byte != '"' && byte != '\'') {
                bits |= kValue;
            }
            of[static_cast<std::size_t>(byte)] = bits;
        }
    }
};
const ByteClasses kClasses{};

bool Is(char c, ByteClass what) {
    return (kClasses.of[static_cast<unsigned char>(c)] & what) != 0;
}

bool IsBlank(char c) {
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

class Scanner {
public:
    explicit Scanner(std::string_view text)
        : text_(text), p_(text.data()), end_(text.data() + text.size()) {}

    std::vector<ElementSpan> Run() {
        if (At("<?xml") && p_ + 5 < end_ && IsBlank(p_[5])) {
            Declaration();
        }
        Misc();
        if (p_ == end_) {
            GiveUp();  // no document element
        }
        Content();
        Misc();
        if (p_ != end_) {
            GiveUp();  // a second element, a processing instruction or text after the end
        }
        return std::move(spans_);
    }

private:
    struct Open {
        const char* name;
        std::size_t length;
    };

    // The text is NUL-terminated where it is read (pugixml's buffers are), but this pass reads
    // only below end_: a byte past it is taken as a NUL, which nothing accepts.
    char Peek(std::size_t ahead = 0) const { return p_ + ahead < end_ ? p_[ahead] : '\0'; }

    bool At(std::string_view what) const {
        return static_cast<std::size_t>(end_ - p_) >= what.size() &&
               std::memcmp(p_, what.data(), what.size()) == 0;
    }

    const char* SkipName(const char* at) const {
        if (at >= end_ || !Is(*at, kNameStart)) {
            GiveUp();
        }
        const char* const end = end_;
        ++at;
        while (at < end && Is(*at, kNameByte)) {
            ++at;
        }
        return at;
    }

    // The loops over runs of bytes step a local pointer: through a member, the compiler would
    // store it at every byte, as a char may alias it.
    template <class Passes>
    void SkipWhile(Passes passes) {
        const char* p = p_;
        while (p < end_ && passes(*p)) {
            ++p;
        }
        p_ = p;
    }

    void SkipBlanks() { SkipWhile(IsBlank); }

    // A character beyond ASCII, or a control character: proven only when XML 1.0 allows it.
    void Character() {
        const auto byte = static_cast<unsigned char>(*p_);
        if (byte < 0x80) {
            if (byte != '\t' && byte != '\n' && byte != '\r') {
                GiveUp();
            }
            ++p_;
            return;
        }
        std::size_t i = static_cast<std::size_t>(p_ - text_.data());
        const std::optional<std::uint32_t> c = DecodeUtf8(text_, i);
        if (!c || !IsXmlChar(*c)) {
            GiveUp();
        }
        p_ = text_.data() + i;
    }

    // One of XML's five entity references or a reference to a character XML 1.0 allows.
    void Reference() {
        const char* at = p_ + 1;
        if (at < end_ && *at == '#') {
            ++at;
            const bool hex = at < end_ && *at == 'x';
            at += hex ? 1 : 0;
            std::uint32_t value = 0;
            const char* const digits = at;
            for (; at < end_ && *at != ';'; ++at) {
                int digit = -1;
                if (*at >= '0' && *at <= '9') {
                    digit = *at - '0';
                } else if (hex && *at >= 'a' && *at <= 'f') {
                    digit = *at - 'a' + 10;
                } else if (hex && *at >= 'A' && *at <= 'F') {
                    digit = *at - 'A' + 10;
                }
                // Longer references are the whole reader's to judge: it reads no further.
                if (digit < 0 || at - digits >= 8) {
                    GiveUp();
                }
                value = value * (hex ? 16 : 10) + static_cast<std::uint32_t>(digit);
            }
            if (at == digits || at == end_ || !IsXmlChar(value)) {
                GiveUp();
            }
            p_ = at + 1;
            return;
        }
        for (const std::string_view entity : {"lt;", "gt;", "amp;", "apos;", "quot;"}) {
            if (static_cast<std::size_t>(end_ - at) >= entity.size() &&
                std::memcmp(at, entity.data(), entity.size()) == 0) {
                p_ = at + entity.size();
                return;
            }
        }
        GiveUp();
    }

    // "<?xml version="1.x" ...?>" with plain values, each attribute once.
    void Declaration() {
        p_ += 5;
        std::array<std::string_view, 3> names;
        std::size_t count = 0;
        while (true) {
            const char* const before = p_;
            SkipBlanks();
            if (At("?>")) {
                p_ += 2;
                break;
            }
            if (p_ == before || count == names.size()) {
                GiveUp();
            }
            const char* const name = p_;
            p_ = SkipName(p_);
            names[count] = std::string_view(name, static_cast<std::size_t>(p_ - name));
            for (std::size_t i = 0; i < count; ++i) {
                if (names[i] == names[count]) {
                    GiveUp();
                }
            }
            SkipBlanks();
            if (Peek() != '=') {
                GiveUp();
            }
            ++p_;
            SkipBlanks();
            const char quote = Peek();
            if (quote != '"' && quote != '\'') {
                GiveUp();
            }
            const char* const value = ++p_;
            SkipWhile([](char c) { return Is(c, kNameByte); });
            const std::string_view text(value, static_cast<std::size_t>(p_ - value));
            if (Peek() != quote ||
                (count == 0 &&
                 (names[0] != "version" || text.size() < 3 || text.substr(0, 2) != "1." ||
                  text.find_first_not_of("0123456789", 2) != std::string_view::npos))) {
                GiveUp();
            }
            ++p_;
            ++count;
        }
    }

    // Blanks and comments, before and after the document element.
    void Misc() {
        while (true) {
            SkipBlanks();
            if (!At("<!--")) {
                return;
            }
            Comment();
        }
    }

    void Comment() {
        p_ += 4;
        while (p_ < end_) {
            if (*p_ == '-' && Peek(1) == '-') {
                if (Peek(2) != '>') {
                    GiveUp();
                }
                p_ += 3;
                return;
            }
            if (Is(*p_, kText) || *p_ == '<' || *p_ == '&' || *p_ == ']') {
                ++p_;
            } else {
                Character();
            }
        }
        GiveUp();
    }

    void CData() {
        p_ += 9;
        while (p_ < end_) {
            if (*p_ == ']' && At("]]>")) {
                p_ += 3;
                return;
            }
            if (Is(*p_, kText) || *p_ == '<' || *p_ == '&' || *p_ == ']') {
                ++p_;
            } else {
                Character();
            }
        }
        GiveUp();
    }

    // The document element and everything in it, without recursion: documents nest deeper
    // than any call stack.
    void Content() {
        if (Peek() != '<') {
            GiveUp();
        }
        StartTag();
        while (!open_.empty()) {
            SkipWhile([](char c) { return Is(c, kText); });
            if (p_ == end_) {
                GiveUp();
            }
            switch (*p_) {
                case '<':
                    switch (Peek(1)) {
                        case '/':
                            EndTag();
                            break;
                        case '!':
                            if (At("<!--")) {
                                Comment();
                            } else if (At("<![CDATA[")) {
                                CData();
                            } else {
                                GiveUp();
                            }
                            break;
                        case '?':
                            GiveUp();
                        default:
                            StartTag();
                            break;
                    }
                    break;
                case '&':
                    Reference();
                    break;
                case ']':
                    if (At("]]>")) {
                        GiveUp();
                    }
                    ++p_;
                    break;
                case '\n':
                    // A line end and the next line's indent, in one step.
                    ++p_;
                    SkipWhile([](char c) { return c == ' '; });
                    break;
                default:
                    Character();
                    break;
            }
        }
    }

    void StartTag() {
        const char* const tag = p_;
        const char* const name = tag + 1;
        p_ = SkipName(name);
        const std::size_t length = static_cast<std::size_t>(p_ - name);
        // A few attributes are compared pair by pair; a tag with more is the whole reader's.
        std::array<std::string_view, 8> attributes;
        std::size_t count = 0;
        while (true) {
            const char c = Peek();
            if (c == '>') {
                ++p_;
                if (open_.size() == 1) {
                    childStart_ = tag;
                }
                open_.push_back(Open{name, length});
                return;
            }
            if (c == '/') {
                if (Peek(1) != '>') {
                    GiveUp();
                }
                p_ += 2;
                if (open_.size() == 1) {
                    spans_.push_back(Span(tag));
                }
                return;
            }
            if (!IsBlank(c)) {
                GiveUp();
            }
            SkipBlanks();
            if (Peek() == '>' || Peek() == '/') {
                continue;
            }
            if (count == attributes.size()) {
                GiveUp();
            }
            const char* const attribute = p_;
            p_ = SkipName(p_);
            attributes[count] =
                std::string_view(attribute, static_cast<std::size_t>(p_ - attribute));
            for (std::size_t i = 0; i < count; ++i) {
                if (attributes[i] == attributes[count]) {
                    GiveUp();
                }
            }
            ++count;
            SkipBlanks();
            if (Peek() != '=') {
                GiveUp();
            }
            ++p_;
            SkipBlanks();
            Value();
            // Attributes are set apart by blanks.
            if (!IsBlank(Peek()) && Peek() != '>' && Peek() != '/') {
                GiveUp();
            }
        }
    }

    void Value() {
        const char quote = Peek();
        if (quote != '"' && quote != '\'') {
            GiveUp();
        }
        ++p_;
        while (true) {
            SkipWhile([](char c) { return Is(c, kValue); });
            if (p_ == end_) {
                GiveUp();
            }
            const char c = *p_;
            if (c == quote) {
                ++p_;
                return;
            }
            if (c == '"' || c == '\'') {
                ++p_;
            } else if (c == '&') {
                Reference();
            } else if (c == '<') {
                GiveUp();
            } else {
                Character();
            }
        }
    }

    void EndTag() {
        const Open open = open_.back();
        const char* const name = p_ + 2;
        if (static_cast<std::size_t>(end_ - name) <= open.length ||
            std::memcmp(name, open.name, open.length) != 0 || Is(name[open.length], kNameByte)) {
            GiveUp();
        }
        p_ = name + open.length;
        SkipBlanks();
        if (Peek() != '>') {
            GiveUp();
        }
        ++p_;
        open_.pop_back();
        if (open_.size() == 1) {
            spans_.push_back(Span(childStart_));
        }
    }

    ElementSpan Span(const char* start) const {
        return ElementSpan{static_cast<std::size_t>(start - text_.data()),
                           static_cast<std::size_t>(p_ - text_.data())};
    }

    std::string_view text_;
    const char* p_;
    const char* const end_;
    std::vector<Open> open_;
    std::vector<ElementSpan> spans_;
    const char* childStart_ = nullptr;
};

}  // namespace

std::optional<std::vector<ElementSpan>> ScanChildElements(std::string_view text) {
    try {
        return Scanner(text).Run();
    } catch (const Unproven&) {
        return std::nullopt;
    }
}

}  // namespace zerbin::xml::detail
