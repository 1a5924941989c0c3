#include "editors/QtAdapters.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>

#include <string>
#include <vector>

#include "editors/EditorWindows.h"
#include "editors/ValueEditorDialog.h"
#include "editors/frmMain.h"
#include "interfaces/IEditors.h"
#include "platform/EditorPort.h"
#include "platform/Events.h"
#include "platform/Messages.h"

namespace zerbin {
namespace {

bool WidgetsRunning() {
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

// The window a modal window of the component belongs to: the modal one on top, else the
// active one.
QWidget* ActiveWindow() {
    if (QWidget* modal = QApplication::activeModalWidget()) {
        return modal;
    }
    return QApplication::activeWindow();
}

QMessageBox::Icon BoxIcon(MessageIcon icon) {
    switch (icon) {
        case MessageIcon::Critical:
            return QMessageBox::Critical;
        case MessageIcon::Question:
            return QMessageBox::Question;
        case MessageIcon::Exclamation:
            return QMessageBox::Warning;
        case MessageIcon::Information:
            return QMessageBox::Information;
        case MessageIcon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons BoxButtons(MessageButtons buttons) {
    switch (buttons) {
        case MessageButtons::OkCancel:
            return QMessageBox::Ok | QMessageBox::Cancel;
        case MessageButtons::YesNo:
            return QMessageBox::Yes | QMessageBox::No;
        case MessageButtons::YesNoCancel:
            return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
        case MessageButtons::Ok:
            break;
    }
    return QMessageBox::Ok;
}

class QtMessageSink : public MessageSink {
public:
    explicit QtMessageSink(std::shared_ptr<MessageSink> fallback)
        : fallback_(std::move(fallback)) {}

    int Show(const Message& message) override {
        if (!WidgetsRunning()) {
            return fallback_->Show(message);
        }
        return ShowMessageBox(message);
    }

private:
    std::shared_ptr<MessageSink> fallback_;
};

// The editor an attribute keeps for IAttribute_SetValue. It gathers the points given and makes
// a fresh window for each showing, so that no window outlives the application.
class QtValueEditor : public IValueEditor {
public:
    explicit QtValueEditor(std::string editorName) : editorName_(std::move(editorName)) {}

    void DataPoint(std::shared_ptr<IObject> point) override { points_.push_back(std::move(point)); }

    void ShowModal() override {
        // Taken out first: the attribute must not stay referenced after the window closes.
        std::vector<std::shared_ptr<IObject>> points = std::move(points_);
        points_.clear();
        if (!WidgetsRunning()) {
            return;
        }
        const std::unique_ptr<ValueEditorDialog> dialog =
            MakeValueEditorNamed(editorName_, nullptr);
        if (!dialog) {
            return;
        }
        for (auto& point : points) {
            dialog->DataPoint(std::move(point));
        }
        dialog->ExecOver(ActiveWindow());
    }

private:
    std::string editorName_;
    std::vector<std::shared_ptr<IObject>> points_;
};

class QtEditorFactory : public IEditorFactory {
public:
    std::shared_ptr<IValueEditor> CreateValueEditor(const std::string& editorName) override {
        if (!IsValueEditorName(editorName)) {
            return nullptr;
        }
        return std::make_shared<QtValueEditor>(editorName);
    }

    void ShowParameterList(std::shared_ptr<IAppObject> appObject,
                           std::shared_ptr<IObject> owner) override {
        if (WidgetsRunning() && appObject) {
            frmMain::Show(appObject, owner);
        }
    }
};

class QtHostWindow : public IHostWindow {
public:
    explicit QtHostWindow(QWidget* window) : window_(window) {}
    void* HostWindow() override { return window_.data(); }

private:
    QPointer<QWidget> window_;
};

}  // namespace

int ShowMessageBox(const Message& message) {
    // The component breaks its lines the Windows way.
    QMessageBox box(BoxIcon(message.icon), QString::fromStdString(message.title),
                    QString::fromStdString(message.text).replace("\r\n", "\n"),
                    BoxButtons(message.buttons), ActiveWindow());
    switch (box.exec()) {
        case QMessageBox::Cancel:
            return kMessageCancel;
        case QMessageBox::Yes:
            return kMessageYes;
        case QMessageBox::No:
            return kMessageNo;
        default:
            return kMessageOk;
    }
}

void InstallQtAdapters() {
    SetMessageSink(std::make_shared<QtMessageSink>(CurrentMessageSink()));
    SetEventPump([] { QCoreApplication::processEvents(); });
    SetEditorFactory(std::make_shared<QtEditorFactory>());
}

void RemoveQtAdapters() {
    SetMessageSink(nullptr);
    SetEventPump({});
    SetEditorFactory(nullptr);
}

std::shared_ptr<IObject> HostWindowOf(QWidget* window) {
    return std::make_shared<QtHostWindow>(window);
}

}  // namespace zerbin
