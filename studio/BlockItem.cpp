#include "studio/BlockItem.h"

#include <algorithm>

#include <QCursor>
#include <QFontMetricsF>
#include <QGraphicsSceneHoverEvent>
#include <QObject>
#include <QPainter>
#include <QPixmap>
#include <QStyleOptionGraphicsItem>

#include "interfaces/ICanvasElement.h"
#include "interfaces/ITypeChange.h"
#include "studio/CanvasScene.h"
#include "zerbin/QtPicture.h"

namespace zerbin::studio {
namespace {

constexpr qreal kHeader = 38;
constexpr qreal kRow = 20;
constexpr qreal kPadding = 8;
constexpr qreal kMinWidth = 150;

const QFont& NameFont() {
    static const QFont font = [] {
        QFont bold;
        bold.setBold(true);
        return bold;
    }();
    return font;
}

const QFont& SmallFont() {
    static const QFont font = [] {
        QFont small;
        small.setPointSizeF(small.pointSizeF() * 0.85);
        return small;
    }();
    return font;
}

qreal SmallAdvance(const QString& text) {
    return QFontMetricsF(SmallFont()).horizontalAdvance(text);
}

// The widest label of the terminals, filling in their labels on the way.
qreal Labelled(std::vector<TerminalName>& terminals) {
    qreal widest = 0;
    for (TerminalName& terminal : terminals) {
        terminal.label = QString::fromStdString(terminal.name);
        widest = std::max(widest, SmallAdvance(terminal.label));
    }
    return widest;
}

bool Visible(const std::shared_ptr<IObject>& member) {
    const auto element = std::dynamic_pointer_cast<ICanvasElement>(member);
    return element && element->ICanvasElement_Visible();
}

// The block's colour number has red in the lowest byte.
QColor ColourOf(int32_t number) {
    if (number == 0) {
        return QColor(0x4a, 0x6f, 0x8f);
    }
    return QColor(number & 0xFF, (number >> 8) & 0xFF, (number >> 16) & 0xFF).darker(130);
}

}  // namespace

std::shared_ptr<const BlockLook> BlockItem::LookOf(IAppObject& block) {
    auto look = std::make_shared<BlockLook>();
    look->type = QString::fromStdString(block.IAppObject_Name());
    if (look->type.isEmpty()) {
        look->type = QString::fromStdString(block.IAppObject_UniqueIDString());
    }
    look->description = QString::fromStdString(block.IAppObject_Description());
    constexpr int kIcon = 20;
    look->icon = ToQPixmap(block.IAppObject_Icon().get(), QSize(kIcon, kIcon));
    if (look->icon.isNull()) {
        look->icon = QPixmap(kIcon, kIcon);
        look->icon.fill(QColor(0xdd, 0xe4, 0xec));
    }
    look->icon = look->icon.scaled(kIcon, kIcon, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    if (const std::shared_ptr<IInputs> all = block.IAppObject_Inputs()) {
        for (const std::shared_ptr<IInput>& input : all->IInputs_NewEnum()) {
            if (Visible(input)) {
                look->inputs.push_back({input->IInput_Name(), {}});
            }
        }
    }
    if (const std::shared_ptr<IOutputs> all = block.IAppObject_Outputs()) {
        for (const std::shared_ptr<IOutput>& output : all->IOutputs_NewEnum()) {
            if (Visible(output)) {
                look->outputs.push_back({output->IOutput_Name(), {}});
            }
        }
    }
    const qreal terminals = Labelled(look->inputs) + Labelled(look->outputs);
    // A block is named after its type and a number until the user names it otherwise: room
    // for that, and a longer name is cut short with an ellipsis. Measuring each block's own
    // name would cost a text layout per block of a large project.
    static const QFontMetricsF names(NameFont());
    look->width = std::max({kMinWidth, SmallAdvance(look->type) + 20 + 3 * kPadding,
                            names.horizontalAdvance(look->type + " 000") + 20 + 3 * kPadding,
                            terminals + 5 * kPadding});
    return look;
}

BlockItem::BlockItem(std::string key, std::shared_ptr<IAppObject> block,
                     std::shared_ptr<const BlockLook> look)
    : key_(std::move(key)), block_(std::move(block)), look_(std::move(look)) {
    setFlags(ItemIsMovable | ItemIsSelectable | ItemSendsGeometryChanges);
    setAcceptHoverEvents(true);
    Refresh();
}

namespace {

std::shared_ptr<const BlockLook> StandInLook(const MissingBlock& missing) {
    auto look = std::make_shared<BlockLook>();
    look->type = QObject::tr("%1 (type missing)").arg(QString::fromStdString(missing.type));
    look->description =
        QObject::tr("The library has no block type '%1'. The block is kept as it was saved.")
            .arg(QString::fromStdString(missing.type));
    look->icon = QPixmap(20, 20);
    look->icon.fill(QColor(0xd0, 0xd0, 0xd0));
    for (const std::string& input : missing.inputs) {
        look->inputs.push_back({input, {}});
    }
    for (const std::string& output : missing.outputs) {
        look->outputs.push_back({output, {}});
    }
    const qreal terminals = Labelled(look->inputs) + Labelled(look->outputs);
    look->width = std::max(
        {kMinWidth, SmallAdvance(look->type) + 20 + 3 * kPadding, terminals + 5 * kPadding});
    return look;
}

}  // namespace

BlockItem::BlockItem(const MissingBlock& missing)
    : key_(missing.key),
      look_(StandInLook(missing)),
      name_(QString::fromStdString(missing.name)),
      colour_(0x8c, 0x8c, 0x8c) {
    setAcceptHoverEvents(true);
    setPos(missing.pos);
    Refresh();
}

void BlockItem::Refresh() {
    if (block_) {
        name_ = QString::fromStdString(block_->IAppObject_UserName());
        colour_ = ColourOf(block_->IAppObject_Color());
        typeChanged_.reset();
    }
    const std::size_t rows = std::max(look_->inputs.size(), look_->outputs.size());
    const QRectF rect(0, 0, look_->width, kHeader + static_cast<qreal>(rows) * kRow + kPadding / 2);
    // Most changes are of values, which leave the shape: telling the scene of a change of
    // shape costs a pass over its index for every block a large step touches.
    if (rect != rect_) {
        prepareGeometryChange();
        rect_ = rect;
    }

    if (block_) {
        refreshing_ = true;
        setPos(block_->IAppObject_XPosition(), block_->IAppObject_YPosition());
        refreshing_ = false;
    }
    update();
    if (auto* canvas = static_cast<CanvasScene*>(scene())) {
        canvas->Grow(sceneBoundingRect());
        canvas->RouteWiresOf(key_);
    }
}

Terminal BlockItem::TerminalOf(std::size_t row, bool output) const {
    const TerminalName& terminal = (output ? look_->outputs : look_->inputs)[row];
    return Terminal{
        terminal.name, output,
        QPointF(output ? rect_.width() : 0, kHeader + (static_cast<qreal>(row) + 0.5) * kRow),
        terminal.label};
}

std::optional<Terminal> BlockItem::FindTerminal(const std::string& name, bool output) const {
    const std::vector<TerminalName>& names = output ? look_->outputs : look_->inputs;
    for (std::size_t row = 0; row < names.size(); ++row) {
        if (names[row].name == name) {
            return TerminalOf(row, output);
        }
    }
    return std::nullopt;
}

bool BlockItem::TypeChanged() const {
    // Asked when the block is first drawn near enough to show the mark, not as a large project
    // is read: a hundred thousand blocks would each be asked at once.
    if (!typeChanged_) {
        const auto typed = std::dynamic_pointer_cast<ITypeChange>(block_);
        typeChanged_ = typed && typed->ITypeChange_IsChanged();
    }
    return *typeChanged_;
}

std::vector<Terminal> BlockItem::Terminals() const {
    std::vector<Terminal> terminals;
    for (const bool output : {false, true}) {
        const std::size_t rows = (output ? look_->outputs : look_->inputs).size();
        for (std::size_t row = 0; row < rows; ++row) {
            terminals.push_back(TerminalOf(row, output));
        }
    }
    return terminals;
}

std::optional<Terminal> BlockItem::TerminalAt(QPointF itemPos, qreal slack) const {
    const qreal reach = kTerminalRadius + slack;
    // Only the two edges carry terminals, one to a row.
    const bool left = std::abs(itemPos.x()) <= reach;
    const bool right = std::abs(itemPos.x() - rect_.width()) <= reach;
    if (!left && !right) {
        return std::nullopt;
    }
    const std::size_t rows = (right ? look_->outputs : look_->inputs).size();
    for (std::size_t row = 0; row < rows; ++row) {
        Terminal terminal = TerminalOf(row, right);
        if (std::abs(itemPos.y() - terminal.centre.y()) <= reach) {
            return terminal;
        }
    }
    return std::nullopt;
}

QRectF BlockItem::NameRect() const {
    return QRectF(kPadding + 24, 2, rect_.width() - 2 * kPadding - 24, 18);
}

QRectF BlockItem::boundingRect() const {
    // Room for a terminal's ring while a wire is dragged.
    return rect_.adjusted(-kTerminalRadius - 4, -2, kTerminalRadius + 4, 2);
}

void BlockItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget*) {
    const bool selected = option->state & QStyle::State_Selected;
    // A stand-in's body is grey and its edge dashed: nothing of it can be edited.
    const QColor body = StandIn() ? QColor(0xe4, 0xe4, 0xe4) : QColor(0xfb, 0xfc, 0xfd);
    QPen edge(selected ? QColor(0xff, 0xb0, 0x20) : colour_.darker(140), selected ? 2.5 : 1.2);
    if (StandIn()) {
        edge.setStyle(Qt::DashLine);
    }
    const QRectF head(0, 0, rect_.width(), kHeader);
    // Far out, names, terminals and round corners would be unreadable specks: the block's
    // shape and colour suffice, and ten thousand of them must paint fast.
    if (option->levelOfDetailFromTransform(painter->worldTransform()) < kDetailZoom) {
        painter->fillRect(rect_, body);
        painter->fillRect(head, colour_);
        painter->setPen(selected ? edge : QPen(edge.color(), 0));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(rect_);
        return;
    }
    painter->setRenderHint(QPainter::Antialiasing);
    QPainterPath outline;
    outline.addRoundedRect(rect_, 6, 6);
    painter->fillPath(outline, body);
    // The header's lower corners are square: a rounded header with its bottom strip filled.
    QPainterPath header;
    header.addRoundedRect(head, 6, 6);
    painter->fillPath(header, colour_);
    painter->fillRect(QRectF(0, kHeader - 8, rect_.width(), 8), colour_);
    painter->setPen(edge);
    painter->setBrush(Qt::NoBrush);
    painter->drawPath(outline);

    painter->drawPixmap(QPointF(kPadding, 9), look_->icon);
    if (TypeChanged()) {
        // A changed type: an amber badge on the icon until the block is updated.
        static const QBrush badge(QColor(0xf5, 0xa6, 0x23));
        painter->setPen(QPen(Qt::white, 1.2));
        painter->setBrush(badge);
        painter->drawEllipse(QPointF(kPadding + 18, 11), 7, 7);
        painter->setFont(NameFont());
        painter->setPen(Qt::black);
        painter->drawText(QRectF(kPadding + 11, 4, 14, 14), Qt::AlignCenter, QStringLiteral("!"));
    }
    painter->setPen(Qt::white);
    painter->setFont(NameFont());
    painter->drawText(
        NameRect(), Qt::AlignLeft | Qt::AlignVCenter,
        QFontMetricsF(NameFont()).elidedText(name_, Qt::ElideRight, NameRect().width()));
    painter->setFont(SmallFont());
    painter->setPen(QColor(0xe6, 0xee, 0xf5));
    painter->drawText(QRectF(kPadding + 24, 19, rect_.width() - 2 * kPadding - 24, 16),
                      Qt::AlignLeft | Qt::AlignVCenter, look_->type);

    painter->setPen(QColor(0x26, 0x32, 0x3c));
    const auto rowOf = [](std::size_t row) {
        return kHeader + (static_cast<qreal>(row) + 0.5) * kRow;
    };
    for (const bool output : {false, true}) {
        const std::vector<TerminalName>& names = output ? look_->outputs : look_->inputs;
        for (std::size_t row = 0; row < names.size(); ++row) {
            const QRectF line(kPadding + 2, rowOf(row) - kRow / 2, rect_.width() - 2 * kPadding - 4,
                              kRow);
            painter->drawText(line, (output ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter,
                              names[row].label);
        }
    }
    static const QBrush inputBrush(QColor(0x3d, 0x8b, 0x5a));
    static const QBrush outputBrush(QColor(0xe0, 0x8a, 0x2e));
    static const QBrush dimmedBrush(QColor(0xc8, 0xcc, 0xd0));
    static const QBrush litBrush(QColor(0x1f, 0x6f, 0xe0));
    static const QPen litPen(QColor(0x9c, 0xc8, 0xff), 3);
    static const QPen plainPen(Qt::white, 1.5);
    const auto* canvas = static_cast<const CanvasScene*>(scene());
    for (const bool output : {false, true}) {
        const std::vector<TerminalName>& names = output ? look_->outputs : look_->inputs;
        for (std::size_t row = 0; row < names.size(); ++row) {
            // While a wire is dragged the terminals that take it are ringed, the rest dimmed.
            const CanvasScene::Guide guide = canvas != nullptr && !StandIn()
                                                 ? canvas->GuideOf(key_, names[row].name, output)
                                                 : CanvasScene::Guide::Plain;
            painter->setPen(guide == CanvasScene::Guide::Lit ? litPen : plainPen);
            painter->setBrush(guide == CanvasScene::Guide::Lit      ? litBrush
                              : guide == CanvasScene::Guide::Dimmed ? dimmedBrush
                              : output                              ? outputBrush
                                                                    : inputBrush);
            const qreal radius =
                guide == CanvasScene::Guide::Lit ? kTerminalRadius + 1.5 : kTerminalRadius;
            painter->drawEllipse(QPointF(output ? rect_.width() : 0, rowOf(row)), radius, radius);
        }
    }
}

QVariant BlockItem::itemChange(GraphicsItemChange change, const QVariant& value) {
    if (change == ItemPositionChange) {
        if (auto* canvas = static_cast<CanvasScene*>(scene())) {
            // The wires that went around the block where it stood may run straight now.
            canvas->RerouteAcross(sceneBoundingRect());
            if (!refreshing_) {
                return canvas->Snapped(value.toPointF());
            }
        }
    }
    if (change == ItemPositionHasChanged) {
        if (auto* canvas = static_cast<CanvasScene*>(scene())) {
            canvas->RerouteAcross(sceneBoundingRect());
            if (!refreshing_) {
                canvas->Grow(sceneBoundingRect());
                canvas->RouteWiresOf(key_);
            }
        }
    }
    return QGraphicsItem::itemChange(change, value);
}

void BlockItem::hoverMoveEvent(QGraphicsSceneHoverEvent* event) {
    PointAt(TerminalAt(event->pos(), 2));
    QGraphicsItem::hoverMoveEvent(event);
}

void BlockItem::hoverLeaveEvent(QGraphicsSceneHoverEvent* event) {
    PointAt(std::nullopt);
    QGraphicsItem::hoverLeaveEvent(event);
}

// Over a terminal the cursor says a wire can start here, and the tip names the terminal.
void BlockItem::PointAt(const std::optional<Terminal>& terminal) {
    QString tip = terminal ? terminal->label : look_->description;
    if (!terminal && TypeChanged()) {
        if (const auto typed = std::dynamic_pointer_cast<ITypeChange>(block_)) {
            tip = QObject::tr("The block's type changed since the project was saved:");
            for (const std::string& line : typed->ITypeChange_Changes()) {
                tip += "\n" + QString::fromStdString(line);
            }
        }
    }
    if (toolTip() != tip) {
        setToolTip(tip);
    }
    if (terminal && !hasCursor()) {
        setCursor(Qt::CrossCursor);
    } else if (!terminal && hasCursor()) {
        unsetCursor();
    }
}

}  // namespace zerbin::studio
