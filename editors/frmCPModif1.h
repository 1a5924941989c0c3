// frmCPModif1: the modal editor of one numeric value. Shows the value, its limits and its unit
// in the user's units, lets only text of number shape be typed, checks the range on OK and
// writes the value back in stored form.
#pragma once

#include <memory>
#include <string>

#include "editors/NumberRules.h"
#include "editors/ValueEditorDialog.h"
#include "interfaces/IHostServices.h"

class QCheckBox;
class QLineEdit;

namespace zerbin {

class frmCPModif1 : public ValueEditorDialog {
    Q_OBJECT

public:
    explicit frmCPModif1(QWidget* parent = nullptr);

    // Also takes the decimal separator in force afresh.
    void DataPoint(std::shared_ptr<IObject> point) override;

protected:
    void Load() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The box's text, selection and caret as the key filter sees them.
    NumericKeyInput BoxAsItIs() const;
    // Runs one character key through the filter; false when the box should take the key
    // event as it is.
    bool ApplyKey(char32_t key);
    void PasteThroughFilter();
    void OkAction();

    QLabel* lblName_;
    QLineEdit* txtNewCPValue_;
    QLabel* lblUnits_;
    QLabel* lblMin_;
    QLabel* lblMax_;
    QCheckBox* chkInvalid_;
    QPushButton* cmdOk_;
    QPushButton* cmdCancel_;

    std::shared_ptr<IUnitConverter> converter_;
    std::string minText_;
    std::string maxText_;
    int decimals_ = 0;
    std::string valueText_;
};

}  // namespace zerbin
