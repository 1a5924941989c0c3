// Where the shipped block library, SNVT dictionary and owner device document are found.
#pragma once

#include <filesystem>

namespace zerbin::cli {

// The installed copy beside the program (PREFIX/share/zerbin for PREFIX/bin/zerbin) when
// there is one, else the data folder of the source tree the program was built from. Looked
// up from the program's own path, so the working folder plays no part.
std::filesystem::path ShippedDataFolder();

std::filesystem::path ShippedLibrary();
std::filesystem::path ShippedDictionary();
std::filesystem::path ShippedDevice();

}  // namespace zerbin::cli
