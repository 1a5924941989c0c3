// The one way a Qt slot or event calls into the blocks and the plug-in. Qt cannot carry an
// exception through its event loop (it ends the program), so whatever the call throws stops
// here and becomes a message in the studio's log; the caller learns that the call failed.
#pragma once

#include <exception>
#include <new>
#include <string>

#include "studio/StudioMessages.h"

namespace zerbin::studio {

// Shows "Could not WHAT: REASON." as a critical message of the studio.
void ReportFailedCall(const std::string& what, const std::string& reason) noexcept;

// Runs body(); false, after the message, when it threw.
template <typename Body>
bool GuardedCall(const std::string& what, Body&& body) noexcept {
    try {
        body();
        return true;
    } catch (const std::bad_alloc&) {
        ReportFailedCall(what, "out of memory");
    } catch (const std::exception& error) {
        ReportFailedCall(what, error.what());
    } catch (...) {
        ReportFailedCall(what, "an unknown error");
    }
    return false;
}

}  // namespace zerbin::studio
