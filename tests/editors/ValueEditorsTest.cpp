// The text, enumeration and bit field editors, what all editors do on Cancel, bad input in
// every editor, and the Qt message box adapter.
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <set>

#include "editors/EditorWindows.h"
#include "editors/QtAdapters.h"
#include "editors/TextRules.h"
#include "editors/frmCPModif2.h"
#include "editors/frmCPModif3.h"
#include "editors/frmCPModif5.h"
#include "platform/Messages.h"
#include "tests/support/EditorTestSupport.h"

namespace zerbin::testing {
namespace {

std::shared_ptr<TestPoint> PointOf(const std::string& typeClass, const std::string& value,
                                   int32_t length = 4, const std::string& enumDesc = {}) {
    auto type = std::make_shared<CDBSNVTType>();
    type->SetGenType(typeClass);
    type->SetLength(length);
    type->SetEnumDesc(enumDesc);
    return std::make_shared<TestPoint>("Point", type, value);
}

void Click(QDialog& dialog, const char* button) {
    QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);
}

struct TextRow {
    int32_t length;
    const char* start;
    int selectionStart;  // -1: caret at caretPosition
    int selectionLength;
    int caret;
    const char* keys;  // "\b" is Backspace
    const char* expected;
    int messages;
    const char* message = nullptr;  // the first one; nullptr: the length message
};

class TextKeys : public ::testing::TestWithParam<TextRow> {};

TEST_P(TextKeys, TypedKeysKeepLengthBlanksAndCodePage) {
    const TextRow& row = GetParam();
    ScopedMessageRecorder messages;
    auto point = PointOf("Textual", "", row.length);
    frmCPModif2 dialog;
    dialog.DataPoint(point);
    dialog.show();
    auto& box = *dialog.findChild<QLineEdit*>("txtNewCPValue");
    box.setText(QString::fromUtf8(row.start));
    if (row.selectionStart >= 0) {
        box.setSelection(row.selectionStart, row.selectionLength);
    } else {
        box.setCursorPosition(row.caret);
    }
    TypeKeys(box, QString::fromUtf8(row.keys));
    EXPECT_EQ(box.text().toStdString(), row.expected);
    ASSERT_EQ(messages.Messages().size(), static_cast<std::size_t>(row.messages));
    if (row.messages > 0 && row.message != nullptr) {
        EXPECT_EQ(messages.Messages()[0].text, row.message);
        EXPECT_EQ(messages.Messages()[0].icon, MessageIcon::Exclamation);
    } else if (row.messages > 0) {
        EXPECT_EQ(messages.Messages()[0].text,
                  "The text cannot exceed " + std::to_string(row.length) + " characters");
        EXPECT_EQ(messages.Messages()[0].title, "Name too long");
        EXPECT_EQ(messages.Messages()[0].icon, MessageIcon::Exclamation);
    }
}

// The rules themselves are TextRulesTest's; these rows show the box applies them as keys come.
INSTANTIATE_TEST_SUITE_P(Text, TextKeys,
                         ::testing::Values(TextRow{4, "", -1, 0, 0, "abcde", "abcd", 1},
                                           TextRow{8, "", -1, 0, 0, "a b", "a_b", 0},
                                           TextRow{8, "abcd", 1, 2, 0, "\b", "abc", 0},
                                           TextRow{8, "ab", -1, 0, 1, "ł→", "ab", 2,
                                                   "The character \"ł\" is not in the value's "
                                                   "8-bit code page (Windows-1252) and cannot "
                                                   "be stored."}));

TEST(TextEditor, StoredTooLongIsCutAtLoadAndPasteIsCutOnce) {
    ScopedMessageRecorder messages;
    auto point = PointOf("Textual", "a b c d", 4);
    frmCPModif2 dialog;
    dialog.DataPoint(point);
    dialog.show();
    auto& box = *dialog.findChild<QLineEdit*>("txtNewCPValue");
    EXPECT_EQ(box.text(), QStringLiteral("a b "));
    box.clear();
    QApplication::clipboard()->setText(QStringLiteral("123456"));
    QTest::keyClick(&box, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(box.text(), QStringLiteral("1234"));
    EXPECT_EQ(messages.Messages().size(), 2U);
}

// Tabs, line ends and characters the code page lacks are refused with a message, never turned
// into "?": a paste is refused whole, a stored value loses only those characters.
TEST(TextEditor, WhatTheValueCannotHoldIsRefusedAndSaid) {
    ScopedMessageRecorder messages;
    auto point = PointOf("Textual", "x\ny€", 8);
    frmCPModif2 dialog;
    dialog.DataPoint(point);
    dialog.show();
    auto& box = *dialog.findChild<QLineEdit*>("txtNewCPValue");
    EXPECT_EQ(box.text(), QStringLiteral("xy€"));
    ASSERT_EQ(messages.Messages().size(), 1U);
    EXPECT_NE(messages.Messages()[0].text.find("line ends"), std::string::npos);
    box.setCursorPosition(1);
    QApplication::clipboard()->setText(QStringLiteral("a\tb"));
    QTest::keyClick(&box, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(box.text(), QStringLiteral("xy€"));
    EXPECT_EQ(box.cursorPosition(), 1);
    EXPECT_EQ(messages.Messages().size(), 2U);
    QTest::keyClick(&box, Qt::Key_Return);
    EXPECT_EQ(point->writes, std::vector<std::string>{"xy€"});
}

// The longest text the type allows stays in sight whole, even in wide characters.
TEST(TextEditor, TheBoxShowsTheLongestTextWhole) {
    for (const QChar wide : {QChar(u'W'), QChar(u'@'), QChar(u'‰'), QChar(u'Œ')}) {
        const QString text(31, wide);
        auto point = PointOf("Textual", text.toStdString(), 31);
        frmCPModif2 dialog;
        dialog.DataPoint(point);
        dialog.show();
        auto& box = *dialog.findChild<QLineEdit*>("txtNewCPValue");
        ASSERT_EQ(box.text(), text);
        box.end(false);
        box.grab();  // the box scrolls its text as it paints
        // With the caret at the end, the start of the text must not have scrolled away.
        const int start = box.inputMethodQuery(Qt::ImCursorRectangle).toRect().center().x() -
                          box.fontMetrics().horizontalAdvance(text);
        EXPECT_GE(start, box.contentsRect().left()) << QString(wide).toStdString();
    }
}

// OK and Cancel stand as far apart in every editor; the bit editor's tight grid made them touch.
TEST(EditorButtons, StandApartAlikeInEveryEditor) {
    std::set<int> gaps;
    for (const char* name : {"frmCPModif1", "frmCPModif2", "frmCPModif3", "frmCPModif5"}) {
        const auto editor = MakeValueEditorNamed(name, nullptr);
        editor->show();
        const QRect ok = editor->findChild<QPushButton*>("cmdOk")->geometry();
        const QRect cancel = editor->findChild<QPushButton*>("cmdCancel")->geometry();
        gaps.insert(std::max(ok.left(), cancel.left()) - std::min(ok.right(), cancel.right()));
    }
    EXPECT_EQ(gaps.size(), 1U);
    EXPECT_GT(*gaps.begin(), 4);
}

TEST(TextEditor, EscRestoresEnterWritesEvenEmpty) {
    auto point = PointOf("Textual", "old", 8);
    frmCPModif2 dialog;
    dialog.DataPoint(point);
    dialog.show();
    auto& box = *dialog.findChild<QLineEdit*>("txtNewCPValue");
    QTest::keyClicks(&box, QStringLiteral("new"));
    QTest::keyClick(&box, Qt::Key_Escape);
    EXPECT_EQ(box.text(), QStringLiteral("old"));
    EXPECT_TRUE(dialog.isVisible());
    box.clear();
    QTest::keyClick(&box, Qt::Key_Return);
    EXPECT_EQ(point->writes, std::vector<std::string>{""});
    EXPECT_FALSE(dialog.isVisible());
}

struct EnumRow {
    const char* description;
    const char* value;
    int entries;
    const char* shown;
    const char* written;
};

class EnumEditor : public ::testing::TestWithParam<EnumRow> {};

TEST_P(EnumEditor, ShowsTheLabelOfTheCodeAndWritesTheCode) {
    const EnumRow& row = GetParam();
    auto point = PointOf("Enum", row.value, 1, row.description);
    frmCPModif3 dialog;
    dialog.DataPoint(point);
    dialog.show();
    auto& list = *dialog.findChild<QComboBox*>("cboEnum");
    EXPECT_EQ(list.count(), row.entries);
    EXPECT_EQ(list.currentText().toStdString(), row.shown);
    Click(dialog, "cmdOk");
    EXPECT_EQ(point->writes, std::vector<std::string>{row.written});
}

// Which entry a value selects is EnumRulesTest's, the entries of a description EnumEntriesTest's.
INSTANTIATE_TEST_SUITE_P(Codes, EnumEditor,
                         ::testing::Values(EnumRow{"0,OFF;1,ON;", "1", 2, "ON", "1"},
                                           EnumRow{"0,OFF;1,ON;", "7", 2, "OFF", "0"},
                                           // The entry shown, not the last of its label.
                                           EnumRow{"0,A;1,A;", "0", 2, "A", "0"},
                                           EnumRow{"", "3", 0, "", "-1"}));

struct BitRow {
    int32_t length;
    const char* value;
    const char* shown;  // bit 15 down to bit 0; blanks for hidden bits
    const char* written;
};

class BitEditor : public ::testing::TestWithParam<BitRow> {};

TEST_P(BitEditor, ShowsTheBitsAndWritesTheirSum) {
    const BitRow& row = GetParam();
    auto point = PointOf("Bitfield", row.value, row.length);
    frmCPModif5 dialog;
    dialog.DataPoint(point);
    dialog.show();
    std::string shown;
    for (int i = 15; i >= 0; --i) {
        shown += dialog.Bit(i)->isVisible() ? dialog.Bit(i)->text().toStdString() : " ";
    }
    EXPECT_EQ(shown, row.shown);
    EXPECT_EQ(dialog.findChild<QLabel*>("Label4")->isVisible(), row.length != 1);
    Click(dialog, "cmdOk");
    EXPECT_EQ(point->writes, std::vector<std::string>{row.written});
}

// The bits of a value and their sum are BitRulesTest's; the window shows and hides them.
INSTANTIATE_TEST_SUITE_P(Sums, BitEditor,
                         ::testing::Values(BitRow{1, "300", "        00101100", "44"},
                                           BitRow{2, "65535", "1111111111111111", "65535"},
                                           BitRow{4, "99999999999", "0000000000000000", "0"}));

TEST(BitEditorFlip, ADoubleClickOrSpaceFlipsABitAndOkWritesEveryPoint) {
    auto first = PointOf("Bitfield", "1", 2);
    auto second = PointOf("Bitfield", "0", 2);
    frmCPModif5 dialog;
    dialog.DataPoint(first);
    dialog.DataPoint(second);
    dialog.show();
    QTest::mouseDClick(dialog.Bit(3), Qt::LeftButton);
    dialog.Bit(15)->setFocus();
    QTest::keyClick(dialog.Bit(15), Qt::Key_Space);
    Click(dialog, "cmdOk");
    EXPECT_EQ(first->writes, std::vector<std::string>{"32776"});
    EXPECT_EQ(second->writes, std::vector<std::string>{"32776"});
}

class EditorCancel : public ::testing::TestWithParam<std::tuple<const char*, bool>> {};

TEST_P(EditorCancel, CancelPutsTheOldValueBackOnlyForTheStructureEditor) {
    const struct {
        const char* typeClass;
        bool calledFromStructure;
    } row{std::get<0>(GetParam()), std::get<1>(GetParam())};
    ScopedDictionary dictionary(ShippedDictionary());
    auto point = std::make_shared<TestPoint>("Point", ShippedType("105"), "7");
    std::dynamic_pointer_cast<CDBSNVTType>(point->type)->SetGenType(row.typeClass);
    const auto dialog = MakeValueEditor(row.typeClass, nullptr);
    dialog->CalledFramModif4(row.calledFromStructure);
    dialog->DataPoint(point);
    dialog->show();
    point->value = "99";  // what a structure's row had written before opening
    Click(*dialog, "cmdCancel");
    EXPECT_EQ(point->value, row.calledFromStructure ? "7" : "99");
    EXPECT_FALSE(dialog->CalledFramModif4());
}

INSTANTIATE_TEST_SUITE_P(Editors, EditorCancel,
                         ::testing::Combine(::testing::Values("SignedNumeric", "Textual", "Enum",
                                                              "Bitfield"),
                                            ::testing::Bool()));

struct BadRow {
    const char* typeClass;
    const char* typeId;  // resolved from the shipped dictionary, or "" for none
    int32_t length;
    const char* value;
    const char* min;
    const char* max;
};

class BadInput : public ::testing::TestWithParam<BadRow> {};

TEST_P(BadInput, EveryEditorOpensAndClosesOnIt) {
    const BadRow& row = GetParam();
    ScopedMessageRecorder messages;
    ScopedDictionary dictionary(ShippedDictionary());
    auto point = PointOf(row.typeClass, row.value, row.length);
    if (*row.typeId != '\0') {
        point->type = ShippedType(row.typeId);
    }
    point->min = row.min;
    point->max = row.max;
    const auto dialog = MakeValueEditor(row.typeClass, nullptr);
    ASSERT_NE(dialog, nullptr);
    dialog->DataPoint(point);
    dialog->show();
    QApplication::processEvents();
    Click(*dialog, "cmdOk");
    dialog->close();
}

INSTANTIATE_TEST_SUITE_P(
    Editors, BadInput,
    ::testing::Values(BadRow{"Float", "", 4, "", "", ""},
                      BadRow{"Float", "48", 4, "1E+999", "-1E+38", "1E+38"},
                      BadRow{"SignedNumeric", "98", 2, "abc;,.E", "", "1.5E+300"},
                      BadRow{"UnsignedNumeric", "7", 1, "-", "x", "y"},
                      BadRow{"Textual", "", -5, "long text", "", ""},
                      BadRow{"Enum", "", 1, "1", "", ""}, BadRow{"Struct", "", 0, "1 2 3", "", ""},
                      BadRow{"Bitfield", "", 0, "1", "", ""},
                      BadRow{"Textual", "", 4, "\x01\xff\xfe", "", ""},
                      BadRow{"Bitfield", "", 32, "4294967295", "", ""}));

TEST(QtMessages, TitleIconAndButtonsReachTheBoxAndTheAnswerComesBack) {
    InstallQtAdapters();
    int answer = 0;
    WithModal(
        [&] {
            answer =
                ShowMessage("Save?", "Edit Value", MessageIcon::Exclamation, MessageButtons::YesNo);
        },
        [](QWidget& window) {
            auto& box = dynamic_cast<QMessageBox&>(window);
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Edit Value"));
            EXPECT_EQ(box.text(), QStringLiteral("Save?"));
            EXPECT_EQ(box.icon(), QMessageBox::Warning);
            EXPECT_EQ(box.standardButtons(), QMessageBox::Yes | QMessageBox::No);
            box.button(QMessageBox::No)->click();
        });
    RemoveQtAdapters();
    EXPECT_EQ(answer, kMessageNo);
}

}  // namespace
}  // namespace zerbin::testing
