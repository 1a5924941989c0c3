#include "studio/Palette.h"

#include <map>

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <QMimeData>

#include "studio/CanvasScene.h"
#include "zerbin/QtPicture.h"

namespace zerbin::studio {

Palette::Palette(QWidget* parent) : QTreeWidget(parent) {
    setObjectName("palette");
    setHeaderHidden(true);
    setDragEnabled(true);
    setDragDropMode(DragOnly);
    setIconSize(QSize(20, 20));
    setRootIsDecorated(true);
    connect(this, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
        const QString type = item->data(0, kTypeRole).toString();
        if (!type.isEmpty()) {
            emit placeRequested(type.toStdString());
        }
    });
}

void Palette::Fill(const BlockFactory& factory) {
    clear();
    std::map<QString, QTreeWidgetItem*> categories;
    for (const std::string& type : factory.Types()) {
        const BlockTypeInfo info = factory.Describe(type);
        QString category = QString::fromStdString(info.category);
        if (category.isEmpty()) {
            category = tr("Other");
        }
        QTreeWidgetItem*& group = categories[category];
        if (group == nullptr) {
            group = new QTreeWidgetItem(QStringList{category});
            group->setFlags(Qt::ItemIsEnabled);
            QFont font = group->font(0);
            font.setBold(true);
            group->setFont(0, font);
        }
        const QString name =
            info.name.empty() ? QString::fromStdString(type) : QString::fromStdString(info.name);
        auto* item = new QTreeWidgetItem(group, QStringList{name});
        item->setData(0, kTypeRole, QString::fromStdString(type));
        item->setToolTip(0, QString::fromStdString(type + "\n" + info.description));
        item->setIcon(0, ToQIcon(info.icon.get()));
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled);
    }
    for (const auto& [name, group] : categories) {
        addTopLevelItem(group);
    }
    expandAll();
}

QTreeWidgetItem* Palette::Entry(const std::string& type) const {
    for (int i = 0; i < topLevelItemCount(); ++i) {
        QTreeWidgetItem* group = topLevelItem(i);
        for (int j = 0; j < group->childCount(); ++j) {
            if (group->child(j)->data(0, kTypeRole).toString().toStdString() == type) {
                return group->child(j);
            }
        }
    }
    return nullptr;
}

int Palette::Filter(const QString& text) {
    int shown = 0;
    for (int i = 0; i < topLevelItemCount(); ++i) {
        QTreeWidgetItem* group = topLevelItem(i);
        const bool groupMatches = group->text(0).contains(text, Qt::CaseInsensitive);
        int inGroup = 0;
        for (int j = 0; j < group->childCount(); ++j) {
            QTreeWidgetItem* item = group->child(j);
            const bool matches = groupMatches ||
                                 item->text(0).contains(text, Qt::CaseInsensitive) ||
                                 item->toolTip(0).contains(text, Qt::CaseInsensitive);
            item->setHidden(!matches);
            inGroup += matches ? 1 : 0;
        }
        group->setHidden(inGroup == 0);
        shown += inGroup;
    }
    return shown;
}

QStringList Palette::mimeTypes() const {
    return {CanvasView::kMimeType};
}

QMimeData* Palette::mimeData(const QList<QTreeWidgetItem*>& items) const {
    if (items.isEmpty() || items.front()->data(0, kTypeRole).toString().isEmpty()) {
        return nullptr;
    }
    auto* data = new QMimeData;
    data->setData(CanvasView::kMimeType, items.front()->data(0, kTypeRole).toString().toUtf8());
    return data;
}

void Palette::contextMenuEvent(QContextMenuEvent* event) {
    const QTreeWidgetItem* item = itemAt(event->pos());
    const QString type = item ? item->data(0, kTypeRole).toString() : QString();
    if (type.isEmpty()) {
        return;
    }
    QMenu menu(this);
    menu.addAction(tr("Place on canvas"), this,
                   [this, type] { emit placeRequested(type.toStdString()); });
    menu.addAction(tr("View datasheet"), this,
                   [this, type] { emit datasheetRequested(type.toStdString()); });
    menu.exec(event->globalPos());
}

}  // namespace zerbin::studio
