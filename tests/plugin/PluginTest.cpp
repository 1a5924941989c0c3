// Zerbin.so as a host meets it: loaded with dlopen, driven through its C entry points only.
#include "zerbin/plugin.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "interfaces/IAppObject.h"

namespace {

namespace fs = std::filesystem;

// The plug-in, loaded once for the suite and never unloaded: its count of living objects is
// what the tests look at, and it must stay loaded while the sanitizers report.
class Plugin {
public:
    Plugin() : handle_(dlopen(ZERBIN_PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL)) {
        if (handle_ == nullptr) {
            throw std::runtime_error(dlerror());
        }
    }
    template <typename Fn>
    Fn Get(const char* name) const {
        return reinterpret_cast<Fn>(dlsym(handle_, name));
    }
    void* Handle() const { return handle_; }

private:
    void* handle_;
};

const Plugin& Loaded() {
    static const Plugin plugin;
    return plugin;
}

// An environment variable, put back as it was when the test ends.
struct SavedVariable {
    explicit SavedVariable(const char* variable) : name(variable) {
        if (const char* set = std::getenv(name)) {
            value = set;
        }
    }
    ~SavedVariable() { value ? setenv(name, value->c_str(), 1) : unsetenv(name); }
    const char* name;
    std::optional<std::string> value;
};

class PluginTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "zerbin-plugin-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        dir_ = pattern;
        setenv("XDG_DATA_HOME", dir_.c_str(), 1);
    }
    void TearDown() override { fs::remove_all(dir_); }

    std::shared_ptr<zerbin::IObject> Make(const char* progId, int* result = nullptr) {
        ZerbinObject* handle = reinterpret_cast<ZerbinObject*>(1);
        const int code = getClassObject(progId, &handle);
        if (result != nullptr) {
            *result = code;
        }
        return zerbin::TakeObject(handle, release);
    }

    SavedVariable home_{"HOME"};
    SavedVariable dataHome_{"XDG_DATA_HOME"};
    fs::path dir_;
    const Plugin& plugin_ = Loaded();
    ZerbinRegisterServerFn registerServer =
        plugin_.Get<ZerbinRegisterServerFn>("ZerbinRegisterServer");
    ZerbinUnregisterServerFn unregisterServer =
        plugin_.Get<ZerbinUnregisterServerFn>("ZerbinUnregisterServer");
    ZerbinGetClassObjectFn getClassObject =
        plugin_.Get<ZerbinGetClassObjectFn>("ZerbinGetClassObject");
    ZerbinCanUnloadNowFn canUnloadNow = plugin_.Get<ZerbinCanUnloadNowFn>("ZerbinCanUnloadNow");
    ZerbinReleaseObjectFn release = plugin_.Get<ZerbinReleaseObjectFn>("ZerbinReleaseObject");

    // A block of a shipped type, made in the host's order. Its members hold it until
    // IAppObject_Destroy.
    std::shared_ptr<zerbin::IAppObject> Shipped(const char* type) {
        static const auto dictionary = [] {
            auto document = std::make_shared<pugi::xml_document>();
            document->load_file(ZERBIN_DATA_DIR "/snvts.xml");
            return document;
        }();
        plugin_.Get<ZerbinSetBlockLibraryFn>("ZerbinSetBlockLibrary")(ZERBIN_DATA_DIR "/library");
        auto block = std::dynamic_pointer_cast<zerbin::IAppObject>(Make(ZERBIN_PROGID));
        block->IAppObject_XmlSNVTDoc(dictionary);
        int32_t error = 0;
        block->IAppObject_Init(type, error);
        block->IAppObject_Create();
        return block;
    }
};

TEST_F(PluginTest, ShowsTheEntryPointsAndHidesTheCore) {
    for (const char* name :
         {"ZerbinRegisterServer", "ZerbinUnregisterServer", "ZerbinGetClassObject",
          "ZerbinCanUnloadNow", "ZerbinReleaseObject", "ZerbinGetProjectFiles",
          "ZerbinSetBlockLibrary", "ZerbinSetMessageHandler", "ZerbinShowMessageBox",
          "ZerbinSetEventPump", "ZerbinSetUnitSystem"}) {
        EXPECT_NE(dlsym(plugin_.Handle(), name), nullptr) << name;
    }
    // CDBAppObject's constructor and a core helper come from the engine, libzerbin.so.1, not
    // from the plug-in.
    for (const char* name :
         {"_ZN6zerbin12CDBAppObjectC1Ev", "_ZN6zerbin17ComponentBaseNameB5cxx11Ev"}) {
        Dl_info info{};
        void* symbol = dlsym(plugin_.Handle(), name);
        ASSERT_NE(symbol, nullptr) << name;
        ASSERT_NE(dladdr(symbol, &info), 0);
        EXPECT_EQ(fs::path(info.dli_fname).filename(), "libzerbin.so.1") << name;
    }
}

TEST_F(PluginTest, RegistrationFileLivesInTheUsersDataFolder) {
    const struct {
        std::optional<std::string> dataHome;  // nullopt: unset
        bool underHome;
    } rows[] = {
        {dir_.string() + "/data", false},
        {std::nullopt, true},
        {"", true},
        {"relative/data", true},  // not absolute, so ignored
    };
    setenv("HOME", (dir_ / "home").c_str(), 1);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.dataHome.value_or("(unset)"));
        if (row.dataHome) {
            setenv("XDG_DATA_HOME", row.dataHome->c_str(), 1);
        } else {
            unsetenv("XDG_DATA_HOME");
        }
        const fs::path base =
            row.underHome ? dir_ / "home" / ".local" / "share" : fs::path(*row.dataHome);
        const fs::path file = base / "zerbin" / "plugins" / "Zerbin.CDBAppObject.plugin";

        ASSERT_EQ(registerServer(), ZERBIN_OK);
        std::ifstream in(file);
        const std::string text(std::istreambuf_iterator<char>(in), {});
        EXPECT_NE(text.find("ProgID=Zerbin.CDBAppObject\n"), std::string::npos) << text;
        EXPECT_NE(text.find("Path=" + fs::canonical(ZERBIN_PLUGIN_FILE).string() + "\n"),
                  std::string::npos)
            << text;
        EXPECT_NE(text.find("Version=" ZERBIN_VERSION_TEXT "\n"), std::string::npos) << text;
        const auto blocks = text.find("BlockLibrary=");
        ASSERT_NE(blocks, std::string::npos) << text;
        const fs::path library = text.substr(blocks + 13, text.find('\n', blocks) - blocks - 13);
        EXPECT_TRUE(fs::exists(library / "THERMOSTAT" / "THERMOSTAT.xml")) << library;

        EXPECT_EQ(unregisterServer(), ZERBIN_OK);
        EXPECT_FALSE(fs::exists(file));
        // The folders it made go too; the data folder they were in stays.
        EXPECT_FALSE(fs::exists(base / "zerbin"));
        EXPECT_TRUE(fs::exists(base));
        EXPECT_EQ(unregisterServer(), ZERBIN_OK);  // nothing there is nothing to remove
    }
}

TEST_F(PluginTest, RegistrationThatCannotBeWrittenIsAnError) {
    std::ofstream(dir_ / "file") << "in the way";
    setenv("XDG_DATA_HOME", (dir_ / "file").c_str(), 1);
    EXPECT_EQ(registerServer(), ZERBIN_E_REGISTRATION);
}

TEST_F(PluginTest, ClassObjectOnlyForTheProgId) {
    const struct {
        const char* progId;
        int result;
    } rows[] = {
        {"Zerbin.CDBAppObject", ZERBIN_OK},
        {"zerbin.cdbappobject", ZERBIN_OK},
        {"Zerbin.CDBAppObject2", ZERBIN_E_CLASS_NOT_AVAILABLE},
        {"Other.CDBAppObject", ZERBIN_E_CLASS_NOT_AVAILABLE},
        {"", ZERBIN_E_CLASS_NOT_AVAILABLE},
        {nullptr, ZERBIN_E_INVALID_ARGUMENT},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.progId != nullptr ? row.progId : "(null)");
        int result = 0;
        const auto object = Make(row.progId, &result);
        EXPECT_EQ(result, row.result);
        const auto block = std::dynamic_pointer_cast<zerbin::IAppObject>(object);
        EXPECT_EQ(block != nullptr, row.result == ZERBIN_OK);
        if (block) {
            EXPECT_EQ(block->IAppObject_ProgrammaticId(), ZERBIN_PROGID);
        }
    }
    EXPECT_EQ(getClassObject(ZERBIN_PROGID, nullptr), ZERBIN_E_INVALID_ARGUMENT);
}

TEST_F(PluginTest, BlocksComeFromTheLibraryTheHostSets) {
    const auto setBlockLibrary = plugin_.Get<ZerbinSetBlockLibraryFn>("ZerbinSetBlockLibrary");
    const auto NameOfThermostat = [&] {
        auto block = std::dynamic_pointer_cast<zerbin::IAppObject>(Make(ZERBIN_PROGID));
        int32_t error = 0;
        block->IAppObject_Init("THERMOSTAT", error);
        return block->IAppObject_Name();
    };
    // A switch takes effect for types already read, either way.
    ASSERT_EQ(setBlockLibrary(ZERBIN_DATA_DIR "/library"), ZERBIN_OK);
    EXPECT_EQ(NameOfThermostat(), "Thermostat");
    ASSERT_EQ(setBlockLibrary(dir_.c_str()), ZERBIN_OK);
    EXPECT_EQ(NameOfThermostat(), "");
    ASSERT_EQ(setBlockLibrary(ZERBIN_DATA_DIR "/library"), ZERBIN_OK);
    EXPECT_EQ(NameOfThermostat(), "Thermostat");
    EXPECT_EQ(setBlockLibrary(nullptr), ZERBIN_OK);
}

TEST_F(PluginTest, CanUnloadOnlyWhenNoObjectLives) {
    ASSERT_EQ(canUnloadNow(), ZERBIN_OK);
    ZerbinObject* handle = nullptr;
    ASSERT_EQ(getClassObject(ZERBIN_PROGID, &handle), ZERBIN_OK);
    EXPECT_EQ(canUnloadNow(), ZERBIN_FALSE);

    auto block = std::dynamic_pointer_cast<zerbin::IAppObject>(zerbin::TakeObject(handle, release));
    EXPECT_EQ(canUnloadNow(), ZERBIN_FALSE);  // the handle is back, the block still lives
    std::weak_ptr<zerbin::IAppObject> watch = block;
    block.reset();
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(canUnloadNow(), ZERBIN_OK);

    // An icon outlives its block, and its release is code of the library.
    ASSERT_EQ(getClassObject(ZERBIN_PROGID, &handle), ZERBIN_OK);
    block = std::dynamic_pointer_cast<zerbin::IAppObject>(zerbin::TakeObject(handle, release));
    std::shared_ptr<const zerbin::Picture> icon = block->IAppObject_Icon();
    ASSERT_NE(icon, nullptr);
    block.reset();
    EXPECT_EQ(canUnloadNow(), ZERBIN_FALSE);
    icon.reset();
    EXPECT_EQ(canUnloadNow(), ZERBIN_OK);

    // A handle not given back keeps the library.
    ASSERT_EQ(getClassObject(ZERBIN_PROGID, &handle), ZERBIN_OK);
    auto kept = handle->object;
    kept.reset();
    EXPECT_EQ(canUnloadNow(), ZERBIN_FALSE);
    release(handle);
    EXPECT_EQ(canUnloadNow(), ZERBIN_OK);
}

struct Shown {
    std::string text;
    std::string caption;
    int style = 0;
};

int Record(void* context, const char* text, const char* caption, int style) {
    static_cast<std::vector<Shown>*>(context)->push_back(Shown{text, caption, style});
    return ZERBIN_ID_NO;
}

TEST_F(PluginTest, MessageBoxesGoToTheHostsHandlerUntilItLetsGo) {
    const auto setHandler = plugin_.Get<ZerbinSetMessageHandlerFn>("ZerbinSetMessageHandler");
    std::vector<Shown> shown;
    ASSERT_EQ(setHandler(&Record, &shown), ZERBIN_OK);
    // A block whose type the library lacks says so.
    auto block = std::dynamic_pointer_cast<zerbin::IAppObject>(Make(ZERBIN_PROGID));
    int32_t error = 0;
    block->IAppObject_Init("NO_SUCH_TYPE", error);
    ASSERT_FALSE(shown.empty());
    EXPECT_NE(shown.front().text.find("NO_SUCH_TYPE"), std::string::npos) << shown.front().text;
    EXPECT_FALSE(shown.front().caption.empty());
    EXPECT_EQ(shown.front().style & ~(ZERBIN_MB_BUTTONS | ZERBIN_MB_ICONS), 0);
    // The host asks for the component's own box: it is shown as such, never sent back to the
    // host's handler, and answered as a headless component answers.
    const auto showBox = plugin_.Get<ZerbinShowMessageBoxFn>("ZerbinShowMessageBox");
    const std::size_t handled = shown.size();
    EXPECT_EQ(showBox("Save?", "Host", ZERBIN_MB_YESNO | ZERBIN_MB_ICONQUESTION), ZERBIN_ID_YES);
    EXPECT_EQ(showBox("Done", "Host", ZERBIN_MB_OK), ZERBIN_ID_OK);
    EXPECT_EQ(showBox(nullptr, "Host", ZERBIN_MB_OK), ZERBIN_E_INVALID_ARGUMENT);
    EXPECT_EQ(shown.size(), handled);

    ASSERT_EQ(setHandler(nullptr, nullptr), ZERBIN_OK);
    const std::size_t before = shown.size();
    block->IAppObject_Init("NO_SUCH_TYPE", error);
    EXPECT_EQ(shown.size(), before);
}

TEST_F(PluginTest, LongLoopsServeTheHostsEventPumpUnlessItIsCleared) {
    const auto setPump = plugin_.Get<ZerbinSetEventPumpFn>("ZerbinSetEventPump");
    int served = 0;
    ASSERT_EQ(setPump([](void* count) { ++*static_cast<int*>(count); }, &served), ZERBIN_OK);
    Shipped("ROOM_CONTROLLER")->IAppObject_Destroy();
    EXPECT_GT(served, 0);
    ASSERT_EQ(setPump(nullptr, nullptr), ZERBIN_OK);
    const int before = served;
    Shipped("ROOM_CONTROLLER")->IAppObject_Destroy();
    EXPECT_EQ(served, before);
}

TEST_F(PluginTest, UnitSystemChangesWhatEveryBlockShows) {
    const auto setUnits = plugin_.Get<ZerbinSetUnitSystemFn>("ZerbinSetUnitSystem");
    const auto block = Shipped("THERMOSTAT");
    const auto setpoint = block->IAppObject_Attributes()->IAttributes_Item("HeatSetpoint");
    ASSERT_EQ(setUnits(ZERBIN_UNITS_US), ZERBIN_OK);
    const std::string us = setpoint->IAttribute_DispValue();
    ASSERT_EQ(setUnits(ZERBIN_UNITS_SI), ZERBIN_OK);
    EXPECT_NE(us.find("F"), std::string::npos) << us;
    EXPECT_NE(setpoint->IAttribute_DispValue().find("C"), std::string::npos);
    EXPECT_EQ(setUnits(2), ZERBIN_E_INVALID_ARGUMENT);
    block->IAppObject_Destroy();
}

}  // namespace
