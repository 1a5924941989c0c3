// The numeric editor's rules without a window: the key filter, the paste, the completeness
// that enables OK, the range check and the short limit labels.
#include "editors/NumberRules.h"

#include <gtest/gtest.h>

#include <QString>

#include "datatypes/UnitConverter.h"

namespace zerbin {
namespace {

std::u32string U32(const char* latin1) {
    return QString::fromLatin1(latin1).toStdU32String();
}

constexpr auto Drop = NumericKeyAction::Drop;
constexpr auto Pass = NumericKeyAction::Pass;

TEST(NumberRules, EachKeyIsJudgedByTheWholeText) {
    struct Row {
        const char* text;
        std::size_t selection;
        std::size_t caret;
        char32_t key;
        char32_t separator;
        int decimals;
        bool emptyFirst;
        NumericKeyAction action;
        char32_t character;  // for Pass
    };
    const Row rows[] = {
        {"", 0, 0, U'-', U'.', 2, true, Pass, U'-'},       // an empty box counts as all selected
        {"1.23", 0, 0, U'5', U'.', 2, false, Pass, U'5'},  // digits before the point are free
        {"1.23", 0, 3, U'4', U'.', 2, false, Drop, 0},     // a third decimal
        {"1.2", 0, 3, U'3', U'.', 1, false, Drop, 0},
        {"1.23E", 0, 5, U'7', U'.', 2, false, Pass, U'7'},  // exponent digits are not decimals
        {"1.23", 4, 0, U'9', U'.', 2, true, Pass, U'9'},
        {"1.5", 3, 0, U'x', U'.', 2, true, Drop, 0},  // emptied even when the key is dropped
        {"1.5", 3, 0, U'.', U'.', 2, true, Drop, 0},  // the replaced text's point still counts
        {"1.5", 0, 3, U'.', U'.', 2, false, Drop, 0},
        {"12", 0, 2, U'.', U'.', 0, false, Drop, 0},  // no point in a whole number
        {"12", 0, 2, U',', U',', 2, false, Pass, U','},
        {"12", 0, 2, U'.', U',', 2, false, Drop, 0},  // the other locale's separator
        {"12", 0, 2, U'e', U'.', 2, false, Pass, U'E'},
        {"12", 0, 1, U'e', U'.', 2, false, Pass, U'E'},  // judged by the end, not the caret
        {"1E5", 0, 1, U'e', U'.', 2, false, Drop, 0},
        {"1.", 0, 2, U'E', U'.', 2, false, Drop, 0},
        {"", 0, 0, U'E', U'.', 2, true, Pass, U'E'},
        {"12", 0, 0, U'+', U'.', 2, false, Drop, 0},
        {"12E", 0, 3, U'+', U'.', 2, false, Pass, U'+'},
        {"12E", 0, 3, U'-', U'.', 2, false, Pass, U'-'},
        {"+5", 0, 0, U'-', U'.', 2, false, Pass, U'-'},
        {"-5", 0, 0, U'-', U'.', 2, false, Drop, 0},
        {"5", 0, 1, U'-', U'.', 2, false, Drop, 0},  // a sign only in front
        {"1.5", 0, 3, kKeyBackspace, U'.', 2, false, Pass, kKeyBackspace},
        {"1.5", 0, 3, U' ', U'.', 2, false, Drop, 0},
    };
    for (const Row& row : rows) {
        NumericKeyInput input;
        input.text = U32(row.text);
        input.selectionLength = row.selection;
        input.caret = row.caret;
        input.key = row.key;
        input.separator = row.separator;
        input.decimals = row.decimals;
        const NumericKeyDecision decision = FilterNumericKey(input);
        const std::string where = std::string(row.text) + " + key " + std::to_string(row.key);
        EXPECT_EQ(decision.emptyFirst, row.emptyFirst) << where;
        EXPECT_EQ(decision.action, row.action) << where;
        if (row.action == Pass) {
            EXPECT_EQ(decision.character, row.character) << where;
        }
    }
    NumericKeyInput control;
    control.text = U32("1.5");
    control.caret = 3;
    control.key = kKeyEscape;
    EXPECT_EQ(FilterNumericKey(control).action, NumericKeyAction::Restore);
    control.key = kKeyEnter;
    EXPECT_EQ(FilterNumericKey(control).action, NumericKeyAction::Confirm);
}

TEST(NumberRules, APasteIsTypedKeyByKeyAndTakenWholeOrRefused) {
    struct Row {
        const char* start;
        std::size_t caret;
        std::size_t selection;
        bool comma;
        const char* pasted;
        const char* expected;  // empty: refused
        char32_t refused;
        std::size_t caretAfter;
    };
    for (const Row& row : {
             Row{"", 0, 0, false, "-12.34", "-12.34", 0, 6},
             Row{"", 0, 0, false, " 2e5\r\n", "2E5", 0, 3},
             Row{"1.23", 0, 0, false, "5", "51.23", 0, 1},
             Row{"1.5", 0, 3, false, "7", "7", 0, 1},
             Row{"12345", 1, 2, false, "9", "1945", 0, 2},
             Row{"12345", 1, 2, false, "99", "19945", 0, 3},  // the selection goes once
             Row{"", 0, 0, true, "1.5", "", U'.', 0},
             Row{"", 0, 0, false, "1.234", "", U'4', 0},
             Row{"", 0, 0, false, "1\t2", "", U'\t', 0},
             Row{"1", 1, 0, false, "\b", "", U'\b', 0},
             Row{"-5", 0, 0, false, "-", "", U'-', 0},
         }) {
        NumericKeyInput box;
        box.text = U32(row.start);
        box.caret = row.caret;
        box.selectionLength = row.selection;
        box.separator = row.comma ? U',' : U'.';
        box.decimals = 2;
        const NumericPasteResult result = FilterNumericPaste(box, U32(row.pasted));
        const std::string expected = row.expected;
        EXPECT_EQ(result.accepted, !expected.empty()) << row.pasted;
        EXPECT_EQ(QString::fromStdU32String(result.text).toStdString(), expected) << row.pasted;
        EXPECT_EQ(result.refused, row.refused) << row.pasted;
        EXPECT_EQ(result.caret, row.caretAfter) << row.pasted;
    }
    EXPECT_EQ(RefusedPasteMessage(U"1x€", U'x'),
              "Nothing was pasted: the \"x\" of \"1x\xE2\x82\xAC\" does not fit this value.");
}

TEST(NumberRules, OkWaitsForANumberThatEndsWhole) {
    const struct {
        const char* text;
        bool complete;
    } rows[] = {{"", false},   {"  ", false}, {"-", false},  {"+", false},
                {"1.", false}, {"1,", false}, {"1E", false}, {"1E+", false},
                {"12", true},  {" 5 ", true}, {"E5", true},  {"1,5", true}};
    for (const auto& row : rows) {
        EXPECT_EQ(IsCompleteNumber(row.text), row.complete) << '"' << row.text << '"';
    }
}

TEST(NumberRules, TheRangeCheckNamesTheLimitAndRepairsToIt) {
    UnitConverter converter;
    const struct {
        const char* text;
        const char* min;
        const char* max;
        const char* message;  // empty: in range
    } rows[] = {
        {"0", "0", "40", ""},
        {"40", "0", "40", ""},
        {"-1", "0", "40", "The value is less than 0"},
        {"40.01", "0", "40", "The value is greater than 40"},
        {"-200", "", "40", ""},  // an empty limit is not tested
        {"99999", "", "", ""},
        {"-10,5", "-10,5", "40", ""},
        {"-10,51", "-10,5", "40", "The value is less than -10,5"},
    };
    for (const auto& row : rows) {
        const RangeVerdict verdict = CheckRange(row.text, row.min, row.max, converter);
        const std::string message = row.message;
        EXPECT_EQ(verdict.inRange, message.empty()) << row.text;
        EXPECT_EQ(verdict.message, message) << row.text;
        if (!message.empty()) {
            EXPECT_EQ(verdict.repair, message.find("less") != std::string::npos ? row.min : row.max)
                << row.text;
        }
    }
}

TEST(NumberRules, AbbreviateNumberKeepsTwoDecimalsAndTheExponent) {
    struct Row {
        const char* text;
        const char* separator;
        const char* expected;
    };
    for (const Row& row :
         {Row{"1.234567E+20", ".", "1.23E+20"}, Row{"1,234567E+20", ",", "1,23E+20"},
          Row{"123456789012", ".", "123456789012"}, Row{"1.5E+20", ".", "1.5E+20"},
          Row{"1.2345E+20", ".", "1.23E+20"}, Row{"1.234E+20", ".", "1.234E+20"},
          Row{"123456789E+20", ".", "E+20"}, Row{"-3276.8", ".", "-3276.8"}}) {
        EXPECT_EQ(AbbreviateNumber(row.text, row.separator), row.expected) << row.text;
    }
}

}  // namespace
}  // namespace zerbin
