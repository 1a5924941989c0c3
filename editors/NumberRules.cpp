#include "editors/NumberRules.h"

#include <algorithm>

#include "base/MMain.h"
#include "base/Utf8.h"

namespace zerbin {
namespace {

char32_t Folded(char32_t c) {
    return c == U'e' ? U'E' : c;
}

// 1-based position of the first c in text, 0 when absent; "e" counts as "E" when asked for.
std::size_t Position(const std::u32string& text, char32_t c, bool fold = false) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((fold ? Folded(text[i]) : text[i]) == c) {
            return i + 1;
        }
    }
    return 0;
}

bool IsDigit(char32_t c) {
    return c >= U'0' && c <= U'9';
}

std::string Utf8Of(const std::u32string& text) {
    std::string out;
    for (const char32_t c : text) {
        AppendUtf8(out, c);
    }
    return out;
}

bool EndsInE(const std::u32string& text) {
    return !text.empty() && Folded(text.back()) == U'E';
}

}  // namespace

NumericKeyDecision FilterNumericKey(const NumericKeyInput& in) {
    NumericKeyDecision decision;
    // Taken before the emptying on purpose: a separator or exponent of the replaced text still
    // counts for this one key.
    const std::size_t p = Position(in.text, in.separator);
    const std::size_t x = Position(in.text, U'E', true);

    decision.emptyFirst = in.selectionLength == in.text.size();
    const std::u32string t = decision.emptyFirst ? std::u32string() : in.text;
    if (in.key == kKeyEscape) {
        decision.action = NumericKeyAction::Restore;
        return decision;
    }
    if (in.key == kKeyEnter) {
        decision.action = NumericKeyAction::Confirm;
        return decision;
    }
    const bool isSeparator = in.key == in.separator && in.decimals > 0;
    if (in.key != kKeyBackspace && !isSeparator &&
        std::u32string_view(U"-+0123456789eE").find(in.key) == std::u32string_view::npos) {
        return decision;
    }

    const std::size_t caret = decision.emptyFirst ? 0 : std::min(in.caret, t.size());
    std::u32string n = t.substr(0, caret);
    n += in.key;
    n += t.substr(caret);
    const std::size_t s = Position(n, in.separator);
    std::size_t l = Position(n, U'E', true);
    if (l == 0) {
        l = n.size();
    }

    bool pass = false;
    if (in.key == kKeyBackspace) {
        pass = true;
    } else if (Folded(in.key) == U'E') {
        pass = x == 0 && (t.empty() || IsDigit(t.back()));
    } else if (IsDigit(in.key)) {
        pass = p == 0 || x != 0 || static_cast<long>(l) - static_cast<long>(s) <= in.decimals;
    } else if (in.key == in.separator) {
        pass = p == 0 && in.decimals > 0;
    } else if (in.key == U'+') {
        pass = (x > 0 && EndsInE(t)) || t.empty();
    } else if (in.key == U'-') {
        pass = (x > 0 && EndsInE(t)) || (caret == 0 && t.find(U'-') == std::u32string::npos);
    }
    if (pass) {
        decision.action = NumericKeyAction::Pass;
        decision.character = Folded(in.key);
    }
    return decision;
}

NumericPasteResult FilterNumericPaste(const NumericKeyInput& box, std::u32string pasted) {
    const auto blank = [](char32_t c) {
        return c == U' ' || c == U'\t' || c == U'\r' || c == U'\n';
    };
    while (!pasted.empty() && blank(pasted.back())) {
        pasted.pop_back();
    }
    std::size_t first = 0;
    while (first < pasted.size() && blank(pasted[first])) {
        ++first;
    }
    pasted.erase(0, first);

    NumericKeyInput state = box;
    state.caret = std::min(state.caret, state.text.size());
    state.selectionLength = std::min(state.selectionLength, state.text.size() - state.caret);
    for (const char32_t key : pasted) {
        state.key = key;
        const NumericKeyDecision decision = FilterNumericKey(state);
        // Control characters never come from a paste as keys: Enter, Esc or Backspace in a
        // pasted text would act instead of being typed.
        if (key < 0x20 || decision.action != NumericKeyAction::Pass) {
            return {false, {}, 0, key};
        }
        if (decision.emptyFirst) {
            state.text.clear();
            state.caret = 0;
        } else {
            // A typed key replaces a partial selection, as the box does with it.
            state.text.erase(state.caret, state.selectionLength);
        }
        state.selectionLength = 0;
        state.text.insert(state.caret, 1, decision.character);
        ++state.caret;
    }
    return {true, state.text, state.caret, 0};
}

std::string RefusedPasteMessage(const std::u32string& pasted, char32_t refused) {
    return "Nothing was pasted: the \"" + Utf8Of(std::u32string(1, refused)) + "\" of \"" +
           Utf8Of(pasted) + "\" does not fit this value.";
}

bool IsCompleteNumber(const std::string& text) {
    const std::string trimmed = Trim(text);
    if (trimmed.empty()) {
        return false;
    }
    const char last = trimmed.back() == ',' ? '.' : trimmed.back();
    return last != '.' && last != 'E' && last != '+' && last != '-';
}

std::string AbbreviateNumber(const std::string& text, const std::string& separator) {
    const std::size_t e = text.find('E');
    if (CharCount(text) < 10 || e == std::string::npos) {
        return text;
    }
    std::string result;
    const std::size_t p = separator.empty() ? std::string::npos : text.find(separator);
    if (p != std::string::npos) {
        result = text.substr(0, p + 1 + 2);
    }
    return result + text.substr(e);
}

RangeVerdict CheckRange(const std::string& text, const std::string& minText,
                        const std::string& maxText, IUnitConverter& converter) {
    const double value = converter.ParseDisplayNumber(text);
    if (!minText.empty() && value < converter.ParseDisplayNumber(minText)) {
        return {false, "The value is less than " + minText, minText};
    }
    if (!maxText.empty() && value > converter.ParseDisplayNumber(maxText)) {
        return {false, "The value is greater than " + maxText, maxText};
    }
    return {};
}

}  // namespace zerbin
