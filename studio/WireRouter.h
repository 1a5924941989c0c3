// Where a wire runs: at right angles from an output's terminal to an input's, around the blocks
// in its way. A wire leaves its output to the right and enters its input from the left, and
// keeps within a box around its two ends, so that its bounds are known before its route is.
#pragma once

#include <functional>
#include <vector>

#include <QPointF>
#include <QRectF>

namespace zerbin::studio {

class WireRouter {
public:
    // The rectangles of the blocks that meet a part of the drawing.
    using Obstacles = std::function<std::vector<QRectF>(const QRectF& area)>;

    // How far a route may leave the box of its two ends, and the straight piece at each end.
    static constexpr qreal kDetour = 140;
    static constexpr qreal kStub = 14;

    // The box every route between the two ends keeps within.
    static QRectF Bounds(QPointF from, QPointF to);
    // The route with no regard for blocks: what a wire shows far out, where a block is a speck.
    static std::vector<QPointF> Plain(QPointF from, QPointF to);
    // The same into points (room for kPlainPoints), giving how many: a frame of a large
    // project far out draws tens of thousands of them and must not allocate for each.
    static constexpr int kPlainPoints = 6;
    static int PlainInto(QPointF from, QPointF to, QPointF* points);
    // The shortest route of those tried that meets no block; the plain one when none is free.
    static std::vector<QPointF> Route(QPointF from, QPointF to, const Obstacles& obstacles);
    // True when a piece of the route crosses the inside of a rectangle.
    static bool Crosses(const std::vector<QPointF>& route, const QRectF& rect);
};

}  // namespace zerbin::studio
