// Finding, parsing and sharing the definition document of a block type, reading its header,
// and looking for a datasheet.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "app_object/CDBAppObject.h"
#include "platform/Messages.h"
#include "tests/app_object/AppObjectTestSupport.h"

namespace zerbin {
namespace {

using ::testing::ElementsAre;
using testing::HeaderOnlyDefinition;
using testing::InitBlock;
using ::testing::IsEmpty;
using testing::MessageTexts;
using testing::NotAvailable;
using testing::TempLibrary;
using testing::UniqueTypeName;

TEST(DefinitionDocument, InitOfAMissingTypeTellsTheUserAndStillSucceeds) {
    TempLibrary library;
    ScopedMessageRecorder messages;
    const std::string type = UniqueTypeName("Missing");
    auto block = std::make_shared<CDBAppObject>();

    int32_t errorCode = 1234;
    EXPECT_TRUE(block->IAppObject_Init(type, errorCode));

    EXPECT_EQ(errorCode, 1234);
    EXPECT_EQ(block->IAppObject_Name(), "");
    EXPECT_EQ(block->IAppObject_UniqueIDString(), type);
    ASSERT_THAT(MessageTexts(messages), ElementsAre(NotAvailable(type)));
    EXPECT_EQ(messages.Messages()[0].title, "Zerbin");
    EXPECT_EQ(messages.Messages()[0].buttons, MessageButtons::Ok);
}

TEST(DefinitionDocument, AFailedLoadIsNotStoredAndIsTriedAgainAtEveryRead) {
    TempLibrary library;
    ScopedMessageRecorder messages;
    const std::string type = UniqueTypeName("Broken");
    library.WriteDefinition(type, "<AppObject><NAME>Half</NAME>");  // not well-formed
    auto block = InitBlock(type);

    EXPECT_EQ(block->IAppObject_Name(), "");
    EXPECT_FALSE(block->ObjectXML()->first_child());
    EXPECT_EQ(messages.Messages().size(), 2u);

    // Once the file is mended the next read loads it: nothing of the failure was kept.
    library.WriteDefinition(type, HeaderOnlyDefinition("<NAME>Mended</NAME>"));
    EXPECT_TRUE(block->StringID(type));
    EXPECT_EQ(block->IAppObject_Name(), "Mended");
    EXPECT_EQ(messages.Messages().size(), 2u);
}

TEST(DefinitionDocument, SecondBlockOfATypeReusesTheParsedDocument) {
    TempLibrary library;
    ScopedMessageRecorder messages;
    const std::string type = UniqueTypeName("Shared");
    const auto file = library.WriteDefinition(type, HeaderOnlyDefinition("<NAME>Shared</NAME>"));
    auto first = InitBlock(type);
    const auto document = first->ObjectXML();

    // The file is read once: the second block gets its header without it.
    std::filesystem::remove(file);
    auto second = InitBlock(type);

    EXPECT_EQ(second->ObjectXML(), document);
    EXPECT_EQ(second->IAppObject_Name(), "Shared");
    EXPECT_THAT(MessageTexts(messages), IsEmpty());
}

// ---- Header -----------------------------------------------------------------------------------

TEST(DefinitionHeader, KeysAreMatchedInAnyLetterCaseAndCommentsAreSkipped) {
    TempLibrary library;
    ScopedMessageRecorder messages;
    const std::string type = UniqueTypeName("Header");
    library.WriteDefinition(type, HeaderOnlyDefinition(R"(
        <!-- <NAME>Comment</NAME> -->
        <name>Fan stage</name>
        <Id>300</Id>
        <Description>Two-stage fan</Description>
        <category>Control</category>
        <RamUsage>24</RamUsage>
        <backupusage>8</backupusage>
        <ExecTime>5</ExecTime>
        <MaxInstances>16</MaxInstances>
        <UseDeviceClock>1</UseDeviceClock>
        <Unknown>9</Unknown>)"));

    auto block = InitBlock(type);

    EXPECT_EQ(block->IAppObject_Name(), "Fan stage");
    EXPECT_EQ(block->IAppObject_ID(), "300");
    EXPECT_EQ(block->IAppObject_Description(), "Two-stage fan");
    EXPECT_EQ(block->IAppObject_Category(), "Control");
    EXPECT_EQ(block->IAppObject_DDBDimension(), 24);
    EXPECT_EQ(block->IAppObject_SDBDimension(), 8);
    EXPECT_EQ(block->IAppObject_ExecTime(), 5);
    EXPECT_EQ(block->IAppObject_MaxInstances(), 16);
    EXPECT_TRUE(block->IAppObject_UsesDeviceClock());
    EXPECT_THAT(MessageTexts(messages), IsEmpty());
}

TEST(DefinitionHeader, LaterElementsOverwriteAndElementsWithoutTextAreSkipped) {
    TempLibrary library;
    const std::string type = UniqueTypeName("Repeated");
    // The ID beyond 32 bits is only text here; the overflowing EXECTIME keeps its field and
    // does not stop the walk.
    library.WriteDefinition(type, HeaderOnlyDefinition(R"(
        <NAME>First</NAME><DESCRIPTION>One</DESCRIPTION><NAME/><DESCRIPTION>Two</DESCRIPTION>
        <EXECTIME>99999999999</EXECTIME><ID>99999999999</ID><MAXINSTANCES>3</MAXINSTANCES>)"));

    auto block = InitBlock(type);

    EXPECT_EQ(block->IAppObject_Name(), "First");
    EXPECT_EQ(block->IAppObject_Description(), "Two");
    EXPECT_EQ(block->IAppObject_ExecTime(), 0);
    EXPECT_EQ(block->IAppObject_ID(), "99999999999");
    EXPECT_EQ(block->IAppObject_MaxInstances(), 3);
}

TEST(DefinitionHeader, NumbersAreLeadingNumbersRoundedHalfToEven) {
    struct Row {
        const char* text;
        int32_t expected;
    };
    TempLibrary library;
    auto init = [&](const std::string& element, const std::string& text) {
        const std::string type = UniqueTypeName("Number");
        library.WriteDefinition(
            type, HeaderOnlyDefinition("<" + element + ">" + text + "</" + element + ">"));
        return InitBlock(type);
    };
    const Row numbers[] = {
        {"12.5", 12}, {"13.5", 14}, {"abc", 0},
        {" 7 kB", 7}, {"-2.5", -2}, {"1e3", 1000},
        {"&H10", 16}, {"1,5", 1},   {"2147483647", 2147483647},
    };
    for (const Row& row : numbers) {
        EXPECT_EQ(init("RAMUSAGE", row.text)->IAppObject_DDBDimension(), row.expected) << row.text;
    }
    // The device clock follows the number, not the word.
    const Row clocks[] = {{"1", 1}, {"-1", 1}, {"true", 0}, {"0", 0}, {"0.4", 0}};
    for (const Row& row : clocks) {
        EXPECT_EQ(init("USEDEVICECLOCK", row.text)->IAppObject_UsesDeviceClock(), row.expected != 0)
            << row.text;
    }
}

TEST(DefinitionHeader, ASecondTypeOverwritesOnlyWhatItsHeaderHolds) {
    TempLibrary library;
    const std::string first = UniqueTypeName("First");
    const std::string second = UniqueTypeName("Second");
    library.WriteDefinition(first,
                            HeaderOnlyDefinition("<NAME>A</NAME><DESCRIPTION>From A</DESCRIPTION>"
                                                 "<RAMUSAGE>4</RAMUSAGE>"));
    library.WriteDefinition(second, HeaderOnlyDefinition("<NAME>B</NAME>"));
    auto block = InitBlock(first);

    block->StringID(second);

    EXPECT_EQ(block->IAppObject_UniqueIDString(), second);
    EXPECT_EQ(block->IAppObject_Name(), "B");
    EXPECT_EQ(block->IAppObject_Description(), "From A");
    EXPECT_EQ(block->IAppObject_DDBDimension(), 4);
}

// ---- Datasheet ----------------------------------------------------------------------------------

struct DatasheetRow {
    const char* label;
    std::vector<std::string> typeFolderFiles;
    std::vector<std::string> sharedFiles;
    std::string id;
    std::string expectedFile;  // in the type's folder, or "DataSheets/..."; empty for none
};

class DatasheetSearch : public ::testing::TestWithParam<DatasheetRow> {};

TEST_P(DatasheetSearch, FindsTheFirstMatchInItsOrder) {
    const DatasheetRow& row = GetParam();
    TempLibrary library;
    const std::string type = UniqueTypeName("Sheet");
    const std::string id = row.id.empty() ? "" : "<ID>" + row.id + "</ID>";
    library.WriteDefinition(type, HeaderOnlyDefinition(id));
    for (const std::string& file : row.typeFolderFiles) {
        library.WriteFile(std::filesystem::path(type) / file, "sheet");
    }
    for (const std::string& file : row.sharedFiles) {
        library.WriteFile(std::filesystem::path("DataSheets") / file, "sheet");
    }

    auto block = InitBlock(type);

    EXPECT_EQ(block->IAppObject_DatasheetAvailable(), !row.expectedFile.empty());
    std::string expected;
    if (row.expectedFile.starts_with("DataSheets/")) {
        expected = (library.Folder() / row.expectedFile).string();
    } else if (!row.expectedFile.empty()) {
        expected = (library.Folder() / type / row.expectedFile).string();
    }
    EXPECT_EQ(block->DatasheetPath(), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DatasheetSearch,
    ::testing::Values(
        DatasheetRow{"PdfBeforeWord", {"b.doc", "a.pdf"}, {"pb_123_c.pdf"}, "123", "a.pdf"},
        DatasheetRow{"WordInTypeFolder", {"b.doc", "x.txt"}, {"pb_123_c.pdf"}, "123", "b.doc"},
        DatasheetRow{"ExtensionInAnyCase", {"Manual.PDF"}, {}, "", "Manual.PDF"},
        DatasheetRow{
            "SharedPdf", {}, {"pb_123_x.doc", "pb_123_y.pdf"}, "123", "DataSheets/pb_123_y.pdf"},
        DatasheetRow{
            "SharedWord", {"notes.txt"}, {"pb_123_x.doc"}, "123", "DataSheets/pb_123_x.doc"},
        DatasheetRow{"OtherIdsDoNotMatch", {}, {"pb_1234_x.pdf", "pb_12_x.pdf"}, "123", ""},
        DatasheetRow{"NoIdNoSharedSearch", {}, {"pb__x.pdf"}, "", ""},
        DatasheetRow{"IdIsNoWildcard", {}, {"pb_1x_a.pdf"}, "1*", ""}),
    [](const ::testing::TestParamInfo<DatasheetRow>& info) { return info.param.label; });

}  // namespace
}  // namespace zerbin
