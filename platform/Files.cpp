#include "platform/Files.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fnmatch.h>
#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <system_error>
#include <utility>
#include <vector>

#include "base/ProcessState.h"

namespace zerbin {
namespace {

constexpr const char* kFallbackBaseName = "Zerbin";

// What the host set, and the library folder last derived from the component folder.
struct FileSettings {
    std::filesystem::path folder;
    std::string baseName;
    bool libraryKnown = false;
    std::filesystem::path lastComponent;
    std::filesystem::path lastLibrary;
};

std::filesystem::path& FolderOverride() {
    return ProcessState::Get<FileSettings>().folder;
}

std::string& BaseNameOverride() {
    return ProcessState::Get<FileSettings>().baseName;
}

std::filesystem::path LocateOwnFile() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&LocateOwnFile), &info) == 0 ||
        info.dli_fname == nullptr || info.dli_fname[0] == '\0') {
        return {};
    }
    std::error_code ec;
    std::filesystem::path file = std::filesystem::weakly_canonical(info.dli_fname, ec);
    return ec ? std::filesystem::path(info.dli_fname) : file;
}

// The file that holds this code: the plug-in when the core is linked into one, else the
// program. Empty when the loader can't tell. Found once: the code does not move while it
// runs, and every block asks for its library folder.
const std::filesystem::path& OwnFile() {
    static const std::filesystem::path file = LocateOwnFile();
    return file;
}

std::filesystem::path NormalisedParent(const std::filesystem::path& component) {
    std::filesystem::path folder = component.lexically_normal();
    // "a/b/" has the parent "a/b": drop the empty last element first.
    if (!folder.has_filename() && folder.has_relative_path()) {
        folder = folder.parent_path();
    }
    return folder.parent_path();
}

bool IsSharedObject(const std::filesystem::path& file) {
    const std::string name = file.filename().string();
    return file.extension() == ".so" || name.find(".so.") != std::string::npos ||
           file.extension() == ".dylib";
}

// Calls take(name, choice) for each regular file of folder that choose(name) gives a choice
// other than kSkip, in listing order, while take answers true. readdir rather than
// std::filesystem::directory_iterator: libstdc++ allocates inside a noexcept frame there, so
// running out of memory would end the process instead of reaching the caller. Only the names
// chosen are looked at further, so that a folder of many other files costs no stat for each.
constexpr std::size_t kSkip = SIZE_MAX;

template <typename Choose, typename Take>
void EachRegularFile(const std::filesystem::path& folder, const Choose& choose, const Take& take) {
    struct CloseDir {
        void operator()(DIR* dir) const { closedir(dir); }
    };
    const std::unique_ptr<DIR, CloseDir> dir(opendir(folder.c_str()));
    if (!dir) {
        return;
    }
    while (const dirent* entry = readdir(dir.get())) {
        const std::size_t choice = choose(entry->d_name);
        if (choice == kSkip) {
            continue;
        }
        std::string name = entry->d_name;
        struct stat status {};
        if (stat((folder / name).c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
            !take(std::move(name), choice)) {
            return;
        }
    }
}

}  // namespace

std::optional<std::string> FirstMatchInOrder(const std::filesystem::path& folder,
                                             const std::vector<std::string>& wildcards) {
    // The best wildcard matched so far; a later file counts only for a better one, and the
    // first wildcard can't be bettered.
    std::optional<std::string> match;
    std::size_t best = wildcards.size();
    EachRegularFile(
        folder,
        [&](const char* name) {
            for (std::size_t i = 0; i < best; ++i) {
                if (fnmatch(wildcards[i].c_str(), name, 0) == 0) {
                    return i;
                }
            }
            return kSkip;
        },
        [&](std::string name, std::size_t choice) {
            match = std::move(name);
            best = choice;
            return best > 0;
        });
    return match;
}

std::optional<std::string> FirstMatch(const std::filesystem::path& folder,
                                      const std::string& wildcard) {
    return FirstMatchInOrder(folder, {wildcard});
}

std::vector<std::string> RegularFiles(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    EachRegularFile(
        folder, [](const char*) { return std::size_t{0}; },
        [&](std::string name, std::size_t) {
            names.push_back(std::move(name));
            return true;
        });
    return names;
}

std::optional<std::string> FirstMatch(const std::vector<std::string>& names,
                                      const std::string& wildcard) {
    for (const std::string& name : names) {
        if (fnmatch(wildcard.c_str(), name.c_str(), 0) == 0) {
            return name;
        }
    }
    return std::nullopt;
}

std::filesystem::path ComponentFolder() {
    if (!FolderOverride().empty()) {
        return FolderOverride();
    }
    const std::filesystem::path file = OwnFile();
    if (file.empty()) {
        std::error_code ec;
        return std::filesystem::current_path(ec);
    }
    return file.parent_path();
}

void SetComponentFolder(std::filesystem::path folder) {
    FolderOverride() = std::move(folder);
}

std::string ComponentBaseName() {
    if (!BaseNameOverride().empty()) {
        return BaseNameOverride();
    }
    // Found once, as the file is: a host asks for every block it creates.
    static const std::string own = [] {
        const std::filesystem::path& file = OwnFile();
        // Linked into a program, the program's name says nothing about the component.
        if (file.empty() || !IsSharedObject(file)) {
            return std::string(kFallbackBaseName);
        }
        std::string name = file.filename().string();
        name = name.substr(0, name.find('.'));
        if (name.starts_with("lib")) {
            name.erase(0, 3);
        }
        return name.empty() ? std::string(kFallbackBaseName) : name;
    }();
    return own;
}

void SetComponentBaseName(std::string baseName) {
    BaseNameOverride() = std::move(baseName);
}

const std::filesystem::path& LibraryFolder() {
    // Every block asks; the answer changes only with the component folder, which a host that
    // sets it need not have copied to find out.
    FileSettings& settings = ProcessState::Get<FileSettings>();
    if (settings.libraryKnown && !settings.folder.empty() &&
        settings.folder.native() == settings.lastComponent.native()) {
        return settings.lastLibrary;
    }
    const std::filesystem::path component = ComponentFolder();
    if (!settings.libraryKnown || component.native() != settings.lastComponent.native()) {
        settings.lastLibrary = NormalisedParent(component);
        settings.lastComponent = component;
        settings.libraryKnown = true;
    }
    return settings.lastLibrary;
}

namespace {

// What library / type makes of a name without a separator, as text: every new type asks, and
// each append splits the whole path into its parts again. extra bytes are reserved for what
// the caller adds.
std::string TypeFolderText(const std::filesystem::path& library, const std::string& type,
                           std::size_t extra) {
    const std::string& folder = library.native();
    std::string text;
    text.reserve(folder.size() + type.size() + 1 + extra);
    text += folder;
    if (!text.empty() && text.back() != '/') {
        text += '/';
    }
    text += type;
    return text;
}

bool IsPlainName(const std::string& type) {
    return !type.empty() && type.find('/') == std::string::npos;
}

}  // namespace

std::filesystem::path DefinitionFile(const std::filesystem::path& library,
                                     const std::string& type) {
    if (!IsPlainName(type)) {
        return library / type / (type + ".xml");
    }
    std::string file = TypeFolderText(library, type, type.size() + 5);
    file += '/';
    file += type;
    file += ".xml";
    return std::filesystem::path(std::move(file));
}

std::filesystem::path TypeFolder(const std::filesystem::path& library, const std::string& type) {
    if (!IsPlainName(type)) {
        return library / type;
    }
    return std::filesystem::path(TypeFolderText(library, type, 0));
}

bool IsSafeTypeName(const std::string& name) {
    if (name.empty() || name == "." || name == ".." || name.size() > 255) {
        return false;
    }
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '/' || c == '\\' || byte < 0x20 || byte == 0x7F) {
            return false;
        }
    }
    return true;
}

}  // namespace zerbin
