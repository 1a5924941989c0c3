// The digits an image is built from, made without the text of the scaled number, against the
// digits of the encoder that writes that text and reads it back: the same for seeded random
// values of every whole-number shape, in both byte orders.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <string>

#include "base/MMain.h"
#include "datatypes/SNVTDataConversion.h"
#include "datatypes/TypeClass.h"

namespace zerbin {
namespace {

TEST(EncodeDigits, GivesTheDigitsOfTheEncoderThatWritesTheText) {
    DetectDecimalSeparator();
    std::mt19937 random(20261125u);
    std::uniform_real_distribution<double> magnitude(-8.0, 8.0);
    std::uniform_int_distribution<int> coefficient(-4, 4);
    const TypeClass classes[] = {TypeClass::SignedNumeric, TypeClass::UnsignedNumeric};
    const int32_t lengths[] = {1, 2, 4};
    for (int n = 0; n < 20000; ++n) {
        const double number = (n % 2 == 0 ? 1 : -1) * std::pow(10.0, magnitude(random));
        const std::string value = n % 7 == 0 ? std::to_string(n / 7) : FormatDouble(number);
        const TypeClass typeClass = classes[n % 2];
        const int32_t length = lengths[(n / 2) % 3];
        const auto a = static_cast<int16_t>(coefficient(random) == 0 ? 1 : coefficient(random));
        const auto b = static_cast<int16_t>(coefficient(random));
        const auto c = static_cast<int16_t>(n % 5 == 0 ? coefficient(random) : 0);
        for (const bool intel : {false, true}) {
            std::string text = value;
            const std::string expected = intel ? EncodeIntelStream(text, typeClass, length, a, b, c)
                                               : EncodeStream(text, typeClass, length, a, b, c);
            ASSERT_EQ(EncodeDigits(value, typeClass, length, a, b, c, intel), expected)
                << value << " length " << length << " a " << a << " b " << b << " c " << c
                << " intel " << intel;
        }
    }
}

}  // namespace
}  // namespace zerbin
