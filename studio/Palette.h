// The library's block types grouped by category, with their icons and names; an entry is
// dragged onto the canvas to place a block of its type.
#pragma once

#include <string>

#include <QTreeWidget>

#include "studio/BlockFactory.h"

namespace zerbin::studio {

class Palette : public QTreeWidget {
    Q_OBJECT

public:
    explicit Palette(QWidget* parent = nullptr);
    void Fill(const BlockFactory& factory);
    // The item of a type, or nullptr.
    QTreeWidgetItem* Entry(const std::string& type) const;
    // Shows only the types whose name, category, type or description holds the text (in any
    // case); an empty text shows them all. Gives how many are shown.
    int Filter(const QString& text);
    static constexpr int kTypeRole = Qt::UserRole + 1;

signals:
    void datasheetRequested(const std::string& type);
    void placeRequested(const std::string& type);

protected:
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QList<QTreeWidgetItem*>& items) const override;
    void contextMenuEvent(QContextMenuEvent* event) override;
};

}  // namespace zerbin::studio
