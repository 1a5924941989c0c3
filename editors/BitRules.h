// The rules of the bit field editor that are not about widgets: which bits are on show, the
// bits of a stored value and the sum of the bit captions.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zerbin {

// 7 for a type of one byte, 15 for every other length.
int MaxBitFor(int32_t typeLength);

// Bits 0 to maxBit of LeadingNumber of value as a 32-bit signed number, two's complement for
// a negative one. Throws OverflowError for a value beyond 32 bits.
std::vector<bool> BitsOfValue(const std::string& value, int maxBit);

// The sum of 2^i times LeadingNumber of caption i, as decimal digits.
std::string SumOfBits(const std::vector<std::string>& captions);

}  // namespace zerbin
