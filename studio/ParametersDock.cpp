#include "studio/ParametersDock.h"

#include <QComboBox>
#include <QHeaderView>
#include <QTableWidget>

#include "interfaces/IAttribute.h"
#include "interfaces/IField.h"
#include "studio/GuardedCall.h"
#include "studio/StudioMessages.h"

namespace zerbin::studio {
namespace {

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// The blank-separated values of a structure, one for each field.
std::vector<std::string> Tokens(const std::string& value) {
    std::vector<std::string> tokens;
    std::size_t from = 0;
    while (true) {
        const std::size_t blank = value.find(' ', from);
        tokens.push_back(value.substr(from, blank - from));
        if (blank == std::string::npos) {
            return tokens;
        }
        from = blank + 1;
    }
}

std::shared_ptr<IAttribute> AttributeOf(const std::shared_ptr<IAppObject>& block,
                                        const std::string& name) {
    const std::shared_ptr<IAttributes> attributes =
        block ? block->IAppObject_Attributes() : nullptr;
    return attributes ? attributes->IAttributes_Item(name) : nullptr;
}

}  // namespace

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
        Submit(item->row(), item->text().toStdString());
    });
}

void ParametersDock::ShowBlock(std::string key, std::shared_ptr<IAppObject> block) {
    key_ = std::move(key);
    block_ = std::move(block);
    Refresh();
}

void ParametersDock::AddRow(const Row& row, const QString& name, const QString& value,
                            const QString& shown, const QString& tip) {
    const int at = table_->rowCount();
    table_->insertRow(at);
    rows_.push_back(row);
    auto* nameItem = new QTableWidgetItem(name);
    nameItem->setFlags(Qt::ItemIsEnabled);
    nameItem->setToolTip(tip);
    auto* shownItem = new QTableWidgetItem(shown);
    shownItem->setFlags(Qt::ItemIsEnabled);
    table_->setItem(at, 0, nameItem);
    table_->setItem(at, 1, new QTableWidgetItem(value));
    table_->setItem(at, 2, shownItem);
}

void ParametersDock::AddChoices(int row, IAttribute& attribute) {
    const auto rules = dynamic_cast<IAttributeRules*>(&attribute);
    if (rules == nullptr) {
        return;
    }
    const auto choices = rules->IAttributeRules_Choices();
    if (choices.empty()) {
        return;
    }
    auto* box = new QComboBox(table_);
    const std::string value = attribute.IAttribute_Value();
    int current = -1;
    for (const auto& [code, label] : choices) {
        box->addItem(Q(label), Q(code));
        if (code == value) {
            current = box->count() - 1;  // the last entry of a code, as the editor selects
        }
    }
    box->setCurrentIndex(current);
    connect(box, &QComboBox::activated, this, [this, row, box](int index) {
        Submit(row, box->itemData(index).toString().toStdString());
    });
    table_->item(row, 1)->setFlags(Qt::ItemIsEnabled);
    table_->setCellWidget(row, 1, box);
}

void ParametersDock::Refresh() {
    filling_ = true;
    table_->setRowCount(0);
    rows_.clear();
    GuardedCall("show the parameters", [&] {
        const std::shared_ptr<IAttributes> attributes =
            block_ ? block_->IAppObject_Attributes() : nullptr;
        if (!attributes) {
            return;
        }
        for (const std::shared_ptr<IAttribute>& attribute : attributes->IAttributes_NewEnum()) {
            if (!attribute->IAttribute_Visible()) {
                continue;
            }
            const std::string name = attribute->IAttribute_Name();
            AddRow({name, -1}, Q(name), Q(attribute->IAttribute_Value()),
                   Q(attribute->IAttribute_DispValue()), Q(attribute->IAttribute_Description()));
            AddChoices(table_->rowCount() - 1, *attribute);
            const std::shared_ptr<IFields> fields = attribute->IAttribute_Fields();
            if (!fields) {
                continue;
            }
            const std::vector<std::string> tokens = Tokens(attribute->IAttribute_Value());
            int index = 0;
            for (const std::shared_ptr<IField>& field : fields->IFields_NewEnum()) {
                const std::string token =
                    static_cast<std::size_t>(index) < tokens.size() ? tokens[index] : "";
                AddRow({name, index}, "    " + Q(field->IField_Name()), Q(token),
                       Q(field->IField_DispValue()), Q(name + "." + field->IField_Name()));
                ++index;
            }
        }
    });
    table_->resizeColumnsToContents();
    filling_ = false;
}

void ParametersDock::Submit(int row, const std::string& text) {
    if (row < 0 || static_cast<std::size_t>(row) >= rows_.size()) {
        return;
    }
    const Row target = rows_[row];
    std::string objection;
    std::string value;
    const bool called = GuardedCall("check the value of " + target.attribute, [&] {
        const std::shared_ptr<IAttribute> attribute = AttributeOf(block_, target.attribute);
        if (!attribute) {
            return;
        }
        std::string whole = text;
        if (target.field >= 0) {
            std::vector<std::string> tokens = Tokens(attribute->IAttribute_Value());
            tokens.resize(std::max(tokens.size(), static_cast<std::size_t>(target.field) + 1));
            tokens[target.field] = text;
            whole.clear();
            for (std::size_t i = 0; i < tokens.size(); ++i) {
                whole += (i == 0 ? "" : " ") + tokens[i];
            }
        }
        value = whole;
        if (auto* rules = dynamic_cast<IAttributeRules*>(attribute.get())) {
            objection = rules->IAttributeRules_Check(whole, value);
        }
    });
    if (!called || !objection.empty()) {
        if (!objection.empty()) {
            ShowMessage(target.attribute + ": " + objection + ".", "Zerbin",
                        MessageIcon::Exclamation);
        }
        // The cell goes back to the value as it stands; later, not inside the table's signal.
        QMetaObject::invokeMethod(this, &ParametersDock::Refresh, Qt::QueuedConnection);
        return;
    }
    // The write refreshes this table; it must not do so inside the table's own signal.
    QMetaObject::invokeMethod(
        this,
        [this, key = key_, name = target.attribute, value] { emit valueEdited(key, name, value); },
        Qt::QueuedConnection);
}

void ParametersDock::Edit(const std::string& attribute, const QString& value) {
    const std::size_t dot = attribute.find('.');
    const std::string name = attribute.substr(0, dot);
    for (int row = 0; row < table_->rowCount(); ++row) {
        const Row& target = rows_[row];
        const bool field = dot != std::string::npos;
        if (target.attribute != name || (target.field >= 0) != field ||
            (field &&
             table_->item(row, 0)->text().trimmed().toStdString() != attribute.substr(dot + 1))) {
            continue;
        }
        if (auto* box = qobject_cast<QComboBox*>(table_->cellWidget(row, 1))) {
            int index = box->findText(value);
            if (index < 0) {
                index = box->findData(value);
            }
            if (index >= 0) {
                box->setCurrentIndex(index);
                emit box->activated(index);
            }
            return;
        }
        table_->item(row, 1)->setText(value);
        return;
    }
}

}  // namespace zerbin::studio
