// The shell port: opens a document (a datasheet) in the viewer the desktop associates with
// it, answering with the host shell's result numbers so callers can tell the failures apart.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace zerbin {

// Result numbers of OpenDocument.
inline constexpr int32_t kShellOpened = 33;         // handed to the viewer (any value above 32)
inline constexpr int32_t kShellFileNotFound = 2;    // the document does not exist
inline constexpr int32_t kShellNoAssociation = 31;  // no viewer: no xdg-open, or no tool for it
inline constexpr int32_t kShellFailed = 5;          // anything else

struct ShellRequest {
    int64_t ownerWindow = 0;
    std::string verb;
    std::string file;
    std::string parameters;
    std::string folder;
    int32_t showState = 0;
};

// Opens file (relative to folder when it is relative and folder is given) with
// "xdg-open FILE", spawned without a shell. Waits a moment for xdg-open's verdict and maps its
// exit status onto the result numbers; an xdg-open still running then counts as opened. verb,
// parameters, owner and show state are kept for an installed opener; xdg-open has no use for
// them.
int32_t OpenDocument(int64_t ownerWindow, const std::string& verb, const std::string& file,
                     const std::string& parameters, const std::string& folder, int32_t showState);

// Replaces the default opener (tests, or a host with its own shell); an empty function
// restores it.
void SetShellOpener(std::function<int32_t(const ShellRequest&)> opener);

}  // namespace zerbin
