#include "connections/CDBOutput.h"

#include <gmock/gmock.h>

#include "interfaces/Error.h"
#include "platform/Messages.h"
#include "tests/support/FakeAppObject.h"
#include "tests/support/MacroDoubles.h"
#include "tests/support/RecordingListener.h"
#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace zerbin::testing;

class OutputTest : public ::testing::Test {
protected:
    OutputTest() { block->name = "Loop"; }

    std::shared_ptr<CDBOutput> Load(const std::string& text, int32_t index = 0) {
        element = ParseElement(text);
        auto output = std::make_shared<CDBOutput>();
        output->SetParent(block);
        output->SetName(element.Name());
        output->LoadDefinition(element.node);
        output->SetIndex(index);
        output->SetGlobalKey("K\\ROU\\" + element.Name());
        output->SetExtendedKey("E\\ROU\\" + element.Name());
        return output;
    }

    ScopedMessageRecorder messages;
    ScopedDictionary dictionary{LoadXml(FixturesDir() / "connections" / "snvt_dictionary.xml")};
    std::shared_ptr<FakeAppObject> block = std::make_shared<FakeAppObject>();
    DefinitionElement element;
};

// ---- Definition ------------------------------------------------------------------------------

TEST_F(OutputTest, ReadsTheFlagsAndChildrenOfItsElement) {
    const struct {
        const char* xml;
        bool writable;
        bool typeDependent;
        bool visible;
        const char* typeId = nullptr;    // nullptr: no type
        const char* typeName = nullptr;  // as the dictionary names it
    } rows[] = {
        {"<Out/>", false, false, false},
        {R"(<Out DISPLAYWRITABLE="0" typeDependent="no"/>)", true, true, false},
        {"<Out><VISIBLE>1</VISIBLE><Visible>0</Visible></Out>", false, false, false},
        {"<Out><VISIBLE>2.5</VISIBLE></Out>", false, false, true},
        {"<Out><SNVTTYPE>105</SNVTTYPE><snvttype>106</snvttype></Out>", false, false, false, "106",
         "Mode"},
        // What an input has, an output does not read.
        {"<Out ISEXTENDED=\"\"><CDBORDERINPOSITION/><SNVTCOMPATIBILITYLIST/><!-- x --></Out>",
         false, false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.xml);
        auto output = Load(row.xml);
        EXPECT_EQ(output->IOutput_DisplayWritable(), row.writable);
        EXPECT_EQ(output->IOutput_IsTypeDependent(), row.typeDependent);
        EXPECT_EQ(output->IOutput_Visible(), row.visible);
        EXPECT_EQ(output->IDisplayItem_DisplayText(), "Out");
        EXPECT_EQ(output->IDisplayItem_Key(), "E\\ROU\\Out");
        if (row.typeId == nullptr) {
            EXPECT_EQ(output->IOutput_SNVTCompatible(), nullptr);
            EXPECT_EQ(output->IOutput_SNVTType(), nullptr);
        } else {
            ASSERT_NE(output->IOutput_SNVTCompatible(), nullptr);
            EXPECT_EQ(output->IOutput_SNVTCompatible()->ICompatibleSNVT_ID(), row.typeId);
            ASSERT_NE(output->IOutput_SNVTType(), nullptr);
            EXPECT_EQ(output->IOutput_SNVTType()->ISNVType_Name(), row.typeName);
        }
        // Only an output that follows the selector takes a new type, and says so.
        auto listener = std::make_shared<RecordingListener>();
        output->IOutput_CallBack(listener);
        const auto type = output->IOutput_SNVTType();
        output->IOutput_changeType("106");
        EXPECT_EQ(listener->Lines().empty(), !row.typeDependent);
        EXPECT_EQ(output->IOutput_SNVTType() == type, !row.typeDependent);
    }
    EXPECT_THAT(messages.Messages(), IsEmpty());
}

TEST_F(OutputTest, WarnsAboutAnEmptyTypeAndGoesOn) {
    auto output = Load("<Out><SNVTTYPE><![CDATA[]]></SNVTTYPE><VISIBLE>1</VISIBLE></Out>");
    ASSERT_FALSE(messages.Messages().empty());
    const Message& shown = messages.Messages()[0];
    EXPECT_EQ(shown.text,
              "Out: SNVT Compatibility list not defined into the XML file of the object Loop.");
    EXPECT_EQ(shown.title, "Warning");
    EXPECT_EQ(shown.icon, MessageIcon::Critical);
    EXPECT_EQ(shown.buttons, MessageButtons::Ok);
    // The type record then reports the missing entry in its own words.
    for (std::size_t i = 1; i < messages.Messages().size(); ++i) {
        EXPECT_EQ(messages.Messages()[i].text, "Error: SNVT_ is not defined");
    }
    ASSERT_NE(output->IOutput_SNVTCompatible(), nullptr);
    EXPECT_EQ(output->IOutput_SNVTCompatible()->ICompatibleSNVT_ID(), "");
    EXPECT_TRUE(output->IOutput_Visible());
}

TEST_F(OutputTest, CountsItsConnectionsAndIsConnectedWhileAnyIsLeft) {
    auto output = Load(R"(<Out><SNVTTYPE>105</SNVTTYPE></Out>)");
    output->ISubItemConnable_IsConnected(true);
    output->ISubItemConnable_IsConnected(true);
    output->ISubItemConnable_IsConnected(false);
    EXPECT_TRUE(output->IOutput_IsConnected());
    EXPECT_EQ(output->ConnectionCount(), 1);
    output->ISubItemConnable_IsConnected(false);
    EXPECT_FALSE(output->IOutput_IsConnected());
    output->ISubItemConnable_IsConnected(false);  // unpaired: below zero, and connected
    EXPECT_EQ(output->ConnectionCount(), -1);
    EXPECT_TRUE(output->IOutput_IsConnected());
}

TEST_F(OutputTest, CompatibilityIsOneExactComparisonOfIds) {
    auto typed = Load("<Out><SNVTTYPE>105</SNVTTYPE></Out>");
    EXPECT_TRUE(typed->ISubItemConnable_IsSNVTCompatible("105"));
    EXPECT_FALSE(typed->ISubItemConnable_IsSNVTCompatible("0105"));
    EXPECT_FALSE(typed->ISubItemConnable_IsSNVTCompatible("105 "));
    auto untyped = Load("<Out/>");
    for (const char* id : {"105", "", "0"}) {
        EXPECT_FALSE(untyped->ISubItemConnable_IsSNVTCompatible(id)) << id;
    }
}

// ---- Display item ----------------------------------------------------------------------------

// The code itself is the reference code's; here each read takes the block's export index anew.
TEST_F(OutputTest, ReferenceCodesTheIndexAndTheExportIndexOfTheBlock) {
    auto output = Load("<Out/>", 2);
    block->exportIndex = 3;
    EXPECT_EQ(output->IDisplayItem_Reference(), "4203");
    block->exportIndex = 256;
    EXPECT_EQ(output->IDisplayItem_Reference(), "4300");
}

// ---- Type change -----------------------------------------------------------------------------

TEST_F(OutputTest, TypeChangeRetypesTheOutputAndTellsEachListenerInPairs) {
    auto output = Load(R"(<Out TYPEDEPENDENT=""><SNVTTYPE>105</SNVTTYPE></Out>)");
    auto journal = std::make_shared<CallJournal>();
    auto first = std::make_shared<RecordingListener>("first", journal);
    output->IOutput_CallBack(first);
    output->IOutput_CallBack(std::make_shared<RecordingListener>("second", journal));
    output->ISubItemConnable_IsConnected(true);
    const auto oldType = output->IOutput_SNVTType();
    // A listener sees the new type already when it hears of the change.
    std::string seenByListener;
    first->OnCall([&] { seenByListener = output->IOutput_SNVTCompatible()->ICompatibleSNVT_ID(); });

    output->IOutput_changeType("106");

    EXPECT_THAT(journal->Lines(), ElementsAre("first ConnectionToBeDeleted(K\\ROU\\Out)",
                                              "first RefOutTypeChanged(K\\ROU\\Out)",
                                              "second ConnectionToBeDeleted(K\\ROU\\Out)",
                                              "second RefOutTypeChanged(K\\ROU\\Out)"));
    EXPECT_EQ(seenByListener, "106");
    EXPECT_TRUE(output->ISubItemConnable_IsSNVTCompatible("106"));
    EXPECT_FALSE(output->ISubItemConnable_IsSNVTCompatible("105"));
    EXPECT_NE(output->IOutput_SNVTType(), oldType);
    EXPECT_EQ(output->IOutput_SNVTType()->ISNVType_Name(), "Mode");
    EXPECT_EQ(oldType->ISNVType_Name(), "Temperature");
    EXPECT_TRUE(output->IOutput_IsConnected());
    EXPECT_EQ(output->ConnectionCount(), 1);
    EXPECT_THAT(messages.Messages(), IsEmpty());
}

// ---- Macro check -----------------------------------------------------------------------------

TEST_F(OutputTest, IsMacroConnectedLooksAtTheOneTerminalOfEachOutputGroup) {
    const std::string key = "K\\ROU\\Out";
    auto holding = [](std::vector<std::shared_ptr<IMacroOutputGroup>> groups) {
        auto macro = std::make_shared<FakeMacro>();
        macro->outputGroups = std::move(groups);
        return FakeMacroHost::Holding(macro);
    };
    const struct {
        const char* name;
        std::function<std::shared_ptr<IObject>()> owner;
        bool expected;
    } rows[] = {
        {"no owner", [] { return nullptr; }, false},
        {"the second group",
         [&] {
             return holding(
                 {FakeMacroOutputGroup::WithKey("x"), FakeMacroOutputGroup::WithKey(key)});
         },
         true},
        {"failing calls before the match",
         [&] {
             auto broken = FakeMacroOutputGroup::WithKey(key);
             broken->fails = true;
             auto brokenTerminal = FakeMacroOutputGroup::WithKey(key);
             brokenTerminal->terminal->fails = true;
             return holding({broken, brokenTerminal, FakeMacroOutputGroup::WithKey(key)});
         },
         true},
    };
    auto output = Load("<Out/>");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        block->parent = row.owner();
        EXPECT_EQ(output->IOutput_IsMacroConnected(), row.expected);
    }
}

}  // namespace
}  // namespace zerbin
