// The numeric editor driven through its real value box: the key grammar under both decimal
// separators, the limits, and the user's units.
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "datatypes/UnitConverter.h"
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

// The grammar itself is NumberRulesTest's; these rows show the box applies it with the type's
// decimals and the locale's separator, and enables OK as the text becomes whole.
INSTANTIATE_TEST_SUITE_P(
    Grammar, NumericKeys,
    ::testing::Values(KeyRow{"105", false, "", -1, 0, 0, "-12.345", "-12.34", true},
                      KeyRow{"105", false, "12", -1, 0, 2, "e", "12E", false},
                      KeyRow{"105", false, "1.5", -1, 0, 3, "\b", "1.", false},
                      KeyRow{"105", false, "1.5", 0, 3, 0, "x", "", false},
                      KeyRow{"8", false, "12", -1, 0, 2, ".,5", "125", true},
                      KeyRow{"105", true, "", -1, 0, 0, "1.2,345", "12,34", true}));

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

INSTANTIATE_TEST_SUITE_P(Limits, NumericRange,
                         ::testing::Values(RangeRow{false, "0", "40", "40", "40", "", ""},
                                           RangeRow{false, "0", "40", "-1", "",
                                                    "The value is less than 0", "0"},
                                           RangeRow{true, "-10,5", "40", "-10,51", "",
                                                    "The value is less than -10,5", "-10,5"}));

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

}  // namespace
}  // namespace zerbin::testing
