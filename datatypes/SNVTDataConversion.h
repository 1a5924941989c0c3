// Turns values held as text into the hexadecimal digits of their bytes in the configuration
// data block, in both byte orders, and finds the label of an enumeration value.
#pragma once

#include <cstdint>
#include <string>

#include "datatypes/TypeClass.h"

namespace zerbin {

class CDBSNVTType;

// The label of key in an enum description "value,label;value,label;"; empty when not found.
// Throws on an entry without ",".
std::string FormatDisplayValue(const std::string& key, const std::string& enumDesc);

// Digits of the value, most significant byte first; empty when the value can't be encoded.
// Writes to value (it is replaced by the scaled text), so callers pass a copy. Throws only
// std::bad_alloc.
std::string EncodeStream(std::string& value, TypeClass typeClass, int32_t length, int16_t a,
                         int16_t b, int16_t c);
// The same, least significant byte first.
std::string EncodeIntelStream(std::string& value, TypeClass typeClass, int32_t length, int16_t a,
                              int16_t b, int16_t c);

// The digits of EncodeStream (intel false) or EncodeIntelStream, leaving value as it is: what
// an image needs, without the text of the scaled number.
std::string EncodeDigits(const std::string& value, TypeClass typeClass, int32_t length, int16_t a,
                         int16_t b, int16_t c, bool intel);

// True when the two records give every value the same digits: class, length, coefficients.
bool SameEncoding(CDBSNVTType& one, CDBSNVTType& other);

// Overwrites image in place from the 0-based digit position, with at most maxDigits digits,
// never growing the text. Throws zerbin::Error when position lies at or past the end.
void OverwriteDigits(std::string& image, int32_t digitPosition, const std::string& digits,
                     int32_t maxDigits);

}  // namespace zerbin
