// The registration file through which hosts find the plug-in: one small text file for each
// ProgID in the user's data folder, naming the library, its version and its block library.
#pragma once

#include <filesystem>
#include <string>

namespace zerbin::plugin {

struct Registration {
    std::string progId;
    std::filesystem::path path;  // the plug-in library
    std::string version;
    std::filesystem::path blockLibrary;  // empty when none is known
};

// $XDG_DATA_HOME/zerbin/plugins, with ~/.local/share when XDG_DATA_HOME is unset, empty or
// relative. Throws std::runtime_error when no home folder can be found.
std::filesystem::path RegistrationFolder();

// The file of a ProgID: RegistrationFolder() / "<progId>.plugin".
std::filesystem::path RegistrationFile(const std::string& progId);

// Writes the file (through a temporary file and a rename, so that a reader never sees half
// of it), making the folders on the way. Throws std::filesystem::filesystem_error.
void WriteRegistration(const Registration& registration);

// Removes the file; true when none is left.
bool RemoveRegistration(const std::string& progId);

}  // namespace zerbin::plugin
