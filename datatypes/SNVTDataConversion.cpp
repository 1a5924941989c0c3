#include "datatypes/SNVTDataConversion.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <optional>
#include <string_view>

#include "base/MMain.h"
#include "base/SkipMode.h"
#include "base/Utf8.h"
#include "datatypes/CDBSNVTType.h"
#include "interfaces/Error.h"

namespace zerbin {
namespace {

enum class ByteOrder { BigEndian, Intel };

// Doubles from here on round to a single infinity: FLT_MAX plus half its last step.
constexpr double kSingleLimit =
    static_cast<double>(FLT_MAX) + 0x1p103;  // 2^103 is half the spacing of floats at FLT_MAX

// IEEE rounding to single, saturating to the infinities as the hardware does (a plain cast
// of an out-of-range double is undefined in C++).
float SaturatingSingle(double value) {
    if (value >= kSingleLimit) {
        return std::numeric_limits<float>::infinity();
    }
    if (value <= -kSingleLimit) {
        return -std::numeric_limits<float>::infinity();
    }
    return static_cast<float>(value);
}

// Rounding to single as a checked conversion: beyond its range is an overflow.
float ToSingle(double value) {
    const float single = SaturatingSingle(value);
    if (!std::isfinite(single)) {
        throw OverflowError();
    }
    return single;
}

bool CommaSeparator() {
    return DecimalSeparator() == ",";
}

std::string UpperHexDigits(uint32_t value) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string digits;
    do {
        digits.insert(digits.begin(), kDigits[value & 0xFu]);
        value >>= 4;
    } while (value != 0);
    return digits;
}

// The 2-byte float: 4 bits exponent, sign, 11 bits magnitude, no hidden bit. Values beyond
// its range give more than four digits and a carry may set the sign bit; the limits of the
// type are what keep such values out. An infinity has no exponent at all: empty text.
std::string EncodeShortFloat(float v) {
    if (!std::isfinite(v)) {
        return {};
    }
    // In double, where |v| * 2048 and the halvings are as exact as in single and cannot
    // overflow for the largest singles.
    double s = std::fabs(static_cast<double>(v)) / 0.00048828125;
    uint32_t e = 0;
    while (!(s < 2048.0)) {
        s /= 2.0;
        ++e;
    }
    const int32_t m = ToInt32(s);
    const std::string magnitude = HexWordOf(m).substr(1);
    std::string digits = UpperHexDigits(e);
    if (v < 0.0f) {
        // The sign bit sits on top of the first digit of M; a carry makes that digit "10".
        const uint32_t firstDigit = (static_cast<uint32_t>(m) >> 8) & 0xFu;
        digits += UpperHexDigits(firstDigit + 8u);
        digits += magnitude.substr(1);
    } else {
        digits += magnitude;
    }
    return digits;
}

// The hexadecimal digits of the few bytes a number takes, made in place: a value's digits
// are short enough for the string's own buffer, so encoding one allocates nothing.
class ByteDigits {
public:
    void Add(uint32_t byte) {
        static constexpr char kDigits[] = "0123456789ABCDEF";
        text_[size_++] = kDigits[(byte >> 4) & 0xFu];
        text_[size_++] = kDigits[byte & 0xFu];
    }
    // Two bytes, high first in the big-endian order.
    void Word(uint32_t high, uint32_t low, ByteOrder order) {
        Add(order == ByteOrder::Intel ? low : high);
        Add(order == ByteOrder::Intel ? high : low);
    }
    std::string Text() const { return {text_, size_}; }

private:
    char text_[8] = {};
    std::size_t size_ = 0;
};

// ToInt32 without its exception: nullopt where the rounded value does not fit.
std::optional<int32_t> RoundedInt32(double value) {
    const double rounded = RoundHalfEven(value);
    if (!(rounded >= static_cast<double>(std::numeric_limits<int32_t>::min()) &&
          rounded <= static_cast<double>(std::numeric_limits<int32_t>::max()))) {
        return std::nullopt;
    }
    return static_cast<int32_t>(rounded);
}

// The bytes of value, read already from text; text itself counts only for a Textual type.
// A whole number that does not fit its bytes gives no digits (a one-byte value counts as 0).
std::string EncodeValue(const std::string& text, float value, uint8_t length, TypeClass typeClass,
                        ByteOrder order) {
    const bool numeric = IsWholeNumberClass(typeClass);
    if (typeClass == TypeClass::Textual) {
        std::string digits;
        for (const uint8_t byte : Windows1252Bytes(text, length)) {
            digits += HexByteOf(byte);
        }
        return digits;
    }
    ByteDigits digits;
    if (typeClass == TypeClass::Enum || (numeric && length == 1)) {
        // HexByteOf keeps 255 for more and the low byte of a negative value.
        return HexByteOf(RoundedInt32(value).value_or(0));
    }
    if (typeClass == TypeClass::SignedNumeric && length == 2) {
        const std::optional<int32_t> whole = RoundedInt32(value);
        if (!whole || *whole < std::numeric_limits<int16_t>::min() ||
            *whole > std::numeric_limits<int16_t>::max()) {
            return {};
        }
        const auto word = static_cast<uint16_t>(static_cast<int16_t>(*whole));
        digits.Word(word >> 8, word & 0xFFu, order);
        return digits.Text();
    }
    if (numeric && length == 2) {
        const std::optional<int32_t> w = RoundedInt32(value);
        if (!w) {
            return {};
        }
        const int32_t high = *w / 256;
        const int32_t low = *w % 256;
        if (high < 0 || high > 255 || low < 0 || low > 255) {
            return {};
        }
        digits.Word(static_cast<uint32_t>(high), static_cast<uint32_t>(low), order);
        return digits.Text();
    }
    if ((numeric || typeClass == TypeClass::Float) && length == 4) {
        const auto bits = std::bit_cast<uint32_t>(value);
        for (int k = 0; k < 4; ++k) {
            const int shift = order == ByteOrder::BigEndian ? 24 - 8 * k : 8 * k;
            digits.Add((bits >> shift) & 0xFFu);
        }
        return digits.Text();
    }
    if (typeClass == TypeClass::Float && length == 2) {
        const std::string shortFloat = EncodeShortFloat(value);
        if (order == ByteOrder::BigEndian || shortFloat.size() < 4) {
            return shortFloat;
        }
        return shortFloat.substr(shortFloat.size() - 2) + shortFloat.substr(0, 2);
    }
    return {};
}

// EncodeBytes and EncodeIntelBytes in one: they differ in the order of bytes alone.
std::string EncodeBytes(const std::string& text, uint8_t length, TypeClass typeClass,
                        ByteOrder order) {
    // A number that can't be read counts as 0 and a whole number that doesn't fit as 0:
    // both steps are passed over, and the digits are made all the same.
    float value = 0.0f;
    if (CommaSeparator()) {
        SkipStep([&] { value = LocaleNumber(text); });
    } else {
        value = SaturatingSingle(LeadingNumber(text));
    }
    return EncodeValue(text, value, length, typeClass, order);
}

// True when the text FormatDouble writes for value reads back as value itself, so that the
// scaled number need not be written and read again: in the range written without an exponent.
// Zero qualifies whatever its sign: the text of -0 is "0", which the caller's +0.0 adds back.
bool ReadsBackAsItself(double value) {
    const double magnitude = std::fabs(value);
    return magnitude == 0.0 || (magnitude >= 1e-4 && magnitude < 1e15);
}

// Beyond this a Textual value is not padded: no length of the image comes near it, and the
// encoding fails on the length anyway.
constexpr int32_t kMaxPadding = 1 << 16;

bool EncodableLength(int32_t length) {
    return length >= 0 && length <= 255;
}

// The digits of a value that is not a text, already in its normalised form. A whole number is
// scaled first; scaled, where given, receives the text of the scaled number, which is what
// gets encoded (it may be normal itself). Throws where the scaled number overflows a single.
std::string EncodeNormalised(const std::string& normal, TypeClass typeClass, int32_t length,
                             int16_t a, int16_t b, int16_t c, ByteOrder order,
                             std::string* scaled) {
    if (typeClass != TypeClass::SignedNumeric && typeClass != TypeClass::UnsignedNumeric) {
        return EncodableLength(length)
                   ? EncodeBytes(normal, static_cast<uint8_t>(length), typeClass, order)
                   : std::string();
    }
    std::string text;
    if (a == 0) {
        text = std::string(1, '0');
    } else {
        const double n = CommaSeparator() ? LocaleNumber(normal) : LeadingNumber(normal);
        // The SNVT scale, display = A * 10^B * (raw + C), solved for raw in exactly this order
        // so that the digits match the devices' own tools.
        const double x = n * std::pow(10.0, -b) / a - c;
        const double rounded = SevenDigits(ToSingle(x));
        if (!scaled && ReadsBackAsItself(rounded) && EncodableLength(length)) {
            // + 0.0 turns -0, which the text would have written as "0", into 0.
            return EncodeValue({}, SaturatingSingle(rounded + 0.0), static_cast<uint8_t>(length),
                               typeClass, order);
        }
        text = FormatDouble(rounded);
    }
    if (scaled) {
        *scaled = text;
    }
    return EncodableLength(length)
               ? EncodeBytes(text, static_cast<uint8_t>(length), typeClass, order)
               : std::string();
}

// The value is left as the text that was encoded.
std::string Encode(std::string& value, TypeClass typeClass, int32_t length, int16_t a, int16_t b,
                   int16_t c, ByteOrder order) {
    try {
        if (typeClass == TypeClass::Textual) {
            if (length > kMaxPadding) {
                return {};
            }
            const std::size_t count = CharacterCount(value);
            if (count < static_cast<std::size_t>(std::max(length, 0))) {
                value.append(static_cast<std::size_t>(length) - count, ' ');
            }
            return EncodableLength(length)
                       ? EncodeBytes(value, static_cast<uint8_t>(length), typeClass, order)
                       : std::string();
        }
        value = NormalizeDecimal(value);
        return EncodeNormalised(value, typeClass, length, a, b, c, order, &value);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return {};
    }
}

// True when NormalizeDecimal would give the text back as it is: its first point, if any, is
// the separator in force already.
bool AlreadyNormalised(const std::string& text) {
    std::size_t at = text.find('.');
    if (at == std::string::npos) {
        at = text.find(',');
    }
    const std::string& separator = DecimalSeparator();
    return at == std::string::npos || (separator.size() == 1 && text[at] == separator[0]);
}

}  // namespace

std::string FormatDisplayValue(const std::string& key, const std::string& enumDesc) {
    std::string_view rest = enumDesc;
    while (!key.empty() && !rest.empty()) {
        const std::size_t comma = rest.find(',');
        const std::size_t semicolon = rest.find(';');
        if (comma == std::string_view::npos) {
            throw Error("the value list has an entry without a ','");
        }
        if (rest.substr(0, comma) == key) {
            if (semicolon == std::string_view::npos) {
                return std::string(rest.substr(comma + 1));  // a last entry without its ";"
            }
            if (semicolon < comma) {
                throw Error("the value list has an entry without a ','");
            }
            return std::string(rest.substr(comma + 1, semicolon - comma - 1));
        }
        if (semicolon == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(semicolon + 1);
    }
    return {};
}

std::string EncodeStream(std::string& value, TypeClass typeClass, int32_t length, int16_t a,
                         int16_t b, int16_t c) {
    return Encode(value, typeClass, length, a, b, c, ByteOrder::BigEndian);
}

std::string EncodeIntelStream(std::string& value, TypeClass typeClass, int32_t length, int16_t a,
                              int16_t b, int16_t c) {
    return Encode(value, typeClass, length, a, b, c, ByteOrder::Intel);
}

std::string EncodeDigits(const std::string& value, TypeClass typeClass, int32_t length, int16_t a,
                         int16_t b, int16_t c, bool intel) {
    const ByteOrder order = intel ? ByteOrder::Intel : ByteOrder::BigEndian;
    if (typeClass == TypeClass::Textual || !AlreadyNormalised(value)) {
        std::string copy = value;
        return Encode(copy, typeClass, length, a, b, c, order);
    }
    // Most values are stored normalised: read in place, with nothing copied.
    try {
        return EncodeNormalised(value, typeClass, length, a, b, c, order, nullptr);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return {};
    }
}

bool SameEncoding(CDBSNVTType& one, CDBSNVTType& other) {
    return &one == &other ||
           (one.ISNVType_Length() == other.ISNVType_Length() &&
            one.ISNVType_ACoef() == other.ISNVType_ACoef() &&
            one.ISNVType_BCoef() == other.ISNVType_BCoef() &&
            one.ISNVType_CCoef() == other.ISNVType_CCoef() && ClassOf(one) == ClassOf(other));
}

void OverwriteDigits(std::string& image, int32_t digitPosition, const std::string& digits,
                     int32_t maxDigits) {
    if (digitPosition < 0 || static_cast<std::size_t>(digitPosition) >= image.size()) {
        throw Error("digit " + std::to_string(digitPosition) + " lies outside the image");
    }
    const auto position = static_cast<std::size_t>(digitPosition);
    const std::size_t count = std::min(
        {static_cast<std::size_t>(std::max(maxDigits, 0)), digits.size(), image.size() - position});
    image.replace(position, count, digits, 0, count);
}

}  // namespace zerbin
