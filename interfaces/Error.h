// The error that component operations raise to their callers. Number follows the host's
// convention of numbered errors (6 is an arithmetic overflow, 91 a missing object).
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

namespace zerbin {

// Every error number the component raises.
constexpr int32_t kErrNotFound = 5;  // "Invalid procedure call or argument"
constexpr int32_t kErrOverflow = 6;
constexpr int32_t kErrTypeMismatch = 13;
constexpr int32_t kErrObjectNotSet = 91;
constexpr int32_t kErrInvalidNull = 94;
constexpr int32_t kErrCannotCreateObject = 429;
constexpr int32_t kErrKeyExists = 457;
// A definition that did not load.
constexpr int32_t kErrDefinitionNotLoaded = static_cast<int32_t>(0x80040201u);

class Error : public std::runtime_error {
public:
    explicit Error(const std::string& description, int32_t number = kErrNotFound,
                   std::string source = {})
        : std::runtime_error(description), number_(number), source_(std::move(source)) {}

    int32_t Number() const { return number_; }
    const std::string& Source() const { return source_; }

private:
    int32_t number_;
    std::string source_;
};

// An arithmetic result outside its width.
class OverflowError : public Error {
public:
    OverflowError() : Error("Overflow", kErrOverflow) {}
};

// A file that could not be read whole: missing, not a regular file, too large, not permitted,
// or a read that failed. Apart from Error on purpose: skip mode drops a failing step, but a
// file the user named that cannot be read is always heard of.
class IoError : public std::runtime_error {
public:
    // reason in words, as the C library gives it in lower case ("permission denied");
    // code is the errno value, 0 when none fits.
    IoError(std::string file, std::string reason, int code)
        : std::runtime_error(file + ": " + reason),
          file_(std::move(file)),
          reason_(std::move(reason)),
          code_(code) {}

    const std::string& File() const { return file_; }
    const std::string& Reason() const { return reason_; }
    int Code() const { return code_; }

private:
    std::string file_;
    std::string reason_;
    int code_;
};

}  // namespace zerbin
