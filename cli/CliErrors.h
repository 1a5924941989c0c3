// The two ways a zerbin command ends early, by their exit status.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace zerbin::cli {

inline constexpr int kExitOk = 0;
// An unexpected failure, and for check: at least one message was shown.
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitUnreadable = 3;

// What every error line of the command starts with.
inline constexpr std::string_view kErrorPrefix = "zerbin: error: ";

// A mistake in what the user typed; the text is the one-line hint, without "zerbin: error: ".
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A file the command needs cannot be read; the text names the file and the reason.
class UnreadableError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A message of the library or the system as it stands after "zerbin: error: ...: ".
inline std::string LowerFirst(std::string text) {
    if (!text.empty() && text[0] >= 'A' && text[0] <= 'Z') {
        text[0] = static_cast<char>(text[0] - 'A' + 'a');
    }
    return text;
}

}  // namespace zerbin::cli
