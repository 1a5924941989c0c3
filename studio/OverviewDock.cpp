#include "studio/OverviewDock.h"

#include <algorithm>

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>

#include "studio/CanvasScene.h"

namespace zerbin::studio {

// Paints the picture and the frame of what the canvas shows, and moves the canvas to where it
// is pressed.
class OverviewDock::Map : public QWidget {
public:
    explicit Map(OverviewDock& dock) : dock_(dock) {
        setObjectName("overviewMap");
        setMinimumSize(160, 110);
        setCursor(Qt::PointingHandCursor);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), QColor(0xee, 0xf1, 0xf4));
        if (dock_.picture_.isNull() || !dock_.view_) {
            return;
        }
        painter.drawImage(dock_.target_.topLeft(), dock_.picture_);
        const QRectF visible =
            dock_.view_->mapToScene(dock_.view_->viewport()->rect()).boundingRect();
        const qreal scale = dock_.target_.width() / dock_.shown_.width();
        const QRectF frame(
            (visible.topLeft() - dock_.shown_.topLeft()) * scale + dock_.target_.topLeft(),
            visible.size() * scale);
        painter.setPen(QPen(QColor(0x2a, 0x7a, 0xd0), 1.5));
        painter.setBrush(QColor(0x2a, 0x7a, 0xd0, 30));
        painter.drawRect(frame.intersected(QRectF(rect()).adjusted(0, 0, -1, -1)));
    }
    void mousePressEvent(QMouseEvent* event) override { Centre(event->position()); }
    void mouseMoveEvent(QMouseEvent* event) override {
        if (event->buttons() & Qt::LeftButton) {
            Centre(event->position());
        }
    }
    void resizeEvent(QResizeEvent*) override { dock_.Redraw(); }

private:
    void Centre(QPointF at) {
        if (dock_.view_ && !dock_.shown_.isEmpty()) {
            dock_.view_->centerOn(dock_.ScenePoint(at));
        }
    }

    OverviewDock& dock_;
};

OverviewDock::OverviewDock(QWidget* parent)
    : QDockWidget(tr("Overview"), parent), map_(new Map(*this)), redraw_(new QTimer(this)) {
    setObjectName("overview");
    setWidget(map_);
    redraw_->setSingleShot(true);
    redraw_->setInterval(400);
    connect(redraw_, &QTimer::timeout, this, &OverviewDock::Redraw);
}

void OverviewDock::Watch(CanvasScene* scene, CanvasView* view) {
    scene_ = scene;
    if (view_ != view) {
        view_ = view;
        // The frame follows the canvas as it scrolls and zooms.
        connect(view->horizontalScrollBar(), &QScrollBar::valueChanged, map_,
                qOverload<>(&QWidget::update));
        connect(view->verticalScrollBar(), &QScrollBar::valueChanged, map_,
                qOverload<>(&QWidget::update));
        connect(view, &CanvasView::zoomed, map_, qOverload<>(&QWidget::update));
    }
    Redraw();
}

void OverviewDock::Changed() {
    if (isVisible() && !redraw_->isActive()) {
        redraw_->start();
    }
}

void OverviewDock::Redraw() {
    redraw_->stop();
    if (!scene_ || map_->width() <= 0 || map_->height() <= 0) {
        return;
    }
    shown_ = scene_->ItemsBounds().adjusted(-40, -40, 40, 40);
    if (shown_.isEmpty()) {
        picture_ = QImage();
        map_->update();
        return;
    }
    const qreal scale = std::min(map_->width() / shown_.width(), map_->height() / shown_.height());
    const QSizeF size = shown_.size() * scale;
    target_ = QRectF(
        QPointF((map_->width() - size.width()) / 2, (map_->height() - size.height()) / 2), size);
    picture_ = QImage(size.toSize().expandedTo(QSize(1, 1)), QImage::Format_ARGB32_Premultiplied);
    picture_.fill(Qt::white);
    QPainter painter(&picture_);
    scene_->render(&painter, QRectF(QPointF(), size), shown_, Qt::IgnoreAspectRatio);
    painter.end();
    map_->update();
}

QPointF OverviewDock::ScenePoint(QPointF at) const {
    const qreal scale = target_.width() / shown_.width();
    return shown_.topLeft() + (at - target_.topLeft()) / scale;
}

}  // namespace zerbin::studio
