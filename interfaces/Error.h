// The error that component operations raise to their callers: a kind a caller can act on and a
// description in words the user can read.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

namespace zerbin {

enum class ErrorKind {
    InvalidArgument,      // an argument outside what the operation takes
    NotFound,             // a key or position that names nothing
    Overflow,             // an arithmetic result outside its width
    NotANumber,           // a text that is not wholly a number
    MissingObject,        // a step through an object or node that does not exist
    NoText,               // a node whose first child holds no text
    DuplicateKey,         // a key that a collection holds already
    XmlStructure,         // a node where the document cannot take it
    TooLong,              // a value longer than its place
    TypeNotCreated,       // a block type that cannot be made
    DefinitionNotLoaded,  // a definition file that did not parse
};

// The one number the host's side knows: a definition that did not load.
constexpr int32_t kErrDefinitionNotLoaded = static_cast<int32_t>(0x80040201u);

class Error : public std::runtime_error {
public:
    explicit Error(const std::string& description, ErrorKind kind = ErrorKind::InvalidArgument,
                   std::string source = {})
        : std::runtime_error(description), kind_(kind), source_(std::move(source)) {}

    ErrorKind Kind() const { return kind_; }
    // kErrDefinitionNotLoaded for a definition that did not load, else 0.
    int32_t Number() const {
        return kind_ == ErrorKind::DefinitionNotLoaded ? kErrDefinitionNotLoaded : 0;
    }
    const std::string& Source() const { return source_; }

private:
    ErrorKind kind_;
    std::string source_;
};

// An arithmetic result outside its width.
class OverflowError : public Error {
public:
    OverflowError() : Error("arithmetic overflow", ErrorKind::Overflow) {}
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
