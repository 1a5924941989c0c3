// Nothing lost: every shipped block type, given random values, saved to project XML and
// loaded into a new block, comes back with the same values, the same images and the same
// XML, under either decimal separator.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "tests/hardening/HardeningSupport.h"

namespace zerbin::testing {
namespace {

constexpr int kRounds = 8;

class ShippedRoundTripTest : public ::testing::TestWithParam<std::tuple<std::string, bool>> {
protected:
    void SetUp() override { SetSnvtDictionary(ShippedDictionary()); }
};

TEST_P(ShippedRoundTripTest, RandomValuesComeBackFromTheProject) {
    const auto& [type, comma] = GetParam();
    ZERBIN_SEPARATOR_FOR(comma, locale);
    ScopedLibrary library(DataDir() / "library");
    ScopedMessageRecorder recorder;
    for (int round = 0; round < kRounds; ++round) {
        const auto seed = static_cast<uint32_t>(std::hash<std::string>{}(type)) + round;
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomValues random(seed);
        const auto block = MakeBlock(type);
        Randomize(*block, random);
        const Snapshot before = Take(*block);

        const auto copy = MakeBlock(type);
        const SavedBlock saved = Save(*block);
        copy->IAppObject_XmlLoad(saved.Element());
        EXPECT_EQ(Take(*copy), before);
        copy->IAppObject_Destroy();
        block->IAppObject_Destroy();
    }
    EXPECT_EQ(MessageTexts(recorder), std::vector<std::string>{});
}

std::string RoundTripName(const ::testing::TestParamInfo<std::tuple<std::string, bool>>& info) {
    return std::get<0>(info.param) + (std::get<1>(info.param) ? "_Comma" : "_Point");
}

INSTANTIATE_TEST_SUITE_P(EveryShippedType, ShippedRoundTripTest,
                         ::testing::Combine(::testing::ValuesIn(ShippedTypes()), ::testing::Bool()),
                         RoundTripName);

// The value a user typed into a DivideBy attribute is kept divided; a load must not divide the
// saved quotient once more.
TEST(ShippedRoundTrip, DivideByValueSurvivesSaveAndLoad) {
    SetSnvtDictionary(ShippedDictionary());
    ScopedLibrary library(DataDir() / "library");
    for (const std::string& type : ShippedTypes()) {
        const auto block = MakeBlock(type);
        for (const auto& attribute : AttributesOf(*block)) {
            if (attribute->IAttribute_DividedBy() > 1) {
                attribute->IAttribute_Value("2500");
            }
        }
        const auto copy = MakeBlock(type);
        copy->IAppObject_XmlLoad(Save(*block).Element());
        EXPECT_EQ(AttributeValues(*copy), AttributeValues(*block)) << type;
        copy->IAppObject_Destroy();
        block->IAppObject_Destroy();
    }
}

}  // namespace
}  // namespace zerbin::testing
