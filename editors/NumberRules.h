// The rules of the numeric editor that are not about widgets: the key filter of the value box,
// the completeness test that enables OK, the range check with its repair, and the short form
// of the limit labels.
#pragma once

#include <cstddef>
#include <string>

#include "interfaces/IHostServices.h"

namespace zerbin {

// Character codes of the three control keys that the value boxes filter.
inline constexpr char32_t kKeyBackspace = 8;
inline constexpr char32_t kKeyEnter = 13;
inline constexpr char32_t kKeyEscape = 27;

// The box as one character key finds it. Positions count characters.
struct NumericKeyInput {
    std::u32string text;
    std::size_t selectionLength = 0;
    std::size_t caret = 0;  // characters before the caret, or before the selection
    char32_t key = 0;
    char32_t separator = U'.';
    int decimals = 0;
};

enum class NumericKeyAction {
    Drop,     // the text stays as it is (after the emptying, if any)
    Pass,     // character goes into the box as a typed key would
    Restore,  // the box gets the value text of the load
    Confirm,  // the OK action runs when OK is enabled
};

struct NumericKeyDecision {
    // The whole text was selected: the box is emptied before anything else, whatever the key.
    bool emptyFirst = false;
    NumericKeyAction action = NumericKeyAction::Drop;
    char32_t character = 0;  // for Pass: the key, "e" raised to "E"
};

// Judges one key at a time, by the end of the whole text rather than the caret.
NumericKeyDecision FilterNumericKey(const NumericKeyInput& input);

// A paste either goes in whole, as its characters would if typed one by one, or not at all:
// a paste the filter would thin out would become another number. Blanks and line ends around
// the pasted text (what a copied cell brings along) are left out first.
struct NumericPasteResult {
    bool accepted = false;
    std::u32string text;    // the box afterwards, when accepted
    std::size_t caret = 0;  // characters before the caret afterwards, when accepted
    char32_t refused = 0;   // the first character the filter would not take, when refused
};

// box is the box as the paste finds it; its key is not used.
NumericPasteResult FilterNumericPaste(const NumericKeyInput& box, std::u32string pasted);

// The message of a refused paste.
std::string RefusedPasteMessage(const std::u32string& pasted, char32_t refused);

// Whether OK may be enabled: only the end of the trimmed text is judged.
bool IsCompleteNumber(const std::string& text);

// A limit text of 10 characters or more with an "E" keeps two decimals and its exponent.
std::string AbbreviateNumber(const std::string& text, const std::string& separator);

// The outcome of a range check; when out of range, the message to show and the text the box
// is repaired to.
struct RangeVerdict {
    bool inRange = true;
    std::string message;
    std::string repair;
};

// An empty limit is not tested; the limit itself passes.
RangeVerdict CheckRange(const std::string& text, const std::string& minText,
                        const std::string& maxText, IUnitConverter& converter);

}  // namespace zerbin
