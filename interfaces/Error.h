// The error that component operations raise to their callers. Number follows the host's
// convention of numbered errors (6 is an arithmetic overflow, 91 a missing object).
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace zerbin {

class Error : public std::runtime_error {
public:
    explicit Error(const std::string& description, int32_t number = 5, std::string source = {})
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
    OverflowError() : Error("Overflow", 6) {}
};

constexpr int32_t kErrObjectNotSet = 91;
constexpr int32_t kErrOverflow = 6;
constexpr int32_t kErrKeyExists = 457;
constexpr int32_t kErrNotFound = 5;

}  // namespace zerbin
