// MMain: the helpers and the two process-wide values that the whole component shares. Token
// picking in delimited texts, the hexadecimal digits of the configuration data block, the
// reference code of an output, building XML nodes, and the number text rules: how a text is
// read as a number, how numbers are rounded and written, and where the decimal separator is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <pugixml.hpp>

namespace zerbin {

// ---- Process-wide values ------------------------------------------------------------------

// The SNVT dictionary the host handed over last; nullptr until the host has set one.
std::shared_ptr<const pugi::xml_document> SnvtDictionary();
// The installed dictionary's address, for a caller that only asks whether it changed.
const pugi::xml_document* SnvtDictionaryAddress();
// Replaces the dictionary for every object of the process.
void SetSnvtDictionary(std::shared_ptr<const pugi::xml_document> dictionary);

// "." or ",": the separator of number texts. "." until the first detection.
const std::string& DecimalSeparator();
// Writes 0.5 under the C library's LC_NUMERIC in force; "," when that text holds a comma.
void DetectDecimalSeparator();

// ---- Tokens, hexadecimal digits, reference codes -----------------------------------------

// Token 0 stands before the first separator, token N after the Nth. Empty for a miss, for a
// negative index, and for index 0 of a text without separator (not the whole text).
std::string NthToken(const std::string& text, int32_t index, const std::string& separator);

// Two upper-case digits of the low byte. A value above 255 is first clamped to 255 in the
// caller's variable; a negative one is not clamped (-1 gives "FF").
std::string HexByte(int32_t& value);
// Four digits, most significant byte first. A value above 65535 is first clamped to 65535 in
// the caller's variable. Negative values keep their sign in both parts (-300 gives "FFD4").
std::string HexWord(int32_t& value);
// The same on a copy, for callers that have no variable to clamp.
std::string HexByteOf(int32_t value);
std::string HexWordOf(int32_t value);

// second * 256 + 16384 + first. Throws OverflowError when a step leaves the int32 range.
int32_t NvReferenceCode(int32_t first, int32_t second);

// ---- XML -----------------------------------------------------------------------------------

// The text given to AppendElement when the element must have no text node at all.
inline constexpr const char* kNoTextField = "NoTextField";

// Appends an element as the last child of parent and, unless text is exactly kNoTextField, a
// text node holding text (an empty text gives an empty text node). Returns the element.
// Throws Error for an invalid name or an empty parent; nothing is appended then.
pugi::xml_node AppendElement(pugi::xml_document& doc, pugi::xml_node parent,
                             const std::string& name, const std::string& text);
// Appends an element with one attribute as the last child of parent and returns it. Throws
// Error when either name is invalid or parent is empty; nothing is appended then.
pugi::xml_node AppendAttributeElement(pugi::xml_document& doc, pugi::xml_node parent,
                                      const std::string& name, const std::string& attrName,
                                      const std::string& attrValue);

// "1" or "0".
std::string BoolDigit(bool flag);

// ---- Number texts --------------------------------------------------------------------------

// Puts DecimalSeparator in the place of the first "." or, failing that, of the first ",".
// Only that one character changes: "1.234,5" stays as it is under ".".
std::string NormalizeDecimal(const std::string& text);
// The same rule, applied to number texts on their way out to the user or the host.
std::string DecimalToDisplay(const std::string& text);

// The value of the longest leading part of text that reads as a number; 0 when there is none.
// Blanks, tabs and line feeds are skipped; "." is the only decimal point and "," ends the
// number; exponents are E or D; "&H" and "&O" introduce hexadecimal and octal digits. Never
// throws: a value beyond the double range gives an infinity.
double LeadingNumber(const std::string& text);

// The number at the start of text, after blanks: a sign, digits with at most one
// DecimalSeparator, an exponent with its digits. end is set past it; nullopt when no digit
// starts it. Beyond the double's range the value is an infinity or zero.
std::optional<double> ReadLocaleNumber(std::string_view text, std::size_t& end);
// The whole text (blanks around it allowed) as a number with DecimalSeparator as its decimal
// point. Throws Error for anything else, the empty text included, and OverflowError beyond
// the range of float.
float LocaleNumber(const std::string& text);
// The same grammar read as a double, without the single's range: for canvas positions.
// Beyond the double's range the value is an infinity.
double LocaleDouble(const std::string& text);

// ---- Rounding and narrowing --------------------------------------------------------------
// Rounding is half to even everywhere: 2.5 gives 2, 3.5 gives 4, -2.5 gives -2. A result
// outside the target, NaN and the infinities throw OverflowError.

double RoundHalfEven(double value);
int32_t ToInt32(double value);
int16_t ToInt16(double value);
uint8_t ToByte(double value);
int16_t NarrowToInt16(int32_t value);

// ---- Writing numbers -----------------------------------------------------------------------

// At most 15 significant digits in general form with DecimalSeparator: "80", "120.5", "0.1";
// exponent form where the general form asks for it: "1E+20", "1E-05".
std::string FormatDouble(double value);
// As FormatDouble where its 15 digits read back as value; otherwise the shortest text that
// does ("1.7976931348623157E+308"), so that a stored number comes back unchanged.
std::string FormatDoubleExact(double value);
// prefix + "\" + name, the key of a member under its collection's, in one allocation.
std::string JoinKey(const std::string& prefix, const std::string& name);
// The value rounded to 7 significant digits, then written as FormatDouble writes it:
// 12345678 gives "12345680".
std::string FormatSingle(float value);
// The number FormatSingle writes, for a finite value: rounded to 7 significant digits.
double SevenDigits(float value);

// ---- Text ----------------------------------------------------------------------------------

// An ASCII letter upper-cased; any other byte as it is.
// Mixes value into seed, for a hash of several parts.
inline std::size_t HashCombine(std::size_t seed, std::size_t value) {
    return seed ^ (value + 0x9E3779B97F4A7C15ull + (seed << 6) + (seed >> 2));
}

// Inline: every comparison of names without case goes through it, a call per character.
inline char AsciiUpper(char c) {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}
// ASCII letters upper-cased; every other byte left as it is.
std::string UpperCase(std::string text);
// Equal when equal after UpperCase. Inline: element names are matched with it in every loop
// over a document.
inline bool EqualsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (AsciiUpper(a[i]) != AsciiUpper(b[i])) {
            return false;
        }
    }
    return true;
}
// Without the blanks at both ends; tabs and other white space stay.
std::string Trim(const std::string& text);
// Code points of a UTF-8 text, each malformed sequence counting as one (CharacterCount of
// Utf8.h, capped at the int32 range).
int32_t CharCount(const std::string& utf8);

}  // namespace zerbin
