// The rules of the text editor that are not about widgets: the key filter, the length limit of
// the type and the 8-bit code page of stored texts.
#pragma once

#include <cstdint>
#include <string>

#include "parameters/ValueRules.h"

namespace zerbin {

enum class TextKeyAction {
    Pass,           // character goes into the box as a typed key would
    Restore,        // the box gets the point's current value
    Confirm,        // the OK action runs
    BackspaceLast,  // the caret goes to the end first, so the last character goes
};

struct TextKeyDecision {
    TextKeyAction action = TextKeyAction::Pass;
    char32_t character = 0;  // for Pass: the key, a blank turned into "_"
};

// A value never takes a blank from the keyboard.
TextKeyDecision FilterTextKey(char32_t key);

// The outcome of the length rule for one text; when too long, the message and the cut text.
struct TextLengthVerdict {
    bool tooLong = false;
    std::string message;
    std::string cut;
};

// Counts characters. A negative limit counts as 0, so that the cut text passes.
TextLengthVerdict CheckTextLength(const std::string& text, int32_t limit);

// What the user is told of a character that does not fit.
std::string UnfitCharacterMessage(char32_t c);

}  // namespace zerbin
