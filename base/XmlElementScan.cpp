// One pass over a document's text that proves it well-formed and within what the strict reader
// accepts, and finds where each element under the document element starts and ends, so that
// those elements can be parsed one at a time. It proves only the plain shape most documents
// have (ASCII names, few attributes, comments and CDATA sections, XML's five entities and
// character references); anything else, good or bad, it leaves to the whole-document reader,
// which accepts or refuses it and names the fault. Taking nothing it cannot prove keeps the
// two readers' answers the same, where sharing one checker would not.
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

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
    kText = 4,      // stands for itself in text: printable ASCII but '<', '&' and ']'
    kValue = 8,     // the same in an attribute value, quotes aside: all but '<' and '&'
    kContent = 16,  // kText and the blanks but the space, which XML allows anywhere in text
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
            if (bits & kText) {
                bits |= kContent;
            }
            of[static_cast<std::size_t>(byte)] = bits;
        }
        for (const char blank : {'\t', '\n', '\r'}) {
            of[static_cast<std::size_t>(blank)] = kContent;
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

    // The NUL after the text, which no step accepts, stops the runs without a bound check;
    // the general steps look ahead through Peek, which takes anything past it as a NUL.
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
        Section([&] {
            if (*p_ != '-' || Peek(1) != '-') {
                return false;
            }
            if (Peek(2) != '>') {
                GiveUp();  // "--" ends nothing but the comment
            }
            p_ += 3;
            return true;
        });
    }

    void CData() {
        p_ += 9;
        Section([&] {
            if (*p_ != ']' || !At("]]>")) {
                return false;
            }
            p_ += 3;
            return true;
        });
    }

    // The characters of a comment or CDATA section up to where closed() finds and passes its
    // end; a section the text does not close is not proven.
    template <class Closed>
    void Section(Closed closed) {
        while (p_ < end_) {
            if (closed()) {
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
    // than any call stack. Most of a document is names, short texts and indents, so this loop
    // and the tags' own steps work through a local pointer and leave the rest to the general
    // steps. The NUL after the text stops every run.
    void Content() {
        if (Peek() != '<') {
            GiveUp();
        }
        const char* p = StartTag(p_);
        while (!open_.empty()) {
            if (*p != '<') {
                p = SkipContent<true>(p);
            }
            if (*p == '<') {
                if (p[1] == '/') {
                    p = EndTag(p);
                } else if (p[1] != '!' && p[1] != '?') {
                    p = StartTag(p);
                } else {
                    p_ = p;
                    Markup();
                    p = p_;
                }
            } else {
                p_ = p;
                TextStop();
                p = p_;
            }
        }
        p_ = p;
    }

    void Markup() {
        if (At("<!--")) {
            Comment();
        } else if (At("<![CDATA[")) {
            CData();
        } else {
            GiveUp();  // a processing instruction or a declaration inside the element
        }
    }

    void TextStop() {
        if (p_ == end_) {
            GiveUp();
        }
        if (*p_ == '&') {
            Reference();
        } else if (*p_ == ']') {
            if (At("]]>")) {
                GiveUp();
            }
            ++p_;
        } else {
            Character();
        }
    }

    // From the "<" of a start tag to the byte after its ">".
    const char* StartTag(const char* tag) {
        const char* const name = tag + 1;
        if (!Is(*name, kNameStart)) {
            GiveUp();
        }
        const char* p = SkipNameBytes(name + 1);
        const auto length = static_cast<std::size_t>(p - name);
        if (*p == '>') {
            // Most elements hold a text or nothing: the end tag right after the text closes
            // the element without a step through the stack.
            const char* const end = p[1] == '<' ? p + 1 : SkipContent<false>(p + 1);
            if (end[0] == '<' && end[1] == '/' &&
                static_cast<std::size_t>(end_ - end) > length + 2 &&
                SameName(end + 2, name, length) && end[2 + length] == '>') {
                if (open_.size() == 1) {
                    spans_.push_back(Span(tag, end + 3 + length));
                }
                return end + 3 + length;
            }
        }
        if (*p != '>') {
            p_ = p;
            if (!TagRest()) {
                if (open_.size() == 1) {
                    spans_.push_back(Span(tag, p_));
                }
                return p_;  // an empty element
            }
            p = p_;
        } else {
            ++p;
        }
        if (open_.size() == 1) {
            childStart_ = tag;
        }
        open_.push_back(Open{name, length});
        return p;
    }

    // The attributes of a start tag and its end, from the byte after its name; whether the
    // element has content (">") rather than none ("/>").
    // Out of line: most tags have no attribute, and its room on the stack would cost every
    // start tag. (GCC and Clang, as everything here.)
    [[gnu::noinline]] bool TagRest() {
        // A few attributes are compared pair by pair; a tag with more is the whole reader's.
        constexpr std::size_t kFew = 8;
        std::array<const char*, kFew> names;
        std::array<std::size_t, kFew> lengths;
        std::size_t count = 0;
        const char* p = p_;
        while (true) {
            if (*p == '>') {
                p_ = p + 1;
                return true;
            }
            if (*p == '/') {
                if (p[1] != '>') {
                    GiveUp();
                }
                p_ = p + 2;
                return false;
            }
            if (!IsBlank(*p)) {
                GiveUp();  // attributes are set apart by blanks
            }
            do {
                ++p;
            } while (IsBlank(*p));
            if (*p == '>' || *p == '/') {
                continue;
            }
            if (count == kFew || !Is(*p, kNameStart)) {
                GiveUp();
            }
            names[count] = p;
            p = SkipNameBytes(p + 1);
            lengths[count] = static_cast<std::size_t>(p - names[count]);
            for (std::size_t i = 0; i < count; ++i) {
                if (lengths[i] == lengths[count] &&
                    SameBytes(names[i], names[count], lengths[count])) {
                    GiveUp();
                }
            }
            ++count;
            while (IsBlank(*p)) {
                ++p;
            }
            if (*p != '=') {
                GiveUp();
            }
            do {
                ++p;
            } while (IsBlank(*p));
            p_ = p;
            Value();
            p = p_;
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

    // From the "</" of an end tag to the byte after its ">".
    const char* EndTag(const char* tag) {
        const Open open = open_.back();
        const char* const name = tag + 2;
        if (static_cast<std::size_t>(end_ - name) <= open.length ||
            !SameName(name, open.name, open.length)) {
            GiveUp();
        }
        const char* p = name + open.length;
        while (IsBlank(*p)) {
            ++p;
        }
        if (*p != '>') {
            GiveUp();
        }
        ++p;
        open_.pop_back();
        if (open_.size() == 1) {
            spans_.push_back(Span(childStart_, p));
        }
        return p;
    }

    // Sixteen bytes at a time where sixteen are left; the loads stay inside the text, as the
    // one pass must under the sanitizers. The NUL after the text stops the runs of the tail.
    // withBlanks: whether tab, line feed and carriage return pass too, as between tags; a
    // text between a start and an end tag seldom holds them, and testing costs a third more.
    template <bool withBlanks>
    const char* SkipContent(const char* p) const {
#if defined(__SSE2__)
        while (end_ - p >= 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
            // Signed, a byte from 0x80 on is below 0x20 too: taken one by one, as UTF-8.
            __m128i stops = _mm_cmplt_epi8(v, _mm_set1_epi8(0x20));
            if constexpr (withBlanks) {
                const __m128i blank =
                    _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8('\n')),
                                              _mm_cmpeq_epi8(v, _mm_set1_epi8('\t'))),
                                 _mm_cmpeq_epi8(v, _mm_set1_epi8('\r')));
                stops = _mm_andnot_si128(blank, stops);
            }
            const __m128i markup = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8('<')),
                                                             _mm_cmpeq_epi8(v, _mm_set1_epi8('&'))),
                                                _mm_cmpeq_epi8(v, _mm_set1_epi8(']')));
            const auto found =
                static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(stops, markup)));
            if (found != 0) {
                return p + std::countr_zero(found);
            }
            p += 16;
        }
#endif
        while (Is(*p, withBlanks ? kContent : kText)) {
            ++p;
        }
        return p;
    }

    const char* SkipNameBytes(const char* p) const {
#if defined(__SSE2__)
        while (end_ - p >= 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
            const auto within = [](__m128i bytes, char low, char high) {
                return _mm_and_si128(
                    _mm_cmpgt_epi8(bytes, _mm_set1_epi8(static_cast<char>(low - 1))),
                    _mm_cmplt_epi8(bytes, _mm_set1_epi8(static_cast<char>(high + 1))));
            };
            // Setting 0x20 takes 'A' to 'Z' onto 'a' to 'z', and nothing else there; '-' to
            // ':' is one range but for '/'.
            const __m128i letter = within(_mm_or_si128(v, _mm_set1_epi8(0x20)), 'a', 'z');
            const __m128i other =
                _mm_andnot_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8('/')), within(v, '-', ':'));
            const __m128i name =
                _mm_or_si128(_mm_or_si128(letter, other), _mm_cmpeq_epi8(v, _mm_set1_epi8('_')));
            const auto stops = ~static_cast<unsigned>(_mm_movemask_epi8(name)) & 0xFFFFu;
            if (stops != 0) {
                return p + std::countr_zero(stops);
            }
            p += 16;
        }
#endif
        while (Is(*p, kNameByte)) {
            ++p;
        }
        return p;
    }

    // Whether the name at a repeats the one at b, which stands before it in the text.
    bool SameName(const char* a, const char* b, std::size_t length) const {
#if defined(__SSE2__)
        if (length < 16 && end_ - a >= 16) {
            const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a));
            const __m128i y = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b));
            const auto equal = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(x, y)));
            const unsigned wanted = (1u << length) - 1;
            return (equal & wanted) == wanted;
        }
#endif
        return SameBytes(a, b, length);
    }

    // Names are short: a call to memcmp would cost more than the compare.
    static bool SameBytes(const char* a, const char* b, std::size_t length) {
        std::size_t i = 0;
        for (; i + sizeof(std::uint64_t) <= length; i += sizeof(std::uint64_t)) {
            std::uint64_t x;
            std::uint64_t y;
            std::memcpy(&x, a + i, sizeof x);
            std::memcpy(&y, b + i, sizeof y);
            if (x != y) {
                return false;
            }
        }
        for (; i < length; ++i) {
            if (a[i] != b[i]) {
                return false;
            }
        }
        return true;
    }

    ElementSpan Span(const char* start, const char* end) const {
        return ElementSpan{static_cast<std::size_t>(start - text_.data()),
                           static_cast<std::size_t>(end - text_.data())};
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
