// A wire as the canvas draws it.
#pragma once

#include <vector>

#include <QGraphicsItem>

#include "studio/Wire.h"

namespace zerbin::studio {

// A wire between two terminals. It keeps only its ends: a large project has tens of thousands
// of wires, and a stored path with its pen would cost each of them kilobytes once painted. The
// tip is set only once the mouse is over the wire.
class WireItem : public QGraphicsItem {
public:
    enum { Type = UserType + 3 };
    explicit WireItem(Wire wire);
    int type() const override { return Type; }
    const Wire& Connection() const { return wire_; }
    void Route(QPointF from, QPointF to);
    // The wire's way around the blocks, found when it is first drawn near enough to see it
    // and kept until its ends or the blocks in its way move.
    const std::vector<QPointF>& Points() const;
    void Reroute();

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    void hoverEnterEvent(QGraphicsSceneHoverEvent* event) override;

private:
    Wire wire_;
    QPointF from_;
    QPointF to_;
    mutable std::vector<QPointF> route_;
};

}  // namespace zerbin::studio
