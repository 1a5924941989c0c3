// The collection of attributes and the model of one: keys, listeners, visibility,
// the interceptor's place in the load, and the editor by class.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "datatypes/CDBField.h"
#include "datatypes/CDBFields.h"
#include "interfaces/Error.h"
#include "platform/Messages.h"
#include "tests/parameters/ParameterTestSupport.h"
#include "tests/support/RecordingListener.h"

namespace zerbin::testing {
namespace {

using ::testing::ElementsAre;

TEST_F(ParameterTest, KeysReachTheAttributesAndTheirFieldsEachTimeTheBlockSetsThem) {
    Block block("PrmStruct");
    for (const std::string key : {"P\\B1", "P\\B2"}) {
        block->IAppObject_GlobalKey(key);
        block->IAppObject_ExtendedKey(key + "x");
        auto setting = block.Attribute("Setting");
        EXPECT_EQ(block->IAppObject_Attributes()->IAttributes_GlobalKey(), key + "\\ATT");
        EXPECT_EQ(setting->IAttribute_GlobalKey(), key + "\\ATT\\Setting");
        EXPECT_EQ(setting->IAttribute_ExtendedKey(), key + "x\\ATT\\Setting");
        auto temp = setting->IAttribute_Fields()->IFields_Item("Temp");
        EXPECT_EQ(temp->IField_GlobalKey(), key + "\\ATT\\Setting\\Temp");
        EXPECT_EQ(temp->IField_ExtendedKey(), key + "x\\ATT\\Setting\\Temp");
    }
}

TEST_F(ParameterTest, CanvasVisibilityIsTheAttributesOwnVisibility) {
    Block block("PrmValues");
    auto setpoint = block.Attribute("Setpoint");
    auto gain = block.Attribute("Gain");
    EXPECT_TRUE(setpoint->IAttribute_Visible());
    EXPECT_FALSE(gain->ICanvasElement_Visible());
    setpoint->ICanvasElement_Visible(false);
    gain->ICanvasElement_Visible(true);
    EXPECT_FALSE(setpoint->IAttribute_Visible());
    EXPECT_TRUE(gain->IAttribute_Visible());
}

TEST_F(ParameterTest, TheInterceptorSeesTheKeysBeforeTheElementsAndItsFlagsStand) {
    Block block("PrmValues");
    auto interceptor = std::make_shared<RecordingInterceptor>();
    interceptor->forceUnitDependent = true;
    auto attribute = Load(block,
                          "<Probe Differential='1'><DESCRIPTION>late</DESCRIPTION>"
                          "<SNVTTYPE>105</SNVTTYPE></Probe>",
                          interceptor);
    EXPECT_THAT(interceptor->calls, ElementsAre("InterceptUnitDependent(Probe,0,'')",
                                                "InterceptDifferential(Probe,1)"));
    EXPECT_TRUE(attribute->IAttribute_IsUnitDependent());
    EXPECT_EQ(attribute->IAttribute_SNVTType()->ISNVType_GenType(), "") << "waits for its unit";
    EXPECT_EQ(attribute->IAttribute_Description(), "late");
}

TEST_F(ParameterTest, EachClassGetsItsEditorAndSetValueHandsItTheAttribute) {
    auto factory = std::make_shared<RecordingEditorFactory>();
    SetEditorFactory(factory);
    Block values("PrmValues");
    EXPECT_THAT(factory->names, ElementsAre("frmCPModif1", "frmCPModif1", "frmCPModif1",
                                            "frmCPModif1", "frmCPModif2", "frmCPModif5",
                                            "frmCPModif3", "frmCPModif2", "frmCPModif1"));
    Block structures("PrmStruct");
    EXPECT_EQ(factory->names.back(), "frmCPModif4");

    auto mode = values.Attribute("Mode");
    mode->IAttribute_SetValue();
    auto editor = std::dynamic_pointer_cast<RecordingEditor>(mode->Editor());
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->point, std::static_pointer_cast<IObject>(mode));
    EXPECT_EQ(editor->shown, 1);
}

TEST_F(ParameterTest, AStructureAndAnEditorThatHoldsItsAttributeGoWithTheBlock) {
    SetEditorFactory(std::make_shared<RecordingEditorFactory>());
    ScopedMessageRecorder messages;
    std::weak_ptr<CDBAttribute> setting;
    {
        Block block("PrmStruct");
        block.Attribute("Setting")->IAttribute_SetValue();  // the editor keeps its point
        setting = block.Attribute("Setting");
    }
    EXPECT_TRUE(setting.expired());
}

TEST_F(ParameterTest, AnAttributeOfNoKnownClassHasNoEditorAndSetValueDoesNothing) {
    auto factory = std::make_shared<RecordingEditorFactory>();
    SetEditorFactory(factory);
    Block block("PrmValues");
    factory->names.clear();
    ScopedMessageRecorder messages;
    auto loose = Load(block, "<Loose UnitDependent='1'/>");
    EXPECT_TRUE(factory->names.empty());
    EXPECT_EQ(loose->Editor(), nullptr);
    loose->IAttribute_SetValue();
    EXPECT_TRUE(messages.Messages().empty());
}

}  // namespace
}  // namespace zerbin::testing
