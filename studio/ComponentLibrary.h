// Zerbin.so as the studio reaches it: loaded once with dlopen from the first place that has
// it, and its entry points looked up by name. The studio links none of the component.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "zerbin/plugin.h"

namespace zerbin::studio {

struct ComponentEntryPoints {
    ZerbinGetClassObjectFn getClassObject = nullptr;
    ZerbinReleaseObjectFn releaseObject = nullptr;
    ZerbinGetProjectFilesFn getProjectFiles = nullptr;
    ZerbinSetBlockLibraryFn setBlockLibrary = nullptr;
    ZerbinSetMessageHandlerFn setMessageHandler = nullptr;
    ZerbinShowMessageBoxFn showMessageBox = nullptr;
    ZerbinSetEventPumpFn setEventPump = nullptr;
    ZerbinSetUnitSystemFn setUnitSystem = nullptr;
};

class ComponentLibrary {
public:
    // Where the plug-in is looked for, in order: the installed layout relative to the program,
    // beside the program, the build tree it was built in, the file of its registration.
    static std::vector<std::filesystem::path> Candidates();

    // Loads the first candidate that loads and has every entry point. False, with what was
    // tried and why each failed in *why, when none does. Once loaded it stays for the process.
    static bool Load(std::string* why);
    static bool Loaded();
    // The file loaded; empty before.
    static const std::filesystem::path& File();
    // Valid once Load has succeeded.
    static const ComponentEntryPoints& Entry();
};

}  // namespace zerbin::studio
