// Finding, parsing and sharing the definition document of a block type, reading its header,
// and looking for a datasheet.
#include <gmock/gmock.h>

#include "app_object/CDBAppObject.h"
#include "platform/DefinitionStore.h"
#include "platform/Messages.h"
#include "tests/support/Blocks.h"

namespace zerbin {
namespace {

using ::testing::ElementsAre;
using testing::HeaderOnlyDefinition;
using testing::InitBlock;
using ::testing::IsEmpty;
using testing::MessageTexts;
using testing::NotAvailable;
using testing::TempLibrary;

TEST(DefinitionDocument, InitOfAMissingTypeTellsTheUserAndStillSucceeds) {
    TempLibrary library;
    ScopedMessageRecorder messages;
    const std::string type = "Missing";
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
    const std::string type = "Broken";
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
    const std::string type = "Shared";
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

// Later blocks of a stored type take the header and the datasheet from what the first block
// worked out; another library folder, or another document stored for the type, is not that.
TEST(DefinitionDocument, LaterBlocksFollowTheLibraryAndTheStoredDocument) {
    ScopedMessageRecorder messages;
    const std::string type = "Kept";
    TempLibrary first;
    first.WriteDefinition(type, HeaderOnlyDefinition("<NAME>First</NAME>"));
    first.WriteFile(std::filesystem::path(type) / "a.pdf", "sheet");
    const std::string firstSheet = (first.Folder() / type / "a.pdf").string();
    EXPECT_EQ(InitBlock(type)->DatasheetPath(), firstSheet);
    EXPECT_EQ(InitBlock(type)->DatasheetPath(), firstSheet);

    TempLibrary second;
    second.WriteFile(std::filesystem::path(type) / "b.pdf", "sheet");
    const auto moved = InitBlock(type);
    EXPECT_EQ(moved->IAppObject_Name(), "First");
    EXPECT_EQ(moved->DatasheetPath(), (second.Folder() / type / "b.pdf").string());

    auto replacement = std::make_shared<pugi::xml_document>();
    ASSERT_TRUE(replacement->load_string(HeaderOnlyDefinition("<NAME>Second</NAME>").c_str()));
    DefinitionCache().Store()->AddDocument(replacement, type);
    EXPECT_EQ(InitBlock(type)->IAppObject_Name(), "Second");
    EXPECT_THAT(MessageTexts(messages), IsEmpty());
}

TEST(DefinitionHeader, KeysAreMatchedInAnyLetterCaseAndCommentsAreSkipped) {
    TempLibrary library;
    ScopedMessageRecorder messages;
    const std::string type = "Header";
    library.WriteDefinition(type, HeaderOnlyDefinition(R"(
        <!-- <NAME>Comment</NAME> -->
        <name>Fan stage</name>
        <Id>300</Id>
        <RamUsage>24</RamUsage>
        <backupusage>8</backupusage>
        <UseDeviceClock>1</UseDeviceClock>
        <Unknown>9</Unknown>)"));

    auto block = InitBlock(type);

    EXPECT_EQ(block->IAppObject_Name(), "Fan stage");
    EXPECT_EQ(block->IAppObject_ID(), "300");
    EXPECT_EQ(block->IAppObject_DDBDimension(), 24);
    EXPECT_EQ(block->IAppObject_SDBDimension(), 8);
    EXPECT_TRUE(block->IAppObject_UsesDeviceClock());
    EXPECT_THAT(MessageTexts(messages), IsEmpty());
}

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
    const std::string type = "Sheet";
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
        DatasheetRow{"ExtensionInAnyCase", {"Manual.PDF"}, {}, "", "Manual.PDF"},
        DatasheetRow{"WordInTypeFolder", {"b.doc", "x.txt"}, {"pb_123_c.pdf"}, "123", "b.doc"},
        DatasheetRow{
            "SharedPdf", {}, {"pb_123_x.doc", "pb_123_y.pdf"}, "123", "DataSheets/pb_123_y.pdf"},
        DatasheetRow{"OtherIdsDoNotMatch", {}, {"pb_1234_x.pdf", "pb_12_x.pdf"}, "123", ""},
        DatasheetRow{"IdIsNoWildcard", {}, {"pb_1x_a.pdf"}, "1*", ""}),
    [](const ::testing::TestParamInfo<DatasheetRow>& info) { return info.param.label; });

}  // namespace
}  // namespace zerbin
