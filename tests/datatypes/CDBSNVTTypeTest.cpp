#include "datatypes/CDBSNVTType.h"

#include "platform/Messages.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

using testing::ScopedDictionary;
using testing::Snvts;
using Texts = std::vector<std::string>;

// Resolves id against the entries given and keeps the messages shown on the way.
struct Resolved {
    std::shared_ptr<CDBSNVTType> type = std::make_shared<CDBSNVTType>();
    Texts messages;
};

Resolved Resolve(const std::string& entries, const std::string& id) {
    ScopedDictionary installed(Snvts(entries));
    ScopedMessageRecorder recorder;
    Resolved resolved;
    resolved.type->ResolveByID(id);
    resolved.messages = testing::MessageTexts(recorder);
    return resolved;
}

constexpr const char* kTemperature = R"(
  <SNVT_105 FACTOR="7" R7REGION="3">
    <NAME>Temperature</NAME><TYPE>SignedNumeric</TYPE><UNIT>degrees</UNIT>
    <BACNETUNIT>degrees-celsius</BACNETUNIT><MIN>-50</MIN><MAX>150,5</MAX><LENGTH>2</LENGTH>
    <A_COEF>1</A_COEF><B_COEF>-2</B_COEF><C_COEF>0</C_COEF><INVALIDVALUE>327.67</INVALIDVALUE>
  </SNVT_105>)";

TEST(CDBSNVTType, ResolvesEveryKeyOfANumericEntry) {
    const Resolved r = Resolve(kTemperature, "105");
    CDBSNVTType& t = *r.type;
    EXPECT_TRUE(r.messages.empty());
    EXPECT_EQ(t.ISNVType_Factor(), 7);
    EXPECT_EQ(t.ISNVType_R7Region(), 3);
    EXPECT_EQ(t.ISNVType_GenType(), "SignedNumeric");
    EXPECT_EQ(t.ISNVType_LUIType(), "Numeric");
    EXPECT_EQ(t.ISNVType_BACnetUnits(), "degrees-celsius");
    EXPECT_EQ(t.ISNVType_Min(), "-50");
    EXPECT_EQ(t.ISNVType_Max(), "150.5");
    EXPECT_EQ(t.ISNVType_Length(), 2);
    EXPECT_EQ(t.ISNVType_BCoef(), -2);
    EXPECT_EQ(t.ISNVType_InvalidValue(), "327.67");
    EXPECT_EQ(t.ISNVType_EnumDesc(), "");
}

TEST(CDBSNVTType, LimitsFollowTheSeparatorInForceAtTheRead) {
    const Resolved r = Resolve(
        "<SNVT_1><TYPE>Float</TYPE><LENGTH>4</LENGTH><MIN>-5,5</MIN>"
        "<MAX>2.25</MAX><INVALIDVALUE>1,5</INVALIDVALUE></SNVT_1>",
        "1");
    EXPECT_EQ(r.type->ISNVType_Min(), "-5.5");
    EXPECT_EQ(r.type->ISNVType_InvalidValue(), "1.5");
    testing::ScopedLocale comma;
    ZERBIN_REQUIRE_COMMA_LOCALE(comma);
    EXPECT_EQ(r.type->ISNVType_Min(), "-5,5");
    EXPECT_EQ(r.type->ISNVType_Max(), "2,25");
}

TEST(CDBSNVTType, TypeClassesSetFamilyLengthAndDetails) {
    struct Row {
        const char* children;
        const char* luiType;
        int32_t length;
        Texts messages;
    };
    const std::string badType = "Error: SNVT_9 has a bad type";
    const std::string badLength = "Error: SNVT_9 has a bad Length";
    const Row rows[] = {
        {"<TYPE>Enum</TYPE><LENGTH>4</LENGTH>", "Logic", 1, {}},
        {"<LENGTH>4</LENGTH><TYPE>Struct</TYPE>", "Invalid", 0, {}},
        {"<TYPE>Float</TYPE><LENGTH>4</LENGTH>", "Float", 4, {}},
        {"<TYPE>Textual</TYPE><LENGTH>31</LENGTH>", "Textual", 31, {}},
        {"<TYPE>UnsignedNumeric</TYPE><LENGTH>1</LENGTH>", "Numeric", 1, {}},
        {"<TYPE>SignedNumeric</TYPE>", "Numeric", 0, {badLength}},
        {"<TYPE>Float</TYPE><LENGTH>0</LENGTH>", "Float", 0, {badLength}},
        {"<TYPE>Float</TYPE><LENGTH>99999999999</LENGTH>", "Float", 0, {badLength}},
        {"<TYPE>Bitfield</TYPE><LENGTH>1.5</LENGTH>", "Numeric", 2, {}},
        {"<type>Float</type><length>4</length>", "Float", 4, {}},
        {"<TYPE>float</TYPE><LENGTH>4</LENGTH>", "", 0, {badType}},
        {"<LENGTH>4</LENGTH>", "", 0, {}},
    };
    for (const Row& row : rows) {
        const Resolved r = Resolve(std::string("<SNVT_9>") + row.children + "</SNVT_9>", "9");
        EXPECT_EQ(r.type->ISNVType_LUIType(), row.luiType) << row.children;
        EXPECT_EQ(r.type->ISNVType_Length(), row.length) << row.children;
        EXPECT_EQ(r.messages, row.messages) << row.children;
    }
}

TEST(CDBSNVTType, AMissingEntryIsReportedOnce) {
    const Resolved r = Resolve(kTemperature, "106");
    EXPECT_EQ(r.messages, Texts{"Error: SNVT_106 is not defined"});
    EXPECT_EQ(r.type->ISNVType_ID(), "106");
    EXPECT_EQ(r.type->ISNVType_Length(), 0);
    EXPECT_EQ(r.type->ISNVType_GenType(), "");
}

TEST(CDBSNVTType, AFailingStepIsReportedAndTheWalkGoesOn) {
    const std::string notDefined = "Error: SNVT_4 is not defined";
    const Resolved r = Resolve(R"(<SNVT_4 FACTOR="1e10" R7REGION="2.5">
        <NAME/><TYPE>Float</TYPE><LENGTH>4</LENGTH><NAME>later name</NAME></SNVT_4>)",
                               "4");
    EXPECT_EQ(r.messages, (Texts{notDefined, notDefined}));
    EXPECT_EQ(r.type->ISNVType_Factor(), 0);
    EXPECT_EQ(r.type->ISNVType_R7Region(), 2);
    EXPECT_EQ(r.type->ISNVType_Name(), "later name");
    EXPECT_EQ(r.type->ISNVType_Length(), 4);

    const Resolved empty = Resolve("<SNVT_4><TYPE></TYPE><NAME>n</NAME></SNVT_4>", "4");
    EXPECT_EQ(empty.messages, Texts{notDefined});
    EXPECT_EQ(empty.type->ISNVType_Name(), "n");
    EXPECT_EQ(empty.type->ISNVType_LUIType(), "");
}

TEST(CDBSNVTType, EnumerationsListTheirChildrenInDocumentOrder) {
    const struct {
        const char* enums;
        const char* desc;
    } rows[] = {
        {"<Enums><ON>1</ON><OFF>0</OFF></Enums>", "1,ON;0,OFF;"},
        {"<Enums><A>5</A><B/><C>7</C></Enums>", "5,A;5,B;7,C;"},
        {"<Enums><A/><B>2</B></Enums>", ",A;2,B;"},
        {"", ""},
        {"<enums><A>1</A></enums>", ""},
        // A later entry of the same id may supply the list.
        {"</SNVT_106><SNVT_106><TYPE>Float</TYPE><Enums><X>4</X></Enums>", "4,X;"},
    };
    for (const auto& row : rows) {
        const Resolved r =
            Resolve(std::string("<SNVT_106><TYPE>Enum</TYPE>") + row.enums + "</SNVT_106>", "106");
        EXPECT_EQ(r.type->ISNVType_EnumDesc(), row.desc) << row.enums;
        EXPECT_TRUE(r.type->IEnumType_IsEnumType());
        EXPECT_TRUE(r.messages.empty());
    }
}

TEST(CDBSNVTType, ResolvingAgainClearsNothing) {
    ScopedDictionary installed(Snvts(
        std::string(kTemperature) +
        "<SNVT_106><TYPE>Enum</TYPE><Enums><OFF>0</OFF></Enums></SNVT_106>"
        "<SNVT_63><NAME>Float temperature</NAME><TYPE>Float</TYPE><LENGTH>4</LENGTH></SNVT_63>"));
    ScopedMessageRecorder recorder;
    CDBSNVTType type;
    type.ResolveByID("106");
    type.ResolveByID("105");
    EXPECT_EQ(type.ISNVType_EnumDesc(), "0,OFF;") << "an earlier enumeration stays behind";
    EXPECT_EQ(type.ISNVType_Length(), 2);
    type.ResolveByID("63");
    EXPECT_EQ(type.ISNVType_ID(), "63");
    EXPECT_EQ(type.ISNVType_Name(), "Float temperature");
    EXPECT_EQ(type.ISNVType_Length(), 4);
    EXPECT_EQ(type.ISNVType_Units(), "degrees") << "a key the new entry lacks keeps its value";
    EXPECT_EQ(type.ISNVType_Factor(), 7);
    EXPECT_TRUE(recorder.Messages().empty());
}

// Resolving an id a second time in one dictionary reuses the first outcome; it must still act
// as a fresh resolution would: on the record as it stands, with its messages again.
TEST(CDBSNVTType, ASecondResolutionActsAsTheFirst) {
    ScopedDictionary installed(
        Snvts(std::string(kTemperature) + "<SNVT_9><TYPE>Float</TYPE><MIN>1.5</MIN></SNVT_9>"));
    ScopedMessageRecorder recorder;
    CDBSNVTType fresh;
    fresh.ResolveByID("9");
    CDBSNVTType reused;
    reused.ResolveByID("105");
    reused.ResolveByID("9");
    CDBSNVTType again;
    again.ResolveByID("9");
    EXPECT_EQ(testing::MessageTexts(recorder),
              (Texts{"Error: SNVT_9 has a bad Length", "Error: SNVT_9 has a bad Length"}))
        << "the length check looks at the record's own length, each time";
    EXPECT_EQ(reused.ISNVType_Length(), 2);
    EXPECT_EQ(reused.ISNVType_Units(), "degrees");
    EXPECT_EQ(again.ISNVType_Min(), "1.5");
    EXPECT_EQ(again.ISNVType_LUIType(), "Float");
}

}  // namespace
}  // namespace zerbin
