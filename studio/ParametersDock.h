// The selected block's attributes as a plain table: name, stored value (editable), value as
// the user reads it. The block's own parameter list opens on a double click on the block; this
// table is the quick way to set a value, and every write goes through the undo stack.
#pragma once

#include <memory>
#include <string>

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
    // Edits the stored value of an attribute as a user typing into the table would.
    void Edit(const std::string& attribute, const QString& value);

signals:
    void valueEdited(const std::string& key, const std::string& attribute,
                     const std::string& value);

private:
    std::string key_;
    std::shared_ptr<IAppObject> block_;
    QTableWidget* table_;
    bool filling_ = false;
};

}  // namespace zerbin::studio
