#include "editors/frmCPModif1.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>

#include "base/MMain.h"
#include "base/SkipMode.h"
#include "datatypes/UnitConverter.h"
#include "editors/KeyCodes.h"
#include "editors/NumberRules.h"
#include "platform/Messages.h"

namespace zerbin {

frmCPModif1::frmCPModif1(QWidget* parent)
    : ValueEditorDialog(parent),
      lblName_(BoldLabel("lblName", this)),
      txtNewCPValue_(new QLineEdit(this)),
      lblUnits_(BoldLabel("lblUnits", this)),
      lblMin_(BoldLabel("lblMin", this)),
      lblMax_(BoldLabel("lblMax", this)),
      chkInvalid_(new QCheckBox(QStringLiteral("Invalid"), this)),
      cmdOk_(Button("cmdOk", QStringLiteral("&OK"), this)),
      cmdCancel_(Button("cmdCancel", QStringLiteral("&Cancel"), this)) {
    setObjectName(QStringLiteral("frmCPModif1"));
    txtNewCPValue_->setObjectName(QStringLiteral("txtNewCPValue"));
    chkInvalid_->setObjectName(QStringLiteral("chkInvalid"));
    chkInvalid_->hide();
    auto* label5 = new QLabel(QStringLiteral("Min Value:"), this);
    label5->setObjectName(QStringLiteral("Label5"));
    auto* label2 = new QLabel(QStringLiteral("Max Value:"), this);
    label2->setObjectName(QStringLiteral("Label2"));

    // Whatever reaches the box, typed or pasted, goes through the key filter; the menu, drops
    // and the selection paste would bypass it, so the box offers none of them.
    txtNewCPValue_->installEventFilter(this);
    txtNewCPValue_->setContextMenuPolicy(Qt::NoContextMenu);
    txtNewCPValue_->setAcceptDrops(false);
    txtNewCPValue_->setMinimumWidth(
        txtNewCPValue_->fontMetrics().horizontalAdvance(QStringLiteral("-0000000000.000")));

    auto* grid = new QGridLayout(this);
    grid->setSizeConstraint(QLayout::SetFixedSize);
    grid->addWidget(lblName_, 0, 0, 1, 4);
    grid->addWidget(txtNewCPValue_, 1, 0, 1, 3);
    grid->addWidget(lblUnits_, 1, 3);
    grid->addWidget(label5, 2, 0);
    grid->addWidget(lblMin_, 2, 1);
    grid->addWidget(label2, 3, 0);
    grid->addWidget(lblMax_, 3, 1);
    grid->addWidget(chkInvalid_, 4, 0);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOk_);
    buttons->addWidget(cmdCancel_);
    grid->addLayout(buttons, 5, 0, 1, 4);
    grid->setColumnStretch(2, 1);

    setTabOrder(txtNewCPValue_, cmdCancel_);
    setTabOrder(cmdCancel_, cmdOk_);

    connect(txtNewCPValue_, &QLineEdit::textChanged, this, [this](const QString& text) {
        cmdOk_->setEnabled(IsCompleteNumber(text.toStdString()));
    });
    connect(cmdOk_, &QPushButton::clicked, this, &frmCPModif1::OkAction);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
}

void frmCPModif1::DataPoint(std::shared_ptr<IObject> point) {
    ValueEditorDialog::DataPoint(std::move(point));
    DetectDecimalSeparator();
}

void frmCPModif1::Load() {
    const EditPoint& point = *CurrentPoint();
    std::string typeId;
    minText_.clear();
    maxText_.clear();
    decimals_ = 0;
    valueText_.clear();
    // Each step that fails is passed over, so that the window shows what it can.
    SkipStep([&] { typeId = point.TypeId(); });
    converter_ = FollowingUnitConverter();
    SkipStep([&] { valueText_ = converter_->ToDisplayValue(typeId, point.Value()); });
    SkipStep([&] { decimals_ = converter_->DecimalPlaces(typeId); });
    SkipStep([&] {
        if (const auto limits = point.StoredLimits()) {
            minText_ = converter_->ToDisplayValue(typeId, limits->first);
            maxText_ = converter_->ToDisplayValue(typeId, limits->second);
        } else {
            minText_ = converter_->MinimumFor(typeId);
            maxText_ = converter_->MaximumFor(typeId);
        }
    });
    SkipStep([&] {
        const std::string unit = Trim(converter_->DisplayUnit(typeId));
        lblUnits_->setText(unit.empty() ? QString() : QString::fromStdString("[" + unit + "]"));
    });
    const auto limitLabel = [](const std::string& limit) {
        return limit.empty() ? QStringLiteral("---")
                             : QString::fromStdString(AbbreviateNumber(limit, DecimalSeparator()));
    };
    lblMin_->setText(limitLabel(minText_));
    lblMax_->setText(limitLabel(maxText_));
    cmdOk_->setEnabled(true);
    {
        const QSignalBlocker quiet(txtNewCPValue_);
        txtNewCPValue_->clear();
    }
    txtNewCPValue_->setText(QString::fromStdString(valueText_));
    SkipStep([&] { lblName_->setText(QString::fromStdString(point.Name())); });
    chkInvalid_->setChecked(false);
    chkInvalid_->hide();
    txtNewCPValue_->selectAll();
    txtNewCPValue_->setFocus();
}

bool frmCPModif1::eventFilter(QObject* watched, QEvent* event) {
    if (watched != txtNewCPValue_) {
        return ValueEditorDialog::eventFilter(watched, event);
    }
    if (event->type() == QEvent::KeyPress) {
        auto* keyEvent = static_cast<QKeyEvent*>(event);
        if (keyEvent->matches(QKeySequence::Paste)) {
            PasteThroughFilter();
            return true;
        }
        const char32_t key = CharacterKey(*keyEvent);
        return key != 0 && ApplyKey(key);
    }
    if (event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::MiddleButton) {
        return true;
    }
    return false;
}

NumericKeyInput frmCPModif1::BoxAsItIs() const {
    NumericKeyInput input;
    const QString text = txtNewCPValue_->text();
    input.text = text.toStdU32String();
    input.selectionLength = txtNewCPValue_->selectedText().toStdU32String().size();
    const int caret = txtNewCPValue_->hasSelectedText() ? txtNewCPValue_->selectionStart()
                                                        : txtNewCPValue_->cursorPosition();
    input.caret = text.left(caret).toStdU32String().size();
    input.separator = static_cast<char32_t>(DecimalSeparator().front());
    input.decimals = decimals_;
    return input;
}

bool frmCPModif1::ApplyKey(char32_t key) {
    NumericKeyInput input = BoxAsItIs();
    input.key = key;
    const NumericKeyDecision decision = FilterNumericKey(input);
    if (decision.emptyFirst) {
        txtNewCPValue_->clear();
    }
    switch (decision.action) {
        case NumericKeyAction::Drop:
            return true;
        case NumericKeyAction::Restore:
            txtNewCPValue_->setText(QString::fromStdString(valueText_));
            return true;
        case NumericKeyAction::Confirm:
            if (cmdOk_->isEnabled()) {
                OkAction();
            }
            return true;
        case NumericKeyAction::Pass:
            break;
    }
    if (decision.character == key) {
        return false;
    }
    txtNewCPValue_->insert(QString::fromUcs4(&decision.character, 1));
    return true;
}

void frmCPModif1::PasteThroughFilter() {
    const std::u32string pasted = QApplication::clipboard()->text().toStdU32String();
    const NumericPasteResult result = FilterNumericPaste(BoxAsItIs(), pasted);
    if (!result.accepted) {
        ShowMessage(RefusedPasteMessage(pasted, result.refused), "Warning",
                    MessageIcon::Exclamation);
        return;
    }
    txtNewCPValue_->setText(QString::fromStdU32String(result.text));
    txtNewCPValue_->setCursorPosition(
        static_cast<int>(QString::fromStdU32String(result.text.substr(0, result.caret)).size()));
}

void frmCPModif1::OkAction() {
    const std::string text = txtNewCPValue_->text().toStdString();
    // The text shown at load stands for the stored value, and writing that again is not
    // harmless: a parameter kept divided by a factor would lose the factor on every untouched
    // OK. So that text writes nothing; the limits are still checked.
    const bool untouched = text == valueText_;
    try {
        const bool written = ForEachPoint([&](const EditPoint& point) {
            const RangeVerdict verdict = CheckRange(text, minText_, maxText_, *converter_);
            if (!verdict.inRange) {
                ShowMessage(verdict.message, "Warning", MessageIcon::Exclamation);
                txtNewCPValue_->setFocus();
                txtNewCPValue_->setText(QString::fromStdString(verdict.repair));
                txtNewCPValue_->selectAll();
                return false;
            }
            if (!untouched) {
                point.Value(converter_->FromDisplayValue(point.TypeId(), text));
            }
            return true;
        });
        if (!written) {
            return;
        }
    } catch (...) {
        // The unit service or a value write failed: said as the other editors say it.
        ShowMessage("error calculating CP value");
    }
    CloseAfterOk();
}

}  // namespace zerbin
