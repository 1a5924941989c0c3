// A block as the canvas draws it: icon, user name and type in the header, the visible inputs
// on the left and outputs on the right as terminals, in the block's colour. The terminals are
// drawn and hit-tested by the block itself, and the item is a plain one, not an object: a
// large project has a hundred thousand blocks and several times as many terminals. The tip is
// set only once the mouse is over the block.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QGraphicsItem>

#include "interfaces/IAppObject.h"
#include "studio/BlockLook.h"
#include "studio/KeptBlocks.h"

namespace zerbin::studio {

// The spot where wires start and end, named after its input or output.
struct Terminal {
    std::string name;
    bool output = false;
    QPointF centre;  // in the block's coordinates
    QString label;
};

class BlockItem : public QGraphicsItem {
public:
    enum { Type = UserType + 1 };
    static constexpr qreal kTerminalRadius = 5.0;
    // Below this zoom a block is drawn as a plain coloured rectangle.
    static constexpr qreal kDetailZoom = 0.35;

    // The look of the block's type, read from the block; the scene keeps one per type.
    static std::shared_ptr<const BlockLook> LookOf(IAppObject& block);

    BlockItem(std::string key, std::shared_ptr<IAppObject> block,
              std::shared_ptr<const BlockLook> look);
    // A grey stand-in for a block whose type the library lacks, with the terminals its wires
    // name. It cannot be moved, selected or wired: nothing of it may change.
    explicit BlockItem(const MissingBlock& missing);
    int type() const override { return Type; }
    bool StandIn() const { return block_ == nullptr; }
    // Whether the block's type changed since the project was saved: marked until updated.
    bool TypeChanged() const;

    const std::string& Key() const { return key_; }
    // Reads name, colour and place from the block again.
    void Refresh();
    std::optional<Terminal> FindTerminal(const std::string& name, bool output) const;
    std::vector<Terminal> Terminals() const;
    // The terminal within reach of a point in item coordinates (a few pixels of slack).
    std::optional<Terminal> TerminalAt(QPointF itemPos, qreal slack) const;
    // The header area where the user name stands, in item coordinates.
    QRectF NameRect() const;
    // The block's body without its terminals, in item coordinates.
    const QRectF& Body() const { return rect_; }

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;
    void hoverMoveEvent(QGraphicsSceneHoverEvent* event) override;
    void hoverLeaveEvent(QGraphicsSceneHoverEvent* event) override;

private:
    Terminal TerminalOf(std::size_t row, bool output) const;
    void PointAt(const std::optional<Terminal>& terminal);

    std::string key_;
    std::shared_ptr<IAppObject> block_;
    std::shared_ptr<const BlockLook> look_;
    QString name_;
    QColor colour_;
    QRectF rect_;
    bool refreshing_ = false;
    // Whether the block's type changed, once asked; forgotten at each Refresh.
    mutable std::optional<bool> typeChanged_;
};

}  // namespace zerbin::studio
