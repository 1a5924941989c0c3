#include "platform/Shell.h"

#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "base/ProcessState.h"

extern char** environ;

namespace zerbin {
namespace {

std::function<int32_t(const ShellRequest&)>& OpenerSlot() {
    static std::function<int32_t(const ShellRequest&)> opener;
    return opener;
}

// Viewers started earlier; reaped when they have ended so none lingers as a zombie. They are
// not waited for: xdg-open may stay until the viewer closes.
struct Viewers {
    std::vector<pid_t> children;
};

std::vector<pid_t>& Children() {
    return ProcessState::Get<Viewers>().children;
}

void ReapEndedChildren() {
    auto& children = Children();
    std::erase_if(children, [](pid_t pid) {
        int status = 0;
        return waitpid(pid, &status, WNOHANG) != 0;
    });
}

int32_t SpawnXdgOpen(const ShellRequest& request) {
    std::filesystem::path file(request.file);
    if (file.is_relative() && !request.folder.empty()) {
        file = std::filesystem::path(request.folder) / file;
    }
    std::error_code ec;
    if (request.file.empty() || !std::filesystem::exists(file, ec)) {
        return kShellFileNotFound;
    }

    ReapEndedChildren();
    std::string program = "xdg-open";
    std::string argument = file.string();
    char* argv[] = {program.data(), argument.data(), nullptr};
    pid_t pid = 0;
    const int error = posix_spawnp(&pid, "xdg-open", nullptr, nullptr, argv, environ);
    if (error == ENOENT) {
        return kShellNoAssociation;
    }
    if (error != 0) {
        return kShellFailed;
    }
    Children().push_back(pid);
    return kShellOpened;
}

}  // namespace

int32_t OpenDocument(int64_t ownerWindow, const std::string& verb, const std::string& file,
                     const std::string& parameters, const std::string& folder, int32_t showState) {
    const ShellRequest request{ownerWindow, verb, file, parameters, folder, showState};
    if (const auto opener = OpenerSlot()) {
        return opener(request);
    }
    return SpawnXdgOpen(request);
}

void SetShellOpener(std::function<int32_t(const ShellRequest&)> opener) {
    OpenerSlot() = std::move(opener);
}

}  // namespace zerbin
