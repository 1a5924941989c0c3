#include "editors/frmMain.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPixmap>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "base/SkipMode.h"
#include "editors/EditorWindows.h"
#include "editors/SmallImages.h"
#include "editors/ValueEditorDialog.h"
#include "interfaces/IAttribute.h"
#include "interfaces/IEditors.h"
#include "platform/Picture.h"

namespace zerbin {
namespace {

constexpr int kKeyRole = Qt::UserRole;
constexpr int kTagRole = Qt::UserRole + 1;

// What the window registers with the block. Registrations are never withdrawn, so a closed
// window leaves this behind; it holds the window weakly and goes quiet once the window is gone.
class ListListener : public NullAppObjectListener {
public:
    explicit ListListener(frmMain* window) : window_(window) {}
    void IcbkAppObject_AttributeChanged(const std::string& GlobalKey) override {
        if (window_) {
            window_->AttributeChanged(GlobalKey);
        }
    }

private:
    QPointer<frmMain> window_;
};

QWidget* OwnerWidget(const std::shared_ptr<IObject>& owner) {
    const auto host = std::dynamic_pointer_cast<IHostWindow>(owner);
    return host ? static_cast<QWidget*>(host->HostWindow()) : nullptr;
}

}  // namespace

frmMain::frmMain(QWidget* owner) : QWidget(owner, Qt::Window), lvAttr_(new QTreeWidget(this)) {
    setObjectName(QStringLiteral("frmMain"));
    setAttribute(Qt::WA_DeleteOnClose);
    lvAttr_->setObjectName(QStringLiteral("lvAttr"));
    lvAttr_->setHeaderLabels(
        {QStringLiteral("Item"), QStringLiteral("Value"), QStringLiteral("Type")});
    lvAttr_->setRootIsDecorated(false);
    lvAttr_->setUniformRowHeights(true);
    lvAttr_->setAllColumnsShowFocus(true);
    lvAttr_->setSortingEnabled(false);
    // The columns keep the widths they are given; the last one does not take up the rest.
    lvAttr_->header()->setStretchLastSection(false);
    lvAttr_->viewport()->installEventFilter(this);
    lvAttr_->installEventFilter(this);
    // The editor opens once the list has finished with the double click: the host may delete
    // the list while the editor is open, and the view's own handler must not be on the stack
    // then.
    connect(lvAttr_, &QTreeWidget::itemDoubleClicked, this, &frmMain::OpenSelectedItem,
            Qt::QueuedConnection);

    // The list follows the window's size: a list that stayed put would waste what the user
    // made room for.
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lvAttr_);
    const int inch = logicalDpiX();
    resize(inch * 567 / 100 + 40, inch * 3);
}

frmMain* frmMain::FindByTag(const std::string& tag) {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* window = qobject_cast<frmMain*>(widget);
        if (window != nullptr && !window->closed_ && window->Tag() == tag) {
            return window;
        }
    }
    return nullptr;
}

frmMain* frmMain::Show(const std::shared_ptr<IAppObject>& appObject,
                       const std::shared_ptr<IObject>& owner) {
    const std::string tag = appObject->IAppObject_GlobalKey();
    if (frmMain* open = FindByTag(tag)) {
        open->show();
        open->raise();
        return open;
    }
    auto* window = new frmMain(OwnerWidget(owner));
    window->AppObject(appObject);
    window->Tag(tag);
    window->Owner(owner);
    window->show();
    return window;
}

void frmMain::AppObject(std::shared_ptr<IAppObject> appObject) {
    appObject_ = std::move(appObject);
    SkipStep([&] { appObject_->IAppObject_CallBack(std::make_shared<ListListener>(this)); });
}

void frmMain::showEvent(QShowEvent* event) {
    if (!loaded_ && appObject_) {
        loaded_ = true;
        SkipStep([&] {
            const std::shared_ptr<const Picture> icon = appObject_->IAppObject_Icon();
            QPixmap pixmap;
            if (icon && !icon->bytes.empty() &&
                pixmap.loadFromData(icon->bytes.data(), static_cast<uint>(icon->bytes.size()))) {
                setWindowIcon(QIcon(pixmap));
            }
        });
        SkipStep([&] { setWindowTitle(QString::fromStdString(appObject_->IAppObject_Name())); });
        // One inch for the name, 2.33 inches for value and type, in the pixels of the screen
        // the window opens on; known only now.
        const double inch = lvAttr_->logicalDpiX();
        lvAttr_->setColumnWidth(0, qRound(inch));
        lvAttr_->setColumnWidth(1, qRound(inch * 2.33));
        lvAttr_->setColumnWidth(2, qRound(inch * 2.33));
        FillList();
    }
    QWidget::showEvent(event);
}

void frmMain::closeEvent(QCloseEvent* event) {
    // Deleted later, but no longer the block's window: the next show makes a new one.
    closed_ = true;
    QWidget::closeEvent(event);
}

void frmMain::FillList() {
    lvAttr_->clear();
    selectedItem_ = nullptr;
    const QIcon cp = SmallImage(QStringLiteral("cp"));
    SkipStep([&] {
        for (const auto& attribute :
             Need(appObject_->IAppObject_Attributes()).IAttributes_NewEnum()) {
            auto* row = new QTreeWidgetItem(lvAttr_);
            // Each cell on its own: a failing read leaves the row as far as it got.
            SkipStep(
                [&] { row->setText(0, QString::fromStdString(attribute->IAttribute_Name())); });
            SkipStep([&] {
                row->setData(0, kKeyRole,
                             QString::fromStdString(attribute->IAttribute_GlobalKey()));
            });
            SkipStep([&] { row->setData(0, kTagRole, attribute->IAttribute_NodeType()); });
            row->setIcon(0, cp);
            SkipStep(
                [&] { row->setText(1, QString::fromStdString(attribute->IAttribute_Value())); });
            SkipStep([&] {
                row->setText(2, QString::fromStdString(
                                    Need(attribute->IAttribute_SNVTType()).ISNVType_ID()));
            });
        }
    });
}

void frmMain::AttributeChanged(const std::string& globalKey) {
    SkipStep([&] {
        for (const auto& attribute :
             Need(appObject_->IAppObject_Attributes()).IAttributes_NewEnum()) {
            if (attribute->IAttribute_GlobalKey() != globalKey) {
                continue;
            }
            for (int i = 0; i < lvAttr_->topLevelItemCount(); ++i) {
                QTreeWidgetItem* row = lvAttr_->topLevelItem(i);
                if (row->data(0, kKeyRole).toString().toStdString() != globalKey) {
                    continue;
                }
                SkipStep([&] {
                    row->setText(1, QString::fromStdString(attribute->IAttribute_Value()));
                });
                SkipStep([&] {
                    row->setText(2, QString::fromStdString(
                                        Need(attribute->IAttribute_SNVTType()).ISNVType_ID()));
                });
                break;
            }
        }
    });
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
    if (watched == lvAttr_->viewport() && event->type() == QEvent::MouseButtonRelease) {
        selectedItem_ = lvAttr_->currentItem();
    }
    if (watched == lvAttr_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            // The keyboard's double click: the row with the focus opens.
            selectedItem_ = lvAttr_->currentItem();
            QMetaObject::invokeMethod(this, &frmMain::OpenSelectedItem, Qt::QueuedConnection);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void frmMain::OpenSelectedItem() {
    if (selectedItem_ == nullptr || !appObject_) {
        return;
    }
    const std::string key = selectedItem_->data(0, kKeyRole).toString().toStdString();
    std::shared_ptr<IAttribute> chosen;
    SkipStep([&] {
        for (const auto& attribute :
             Need(appObject_->IAppObject_Attributes()).IAttributes_NewEnum()) {
            if (attribute->IAttribute_GlobalKey() == key) {
                chosen = attribute;
                break;
            }
        }
    });
    if (!chosen) {
        return;
    }
    std::string typeClass;
    SkipStep([&] { typeClass = Need(chosen->IAttribute_SNVTType()).ISNVType_GenType(); });
    // A class none of the seven words names has no editor: the double click simply ends.
    if (const std::unique_ptr<ValueEditorDialog> editor = MakeValueEditor(typeClass, nullptr)) {
        editor->DataPoint(chosen);
        editor->ExecOver(this);
        // This window may be gone by now (closed or deleted by the host meanwhile): nothing of
        // it is touched after the editor returns. The editor wrote to the attribute it holds.
    }
}

}  // namespace zerbin
