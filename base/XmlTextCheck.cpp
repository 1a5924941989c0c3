// The pass over a document's text that finds what pugixml lets through but XML 1.0 does not,
// before pugixml parses it: bytes that are not UTF-8, characters XML does not allow, a bare
// "&", entity references other than XML's five, entity declarations, "<" in an attribute
// value, "]]>" in text, "--" in a comment, and text outside the document element.
#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "base/Xml.h"
#include "base/XmlChars.h"

namespace zerbin::xml::detail {
namespace {

// Thrown inside the pass only, where nesting makes returning a fault tedious.
struct Refused {
    TextFault fault;
};

[[noreturn]] void Refuse(std::string reason, std::ptrdiff_t offset) {
    throw Refused{TextFault{std::move(reason), static_cast<std::size_t>(offset)}};
}

// Eight bytes at a time: a byte's high bit in a mask marks where a plain run stops. The
// subtractions borrow only out of a byte that stops the run, so a mark can be false only
// above a true one, and the lowest mark is always exact.
using Word = std::uint64_t;
constexpr Word kOnes = 0x0101010101010101;
constexpr Word kHighBits = 0x8080808080808080;

// Bytes below 0x20 and from 0x80 on.
constexpr Word Unprintable(Word w) {
    return (w - kOnes * 0x20) | w;
}

// Bytes equal to c (c below 0x80), and bytes from 0x80 on, which Unprintable marks anyway.
constexpr Word Equal(Word w, unsigned char c) {
    return (w ^ (kOnes * c)) - kOnes;
}

// Tab, line feed and carriage return are marked with the other control characters: testing
// for them too would cost more than stepping over the one line feed that starts an indent.
constexpr Word TextStops(Word w) {
    return (Unprintable(w) | Equal(w, '<') | Equal(w, '&') | Equal(w, ']')) & kHighBits;
}

constexpr Word TagStops(Word w) {
    return (Unprintable(w) | Equal(w, '"') | Equal(w, '\'') | Equal(w, '>')) & kHighBits;
}

// The sums below are taken on bytes below 0x80, so that none carries into its neighbour and
// every byte's mark is exact.
constexpr Word AtLeast(Word low, unsigned char c) {
    return low + kOnes * (0x80 - c);
}

// All but ASCII letters, which most names are made of; the other bytes of a name are taken
// one by one.
constexpr Word LetterStops(Word w) {
    const Word folded = (w & ~kHighBits) | (kOnes * 0x20);  // 'A' to 'Z' onto 'a' to 'z' only
    return (~AtLeast(folded, 'a') | AtLeast(folded, 'z' + 1) | w) & kHighBits;
}

bool IsBlank(char c) {
    return c == '\t' || c == '\n' || c == '\r';
}

class TextChecker {
public:
    explicit TextChecker(std::string_view text) : text_(text) {}

    // Whether the text alone shows that the tree below the top holds nothing to refuse: every
    // start tag's name is a plain ASCII XML name, no tag carries more than one attribute and
    // that one's name is plain too, and no processing instruction stands anywhere but at the
    // very start. Most documents are such, and walking their trees again was a third of a read.
    bool TreeIsPlain() const { return plainTree_; }

    void Run() {
        while (i_ < text_.size()) {
            RunPlain();
            if (i_ >= text_.size()) {
                break;
            }
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

    // Text inside the document element and tags outside quotes, with the steps between them,
    // are most of a document: this loop takes them a tag and the text after it at a time,
    // without the general step's dispatch, and returns, in the state the general step would
    // have reached, at the first byte it leaves to that step.
    void RunPlain() {
        bool inTag = state_ == State::Tag && quote_ == 0;
        if (!inTag && !(state_ == State::Content && elements_ > 0)) {
            return;
        }
        const char* const data = text_.data();
        const std::size_t size = text_.size();
        std::size_t i = i_;
        bool endTag = endTag_;
        std::ptrdiff_t elements = elements_;
        while (i < size) {
            if (inTag) {
                if (data[i] != '>') {
                    i = Skip<TagStops>(data, size, i, kPlain.tag);
                    if (i >= size) {
                        break;
                    }
                    if (data[i] != '>') {
                        if (!IsBlank(data[i])) {
                            break;
                        }
                        ++i;
                        continue;
                    }
                }
                if (endTag) {
                    --elements;
                } else if (i == 0 || data[i - 1] != '/') {
                    ++elements;
                }
                ++i;
                inTag = false;
                if (elements <= 0) {
                    break;  // text outside the document element
                }
                if (i < size && data[i] == '\n') {
                    // A line end and an indent, then most often the next tag: the general
                    // scan would stop at the line end and then take a word for the spaces.
                    i = SkipSpaces(data, size, i + 1);
                }
                if (i >= size) {
                    break;
                }
            }
            if (data[i] != '<') {
                i = Skip<TextStops>(data, size, i, kPlain.content);
                if (i >= size) {
                    break;
                }
                if (data[i] != '<') {
                    if (!IsBlank(data[i])) {
                        break;
                    }
                    ++i;
                    continue;
                }
            }
            const char next = i + 1 < size ? data[i + 1] : '\0';
            if (next == '/') {
                endTag = true;
                i = SkipName(data, size, i + 2);  // name bytes are plain in a tag
            } else if (next != '!' && next != '?') {
                endTag = false;
                i = NotePlainName(i + 1);
            } else {
                break;
            }
            inTag = true;
        }
        i_ = i;
        endTag_ = endTag;
        elements_ = elements;
        if (inTag) {
            state_ = State::Tag;
            quote_ = 0;
        } else {
            state_ = State::Content;
        }
    }

    // The first byte from i on that is no byte of a plain ASCII name.
    static std::size_t SkipName(const char* data, std::size_t size, std::size_t i) {
        while (true) {
            i = Skip<LetterStops>(data, size, i, kName.inside);
            if (i >= size || !kName.inside[static_cast<unsigned char>(data[i])]) {
                return i;
            }
            ++i;
        }
    }

    // The first byte from i on that is not a space.
    static std::size_t SkipSpaces(const char* data, std::size_t size, std::size_t i) {
        if constexpr (std::endian::native == std::endian::little) {
            for (; size - i >= sizeof(Word); i += sizeof(Word)) {
                Word word;
                std::memcpy(&word, data + i, sizeof word);
                if (const Word others = word ^ (kOnes * ' ')) {  // exact: no sums
                    return i + static_cast<unsigned>(std::countr_zero(others)) / 8;
                }
            }
        }
        while (i < size && data[i] == ' ') {
            ++i;
        }
        return i;
    }

    // The first byte from i on that Stops marks, a word at a time while a whole word is left,
    // then the first byte that the table does not pass. Stops marks every byte that the table
    // does not pass, and may mark a few more (blanks, a name's other bytes) that the caller
    // steps over itself. The word's lowest byte must come first in memory, so a big-endian
    // machine takes the bytes one by one.
    template <Word (*Stops)(Word)>
    static std::size_t Skip(const char* data, std::size_t size, std::size_t i,
                            const std::array<bool, 256>& plain) {
        if constexpr (std::endian::native == std::endian::little) {
            for (; size - i >= sizeof(Word); i += sizeof(Word)) {
                Word word;
                std::memcpy(&word, data + i, sizeof word);
                if (const Word stops = Stops(word)) {
                    return i + static_cast<unsigned>(std::countr_zero(stops)) / 8;
                }
            }
        }
        while (i < size && plain[static_cast<unsigned char>(data[i])]) {
            ++i;
        }
        return i;
    }

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
                NotePlainName(i_ + 1);  // the tag's own step skips the name again
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
    // Returns the end of the name when it is plain, for the tag's scan to go on from there,
    // and start otherwise.
    std::size_t NotePlainName(std::size_t start) {
        if (!plainTree_) {
            return start;
        }
        const std::size_t size = text_.size();
        if (start >= size || !kName.start[static_cast<unsigned char>(text_[start])]) {
            plainTree_ = false;
            return start;
        }
        const std::size_t j = SkipName(text_.data(), size, start + 1);
        const char end = j < size ? text_[j] : '\0';
        plainTree_ =
            end == '>' || end == ' ' || end == '/' || end == '\t' || end == '\n' || end == '\r';
        return plainTree_ ? j : start;
    }

    // Whether the value whose quote opens at q belongs to the first attribute of its tag and
    // that attribute's name is a plain ASCII name: `<name S attribute S? = S? "`. A tag of one
    // such attribute leaves nothing to the walk, no name to check, none given twice.
    bool OnlyAttributeSoFar(std::size_t q) const {
        std::size_t j = q;
        const auto skipBlanksBack = [&] {
            while (j > 0 && (text_[j - 1] == ' ' || IsBlank(text_[j - 1]))) {
                --j;
            }
        };
        const auto skipNameBack = [&] {
            while (j > 0 && kName.inside[static_cast<unsigned char>(text_[j - 1])]) {
                --j;
            }
        };
        skipBlanksBack();
        if (j == 0 || text_[j - 1] != '=') {
            return false;
        }
        --j;
        skipBlanksBack();
        const std::size_t nameEnd = j;
        skipNameBack();
        if (j == nameEnd || !kName.start[static_cast<unsigned char>(text_[j])]) {
            return false;
        }
        const std::size_t nameStart = j;
        skipBlanksBack();
        const std::size_t elementEnd = j;
        skipNameBack();
        return j < nameStart && j < elementEnd && j > 0 && text_[j - 1] == '<';
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
                plainTree_ = plainTree_ && !endTag_ && OnlyAttributeSoFar(i_);
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
        // Leading zeros are allowed in any number; a value past the last code point stays
        // there, so that a long reference cannot wrap round to an allowed one.
        uint32_t value = 0;
        bool valid = !digits.empty();
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
            value = std::min<uint32_t>(
                value * (hex ? 16 : 10) + static_cast<uint32_t>(std::max(digit, 0)), 0x110000);
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

}  // namespace

TextCheck CheckDocumentText(std::string_view text) {
    TextChecker checker(text);
    try {
        checker.Run();
    } catch (Refused& refused) {
        return TextCheck{std::move(refused.fault), false};
    }
    return TextCheck{std::nullopt, checker.TreeIsPlain()};
}

}  // namespace zerbin::xml::detail
