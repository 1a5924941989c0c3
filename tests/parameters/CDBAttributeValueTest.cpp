// The value of an attribute: what a write stores, what the reads and the display forms give,
// the return to the default, the macro terminal test, and bad input of every kind.
#include <gmock/gmock.h>

#include "datatypes/CDBFields.h"
#include "datatypes/UnitConverter.h"
#include "tests/support/MacroDoubles.h"
#include "tests/support/ParameterTestSupport.h"
#include "tests/support/RecordingListener.h"

namespace zerbin::testing {
namespace {

using ::testing::ElementsAre;

TEST_F(ParameterTest, AWriteStoresByClass) {
    const struct {
        const char* attribute;
        const char* written;
        const char* read;
    } rows[] = {
        {"Setpoint", "1,5", "1.5"},
        {"Count", "25", "2.5"},       // DivideBy 10: the quotient, and nothing multiplies back
        {"Count", "12,5", "1.2"},     // the divisor reads the text as it came
        {"Label", "a,b.c", "a,b.c"},  // a text is neither divided nor re-punctuated
        {"Mode", "2", "2"},
        {"Flags", " 7 ", " 7 "},
    };
    TestBlock block("PrmValues");
    for (const auto& row : rows) {
        block.Attribute(row.attribute)->IAttribute_Value(row.written);
        EXPECT_EQ(block.Attribute(row.attribute)->IAttribute_Value(), row.read)
            << row.attribute << " " << row.written;
    }
}

// A later block of a type restores a saved value without copying the member only where the
// value stays as the type has it: a text keeps its separator as written.
TEST_F(ParameterTest, ARestoredTextKeepsItsSeparatorInALaterBlock) {
    ScopedLocale comma;
    ZERBIN_REQUIRE_COMMA_LOCALE(comma);
    TestBlock first("PrmValues");
    TestBlock later("PrmValues");
    const auto project = ParseXml(
        "<B><Attributes><Label>a.b</Label><Ratio>0.5</Ratio>"
        "</Attributes></B>");
    later->IAppObject_XmlLoad(project->document_element());
    EXPECT_EQ(later.Attribute("Label")->IAttribute_Value(), "a.b");
    EXPECT_EQ(later.Attribute("Ratio")->IAttribute_Value(), "0,5");
}

TEST_F(ParameterTest, AStructureWriteGivesEachFieldItsToken) {
    TestBlock block("PrmStruct");
    auto setting = block.Attribute("Setting");
    auto fields = setting->FieldsCollection();
    const struct {
        const char* written;
        const char* temp;
        const char* state;
        const char* value;
    } rows[] = {
        {"20.5 1", "20.5", "1", "20.5 1"},
        {"7 1 9", "7", "1", "7 1"},  // tokens beyond the last field are dropped
        {"7", "7", "", "7"},         // a single token is the first field
        {" 1", "", "1", " 1"},       // an empty first field stays empty, and first
        {"7  1", "7", "", "7"},      // two blanks: the second field is the empty token
        {"", "", "", ""},
    };
    for (const auto& row : rows) {
        setting->IAttribute_Value(row.written);
        EXPECT_EQ(fields->Item("Temp")->IField_Value(), row.temp) << row.written;
        EXPECT_EQ(fields->Item("State")->IField_Value(), row.state) << row.written;
        EXPECT_EQ(setting->IAttribute_Value(), row.value) << row.written;
    }
    auto single = block.Attribute("Single");
    single->IAttribute_Value("42");
    EXPECT_EQ(single->IAttribute_Value(), "42") << "a single field takes the whole text";
    EXPECT_EQ(single->IAttribute_DispValue(), "42 s");
}

TEST_F(ParameterTest, DisplayFormsFollowTheClassAndOnlyTheValueIsConverted) {
    TestBlock values("PrmValues");
    TestBlock structures("PrmStruct");
    auto setpoint = values.Attribute("Setpoint");
    setpoint->IAttribute_Value("22.5");
    EXPECT_EQ(setpoint->IAttribute_DispValue(), "22.5 C");
    EXPECT_EQ(setpoint->IAttribute_DispDefault(), "21.5 C");
    EXPECT_EQ(setpoint->IAttribute_DispMin(), "5 C");
    EXPECT_EQ(setpoint->IAttribute_DispMax(), "35.5 C");

    auto mode = values.Attribute("Mode");
    EXPECT_EQ(mode->IAttribute_DispDefault(), "ON");
    mode->IAttribute_Value("2");
    EXPECT_EQ(mode->IAttribute_DispValue(), "AUTO");
    mode->IAttribute_Value("7");
    EXPECT_EQ(mode->IAttribute_DispValue(), "") << "no such code";

    EXPECT_EQ(values.Attribute("Flags")->IAttribute_DispValue(), "5");
    EXPECT_EQ(values.Attribute("Flags")->IAttribute_DispDefault(), "5");
    values.Attribute("Label")->IAttribute_Value(" x.y ");
    EXPECT_EQ(values.Attribute("Label")->IAttribute_DispValue(), "x.y");
    EXPECT_EQ(values.Attribute("Label")->IAttribute_DispMin(), "");

    auto setting = structures.Attribute("Setting");
    setting->IAttribute_Value("19.5 0");
    EXPECT_EQ(setting->IAttribute_DispValue(), "19.5 C OFF");
    EXPECT_EQ(setting->IAttribute_DispDefault(), "21.5 C AUTO");
    EXPECT_EQ(setting->IAttribute_DispMin(), "10 C");
    EXPECT_EQ(setting->FieldsCollection()->Item("Temp")->IField_Value(), "19.5")
        << "the display read gives the fields the tokens of the value";
}

TEST_F(ParameterTest, InUsUnitsTheValueIsConvertedWhileDefaultAndLimitsKeepTheDictionaryUnit) {
    SetUnitSystem(UnitSystem::US);
    TestBlock block("PrmValues");
    auto setpoint = block.Attribute("Setpoint");
    setpoint->IAttribute_Value("20");
    auto converter = setpoint->UnitsManager();
    EXPECT_EQ(setpoint->IAttribute_DispValue(),
              converter->ToDisplayValue("105", "20") + " " + converter->DisplayUnit("105"));
    EXPECT_NE(converter->DisplayUnit("105"), "C") << "the fixture type must be converted";
    EXPECT_EQ(setpoint->IAttribute_DispDefault(), "21.5 C");
    EXPECT_EQ(setpoint->IAttribute_DispMax(), "35.5 C");
}

TEST_F(ParameterTest, BackToDefaultRestoresTheStoredDefaultAndTellsTheListeners) {
    TestBlock block("PrmValues");
    TestBlock structures("PrmStruct");
    block->IAppObject_GlobalKey("K");
    auto listener = std::make_shared<RecordingListener>();
    auto setpoint = block.Attribute("Setpoint");
    setpoint->IAttribute_CallBack(listener);
    setpoint->IAttribute_Value("30");
    setpoint->IAttribute_BackToDefault();
    EXPECT_EQ(setpoint->IAttribute_Value(), "21.5");
    EXPECT_THAT(listener->Lines(), ElementsAre("AttributeChanged(K\\ATT\\Setpoint)",
                                               "AttributeChanged(K\\ATT\\Setpoint)"));

    auto setting = structures.Attribute("Setting");
    setting->IAttribute_Value("1 1");
    setting->IAttribute_BackToDefault();
    EXPECT_EQ(setting->IAttribute_Value(), "21.5 2") << "the fields follow at once";
}

TEST_F(ParameterTest, MacroConnectionIsAnExactMatchOfTheGlobalKeyAmongAttributeTerminals) {
    TestBlock block("PrmValues");
    block->IAppObject_GlobalKey("K");
    auto setpoint = block.Attribute("Setpoint");
    EXPECT_FALSE(setpoint->IAttribute_IsMacroConnected()) << "no parent";

    auto macro = std::make_shared<FakeMacro>();
    block->IAppObject_Parent(FakeMacroHost::Holding(macro));
    auto broken = FakeMacroAttributeGroup::WithKeys({"K\\ATT\\Setpoint"});
    broken->fails = true;
    macro->attributeGroups = {
        FakeMacroAttributeGroup::WithKeys({"k\\att\\setpoint", "K\\ATT\\Gain"}), broken};
    EXPECT_FALSE(setpoint->IAttribute_IsMacroConnected());
    EXPECT_TRUE(block.Attribute("Gain")->IAttribute_IsMacroConnected());
    macro->attributeGroups.push_back(FakeMacroAttributeGroup::WithKeys({"K\\ATT\\Setpoint"}));
    EXPECT_TRUE(setpoint->IAttribute_IsMacroConnected());
}

}  // namespace
}  // namespace zerbin::testing
