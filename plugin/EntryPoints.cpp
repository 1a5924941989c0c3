// The C entry points of Zerbin.so: registration, the class object of the ProgID, and the
// count of living objects that tells the host when it may unload the library.
#include <dlfcn.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>

#include "app_object/CDBAppObject.h"
#include "base/MMain.h"
#include "interfaces/IProjectFiles.h"
#include "platform/DefinitionStore.h"
#include "platform/Files.h"
#include "platform/HostThread.h"
#include "platform/LibraryHold.h"
#include "platform/ProjectFile.h"
#include "plugin/HostServices.h"
#include "plugin/Registration.h"
#include "zerbin/plugin.h"

namespace zerbin::plugin {
namespace {

namespace fs = std::filesystem;

// Blocks alive and references handed out and not given back. Atomic although the component
// runs on one thread: a host may drop its last reference on another.
std::atomic<long> liveObjects{0};

fs::path LibraryPath() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&ZerbinRegisterServer), &info) == 0 ||
        info.dli_fname == nullptr) {
        throw std::runtime_error("the plug-in cannot find its own file");
    }
    return fs::weakly_canonical(info.dli_fname);
}

// The engine lives in libzerbin.so.1 and would take that file for the component's: the
// ProgID and the default block library are this file's, so the plug-in names itself once,
// before any block is made.
std::string AdoptedBaseName() {
    static const std::string baseName = [] {
        const fs::path self = LibraryPath();
        std::string name = self.filename().string();
        name = name.substr(0, name.find('.'));
        zerbin::SetComponentBaseName(name);
        zerbin::SetComponentFolder(self.parent_path());
        return name;
    }();
    return baseName;
}

std::string ProgId() {
    return AdoptedBaseName() + ".CDBAppObject";
}

// The block library installed with the plug-in; for the plug-in in the build tree it was
// built in, the source tree's. A copy anywhere else has none: the build machine's folders are
// no place of a host's. Empty when there is none.
fs::path ShippedBlockLibrary(const fs::path& library) {
    std::error_code error;
    const fs::path installed = (library.parent_path() / ZERBIN_PLUGIN_TO_BLOCKS).lexically_normal();
    if (fs::is_directory(installed, error)) {
        return installed;
    }
    const fs::path tree = fs::weakly_canonical(ZERBIN_BUILD_TREE, error);
    const fs::path inTree = library.lexically_relative(tree);
    const bool built = !error && !inTree.empty() && *inTree.begin() != "..";
    if (built && fs::is_directory(ZERBIN_SOURCE_BLOCKS, error)) {
        return ZERBIN_SOURCE_BLOCKS;
    }
    return {};
}

// What no exception may cross: the host is C.
template <typename Body>
int Guarded(int failure, Body body) noexcept {
    if (!zerbin::OnHostThread()) {
        return ZERBIN_E_WRONG_THREAD;
    }
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return ZERBIN_E_OUT_OF_MEMORY;
    } catch (...) {
        return failure;
    }
}

// What the file service says of a failure goes to why; the host gets failed instead of an
// exception.
template <typename Result, typename Body>
Result Answered(Result failed, std::string& why, Body body) {
    try {
        return body();
    } catch (const zerbin::ProjectFileError& error) {
        why = error.what();
        return failed;
    }
}

class ProjectFiles : public zerbin::IProjectFiles {
public:
    std::shared_ptr<pugi::xml_document> IProjectFiles_Read(const std::string& file,
                                                           std::string& why) override {
        return IProjectFiles_ReadAs(file, "project", why);
    }
    bool IProjectFiles_Write(const std::string& file, const pugi::xml_document& document,
                             std::string& why) override {
        return Answered(false, why, [&] {
            zerbin::ProjectFile(file).Write(document);
            return true;
        });
    }
    std::shared_ptr<pugi::xml_document> IProjectFiles_ReadAs(const std::string& file,
                                                             const std::string& what,
                                                             std::string& why) override {
        return Answered(std::shared_ptr<pugi::xml_document>(), why,
                        [&] { return zerbin::ProjectFile(file, what).Read(); });
    }
    bool IProjectFiles_WriteText(const std::string& file, const std::string& what,
                                 const std::string& text, std::string& why) override {
        return Answered(false, why, [&] {
            zerbin::ProjectFile(file, what).WriteText(text);
            return true;
        });
    }
    std::shared_ptr<pugi::xml_document> IProjectFiles_ReadText(const std::string& text,
                                                               const std::string& what,
                                                               std::string& why) override {
        return Answered(std::shared_ptr<pugi::xml_document>(), why,
                        [&] { return zerbin::ReadDocumentText(text, what); });
    }
};

}  // namespace
}  // namespace zerbin::plugin

using namespace zerbin::plugin;

ZERBIN_PLUGIN_API int ZerbinRegisterServer(void) {
    return Guarded(ZERBIN_E_REGISTRATION, [] {
        const fs::path library = LibraryPath();
        WriteRegistration({ProgId(), library, ZERBIN_PLUGIN_VERSION, ShippedBlockLibrary(library)});
        return ZERBIN_OK;
    });
}

ZERBIN_PLUGIN_API int ZerbinUnregisterServer(void) {
    return Guarded(ZERBIN_E_REGISTRATION,
                   [] { return RemoveRegistration(ProgId()) ? ZERBIN_OK : ZERBIN_E_REGISTRATION; });
}

ZERBIN_PLUGIN_API int ZerbinGetClassObject(const char* progId, ZerbinObject** object) {
    if (object == nullptr) {
        return ZERBIN_E_INVALID_ARGUMENT;
    }
    *object = nullptr;
    if (progId == nullptr) {
        return ZERBIN_E_INVALID_ARGUMENT;
    }
    if (!zerbin::ClaimHostThread()) {
        return ZERBIN_E_WRONG_THREAD;
    }
    return Guarded(ZERBIN_E_UNEXPECTED, [&] {
        // ProgIDs are looked up without regard to letter case, as the host's registry does.
        if (!zerbin::EqualsNoCase(progId, ProgId())) {
            return ZERBIN_E_CLASS_NOT_AVAILABLE;
        }
        UseQtWhenTheHostDoes();
        auto* made = new zerbin::CDBAppObject;
        ++liveObjects;
        // Should the control block fail, the deleter runs and the count stays right.
        std::shared_ptr<zerbin::CDBAppObject> block(made, [](zerbin::CDBAppObject* gone) {
            delete gone;
            --liveObjects;
        });
        auto handle = std::make_unique<ZerbinObject>(ZerbinObject{std::move(block)});
        ++liveObjects;
        *object = handle.release();
        return ZERBIN_OK;
    });
}

ZERBIN_PLUGIN_API int ZerbinGetProjectFiles(ZerbinObject** object) {
    if (object == nullptr) {
        return ZERBIN_E_INVALID_ARGUMENT;
    }
    *object = nullptr;
    return Guarded(ZERBIN_E_UNEXPECTED, [&] {
        auto handle =
            std::make_unique<ZerbinObject>(ZerbinObject{std::make_shared<ProjectFiles>()});
        ++liveObjects;
        *object = handle.release();
        return ZERBIN_OK;
    });
}

ZERBIN_PLUGIN_API int ZerbinCanUnloadNow(void) {
    return liveObjects.load() == 0 && zerbin::HeldObjects() == 0 ? ZERBIN_OK : ZERBIN_FALSE;
}

ZERBIN_PLUGIN_API void ZerbinReleaseObject(ZerbinObject* object) {
    if (object != nullptr) {
        delete object;
        --liveObjects;
    }
}

ZERBIN_PLUGIN_API int ZerbinSetBlockLibrary(const char* library) {
    return Guarded(ZERBIN_E_UNEXPECTED, [&] {
        // Type T is the folder beside the component's folder: the library holds both.
        const std::string baseName = AdoptedBaseName();
        const fs::path folder = library == nullptr || library[0] == '\0'
                                    ? LibraryPath().parent_path()
                                    : fs::path(library) / baseName;
        if (folder != zerbin::ComponentFolder()) {
            // The types read from the old library must not pass for the new one's; blocks
            // alive keep the types they were made of.
            zerbin::DefinitionCache::Shared().Clear();
        }
        zerbin::SetComponentFolder(folder);
        return ZERBIN_OK;
    });
}
