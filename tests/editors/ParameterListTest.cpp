// The parameter list on blocks of the shipped library, and the editor port that opens the
// right window from IAttribute_SetValue.
#include <QHeaderView>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "app_object/CDBAppObject.h"
#include "editors/EditorWindows.h"
#include "editors/QtAdapters.h"
#include "editors/ValueEditorDialog.h"
#include "editors/frmMain.h"
#include "interfaces/IAttribute.h"
#include "tests/support/EditorTestSupport.h"

namespace zerbin::testing {
namespace {

class ParameterList : public ::testing::Test {
protected:
    ParameterList() {
        UseLibrary(DataDir() / "library");
        InstallQtAdapters();
    }
    ~ParameterList() override {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (qobject_cast<frmMain*>(widget) != nullptr) {
                widget->close();
            }
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (const auto& block : blocks_) {
            block->IAppObject_Destroy();
        }
        RemoveQtAdapters();
    }

    std::shared_ptr<CDBAppObject> Block(const std::string& type) {
        HostSetup setup;
        setup.dictionary = ShippedDictionary();
        setup.globalKey = "K" + std::to_string(blocks_.size());
        auto block = NewBlock(type, setup);
        blocks_.push_back(block);
        return block;
    }

    static std::vector<frmMain*> Windows() {
        std::vector<frmMain*> windows;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* window = qobject_cast<frmMain*>(widget); window && window->isVisible()) {
                windows.push_back(window);
            }
        }
        return windows;
    }

    // The list opens the editor once its own handling of the double click is over: that call
    // is delivered here, ahead of anything the test has queued.
    static void DoubleClick(QTreeWidget& list, QPoint where) {
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, where);
        QCoreApplication::sendPostedEvents(list.window(), QEvent::MetaCall);
    }

    ScopedMessageRecorder messages_;
    std::vector<std::shared_ptr<CDBAppObject>> blocks_;
};

TEST_F(ParameterList, OneWindowPerBlockFoundByItsKey) {
    auto thermostat = Block("THERMOSTAT");
    auto pid = Block("PID_LOOP");
    thermostat->IAppObject_Show(nullptr);
    thermostat->IAppObject_Show(nullptr);
    pid->IAppObject_Show(nullptr);
    auto windows = Windows();
    ASSERT_EQ(windows.size(), 2U);
    if (windows[0]->Tag() != thermostat->IAppObject_GlobalKey()) {
        std::swap(windows[0], windows[1]);
    }
    EXPECT_EQ(windows[0]->windowTitle().toStdString(), thermostat->IAppObject_Name());
    EXPECT_EQ(windows[1]->windowTitle().toStdString(), pid->IAppObject_Name());
    auto* list = windows[0]->findChild<QTreeWidget*>("lvAttr");
    EXPECT_EQ(list->topLevelItemCount(), thermostat->IAppObject_Attributes()->IAttributes_Count());
    EXPECT_EQ(list->headerItem()->text(2), QStringLiteral("Type"));
    // The parameter's image stands beside its name.
    EXPECT_FALSE(list->topLevelItem(0)->icon(0).isNull());
    EXPECT_TRUE(list->topLevelItem(0)->icon(1).isNull());
    // One inch for the name and 2.33 for value and type, whatever the names and the window.
    const double inch = list->logicalDpiX();
    EXPECT_EQ(list->columnWidth(0), qRound(inch));
    EXPECT_EQ(list->columnWidth(1), qRound(inch * 2.33));
    EXPECT_EQ(list->columnWidth(2), qRound(inch * 2.33));
}

TEST_F(ParameterList, AClosedWindowIsForgottenAndTheNextShowMakesANewOne) {
    auto block = Block("THERMOSTAT");
    block->IAppObject_Show(nullptr);
    Windows().front()->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    // The listener the closed window left behind must stay quiet.
    block->IAppObject_Attributes()->IAttributes_NewEnum().front()->IAttribute_Value("23");
    EXPECT_TRUE(Windows().empty());
    block->IAppObject_Show(nullptr);
    EXPECT_EQ(Windows().size(), 1U);
}

TEST_F(ParameterList, ValuesWrittenAnywhereShowInTheRowCancelLeavesIt) {
    auto block = Block("THERMOSTAT");
    const auto attribute = block->IAppObject_Attributes()->IAttributes_Item("HeatSetpoint");
    ASSERT_NE(attribute, nullptr);
    block->IAppObject_Show(nullptr);
    auto* list = Windows().front()->findChild<QTreeWidget*>("lvAttr");
    const auto found = list->findItems(QStringLiteral("HeatSetpoint"), Qt::MatchExactly, 0);
    ASSERT_EQ(found.size(), 1);
    QTreeWidgetItem* row = found.front();

    attribute->IAttribute_Value("19");
    EXPECT_EQ(row->text(1).toStdString(), attribute->IAttribute_Value());

    const QPoint where = list->visualItemRect(row).center();
    const auto edit = [&](const char* typed, const char* button) {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, where);
        WithModal([&] { DoubleClick(*list, where); },
                  [&](QWidget& editor) {
                      EXPECT_EQ(editor.objectName(), QStringLiteral("frmCPModif1"));
                      QTest::keyClicks(editor.findChild<QLineEdit*>("txtNewCPValue"), typed);
                      QTest::mouseClick(editor.findChild<QPushButton*>(button), Qt::LeftButton);
                  });
    };
    edit("18", "cmdCancel");
    EXPECT_EQ(row->text(1).toStdString(), "19");
    edit("17", "cmdOk");
    EXPECT_EQ(attribute->IAttribute_Value(), "17");
    EXPECT_EQ(row->text(1).toStdString(), "17");
}

// The host may take the list away while an editor it opened is still modal: closed from a
// timer, or deleted with its block. The editor stays the user's to finish; what its OK writes
// reaches the attribute, and nothing touches the list that is gone.
TEST_F(ParameterList, AListTakenAwayUnderAnOpenEditorLeavesTheEditorWhole) {
    struct Way {
        const char* name;
        bool destroyBlock;
    };
    for (const Way way : {Way{"closed from a timer", false}, Way{"deleted with its block", true}}) {
        SCOPED_TRACE(way.name);
        auto block = Block("THERMOSTAT");
        const auto attribute = block->IAppObject_Attributes()->IAttributes_Item("HeatSetpoint");
        block->IAppObject_Show(nullptr);
        QPointer<frmMain> window = Windows().front();
        auto* list = window->findChild<QTreeWidget*>("lvAttr");
        const QTreeWidgetItem* row =
            list->findItems(QStringLiteral("HeatSetpoint"), Qt::MatchExactly, 0).front();
        const QPoint where = list->visualItemRect(row).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, where);
        WithModal([&] { DoubleClick(*list, where); },
                  [&](QWidget& editor) {
                      const QPointer<QWidget> open = &editor;
                      QTimer::singleShot(0, [&] {
                          if (way.destroyBlock) {
                              block->IAppObject_Destroy();
                              delete window.data();
                          } else {
                              window->close();
                          }
                      });
                      EXPECT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }));
                      ASSERT_TRUE(open);
                      EXPECT_TRUE(open->isVisible());
                      QTest::keyClicks(open->findChild<QLineEdit*>("txtNewCPValue"), "16");
                      QTest::mouseClick(open->findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
                  });
        EXPECT_TRUE(window.isNull());
        if (!way.destroyBlock) {
            EXPECT_EQ(attribute->IAttribute_Value(), "16");
        }
    }
}

// A host's IAttribute_SetValue opens the editor of the attribute's class on that attribute.
TEST_F(ParameterList, SetValueOpensTheEditorOnTheAttribute) {
    auto block = Block("THERMOSTAT");
    const auto attribute = block->IAppObject_Attributes()->IAttributes_Item("HeatSetpoint");
    WithModal([&] { attribute->IAttribute_SetValue(); },
              [&](QWidget& editor) {
                  auto* box = editor.findChild<QLineEdit*>("txtNewCPValue");
                  ASSERT_NE(box, nullptr);
                  EXPECT_EQ(box->text(), QStringLiteral("21"));
                  box->selectAll();
                  QTest::keyClicks(box, "16");
                  QTest::mouseClick(editor.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
              });
    EXPECT_EQ(attribute->IAttribute_Value(), "16");
}

}  // namespace
}  // namespace zerbin::testing
