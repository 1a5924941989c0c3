// The bit field editor's rules without a window: the bits on show, the bits of a stored value
// and the value of the captions.
#include "editors/BitRules.h"

#include <gtest/gtest.h>

#include "interfaces/Error.h"

namespace zerbin {
namespace {

std::string Shown(const std::vector<bool>& bits) {
    std::string text;
    for (auto bit = bits.rbegin(); bit != bits.rend(); ++bit) {
        text += *bit ? '1' : '0';
    }
    return text;
}

TEST(BitRules, AOneByteTypeShowsEightBitsEveryOtherSixteen) {
    for (const auto& [length, maxBit] :
         {std::pair{1, 7}, std::pair{0, 15}, std::pair{2, 15}, std::pair{4, 15}}) {
        EXPECT_EQ(MaxBitFor(length), maxBit) << length;
    }
}

TEST(BitRules, AValueShowsItsLowBitsInTwosComplement) {
    const struct {
        const char* value;
        int maxBit;
        const char* bits;  // highest bit first
    } rows[] = {
        {"5", 7, "00000101"},
        {"300", 7, "00101100"},
        {"65535", 15, "1111111111111111"},
        {"70000", 15, "0001000101110000"},
        {"-1", 7, "11111111"},
        {"-2", 15, "1111111111111110"},
        {"abc", 15, "0000000000000000"},
        {"6x", 3, "0110"},  // the leading number
        {"2147483647", 15, "1111111111111111"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Shown(BitsOfValue(row.value, row.maxBit)), row.bits) << row.value;
    }
    EXPECT_THROW(BitsOfValue("99999999999", 15), OverflowError);
}

TEST(BitRules, TheValueIsTheSumOfEachCaptionTimesItsBit) {
    const struct {
        std::vector<std::string> captions;  // bit 0 first
        const char* sum;
    } rows[] = {
        {{}, "0"},
        {{"1", "0", "1"}, "5"},
        {{"0", "0", "0", "1"}, "8"},
        {{"1", "1", "1", "1", "1", "1", "1", "1", "1", "1", "1", "1", "1", "1", "1", "1"}, "65535"},
        {{"0", "2"}, "4"},  // a caption counts with its number, not as one bit
        {{"x", "1"}, "2"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(SumOfBits(row.captions), row.sum) << row.sum;
    }
    std::vector<std::string> wide(32, "0");
    wide[31] = "1";
    EXPECT_THROW(SumOfBits(wide), OverflowError);
}

}  // namespace
}  // namespace zerbin
