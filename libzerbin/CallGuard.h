// What every function of the C interface does around its work: the thread rule, the reason
// of a failure kept for ZerbinLastError, and no exception crossing into a C caller.
#pragma once

#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

#include "zerbin/zerbin.h"

namespace zerbin::capi {

// A failure with its result code and its reason, thrown inside a guarded body.
class Failure : public std::runtime_error {
public:
    Failure(int code, const std::string& reason) : std::runtime_error(reason), code_(code) {}
    int Code() const { return code_; }

private:
    int code_;
};

// The calling thread's last failure; cleared by every guarded call.
void SetLastError(std::string_view reason) noexcept;
const char* LastError() noexcept;

// Whether the calling thread may call in; when it is the first to make an object (claim),
// it becomes the host's thread.
bool ThreadAllowed(bool claim) noexcept;

// Runs body, a function returning a result code, under the rules above.
template <typename Body>
int Guarded(bool claim, Body&& body) noexcept {
    if (!ThreadAllowed(claim)) {
        SetLastError("called from another thread than the one that made the first object");
        return ZERBIN_E_WRONG_THREAD;
    }
    SetLastError({});
    try {
        return body();
    } catch (const Failure& failure) {
        SetLastError(failure.what());
        return failure.Code();
    } catch (const std::bad_alloc&) {
        SetLastError("out of memory");
        return ZERBIN_E_OUT_OF_MEMORY;
    } catch (const std::exception& error) {
        SetLastError(error.what());
        return ZERBIN_E_UNEXPECTED;
    } catch (...) {
        SetLastError("unknown failure");
        return ZERBIN_E_UNEXPECTED;
    }
}

// Throws ZERBIN_E_INVALID_ARGUMENT naming what is missing when pointer is null.
void Require(const void* pointer, const char* what);

// Hands text out as snprintf does (see zerbin/zerbin.h).
int CopyOut(const std::string& text, char* buffer, std::size_t size, std::size_t* length);

}  // namespace zerbin::capi
