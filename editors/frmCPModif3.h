// frmCPModif3: the modal editor of an Enum value: a drop-down list of the labels of the
// enumeration; the value stored is the code of the label chosen.
#pragma once

#include <cstdint>
#include <vector>

#include "editors/EnumRules.h"
#include "editors/ValueEditorDialog.h"

class QComboBox;

namespace zerbin {

class frmCPModif3 : public ValueEditorDialog {
    Q_OBJECT

public:
    explicit frmCPModif3(QWidget* parent = nullptr);

protected:
    void Load() override;

private:
    void OkAction();

    QPushButton* cmdCancel_;
    QPushButton* cmdOk_;
    QComboBox* cboEnum_;
    QLabel* lblName_;
    std::vector<EnumEntry> entries_;
    int32_t selectedCode_ = -1;
};

}  // namespace zerbin
