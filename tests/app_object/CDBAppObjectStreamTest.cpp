// The image of the CDB in both byte orders: golden images of the fixture blocks, the header
// rules of the object ID, the 255-byte limit and the two failure reactions.
#include <gmock/gmock.h>

#include "app_object/CDBAppObject.h"
#include "interfaces/Error.h"
#include "platform/Messages.h"
#include "tests/support/Blocks.h"

namespace zerbin {
namespace {

using ::testing::ElementsAre;
using testing::Fixtures;
using ::testing::IsEmpty;
using testing::MessageTexts;
using testing::TestBlock;

std::string Repeat(const std::string& digits, int times) {
    std::string text;
    for (int i = 0; i < times; ++i) {
        text += digits;
    }
    return text;
}

struct ImageRow {
    const char* label;
    const char* type;
    bool withReferences;
    std::string stream;
    std::string intelStream;
};

class Image : public ::testing::TestWithParam<ImageRow> {};

TEST_P(Image, IsBuiltFromTheHeaderAndTheMembers) {
    const ImageRow& row = GetParam();
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    ScopedMessageRecorder messages;  // the layout messages of the variants
    TestBlock block(row.type, fixtures);
    if (row.withReferences) {
        block->IAppObject_Inputs()->IInputs_Item("Flow")->IInput_Value("4203");
        block->IAppObject_Inputs()->IInputs_Item("Level")->IInput_Value("234501");
    }
    messages.recorder().Clear();

    EXPECT_EQ(block->IAppObject_Stream(), row.stream);
    EXPECT_EQ(block->IAppObject_IntelStream(), row.intelStream);
    EXPECT_EQ(block->LastStream(), row.stream);
    EXPECT_THAT(MessageTexts(messages), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    FixtureTypes, Image,
    ::testing::Values(ImageRow{"Worked", "Worked", true, "11012C034E203FC0000008024203234501",
                               "112C0103204E0000C03F02081203191501"},
                      ImageRow{"InputsWithoutReference", "Worked", false,
                               "11012C034E203FC0000008020000000000",
                               "112C0103204E0000C03F02080000000000"},
                      // Flow has no place in the layout and writes nothing.
                      ImageRow{"NoCdb", "q_Empty", false, "00012C", "002C01"},
                      ImageRow{"NoMembers", "OnlyOutputs", false, "03004D", "034D00"}),
    [](const ::testing::TestParamInfo<ImageRow>& info) { return info.param.label; });

// A later block of a type starts from the type's image: what it changed must read as it does
// on the first block, which is made from the definition.
TEST(Stream, ALaterBlockOfATypeShowsWhatItChanged) {
    struct Change {
        const char* type;
        const char* member;
        const char* value;
        bool input;
    };
    const Change changes[] = {
        {"LABEL", "Text", "Hall", false},
        {"TYPE_MUX", "DataLength", "70000", false},  // no digits: its place is zero again
        {"THERMOSTAT", "SpaceTemp", "4203", true},
        {"TYPE_MUX", "DataType", "81", false},  // the members' lengths change
    };
    testing::UseLibrary(testing::DataDir() / "library");
    for (const Change& change : changes) {
        SCOPED_TRACE(std::string(change.type) + " " + change.member);
        std::string images[2];
        for (std::string& image : images) {
            TestBlock block(change.type, testing::Shipped());
            if (change.input) {
                block->IAppObject_Inputs()->IInputs_Item(change.member)->IInput_Value(change.value);
            } else {
                block->IAppObject_Attributes()
                    ->IAttributes_Item(change.member)
                    ->IAttribute_Value(change.value);
            }
            image = block->IAppObject_Stream() + " " + block->IAppObject_IntelStream();
        }
        EXPECT_EQ(images[1], images[0]);
    }
}

TEST(Stream, ABlockLongerThan255BytesIsCutAndItsLengthClamped) {
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    ScopedMessageRecorder messages;
    TestBlock block("Large", fixtures);  // 3 + 200 + 53 bytes
    ASSERT_EQ(block->IAppObject_CDBDimension(), 256);

    const std::string image = block->IAppObject_Stream();

    // Tail starts inside the image and is cut at its end.
    const std::string body = "41" + Repeat("20", 199) + "42" + Repeat("20", 51);
    EXPECT_EQ(image, "FF0001" + body);
    EXPECT_EQ(image.size(), 510u);
    EXPECT_EQ(block->IAppObject_CDBDimension(), 255);
    EXPECT_EQ(block->IAppObject_IntelStream(), "FF0100" + body);
    EXPECT_THAT(MessageTexts(messages), IsEmpty());
}

TEST(Stream, AMemberBeyondTheLastByteFailsTheImage) {
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    ScopedMessageRecorder messages;
    TestBlock block("Overlong", fixtures);  // Last stands at offset 255
    pugi::xml_document project;
    pugi::xml_node saved = project.append_child("Overlong");
    saved.append_child("CDB").append_child(pugi::node_pcdata).set_value("0F0001");
    block->IAppObject_XmlLoad(saved);

    EXPECT_EQ(block->IAppObject_Stream(), "");
    EXPECT_EQ(block->LastStream(), "0F0001");
    EXPECT_THAT(MessageTexts(messages),
                ElementsAre("Error exporting the object: Overlong block,   A possible error is "
                            "the lenght of the object."));
    EXPECT_EQ(messages.Messages()[0].title, "Zerbin");

    messages.recorder().Clear();
    EXPECT_EQ(block->IAppObject_IntelStream(), "");
    EXPECT_THAT(MessageTexts(messages), IsEmpty());
}

// An ID beyond 32 bits raises the overflow to the caller (no stream in the row).
TEST(Stream, ObjectIdIsTheLeadingNumberLimitedToAWord) {
    const struct {
        const char* id;
        const char* stream;
        const char* intel;
    } rows[] = {
        {"300", "03012C", "032C01"},     {"70000", "03FFFF", "03FFFF"},
        {"-300", "03FFD4", "03D4FF"},    {"abc", "030000", "030000"},
        {"12.5 kB", "03000C", "030C00"}, {"99999999999", nullptr, nullptr},
        {"1e10", nullptr, nullptr},
    };
    testing::TempLibrary library;
    ScopedMessageRecorder messages;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.id);
        const std::string type = std::string("Id") + row.id;
        library.WriteDefinition(
            type, testing::HeaderOnlyDefinition(std::string("<ID>") + row.id + "</ID>"));
        TestBlock block(type);
        if (row.stream == nullptr) {
            EXPECT_THROW(block->IAppObject_Stream(), OverflowError);
            EXPECT_THROW(block->IAppObject_IntelStream(), OverflowError);
            EXPECT_EQ(block->LastStream(), "");
        } else {
            EXPECT_EQ(block->IAppObject_Stream(), row.stream);
            EXPECT_EQ(block->IAppObject_IntelStream(), row.intel);
        }
    }
    EXPECT_THAT(MessageTexts(messages), IsEmpty());
}

}  // namespace
}  // namespace zerbin
