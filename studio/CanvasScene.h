// The canvas: one item for each block and each wire of the project, kept in step with it, and
// the gestures the user makes on them (drag a wire from terminal to terminal, move, rename in
// place, double click). Gestures become requests; the window turns them into undoable steps.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <QGraphicsPathItem>
#include <QGraphicsScene>
#include <QGraphicsView>

#include "studio/BlockLook.h"
#include "studio/StudioProject.h"
#include "studio/WireItem.h"

class QGraphicsProxyWidget;

namespace zerbin::studio {

class BlockItem;

// A terminal as the scene finds it under the mouse.
struct TerminalRef {
    std::string block;
    std::string name;
    bool output = false;
    QPointF pos;  // its centre in the scene
};

class CanvasScene : public QGraphicsScene {
    Q_OBJECT

public:
    explicit CanvasScene(StudioProject& project, QObject* parent = nullptr);
    // The items go quietly: nobody is told of a selection that changes as they go.
    ~CanvasScene() override;

    BlockItem* Item(const std::string& key) const;
    // Every block and wire, told as one change of the selection.
    void SelectAll();
    std::vector<std::string> SelectedBlocks() const;
    std::vector<Wire> SelectedWires() const;
    // Opens the in-place editor of the block's user name.
    void StartRename(const std::string& key);
    // Where a terminal's centre sits in the scene; nothing when the block or terminal isn't
    // shown.
    std::optional<QPointF> TerminalPos(const std::string& key, const std::string& name,
                                       bool output) const;
    // Off, the scene lets the project change without following it (a project being read);
    // back on, it makes its items afresh in one pass.
    void Follow(bool on);
    // Routes the wires at the block again, after it moved.
    void RouteWiresOf(const std::string& key);
    // The wires that run across the area (where a block now stands) find their way again.
    void RerouteAcross(const QRectF& area);
    // Sizes the scene's index to where the blocks stand: its cells no smaller than a block, so
    // that memory does not depend on how close the blocks stand.
    void FitIndex();
    // Widens the scene to take in an item's place: the scene keeps its own bounds, since Qt
    // would find them by sorting every item of the scene.
    void Grow(const QRectF& sceneArea);
    // What the blocks and wires cover now, however wide the scene has grown.
    QRectF ItemsBounds() const;
    // The rectangles of the blocks, shown or stand-in, that meet the area.
    std::vector<QRectF> BlockRects(const QRectF& area) const;
    // Routes are found as wires are first drawn, a few hundred a frame at most: where
    // thousands of blocks crowd one spot, each route would ask the index for all of them.
    // The rest keep their plain route until they are routed again.
    void NewFrame() const { routeBudget_ = kRoutesPerFrame; }
    bool TakeRoute() const { return routeBudget_ > 0 && --routeBudget_ >= 0; }
    // The part of the scene a view shows: the scene always takes it in, so that nothing the
    // user does in view makes the view shift what it shows.
    void CoverView(const QRectF& visible);

    // Blocks land and move on a grid of kGrid points while snapping is on (it is at first).
    static constexpr qreal kGrid = 10;
    void SetSnap(bool on) { snap_ = on; }
    bool Snap() const { return snap_; }
    QPointF Snapped(QPointF pos) const;

    // While a wire is dragged: whether a terminal would take it (lit), would not (dimmed),
    // or no wire is dragged (plain).
    enum class Guide { Plain, Lit, Dimmed };
    Guide GuideOf(const std::string& key, const std::string& terminal, bool output) const;

signals:
    void wireRequested(const Wire& wire);
    void blocksMoved(const std::vector<BlockMove>& moves);
    void renameRequested(const std::string& key, const std::string& name);
    void showRequested(const std::string& key);

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;

private:
    void AddBlock(const std::string& key);
    void RemoveBlock(const std::string& key);
    void AddWire(const Wire& wire);
    void RemoveWire(const Wire& wire);
    // The stand-ins of the blocks whose type is missing, and the wires at them.
    void AddStandIns();
    void AddKeptWire(const Wire& wire);
    // A block as drawn, shown or stand-in.
    const BlockItem* Drawn(const std::string& key) const;
    void RemoveAll();
    void AddAll();
    void SizeIndex(QRectF area, std::size_t items);
    void SetRect(const QRectF& rect);
    void Route(WireItem* item);
    std::optional<TerminalRef> TerminalAt(QPointF scenePos) const;
    // The nearest terminal within reach that takes the dragged wire.
    std::optional<TerminalRef> TakerNear(QPointF scenePos) const;
    Wire WireTo(const TerminalRef& end) const;
    void FinishRename(bool accept);

    StudioProject& project_;
    std::unordered_map<std::string, BlockItem*> blocks_;
    std::unordered_map<std::string, BlockItem*> standIns_;
    std::unordered_map<Wire, WireItem*, WireHash> wires_;
    // One look per block type, for as long as the scene: another library makes another scene.
    std::unordered_map<std::string, std::shared_ptr<const BlockLook>> looks_;
    std::multimap<std::string, WireItem*> wiresAt_;
    std::optional<TerminalRef> dragFrom_;
    QGraphicsPathItem* dragWire_ = nullptr;
    std::map<std::string, QPointF> pressed_;
    QGraphicsProxyWidget* renameEditor_ = nullptr;
    std::string renaming_;
    bool following_ = true;
    bool snap_ = true;
    static constexpr int kRoutesPerFrame = 400;
    mutable int routeBudget_ = kRoutesPerFrame;
    // Set while a mouse button is down on the scene: the scene's bounds wait for its release.
    bool holding_ = false;
    // Whether each terminal takes the dragged wire, as painted: asked of the project once.
    mutable std::unordered_map<std::string, bool> takes_;
    // Set while the items are made in one pass, which tells the scene its bounds once.
    bool adding_ = false;
    QRectF bounds_;
};

class CanvasView : public QGraphicsView {
    Q_OBJECT

public:
    explicit CanvasView(CanvasScene* scene, QWidget* parent = nullptr);
    void ZoomBy(qreal factor);
    void SetZoom(qreal zoom);
    // The whole project in view, magnified no more than maxZoom.
    void ZoomToFit(qreal maxZoom = 1.0);
    qreal Zoom() const { return transform().m11(); }
    // The view's centre in the scene, and the view centred on a point.
    QPointF Centre() const;
    // The MIME type of a palette entry: the block type's name.
    static constexpr const char* kMimeType = "application/x-zerbin-block-type";

signals:
    void placeRequested(const std::string& type, QPointF scenePos);
    // The view's magnification, told whenever it may have changed.
    void zoomed(qreal zoom);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    // Tells the scene what is in view, so that it takes it in.
    void Cover();

    bool panning_ = false;
    QPoint panFrom_;
};

}  // namespace zerbin::studio
