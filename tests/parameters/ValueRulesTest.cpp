#include "parameters/ValueRules.h"

#include <gtest/gtest.h>

#include "tests/support/Blocks.h"

namespace zerbin {
namespace {

using testing::DataDir;
using testing::Shipped;
using testing::TestBlock;
using testing::UseLibrary;

TEST(CheckValue, TakesWhatTheEditorsTakeAndNamesWhyNot) {
    UseLibrary(DataDir() / "library");
    const struct {
        const char* type;
        const char* attribute;
        const char* text;
        const char* value;      // what is written when taken
        const char* objection;  // empty when taken
    } rows[] = {
        {"THERMOSTAT", "Mode", "HVAC_HEAT", "1", ""},
        {"THERMOSTAT", "Mode", "1", "1", ""},
        {"THERMOSTAT", "Mode", "999", "", "'999' is no code or name of the list"},
        {"SETPOINT_UNIT", "Units", "CelsiusWide", "39", ""},
        {"SETPOINT_UNIT", "Units", "7", "", "'7' is no code or name of the list"},
        {"IO_CHANNEL", "Channel", "UI5", "5", ""},
        {"THERMOSTAT", "CoolSetpoint", "35", "35", ""},
        {"THERMOSTAT", "CoolSetpoint", "35,0", "35,0", ""},
        {"THERMOSTAT", "CoolSetpoint", "35.5", "", "35.5 is outside the limits 15 to 35"},
        {"THERMOSTAT", "CoolSetpoint", "abc", "", "'abc' is not a number"},
        {"THERMOSTAT", "CoolSetpoint", "20abc", "", "'20abc' is not a number"},
        {"ALARM_LIMITS", "Deadband", "1e9", "", "1e9 is outside the limits"},
        {"ALARM_LIMITS", "AlarmMask", "65535", "65535", ""},
        {"ALARM_LIMITS", "AlarmMask", "65536", "", "65536 is no whole number from 0 to 65535"},
        {"ALARM_LIMITS", "AlarmMask", "1.5", "", "1.5 is no whole number from 0 to 65535"},
        {"LABEL", "Text", "Caf\xC3\xA9 \xE2\x82\xAC", "Caf\xC3\xA9 \xE2\x82\xAC", ""},
        {"LABEL", "Text", "\xC5\x82", "", "'\xC5\x82' is not in the 8-bit code page of texts"},
        {"LABEL", "Text", "a\tb", "", "the text holds a control character"},
        {"LABEL", "Text", "1234567890123456789012345678901", "1234567890123456789012345678901", ""},
        {"LABEL", "Text", "12345678901234567890123456789012", "",
         "'12345678901234567890123456789012' is longer than the 31 characters the type takes"},
        {"WEEKLY_SCHEDULE", "Holiday", "0 12 25", "0 12 25", ""},
        {"WEEKLY_SCHEDULE", "Holiday", "0 12", "",
         "'0 12' needs 3 values separated by single blanks, one for each field"},
        {"WEEKLY_SCHEDULE", "Holiday", "0 x 25", "", "month: 'x' is not a number"},
    };
    for (const auto& row : rows) {
        TestBlock block(row.type, Shipped());
        const auto attribute = block->IAppObject_Attributes()->IAttributes_Item(row.attribute);
        ASSERT_TRUE(attribute) << row.attribute;
        const ValueVerdict verdict = CheckValue(*attribute, row.text);
        if (*row.objection == 0) {
            EXPECT_TRUE(verdict.Taken()) << row.text << ": " << verdict.objection;
            EXPECT_EQ(verdict.value, row.value) << row.text;
        } else {
            EXPECT_EQ(verdict.objection.substr(0, std::string(row.objection).size()), row.objection)
                << row.text;
        }
    }
}

TEST(FitsTextValue, AValueHoldsOneLineOfTheCodePage) {
    for (const char32_t c : {U'a', U' ', U'~', U'é', U'€', U'Ÿ', U'\u00A0'}) {
        EXPECT_TRUE(FitsTextValue(c)) << static_cast<uint32_t>(c);
    }
    for (const char32_t c : {U'\t', U'\n', U'\r', U'\x7F', U'\u0081', U'ł', U'→', U'😀'}) {
        EXPECT_FALSE(FitsTextValue(c)) << static_cast<uint32_t>(c);
    }
}

TEST(ValueChoices, ListsCodeAndLabelOfListsOnly) {
    UseLibrary(DataDir() / "library");
    TestBlock block("SETPOINT_UNIT", Shipped());
    const auto attributes = block->IAppObject_Attributes();
    using Choices = std::vector<std::pair<std::string, std::string>>;
    EXPECT_EQ(ValueChoices(*attributes->IAttributes_Item("Units")),
              (Choices{{"105", "Celsius"}, {"39", "CelsiusWide"}}));
    EXPECT_EQ(ValueChoices(*attributes->IAttributes_Item("Setpoint")), Choices{});
}

}  // namespace
}  // namespace zerbin
