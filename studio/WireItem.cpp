#include "studio/WireItem.h"

#include <QGraphicsSceneHoverEvent>
#include <QPainter>
#include <QPainterPathStroker>
#include <QStyleOptionGraphicsItem>

#include "studio/BlockItem.h"
#include "studio/CanvasScene.h"
#include "studio/WireRouter.h"

namespace zerbin::studio {

WireItem::WireItem(Wire wire) : wire_(std::move(wire)) {
    setFlag(ItemIsSelectable);
    setAcceptHoverEvents(true);
    setZValue(-1);
}

void WireItem::Route(QPointF from, QPointF to) {
    if (from != from_ || to != to_) {
        prepareGeometryChange();
        from_ = from;
        to_ = to;
        route_.clear();
    }
}

void WireItem::Reroute() {
    if (!route_.empty()) {
        route_.clear();
        update();
    }
}

const std::vector<QPointF>& WireItem::Points() const {
    if (route_.empty()) {
        const auto* canvas = static_cast<const CanvasScene*>(scene());
        route_ = canvas == nullptr || !canvas->TakeRoute()
                     ? WireRouter::Plain(from_, to_)
                     : WireRouter::Route(from_, to_, [canvas](const QRectF& area) {
                           return canvas->BlockRects(area);
                       });
    }
    return route_;
}

QRectF WireItem::boundingRect() const {
    // Every route keeps within this box, so the scene knows it before the route is found.
    return WireRouter::Bounds(from_, to_).adjusted(-2, -2, 2, 2);
}

QPainterPath WireItem::shape() const {
    const std::vector<QPointF>& points = Points();
    QPainterPath path(points.front());
    for (std::size_t i = 1; i < points.size(); ++i) {
        path.lineTo(points[i]);
    }
    QPainterPathStroker stroker;
    stroker.setWidth(4);
    return stroker.createStroke(path);
}

void WireItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget*) {
    static const QPen plain(QColor(0x55, 0x60, 0x6b), 2);
    static const QPen selected(QColor(0xff, 0xb0, 0x20), 3);
    // A wire at a stand-in cannot be chosen, and shows it: grey and dashed.
    static const QPen kept(QColor(0x9a, 0x9a, 0x9a), 2, Qt::DashLine);
    const bool chosen = option->state & QStyle::State_Selected;
    painter->setBrush(Qt::NoBrush);
    // Far out a wire is thinner than a pixel and the blocks are specks: a hairline along the
    // plain route draws the same at a fraction of the cost, and a whole large project may be
    // in view, none of whose routes need be found.
    if (!chosen &&
        option->levelOfDetailFromTransform(painter->worldTransform()) < BlockItem::kDetailZoom) {
        QPointF points[WireRouter::kPlainPoints];
        const int count = WireRouter::PlainInto(from_, to_, points);
        static const QPen hairline(plain.color(), 0);
        painter->setPen(hairline);
        painter->drawPolyline(points, count);
        return;
    }
    painter->setPen(chosen ? selected : (flags() & ItemIsSelectable) ? plain : kept);
    const std::vector<QPointF>& points = Points();
    painter->drawPolyline(points.data(), static_cast<int>(points.size()));
}

void WireItem::hoverEnterEvent(QGraphicsSceneHoverEvent* event) {
    if (toolTip().isEmpty()) {
        setToolTip(QString::fromStdString(wire_.source + "." + wire_.output + " → " + wire_.target +
                                          "." + wire_.input));
    }
    QGraphicsItem::hoverEnterEvent(event);
}

}  // namespace zerbin::studio
