// Nothing lost: every shipped block type, given random values of every kind (white space
// alone or at either end, tabs, CR LF, empty structure fields), saved to project XML and
// loaded into a new block, comes back with the same values, the same images and the same
// XML, under either unit system.

#include <tuple>

#include "datatypes/UnitConverter.h"
#include "tests/support/Blocks.h"
#include "tests/support/RandomBlock.h"

namespace zerbin::testing {
namespace {

constexpr int kRounds = 8;

using RoundTripParam = std::tuple<std::string, UnitSystem>;

class ShippedRoundTripTest : public ::testing::TestWithParam<RoundTripParam> {
protected:
    void SetUp() override {
        UseLibrary(DataDir() / "library");
        SetUnitSystem(std::get<1>(GetParam()));
    }
};

TEST_P(ShippedRoundTripTest, RandomValuesComeBackFromTheProject) {
    const std::string& type = std::get<0>(GetParam());
    ScopedMessageRecorder recorder;
    for (int round = 0; round < kRounds; ++round) {
        const auto seed = static_cast<uint32_t>(std::hash<std::string>{}(type)) + round;
        SCOPED_TRACE("seed " + std::to_string(seed));
        // Odd rounds go through the text of the document. pugixml writes a CR raw, and every
        // XML reader turns a raw CR into a line feed, so those rounds hold none.
        const bool throughText = round % 2 == 1;
        RandomValues random(seed, !throughText);
        TestBlock block(type, Shipped());
        Randomize(*block, random);
        const Snapshot before = Take(*block);

        TestBlock copy(type, Shipped());
        const SavedBlock saved = Save(*block);
        std::ostringstream text;
        saved.document->save(text);
        const auto document = throughText ? xml::LoadString(text.str(), nullptr) : saved.document;
        ASSERT_NE(document, nullptr);
        copy->IAppObject_XmlLoad(document->document_element().first_child());
        EXPECT_EQ(Take(*copy), before);
    }
    EXPECT_EQ(MessageTexts(recorder), std::vector<std::string>{});
}

std::string RoundTripName(const ::testing::TestParamInfo<RoundTripParam>& info) {
    return std::get<0>(info.param) + (std::get<1>(info.param) == UnitSystem::US ? "_US" : "_SI");
}

INSTANTIATE_TEST_SUITE_P(EveryShippedType, ShippedRoundTripTest,
                         ::testing::Combine(::testing::ValuesIn(TypesOf(DataDir() / "library")),
                                            ::testing::Values(UnitSystem::SI, UnitSystem::US)),
                         RoundTripName);

// The value a user typed into a DivideBy attribute is kept divided; a load must not divide the
// saved quotient once more.
TEST(ShippedRoundTrip, DivideByValueSurvivesSaveAndLoad) {
    UseLibrary(DataDir() / "library");
    for (const std::string& type : TypesOf(DataDir() / "library")) {
        TestBlock block(type, Shipped());
        for (const auto& attribute : AttributesOf(*block)) {
            if (attribute->IAttribute_DividedBy() > 1) {
                attribute->IAttribute_Value("2500");
            }
        }
        TestBlock copy(type, Shipped());
        copy->IAppObject_XmlLoad(Save(*block).Element());
        EXPECT_EQ(AttributeValues(*copy), AttributeValues(*block)) << type;
    }
}

}  // namespace
}  // namespace zerbin::testing
