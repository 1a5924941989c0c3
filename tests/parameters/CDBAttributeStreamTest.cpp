// The bytes of each kind of attribute in the image, in both byte orders.

#include "interfaces/Error.h"
#include "platform/Messages.h"
#include "tests/support/ParameterTestSupport.h"

namespace zerbin::testing {
namespace {

// The digits from the attribute's place on, as far as they differ from the blank image
// plus the place itself.
std::string AtPlace(const std::string& image, CDBAttribute& attribute, std::size_t bytes) {
    return image.substr(static_cast<std::size_t>(2 * attribute.IAttribute_CDBPosition()),
                        2 * bytes);
}

TEST_F(ParameterTest, EachKindWritesItsDigitsAtItsPlaceInBothByteOrders) {
    const struct {
        const char* block;
        bool shortFloat;
        const char* attribute;
        const char* value;  // nullptr: as loaded
        std::size_t bytes;
        const char* bigEndian;
        const char* intel;
    } rows[] = {
        {"PrmValues", false, "Setpoint", "20.5", 2, "0802", "0208"},
        {"PrmValues", false, "Setpoint", "327.68", 2, "AAAA", "AAAA"},  // can't be encoded
        {"PrmValues", false, "Gain", "1", 4, "3F800000", "0000803F"},
        {"PrmValues", false, "Ratio", "1", 4, "3F800000", "0000803F"},
        {"PrmValues", true, "Ratio", "1", 2, "1400", "0014"},
        {"PrmValues", true, "Gain", "1", 4, "3F800000", "0000803F"},  // keeps the standard float
        {"PrmValues", false, "Label", "AB", 6, "414220202020", "414220202020"},
        {"PrmValues", false, "Flags", nullptr, 1, "05", "05"},
        {"PrmValues", false, "Mode", "2", 1, "02", "02"},
        {"PrmValues", false, "Note", "AB", 0, "", ""},  // tool-only: no place at all
        // A standard float on a 2-byte type: four bytes of IEEE single; the Intel form writes
        // the scaled number into the first two and leaves the others.
        {"PrmValues", false, "Raw", "1", 4, "3F800000", "6400AAAA"},
        {"PrmTypes", false, "Type", "106", 1, "06", "06"},  // the FACTOR, not the code
        {"PrmTypes", false, "Type", "113", 1, "FF", "FF"},  // a factor of 300 is clamped
        {"PrmUnits", false, "Units", "124", 1, "18", "18"},
        {"PrmStruct", false, "Setting", "20.5 1", 3, "080201", "020801"},
        {"PrmStruct", false, "Single", nullptr, 1, "09", "09"},
    };
    for (const auto& row : rows) {
        ScopedMessageRecorder loadMessages;  // PrmStruct warns of a missing field default
        TestBlock block(row.block, WithShortFloat(row.shortFloat));
        ScopedMessageRecorder messages;
        auto attribute = block.Attribute(row.attribute);
        if (row.value != nullptr) {
            attribute->IAttribute_Value(row.value);
        }
        // Written over bytes of "AA": what changed stands at the place and nowhere else.
        const std::string blank(2 * static_cast<std::size_t>(block->IAppObject_CDBDimension()),
                                'A');
        const std::string bigEndian = attribute->WriteStream(blank);
        const std::string intel = attribute->WriteIntelStream(blank);
        const std::string context = std::string(row.attribute) + " " + (row.value ? row.value : "");
        EXPECT_EQ(AtPlace(bigEndian, *attribute, row.bytes), row.bigEndian) << context;
        EXPECT_EQ(AtPlace(intel, *attribute, row.bytes), row.intel) << context;
        for (const std::string& image : {bigEndian, intel}) {
            std::string outside = image;
            outside.erase(static_cast<std::size_t>(2 * attribute->IAttribute_CDBPosition()),
                          2 * row.bytes);
            EXPECT_EQ(outside.find_first_not_of('A'), std::string::npos) << context;
        }
        EXPECT_TRUE(messages.Messages().empty()) << context;
    }
}

// A later block starts from its type's image: a structure whose first field changed must
// write that field again.
TEST_F(ParameterTest, ALaterBlocksStructureWritesTheFieldItChanged) {
    ScopedMessageRecorder messages;  // PrmStruct warns of a missing field default
    TestBlock first("PrmStruct");
    TestBlock later("PrmStruct");
    for (const char* value : {"21.5 1", "20.5 2"}) {
        later.Attribute("Setting")->IAttribute_Value(value);
        first.Attribute("Setting")->IAttribute_Value(value);
        EXPECT_EQ(later->IAppObject_Stream(), first->IAppObject_Stream()) << value;
    }
    EXPECT_NE(later->IAppObject_Stream().find("080202"), std::string::npos);
}

TEST_F(ParameterTest, ADeviceDependentAttributeWritesItsCodeAsAnEnumeration) {
    auto device =
        xml::LoadString("<Device><Fans><Low>1</Low><High>2</High></Fans></Device>", nullptr);
    TestBlock block("PrmValues", WithOwnerDevice(device));
    auto speed = Load(block, "<Speed DeviceDependent='Fans'/>");
    speed->CDBPosition(1);
    speed->IAttribute_Value("2");
    EXPECT_EQ(speed->WriteStream("AAAAAA"), "AA02AA");
    EXPECT_EQ(speed->WriteIntelStream("AAAAAA"), "AA02AA");
}

TEST_F(ParameterTest, ACoefficientBeyondSixteenBitsAndAPlacePastTheEndGoToTheCaller) {
    TestBlock block("PrmValues");
    auto wide = Load(block, "<Wide><SNVTTYPE>114</SNVTTYPE><DEFAULTVALUE>1</DEFAULTVALUE></Wide>");
    EXPECT_THROW(wide->WriteStream("0000"), OverflowError);
    EXPECT_THROW(wide->WriteIntelStream("0000"), OverflowError);

    auto setpoint = block.Attribute("Setpoint");
    EXPECT_THROW(setpoint->WriteStream("0000"), Error);
}

TEST_F(ParameterTest, ASelectorWithAnUnknownTypeWritesAZeroFactorAfterTheDictionarysMessage) {
    TestBlock block("PrmTypes");
    auto type = block.Attribute("Type");
    type->IAttribute_Value("999");
    ScopedMessageRecorder messages;
    const std::string image = type->WriteStream("AAAAAAAAAA");
    EXPECT_EQ(image.substr(6, 2), "00");
    ASSERT_FALSE(messages.Messages().empty());
    EXPECT_EQ(messages.Messages()[0].text, "Error: SNVT_999 is not defined");
}

}  // namespace
}  // namespace zerbin::testing
