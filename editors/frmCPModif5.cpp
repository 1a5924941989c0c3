#include "editors/frmCPModif5.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <QVBoxLayout>

#include "base/SkipMode.h"
#include "editors/BitRules.h"
#include "platform/Messages.h"

namespace zerbin {

BitLabel::BitLabel(int index, QWidget* parent) : QLabel(QStringLiteral("0"), parent) {
    setObjectName(QStringLiteral("bit"));
    setProperty("index", index);
    setAlignment(Qt::AlignCenter);
    setFocusPolicy(Qt::StrongFocus);
    setFrameStyle(QFrame::Panel | QFrame::Sunken);
    setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("00")) + 8);
    setToolTip(QStringLiteral("Bit %1").arg(index));
}

void BitLabel::Flip() {
    setText(text() == QLatin1String("1") ? QStringLiteral("0") : QStringLiteral("1"));
}

void BitLabel::mouseDoubleClickEvent(QMouseEvent* event) {
    Flip();
    QLabel::mouseDoubleClickEvent(event);
}

void BitLabel::keyPressEvent(QKeyEvent* event) {
    // The keyboard's way to the double click, so that every bit can be set without a mouse.
    if (event->key() == Qt::Key_Space) {
        Flip();
        return;
    }
    QLabel::keyPressEvent(event);
}

void BitLabel::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    if (hasFocus()) {
        QStylePainter painter(this);
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.rect = contentsRect().adjusted(1, 1, -1, -1);
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, option);
    }
}

frmCPModif5::frmCPModif5(QWidget* parent)
    : ValueEditorDialog(parent),
      lblName_(BoldLabel("lblName", this)),
      label4_(new QLabel(QStringLiteral("High Byte"), this)),
      cmdOk_(Button("cmdOk", QStringLiteral("&OK"), this)),
      cmdCancel_(Button("cmdCancel", QStringLiteral("&Cancel"), this)) {
    setObjectName(QStringLiteral("frmCPModif5"));
    label4_->setObjectName(QStringLiteral("Label4"));
    auto* label3 = new QLabel(QStringLiteral("Low Byte"), this);
    label3->setObjectName(QStringLiteral("Label3"));
    auto* label2 = new QLabel(QStringLiteral("MSB"), this);
    label2->setObjectName(QStringLiteral("Label2"));
    auto* label1 = new QLabel(QStringLiteral("LSB"), this);
    label1->setObjectName(QStringLiteral("Label1"));

    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    // The bits stand close together; the buttons keep the spacing of the other editors.
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(2);
    layout->addLayout(grid);
    grid->addWidget(lblName_, 0, 0, 1, 9);
    grid->addWidget(label4_, 1, 0);
    grid->addWidget(label3, 2, 0);
    for (int i = 0; i < 16; ++i) {
        bit_[static_cast<std::size_t>(i)] = new BitLabel(i, this);
        // The most significant bit of each row stands on the left.
        const int row = i >= 8 ? 1 : 2;
        grid->addWidget(bit_[static_cast<std::size_t>(i)], row, 8 - (i % 8));
    }
    grid->addWidget(label2, 3, 1, 1, 2, Qt::AlignLeft);
    grid->addWidget(label1, 3, 7, 1, 2, Qt::AlignRight);
    grid->setColumnMinimumWidth(0, label3->sizeHint().width() + 12);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOk_);
    buttons->addWidget(cmdCancel_);
    layout->addLayout(buttons);

    for (int i = 15; i > 0; --i) {
        setTabOrder(bit_[static_cast<std::size_t>(i)], bit_[static_cast<std::size_t>(i - 1)]);
    }
    setTabOrder(bit_[0], cmdOk_);
    setTabOrder(cmdOk_, cmdCancel_);

    connect(cmdOk_, &QPushButton::clicked, this, &frmCPModif5::OkAction);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
}

void frmCPModif5::Load() {
    maxBit_ = 15;
    for (BitLabel* label : bit_) {
        label->setText(QStringLiteral("0"));
        label->show();
    }
    label4_->show();
    // A failure ends the load quietly; the window shows what it got so far.
    SkipStep([&] {
        lblName_->setText(QString::fromStdString(CurrentPoint()->Name()));
        maxBit_ = MaxBitFor(Need(CurrentPoint()->SNVTType()).ISNVType_Length());
        if (maxBit_ == 7) {
            for (int i = 8; i < 16; ++i) {
                Bit(i)->hide();
            }
            label4_->hide();
        }
        const std::vector<bool> bits = BitsOfValue(OldValue(), maxBit_);
        for (int i = 0; i <= maxBit_; ++i) {
            Bit(i)->setText(bits[static_cast<std::size_t>(i)] ? QStringLiteral("1")
                                                              : QStringLiteral("0"));
        }
    });
    cmdOk_->setFocus();
}

void frmCPModif5::OkAction() {
    WriteEveryPointAndClose(
        [&] {
            std::vector<std::string> captions;
            for (int i = 0; i <= maxBit_; ++i) {
                captions.push_back(Bit(i)->text().toStdString());
            }
            return SumOfBits(captions);
        },
        "error in calculating the value");
}

}  // namespace zerbin
