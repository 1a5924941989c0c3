// The structure editor: its rows, the sub-editor each field class opens and what comes back
// from it, and the joined value OK writes.
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "editors/ValueEditorDialog.h"
#include "editors/frmCPModif4.h"
#include "platform/Messages.h"
#include "tests/support/EditorTestSupport.h"

namespace zerbin::testing {
namespace {

std::shared_ptr<ISNVType> TypeOf(const std::string& typeClass) {
    auto type = ShippedType("8");  // a count: no decimals, no unit to convert
    type->SetGenType(typeClass);
    type->SetEnumDesc("0,OFF;1,ON;");
    type->SetLength(8);
    return type;
}

class StructureEditor : public ::testing::Test {
protected:
    StructureEditor() {
        fields_ = std::make_shared<TestFields>();
        for (const auto& [name, typeClass, value] :
             std::vector<std::tuple<std::string, std::string, std::string>>{
                 {"count", "UnsignedNumeric", "1"},
                 {"label", "Textual", "a b"},
                 {"mode", "Enum", "0"},
                 {"flags", "Bitfield", "3"},
                 {"inner", "Struct", "9"},
                 {"odd", "Strange", "4"}}) {
            fields_->items.Add(name, std::make_shared<TestField>(name, TypeOf(typeClass), value));
        }
        point_ = std::make_shared<TestPoint>("Setpoints", TypeOf("Struct"));
        point_->fields = fields_;
        dialog_.DataPoint(point_);
        dialog_.show();
        list_ = dialog_.findChild<QTreeWidget*>("lvwMain");
    }

    // Selects row index and opens it with a click of the right mouse button over another row:
    // neither the press nor the release may move the selection.
    void OpenRow(int index, const std::function<void(QWidget&)>& act) {
        list_->setCurrentItem(list_->topLevelItem(index));
        const QRect other = list_->visualItemRect(list_->topLevelItem(index == 0 ? 1 : 0));
        WithModal(
            [&] { QTest::mouseClick(list_->viewport(), Qt::RightButton, {}, other.center()); },
            act);
    }

    QString RowValue(int index) const { return list_->topLevelItem(index)->text(1); }

    ScopedDictionary dictionary_{ShippedDictionary()};
    ScopedMessageRecorder messages_;
    std::shared_ptr<TestFields> fields_;
    std::shared_ptr<TestPoint> point_;
    frmCPModif4 dialog_;
    QTreeWidget* list_ = nullptr;
};

// The rows show name and display value in field order; each field class opens its editor.
TEST_F(StructureEditor, EachFieldClassOpensItsEditorCalledFromTheStructure) {
    ASSERT_EQ(list_->topLevelItemCount(), 6);
    // The keys go to the fields at once: Enter opens the first one.
    EXPECT_EQ(dialog_.focusWidget(), list_);
    EXPECT_EQ(list_->currentItem(), list_->topLevelItem(0));
    EXPECT_EQ(list_->topLevelItem(2)->text(0), QStringLiteral("mode"));
    EXPECT_EQ(RowValue(2), QStringLiteral("0!"));
    EXPECT_EQ(list_->headerItem()->text(0), QStringLiteral("Field"));
    const std::vector<std::string> expected = {"frmCPModif1", "frmCPModif2", "frmCPModif3",
                                               "frmCPModif5", "frmCPModif4"};
    for (int i = 0; i < 5; ++i) {
        OpenRow(i, [&](QWidget& window) {
            EXPECT_EQ(window.objectName().toStdString(), expected[static_cast<std::size_t>(i)]);
            auto& editor = dynamic_cast<ValueEditorDialog&>(window);
            // A nested structure is opened plainly; the others with the flag.
            EXPECT_EQ(editor.CalledFramModif4(), i != 4);
            editor.reject();
        });
    }
    EXPECT_TRUE(messages_.Messages().empty());
}

TEST_F(StructureEditor, OkOfASubEditorShowsAtOnceCancelLeavesTheRow) {
    OpenRow(0, [](QWidget& window) {
        auto* box = window.findChild<QLineEdit*>("txtNewCPValue");
        QTest::keyClicks(box, QStringLiteral("42"));
        QTest::keyClick(box, Qt::Key_Return);
    });
    EXPECT_EQ(RowValue(0), QStringLiteral("42!"));
    OpenRow(1, [](QWidget& window) {
        QTest::keyClicks(window.findChild<QLineEdit*>("txtNewCPValue"), QStringLiteral("zzz"));
        QTest::mouseClick(window.findChild<QPushButton*>("cmdCancel"), Qt::LeftButton);
    });
    EXPECT_EQ(RowValue(1), QStringLiteral("a b!"));
    EXPECT_EQ(fields_->items.Item("label")->value, "a b");
}

TEST_F(StructureEditor, UnknownClassSaysSoAndOkJoinsTheStoredValues) {
    list_->setCurrentItem(list_->topLevelItem(5));
    dialog_.OpenSelectedField();
    ASSERT_EQ(messages_.Messages().size(), 1U);
    EXPECT_EQ(messages_.Messages()[0].text, "Unknown or Not modificable Attribute");
    EXPECT_EQ(messages_.Messages()[0].title, "Edit Value");
    EXPECT_EQ(messages_.Messages()[0].icon, MessageIcon::Exclamation);
    QTest::mouseClick(dialog_.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
    EXPECT_EQ(point_->writes, std::vector<std::string>{"1 a b 0 3 9 4"});
}

}  // namespace
}  // namespace zerbin::testing
