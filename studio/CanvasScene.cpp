#include "studio/CanvasScene.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <QDragEnterEvent>
#include <QGraphicsProxyWidget>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPainter>
#include <QPainterPathStroker>
#include <QScrollBar>
#include <QStyleOptionGraphicsItem>
#include <QWheelEvent>

#include "studio/BlockItem.h"
#include "studio/WireRouter.h"

namespace zerbin::studio {
namespace {

QPainterPath WirePath(QPointF from, QPointF to) {
    const std::vector<QPointF> points = WireRouter::Plain(from, to);
    QPainterPath path(points.front());
    for (std::size_t i = 1; i < points.size(); ++i) {
        path.lineTo(points[i]);
    }
    return path;
}

// Ends a rename on Escape without taking the text.
class NameEditor : public QLineEdit {
public:
    using QLineEdit::QLineEdit;
    bool cancelled = false;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Escape) {
            cancelled = true;
            emit editingFinished();
            return;
        }
        QLineEdit::keyPressEvent(event);
    }
};

}  // namespace

CanvasScene::CanvasScene(StudioProject& project, QObject* parent)
    : QGraphicsScene(parent), project_(project) {
    setBackgroundBrush(QColor(0xee, 0xf1, 0xf4));
    connect(&project, &StudioProject::blockAdded, this, [this](const std::string& key) {
        if (following_) {
            AddBlock(key);
        }
    });
    connect(&project, &StudioProject::blockRemoved, this, &CanvasScene::RemoveBlock);
    connect(&project, &StudioProject::blockChanged, this, [this](const std::string& key) {
        if (BlockItem* item = Item(key)) {
            item->Refresh();
        }
    });
    connect(&project, &StudioProject::wireAdded, this, [this](const Wire& wire) {
        if (following_) {
            AddWire(wire);
        }
    });
    connect(&project, &StudioProject::wireRemoved, this, &CanvasScene::RemoveWire);
    connect(&project, &StudioProject::cleared, this, &CanvasScene::RemoveAll);
    connect(&project, &StudioProject::loaded, this, [this] {
        if (following_) {
            AddStandIns();
        }
    });
    AddAll();
}

void CanvasScene::Follow(bool on) {
    if (on == following_) {
        return;
    }
    following_ = on;
    if (on) {
        RemoveAll();
        // The index is sized before the first item comes, from where the blocks stand: sized
        // by Qt first, it would be built for the number of items and then built again.
        QRectF area;
        for (const std::string& key : project_.BlockKeys()) {
            const std::shared_ptr<IAppObject> block = project_.Block(key);
            area |= QRectF(block->IAppObject_XPosition(), block->IAppObject_YPosition(), 1, 1);
        }
        SizeIndex(area, project_.BlockKeys().size() + project_.Wires().size());
        AddAll();
    }
}

void CanvasScene::AddAll() {
    adding_ = true;
    blocks_.reserve(project_.BlockKeys().size());
    wires_.reserve(project_.Wires().size());
    for (const std::string& key : project_.BlockKeys()) {
        AddBlock(key);
    }
    for (const Wire& wire : project_.Wires()) {
        AddWire(wire);
    }
    AddStandIns();
    adding_ = false;
    if (!bounds_.isNull()) {
        SetRect(bounds_);
    }
}

void CanvasScene::Grow(const QRectF& sceneArea) {
    // Like Qt's own bounds, these only grow while the project is open; and not while the user
    // holds a block or a wire, so that nothing moves under the hand.
    const QRectF grown = bounds_.isNull() ? sceneArea : bounds_ | sceneArea;
    if (grown != bounds_) {
        bounds_ = grown;
        if (!adding_ && !holding_) {
            SetRect(bounds_);
        }
    }
}

void CanvasScene::SetRect(const QRectF& rect) {
    // A view keeps the scene's point at its top left corner, so that what it shows stays where
    // it was: scroll bars with a new range would otherwise move it.
    std::vector<std::pair<QGraphicsView*, QPointF>> corners;
    for (QGraphicsView* view : views()) {
        corners.emplace_back(view, view->mapToScene(0, 0));
    }
    setSceneRect(rect);
    for (const auto& [view, corner] : corners) {
        const QPoint shift = view->mapFromScene(corner);
        view->horizontalScrollBar()->setValue(view->horizontalScrollBar()->value() + shift.x());
        view->verticalScrollBar()->setValue(view->verticalScrollBar()->value() + shift.y());
    }
}

void CanvasScene::CoverView(const QRectF& visible) {
    Grow(visible);
}

QPointF CanvasScene::Snapped(QPointF pos) const {
    if (!snap_) {
        return pos;
    }
    return QPointF(std::round(pos.x() / kGrid) * kGrid, std::round(pos.y() / kGrid) * kGrid);
}

Wire CanvasScene::WireTo(const TerminalRef& end) const {
    const TerminalRef& from = *dragFrom_;
    const TerminalRef& output = from.output ? from : end;
    const TerminalRef& input = from.output ? end : from;
    return Wire{output.block, output.name, input.block, input.name};
}

CanvasScene::Guide CanvasScene::GuideOf(const std::string& key, const std::string& terminal,
                                        bool output) const {
    if (!dragFrom_) {
        return Guide::Plain;
    }
    if (output == dragFrom_->output) {
        return Guide::Dimmed;
    }
    const std::string id = key + '\n' + terminal;
    auto found = takes_.find(id);
    if (found == takes_.end()) {
        const bool takes = project_.Block(key) &&
                           project_.WhyNotConnect(WireTo({key, terminal, output, {}})).empty();
        found = takes_.emplace(id, takes).first;
    }
    return found->second ? Guide::Lit : Guide::Dimmed;
}

std::optional<TerminalRef> CanvasScene::TakerNear(QPointF scenePos) const {
    // Within a few pixels of the pointer, the nearest terminal that takes the wire.
    constexpr qreal kReach = 14;
    const QRectF near(scenePos - QPointF(kReach, kReach), QSizeF(2 * kReach, 2 * kReach));
    std::optional<TerminalRef> best;
    qreal bestDistance = kReach;
    for (QGraphicsItem* item : items(near)) {
        const auto* block = qgraphicsitem_cast<const BlockItem*>(item);
        if (block == nullptr || block->StandIn()) {
            continue;
        }
        for (const Terminal& terminal : block->Terminals()) {
            const QPointF at = block->mapToScene(terminal.centre);
            const qreal distance = QLineF(at, scenePos).length();
            if (distance <= bestDistance &&
                GuideOf(block->Key(), terminal.name, terminal.output) == Guide::Lit) {
                bestDistance = distance;
                best = TerminalRef{block->Key(), terminal.name, terminal.output, at};
            }
        }
    }
    return best;
}

QRectF CanvasScene::ItemsBounds() const {
    QRectF bounds;
    for (const auto* items : {&blocks_, &standIns_}) {
        for (const auto& [key, item] : *items) {
            bounds |= item->sceneBoundingRect();
        }
    }
    for (const auto& [wire, item] : wires_) {
        if (item->isVisible()) {
            bounds |= item->sceneBoundingRect();
        }
    }
    return bounds;
}

void CanvasScene::FitIndex() {
    if (!blocks_.empty()) {
        SizeIndex(sceneRect(), blocks_.size() + wires_.size());
    }
}

void CanvasScene::SizeIndex(QRectF area, std::size_t items) {
    // Each halving of the cells doubles the lists an item sits in once the cells are smaller
    // than the item: blocks standing on one spot would sit in every cell. Qt sizes the tree
    // by the number of items alone; here the cells are kept no smaller than a usual block.
    // The depth stays between 1 (0 would hand the choice back to Qt) and Qt's own.
    constexpr qreal kBlockWidth = 160.0;
    constexpr qreal kBlockHeight = 120.0;
    area.adjust(0, 0, kBlockWidth, kBlockHeight);
    const qreal cells = area.width() * area.height() / (kBlockWidth * kBlockHeight);
    const qreal most = std::max<qreal>(2, std::min(cells, static_cast<qreal>(items)));
    const int depth = std::clamp(static_cast<int>(std::floor(std::log2(most))), 1, 20);
    if (depth != bspTreeDepth()) {
        setBspTreeDepth(depth);
    }
}

CanvasScene::~CanvasScene() {
    blockSignals(true);
    blocks_.clear();
    wires_.clear();
    clear();
}

BlockItem* CanvasScene::Item(const std::string& key) const {
    const auto found = blocks_.find(key);
    return found == blocks_.end() ? nullptr : found->second;
}

void CanvasScene::SelectAll() {
    {
        // Each item would tell its own change, and each listener read the whole selection.
        const QSignalBlocker quiet(this);
        for (const auto& [key, item] : blocks_) {
            item->setSelected(true);
        }
        for (const auto& [wire, item] : wires_) {
            item->setSelected(true);
        }
    }
    emit selectionChanged();
}

std::vector<std::string> CanvasScene::SelectedBlocks() const {
    std::vector<std::string> keys;
    // In the project's order, so that a deletion and its undo keep it.
    for (const std::string& key : project_.BlockKeys()) {
        if (const BlockItem* item = Item(key); item && item->isSelected()) {
            keys.push_back(key);
        }
    }
    return keys;
}

std::vector<Wire> CanvasScene::SelectedWires() const {
    std::vector<Wire> wires;
    // In the project's order, so that a deletion's undo makes them again in that order.
    for (const Wire& wire : project_.Wires()) {
        const auto found = wires_.find(wire);
        if (found != wires_.end() && found->second->isSelected()) {
            wires.push_back(wire);
        }
    }
    return wires;
}

std::optional<QPointF> CanvasScene::TerminalPos(const std::string& key, const std::string& name,
                                                bool output) const {
    const BlockItem* item = Drawn(key);
    const std::optional<Terminal> terminal = item ? item->FindTerminal(name, output) : std::nullopt;
    if (!terminal) {
        return std::nullopt;
    }
    return item->mapToScene(terminal->centre);
}

void CanvasScene::AddBlock(const std::string& key) {
    const std::shared_ptr<IAppObject> block = project_.Block(key);
    std::shared_ptr<const BlockLook>& look = looks_[block->IAppObject_UniqueIDString()];
    if (!look) {
        look = BlockItem::LookOf(*block);
    }
    auto* item = new BlockItem(key, block, look);
    blocks_[key] = item;
    addItem(item);
    Grow(item->sceneBoundingRect());
    // Wires from stand-ins come back with a block brought back by an undo.
    if (!standIns_.empty()) {
        for (const Wire& wire : project_.KeptWiresTo(key)) {
            AddKeptWire(wire);
        }
    }
}

void CanvasScene::AddStandIns() {
    for (const MissingBlock& missing : project_.MissingBlocksShown()) {
        if (standIns_.count(missing.key) == 0) {
            auto* item = new BlockItem(missing);
            standIns_[missing.key] = item;
            addItem(item);
            Grow(item->sceneBoundingRect());
        }
    }
    for (const Wire& wire : project_.KeptWires()) {
        AddKeptWire(wire);
    }
}

void CanvasScene::AddKeptWire(const Wire& wire) {
    if (wires_.count(wire) == 0) {
        AddWire(wire);
        wires_[wire]->setFlag(QGraphicsItem::ItemIsSelectable, false);
    }
}

const BlockItem* CanvasScene::Drawn(const std::string& key) const {
    if (const BlockItem* item = Item(key)) {
        return item;
    }
    const auto found = standIns_.find(key);
    return found == standIns_.end() ? nullptr : found->second;
}

void CanvasScene::RemoveBlock(const std::string& key) {
    if (BlockItem* item = Item(key)) {
        blocks_.erase(key);
        if (renaming_ == key) {
            FinishRename(false);
        }
        delete item;
        // The project has taken its wires away; those left are from stand-ins.
        std::vector<Wire> left;
        const auto [first, last] = wiresAt_.equal_range(key);
        for (auto at = first; at != last; ++at) {
            left.push_back(at->second->Connection());
        }
        for (const Wire& wire : left) {
            RemoveWire(wire);
        }
    }
}

void CanvasScene::RemoveAll() {
    FinishRename(false);
    blocks_.clear();
    standIns_.clear();
    wires_.clear();
    wiresAt_.clear();
    clear();
    bounds_ = QRectF();
    setSceneRect(QRectF());
}

void CanvasScene::AddWire(const Wire& wire) {
    auto* item = new WireItem(wire);
    wires_[wire] = item;
    wiresAt_.emplace(wire.source, item);
    if (wire.target != wire.source) {
        wiresAt_.emplace(wire.target, item);
    }
    addItem(item);
    Route(item);
}

void CanvasScene::RemoveWire(const Wire& wire) {
    const auto found = wires_.find(wire);
    if (found != wires_.end()) {
        WireItem* item = found->second;
        for (const std::string& end : {wire.source, wire.target}) {
            auto [at, last] = wiresAt_.equal_range(end);
            while (at != last) {
                at = at->second == item ? wiresAt_.erase(at) : std::next(at);
            }
        }
        wires_.erase(found);
        delete item;
    }
}

void CanvasScene::Route(WireItem* item) {
    const Wire& wire = item->Connection();
    const std::optional<QPointF> from = TerminalPos(wire.source, wire.output, true);
    const std::optional<QPointF> to = TerminalPos(wire.target, wire.input, false);
    item->setVisible(from && to);
    if (from && to) {
        item->Route(*from, *to);
        Grow(item->sceneBoundingRect());
    }
}

void CanvasScene::RouteWiresOf(const std::string& key) {
    const auto [first, last] = wiresAt_.equal_range(key);
    for (auto at = first; at != last; ++at) {
        Route(at->second);
    }
}

void CanvasScene::RerouteAcross(const QRectF& area) {
    if (adding_) {
        return;
    }
    // By bounds, not shape: a wire that went around the area does not meet it, and its shape
    // would have to find its route first.
    for (QGraphicsItem* item : items(area, Qt::IntersectsItemBoundingRect)) {
        if (auto* wire = qgraphicsitem_cast<WireItem*>(item)) {
            wire->Reroute();
        }
    }
}

std::vector<QRectF> CanvasScene::BlockRects(const QRectF& area) const {
    std::vector<QRectF> rects;
    // Unsorted: their stacking order does not matter here, and sorting a crowded spot's items
    // for every wire would.
    for (QGraphicsItem* item : items(area, Qt::IntersectsItemBoundingRect, Qt::SortOrder(-1))) {
        if (const auto* block = qgraphicsitem_cast<const BlockItem*>(item)) {
            rects.push_back(block->mapRectToScene(block->Body()));
        }
    }
    return rects;
}

std::optional<TerminalRef> CanvasScene::TerminalAt(QPointF scenePos) const {
    // A terminal is small; accept a press or release a few pixels off it.
    constexpr qreal kSlack = 4;
    const QRectF near(scenePos - QPointF(kSlack, kSlack), QSizeF(2 * kSlack, 2 * kSlack));
    for (QGraphicsItem* item : items(near)) {
        if (const auto* block = qgraphicsitem_cast<const BlockItem*>(item);
            block != nullptr && !block->StandIn()) {
            if (const std::optional<Terminal> terminal =
                    block->TerminalAt(block->mapFromScene(scenePos), kSlack)) {
                return TerminalRef{block->Key(), terminal->name, terminal->output,
                                   block->mapToScene(terminal->centre)};
            }
        }
    }
    return std::nullopt;
}

void CanvasScene::mousePressEvent(QGraphicsSceneMouseEvent* event) {
    holding_ = true;
    if (event->button() == Qt::LeftButton) {
        if (std::optional<TerminalRef> terminal = TerminalAt(event->scenePos())) {
            dragFrom_ = std::move(terminal);
            takes_.clear();
            dragWire_ = addPath(QPainterPath(), QPen(QColor(0x2a, 0x7a, 0xd0), 2, Qt::DashLine));
            // The terminals light up or dim as they are painted.
            update();
            event->accept();
            return;
        }
    }
    QGraphicsScene::mousePressEvent(event);
    pressed_.clear();
    for (const std::string& key : SelectedBlocks()) {
        pressed_[key] = Item(key)->pos();
    }
}

void CanvasScene::mouseMoveEvent(QGraphicsSceneMouseEvent* event) {
    if (dragFrom_) {
        const QPointF start = dragFrom_->pos;
        dragWire_->setPath(dragFrom_->output ? WirePath(start, event->scenePos())
                                             : WirePath(event->scenePos(), start));
        event->accept();
        return;
    }
    QGraphicsScene::mouseMoveEvent(event);
}

void CanvasScene::mouseReleaseEvent(QGraphicsSceneMouseEvent* event) {
    holding_ = false;
    if (dragFrom_) {
        // A release near a terminal that takes the wire lands on it; one on a terminal that
        // does not is asked for, so that the user hears why not.
        std::optional<TerminalRef> to = TakerNear(event->scenePos());
        if (!to) {
            to = TerminalAt(event->scenePos());
        }
        const std::optional<Wire> wire =
            to && to->output != dragFrom_->output ? std::optional<Wire>(WireTo(*to)) : std::nullopt;
        dragFrom_.reset();
        takes_.clear();
        delete dragWire_;
        dragWire_ = nullptr;
        update();
        if (!bounds_.isNull()) {
            SetRect(bounds_);
        }
        if (wire) {
            emit wireRequested(*wire);
        }
        event->accept();
        return;
    }
    QGraphicsScene::mouseReleaseEvent(event);
    if (!bounds_.isNull()) {
        SetRect(bounds_);
    }
    std::vector<BlockMove> moves;
    for (const auto& [key, from] : pressed_) {
        const BlockItem* item = Item(key);
        if (item != nullptr && item->pos() != from) {
            moves.push_back(BlockMove{key, from, item->pos()});
        }
    }
    pressed_.clear();
    if (!moves.empty()) {
        emit blocksMoved(moves);
    }
}

void CanvasScene::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) {
    for (QGraphicsItem* item : items(event->scenePos())) {
        if (auto* block = qgraphicsitem_cast<BlockItem*>(item); block && !block->StandIn()) {
            if (block->NameRect().contains(block->mapFromScene(event->scenePos()))) {
                StartRename(block->Key());
            } else {
                emit showRequested(block->Key());
            }
            event->accept();
            return;
        }
    }
    QGraphicsScene::mouseDoubleClickEvent(event);
}

void CanvasScene::StartRename(const std::string& key) {
    BlockItem* block = Item(key);
    if (block == nullptr) {
        return;
    }
    FinishRename(false);
    auto* editor =
        new NameEditor(QString::fromStdString(project_.Block(key)->IAppObject_UserName()));
    editor->selectAll();
    renameEditor_ = addWidget(editor);
    renameEditor_->setZValue(10);
    const QRectF rect = block->NameRect();
    renameEditor_->setPos(block->mapToScene(rect.topLeft()));
    renameEditor_->resize(rect.width(), editor->sizeHint().height());
    renaming_ = key;
    // Return takes the name, Escape drops it, and leaving the editor takes it as well.
    connect(editor, &QLineEdit::returnPressed, this, [this] { FinishRename(true); });
    connect(editor, &QLineEdit::editingFinished, this,
            [this, editor] { FinishRename(!editor->cancelled); });
    if (!views().isEmpty()) {
        views().front()->setFocus();
    }
    setFocusItem(renameEditor_);
    editor->setFocus();
}

void CanvasScene::FinishRename(bool accept) {
    if (renameEditor_ == nullptr) {
        return;
    }
    QGraphicsProxyWidget* proxy = renameEditor_;
    renameEditor_ = nullptr;
    const std::string key = renaming_;
    renaming_.clear();
    const auto* editor = static_cast<QLineEdit*>(proxy->widget());
    const std::string name = editor->text().toStdString();
    proxy->deleteLater();
    const std::shared_ptr<IAppObject> block = project_.Block(key);
    if (accept && block && block->IAppObject_UserName() != name) {
        emit renameRequested(key, name);
    }
}

CanvasView::CanvasView(CanvasScene* scene, QWidget* parent) : QGraphicsView(scene, parent) {
    setAcceptDrops(true);
    setDragMode(RubberBandDrag);
    setRenderHint(QPainter::Antialiasing);
    setTransformationAnchor(AnchorUnderMouse);
    setViewportUpdateMode(SmartViewportUpdate);
    // Every item sets the pen, brush and font it draws with: saving and restoring the painter
    // around each of a hundred thousand items would cost more than drawing them.
    setOptimizationFlag(DontSavePainterState);
    // Scroll bars that came and went as the drawing grows would change the view's size, and
    // the view would move what it shows under the user's hand.
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
}

void CanvasView::ZoomBy(qreal factor) {
    const qreal next = std::clamp(Zoom() * factor, 0.05, 8.0);
    scale(next / Zoom(), next / Zoom());
    Cover();
}

void CanvasView::SetZoom(qreal zoom) {
    setTransform(QTransform::fromScale(zoom, zoom));
    Cover();
}

QPointF CanvasView::Centre() const {
    return mapToScene(viewport()->rect().center());
}

void CanvasView::Cover() {
    if (auto* canvas = static_cast<CanvasScene*>(scene())) {
        canvas->CoverView(mapToScene(viewport()->rect()).boundingRect());
    }
    emit zoomed(Zoom());
}

void CanvasView::paintEvent(QPaintEvent* event) {
    if (const auto* canvas = static_cast<const CanvasScene*>(scene())) {
        canvas->NewFrame();
    }
    QGraphicsView::paintEvent(event);
}

void CanvasView::resizeEvent(QResizeEvent* event) {
    QGraphicsView::resizeEvent(event);
    Cover();
}

void CanvasView::scrollContentsBy(int dx, int dy) {
    QGraphicsView::scrollContentsBy(dx, dy);
    Cover();
}

void CanvasView::ZoomToFit(qreal maxZoom) {
    const QRectF bounds =
        static_cast<CanvasScene*>(scene())->ItemsBounds().adjusted(-40, -40, 40, 40);
    if (!bounds.isEmpty()) {
        fitInView(bounds, Qt::KeepAspectRatio);
        if (Zoom() > maxZoom) {
            setTransform(QTransform::fromScale(maxZoom, maxZoom));
            centerOn(bounds.center());
        }
        Cover();
    }
}

void CanvasView::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasFormat(kMimeType)) {
        event->acceptProposedAction();
    } else {
        QGraphicsView::dragEnterEvent(event);
    }
}

void CanvasView::dragMoveEvent(QDragMoveEvent* event) {
    if (event->mimeData()->hasFormat(kMimeType)) {
        event->acceptProposedAction();
    } else {
        QGraphicsView::dragMoveEvent(event);
    }
}

void CanvasView::dropEvent(QDropEvent* event) {
    if (!event->mimeData()->hasFormat(kMimeType)) {
        QGraphicsView::dropEvent(event);
        return;
    }
    const std::string type = event->mimeData()->data(kMimeType).toStdString();
    emit placeRequested(type, mapToScene(event->position().toPoint()));
    event->acceptProposedAction();
}

void CanvasView::wheelEvent(QWheelEvent* event) {
    if (event->modifiers() & Qt::ControlModifier) {
        ZoomBy(event->angleDelta().y() > 0 ? 1.15 : 1 / 1.15);
        event->accept();
        return;
    }
    QGraphicsView::wheelEvent(event);
}

void CanvasView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton) {
        panning_ = true;
        panFrom_ = event->position().toPoint();
        viewport()->setCursor(Qt::ClosedHandCursor);
        event->accept();
        return;
    }
    QGraphicsView::mousePressEvent(event);
}

void CanvasView::mouseMoveEvent(QMouseEvent* event) {
    if (panning_) {
        const QPoint delta = event->position().toPoint() - panFrom_;
        panFrom_ = event->position().toPoint();
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - delta.x());
        verticalScrollBar()->setValue(verticalScrollBar()->value() - delta.y());
        event->accept();
        return;
    }
    QGraphicsView::mouseMoveEvent(event);
}

void CanvasView::mouseReleaseEvent(QMouseEvent* event) {
    if (panning_ && event->button() == Qt::MiddleButton) {
        panning_ = false;
        viewport()->unsetCursor();
        event->accept();
        return;
    }
    QGraphicsView::mouseReleaseEvent(event);
}

}  // namespace zerbin::studio
