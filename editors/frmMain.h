// frmMain: the parameter list of a block. One row for each attribute with its stored value
// and its type; a double click (or Enter) opens the value editor of the row's class. The
// window listens to the block, so that a value changed anywhere shows at once in its row.
#pragma once

#include <QWidget>

#include <memory>
#include <string>

#include "interfaces/IAppObject.h"

class QTreeWidget;
class QTreeWidgetItem;

namespace zerbin {

class frmMain : public QWidget {
    Q_OBJECT

public:
    // The window is deleted when the user closes it.
    explicit frmMain(QWidget* owner = nullptr);

    // Shows the open list of the block (the window whose tag is the block's global key), or
    // makes a new one owned by owner (an IHostWindow, or nothing for a window of its own).
    static frmMain* Show(const std::shared_ptr<IAppObject>& appObject,
                         const std::shared_ptr<IObject>& owner);
    // The open list window whose tag is tag; nullptr when there is none.
    static frmMain* FindByTag(const std::string& tag);

    // Stores the block and registers the window with it as a listener.
    void AppObject(std::shared_ptr<IAppObject> appObject);
    std::shared_ptr<IAppObject> AppObject() const { return appObject_; }
    void Owner(std::shared_ptr<IObject> owner) { owner_ = std::move(owner); }
    std::shared_ptr<IObject> Owner() const { return owner_; }
    void Tag(const std::string& tag) { tag_ = tag; }
    const std::string& Tag() const { return tag_; }

    // Refreshes the value and type of every row whose attribute has this global key.
    void AttributeChanged(const std::string& globalKey);
    // Opens the editor of the attribute of the remembered row and returns when it closes;
    // nothing without a row. The double click and Enter call it from the event loop.
    void OpenSelectedItem();

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void FillList();

    QTreeWidget* lvAttr_;
    std::shared_ptr<IAppObject> appObject_;
    std::shared_ptr<IObject> owner_;
    std::string tag_;
    QTreeWidgetItem* selectedItem_ = nullptr;
    bool loaded_ = false;
    bool closed_ = false;
};

}  // namespace zerbin
