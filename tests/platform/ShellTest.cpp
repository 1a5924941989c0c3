#include "platform/Shell.h"

#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

namespace fs = std::filesystem;

// Puts a stand-in xdg-open first on PATH (or empties PATH) for the test's lifetime.
class ShellTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::ofstream(dir_ / "sheet.pdf") << "%PDF";
        const char* path = std::getenv("PATH");
        oldPath_ = path != nullptr ? path : "";
    }
    void TearDown() override { setenv("PATH", oldPath_.c_str(), 1); }
    // An xdg-open that runs body as a shell script; it sees the file as $1.
    void InstallFakeOpener(const std::string& body) {
        const fs::path script = folder_.Write("bin/xdg-open", "#!/bin/sh\n" + body + "\n");
        fs::permissions(script, fs::perms::owner_all);
        setenv("PATH", ((dir_ / "bin").string() + ":" + oldPath_).c_str(), 1);
    }

    testing::TempFolder folder_;
    fs::path dir_ = folder_.Path();
    std::string oldPath_;
};

TEST_F(ShellTest, SpawnsXdgOpenWithTheFileResolvedInTheFolder) {
    InstallFakeOpener("printf '%s|%s' \"$#\" \"$1\" > \"" + (dir_ / "opened").string() + "\"");
    EXPECT_EQ(OpenDocument(0, "open", "sheet.pdf", "0", dir_.string(), 3), kShellOpened);
    std::ifstream opened(dir_ / "opened");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(opened), {}),
              "1|" + (dir_ / "sheet.pdf").string());
}

// Each way xdg-open can fail, and the result number callers tell them apart by.
TEST_F(ShellTest, XdgOpenFailuresMapOntoResultNumbers) {
    const struct {
        const char* script;
        int32_t result;
    } rows[] = {
        {"exit 0", kShellOpened},
        {"exit 2", kShellFileNotFound},   // the file vanished before xdg-open saw it
        {"exit 3", kShellNoAssociation},  // no tool to open the file with
        {"exit 4", kShellFailed},         // the opener failed
        {"exit 1", kShellFailed},         // xdg-open refused its arguments
        {"kill -9 $$", kShellFailed},     // died by a signal
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.script);
        InstallFakeOpener(row.script);
        EXPECT_EQ(OpenDocument(0, "open", (dir_ / "sheet.pdf").string(), "", "", 3), row.result);
    }
}

TEST_F(ShellTest, TellsAMissingFileFromAMissingViewer) {
    InstallFakeOpener("exit 0");
    EXPECT_EQ(OpenDocument(0, "open", "absent.pdf", "", dir_.string(), 1), kShellFileNotFound);
    EXPECT_EQ(OpenDocument(0, "open", "", "", "", 1), kShellFileNotFound);
    setenv("PATH", (dir_ / "empty").c_str(), 1);
    EXPECT_EQ(OpenDocument(0, "open", (dir_ / "sheet.pdf").string(), "", "", 1),
              kShellNoAssociation);
    // Present but not runnable.
    const fs::path script = folder_.Write("locked/xdg-open", "#!/bin/sh\nexit 0\n");
    fs::permissions(script, fs::perms::owner_read);
    setenv("PATH", (dir_ / "locked").c_str(), 1);
    EXPECT_EQ(OpenDocument(0, "open", (dir_ / "sheet.pdf").string(), "", "", 1), kShellFailed);
}

TEST_F(ShellTest, AnInstalledOpenerReceivesTheWholeRequest) {
    ShellRequest seen;
    SetShellOpener([&](const ShellRequest& request) {
        seen = request;
        return 42;
    });
    EXPECT_EQ(OpenDocument(7, "print", "x.pdf", "-p", "/tmp", 3), 42);
    SetShellOpener({});
    EXPECT_EQ(seen.ownerWindow, 7);
    EXPECT_EQ(seen.verb, "print");
    EXPECT_EQ(seen.file, "x.pdf");
    EXPECT_EQ(seen.parameters, "-p");
    EXPECT_EQ(seen.folder, "/tmp");
    EXPECT_EQ(seen.showState, 3);
    EXPECT_EQ(OpenDocument(0, "open", "absent.pdf", "", dir_.string(), 1), kShellFileNotFound);
}

}  // namespace
}  // namespace zerbin
