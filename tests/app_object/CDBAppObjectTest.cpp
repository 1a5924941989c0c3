// The frame of the application object: what it keeps for the host, the key scheme, the walks
// that hand host state to the members, and taking a block apart.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <memory>
#include <string>

#include "app_object/CDBAppObject.h"
#include "app_object/MMain.h"
#include "connections/CDBInputs.h"
#include "platform/Files.h"
#include "platform/Messages.h"
#include "tests/app_object/AppObjectTestSupport.h"
#include "tests/support/RecordingListener.h"

namespace zerbin {
namespace {

using testing::CreateBlock;
using ::testing::ElementsAre;
using testing::FixtureLibrary;
using testing::HostedBlock;
using ::testing::IsEmpty;
using testing::MessageTexts;
using testing::RecordingListener;

TEST(AppObjectFrame, PathKeepsTheFolderPart) {
    const struct {
        const char* written;
        const char* read;
    } rows[] = {
        {"C:\\a\\b.xml", "C:\\a\\"},   {"b.xml", ""}, {"C:\\a\\", "C:\\a\\"},
        {"/home/u/p.zpj", "/home/u/"}, {"", ""},      {"x\\y/z", "x\\y/"},
    };
    auto block = std::make_shared<CDBAppObject>();
    for (const auto& row : rows) {
        block->IAppObject_Path(row.written);
        EXPECT_EQ(block->IAppObject_Path(), row.read) << row.written;
    }
}

TEST(AppObjectFrame, ConstructionDetectsTheDecimalSeparatorInForce) {
    testing::ScopedLocale comma;
    ZERBIN_REQUIRE_COMMA_LOCALE(comma);
    std::setlocale(LC_NUMERIC, "C");  // the separator detected last is still ","

    auto block = std::make_shared<CDBAppObject>();

    EXPECT_EQ(DecimalSeparator(), ".");
}

TEST(AppObjectFrame, TheStubsChangeNothing) {
    FixtureLibrary library;
    ScopedMessageRecorder messages;
    HostedBlock block = CreateBlock("Worked");
    const std::string image = block->IAppObject_Stream();

    block->IAppObject_Stream("FFFFFFFF");
    block->IAppObject_Save("project.xml");
    block->IAppObject_Load("project.xml");
    block->IAppObject_ObjectDebug();
    block->IAppObject_Show(nullptr);

    EXPECT_EQ(block->IAppObject_Stream(), image);
    EXPECT_THAT(MessageTexts(messages), IsEmpty());
}

TEST(AppObjectFrame, ProgrammaticIdFollowsTheComponentFile) {
    auto block = std::make_shared<CDBAppObject>();
    EXPECT_EQ(block->IAppObject_ProgrammaticId(), "Zerbin.CDBAppObject");

    SetComponentBaseName("Plant");
    EXPECT_EQ(block->IAppObject_ProgrammaticId(), "Plant.CDBAppObject");
    SetComponentBaseName({});
    EXPECT_EQ(block->IAppObject_ProgrammaticId(), "Zerbin.CDBAppObject") << "the fallback again";
}

// ---- Width ----------------------------------------------------------------------------------

TEST(AppObjectWidth, IsTheUserNamePlusFiveOrTheBaseWidth) {
    FixtureLibrary library;
    const struct {
        const char* type;  // Widths: inputs Flow, Level; outputs Out1, Alarm
        const char* userName;
        int32_t inputWidth;
        int32_t width;
    } rows[] = {
        {"Widths", "Ventilator", 5, 15}, {"Widths", "Zürich-Ost", 5, 15}, {"Widths", "Fan", 5, 10},
        {"Widths", "", 5, 10},           {"Widths", "Fan 12", 5, 11},     {"Worked", "", 5, 9},
        {"InputsOnly", "ab", 8, 7},  // no outputs: no base width
        {"OnlyOutputs", "", 0, 5},   // no inputs: no base width at all
    };
    for (const auto& row : rows) {
        HostedBlock block = CreateBlock(row.type);
        block->IAppObject_UserName(row.userName);
        EXPECT_EQ(block->IAppObject_InputWidth(), row.inputWidth) << row.type;
        EXPECT_EQ(block->IAppObject_Width(), row.width) << row.userName;
    }
    EXPECT_EQ(CreateBlock("Widths")->IAppObject_Width(), 0) << "no user name, no width";
}
// ---- Keys -------------------------------------------------------------------------------------

TEST(AppObjectKeys, ReachEveryMemberThatExists) {
    FixtureLibrary library;
    HostedBlock bare = CreateBlock("OnlyOutputs");  // no attributes, no inputs
    bare->IAppObject_GlobalKey("K");
    EXPECT_EQ(bare->IAppObject_GlobalKey(), "K");
    EXPECT_EQ(bare->IAppObject_Outputs()->IOutputs_Item("Out2")->IOutput_GlobalKey(),
              "K\\ROU\\Out2");
    HostedBlock block = CreateBlock("Widths");

    block->IAppObject_GlobalKey("K");
    block->IAppObject_ExtendedKey("E");

    EXPECT_EQ(block->IAppObject_GlobalKey(), "K");
    EXPECT_EQ(block->IAppObject_Attributes()->IAttributes_GlobalKey(), "K\\ATT");
    EXPECT_EQ(block->IAppObject_Attributes()->IAttributes_Item("Mode")->IAttribute_GlobalKey(),
              "K\\ATT\\Mode");
    EXPECT_EQ(block->IAppObject_Inputs()->IInputs_Item("Level")->IInput_GlobalKey(),
              "K\\RIN\\Level");
    EXPECT_EQ(block->IAppObject_Outputs()->IOutputs_Item("Alarm")->IOutput_GlobalKey(),
              "K\\ROU\\Alarm");

    EXPECT_EQ(block->IAppObject_ExtendedKey(), "E");
    EXPECT_EQ(block->IAppObject_Attributes()->IAttributes_Item("Mode")->IAttribute_ExtendedKey(),
              "E\\ATT\\Mode");
    EXPECT_EQ(block->IAppObject_Inputs()->IInputs_Item("Flow")->IInput_ExtendedKey(),
              "E\\RIN\\Flow");
    EXPECT_EQ(block->IAppObject_Outputs()->IOutputs_Item("Out1")->IOutput_ExtendedKey(),
              "E\\ROU\\Out1");
}

// What the host hands the block between Init and Create stays with the block: no member
// exists yet to take it.
TEST(AppObjectKeys, KeysAndListenersGivenBeforeCreateReachNoMember) {
    FixtureLibrary library;
    auto journal = std::make_shared<testing::CallJournal>();
    auto early = std::make_shared<RecordingListener>("early", journal);
    auto late = std::make_shared<RecordingListener>("late", journal);
    auto created = std::make_shared<CDBAppObject>();
    created->IAppObject_XmlSNVTDoc(testing::FixtureDictionary());
    int32_t errorCode = 0;
    created->IAppObject_Init("Widths", errorCode);
    created->IAppObject_GlobalKey("K");
    created->IAppObject_ExtendedKey("E");
    created->IAppObject_CallBack(early);
    created->IAppObject_Create();
    HostedBlock block(created);

    EXPECT_EQ(block->IAppObject_GlobalKey(), "K");
    EXPECT_EQ(block->IAppObject_Inputs()->IInputs_Item("Flow")->IInput_GlobalKey(), "");
    EXPECT_EQ(block->IAppObject_Attributes()->IAttributes_Item("Mode")->IAttribute_ExtendedKey(),
              "");

    block->IAppObject_GlobalKey("K");
    block->IAppObject_CallBack(late);
    block->IAppObject_CallBack(late);
    block->IAppObject_Attributes()->IAttributes_Item("Mode")->IAttribute_Value("2");
    EXPECT_THAT(journal->Lines(), ElementsAre("late AttributeChanged(K\\ATT\\Mode)",
                                              "late AttributeChanged(K\\ATT\\Mode)"));
}

// ---- Walks over the members ---------------------------------------------------------------------

TEST(AppObjectMembers, ClearReferencesZeroesEveryInputInItsWidth) {
    FixtureLibrary library;
    HostedBlock block = CreateBlock("InputsOnly");
    auto inputs = block->IAppObject_Inputs();
    inputs->IInputs_Item("Flow")->IInput_Value("4203");
    inputs->IInputs_Item("Pressure")->IInput_Value("234501");

    block->IAppObject_ClearReferences();

    EXPECT_EQ(inputs->IInputs_Item("Flow")->IInput_Value(), "0000");
    EXPECT_EQ(inputs->IInputs_Item("Pressure")->IInput_Value(), "000000");

    HostedBlock withoutInputs = CreateBlock("OnlyOutputs");
    withoutInputs->IAppObject_ClearReferences();
    EXPECT_EQ(withoutInputs->IAppObject_Inputs(), nullptr);
}

TEST(AppObjectMembers, DeviceDependenceIsThatOfAnyAttribute) {
    FixtureLibrary library;
    ScopedMessageRecorder messages;
    EXPECT_TRUE(CreateBlock("Widths")->IAppObject_IsDeviceDependent());
    EXPECT_FALSE(CreateBlock("Worked")->IAppObject_IsDeviceDependent());
    EXPECT_FALSE(CreateBlock("OnlyOutputs")->IAppObject_IsDeviceDependent());
}

// ---- Teardown ---------------------------------------------------------------------------------

TEST(AppObjectLifecycle, DestroyTakesTheBlockApartAndLetsItGo) {
    FixtureLibrary library;
    auto block = testing::CreateBlock("Widths").Release();
    block->IAppObject_Parent(std::make_shared<RecordingListener>());
    block->IAppObject_CallBack(std::make_shared<RecordingListener>());

    block->IAppObject_Destroy();

    EXPECT_EQ(block->IAppObject_Inputs(), nullptr);
    EXPECT_EQ(block->IAppObject_Outputs(), nullptr);
    EXPECT_EQ(block->IAppObject_Attributes(), nullptr);
    EXPECT_EQ(block->IAppObject_Parent(), nullptr);
    EXPECT_FALSE(block->IAppObject_IsDeviceDependent());
    EXPECT_EQ(block->IAppObject_Name(), "Widths");
    EXPECT_EQ(block->IAppObject_CDBDimension(), 8);
    block->IAppObject_ClearReferences();
    block->IAppObject_GlobalKey("K");
}

TEST(AppObjectLifecycle, NoMemberKeepsADestroyedBlockAlive) {
    FixtureLibrary library;
    // RoundTrip holds a Struct, whose fields refer back to their attribute.
    for (const char* type : {"Widths", "Worked", "RoundTrip", "OnlyOutputs"}) {
        auto block = testing::CreateBlock(type).Release();
        block->IAppObject_GlobalKey("K");
        block->IAppObject_CallBack(std::make_shared<RecordingListener>());
        const std::weak_ptr<CDBAppObject> watch = block;

        block->IAppObject_Destroy();
        block.reset();

        EXPECT_TRUE(watch.expired()) << type;
    }
}

}  // namespace
}  // namespace zerbin
