// A block as the canvas draws it: icon, user name and type in the header, the visible inputs
// on the left and outputs on the right as terminals, in the block's colour.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <QGraphicsEllipseItem>
#include <QGraphicsObject>
#include <QPixmap>

#include "interfaces/IAppObject.h"

namespace zerbin::studio {

// The pixmap of a block's icon, decoded once per type; a plain square when it can't be read.
QPixmap BlockIconPixmap(IAppObject& block, int size);

// The spot where wires start and end. Its name is the input's or output's.
class TerminalItem : public QGraphicsEllipseItem {
public:
    enum { Type = UserType + 2 };
    TerminalItem(QGraphicsItem* parent, std::string name, bool output, QPointF centre);
    int type() const override { return Type; }
    const std::string& Name() const { return name_; }
    bool IsOutput() const { return output_; }
    std::string BlockKey() const;
    static constexpr qreal kRadius = 5.0;

private:
    std::string name_;
    bool output_;
};

class BlockItem : public QGraphicsObject {
    Q_OBJECT

public:
    enum { Type = UserType + 1 };
    BlockItem(std::string key, std::shared_ptr<IAppObject> block);
    int type() const override { return Type; }

    const std::string& Key() const { return key_; }
    // Reads name, colour, place and terminals from the block again.
    void Refresh();
    TerminalItem* Terminal(const std::string& name, bool output) const;
    // The header area where the user name stands, in item coordinates.
    QRectF NameRect() const;

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

signals:
    // The item moved on the canvas (by the user or by Refresh).
    void moved(const std::string& key);

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;

private:
    std::string key_;
    std::shared_ptr<IAppObject> block_;
    QString name_;
    QString type_;
    QPixmap icon_;
    QColor colour_;
    std::vector<TerminalItem*> terminals_;
    QRectF rect_;
    bool refreshing_ = false;
};

}  // namespace zerbin::studio
