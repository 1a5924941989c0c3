// frmCPModif2: the modal editor of a Textual value. Keeps the text within the length of its
// type and within the 8-bit code page while it is typed or pasted, and turns typed blanks into
// underscores. What is typed is what is stored.
#pragma once

#include <cstdint>

#include "editors/ValueEditorDialog.h"

class QLineEdit;

namespace zerbin {

class frmCPModif2 : public ValueEditorDialog {
    Q_OBJECT

public:
    explicit frmCPModif2(QWidget* parent = nullptr);

protected:
    void Load() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void FitBoxToLength(int32_t limit);
    void TextChanged(const QString& text);
    void OkAction();

    QLabel* lblName_;
    QLineEdit* txtNewCPValue_;
    QPushButton* cmdOk_;
    QPushButton* cmdCancel_;

    QString accepted_;      // the text as the last change left it, what a refused change restores
    bool loading_ = false;  // the stored value is going in
};

}  // namespace zerbin
