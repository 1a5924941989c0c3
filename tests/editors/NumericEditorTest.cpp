// The numeric editor driven through its real value box: the key grammar under both decimal
// separators, the limits, and the user's units.
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "datatypes/UnitConverter.h"
#include "editors/NumberRules.h"
#include "editors/frmCPModif1.h"
#include "platform/Messages.h"
#include "tests/support/EditorTestSupport.h"

namespace zerbin::testing {
namespace {

// An open numeric editor on a point of type typeId.
struct OpenEditor {
    OpenEditor(const std::string& typeId, const std::string& value)
        : point(std::make_shared<TestPoint>("Setpoint", ShippedType(typeId), value)) {}
    void Show() {
        dialog.DataPoint(point);
        dialog.show();
    }
    QLineEdit& Box() { return *dialog.findChild<QLineEdit*>("txtNewCPValue"); }
    QPushButton& Ok() { return *dialog.findChild<QPushButton*>("cmdOk"); }
    QString Label(const char* name) { return dialog.findChild<QLabel*>(name)->text(); }

    ScopedDictionary dictionary{ShippedDictionary()};
    ScopedMessageRecorder messages;
    std::shared_ptr<TestPoint> point;
    frmCPModif1 dialog;
};

struct KeyRow {
    const char* typeId;  // 105: two decimals; 8: none
    bool comma;
    const char* start;
    int selectionStart;  // -1: no selection
    int selectionLength;
    int caret;
    const char* keys;
    const char* expected;
    bool okEnabled;
};

class NumericKeys : public ::testing::TestWithParam<KeyRow> {};

TEST_P(NumericKeys, TypedKeysGiveTextAndOk) {
    const KeyRow& row = GetParam();
    ZERBIN_SEPARATOR_FOR(row.comma, locale);
    OpenEditor editor(row.typeId, "0");
    editor.Show();
    QLineEdit& box = editor.Box();
    box.setText(QString::fromLatin1(row.start));
    if (row.selectionStart >= 0) {
        box.setSelection(row.selectionStart, row.selectionLength);
    } else {
        box.setCursorPosition(row.caret);
    }
    TypeKeys(box, row.keys);
    EXPECT_EQ(box.text().toStdString(), row.expected);
    EXPECT_EQ(editor.Ok().isEnabled(), row.okEnabled);
    EXPECT_TRUE(editor.dialog.isVisible());
}

INSTANTIATE_TEST_SUITE_P(
    Grammar, NumericKeys,
    ::testing::Values(
        KeyRow{"105", false, "", -1, 0, 0, "-12.345", "-12.34", true},
        KeyRow{"105", false, "1.23", -1, 0, 0, "5", "51.23", true},
        KeyRow{"105", false, "1.23", -1, 0, 3, "4", "1.23", true},
        KeyRow{"105", false, "1.23", 0, 4, 0, "9", "9", true},
        KeyRow{"105", false, "", -1, 0, 0, "-", "-", false},
        KeyRow{"105", false, "12", -1, 0, 2, "e", "12E", false},
        KeyRow{"105", false, "12", -1, 0, 2, "e+3", "12E+3", true},
        KeyRow{"105", false, "", -1, 0, 0, "E5", "E5", true},
        KeyRow{"105", false, "12", -1, 0, 1, "e", "1E2", true},
        KeyRow{"105", false, "1E5", -1, 0, 1, "e", "1E5", true},
        KeyRow{"105", false, "12", -1, 0, 0, "+", "12", true},
        KeyRow{"105", false, "+5", -1, 0, 0, "-", "-+5", true},
        KeyRow{"105", false, "-5", -1, 0, 0, "-", "-5", true},
        KeyRow{"105", false, "1.5", -1, 0, 3, ".", "1.5", true},
        KeyRow{"105", false, "1.5", -1, 0, 3, "\b", "1.", false},
        KeyRow{"105", false, "1.5", -1, 0, 0, "\b", "1.5", true},
        KeyRow{"105", false, "1.5", 0, 3, 0, "\b", "", false},
        // Every key empties a wholly selected box first, even one that is then dropped.
        KeyRow{"105", false, "1.5", 0, 3, 0, "x", "", false},
        // The separator of the replaced text still counts for that key.
        KeyRow{"105", false, "1.5", 0, 3, 0, ".", "", false},
        KeyRow{"8", false, "12", -1, 0, 2, ".,5", "125", true},
        KeyRow{"8", true, "12", -1, 0, 2, ",.5", "125", true},
        KeyRow{"105", true, "", -1, 0, 0, "1.2,345", "12,34", true},
        KeyRow{"105", true, "", -1, 0, 0, "0,", "0,", false}));

TEST(NumericEditor, LoadShowsValueLimitsAndUnitInUserUnits) {
    struct Row {
        UnitSystem system;
        const char* stored;
        const char* shown;
        const char* unit;
    };
    for (const Row& row :
         {Row{UnitSystem::SI, "20", "20", "[°C]"}, Row{UnitSystem::US, "20", "68", "[°F]"},
          Row{UnitSystem::US, "-40", "-40", "[°F]"}}) {
        SetUnitSystem(row.system);
        OpenEditor editor("105", row.stored);
        editor.point->min = "-40";
        editor.point->max = "100";
        editor.Show();
        EXPECT_EQ(editor.Box().text().toStdString(), row.shown);
        EXPECT_EQ(editor.Box().selectedText(), editor.Box().text());
        EXPECT_EQ(editor.Label("lblUnits").toStdString(), row.unit);
        EXPECT_EQ(editor.Label("lblMin").toStdString(), "-40");
        EXPECT_EQ(editor.Label("lblMax").toStdString(),
                  row.system == UnitSystem::US ? "212" : "100");
        EXPECT_EQ(editor.Label("lblName"), "Setpoint");
        EXPECT_FALSE(editor.dialog.findChild<QCheckBox*>("chkInvalid")->isVisible());
        SetUnitSystem(UnitSystem::SI);
    }
}

TEST(NumericEditor, OkTakesTheValueInUserUnits) {
    SetUnitSystem(UnitSystem::US);
    OpenEditor editor("105", "20");
    editor.Show();
    TypeKeys(editor.Box(), "212\r");
    SetUnitSystem(UnitSystem::SI);
    EXPECT_EQ(editor.point->writes, std::vector<std::string>{"100"});
    EXPECT_FALSE(editor.dialog.isVisible());
}

struct RangeRow {
    bool comma;
    const char* min;
    const char* max;
    const char* typed;
    const char* written;  // empty: nothing written, the window stays open
    const char* message;
    const char* repaired;
};

class NumericRange : public ::testing::TestWithParam<RangeRow> {};

TEST_P(NumericRange, OkChecksTheLimitsOfTheLoad) {
    const RangeRow& row = GetParam();
    ZERBIN_SEPARATOR_FOR(row.comma, locale);
    OpenEditor editor("105", "5");
    editor.point->min = row.min;
    editor.point->max = row.max;
    editor.Show();
    TypeKeys(editor.Box(), row.typed);
    QTest::mouseClick(&editor.Ok(), Qt::LeftButton);
    if (*row.written != '\0') {
        EXPECT_EQ(editor.point->writes, std::vector<std::string>{row.written});
        EXPECT_FALSE(editor.dialog.isVisible());
        EXPECT_TRUE(editor.messages.Messages().empty());
        return;
    }
    EXPECT_TRUE(editor.point->writes.empty());
    EXPECT_TRUE(editor.dialog.isVisible());
    ASSERT_EQ(editor.messages.Messages().size(), 1U);
    const Message& message = editor.messages.Messages()[0];
    EXPECT_EQ(message.text, row.message);
    EXPECT_EQ(message.title, "Warning");
    EXPECT_EQ(message.icon, MessageIcon::Exclamation);
    EXPECT_EQ(editor.Box().text().toStdString(), row.repaired);
    EXPECT_EQ(editor.Box().selectedText(), editor.Box().text());
}

INSTANTIATE_TEST_SUITE_P(
    Limits, NumericRange,
    ::testing::Values(RangeRow{false, "0", "40", "0", "0", "", ""},
                      RangeRow{false, "0", "40", "40", "40", "", ""},
                      RangeRow{false, "0", "40", "-1", "", "The value is less than 0", "0"},
                      RangeRow{false, "0", "40", "40.01", "", "The value is greater than 40", "40"},
                      RangeRow{false, "", "40", "-200", "-200", "", ""},
                      RangeRow{false, "", "", "99999", "99999", "", ""},
                      RangeRow{true, "-10,5", "40", "-10,5", "-10,5", "", ""},
                      RangeRow{true, "-10,5", "40", "-10,51", "", "The value is less than -10,5",
                               "-10,5"}));

TEST(NumericEditor, EscRestoresTheLoadedTextAndStaysOpen) {
    OpenEditor editor("105", "21.5");
    editor.Show();
    const QString loaded = editor.Box().text();
    editor.Box().end(false);
    TypeKeys(editor.Box(), "\b\b9\x1b");
    EXPECT_EQ(editor.Box().text(), loaded);
    EXPECT_TRUE(editor.dialog.isVisible());
}

// A paste goes in whole or, with a message, not at all; never thinned out to another number.
TEST(NumericEditor, APasteGoesInWholeOrNotAtAll) {
    OpenEditor editor("105", "0");
    editor.Show();
    editor.Box().setText(QStringLiteral("7"));
    editor.Box().end(false);
    QApplication::clipboard()->setText(QStringLiteral("1x2"));
    QTest::keyClick(&editor.Box(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(editor.Box().text(), QStringLiteral("7"));
    ASSERT_EQ(editor.messages.Messages().size(), 1U);
    EXPECT_EQ(editor.messages.Messages()[0].text,
              "Nothing was pasted: the \"x\" of \"1x2\" does not fit this value.");
    QApplication::clipboard()->setText(QStringLiteral("2.5e"));
    QTest::keyClick(&editor.Box(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(editor.Box().text(), QStringLiteral("72.5E"));
    EXPECT_EQ(editor.Box().cursorPosition(), 5);
}

// The text shown at load stands for the stored value; writing it again would lose the factor
// of a parameter kept divided (1 shown, 0.001 kept after one OK, 1E-06 after two).
TEST(NumericEditor, AnUntouchedOkWritesNothing) {
    UseLibrary(DataDir() / "library");
    HostSetup setup;
    setup.dictionary = ShippedDictionary();
    TestBlock block("ANALOG_SCALER", setup);
    const auto filterTime = block->IAppObject_Attributes()->IAttributes_Item("FilterTime");
    ASSERT_NE(filterTime, nullptr);
    const std::string stored = filterTime->IAttribute_Value();
    for (int ok = 0; ok < 2; ++ok) {
        frmCPModif1 dialog;
        dialog.DataPoint(filterTime);
        dialog.show();
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
        EXPECT_FALSE(dialog.isVisible());
    }
    EXPECT_EQ(filterTime->IAttribute_Value(), stored);
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
             Row{"", 0, 0, true, "1.5", "", U'.', 0},
             Row{"", 0, 0, false, "1.234", "", U'4', 0},
             Row{"", 0, 0, false, "1\t2", "", U'\t', 0},
             Row{"-5", 0, 0, false, "-", "", U'-', 0},
         }) {
        NumericKeyInput box;
        box.text = QString::fromLatin1(row.start).toStdU32String();
        box.caret = row.caret;
        box.selectionLength = row.selection;
        box.separator = row.comma ? U',' : U'.';
        box.decimals = 2;
        const NumericPasteResult result =
            FilterNumericPaste(box, QString::fromLatin1(row.pasted).toStdU32String());
        const std::string expected = row.expected;
        EXPECT_EQ(result.accepted, !expected.empty()) << row.pasted;
        EXPECT_EQ(QString::fromStdU32String(result.text).toStdString(), expected) << row.pasted;
        EXPECT_EQ(result.refused, row.refused) << row.pasted;
        EXPECT_EQ(result.caret, row.caretAfter) << row.pasted;
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
          Row{"123456789E+20", ".", "E+20"}, Row{"-3276.8", ".", "-3276.8"}}) {
        EXPECT_EQ(AbbreviateNumber(row.text, row.separator), row.expected) << row.text;
    }
}

}  // namespace
}  // namespace zerbin::testing
