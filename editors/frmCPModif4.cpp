#include "editors/frmCPModif4.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "base/MMain.h"
#include "base/SkipMode.h"
#include "editors/EditorWindows.h"
#include "platform/Messages.h"

namespace zerbin {
namespace {

// A row's Tag: the stored value of its field, the pending state of the window.
constexpr int kTagRole = Qt::UserRole;

}  // namespace

frmCPModif4::frmCPModif4(QWidget* parent)
    : ValueEditorDialog(parent),
      lblName_(BoldLabel("lblName", this)),
      lvwMain_(new QTreeWidget(this)),
      cmdOk_(Button("cmdOk", QStringLiteral("&Ok"), this)),
      cmdCancel_(Button("cmdCancel", QStringLiteral("&Cancel"), this)) {
    setObjectName(QStringLiteral("frmCPModif4"));
    lvwMain_->setObjectName(QStringLiteral("lvwMain"));
    lvwMain_->setHeaderLabels({QStringLiteral("Field"), QStringLiteral("Value")});
    lvwMain_->setRootIsDecorated(false);
    lvwMain_->setUniformRowHeights(true);
    lvwMain_->setAllColumnsShowFocus(true);
    const int em = lvwMain_->fontMetrics().horizontalAdvance(QLatin1Char('M'));
    lvwMain_->header()->resizeSection(0, em * 12);
    lvwMain_->setMinimumSize(em * 26, em * 12);
    lvwMain_->viewport()->installEventFilter(this);
    lvwMain_->installEventFilter(this);

    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(lblName_);
    layout->addWidget(lvwMain_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOk_);
    buttons->addWidget(cmdCancel_);
    layout->addLayout(buttons);

    setTabOrder(lvwMain_, cmdOk_);
    setTabOrder(cmdOk_, cmdCancel_);

    connect(lvwMain_, &QTreeWidget::itemDoubleClicked, this, [this] { OpenSelectedField(); });
    connect(cmdOk_, &QPushButton::clicked, this, &frmCPModif4::OkAction);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
}

void frmCPModif4::Load() {
    SkipStep([&] { lblName_->setText(QString::fromStdString(CurrentPoint()->Name())); });
    lvwMain_->clear();
    SkipStep([&] {
        for (const auto& field : Need(CurrentPoint()->Fields()).IFields_NewEnum()) {
            auto* row = new QTreeWidgetItem(lvwMain_);
            row->setText(0, QString::fromStdString(field->IField_Name()));
            row->setText(1, QString::fromStdString(field->IField_DispValue()));
            row->setData(0, kTagRole, QString::fromStdString(field->IField_Value()));
        }
    });
    if (lvwMain_->topLevelItemCount() > 0) {
        lvwMain_->setCurrentItem(lvwMain_->topLevelItem(0));
    }
    lvwMain_->setFocus();
}

bool frmCPModif4::eventFilter(QObject* watched, QEvent* event) {
    if (watched == lvwMain_->viewport() &&
        (event->type() == QEvent::MouseButtonPress ||
         event->type() == QEvent::MouseButtonDblClick ||
         event->type() == QEvent::MouseButtonRelease) &&
        static_cast<QMouseEvent*>(event)->button() == Qt::RightButton) {
        // The selected row opens, wherever the pointer stands; so the list must not see the
        // press either, or it would first make the row under the pointer the selected one.
        if (event->type() == QEvent::MouseButtonRelease) {
            OpenSelectedField();
        }
        return true;
    }
    if (watched == lvwMain_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            OpenSelectedField();
            return true;
        }
    }
    return ValueEditorDialog::eventFilter(watched, event);
}

void frmCPModif4::OpenSelectedField() {
    QTreeWidgetItem* row = lvwMain_->currentItem();
    if (row == nullptr || CurrentPoint() == nullptr) {
        return;
    }
    // No error guard of the window's own: a failing step ends the opening, the row stays.
    SkipStep([&] {
        const std::shared_ptr<IField> field =
            Need(CurrentPoint()->Fields()).IFields_Item(row->text(0).toStdString());
        Need(field);
        field->IField_Value(row->data(0, kTagRole).toString().toStdString());
        const std::string typeClass = Need(field->IField_SNVTType()).ISNVType_GenType();
        if (typeClass == "Struct") {
            frmCPModif4 nested(this);
            nested.DataPoint(field);
            nested.exec();
        } else if (const std::unique_ptr<ValueEditorDialog> editor =
                       MakeValueEditor(typeClass, this)) {
            editor->CalledFramModif4(true);
            editor->DataPoint(field);
            editor->exec();
        } else {
            ShowMessage("Unknown or Not modificable Attribute", "Edit Value",
                        MessageIcon::Exclamation);
        }
        row->setText(1, QString::fromStdString(field->IField_DispValue()));
        row->setData(0, kTagRole, QString::fromStdString(field->IField_Value()));
    });
}

void frmCPModif4::OkAction() {
    WriteEveryPointAndClose(
        [&] {
            std::string text;
            for (int i = 0; i < lvwMain_->topLevelItemCount(); ++i) {
                text += " " + lvwMain_->topLevelItem(i)->data(0, kTagRole).toString().toStdString();
            }
            return Trim(text);
        },
        "error calculating CP value");
}

}  // namespace zerbin
