// The whole drawing at a glance, with the part the canvas shows framed; a click or a drag there
// brings that part into the canvas. The drawing is kept as a picture made again a moment after
// the project changes, so that a paint is a copy of it and a frame, however large the project.
#pragma once

#include <QDockWidget>
#include <QImage>
#include <QPointer>
#include <QRectF>

class QTimer;

namespace zerbin::studio {

class CanvasScene;
class CanvasView;

class OverviewDock : public QDockWidget {
    Q_OBJECT

public:
    explicit OverviewDock(QWidget* parent = nullptr);
    // The canvas to show; called again for each new project.
    void Watch(CanvasScene* scene, CanvasView* view);
    // Something in the drawing changed: the picture is made again a moment after the first
    // change, once for a whole burst of them. (The scene's own signal of changes would make
    // it collect every changed area of a large project as it is read.)
    void Changed();
    // Makes the picture of the drawing now rather than a moment after the last change.
    void Redraw();
    // Where a point of the overview stands in the scene.
    QPointF ScenePoint(QPointF at) const;

private:
    class Map;

    Map* map_;
    QTimer* redraw_;
    QPointer<CanvasScene> scene_;
    QPointer<CanvasView> view_;
    QImage picture_;
    // The part of the scene the picture shows, and where in the overview it stands.
    QRectF shown_;
    QRectF target_;
};

}  // namespace zerbin::studio
