// The frame of the application object: what it keeps for the host, the key scheme, the walks
// that hand host state to the members, and taking a block apart.
#include <gmock/gmock.h>

#include "app_object/CDBAppObject.h"
#include "tests/support/Blocks.h"
#include "tests/support/RecordingListener.h"

namespace zerbin {
namespace {

using testing::Fixtures;
using testing::RecordingListener;
using testing::TestBlock;

TEST(AppObjectWidth, IsTheUserNamePlusFiveOrTheBaseWidth) {
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    const struct {
        const char* type;  // Widths: inputs Flow, Level; outputs Out1, Alarm
        const char* userName;
        int32_t inputWidth;
        int32_t width;
    } rows[] = {
        {"Widths", "Zürich-Ost", 5, 15}, {"Widths", "Fan", 5, 10},
        {"Widths", "Fan 12", 5, 11},     {"InputsOnly", "ab", 8, 7},  // no outputs: no base width
        {"OnlyOutputs", "", 0, 5},  // no inputs: no base width at all
    };
    for (const auto& row : rows) {
        TestBlock block(row.type, fixtures);
        block->IAppObject_UserName(row.userName);
        EXPECT_EQ(block->IAppObject_InputWidth(), row.inputWidth) << row.type;
        EXPECT_EQ(block->IAppObject_Width(), row.width) << row.userName;
    }
    EXPECT_EQ(TestBlock("Widths", fixtures)->IAppObject_Width(), 0) << "no user name, no width";
}

TEST(AppObjectKeys, ReachEveryMemberThatExists) {
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    TestBlock bare("OnlyOutputs", fixtures);  // no attributes, no inputs
    bare->IAppObject_GlobalKey("K");
    // A later block of a type copies a member when it first reaches it: here after the keys.
    TestBlock first("Widths", fixtures);
    TestBlock block("Widths", fixtures);

    block->IAppObject_GlobalKey("K");
    block->IAppObject_ExtendedKey("E");

    EXPECT_EQ(block->IAppObject_Attributes()->IAttributes_Item("Mode")->IAttribute_GlobalKey(),
              "K\\ATT\\Mode");
    EXPECT_EQ(block->IAppObject_Inputs()->IInputs_Item("Level")->IInput_GlobalKey(),
              "K\\RIN\\Level");
    EXPECT_EQ(block->IAppObject_Outputs()->IOutputs_Item("Alarm")->IOutput_GlobalKey(),
              "K\\ROU\\Alarm");

    EXPECT_EQ(block->IAppObject_Outputs()->IOutputs_Item("Out1")->IOutput_ExtendedKey(),
              "E\\ROU\\Out1");
    EXPECT_EQ(block->IAppObject_Inputs()->IInputs_Item("Level")->IInput_ExtendedKey(),
              "E\\RIN\\Level");
}

TEST(AppObjectMembers, ClearReferencesZeroesEveryInputInItsWidth) {
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    TestBlock block("InputsOnly", fixtures);
    auto inputs = block->IAppObject_Inputs();
    inputs->IInputs_Item("Flow")->IInput_Value("4203");
    inputs->IInputs_Item("Pressure")->IInput_Value("234501");

    block->IAppObject_ClearReferences();

    EXPECT_EQ(inputs->IInputs_Item("Flow")->IInput_Value(), "0000");
    EXPECT_EQ(inputs->IInputs_Item("Pressure")->IInput_Value(), "000000");
}

TEST(AppObjectMembers, IsDeviceDependentWhenAnyAttributeIs) {
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    EXPECT_TRUE(TestBlock("Widths", fixtures)->IAppObject_IsDeviceDependent());
    EXPECT_FALSE(TestBlock("Worked", fixtures)->IAppObject_IsDeviceDependent());
}

TEST(AppObjectLifecycle, DestroyTakesTheBlockApartAndLetsItGo) {
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    auto block = TestBlock("Widths", fixtures).Release();
    block->IAppObject_Parent(std::make_shared<RecordingListener>());
    block->IAppObject_CallBack(std::make_shared<RecordingListener>());

    block->IAppObject_Destroy();

    EXPECT_EQ(block->IAppObject_Inputs(), nullptr);
    EXPECT_EQ(block->IAppObject_Outputs(), nullptr);
    EXPECT_EQ(block->IAppObject_Attributes(), nullptr);
    EXPECT_EQ(block->IAppObject_Parent(), nullptr);
    EXPECT_EQ(block->IAppObject_CDBDimension(), 8);
    block->IAppObject_ClearReferences();
    block->IAppObject_GlobalKey("K");
}

TEST(AppObjectLifecycle, NoMemberKeepsADestroyedBlockAlive) {
    const HostSetup fixtures = Fixtures("app_object", "snvt.xml");
    // RoundTrip holds a Struct, whose fields refer back to their attribute.
    for (const char* type : {"Widths", "Worked", "RoundTrip", "OnlyOutputs"}) {
        auto block = TestBlock(type, fixtures).Release();
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
