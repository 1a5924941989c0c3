// The selected block's attributes as a table: name, value (editable), value as the user reads
// it. The block's own parameter list opens on a double click on the block; this table is the
// quick way to set a value. It takes what the value editors take, by the block's own rules:
// a list offers its labels in a drop-down, a structure one row for each field by name, and a
// refused value is named in a message and the cell shows the value as it stands. Every write
// goes through the undo stack.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <QDockWidget>

#include "interfaces/IAppObject.h"

class QTableWidget;

namespace zerbin::studio {

class ParametersDock : public QDockWidget {
    Q_OBJECT

public:
    explicit ParametersDock(QWidget* parent = nullptr);
    void ShowBlock(std::string key, std::shared_ptr<IAppObject> block);
    void Refresh();
    // Edits the value of an attribute, or of a field as "attribute.field", as a user would:
    // typing into its cell, or choosing the entry whose label or code is value in its list.
    void Edit(const std::string& attribute, const QString& value);

signals:
    void valueEdited(const std::string& key, const std::string& attribute,
                     const std::string& value);

private:
    // What a row of the table stands for: an attribute, or one field of a structure.
    struct Row {
        std::string attribute;
        int field = -1;  // the field's place in the structure's value; -1 for the attribute
    };

    void AddRow(const Row& row, const QString& name, const QString& value, const QString& shown,
                const QString& tip);
    void AddChoices(int row, IAttribute& attribute);
    // Checks the value a user gave a row and sends it on, or names why not and shows the
    // value as it stands.
    void Submit(int row, const std::string& text);

    std::string key_;
    std::shared_ptr<IAppObject> block_;
    QTableWidget* table_;
    std::vector<Row> rows_;
    bool filling_ = false;
};

}  // namespace zerbin::studio
