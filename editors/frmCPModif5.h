// frmCPModif5: the modal editor of a Bitfield value: one label for each bit, 8 or 16 of them,
// flipped by a double click (or Space when the label has the focus); OK adds the bits up to a
// decimal number.
#pragma once

#include <array>

#include <QLabel>

#include "editors/ValueEditorDialog.h"

namespace zerbin {

// One bit of the value: "0" or "1", flipped by a double click or by Space.
class BitLabel : public QLabel {
    Q_OBJECT

public:
    BitLabel(int index, QWidget* parent);
    void Flip();

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

class frmCPModif5 : public ValueEditorDialog {
    Q_OBJECT

public:
    explicit frmCPModif5(QWidget* parent = nullptr);

    // The label of bit index, 0 to 15.
    BitLabel* Bit(int index) const { return bit_.at(static_cast<std::size_t>(index)); }

protected:
    void Load() override;

private:
    void OkAction();

    QLabel* lblName_;
    std::array<BitLabel*, 16> bit_{};
    QLabel* label4_;
    QPushButton* cmdOk_;
    QPushButton* cmdCancel_;
    int maxBit_ = 15;
};

}  // namespace zerbin
