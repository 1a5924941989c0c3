#include "editors/ValueEditorDialog.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QWindow>

#include "base/SkipMode.h"

namespace zerbin {

ValueEditorDialog::ValueEditorDialog(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                          Qt::WindowCloseButtonHint | Qt::MSWindowsFixedSizeDialogHint) {
    setWindowTitle(QString::fromLatin1(kCaption));
    setModal(true);
}

void ValueEditorDialog::DataPoint(std::shared_ptr<IObject> point) {
    points_.emplace_back(std::move(point));
    current_ = points_.size() - 1;
    oldValue_.clear();
    SkipStep([&] { oldValue_ = points_.back().Value(); });
}

void ValueEditorDialog::CalledFramModif4(bool calledFromStructure) {
    calledFramModif4_ = calledFromStructure;
}

int ValueEditorDialog::ExecOver(QWidget* owner) {
    if (owner != nullptr && owner->window()->windowHandle() != nullptr) {
        create();
        // Kept on top of the owner and placed over it, as a child window would be; a
        // transient parent is held weakly, so the owner may go first.
        windowHandle()->setTransientParent(owner->window()->windowHandle());
    }
    return exec();
}

const EditPoint* ValueEditorDialog::CurrentPoint() const {
    return points_.empty() ? nullptr : &points_[current_];
}

void ValueEditorDialog::showEvent(QShowEvent* event) {
    if (!loaded_ && !points_.empty()) {
        loaded_ = true;
        Load();
    }
    QDialog::showEvent(event);
}

void ValueEditorDialog::keyPressEvent(QKeyEvent* event) {
    // With no cancel button Esc does not close the window, wherever the focus stands.
    if (event->key() == Qt::Key_Escape) {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void ValueEditorDialog::CloseAfterOk() {
    calledFramModif4_ = false;
    accept();
}

void ValueEditorDialog::done(int result) {
    if (calledFramModif4_ && !points_.empty()) {
        SkipStep([&] { points_[current_].Value(oldValue_); });
    }
    points_.clear();
    current_ = 0;
    calledFramModif4_ = false;
    loaded_ = false;
    QDialog::done(result);
}

QLabel* ValueEditorDialog::BoldLabel(const char* objectName, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setObjectName(QString::fromLatin1(objectName));
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

QPushButton* ValueEditorDialog::Button(const char* objectName, const QString& caption,
                                       QWidget* parent) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(QString::fromLatin1(objectName));
    button->setAutoDefault(false);
    button->setDefault(false);
    return button;
}

}  // namespace zerbin
