#include "connections/CDBInput.h"

#include <gmock/gmock.h>

#include "datatypes/CDBSNVTType.h"
#include "interfaces/Error.h"
#include "platform/Messages.h"
#include "tests/support/FakeAppObject.h"
#include "tests/support/FakeAttributes.h"
#include "tests/support/MacroDoubles.h"
#include "tests/support/RecordingListener.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace zerbin::testing;

// The ids of the input's compatible types, joined by ",".
std::string CompatibleIds(CDBInput& input) {
    std::string ids;
    for (const auto& entry : input.Iinput_SNVTCompatibles()->ICompatibleSNVTs_NewEnum()) {
        ids += (ids.empty() ? "" : ",") + entry->ICompatibleSNVT_ID();
    }
    return ids;
}

class InputTest : public ::testing::Test {
public:
    InputTest() { block->name = "Loop"; }

    // An input loaded from the element, as the collection builds one.
    std::shared_ptr<CDBInput> Load(const std::string& text) {
        element = ParseElement(text);
        auto input = std::make_shared<CDBInput>();
        input->SetParent(block);
        input->SetName(element.Name());
        input->LoadDefinition(element.node);
        input->SetGlobalKey("K\\RIN\\" + element.Name());
        return input;
    }

    ScopedMessageRecorder messages;
    std::shared_ptr<FakeAppObject> block = std::make_shared<FakeAppObject>();
    DefinitionElement element;
};

// ---- Definition ------------------------------------------------------------------------------

TEST_F(InputTest, ReadsTheFlagsAndChildrenOfItsElement) {
    const struct {
        const char* xml;
        bool extended;
        bool typeDependent;
        bool mandatory;
        bool visible;
        int32_t order;
        const char* compatibles = "";
    } rows[] = {
        {"<In/>", false, false, false, false, 0},
        // Flags by presence: the value is never read.
        {R"(<In ISEXTENDED="0" TYPEDEPENDENT="false"/>)", true, true, false, false, 0},
        {"<In><MANDATORY>2</MANDATORY></In>", false, false, true, false, 0},
        {"<In><MANDATORY>0.0</MANDATORY></In>", false, false, false, false, 0},
        {"<In><visible>-1</visible></In>", false, false, false, true, 0},
        {"<In><VISIBLE>1</VISIBLE><VISIBLE>0</VISIBLE></In>", false, false, false, false, 0},
        // Repeated lists add up; an id that is there already is passed over.
        {"<In><SNVTCOMPATIBILITYLIST>105,106</SNVTCOMPATIBILITYLIST>"
         "<snvtCompatibilityList>107,105</snvtCompatibilityList></In>",
         false, false, false, false, 0, "105,106,107"},
        // The last element wins.
        {"<In><CDBORDERINPOSITION>4</CDBORDERINPOSITION><CDBORDERINPOSITION>9</CDBORDERINPOSITION>"
         "</In>",
         false, false, false, false, 9},
        // Children are matched by their local name; comments and unknown children are passed
        // by, even ones that hold no text.
        {R"(<In xmlns:d="urn:d"><d:VISIBLE>1</d:VISIBLE></In>)", false, false, false, true, 0},
        {"<In><!--<VISIBLE>1</VISIBLE>--><Other/><Note>x</Note></In>", false, false, false, false,
         0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.xml);
        auto input = Load(row.xml);
        EXPECT_EQ(input->IInput_Extended(), row.extended);
        EXPECT_EQ(input->IInput_Mandatory(), row.mandatory);
        EXPECT_EQ(input->IInput_Visible(), row.visible);
        EXPECT_EQ(input->CDBOrderInPosition(), row.order);
        EXPECT_EQ(CompatibleIds(*input), row.compatibles);
        // Type dependence shows only in what a type change does; without it, nothing at all.
        auto listener = std::make_shared<RecordingListener>();
        input->IInput_CallBack(listener);
        input->IInput_changeType("999");
        EXPECT_EQ(CompatibleIds(*input), row.typeDependent ? "999" : row.compatibles);
        EXPECT_EQ(listener->Lines().empty(), !row.typeDependent);
    }
    EXPECT_THAT(messages.Messages(), IsEmpty());
}

TEST_F(InputTest, WarnsAboutAnEmptyOrderOrCompatibilityListAndGoesOn) {
    const struct {
        const char* xml;
        const char* warning;
    } rows[] = {
        {"<Setpoint><CDBORDERINPOSITION><![CDATA[]]></CDBORDERINPOSITION>"
         "<VISIBLE>1</VISIBLE></Setpoint>",
         "Setpoint: CDBOrderingPosition not defined into the XML file of the object Loop."},
        {"<Setpoint><SNVTCOMPATIBILITYLIST><![CDATA[]]></SNVTCOMPATIBILITYLIST>"
         "<VISIBLE>1</VISIBLE></Setpoint>",
         "Setpoint: SNVT Compatibility list not defined into the XML file of the object Loop."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.xml);
        messages.recorder().Clear();
        auto input = Load(row.xml);
        ASSERT_EQ(messages.Messages().size(), 1u);
        const Message& shown = messages.Messages()[0];
        EXPECT_EQ(shown.text, row.warning);
        EXPECT_EQ(shown.title, "Warning");
        EXPECT_EQ(shown.icon, MessageIcon::Critical);
        EXPECT_EQ(shown.buttons, MessageButtons::Ok);
        EXPECT_EQ(input->CDBOrderInPosition(), 0);
        EXPECT_EQ(CompatibleIds(*input), "");
        EXPECT_TRUE(input->IInput_Visible());  // the load went on
    }
}

// ---- Type change -----------------------------------------------------------------------------

TEST_F(InputTest, TypeChangeReplacesTheSetAndTellsEachListenerInPairs) {
    auto input =
        Load(R"(<In TYPEDEPENDENT=""><SNVTCOMPATIBILITYLIST>1,2</SNVTCOMPATIBILITYLIST></In>)");
    auto journal = std::make_shared<CallJournal>();
    input->IInput_CallBack(std::make_shared<RecordingListener>("first", journal));
    input->IInput_CallBack(std::make_shared<RecordingListener>("second", journal));
    auto type = std::make_shared<CDBSNVTType>();
    input->ISubItemConnable_ConnectedType(type);
    input->ISubItemConnable_IsConnected(true);
    const auto oldSet = input->Iinput_SNVTCompatibles();

    input->IInput_changeType("105,106");

    EXPECT_THAT(journal->Lines(), ElementsAre("first ConnectionToBeDeleted(K\\RIN\\In)",
                                              "first RefInTypeChanged(K\\RIN\\In)",
                                              "second ConnectionToBeDeleted(K\\RIN\\In)",
                                              "second RefInTypeChanged(K\\RIN\\In)"));
    EXPECT_EQ(CompatibleIds(*input), "105,106");
    // The set is replaced, not cleared: whoever holds the old one keeps what it held.
    EXPECT_NE(input->Iinput_SNVTCompatibles(), oldSet);
    EXPECT_EQ(oldSet->ICompatibleSNVTs_Count(), 2);
    EXPECT_EQ(input->IInput_ConnectedType(), type);
    EXPECT_TRUE(input->IInput_IsConnected());
}

// ---- Bytes in the image ----------------------------------------------------------------------

// Twelve bytes whose digits tell their offset: byte P is "0P".
constexpr const char* kImage = "000102030405060708090A0B";

TEST_F(InputTest, WritesTheReferenceInBothByteOrders) {
    const struct {
        const char* value;
        bool extended;
        int32_t position;
        const char* stream;  // expected image, most significant byte first, blanks aside
        const char* intel;   // expected image of the Intel form; nullptr: raises
    } rows[] = {
        // A reference to an output (selector 2): only the first byte turns.
        {"4203", false, 5, "00 01 02 03 04 42 03 07 08 09 0A 0B",
         "00 01 02 03 04 12 03 07 08 09 0A 0B"},
        // Any other selector: the last byte turns by two places as well.
        {"2345", false, 5, "00 01 02 03 04 23 45 07 08 09 0A 0B",
         "00 01 02 03 04 19 15 07 08 09 0A 0B"},
        {"234501", true, 5, "00 01 02 03 04 23 45 01 08 09 0A 0B",
         "00 01 02 03 04 19 15 01 08 09 0A 0B"},
        // The three top bits come round to the bottom.
        {"F9FF", false, 0, "F9 FF 02 03 04 05 06 07 08 09 0A 0B",
         "CF FF 02 03 04 05 06 07 08 09 0A 0B"},
        // Never given a reference: the image keeps what it held, in both forms.
        {"", false, 5, "00 01 02 03 04 05 06 07 08 09 0A 0B",
         "00 01 02 03 04 05 06 07 08 09 0A 0B"},
        // A longer value gives only the reference's width; a shorter one only its own length.
        {"423456", false, 2, "00 01 42 34 04 05 06 07 08 09 0A 0B",
         "00 01 12 56 04 05 06 07 08 09 0A 0B"},
        {"4203", true, 2, "00 01 42 03 04 05 06 07 08 09 0A 0B",
         "00 01 12 03 03 05 06 07 08 09 0A 0B"},
        // The plain form parses nothing; the Intel form writes upper-case digits for what it
        // rotates and copies the rest as it stands.
        {"4a0b", false, 2, "00 01 4a 0b 04 05 06 07 08 09 0A 0B",
         "00 01 52 0b 04 05 06 07 08 09 0A 0B"},
        {"ZZ!?", false, 2, "00 01 ZZ !? 04 05 06 07 08 09 0A 0B", nullptr},
        // At the end of the image the reference is cut, never appended.
        {"4203", false, 11, "00 01 02 03 04 05 06 07 08 09 0A 42",
         "00 01 02 03 04 05 06 07 08 09 0A 12"},
        {"234501", true, 10, "00 01 02 03 04 05 06 07 08 09 23 45",
         "00 01 02 03 04 05 06 07 08 09 19 15"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.value) + " at " + std::to_string(row.position) +
                     (row.extended ? " extended" : ""));
        auto strip = [](std::string text) {
            std::erase(text, ' ');
            return text;
        };
        auto input = Load(row.extended ? R"(<In ISEXTENDED=""/>)" : "<In/>");
        input->CDBPosition(row.position);
        input->IInput_Value(row.value);
        EXPECT_EQ(input->WriteStream(kImage), strip(row.stream));
        if (row.intel != nullptr) {
            EXPECT_EQ(input->WriteIntelStream(kImage), strip(row.intel));
        }
    }
}

TEST_F(InputTest, TheIntelFormRaisesOnAReferenceItCannotRead) {
    const struct {
        const char* value;
        bool extended;
    } rows[] = {
        {"ZZ03", false},  {"4G03", false}, {" 4203", false},
        {"-103", false},  {"23ZZ", false},  // selector 1: the last byte is rotated, so it is read
        {"23ZZ01", true},                   // selector 1: the second byte is rotated
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        auto input = Load(row.extended ? R"(<In ISEXTENDED=""/>)" : "<In/>");
        input->CDBPosition(2);
        input->IInput_Value(row.value);
        EXPECT_THROW(input->WriteIntelStream(kImage), Error);
        EXPECT_NO_THROW(input->WriteStream(kImage));
    }
}

// ---- Connection and the length hand-over -----------------------------------------------------

TEST_F(InputTest, ConnectingAndDisconnectingWriteTheLengthToTheNamedAttribute) {
    auto attributes = std::make_shared<FakeAttributes>();
    auto length = attributes->Add("Length");
    block->attributes = attributes;
    auto type31 = std::make_shared<CDBSNVTType>();
    type31->SetLength(31);
    auto input = Load(R"(<In SENDLENGTHTO="length"/>)");

    input->ISubItemConnable_ConnectedType(type31);
    EXPECT_EQ(input->IInput_ConnectedType(), type31);
    EXPECT_THAT(length->writes, ElementsAre("31"));

    // The flag and the type are told apart: a connect leaves the type as it was.
    input->ISubItemConnable_IsConnected(true);
    EXPECT_TRUE(input->IInput_IsConnected());
    EXPECT_EQ(input->IInput_ConnectedType(), type31);
    EXPECT_THAT(length->writes, ElementsAre("31"));

    input->ISubItemConnable_IsConnected(false);
    EXPECT_FALSE(input->IInput_IsConnected());
    EXPECT_EQ(input->IInput_ConnectedType(), nullptr);
    EXPECT_THAT(length->writes, ElementsAre("31", "0"));

    // No type, no length: the attribute is still written, with the empty text.
    input->ISubItemConnable_ConnectedType(nullptr);
    EXPECT_THAT(length->writes, ElementsAre("31", "0", ""));
    EXPECT_THAT(messages.Messages(), IsEmpty());
}

// ---- Macro check -----------------------------------------------------------------------------

TEST_F(InputTest, IsMacroConnectedFindsTheKeyAmongTheTerminalsOfInputGroups) {
    const std::string key = "K\\RIN\\In";
    struct Row {
        const char* name;
        std::function<std::shared_ptr<IObject>()> owner;  // the block's IAppObject_Parent
        bool expected;
    };
    auto holding = [](std::vector<std::shared_ptr<IMacroInputGroup>> groups) {
        auto macro = std::make_shared<FakeMacro>();
        macro->inputGroups = std::move(groups);
        return FakeMacroHost::Holding(macro);
    };
    const Row rows[] = {
        {"no owner", [] { return nullptr; }, false},
        {"a host without macro", [] { return std::make_shared<FakeMacroHost>(); }, false},
        {"a terminal of the second group",
         [&] {
             return holding({FakeMacroInputGroup::WithKeys({"K\\RIN\\Other"}),
                             FakeMacroInputGroup::WithKeys({"x", key})});
         },
         true},
        {"the key in another case",
         [&] { return holding({FakeMacroInputGroup::WithKeys({"k\\rin\\in"})}); }, false},
        {"a terminal of a field group",
         [&] {
             auto group = FakeMacroInputGroup::WithKeys({});
             group->AddFieldGroup({"y"});
             group->AddFieldGroup({key});
             return holding({group});
         },
         true},
        {"failing calls before the match",
         [&] {
             auto broken = FakeMacroInputGroup::WithKeys({key});
             broken->fails = true;
             auto brokenTerminal = FakeMacroInputGroup::WithKeys({"x", key});
             brokenTerminal->terminals->terminals[0]->fails = true;
             auto brokenFields = FakeMacroInputGroup::WithKeys({});
             brokenFields->AddFieldGroup({key});
             brokenFields->failsFields = true;
             return holding({broken, brokenFields, brokenTerminal});
         },
         true},
    };
    auto input = Load("<In/>");
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        block->parent = row.owner();
        EXPECT_EQ(input->IInput_IsMacroConnected(), row.expected);
    }
    input->SetParent(nullptr);
    EXPECT_FALSE(input->IInput_IsMacroConnected());
}

}  // namespace
}  // namespace zerbin
