// The number text rules of MMain: reading a text as a number, rounding and narrowing, and
// writing numbers back as text.
#include "base/MMain.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string_view>
#include <system_error>

#include "interfaces/Error.h"

namespace zerbin {
namespace {

bool IsAsciiDigit(char c) {
    return c >= '0' && c <= '9';
}
std::string ReplaceDecimalPoint(const std::string& text) {
    std::size_t at = text.find('.');
    if (at == std::string::npos) {
        at = text.find(',');
    }
    if (at == std::string::npos) {
        return text;
    }
    std::string result = text;
    result.replace(at, 1, DecimalSeparator());
    return result;
}

// Value of "mantissa digits, optional point, exponent" built by the number readers, which
// only ever hand over a well-formed C-locale text. Out-of-range texts saturate: from_chars
// leaves its argument untouched then, so the direction is read from the text itself.
double ParseCText(const std::string& ctext) {
    double value = 0.0;
    const char* first = ctext.data();
    const char* last = first + ctext.size();
    auto [ptr, ec] = std::from_chars(first, last, value, std::chars_format::general);
    if (ec == std::errc::result_out_of_range) {
        // Decimal exponent of the leading digit: integer digits after leading zeros, or minus
        // the zeros behind the point, plus the written exponent.
        long magnitude = 0;
        std::size_t i = 0;
        bool negative = false;
        if (i < ctext.size() && ctext[i] == '-') {
            negative = true;
            ++i;
        }
        while (i < ctext.size() && ctext[i] == '0') {
            ++i;
        }
        while (i < ctext.size() && IsAsciiDigit(ctext[i])) {
            ++magnitude;
            ++i;
        }
        if (magnitude == 0 && i < ctext.size() && ctext[i] == '.') {
            ++i;
            while (i < ctext.size() && ctext[i] == '0') {
                --magnitude;
                ++i;
            }
        }
        const std::size_t e = ctext.find('e');
        if (e != std::string::npos) {
            long exponent = 0;
            const char* digits = ctext.data() + e + 1 + (ctext[e + 1] == '+' ? 1 : 0);
            if (std::from_chars(digits, last, exponent).ec == std::errc::result_out_of_range) {
                // An exponent beyond a long still says which way the number went.
                exponent = *digits == '-' ? -(std::numeric_limits<long>::max() / 2)
                                          : std::numeric_limits<long>::max() / 2;
            }
            magnitude += exponent;
        }
        const double huge = std::numeric_limits<double>::infinity();
        value = magnitude > 0 ? huge : 0.0;
        return negative ? -value : value;
    }
    return value;
}

// Digits of a "&H" or "&O" number; stops at the first character that is not one.
double ReadRadixDigits(const std::string& text, std::size_t i, int radix) {
    double value = 0.0;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (c == ' ' || c == '\t' || c == '\n') {
            continue;
        }
        int digit = -1;
        if (IsAsciiDigit(c)) {
            digit = c - '0';
        } else if (radix == 16 && AsciiUpper(c) >= 'A' && AsciiUpper(c) <= 'F') {
            digit = AsciiUpper(c) - 'A' + 10;
        }
        if (digit < 0 || digit >= radix) {
            break;
        }
        value = value * radix + digit;
    }
    return value;
}

template <class Int>
Int RoundToRange(double value) {
    const double rounded = RoundHalfEven(value);
    // NaN fails both comparisons and lands in the throw.
    if (!(rounded >= static_cast<double>(std::numeric_limits<Int>::min()) &&
          rounded <= static_cast<double>(std::numeric_limits<Int>::max()))) {
        throw OverflowError();
    }
    return static_cast<Int>(rounded);
}

// Appends the sign and the digits of the number at text[i] to ctext in C form, the first
// point taken as its decimal point and characters for which skip holds passed over; i ends
// past them. True when a digit was read.
template <class Skip>
bool GatherMantissa(std::string_view text, std::size_t& i, char point, Skip skip,
                    std::string& ctext) {
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        if (text[i] == '-') {
            ctext += '-';
        }
        ++i;
    }
    bool digits = false;
    bool pointSeen = false;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (skip(c)) {
            continue;
        }
        if (IsAsciiDigit(c)) {
            digits = true;
            ctext += c;
        } else if (c == point && !pointSeen) {
            pointSeen = true;
            ctext += '.';
        } else {
            break;
        }
    }
    return digits;
}

}  // namespace

// ---- Number texts --------------------------------------------------------------------------

std::string NormalizeDecimal(const std::string& text) {
    return ReplaceDecimalPoint(text);
}

std::string DecimalToDisplay(const std::string& text) {
    return ReplaceDecimalPoint(text);
}

double LeadingNumber(const std::string& text) {
    // Most texts are a plain integer ("120", "-5"): read them at once. Up to 15 digits the
    // value is exact, as the general reading below would give it.
    {
        const std::size_t sign = !text.empty() && text[0] == '-' ? 1 : 0;
        const std::size_t digits = text.size() - sign;
        if (digits > 0 && digits <= 15) {
            int64_t whole = 0;
            std::size_t i = sign;
            while (i < text.size() && text[i] >= '0' && text[i] <= '9') {
                whole = whole * 10 + (text[i] - '0');
                ++i;
            }
            if (i == text.size()) {
                const auto value = static_cast<double>(whole);
                return sign != 0 ? -value : value;
            }
            // A plain decimal ("26.90"): with at most 15 digits both the digits and the power
            // of ten are exact doubles, so their quotient is the correctly rounded value the
            // general reading gives.
            if (text[i] == '.' && i > sign) {
                double scale = 1.0;
                std::size_t j = i + 1;
                while (j < text.size() && text[j] >= '0' && text[j] <= '9') {
                    whole = whole * 10 + (text[j] - '0');
                    scale *= 10.0;
                    ++j;
                }
                if (j == text.size()) {
                    const double value = static_cast<double>(whole) / scale;
                    return sign != 0 ? -value : value;
                }
            }
        }
    }
    auto skippable = [](char c) { return c == ' ' || c == '\t' || c == '\n'; };
    std::size_t i = 0;
    auto skip = [&] {
        while (i < text.size() && skippable(text[i])) {
            ++i;
        }
    };

    skip();
    if (i < text.size() && text[i] == '&') {
        ++i;
        skip();
        const char radix = i < text.size() ? AsciiUpper(text[i]) : '\0';
        if (radix == 'H') {
            return ReadRadixDigits(text, i + 1, 16);
        }
        if (radix == 'O') {
            return ReadRadixDigits(text, i + 1, 8);
        }
        return 0.0;
    }

    // Gather a C-locale text of the number, leaving out the skipped characters.
    std::string ctext;
    if (!GatherMantissa(text, i, '.', skippable, ctext)) {
        return 0.0;
    }

    skip();
    if (i < text.size() && (AsciiUpper(text[i]) == 'E' || AsciiUpper(text[i]) == 'D')) {
        std::string exponent = "e";
        std::size_t j = i + 1;
        while (j < text.size() && skippable(text[j])) {
            ++j;
        }
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) {
            exponent += text[j];
            ++j;
        }
        bool exponentDigits = false;
        for (; j < text.size(); ++j) {
            if (skippable(text[j])) {
                continue;
            }
            if (!IsAsciiDigit(text[j])) {
                break;
            }
            exponentDigits = true;
            exponent += text[j];
        }
        // An exponent without digits is not part of the number: "1E" reads as 1.
        if (exponentDigits) {
            ctext += exponent;
        }
    }
    return ParseCText(ctext);
}

std::optional<double> ReadLocaleNumber(std::string_view text, std::size_t& end) {
    const char separator = DecimalSeparator().front();
    std::size_t i = text.find_first_not_of(' ');
    if (i == std::string_view::npos) {
        return std::nullopt;
    }
    std::string ctext;
    if (!GatherMantissa(
            text, i, separator, [](char) { return false; }, ctext)) {
        return std::nullopt;
    }
    // An exponent counts only with its digits: "1e" is the number 1 followed by a letter.
    if (i < text.size() && (text[i] == 'E' || text[i] == 'e')) {
        std::size_t j = i + 1;
        std::string exponent = "e";
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) {
            exponent += text[j++];
        }
        const std::size_t firstDigit = j;
        while (j < text.size() && IsAsciiDigit(text[j])) {
            exponent += text[j++];
        }
        if (j > firstDigit) {
            ctext += exponent;
            i = j;
        }
    }
    end = i;
    return ParseCText(ctext);
}

double LocaleDouble(const std::string& text) {
    const std::string body = Trim(text);
    std::size_t end = 0;
    const std::optional<double> value = ReadLocaleNumber(body, end);
    if (!value || end != body.size()) {
        throw Error("'" + text + "' is not a number", ErrorKind::NotANumber);
    }
    return *value;
}

float LocaleNumber(const std::string& text) {
    const double value = LocaleDouble(text);
    if (std::fabs(value) > static_cast<double>(std::numeric_limits<float>::max())) {
        throw OverflowError();
    }
    return static_cast<float>(value);
}

// ---- Rounding and narrowing --------------------------------------------------------------

double RoundHalfEven(double value) {
    if (!std::isfinite(value)) {
        return value;
    }
    const double floor = std::floor(value);
    const double fraction = value - floor;
    if (fraction < 0.5) {
        return floor;
    }
    if (fraction > 0.5) {
        return floor + 1.0;
    }
    return std::fmod(floor, 2.0) == 0.0 ? floor : floor + 1.0;
}

int32_t ToInt32(double value) {
    return RoundToRange<int32_t>(value);
}

int16_t ToInt16(double value) {
    return RoundToRange<int16_t>(value);
}

uint8_t ToByte(double value) {
    return RoundToRange<uint8_t>(value);
}

int16_t NarrowToInt16(int32_t value) {
    if (value < std::numeric_limits<int16_t>::min() ||
        value > std::numeric_limits<int16_t>::max()) {
        throw OverflowError();
    }
    return static_cast<int16_t>(value);
}

// ---- Writing numbers -----------------------------------------------------------------------

namespace {

// The digits to_chars wrote, as the host writes numbers: "E" for the exponent, the separator
// in force for the point.
std::string HostNumberText(const char* first, std::to_chars_result written) {
    std::string text(first, written.ec == std::errc{} ? written.ptr : first);
    for (char& c : text) {
        if (c == 'e') {
            c = 'E';
        } else if (c == '.') {
            c = DecimalSeparator().front();
        }
    }
    return text;
}

}  // namespace

std::string FormatDouble(double value) {
    if (value == 0.0) {
        return "0";  // also for -0, which the host never writes with a sign
    }
    std::array<char, 64> buffer{};
    return HostNumberText(buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                                       value, std::chars_format::general, 15));
}

std::string FormatDoubleExact(double value) {
    if (!std::isfinite(value) || value == 0.0) {
        return FormatDouble(value);
    }
    std::array<char, 64> buffer{};
    const std::to_chars_result fifteen = std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                                       value, std::chars_format::general, 15);
    double back = 0.0;
    std::from_chars(buffer.data(), fifteen.ptr, back);
    if (fifteen.ec == std::errc{} && back == value) {
        return HostNumberText(buffer.data(), fifteen);
    }
    return HostNumberText(buffer.data(),
                          std::to_chars(buffer.data(), buffer.data() + buffer.size(), value));
}

std::string FormatSingle(float value) {
    if (!std::isfinite(value)) {
        return FormatDouble(value);
    }
    return FormatDouble(SevenDigits(value));
}

double SevenDigits(float value) {
    // A whole number of up to seven digits is its own rounding, and most scaled values are.
    if (std::fabs(value) < 1e7f && std::trunc(value) == value) {
        return static_cast<double>(value);
    }
    // From 1e-6 up to 1e7 the same rounding without text: a single's 24 bits times 10^k, k at
    // most 12 (5^12 takes 28 bits), is exact in a double, so rounding it half to even to seven
    // digits is the rounding to_chars makes, and those digits over the exact 10^k are divided
    // correctly rounded, as from_chars reads them.
    static constexpr std::array<double, 13> kTens = {1e0, 1e1, 1e2, 1e3,  1e4,  1e5, 1e6,
                                                     1e7, 1e8, 1e9, 1e10, 1e11, 1e12};
    const double magnitude = std::fabs(static_cast<double>(value));
    if (magnitude < 1e7) {
        std::size_t k = 0;
        while (k + 1 < kTens.size() && magnitude * kTens[k] < 1e6) {
            ++k;
        }
        if (magnitude * kTens[k] >= 1e6) {
            const double rounded = RoundHalfEven(magnitude * kTens[k]) / kTens[k];
            return value < 0 ? -rounded : rounded;
        }
    }
    // Rounding to 7 digits through text keeps the decimal digits a reader expects (0.1f is
    // 0.100000001 as a double); the shorter value is then written like any double.
    std::array<char, 64> buffer{};
    auto [end, ec] = std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                   static_cast<double>(value), std::chars_format::scientific, 6);
    double rounded = 0.0;
    std::from_chars(buffer.data(), ec == std::errc{} ? end : buffer.data(), rounded);
    return rounded;
}

}  // namespace zerbin
