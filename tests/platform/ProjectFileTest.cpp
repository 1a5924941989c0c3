#include "platform/ProjectFile.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <sstream>

#include "tests/support/TestSupport.h"

namespace zerbin {
namespace {

namespace fs = std::filesystem;

std::string Bytes(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::vector<std::string> Names(const fs::path& folder) {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

class ProjectFileTest : public ::testing::Test {
protected:
    testing::TempFolder folder_;
    fs::path file_ = folder_.Path() / "plant.xml";
};

TEST_F(ProjectFileTest, WriteReplacesTheFileAndKeepsThePreviousVersion) {
    const ProjectFile project(file_);
    project.WriteText("<Project/>\n");
    EXPECT_EQ(Names(folder_.Path()), std::vector<std::string>{"plant.xml"});
    ::chmod(file_.c_str(), 0640);
    project.WriteText("<Project Version=\"2\"/>\n");
    project.WriteText("<Project Version=\"3\"/>\n");
    EXPECT_EQ(Bytes(file_), "<Project Version=\"3\"/>\n");
    EXPECT_EQ(Bytes(project.BackupPath()), "<Project Version=\"2\"/>\n");
    EXPECT_EQ(project.BackupPath().filename(), "plant.xml~");
    // No temporary file stays behind, and the file keeps the permissions it had.
    EXPECT_EQ(Names(folder_.Path()), (std::vector<std::string>{"plant.xml", "plant.xml~"}));
    struct stat status {};
    ASSERT_EQ(::stat(file_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_F(ProjectFileTest, ALinkStaysALinkToTheNewText) {
    const fs::path real = folder_.Write("real/plant.xml", "old");
    fs::create_symlink(real, file_);
    ProjectFile(file_).WriteText("new");
    EXPECT_TRUE(fs::is_symlink(file_));
    EXPECT_EQ(Bytes(real), "new");
    EXPECT_EQ(Bytes(real.string() + "~"), "old");
}

// Runs write in a child process whose files may not grow beyond limit bytes: with SIGXFSZ
// ignored the write fails as on a full disk, with it the child dies in the middle of the
// write as on a kill. Gives the child's wait status; the child exits 0 when the write threw
// a message that holds expected.
int WriteInChild(const std::function<void()>& write, rlim_t limit, bool killed,
                 const std::string& expected) {
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit size{limit, limit};
        ::setrlimit(RLIMIT_FSIZE, &size);
        std::signal(SIGXFSZ, killed ? SIG_DFL : SIG_IGN);
        try {
            write();
        } catch (const ProjectFileError& error) {
            ::_exit(std::string(error.what()).find(expected) != std::string::npos ? 0 : 2);
        }
        ::_exit(3);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

TEST_F(ProjectFileTest, AFailedWriteLeavesFileAndBackupByteForByte) {
    const std::string big(1 << 20, 'x');
    pugi::xml_document refused;
    refused.append_child("Project").append_child("Name").text().set("bad \x1B value");
    const ProjectFile project(file_);
    const ProjectFile inMissingFolder(folder_.Path() / "gone" / "plant.xml");
    const struct {
        const char* name;
        std::function<void()> write;
        bool killed;
        const char* expected;  // in the message of a write that failed
    } rows[] = {
        {"full disk", [&] { project.WriteText(big); }, false, "file too large"},
        {"killed mid-way", [&] { project.WriteText(big); }, true, ""},
        {"refused text", [&] { project.Write(refused); }, false, "U+001B"},
        {"missing folder", [&] { inMissingFolder.WriteText("x"); }, false,
         "no such file or directory"},
    };
    project.WriteText("<Project>one</Project>");
    project.WriteText("<Project>two</Project>");
    for (const auto& row : rows) {
        const int status = WriteInChild(row.write, 64 << 10, row.killed, row.expected);
        if (row.killed) {
            EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ) << row.name;
        } else {
            EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << row.name << " " << status;
        }
        EXPECT_EQ(Bytes(file_), "<Project>two</Project>") << row.name;
        EXPECT_EQ(Bytes(project.BackupPath()), "<Project>one</Project>") << row.name;
    }
}

TEST_F(ProjectFileTest, ReadRefusesWhatTheStrictReaderRefusesNamingTheFile) {
    const struct {
        const char* text;  // nullptr: no file
        const char* expected;
    } rows[] = {
        {nullptr, "no such file or directory"},
        {"<!DOCTYPE P [<!ENTITY e \"x\">]><P>&e;</P>", "at line 1"},
        {"<Project/><Project/>", "at line 1"},
    };
    for (const auto& row : rows) {
        fs::remove(file_);
        if (row.text != nullptr) {
            folder_.Write("plant.xml", row.text);
        }
        // Whole, and an element at a time.
        for (const bool whole : {true, false}) {
            try {
                if (whole) {
                    ProjectFile(file_).Read();
                } else {
                    ProjectFile(file_).ReadElements();
                }
                ADD_FAILURE() << "read " << (row.text ? row.text : "no file");
            } catch (const ProjectFileError& error) {
                const std::string message = error.what();
                EXPECT_EQ(message.rfind("cannot read project '" + file_.string() + "': ", 0), 0u)
                    << message;
                EXPECT_NE(message.find(row.expected), std::string::npos) << message;
                EXPECT_EQ(error.Code(), row.text ? 0 : ENOENT);
            }
        }
    }
}

}  // namespace
}  // namespace zerbin
