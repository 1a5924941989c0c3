#include "studio/ParametersDock.h"

#include <QHeaderView>
#include <QTableWidget>

#include "interfaces/ICanvasElement.h"

namespace zerbin::studio {

ParametersDock::ParametersDock(QWidget* parent)
    : QDockWidget(tr("Parameters"), parent), table_(new QTableWidget(0, 3, this)) {
    setObjectName("parameters");
    table_->setHorizontalHeaderLabels({tr("Parameter"), tr("Value"), tr("Shown as")});
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->verticalHeader()->setVisible(false);
    setWidget(table_);
    connect(table_, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) {
        if (filling_ || item->column() != 1 || !block_) {
            return;
        }
        const std::string name = table_->item(item->row(), 0)->text().toStdString();
        const std::string value = item->text().toStdString();
        // The write refreshes this table; it must not do so inside the table's own signal.
        QMetaObject::invokeMethod(
            this, [this, key = key_, name, value] { emit valueEdited(key, name, value); },
            Qt::QueuedConnection);
    });
}

void ParametersDock::ShowBlock(std::string key, std::shared_ptr<IAppObject> block) {
    key_ = std::move(key);
    block_ = std::move(block);
    Refresh();
}

void ParametersDock::Refresh() {
    filling_ = true;
    table_->setRowCount(0);
    const std::shared_ptr<IAttributes> attributes =
        block_ ? block_->IAppObject_Attributes() : nullptr;
    if (attributes) {
        for (const std::shared_ptr<IAttribute>& attribute : attributes->IAttributes_NewEnum()) {
            if (!attribute->IAttribute_Visible()) {
                continue;
            }
            const int row = table_->rowCount();
            table_->insertRow(row);
            auto* name = new QTableWidgetItem(QString::fromStdString(attribute->IAttribute_Name()));
            name->setFlags(Qt::ItemIsEnabled);
            name->setToolTip(QString::fromStdString(attribute->IAttribute_Description()));
            auto* shown =
                new QTableWidgetItem(QString::fromStdString(attribute->IAttribute_DispValue()));
            shown->setFlags(Qt::ItemIsEnabled);
            table_->setItem(row, 0, name);
            table_->setItem(
                row, 1,
                new QTableWidgetItem(QString::fromStdString(attribute->IAttribute_Value())));
            table_->setItem(row, 2, shown);
        }
    }
    table_->resizeColumnsToContents();
    filling_ = false;
}

void ParametersDock::Edit(const std::string& attribute, const QString& value) {
    for (int row = 0; row < table_->rowCount(); ++row) {
        if (table_->item(row, 0)->text().toStdString() == attribute) {
            table_->item(row, 1)->setText(value);
            return;
        }
    }
}

}  // namespace zerbin::studio
