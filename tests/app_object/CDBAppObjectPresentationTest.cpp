// How the host shows a block: colour words and numbers, the icon of a type and the datasheet
// viewer with its failure messages.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app_object/CDBAppObject.h"
#include "platform/Messages.h"
#include "platform/Picture.h"
#include "platform/Shell.h"
#include "tests/app_object/AppObjectTestSupport.h"

namespace zerbin {
namespace {

using ::testing::ElementsAre;
using testing::HeaderOnlyDefinition;
using testing::InitBlock;
using ::testing::IsEmpty;
using testing::MessageTexts;
using testing::TempLibrary;
using testing::UniqueTypeName;

// ---- Colour ---------------------------------------------------------------------------------

TEST(Colour, WordsAndNumbersOfTheTableReadAsNumbersAndOthersAsZero) {
    const struct {
        const char* word;
        int32_t number;
    } rows[] = {
        {"RED", 255},      {"red", 255},       {"Green", 65280},      {"BLUE", 16711680},
        {"yellow", 65535}, {"Cyan", 16776960}, {"MAGENTA", 16711935}, {"purple", 0},
        {"", 0},           {" RED", 0},
    };
    auto block = std::make_shared<CDBAppObject>();
    for (const auto& row : rows) {
        block->IAppObject_SetColor(row.word);
        EXPECT_EQ(block->IAppObject_Color(), row.number) << row.word;
        block->IAppObject_Color(row.number);
        EXPECT_EQ(block->IAppObject_Color(), row.number) << row.number;
    }
    block->IAppObject_Color(12345);
    EXPECT_EQ(block->IAppObject_Color(), 0);
}

// ---- Icon -----------------------------------------------------------------------------------

// The smallest file that reads as an icon: the directory header of one image.
const std::string kIconBytes = std::string("\0\0\1\0\1\0icon body", 15);

TEST(Icon, ComesFromTheTypesFileOnceForAllBlocks) {
    TempLibrary library;
    const std::string type = UniqueTypeName("Iconic");
    library.WriteDefinition(type, HeaderOnlyDefinition("<NAME>Iconic</NAME>"));
    const auto file = library.WriteFile(std::filesystem::path(type) / (type + ".ico"), kIconBytes);

    const auto first = InitBlock(type)->IAppObject_Icon();
    std::filesystem::remove(file);
    const auto second = InitBlock(type)->IAppObject_Icon();

    ASSERT_NE(first, nullptr);
    EXPECT_EQ(std::string(first->bytes.begin(), first->bytes.end()), kIconBytes);
    EXPECT_EQ(first->source, file.string());
    EXPECT_EQ(second, first);
}

TEST(Icon, FallsBackToTheComponentsOwnIcon) {
    TempLibrary library;
    ScopedMessageRecorder messages;  // Broken and the escaping name have no definition
    const std::string plain = UniqueTypeName("Plain");
    const std::string broken = UniqueTypeName("Broken");
    library.WriteDefinition(plain, HeaderOnlyDefinition(""));
    library.WriteFile(std::filesystem::path(broken) / (broken + ".ico"), "not an icon");

    const auto icon = InitBlock(plain)->IAppObject_Icon();
    // A later .ico changes nothing: the type's icon is in the store.
    library.WriteFile(std::filesystem::path(plain) / (plain + ".ico"), kIconBytes);

    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(icon->source, "TESSRA");
    EXPECT_EQ(InitBlock(plain)->IAppObject_Icon(), icon);
    EXPECT_EQ(InitBlock(broken)->IAppObject_Icon()->source, "TESSRA");
    EXPECT_EQ(InitBlock("../" + plain)->IAppObject_Icon()->source, "TESSRA");
}

TEST(Icon, TheBuiltInIconHoldsItsThreeImages) {
    TempLibrary library;
    ScopedMessageRecorder messages;
    const auto icon = InitBlock(UniqueTypeName("Default"))->IAppObject_Icon();
    ASSERT_NE(icon, nullptr);
    const std::vector<unsigned char>& b = icon->bytes;
    ASSERT_GE(b.size(), 6u + 3 * 16);

    EXPECT_EQ(std::vector<unsigned char>(b.begin(), b.begin() + 6),
              (std::vector<unsigned char>{0, 0, 1, 0, 3, 0}));
    const struct {
        int size;
        int colourCount;  // 0 stands for 256
        int bitCount;
    } images[] = {{16, 16, 4}, {32, 16, 4}, {32, 0, 8}};
    std::size_t end = 6 + 3 * 16;
    for (int i = 0; i < 3; ++i) {
        const unsigned char* entry = b.data() + 6 + 16 * i;
        EXPECT_EQ(entry[0], images[i].size);
        EXPECT_EQ(entry[1], images[i].size);
        EXPECT_EQ(entry[2], images[i].colourCount);
        EXPECT_EQ(entry[6], images[i].bitCount);
        const std::size_t length = entry[8] | entry[9] << 8 | entry[10] << 16;
        const std::size_t offset = entry[12] | entry[13] << 8 | entry[14] << 16;
        EXPECT_EQ(offset, end) << "images follow one another";
        end = offset + length;
    }
    EXPECT_EQ(end, b.size());
}

// ---- Datasheet ------------------------------------------------------------------------------

// Replaces the shell while it lives and records what it was asked.
class ScopedShell {
public:
    explicit ScopedShell(int32_t answer) {
        SetShellOpener([this, answer](const ShellRequest& request) {
            requests.push_back(request);
            return answer;
        });
    }
    ~ScopedShell() { SetShellOpener({}); }
    ScopedShell(const ScopedShell&) = delete;
    ScopedShell& operator=(const ScopedShell&) = delete;

    std::vector<ShellRequest> requests;
};

std::shared_ptr<CDBAppObject> BlockWithDatasheet(const TempLibrary& library) {
    const std::string type = UniqueTypeName("Viewable");
    library.WriteDefinition(type, HeaderOnlyDefinition(""));
    library.WriteFile(std::filesystem::path(type) / "manual.pdf", "%PDF");
    return InitBlock(type);
}

TEST(Datasheet, WithoutOneTheShellIsNotAsked) {
    TempLibrary library;
    ScopedMessageRecorder messages;
    ScopedShell shell(33);
    const std::string type = UniqueTypeName("Sheetless");
    library.WriteDefinition(type, HeaderOnlyDefinition(""));

    InitBlock(type)->IAppObject_ViewDatasheet(int64_t{42});

    EXPECT_THAT(MessageTexts(messages), ElementsAre("DataSheet not available"));
    EXPECT_THAT(shell.requests, IsEmpty());
}

TEST(Datasheet, OpensTheFileMaximisedInItsViewer) {
    TempLibrary library;
    ScopedMessageRecorder messages;
    ScopedShell shell(42);
    auto block = BlockWithDatasheet(library);

    block->IAppObject_ViewDatasheet(std::string("4711"));

    ASSERT_EQ(shell.requests.size(), 1u);
    const ShellRequest& request = shell.requests[0];
    EXPECT_EQ(request.ownerWindow, 4711);
    EXPECT_EQ(request.verb, "open");
    EXPECT_EQ(request.file, block->DatasheetPath());
    EXPECT_EQ(request.parameters, "0");
    EXPECT_EQ(request.folder, block->DatasheetPath());
    EXPECT_EQ(request.showState, 3);
    EXPECT_THAT(MessageTexts(messages), IsEmpty());
}

TEST(Datasheet, ShellFailuresMapOntoThreeMessages) {
    const struct {
        int32_t result;
        std::optional<std::string> message;
    } rows[] = {
        {31, "Viewer not Available. Please install the viewer to see the documentation"},
        {2, "DataSheet not available"},
        {0, "Visualization not allowed"},
        {5, "Visualization not allowed"},
        {30, "Visualization not allowed"},
        {-1, "Visualization not allowed"},
        {32, std::nullopt},
        {33, std::nullopt},
    };
    TempLibrary library;
    auto block = BlockWithDatasheet(library);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.result);
        ScopedMessageRecorder messages;
        ScopedShell shell(row.result);
        block->IAppObject_ViewDatasheet(int64_t{1});
        if (row.message) {
            EXPECT_THAT(MessageTexts(messages), ElementsAre(*row.message));
        } else {
            EXPECT_THAT(MessageTexts(messages), IsEmpty());
        }
    }
}

TEST(Datasheet, AHandleThatIsNoNumberDropsTheCall) {
    TempLibrary library;
    auto block = BlockWithDatasheet(library);
    for (const WindowHandle& handle :
         {WindowHandle{std::string("window")}, WindowHandle{int64_t{1} << 40},
          WindowHandle{std::string("")}}) {
        ScopedMessageRecorder messages;
        ScopedShell shell(33);
        block->IAppObject_ViewDatasheet(handle);
        EXPECT_THAT(shell.requests, IsEmpty());
        EXPECT_THAT(MessageTexts(messages), ElementsAre("Visualization not allowed"));
    }
}

}  // namespace
}  // namespace zerbin
