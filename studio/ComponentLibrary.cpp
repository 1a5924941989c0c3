#include "studio/ComponentLibrary.h"

#include <dlfcn.h>

#include <cstdlib>
#include <fstream>
#include <system_error>

namespace zerbin::studio {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFileName = "Zerbin.so";

struct State {
    fs::path file;
    ComponentEntryPoints entry;
};

State& Current() {
    static State state;
    return state;
}

fs::path ProgramFolder() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return error ? fs::path() : program.parent_path();
}

// The library named by the registration that ZerbinRegisterServer writes, if any.
fs::path RegisteredFile() {
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    fs::path base;
    if (dataHome != nullptr && fs::path(dataHome).is_absolute()) {
        base = dataHome;
    } else if (const char* home = std::getenv("HOME"); home != nullptr && home[0] != '\0') {
        base = fs::path(home) / ".local" / "share";
    } else {
        return {};
    }
    std::ifstream in(base / "zerbin" / "plugins" / (std::string(ZERBIN_PROGID) + ".plugin"));
    std::string line;
    while (std::getline(in, line)) {
        if (line.rfind("Path=", 0) == 0) {
            return line.substr(5);
        }
    }
    return {};
}

template <typename Fn>
bool Find(void* handle, const char* name, Fn& into, std::string* why) {
    into = reinterpret_cast<Fn>(dlsym(handle, name));
    if (into == nullptr && why != nullptr) {
        *why = std::string("it has no entry point ") + name;
    }
    return into != nullptr;
}

// Loads one candidate; the handle stays open on success and is closed otherwise.
bool TryLoad(const fs::path& file, std::string* why) {
    std::error_code error;
    if (!fs::is_regular_file(file, error)) {
        *why = "no such file";
        return false;
    }
    // RTLD_LOCAL: the component's symbols stay its own; the interfaces meet by their names.
    void* handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        const char* reason = dlerror();
        *why = reason != nullptr ? reason : "dlopen failed";
        return false;
    }
    ComponentEntryPoints entry;
    if (!Find(handle, "ZerbinGetClassObject", entry.getClassObject, why) ||
        !Find(handle, "ZerbinReleaseObject", entry.releaseObject, why) ||
        !Find(handle, "ZerbinGetProjectFiles", entry.getProjectFiles, why) ||
        !Find(handle, "ZerbinSetBlockLibrary", entry.setBlockLibrary, why) ||
        !Find(handle, "ZerbinSetMessageHandler", entry.setMessageHandler, why) ||
        !Find(handle, "ZerbinShowMessageBox", entry.showMessageBox, why) ||
        !Find(handle, "ZerbinSetEventPump", entry.setEventPump, why) ||
        !Find(handle, "ZerbinSetUnitSystem", entry.setUnitSystem, why)) {
        dlclose(handle);
        return false;
    }
    Current() = State{fs::weakly_canonical(file, error), entry};
    return true;
}

}  // namespace

std::vector<fs::path> ComponentLibrary::Candidates() {
    std::vector<fs::path> candidates;
    const fs::path program = ProgramFolder();
    if (!program.empty()) {
        candidates.push_back((program / ZERBIN_STUDIO_TO_PLUGIN / kFileName).lexically_normal());
        candidates.push_back(program / kFileName);
    }
#ifdef ZERBIN_BUILD_PLUGIN
    candidates.emplace_back(ZERBIN_BUILD_PLUGIN);
#endif
    if (fs::path registered = RegisteredFile(); !registered.empty()) {
        candidates.push_back(std::move(registered));
    }
    return candidates;
}

bool ComponentLibrary::Load(std::string* why) {
    if (Loaded()) {
        return true;
    }
    std::string tried;
    for (const fs::path& candidate : Candidates()) {
        std::string reason;
        if (TryLoad(candidate, &reason)) {
            return true;
        }
        tried += "\n  " + candidate.string() + ": " + reason;
    }
    if (why != nullptr) {
        *why = "cannot load the component Zerbin.so; tried:" +
               (tried.empty() ? std::string("\n  (no place to look)") : tried);
    }
    return false;
}

bool ComponentLibrary::Loaded() {
    return Current().entry.getClassObject != nullptr;
}

const fs::path& ComponentLibrary::File() {
    return Current().file;
}

const ComponentEntryPoints& ComponentLibrary::Entry() {
    return Current().entry;
}

}  // namespace zerbin::studio
