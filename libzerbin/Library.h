// What the blocks of the C interface are made from: the block library, the dictionary and the
// owner device document the host opened, or those installed with the library.
#pragma once

#include <filesystem>
#include <memory>

#include <pugixml.hpp>

#include "app_object/HostOrder.h"

namespace zerbin::capi {

// The data folder installed with this library (PREFIX/share/zerbin beside PREFIX/lib).
std::filesystem::path InstalledData();

// Opens what later blocks are made from; an empty path takes the installed one, ownerDevice
// "none" gives none. Throws Failure (ZERBIN_E_FILE) and changes nothing when one is unreadable.
void OpenLibrary(const std::filesystem::path& library, const std::filesystem::path& dictionary,
                 const std::filesystem::path& ownerDevice, bool noOwnerDevice);

// The setup of a new block of the current library (the installed one when none is open yet).
HostSetup CurrentSetup();

// Throws Failure (ZERBIN_E_NOT_FOUND) when the current library has no block type of that name.
void RequireType(const std::string& type);

}  // namespace zerbin::capi
