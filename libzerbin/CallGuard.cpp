#include "libzerbin/CallGuard.h"

#include <cstring>

#include "platform/HostThread.h"

namespace zerbin::capi {
namespace {

// Thread-local, so that a refused call from a second thread cannot overwrite what the host's
// thread is about to read.
thread_local std::string lastError;

}  // namespace

void SetLastError(std::string_view reason) noexcept {
    try {
        lastError.assign(reason);
    } catch (...) {
        // Out of memory for the reason itself: an empty reason is still true.
        lastError.clear();
    }
}

bool ThreadAllowed(bool claim) noexcept {
    return claim ? ClaimHostThread() : OnHostThread();
}

void Require(const void* pointer, const char* what) {
    if (pointer == nullptr) {
        throw Failure(ZERBIN_E_INVALID_ARGUMENT, std::string(what) + " is NULL");
    }
}

int CopyOut(const std::string& text, char* buffer, std::size_t size, std::size_t* length) {
    if (buffer == nullptr && size != 0) {
        throw Failure(ZERBIN_E_INVALID_ARGUMENT, "buffer is NULL");
    }
    if (length != nullptr) {
        *length = text.size();
    }
    if (size > 0) {
        const std::size_t copied = text.size() < size ? text.size() : size - 1;
        std::memcpy(buffer, text.data(), copied);
        buffer[copied] = '\0';
    }
    return ZERBIN_OK;
}

const char* LastError() noexcept {
    return lastError.c_str();
}

}  // namespace zerbin::capi

ZERBIN_API const char* ZerbinLastError(void) {
    return zerbin::capi::LastError();
}

ZERBIN_API int ZerbinVersion(void) {
    return ZERBIN_HEADER_VERSION;
}
