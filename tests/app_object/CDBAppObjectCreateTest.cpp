// Creating the members from the definition's three sections and laying them out in the CDB:
// each fixture block type is one row with the messages, the length and the positions it gives.
#include <gmock/gmock.h>

#include "app_object/CDBAppObject.h"
#include "connections/CDBInputs.h"
#include "connections/CDBOutputs.h"
#include "parameters/CDBAttributes.h"
#include "platform/Messages.h"
#include "tests/support/Blocks.h"

namespace zerbin {
namespace {

using ::testing::ElementsAreArray;
using testing::Fixtures;
using testing::MessageTexts;
using testing::TestBlock;

// How many inputs, outputs and attributes the block has; "-" for a collection it lacks.
std::string Counts(CDBAppObject& block) {
    auto count = [](const auto& collection) {
        return collection ? std::to_string(collection->Members().size()) : std::string("-");
    };
    return count(block.InputsCollection()) + " " + count(block.OutputsCollection()) + " " +
           count(block.AttributesCollection());
}

// Every attribute's and input's position as "name=position", ordered by name.
std::string Positions(const CDBAppObject& block) {
    std::map<std::string, int32_t> positions;
    if (auto attributes = block.AttributesCollection()) {
        for (const auto& attribute : attributes->Members()) {
            positions[attribute->IAttribute_Name()] = attribute->IAttribute_CDBPosition();
        }
    }
    if (auto inputs = block.InputsCollection()) {
        for (const auto& input : inputs->Members()) {
            positions[input->IInput_Name()] = input->IInput_CDBPosition();
        }
    }
    std::string text;
    for (const auto& [name, position] : positions) {
        text += (text.empty() ? "" : " ") + name + "=" + std::to_string(position);
    }
    return text;
}

struct LayoutRow {
    const char* type;
    std::vector<std::string> messages;
    int32_t cdbDimension;
    const char* positions;
    const char* counts;  // inputs, outputs, attributes
};

class Layout : public ::testing::TestWithParam<LayoutRow> {};

TEST_P(Layout, PlacesTheMembersAndReportsWhatIsWrong) {
    const LayoutRow& row = GetParam();
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    ScopedMessageRecorder messages;

    TestBlock block(row.type, fixtures);

    EXPECT_THAT(MessageTexts(messages), ElementsAreArray(row.messages));
    EXPECT_EQ(block->IAppObject_CDBDimension(), row.cdbDimension);
    EXPECT_EQ(Positions(*block), row.positions);
    EXPECT_EQ(Counts(*block), row.counts);
}

INSTANTIATE_TEST_SUITE_P(
    FixtureTypes, Layout,
    ::testing::Values(
        // Two attributes share number 3 and follow the definition's order; the tool-only
        // Note's 9 does not count.
        LayoutRow{
            "Worked", {}, 17, "Flow=12 Gain=6 Level=14 Mode=3 Note=0 Setpoint=4 Trim=10", "2 1 5"},
        LayoutRow{"WorkedDup",
                  {"WorkedDup: Duplicates CDBOrderinPosition in XML File: 3"},
                  14,
                  "Flow=12 Gain=6 Level=0 Mode=3 Note=0 Setpoint=4 Trim=10",
                  "2 1 5"},
        LayoutRow{"WorkedGap",
                  {"WorkedGap: Missing CDBOrderinPosition in XML File: 4"},
                  12,
                  "Flow=0 Gain=6 Level=0 Mode=3 Note=0 Setpoint=4 Trim=10",
                  "2 1 5"},
        // A duplicate member is dropped and the first stays.
        LayoutRow{"BadSections",
                  {"Error: Problems in the InReferences section of the XML file of Bad sections ",
                   "Error: Problems in the OutReferences section of the XML file of Bad sections ",
                   "Error: Problems in the Attribute section of the XML file of Bad sections "},
                  6,
                  "Flow=4 Mode=3",
                  "1 1 1"},
        LayoutRow{"AllToolOnly",
                  {"AllToolOnly: Missing CDBOrderinPosition in XML File: 1"},
                  3,
                  "First=0 Second=0",
                  "- - 2"},
        LayoutRow{"OnlyOutputs", {}, 3, "", "- 2 -"},
        LayoutRow{"q_Empty", {}, 0, "Flow=0", "1 - -"},
        LayoutRow{"ZeroOrders", {}, 4, "First=3 Negative=0 Zero=0", "- - 3"},
        // "inreferences" and no OutReferences: those collections are absent.
        LayoutRow{"Sections", {}, 4, "Mode=3", "- - 1"}),
    [](const ::testing::TestParamInfo<LayoutRow>& info) { return info.param.type; });

TEST(Create, ShortFloatShortensTheFloatsThatDoNotKeepTheStandard) {
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    ScopedMessageRecorder messages;

    TestBlock standard("ShortFloat", fixtures);
    HostSetup shortFloat = fixtures;
    shortFloat.manageShortFloat = true;
    TestBlock shortened("ShortFloat", shortFloat);

    EXPECT_EQ(standard->IAppObject_CDBDimension(), 11);
    EXPECT_EQ(shortened->IAppObject_CDBDimension(), 9);
    EXPECT_EQ(Positions(*shortened), "Gain=3 Ratio=7");
}

}  // namespace
}  // namespace zerbin
