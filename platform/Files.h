// The files port: the first file that matches a wildcard in a folder, the component's own
// folder and base name, the block library beside it, and the check that keeps a block type
// name from reaching outside that library.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zerbin {

// The first regular file, in the order the directory listing gives (no sorting), whose name
// matches the wildcard by fnmatch rules ("*", "?", "[...]"). nullopt when none matches or the
// folder cannot be read; never throws.
std::optional<std::string> FirstMatch(const std::filesystem::path& folder,
                                      const std::string& wildcard);
// FirstMatch(folder, w) for the first of wildcards w that finds a file, from one listing of
// the folder rather than one for each wildcard tried.
std::optional<std::string> FirstMatchInOrder(const std::filesystem::path& folder,
                                             const std::vector<std::string>& wildcards);

// The names of the regular files in a folder, in the order the directory listing gives; empty
// when the folder cannot be read. Throws only std::bad_alloc.
std::vector<std::string> RegularFiles(const std::filesystem::path& folder);
// The first of names that matches the wildcard by the same rules as above.
std::optional<std::string> FirstMatch(const std::vector<std::string>& names,
                                      const std::string& wildcard);

// The folder of the component's own file (the shared library, or the program it is linked
// into), or the folder the host set.
std::filesystem::path ComponentFolder();
// Host override; an empty path restores the default.
void SetComponentFolder(std::filesystem::path folder);

// The component file's name without folder, extension and "lib" prefix: "Zerbin" for
// libZerbin.so. "Zerbin" when it can't be told or the component is linked into a program.
std::string ComponentBaseName();
// Host override; an empty text restores the default.
void SetComponentBaseName(std::string baseName);

// The block library: the parent of ComponentFolder(), lexically normalised so that it works
// for a folder that does not exist. Block type T is the folder LibraryFolder() / T. Valid until
// the next call or the next change of the component folder.
const std::filesystem::path& LibraryFolder();

// Far above any real definition: a larger definition file is refused unread, as one that does
// not load.
inline constexpr std::uintmax_t kMaxDefinitionBytes = std::uintmax_t{64} << 20;

// The definition file of block type T in a library: library / T / "T.xml".
std::filesystem::path DefinitionFile(const std::filesystem::path& library, const std::string& type);
// The folder of block type T in a library: library / T.
std::filesystem::path TypeFolder(const std::filesystem::path& library, const std::string& type);

// True when name can stand for a block type folder in the library: not empty, not "." or
// "..", no "/" or "\", no control character, at most 255 bytes.
bool IsSafeTypeName(const std::string& name);

}  // namespace zerbin
