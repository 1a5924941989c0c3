// zerbin-host: loads the Zerbin plug-in the way a configuration tool does and runs the blocks
// of a project through it.
//
//     zerbin-host [--registration FILE] [--set NAME=VALUE] [--save FILE] PROJECT
//     zerbin-host --register LIBRARY | --unregister LIBRARY
//     zerbin-host --show [--snapshot PNG] PROJECT     (where the package has the windows)
//
// It finds the plug-in through its registration file, creates each block of PROJECT in the
// order a host must keep, loads it from the project, optionally writes one attribute value and
// saves the project again, and prints a line "USERNAME<TAB>TYPE<TAB>IMAGE" for each block:
// the lines `zerbin load` prints.
#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "interfaces/IAppObject.h"
#include "interfaces/IAttribute.h"
#include "interfaces/IProjectFiles.h"
#include "interfaces/IcbkAppObject.h"
#include "zerbin/plugin.h"

#ifdef ZERBIN_HOST_WITH_WINDOWS
#include "WindowSession.h"
#endif

namespace {

namespace fs = std::filesystem;

struct Options {
    std::optional<fs::path> registerLibrary;
    std::optional<fs::path> unregisterLibrary;
    std::optional<fs::path> registration;
    std::optional<std::pair<std::string, std::string>> set;
    std::optional<fs::path> save;
    bool show = false;
    std::optional<fs::path> snapshot;
    fs::path project;
};

class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

Options ParseArguments(int argc, char** argv) {
    Options options;
    std::vector<std::string> positional;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const auto value = [&]() -> std::string {
            if (i + 1 >= argc) {
                throw Failure(argument + " needs a value");
            }
            return argv[++i];
        };
        if (argument == "--register") {
            options.registerLibrary = value();
        } else if (argument == "--unregister") {
            options.unregisterLibrary = value();
        } else if (argument == "--registration") {
            options.registration = value();
        } else if (argument == "--show") {
            options.show = true;
        } else if (argument == "--snapshot") {
            options.snapshot = value();
            options.show = true;
        } else if (argument == "--save") {
            options.save = value();
        } else if (argument == "--set") {
            const std::string assignment = value();
            const auto equals = assignment.find('=');
            if (equals == std::string::npos || equals == 0) {
                throw Failure("--set expects NAME=VALUE, found '" + assignment + "'");
            }
            options.set.emplace(assignment.substr(0, equals), assignment.substr(equals + 1));
        } else if (argument.starts_with("--")) {
            throw Failure("unknown option " + argument);
        } else {
            positional.push_back(argument);
        }
    }
    if (options.registerLibrary || options.unregisterLibrary) {
        if (!positional.empty()) {
            throw Failure("--register and --unregister take no project");
        }
        return options;
    }
    if (positional.size() != 1) {
        throw Failure(
            "usage: zerbin-host [--registration FILE] [--set NAME=VALUE] "
            "[--save FILE] PROJECT");
    }
    options.project = positional.front();
    return options;
}

// Where ZerbinRegisterServer wrote the registration of the ProgID.
fs::path DefaultRegistration() {
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    fs::path base;
    if (dataHome != nullptr && dataHome[0] == '/') {
        base = dataHome;
    } else {
        const char* home = std::getenv("HOME");
        if (home == nullptr) {
            throw Failure("neither XDG_DATA_HOME nor HOME is set");
        }
        base = fs::path(home) / ".local" / "share";
    }
    return base / "zerbin" / "plugins" / (std::string(ZERBIN_PROGID) + ".plugin");
}

// The KEY=VALUE lines of the registration file.
std::map<std::string, std::string> ReadRegistration(const fs::path& file) {
    std::ifstream in(file);
    if (!in) {
        throw Failure("cannot read the registration '" + file.string() +
                      "': is the plug-in registered?");
    }
    std::map<std::string, std::string> entries;
    for (std::string line; std::getline(in, line);) {
        if (const auto equals = line.find('='); equals != std::string::npos) {
            entries[line.substr(0, equals)] = line.substr(equals + 1);
        }
    }
    if (!entries.contains("Path")) {
        throw Failure("the registration '" + file.string() + "' names no library");
    }
    return entries;
}

std::shared_ptr<const pugi::xml_document> ReadXml(const fs::path& file, const char* what) {
    auto document = std::make_shared<pugi::xml_document>();
    const pugi::xml_parse_result result = document->load_file(file.c_str());
    if (!result) {
        throw Failure(std::string("cannot read ") + what + " '" + file.string() +
                      "': " + result.description());
    }
    return document;
}

// The loaded plug-in: its entry points, and dlclose when it may go.
class PlugIn {
public:
    explicit PlugIn(const fs::path& library)
        : handle_(dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (handle_ == nullptr) {
            throw Failure(std::string("cannot load the plug-in: ") + dlerror());
        }
        getClassObject_ = Symbol<ZerbinGetClassObjectFn>("ZerbinGetClassObject");
        release_ = Symbol<ZerbinReleaseObjectFn>("ZerbinReleaseObject");
        canUnloadNow_ = Symbol<ZerbinCanUnloadNowFn>("ZerbinCanUnloadNow");
        setBlockLibrary_ = Symbol<ZerbinSetBlockLibraryFn>("ZerbinSetBlockLibrary");
        registerServer_ = Symbol<ZerbinRegisterServerFn>("ZerbinRegisterServer");
        unregisterServer_ = Symbol<ZerbinUnregisterServerFn>("ZerbinUnregisterServer");
        getProjectFiles_ = Symbol<ZerbinGetProjectFilesFn>("ZerbinGetProjectFiles");
    }
    ~PlugIn() {
        if (canUnloadNow_() == ZERBIN_OK) {
            dlclose(handle_);
        }
    }
    PlugIn(const PlugIn&) = delete;
    PlugIn& operator=(const PlugIn&) = delete;

    void SetBlockLibrary(const std::string& folder) const { setBlockLibrary_(folder.c_str()); }
    int Register() const { return registerServer_(); }
    int Unregister() const { return unregisterServer_(); }

    std::shared_ptr<zerbin::IAppObject> NewBlock() const {
        ZerbinObject* handle = nullptr;
        const int result = getClassObject_(ZERBIN_PROGID, &handle);
        auto block =
            std::dynamic_pointer_cast<zerbin::IAppObject>(zerbin::TakeObject(handle, release_));
        if (result != ZERBIN_OK || !block) {
            throw Failure("the plug-in made no " + std::string(ZERBIN_PROGID) + " (error " +
                          std::to_string(result) + ")");
        }
        return block;
    }

    // The component's project file service: strict reading, atomic writing.
    std::shared_ptr<zerbin::IProjectFiles> ProjectFiles() const {
        ZerbinObject* handle = nullptr;
        const int result = getProjectFiles_(&handle);
        auto files =
            std::dynamic_pointer_cast<zerbin::IProjectFiles>(zerbin::TakeObject(handle, release_));
        if (result != ZERBIN_OK || !files) {
            throw Failure("the plug-in gave no project file service (error " +
                          std::to_string(result) + ")");
        }
        return files;
    }

private:
    template <typename Fn>
    Fn Symbol(const char* name) {
        void* symbol = dlsym(handle_, name);
        if (symbol == nullptr) {
            throw Failure(std::string("the plug-in lacks ") + name);
        }
        return reinterpret_cast<Fn>(symbol);
    }

    void* handle_;
    ZerbinGetClassObjectFn getClassObject_ = nullptr;
    ZerbinReleaseObjectFn release_ = nullptr;
    ZerbinCanUnloadNowFn canUnloadNow_ = nullptr;
    ZerbinSetBlockLibraryFn setBlockLibrary_ = nullptr;
    ZerbinRegisterServerFn registerServer_ = nullptr;
    ZerbinUnregisterServerFn unregisterServer_ = nullptr;
    ZerbinGetProjectFilesFn getProjectFiles_ = nullptr;
};

// Tells on stderr which attributes the blocks report as changed once the project is loaded.
struct ChangeListener : zerbin::NullAppObjectListener {
    void IcbkAppObject_AttributeChanged(const std::string& GlobalKey) override {
        if (reporting) {
            std::cerr << "changed: " << GlobalKey << '\n';
        }
    }
    bool reporting = false;
};

// One block, from the class object to IAppObject_Destroy.
class Block {
public:
    Block(std::shared_ptr<zerbin::IAppObject> block, std::string type)
        : block_(std::move(block)), type_(std::move(type)) {}
    ~Block() {
        try {
            block_->IAppObject_Destroy();
        } catch (...) {
            // The block is taken apart either way.
        }
    }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    zerbin::IAppObject& operator*() const { return *block_; }
    zerbin::IAppObject* operator->() const { return block_.get(); }
    const std::string& Type() const { return type_; }
    const std::shared_ptr<zerbin::IAppObject>& Pointer() const { return block_; }

private:
    std::shared_ptr<zerbin::IAppObject> block_;
    std::string type_;
};

// What regsvr32 is to an in-process server: load the library and let it (un)register itself.
int Registration(const Options& options) {
    const bool add = options.registerLibrary.has_value();
    const PlugIn plugIn(fs::absolute(add ? *options.registerLibrary : *options.unregisterLibrary));
    const int result = add ? plugIn.Register() : plugIn.Unregister();
    if (result != ZERBIN_OK) {
        throw Failure(std::string(add ? "registration" : "unregistration") + " failed (error " +
                      std::to_string(result) + ")");
    }
    return EXIT_SUCCESS;
}

int Run(const Options& options, int& argc, char** argv) {
    if (options.registerLibrary || options.unregisterLibrary) {
        return Registration(options);
    }
#ifdef ZERBIN_HOST_WITH_WINDOWS
    std::optional<WindowSession> windows;
    if (options.show) {
        windows.emplace(argc, argv);
    }
#else
    (void)argc;
    (void)argv;
    if (options.show) {
        throw Failure("--show needs the windows, and this package was built without them");
    }
#endif
    const auto registration =
        ReadRegistration(options.registration.value_or(DefaultRegistration()));
    PlugIn plugIn(registration.at("Path"));
    if (const auto blocks = registration.find("BlockLibrary"); blocks != registration.end()) {
        plugIn.SetBlockLibrary(blocks->second);
    }

    const fs::path data = ZERBIN_DATA_DIR;
    const auto dictionary = ReadXml(data / "snvts.xml", "the dictionary");
    const auto device = ReadXml(data / "devices" / "Controller.xml", "the device");
    std::string why;
    const std::shared_ptr<const pugi::xml_document> project =
        plugIn.ProjectFiles()->IProjectFiles_Read(options.project.string(), why);
    if (!project) {
        throw Failure(why);
    }
    const auto listener = std::make_shared<ChangeListener>();

    std::vector<std::unique_ptr<Block>> blocks;
    int index = 0;
    for (pugi::xml_node element : project->document_element().children()) {
        if (element.type() != pugi::node_element) {
            continue;
        }
        const std::string key = "Block" + std::to_string(++index);
        auto& block =
            blocks.emplace_back(std::make_unique<Block>(plugIn.NewBlock(), element.name()));
        // The host's order: dictionary, type, what the members need while they load, Create,
        // then keys, name and listeners, and last the block's own state from the project.
        (*block)->IAppObject_XmlSNVTDoc(dictionary);
        int32_t errorCode = 0;
        (*block)->IAppObject_Init(block->Type(), errorCode);
        (*block)->IAppObject_OwnerDeviceXML(device);
        (*block)->IAppObject_ManageShortFloat(false);
        (*block)->IAppObject_Create();
        (*block)->IAppObject_GlobalKey(key);
        (*block)->IAppObject_ExtendedKey(key);
        (*block)->IAppObject_UserName(key);
        (*block)->IAppObject_CallBack(listener);
        (*block)->IAppObject_XmlLoad(element);
    }

    listener->reporting = true;
    if (options.set) {
        const auto& [name, value] = *options.set;
        bool written = false;
        for (const auto& block : blocks) {
            const auto attributes = (*block)->IAppObject_Attributes();
            if (const auto attribute = attributes ? attributes->IAttributes_Item(name) : nullptr) {
                attribute->IAttribute_Value(value);
                written = true;
                break;
            }
        }
        if (!written) {
            throw Failure("no block of the project has an attribute " + name);
        }
    }

    for (const auto& block : blocks) {
        std::cout << (*block)->IAppObject_UserName() << '\t' << block->Type() << '\t'
                  << (*block)->IAppObject_Stream() << '\n';
    }

#ifdef ZERBIN_HOST_WITH_WINDOWS
    if (windows) {
        if (blocks.empty()) {
            throw Failure("the project holds no block to show");
        }
        windows->Show(blocks.front()->Pointer(), options.snapshot);
    }
#endif

    if (options.save) {
        pugi::xml_document saved;
        pugi::xml_node root = saved.append_child(project->document_element().name());
        for (const auto& block : blocks) {
            (*block)->IAppObject_XmlSave(root, saved);
        }
        // Written whole or not at all; the file that was there stays as FILE~.
        if (!plugIn.ProjectFiles()->IProjectFiles_Write(options.save->string(), saved, why)) {
            throw Failure(why);
        }
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(ParseArguments(argc, argv), argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "zerbin-host: error: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
