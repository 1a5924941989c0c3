#include "libzerbin/Library.h"

#include <dlfcn.h>

#include <optional>
#include <system_error>

#include "base/Xml.h"
#include "libzerbin/CallGuard.h"
#include "platform/DefinitionStore.h"
#include "platform/Files.h"

namespace zerbin::capi {
namespace {

namespace fs = std::filesystem;

struct Opened {
    std::shared_ptr<const pugi::xml_document> dictionary;
    std::shared_ptr<const pugi::xml_document> ownerDevice;
};

// Empty until the host opens a library or makes its first block.
std::optional<Opened>& Current() {
    static std::optional<Opened> opened;
    return opened;
}

std::shared_ptr<const pugi::xml_document> Read(const fs::path& file, const char* what) {
    xml::ParseError error;
    std::shared_ptr<const pugi::xml_document> document = xml::LoadFile(file, &error);
    if (!document) {
        throw Failure(ZERBIN_E_FILE, std::string("cannot read ") + what + " '" + file.string() +
                                         "': " + error.reason);
    }
    return document;
}

}  // namespace

fs::path InstalledData() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&InstalledData), &info) == 0 ||
        info.dli_fname == nullptr) {
        throw Failure(ZERBIN_E_FILE, "the library cannot find its own file");
    }
    std::error_code ignored;
    const fs::path self = fs::weakly_canonical(info.dli_fname, ignored);
    return (self.parent_path() / ZERBIN_LIBRARY_TO_DATA).lexically_normal();
}

void OpenLibrary(const fs::path& library, const fs::path& dictionary, const fs::path& ownerDevice,
                 bool noOwnerDevice) {
    const bool installed =
        library.empty() || dictionary.empty() || (ownerDevice.empty() && !noOwnerDevice);
    const fs::path data = installed ? InstalledData() : fs::path();
    const fs::path folder = library.empty() ? data / "library" : library;
    std::error_code error;
    if (!fs::is_directory(folder, error)) {
        throw Failure(ZERBIN_E_FILE, "cannot read library '" + folder.string() +
                                         "': " + (error ? error.message() : "not a folder"));
    }
    Opened opened;
    opened.dictionary = Read(dictionary.empty() ? data / "snvts.xml" : dictionary, "dictionary");
    if (!noOwnerDevice) {
        opened.ownerDevice =
            Read(ownerDevice.empty() ? data / "devices" / "Controller.xml" : ownerDevice,
                 "owner device document");
    }
    // Type T is LibraryFolder() / T, the parent of the component folder.
    const fs::path component = folder / ComponentBaseName();
    if (component != ComponentFolder()) {
        // The old library's types must not pass for the new one's; blocks alive keep theirs.
        DefinitionCache::Shared().Clear();
        SetComponentFolder(component);
    }
    Current() = std::move(opened);
}

HostSetup CurrentSetup() {
    if (!Current()) {
        OpenLibrary({}, {}, {}, false);
    }
    HostSetup setup;
    setup.dictionary = Current()->dictionary;
    setup.ownerDevice = Current()->ownerDevice;
    return setup;
}

void RequireType(const std::string& type) {
    std::error_code error;
    if (!IsSafeTypeName(type) ||
        !fs::is_regular_file(DefinitionFile(LibraryFolder(), type), error)) {
        throw Failure(ZERBIN_E_NOT_FOUND,
                      "no block type '" + type + "' in library '" + LibraryFolder().string() + "'");
    }
}

}  // namespace zerbin::capi
