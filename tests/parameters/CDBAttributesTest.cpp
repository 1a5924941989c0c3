// The collection of attributes and the model of one: keys, listeners, visibility,
// the interceptor's place in the load, and the editor by class.
#include <gmock/gmock.h>

#include "tests/support/ParameterTestSupport.h"

namespace zerbin::testing {
namespace {

using ::testing::ElementsAre;

TEST_F(ParameterTest, KeysReachTheAttributesAndTheirFieldsEachTimeTheBlockSetsThem) {
    TestBlock block("PrmStruct");
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

TEST_F(ParameterTest, EachClassGetsItsEditorAndSetValueHandsItTheAttribute) {
    auto factory = std::make_shared<RecordingEditorFactory>();
    SetEditorFactory(factory);
    TestBlock values("PrmValues");
    EXPECT_THAT(factory->names, ElementsAre("frmCPModif1", "frmCPModif1", "frmCPModif1",
                                            "frmCPModif1", "frmCPModif2", "frmCPModif5",
                                            "frmCPModif3", "frmCPModif2", "frmCPModif1"));
    TestBlock structures("PrmStruct");
    EXPECT_EQ(factory->names.back(), "frmCPModif4");

    auto mode = values.Attribute("Mode");
    mode->IAttribute_SetValue();
    auto editor = std::dynamic_pointer_cast<RecordingEditor>(mode->Editor());
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->point, std::static_pointer_cast<IObject>(mode));
    EXPECT_EQ(editor->shown, 1);
}

}  // namespace
}  // namespace zerbin::testing
