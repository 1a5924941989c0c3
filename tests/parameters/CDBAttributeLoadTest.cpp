// Loading an attribute from its definition element: keys, elements, warnings, the branches
// for selectors, device lists, numbers and structures, the global keys the block hands down
// and the editor of each class.
#include <gmock/gmock.h>

#include "datatypes/CDBFields.h"
#include "datatypes/CDBSNVTType.h"
#include "datatypes/CDBUnits.h"
#include "platform/Messages.h"
#include "tests/support/ParameterTestSupport.h"

namespace zerbin::testing {
namespace {

using ::testing::ElementsAre;

std::string InputTypes(const TestBlock& block, const std::string& input) {
    return block->IAppObject_Inputs()
        ->IInputs_Item(input)
        ->Iinput_SNVTCompatibles()
        ->ICompatibleSNVTs_Item(1)
        ->ICompatibleSNVT_ID();
}

TEST_F(ParameterTest, KeysAreReadByTheirOwnRules) {
    TestBlock block("PrmValues");
    const struct {
        const char* keys;
        bool keepFloat;
        int32_t divideBy;
        bool toolOnly;
        bool unitDependent;
    } rows[] = {
        {"", false, 1, false, false},
        {"KeepFloatStandard='0'", true, 1, false, false},
        {"DivideBy='2.5'", false, 2, false, false},
        {"DIVIDEBY='3.5'", false, 4, false, false},
        {"DivideBy='ten'", false, 0, false, false},
        {"DivideBy='1e12'", false, 1, false, false},  // no 32-bit divisor: the key is dropped
        {"ToolOnly='yes'", false, 1, false, false},
        {"toolonly='1'", false, 1, true, false},
        {"UnitDependent='yes'", false, 1, false, false},
        {"UnitDependent='2' Other='x'", false, 1, false, true},
    };
    int n = 0;
    for (const auto& row : rows) {
        const std::string name = "A" + std::to_string(n++);
        auto attribute =
            Load(block, "<" + name + " " + row.keys + "><SNVTTYPE>108</SNVTTYPE></" + name + ">");
        EXPECT_EQ(attribute->IAttribute_IsKeepFloatStandard(), row.keepFloat) << row.keys;
        EXPECT_EQ(attribute->IAttribute_DividedBy(), row.divideBy) << row.keys;
        EXPECT_EQ(attribute->IAttribute_ToolOnly(), row.toolOnly) << row.keys;
        EXPECT_EQ(attribute->IAttribute_IsUnitDependent(), row.unitDependent) << row.keys;
    }
}

TEST_F(ParameterTest, EmptyElementsWarnAndTheLoadGoesOn) {
    TestBlock block("PrmValues");
    const struct {
        const char* element;
        const char* warning;
    } rows[] = {
        {"<W1><CDBORDERINPOSITION/><SNVTTYPE>108</SNVTTYPE></W1>",
         "W1: CDBOrderingPosition not defined into the XML file of the object PrmValues."},
        {"<W2><SNVTTYPE></SNVTTYPE></W2>",
         "W2: SNVTType not defined into the XML file of the object PrmValues."},
        {"<W3><SNVTTYPE>108</SNVTTYPE><DEFAULTVALUE/></W3>",
         "W3: Default value not defined into the XML file of the object PrmValues; 0 assumed."},
    };
    for (const auto& row : rows) {
        ScopedMessageRecorder messages;
        Load(block, row.element);
        ASSERT_FALSE(messages.Messages().empty()) << row.element;
        EXPECT_EQ(messages.Messages()[0].text, row.warning);
        EXPECT_EQ(messages.Messages()[0].title, "Warning");
        EXPECT_EQ(messages.Messages()[0].icon, MessageIcon::Critical);
    }
    auto w3 = inline_.IAttributes_Item("W3");
    EXPECT_EQ(w3->IAttribute_Value(), "0");
    EXPECT_EQ(w3->IAttribute_DefaultValue(), "0");
    EXPECT_EQ(inline_.IAttributes_Item("W1")->IAttribute_SNVTType()->ISNVType_Length(), 1);
}

TEST_F(ParameterTest, NumericDefaultAndLimitsComeFromTheirPaths) {
    TestBlock block("PrmValues");
    auto setpoint = block.Attribute("Setpoint");
    EXPECT_EQ(setpoint->IAttribute_DefaultValue(), "21.5");
    EXPECT_EQ(setpoint->IAttribute_Value(), "21.5");
    EXPECT_EQ(setpoint->IAttribute_Min(), "5");
    EXPECT_EQ(setpoint->IAttribute_Max(), "35.5");
    EXPECT_EQ(setpoint->IAttribute_Description(), "Room setpoint");
    EXPECT_EQ(block.Attribute("Ratio")->IAttribute_DefaultValue(), "0.5");
    EXPECT_EQ(block.Attribute("Ratio")->IAttribute_Max(), "100");
}

TEST_F(ParameterTest, AUnitSelectorListsItsChoicesAndTakesTheFirst) {
    TestBlock block("PrmUnits");
    auto units = block.Attribute("Units");
    EXPECT_TRUE(units->IAttribute_IsUnit());
    EXPECT_EQ(units->IAttribute_SNVTType()->ISNVType_GenType(), "Enum");
    EXPECT_EQ(units->IAttribute_SNVTType()->ISNVType_Length(), 1);
    EXPECT_EQ(units->IAttribute_SNVTType()->ISNVType_EnumDesc(),
              "105,Celsius;122,Fahrenheit;124,Kelvin;");
    EXPECT_EQ(units->IAttribute_Value(), "105");
    EXPECT_EQ(units->IAttribute_DefaultValue(), "105");
    EXPECT_EQ(units->IAttribute_Fields(), nullptr);
    auto kelvin = units->SelectableUnits()->Item("3");
    ASSERT_NE(kelvin, nullptr);
    EXPECT_EQ(kelvin->UnitName, "Kelvin");
    EXPECT_EQ(kelvin->UnitTypeID, "124");
    EXPECT_EQ(kelvin->DifferentialTypeID, "");
    EXPECT_EQ(units->SelectableUnits()->Item("celsius")->DifferentialTypeID, "120");
}

// The block's own selector gives its first choice to the type-dependent members only; a
// default before or after a selector's choices overrides that first choice.
TEST_F(ParameterTest, ASelectorsFirstChoiceReachesTheTypeDependentMembersUnlessADefaultOverrides) {
    TestBlock block("PrmTypes");
    auto type = block.Attribute("Type");
    EXPECT_TRUE(type->IAttribute_IsType());
    EXPECT_EQ(type->IAttribute_SNVTType()->ISNVType_EnumDesc(),
              "105,Temperature;106,Mode;107,Percent;");
    EXPECT_EQ(type->IAttribute_Value(), "105");
    EXPECT_EQ(InputTypes(block, "In2"), "108");
    auto outputs = block->IAppObject_Outputs();
    EXPECT_EQ(outputs->IOutputs_Item("Out1")->IOutput_SNVTType()->ISNVType_ID(), "105");
    EXPECT_EQ(outputs->IOutputs_Item("Out2")->IOutput_SNVTType()->ISNVType_ID(), "108");
    auto unitsBefore =
        Load(block, "<U1><DEFAULTVALUE>122</DEFAULTVALUE><UNITS><A>105</A><B>122</B></UNITS></U1>");
    auto unitsAfter =
        Load(block, "<U2><UNITS><A>105</A><B>122</B></UNITS><DEFAULTVALUE>122</DEFAULTVALUE></U2>");
    EXPECT_EQ(unitsBefore->IAttribute_Value(), "122");
    EXPECT_EQ(unitsAfter->IAttribute_Value(), "122");

    EXPECT_EQ(InputTypes(block, "In1"), "105") << "the block's own type selector";
    auto typesBefore =
        Load(block, "<T1><DEFAULTVALUE>107</DEFAULTVALUE><TYPES><A>106</A></TYPES></T1>");
    EXPECT_EQ(InputTypes(block, "In1"), "105") << "no first choice was written";
    auto typesAfter =
        Load(block, "<T2><TYPES><A>106</A><B>107</B></TYPES><DEFAULTVALUE>107</DEFAULTVALUE></T2>");
    EXPECT_EQ(InputTypes(block, "In1"), "107") << "the choice and the default after it went "
                                                  "through the write";
    EXPECT_EQ(typesAfter->IAttribute_Value(), "107");
    EXPECT_EQ(typesAfter->IAttribute_DefaultValue(), "107");
    EXPECT_EQ(typesBefore->IAttribute_Value(), "107");
}

TEST_F(ParameterTest, ADeviceDependentListComesFromTheOwnerDeviceDocument) {
    auto device = xml::LoadString(
        "<Device><Fans><Low>1</Low><!-- off --><High>2,5:fast</High></Fans></Device>", nullptr);
    TestBlock withDocument("PrmValues", WithOwnerDevice(device));
    TestBlock withoutDocument("PrmValues");
    auto takeOver = std::make_shared<RecordingInterceptor>();
    takeOver->takeOverDeviceList = true;
    const struct {
        const TestBlock* owner;
        const char* element;
        std::shared_ptr<AttributeInterceptor> interceptor;
        const char* enumDesc;
        const char* value;
    } rows[] = {
        {&withDocument, "<S DeviceDependent='Fans'/>", nullptr, "1,Low;2.5,High;", "1"},
        {&withDocument, "<S DeviceDependent='Fans'><DEFAULTVALUE>2.5</DEFAULTVALUE></S>", nullptr,
         "1,Low;2.5,High;", "2.5"},
        {&withDocument, "<S DeviceDependent='Pumps'/>", nullptr, "", ""},
        {&withoutDocument, "<S DeviceDependent='Fans'><SNVTTYPE>105</SNVTTYPE></S>", nullptr, "",
         ""},
        {&withDocument, "<S DeviceDependent='Fans'/>", takeOver, "", ""},
    };
    for (const auto& row : rows) {
        CDBAttributes attributes;
        auto document = xml::LoadString(row.element, nullptr);
        auto speed = attributes.AddFromDefinition("S", document->document_element(),
                                                  row.owner->Object(), row.interceptor);
        EXPECT_TRUE(speed->IAttribute_IsDeviceDependent());
        EXPECT_EQ(speed->IAttribute_DeviceKey(), NthToken(row.element, 1, "'"));
        EXPECT_EQ(speed->IAttribute_SNVTType()->ISNVType_GenType(), "Enum") << row.element;
        EXPECT_EQ(speed->IAttribute_SNVTType()->ISNVType_Length(), 1) << row.element;
        EXPECT_EQ(speed->IAttribute_SNVTType()->ISNVType_EnumDesc(), row.enumDesc) << row.element;
        EXPECT_EQ(speed->IAttribute_Value(), row.value) << row.element;
    }
    EXPECT_THAT(takeOver->calls,
                ElementsAre("InterceptUnitDependent(S,0,'')", "InterceptDifferential(S,0)",
                            "InterceptDeviceList(S)"));
}

TEST_F(ParameterTest, AStructureTakesItsFieldDefaultsAndLimitsByPath) {
    ScopedMessageRecorder messages;
    TestBlock block("PrmStruct");
    auto setting = block.Attribute("Setting");
    EXPECT_EQ(setting->IAttribute_Value(), "21.5 2");
    EXPECT_EQ(setting->IAttribute_DefaultValue(), "21.5 2");
    EXPECT_EQ(setting->IAttribute_SNVTType()->ISNVType_Length(), 3);
    auto temp = setting->FieldsCollection()->Item("Temp");
    EXPECT_EQ(temp->FieldMin(), "10");
    EXPECT_EQ(temp->FieldMax(), "30");
    EXPECT_EQ(temp->IField_Parent(), std::static_pointer_cast<IObject>(setting));
    EXPECT_EQ(setting->IAttribute_Min(), "") << "limits are held per field";

    EXPECT_EQ(block.Attribute("Partial")->IAttribute_Value(), "-5 0");
    EXPECT_EQ(block.Attribute("Single")->IAttribute_Value(), "9");
    ASSERT_EQ(messages.Messages().size(), 1U);
    EXPECT_EQ(messages.Messages()[0].text,
              "Partial.State: Default value not defined into the XML file of the object "
              "PrmStruct; 0 assumed.");
    EXPECT_EQ(messages.Messages()[0].title, "Warning");
    EXPECT_EQ(messages.Messages()[0].icon, MessageIcon::Critical);
}

// Blocks of a type share their fields' records until one is handed out: what one block then
// does to it, no other block sees.
TEST_F(ParameterTest, AFieldRecordHandedOutIsItsBlocksOwn) {
    const auto record = [](TestBlock& block) {
        return std::dynamic_pointer_cast<CDBSNVTType>(
            block.Attribute("Setting")->FieldsCollection()->Item("Temp")->IField_SNVTType());
    };
    TestBlock first("PrmStruct");
    TestBlock second("PrmStruct");
    const std::string before = record(second)->ISNVType_Max();
    record(first)->SetMax("1");
    record(second)->SetMax("2");
    TestBlock third("PrmStruct");
    EXPECT_EQ(record(third)->ISNVType_Max(), before);
}

TEST_F(ParameterTest, KeysReachTheAttributesAndTheirFieldsEachTimeTheBlockSetsThem) {
    // The second block of a type copies a member only when it is first reached: here after
    // the keys were set.
    TestBlock first("PrmStruct");
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

    // A block made from the compiled type makes no editor, and so reaches no member, until an
    // attribute is asked for its own.
    const std::size_t made = factory->names.size();
    TestBlock second("PrmValues");
    EXPECT_EQ(factory->names.size(), made);
    EXPECT_TRUE(second->AttributesCollection()->NoneReached());
    auto secondMode = second.Attribute("Mode");
    secondMode->IAttribute_SetValue();
    EXPECT_EQ(factory->names.size(), made + 1);
    EXPECT_EQ(std::dynamic_pointer_cast<RecordingEditor>(secondMode->Editor())->shown, 1);
}

}  // namespace
}  // namespace zerbin::testing
