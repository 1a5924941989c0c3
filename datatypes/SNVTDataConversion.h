// Turns values held as text into the hexadecimal digits of their bytes in the configuration
// data block, in both byte orders, and finds the label of an enumeration value.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zerbin {

// True for the classes that load limits and scaling and are shown as numbers: Float,
// SignedNumeric and UnsignedNumeric. A Bitfield, though numeric in the image, is not one.
bool IsNumericClass(std::string_view typeClass);

// The label of key in an enum description "value,label;value,label;"; empty when not found.
// Throws on an entry without ",".
std::string FormatDisplayValue(const std::string& key, const std::string& enumDesc);

// Digits of the value, most significant byte first; empty when the value can't be encoded.
// Writes to value (it is replaced by the scaled text), so callers pass a copy. Never throws.
std::string EncodeStream(std::string& value, const std::string& typeClass, int32_t length,
                         int16_t a, int16_t b, int16_t c);
// The same, least significant byte first.
std::string EncodeIntelStream(std::string& value, const std::string& typeClass, int32_t length,
                              int16_t a, int16_t b, int16_t c);

// Overwrites image in place from the 0-based digit position, with at most maxDigits digits,
// never growing the text. Throws zerbin::Error when position lies at or past the end.
void OverwriteDigits(std::string& image, int32_t digitPosition, const std::string& digits,
                     int32_t maxDigits);

}  // namespace zerbin
