// How the host shows a block: colour words and numbers, the icon of a type and the datasheet
// viewer with its failure messages.
#include <gtest/gtest.h>

#include <optional>

#include "app_object/CDBAppObject.h"
#include "platform/Messages.h"
#include "platform/Picture.h"
#include "platform/Shell.h"
#include "tests/support/Blocks.h"

namespace zerbin {
namespace {

using testing::HeaderOnlyDefinition;
using testing::InitBlock;
using testing::MessageTexts;
using testing::TempLibrary;

TEST(Colour, WordsAndNumbersOfTheTableReadAsNumbersAndOthersAsZero) {
    const struct {
        const char* word;
        int32_t number;
    } rows[] = {
        {"red", 255}, {"BLUE", 16711680}, {"MAGENTA", 16711935}, {"purple", 0}, {" RED", 0},
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

// A small file that reads as an icon: the directory of one image of 9 bytes, and the image.
const std::string kIconBytes = std::string(
                                   "\0\0\1\0\1\0"
                                   "\x10\x10\0\0\1\0\x20\0"
                                   "\x09\0\0\0\x16\0\0\0",
                                   22) +
                               "icon body";

TEST(Icon, IsTheTypesOwnOrTheComponentsAndIsReadOnce) {
    TempLibrary library;
    ScopedMessageRecorder messages;  // Broken, Cut and the escaping name have no definition
    const std::string plain = "Plain";
    const std::string broken = "Broken";
    const std::string pictured = "Pictured";
    library.WriteDefinition(plain, HeaderOnlyDefinition(""));
    library.WriteDefinition(pictured, HeaderOnlyDefinition(""));
    const std::string cut = "Cut";
    library.WriteFile(std::filesystem::path(broken) / (broken + ".ico"), "not an icon");
    library.WriteFile(std::filesystem::path(cut) / (cut + ".ico"),
                      kIconBytes.substr(0, kIconBytes.size() - 1));
    library.WriteFile(std::filesystem::path(pictured) / (pictured + ".ico"), kIconBytes);
    const auto icon = InitBlock(plain)->IAppObject_Icon();
    // A later .ico changes nothing: the type's icon is in the store.
    library.WriteFile(std::filesystem::path(plain) / (plain + ".ico"), kIconBytes);
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(icon->source, "TESSRA");
    EXPECT_EQ(InitBlock(plain)->IAppObject_Icon(), icon);
    EXPECT_EQ(InitBlock(broken)->IAppObject_Icon()->source, "TESSRA");
    EXPECT_EQ(InitBlock(cut)->IAppObject_Icon()->source, "TESSRA");
    EXPECT_EQ(InitBlock("../" + plain)->IAppObject_Icon()->source, "TESSRA");
    const auto own = InitBlock(pictured)->IAppObject_Icon();
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(std::string(own->bytes.begin(), own->bytes.end()), kIconBytes);
    EXPECT_EQ(InitBlock(pictured)->IAppObject_Icon(), own);
}

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

// The viewer is asked to open the file maximised; its failures map onto three messages.
TEST(Datasheet, OpensTheFileInItsViewerAndReportsWhyItCannot) {
    const struct {
        int32_t result;
        std::optional<std::string> message;
    } rows[] = {
        {42, std::nullopt},
        {31, "Viewer not Available. Please install the viewer to see the documentation"},
        {2, "DataSheet not available"},
        {0, "Visualization not allowed"},
        {30, "Visualization not allowed"},
        {33, std::nullopt},
    };
    TempLibrary library;
    library.WriteDefinition("Viewable", HeaderOnlyDefinition(""));
    library.WriteFile("Viewable/manual.pdf", "%PDF");
    auto block = InitBlock("Viewable");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.result);
        ScopedMessageRecorder messages;
        ScopedShell shell(row.result);
        block->IAppObject_ViewDatasheet(std::string("4711"));
        ASSERT_EQ(shell.requests.size(), 1u);
        const ShellRequest& request = shell.requests[0];
        EXPECT_EQ(request.ownerWindow, 4711);
        EXPECT_EQ(request.verb, "open");
        EXPECT_EQ(request.file, block->DatasheetPath());
        EXPECT_EQ(request.parameters, "0");
        EXPECT_EQ(request.folder, block->DatasheetPath());
        EXPECT_EQ(request.showState, 3);
        EXPECT_EQ(MessageTexts(messages),
                  row.message ? std::vector{*row.message} : std::vector<std::string>{});
    }
}

}  // namespace
}  // namespace zerbin
