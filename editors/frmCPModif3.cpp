#include "editors/frmCPModif3.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "base/SkipMode.h"
#include "platform/Messages.h"

namespace zerbin {

frmCPModif3::frmCPModif3(QWidget* parent)
    : ValueEditorDialog(parent),
      cmdCancel_(Button("cmdCancel", QStringLiteral("&Cancel"), this)),
      cmdOk_(Button("cmdOk", QStringLiteral("&OK"), this)),
      cboEnum_(new QComboBox(this)),
      lblName_(BoldLabel("lblName", this)) {
    setObjectName(QStringLiteral("frmCPModif3"));
    cboEnum_->setObjectName(QStringLiteral("cboEnum"));
    cboEnum_->setEditable(false);
    cboEnum_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    cboEnum_->setMinimumContentsLength(20);

    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(lblName_);
    layout->addWidget(cboEnum_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOk_);
    buttons->addWidget(cmdCancel_);
    layout->addLayout(buttons);

    setTabOrder(cmdCancel_, cmdOk_);
    setTabOrder(cmdOk_, cboEnum_);

    connect(cboEnum_, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (index >= 0) {
            selectedCode_ = cboEnum_->itemData(index).toInt();
        }
    });
    connect(cmdOk_, &QPushButton::clicked, this, &frmCPModif3::OkAction);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
}

void frmCPModif3::Load() {
    selectedCode_ = -1;
    SkipStep([&] { lblName_->setText(QString::fromStdString(CurrentPoint()->Name())); });
    {
        // The list selects its first entry by itself as it fills; only the selection below
        // may choose the code.
        const QSignalBlocker quiet(cboEnum_);
        cboEnum_->clear();
        entries_.clear();
        SkipStep(
            [&] { entries_ = EnumEntries(Need(CurrentPoint()->SNVTType()).ISNVType_EnumDesc()); });
        for (const EnumEntry& entry : entries_) {
            cboEnum_->addItem(QString::fromStdString(entry.label), QVariant(int{entry.code}));
        }
        cboEnum_->setCurrentIndex(-1);
    }
    SkipStep(
        [&] { cboEnum_->setCurrentIndex(SelectedEnumIndex(entries_, CurrentPoint()->Value())); });
    cmdCancel_->setFocus();
}

void frmCPModif3::OkAction() {
    try {
        if (selectedCode_ == -1) {
            for (const EnumEntry& entry : entries_) {
                if (QString::fromStdString(entry.label) == cboEnum_->currentText()) {
                    selectedCode_ = entry.code;
                }
            }
        }
        // Only the point shown is written, unlike the numeric and the text editor.
        if (const EditPoint* point = CurrentPoint()) {
            point->Value(std::to_string(selectedCode_));
        }
    } catch (...) {
        ShowMessage("error calculating CP value");
    }
    CloseAfterOk();
}

}  // namespace zerbin
