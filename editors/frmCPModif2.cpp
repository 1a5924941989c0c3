#include "editors/frmCPModif2.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "base/SkipMode.h"
#include "base/Utf8.h"
#include "editors/KeyCodes.h"
#include "editors/TextRules.h"
#include "platform/Messages.h"

namespace zerbin {

frmCPModif2::frmCPModif2(QWidget* parent)
    : ValueEditorDialog(parent),
      lblName_(BoldLabel("lblName", this)),
      txtNewCPValue_(new QLineEdit(this)),
      cmdOk_(Button("cmdOk", QStringLiteral("&OK"), this)),
      cmdCancel_(Button("cmdCancel", QStringLiteral("&Cancel"), this)) {
    setObjectName(QStringLiteral("frmCPModif2"));
    txtNewCPValue_->setObjectName(QStringLiteral("txtNewCPValue"));
    txtNewCPValue_->installEventFilter(this);

    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(lblName_);
    layout->addWidget(txtNewCPValue_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOk_);
    buttons->addWidget(cmdCancel_);
    layout->addLayout(buttons);

    setTabOrder(txtNewCPValue_, cmdOk_);
    setTabOrder(cmdOk_, cmdCancel_);

    connect(txtNewCPValue_, &QLineEdit::textChanged, this, &frmCPModif2::TextChanged);
    connect(cmdOk_, &QPushButton::clicked, this, &frmCPModif2::OkAction);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
}

void frmCPModif2::FitBoxToLength(int32_t limit) {
    // Wide enough for the longest text the type allows in its widest characters, so that no
    // part of a value scrolls out of sight; only a screen too narrow for that stops it.
    const QFontMetrics metrics = txtNewCPValue_->fontMetrics();
    int widest = 0;
    for (int byte = 0x20; byte <= 0xFF; ++byte) {
        const auto c = static_cast<char32_t>(Windows1252CodePoint(static_cast<uint8_t>(byte)));
        if (FitsTextValue(c)) {
            widest = std::max(widest, metrics.horizontalAdvance(QString::fromUcs4(&c, 1)));
        }
    }
    // The box's frame and margins, as its own size hint counts them around 17 "x".
    const int frame = txtNewCPValue_->QLineEdit::sizeHint().width() -
                      17 * metrics.horizontalAdvance(QLatin1Char('x'));
    const int cursor = 2;
    int width = frame + widest * std::max(limit, 0) + cursor;
    if (const QScreen* shown = screen()) {
        width = std::min(width, shown->availableGeometry().width() * 3 / 4);
    }
    txtNewCPValue_->setFixedWidth(std::max(width, txtNewCPValue_->QLineEdit::sizeHint().width()));
}

void frmCPModif2::Load() {
    SkipStep([&] { lblName_->setText(QString::fromStdString(CurrentPoint()->Name())); });
    SkipStep([&] { FitBoxToLength(Need(CurrentPoint()->SNVTType()).ISNVType_Length()); });
    {
        const QSignalBlocker quiet(txtNewCPValue_);
        txtNewCPValue_->clear();
    }
    // A stored value that is too long is reported and cut here, as any change is.
    accepted_.clear();
    loading_ = true;
    SkipStep([&] { txtNewCPValue_->setText(QString::fromStdString(CurrentPoint()->Value())); });
    loading_ = false;
    txtNewCPValue_->selectAll();
    txtNewCPValue_->setFocus();
}

void frmCPModif2::TextChanged(const QString& text) {
    // Every way in (typing, paste, drop, load) ends here, so the code page is kept here too:
    // what the box shows is what the 8-bit value will hold, and the user hears of what it
    // cannot hold rather than finding a "?" in the value later.
    std::u32string characters = text.toStdU32String();
    const auto unfit = std::find_if_not(characters.begin(), characters.end(), FitsTextValue);
    if (unfit != characters.end()) {
        ShowMessage(UnfitCharacterMessage(*unfit), kDefaultTitle, MessageIcon::Exclamation);
        if (loading_) {
            // Nothing typed to go back to: the stored value loses only what it cannot hold.
            std::erase_if(characters, [](char32_t c) { return !FitsTextValue(c); });
            txtNewCPValue_->setText(QString::fromStdU32String(characters));
        } else {
            // The change is refused whole; the caret stays where the change began.
            const int caret =
                txtNewCPValue_->cursorPosition() - static_cast<int>(text.size() - accepted_.size());
            txtNewCPValue_->setText(accepted_);
            txtNewCPValue_->setCursorPosition(std::max(caret, 0));
        }
        return;
    }
    if (CurrentPoint() == nullptr) {
        return;
    }
    SkipStep([&] {
        const int32_t limit = Need(CurrentPoint()->SNVTType()).ISNVType_Length();
        const TextLengthVerdict verdict = CheckTextLength(text.toStdString(), limit);
        if (verdict.tooLong) {
            ShowMessage(verdict.message, "Name too long", MessageIcon::Exclamation);
            txtNewCPValue_->setText(QString::fromStdString(verdict.cut));
        }
    });
    accepted_ = txtNewCPValue_->text();
}

bool frmCPModif2::eventFilter(QObject* watched, QEvent* event) {
    if (watched != txtNewCPValue_ || event->type() != QEvent::KeyPress) {
        return ValueEditorDialog::eventFilter(watched, event);
    }
    const char32_t key = CharacterKey(*static_cast<QKeyEvent*>(event));
    if (key == 0) {
        return false;
    }
    const TextKeyDecision decision = FilterTextKey(key);
    switch (decision.action) {
        case TextKeyAction::Restore:
            SkipStep(
                [&] { txtNewCPValue_->setText(QString::fromStdString(CurrentPoint()->Value())); });
            return true;
        case TextKeyAction::Confirm:
            OkAction();
            return true;
        case TextKeyAction::BackspaceLast:
            if (!txtNewCPValue_->text().isEmpty()) {
                txtNewCPValue_->end(false);
            }
            return false;
        case TextKeyAction::Pass:
            break;
    }
    if (decision.character == key) {
        return false;
    }
    txtNewCPValue_->insert(QString::fromUcs4(&decision.character, 1));
    return true;
}

void frmCPModif2::OkAction() {
    WriteEveryPointAndClose([&] { return txtNewCPValue_->text().toStdString(); },
                            "error calculating CP value");
}

}  // namespace zerbin
