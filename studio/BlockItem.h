// A block as the canvas draws it: icon, user name and type in the header, the visible inputs
// on the left and outputs on the right as terminals, in the block's colour. The terminals are
// drawn and hit-tested by the block itself: a large project has tens of thousands of them.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QGraphicsObject>
#include <QPixmap>

#include "interfaces/IAppObject.h"

namespace zerbin::studio {

// The pixmap of a block's icon, decoded once per type; a plain square when it can't be read.
QPixmap BlockIconPixmap(IAppObject& block, int size);

// The spot where wires start and end, named after its input or output.
struct Terminal {
    std::string name;
    bool output = false;
    QPointF centre;  // in the block's coordinates
    QString label;
};

class BlockItem : public QGraphicsObject {
    Q_OBJECT

public:
    enum { Type = UserType + 1 };
    static constexpr qreal kTerminalRadius = 5.0;
    // Below this zoom a block is drawn as a plain coloured rectangle.
    static constexpr qreal kDetailZoom = 0.35;

    BlockItem(std::string key, std::shared_ptr<IAppObject> block);
    int type() const override { return Type; }

    const std::string& Key() const { return key_; }
    // Reads name, colour, place and terminals from the block again.
    void Refresh();
    // With detail, the drawing is kept in a pixmap so that panning need not draw text again;
    // without, the plain rectangle is cheaper to draw than to keep.
    void ShowDetail(bool detail);
    const Terminal* FindTerminal(const std::string& name, bool output) const;
    // The terminal within reach of a point in item coordinates (a few pixels of slack), or
    // nullptr.
    const Terminal* TerminalAt(QPointF itemPos, qreal slack) const;
    const std::vector<Terminal>& Terminals() const { return terminals_; }
    // The header area where the user name stands, in item coordinates.
    QRectF NameRect() const;

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

signals:
    // The item moved on the canvas (by the user or by Refresh).
    void moved(const std::string& key);

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;
    void hoverMoveEvent(QGraphicsSceneHoverEvent* event) override;
    void hoverLeaveEvent(QGraphicsSceneHoverEvent* event) override;

private:
    void PointAt(const Terminal* terminal);

    std::string key_;
    std::shared_ptr<IAppObject> block_;
    QString name_;
    QString type_;
    QString description_;
    QPixmap icon_;
    QColor colour_;
    std::vector<Terminal> terminals_;
    const Terminal* hovered_ = nullptr;
    QRectF rect_;
    bool refreshing_ = false;
};

}  // namespace zerbin::studio
