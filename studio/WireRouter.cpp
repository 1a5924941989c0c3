#include "studio/WireRouter.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <QLineF>

namespace zerbin::studio {
namespace {

// The inside of a block, so that a route along its edge or from its terminal does not count
// as crossing it.
QRectF Inside(const QRectF& rect) {
    return rect.adjusted(1, 1, -1, -1);
}

bool SegmentCrosses(QPointF a, QPointF b, const QRectF& rect) {
    const QRectF inside = Inside(rect);
    if (a.y() == b.y()) {
        return a.y() > inside.top() && a.y() < inside.bottom() &&
               std::max(a.x(), b.x()) > inside.left() && std::min(a.x(), b.x()) < inside.right();
    }
    return a.x() > inside.left() && a.x() < inside.right() &&
           std::max(a.y(), b.y()) > inside.top() && std::min(a.y(), b.y()) < inside.bottom();
}

qreal Length(const std::vector<QPointF>& route) {
    qreal length = 0;
    for (std::size_t i = 1; i < route.size(); ++i) {
        length +=
            std::abs(route[i].x() - route[i - 1].x()) + std::abs(route[i].y() - route[i - 1].y());
    }
    return length;
}

}  // namespace

QRectF WireRouter::Bounds(QPointF from, QPointF to) {
    return QRectF(from, to).normalized().adjusted(-kDetour, -kDetour, kDetour, kDetour);
}

int WireRouter::PlainInto(QPointF from, QPointF to, QPointF* points) {
    if (to.x() - kStub >= from.x() + kStub) {
        const qreal x = (from.x() + to.x()) / 2;
        points[0] = from;
        points[1] = {x, from.y()};
        points[2] = {x, to.y()};
        points[3] = to;
        return 4;
    }
    // Backwards: out to the right, across halfway between the ends, in from the left.
    const qreal x = from.x() + kStub;
    const qreal y = (from.y() + to.y()) / 2;
    points[0] = from;
    points[1] = {x, from.y()};
    points[2] = {x, y};
    points[3] = {to.x() - kStub, y};
    points[4] = {to.x() - kStub, to.y()};
    points[5] = to;
    return 6;
}

std::vector<QPointF> WireRouter::Plain(QPointF from, QPointF to) {
    QPointF points[kPlainPoints];
    const int count = PlainInto(from, to, points);
    return std::vector<QPointF>(points, points + count);
}

bool WireRouter::Crosses(const std::vector<QPointF>& route, const QRectF& rect) {
    for (std::size_t i = 1; i < route.size(); ++i) {
        if (SegmentCrosses(route[i - 1], route[i], rect)) {
            return true;
        }
    }
    return false;
}

std::vector<QPointF> WireRouter::Route(QPointF from, QPointF to, const Obstacles& obstacles) {
    const QRectF bounds = Bounds(from, to);
    std::vector<QRectF> blocks = obstacles(bounds);
    // Where blocks crowd one spot (stacked on each other) no way leads around them all; the
    // plain route is as good as any and costs nothing to find.
    constexpr std::size_t kCrowded = 32;
    if (blocks.size() > kCrowded) {
        return Plain(from, to);
    }
    // The blocks nearest the ends' midpoint give the places tried: enough to find a way around
    // what is in the way, few enough that a crowded drawing routes as fast as a sparse one.
    constexpr std::size_t kNearest = 8;
    if (blocks.size() > kNearest) {
        const QPointF middle = (from + to) / 2;
        const auto distance = [&](const QRectF& block) {
            return QLineF(block.center(), middle).length();
        };
        std::partial_sort(
            blocks.begin(), blocks.begin() + kNearest, blocks.end(),
            [&](const QRectF& a, const QRectF& b) { return distance(a) < distance(b); });
    }
    const std::size_t near = std::min(blocks.size(), kNearest);
    const auto free = [&](const std::vector<QPointF>& route) {
        return std::none_of(blocks.begin(), blocks.end(),
                            [&](const QRectF& block) { return Crosses(route, block); });
    };
    const std::vector<QPointF> plain = Plain(from, to);
    if (free(plain)) {
        return plain;
    }
    const qreal out = from.x() + kStub;
    const qreal in = to.x() - kStub;
    // Where a vertical piece may run: between the ends, and beside each block that is in the
    // way; where a horizontal piece may run: above and below each block.
    std::vector<qreal> columns{out, in, (from.x() + to.x()) / 2};
    std::vector<qreal> rows{from.y(), to.y()};
    for (std::size_t i = 0; i < near; ++i) {
        const QRectF& block = blocks[i];
        columns.push_back(block.left() - kStub);
        columns.push_back(block.right() + kStub);
        rows.push_back(block.top() - kStub);
        rows.push_back(block.bottom() + kStub);
    }
    const auto inBounds = [&](const std::vector<QPointF>& route) {
        return std::all_of(route.begin(), route.end(),
                           [&](QPointF point) { return bounds.contains(point); });
    };
    std::vector<QPointF> best;
    qreal shortest = std::numeric_limits<qreal>::max();
    const auto consider = [&](std::vector<QPointF> route) {
        const qreal length = Length(route);
        if (length < shortest && inBounds(route) && free(route)) {
            shortest = length;
            best = std::move(route);
        }
    };
    for (const qreal x : columns) {
        if (x >= out && x <= in) {
            consider({from, {x, from.y()}, {x, to.y()}, to});
        }
    }
    // Out along one column, across on a row, in along another.
    for (const qreal y : rows) {
        for (const qreal x1 : columns) {
            if (x1 < out) {
                continue;
            }
            for (const qreal x2 : columns) {
                if (x2 <= in) {
                    consider({from, {x1, from.y()}, {x1, y}, {x2, y}, {x2, to.y()}, to});
                }
            }
        }
    }
    return best.empty() ? plain : best;
}

}  // namespace zerbin::studio
