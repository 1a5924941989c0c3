// frmCPModif4: the modal editor of a Struct value. Lists the fields with their values, opens
// the value editor of a field's class on a double click (or a release of the right button, or
// Enter), and on OK joins the field values into the value of the structure.
#pragma once

#include "editors/ValueEditorDialog.h"

class QTreeWidget;
class QTreeWidgetItem;

namespace zerbin {

class frmCPModif4 : public ValueEditorDialog {
    Q_OBJECT

public:
    explicit frmCPModif4(QWidget* parent = nullptr);

    // Opens the field of the selected row in its editor; nothing without a selected row.
    void OpenSelectedField();

protected:
    void Load() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void OkAction();

    QLabel* lblName_;
    QTreeWidget* lvwMain_;
    QPushButton* cmdOk_;
    QPushButton* cmdCancel_;
};

}  // namespace zerbin
