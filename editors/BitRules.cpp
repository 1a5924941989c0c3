#include "editors/BitRules.h"

#include <cmath>

#include "base/MMain.h"

namespace zerbin {

int MaxBitFor(int32_t typeLength) {
    return typeLength == 1 ? 7 : 15;
}

std::vector<bool> BitsOfValue(const std::string& value, int maxBit) {
    const auto n = static_cast<uint32_t>(ToInt32(LeadingNumber(value)));
    std::vector<bool> bits;
    for (int i = 0; i <= maxBit; ++i) {
        bits.push_back(((n >> i) & 1U) != 0);
    }
    return bits;
}

std::string SumOfBits(const std::vector<std::string>& captions) {
    int32_t sum = 0;
    for (std::size_t i = 0; i < captions.size(); ++i) {
        sum = ToInt32(std::ldexp(LeadingNumber(captions[i]), static_cast<int>(i)) + sum);
    }
    return std::to_string(sum);
}

}  // namespace zerbin
