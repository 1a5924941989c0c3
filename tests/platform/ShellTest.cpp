#include "platform/Shell.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "tests/TestSupport.h"

namespace zerbin {
namespace {

namespace fs = std::filesystem;

// Puts a stand-in xdg-open first on PATH (or empties PATH) for the test's lifetime.
class ShellTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(dir_ / "bin");
        std::ofstream(dir_ / "sheet.pdf") << "%PDF";
        const char* path = std::getenv("PATH");
        oldPath_ = path != nullptr ? path : "";
    }
    void TearDown() override { setenv("PATH", oldPath_.c_str(), 1); }
    void InstallFakeOpener() {
        const fs::path script = dir_ / "bin" / "xdg-open";
        std::ofstream(script) << "#!/bin/sh\nprintf '%s' \"$*\" > \"" << (dir_ / "opened").string()
                              << ".tmp\"\nmv \"" << (dir_ / "opened").string() << ".tmp\" \""
                              << (dir_ / "opened").string() << "\"\n";
        fs::permissions(script, fs::perms::owner_all);
        setenv("PATH", ((dir_ / "bin").string() + ":" + oldPath_).c_str(), 1);
    }
    std::string WaitForOpened() {
        const fs::path opened = dir_ / "opened";
        for (int i = 0; i < 200 && !fs::exists(opened); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        std::ifstream in(opened);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    testing::TempFolder folder_;
    fs::path dir_ = folder_.Path();
    std::string oldPath_;
};

TEST_F(ShellTest, SpawnsXdgOpenWithTheFileResolvedInTheFolder) {
    InstallFakeOpener();
    EXPECT_EQ(OpenDocument(0, "open", "sheet.pdf", "", dir_.string(), 1), kShellOpened);
    EXPECT_EQ(WaitForOpened(), (dir_ / "sheet.pdf").string());
}

TEST_F(ShellTest, TellsAMissingFileFromAMissingViewer) {
    InstallFakeOpener();
    EXPECT_EQ(OpenDocument(0, "open", "absent.pdf", "", dir_.string(), 1), kShellFileNotFound);
    EXPECT_EQ(OpenDocument(0, "open", "", "", "", 1), kShellFileNotFound);
    setenv("PATH", (dir_ / "empty").c_str(), 1);
    EXPECT_EQ(OpenDocument(0, "open", (dir_ / "sheet.pdf").string(), "", "", 1),
              kShellNoAssociation);
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
