// Runs the zerbin program as a user would and collects what it says.
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <iterator>

#include "tests/support/TestSupport.h"

extern char** environ;

namespace zerbin::testing {

struct ProgramResult {
    int status = -1;
    std::string out;
    std::string err;
};

inline std::string ReadWhole(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The environment of the test with the locale replaced: the program follows the user's
// locale, and the expected texts are written for a known one.
inline std::vector<std::string> EnvironmentWithLocale(const std::string& locale) {
    std::vector<std::string> variables;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string variable = *entry;
        if (variable.rfind("LC_", 0) != 0 && variable.rfind("LANG=", 0) != 0 &&
            variable.rfind("LANGUAGE=", 0) != 0) {
            variables.push_back(variable);
        }
    }
    variables.push_back("LC_ALL=" + locale);
    return variables;
}

// Runs the program with args in workingFolder (the test's own when empty) under locale;
// stdout and stderr go through files, so neither can fill up and block the other. Given
// stdoutFile, stdout goes there instead ("/dev/full") and out stays empty.
inline ProgramResult RunProgram(const std::vector<std::string>& args,
                                const std::filesystem::path& workingFolder = {},
                                const std::string& locale = "C",
                                const std::filesystem::path& stdoutFile = {}) {
    TempFolder capture;
    const std::string outFile = stdoutFile.empty() ? capture.Path() / "out" : stdoutFile;
    const std::string errFile = capture.Path() / "err";

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outFile.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errFile.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (!workingFolder.empty()) {
        posix_spawn_file_actions_addchdir_np(&actions, workingFolder.c_str());
    }

    const auto pointers = [](std::vector<std::string>& texts) {
        std::vector<char*> list;
        for (std::string& text : texts) {
            list.push_back(text.data());
        }
        list.push_back(nullptr);
        return list;
    };
    std::vector<std::string> argvText{ZERBIN_PROGRAM};
    argvText.insert(argvText.end(), args.begin(), args.end());
    std::vector<std::string> environmentText = EnvironmentWithLocale(locale);
    const std::vector<char*> argv = pointers(argvText);
    const std::vector<char*> environment = pointers(environmentText);

    ProgramResult result;
    pid_t pid = 0;
    const int spawned =
        posix_spawn(&pid, ZERBIN_PROGRAM, &actions, nullptr, argv.data(), environment.data());
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        throw std::runtime_error("cannot start " + std::string(ZERBIN_PROGRAM));
    }
    int wstatus = 0;
    waitpid(pid, &wstatus, 0);
    result.status = WIFEXITED(wstatus) ? WEXITSTATUS(wstatus) : -1;
    result.out = stdoutFile.empty() ? ReadWhole(outFile) : std::string();
    result.err = ReadWhole(errFile);
    return result;
}

}  // namespace zerbin::testing
