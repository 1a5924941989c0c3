#include "studio/BlockItem.h"

#include <algorithm>

#include <QCursor>
#include <QFontMetricsF>
#include <QGraphicsSceneHoverEvent>
#include <QHash>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include "interfaces/ICanvasElement.h"
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

// Types and terminal names repeat from block to block; measuring text is what a large
// project's canvas would otherwise spend most of its time on.
qreal SmallAdvance(const QString& text) {
    static const QFontMetricsF metrics(SmallFont());
    static QHash<QString, qreal> widths;
    if (const auto found = widths.constFind(text); found != widths.constEnd()) {
        return *found;
    }
    return *widths.insert(text, metrics.horizontalAdvance(text));
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

QPixmap BlockIconPixmap(IAppObject& block, int size) {
    static QHash<QString, QPixmap> cache;
    const QString type = QString::fromStdString(block.IAppObject_UniqueIDString());
    const QString key = type + '/' + QString::number(size);
    if (const auto found = cache.constFind(key); found != cache.constEnd()) {
        return *found;
    }
    QPixmap pixmap = ToQPixmap(block.IAppObject_Icon().get(), QSize(size, size));
    if (pixmap.isNull()) {
        pixmap = QPixmap(size, size);
        pixmap.fill(QColor(0xdd, 0xe4, 0xec));
    }
    pixmap = pixmap.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    cache.insert(key, pixmap);
    return pixmap;
}

BlockItem::BlockItem(std::string key, std::shared_ptr<IAppObject> block)
    : key_(std::move(key)), block_(std::move(block)) {
    setFlags(ItemIsMovable | ItemIsSelectable | ItemSendsGeometryChanges);
    ShowDetail(true);
    setAcceptHoverEvents(true);
    Refresh();
}

void BlockItem::Refresh() {
    prepareGeometryChange();
    name_ = QString::fromStdString(block_->IAppObject_UserName());
    type_ = QString::fromStdString(block_->IAppObject_Name());
    if (type_.isEmpty()) {
        type_ = QString::fromStdString(block_->IAppObject_UniqueIDString());
    }
    icon_ = BlockIconPixmap(*block_, 20);
    colour_ = ColourOf(block_->IAppObject_Color());
    description_ = QString::fromStdString(block_->IAppObject_Description());

    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
    if (const std::shared_ptr<IInputs> all = block_->IAppObject_Inputs()) {
        for (const std::shared_ptr<IInput>& input : all->IInputs_NewEnum()) {
            if (Visible(input)) {
                inputs.push_back(input->IInput_Name());
            }
        }
    }
    if (const std::shared_ptr<IOutputs> all = block_->IAppObject_Outputs()) {
        for (const std::shared_ptr<IOutput>& output : all->IOutputs_NewEnum()) {
            if (Visible(output)) {
                outputs.push_back(output->IOutput_Name());
            }
        }
    }
    static const QFontMetricsF names(NameFont());
    qreal longestIn = 0;
    qreal longestOut = 0;
    for (const std::string& name : inputs) {
        longestIn = std::max(longestIn, SmallAdvance(QString::fromStdString(name)));
    }
    for (const std::string& name : outputs) {
        longestOut = std::max(longestOut, SmallAdvance(QString::fromStdString(name)));
    }
    const qreal width =
        std::max({kMinWidth, names.horizontalAdvance(name_) + 20 + 3 * kPadding,
                  SmallAdvance(type_) + 20 + 3 * kPadding, longestIn + longestOut + 5 * kPadding});
    const std::size_t rows = std::max(inputs.size(), outputs.size());
    rect_ = QRectF(0, 0, width, kHeader + static_cast<qreal>(rows) * kRow + kPadding / 2);

    terminals_.clear();
    terminals_.reserve(inputs.size() + outputs.size());
    for (const bool output : {false, true}) {
        const std::vector<std::string>& names = output ? outputs : inputs;
        for (std::size_t i = 0; i < names.size(); ++i) {
            terminals_.push_back(Terminal{
                names[i], output,
                QPointF(output ? width : 0, kHeader + (static_cast<qreal>(i) + 0.5) * kRow),
                QString::fromStdString(names[i])});
        }
    }
    PointAt(nullptr);

    refreshing_ = true;
    setPos(block_->IAppObject_XPosition(), block_->IAppObject_YPosition());
    refreshing_ = false;
    update();
    emit moved(key_);
}

void BlockItem::ShowDetail(bool detail) {
    setCacheMode(detail ? DeviceCoordinateCache : NoCache);
}

const Terminal* BlockItem::FindTerminal(const std::string& name, bool output) const {
    for (const Terminal& terminal : terminals_) {
        if (terminal.output == output && terminal.name == name) {
            return &terminal;
        }
    }
    return nullptr;
}

const Terminal* BlockItem::TerminalAt(QPointF itemPos, qreal slack) const {
    const qreal reach = kTerminalRadius + slack;
    // Only the two edges carry terminals.
    const bool left = std::abs(itemPos.x()) <= reach;
    const bool right = std::abs(itemPos.x() - rect_.width()) <= reach;
    if (!left && !right) {
        return nullptr;
    }
    for (const Terminal& terminal : terminals_) {
        const QPointF offset = itemPos - terminal.centre;
        if (terminal.output == right && std::abs(offset.x()) <= reach &&
            std::abs(offset.y()) <= reach) {
            return &terminal;
        }
    }
    return nullptr;
}

QRectF BlockItem::NameRect() const {
    return QRectF(kPadding + 24, 2, rect_.width() - 2 * kPadding - 24, 18);
}

QRectF BlockItem::boundingRect() const {
    return rect_.adjusted(-kTerminalRadius - 2, -2, kTerminalRadius + 2, 2);
}

void BlockItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget*) {
    const bool selected = option->state & QStyle::State_Selected;
    const QColor body(0xfb, 0xfc, 0xfd);
    const QPen edge(selected ? QColor(0xff, 0xb0, 0x20) : colour_.darker(140),
                    selected ? 2.5 : 1.2);
    const QRectF head(0, 0, rect_.width(), kHeader);
    // Far out, names, terminals and round corners would be unreadable specks: the block's
    // shape and colour suffice, and ten thousand of them must paint fast.
    if (option->levelOfDetailFromTransform(painter->worldTransform()) < kDetailZoom) {
        painter->fillRect(rect_, body);
        painter->fillRect(head, colour_);
        painter->setPen(selected ? edge : QPen(edge.color(), 0));
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
    painter->drawPath(outline);

    painter->drawPixmap(QPointF(kPadding, 9), icon_);
    painter->setPen(Qt::white);
    painter->setFont(NameFont());
    painter->drawText(
        NameRect(), Qt::AlignLeft | Qt::AlignVCenter,
        QFontMetricsF(NameFont()).elidedText(name_, Qt::ElideRight, NameRect().width()));
    painter->setFont(SmallFont());
    painter->setPen(QColor(0xe6, 0xee, 0xf5));
    painter->drawText(QRectF(kPadding + 24, 19, rect_.width() - 2 * kPadding - 24, 16),
                      Qt::AlignLeft | Qt::AlignVCenter, type_);

    painter->setPen(QColor(0x26, 0x32, 0x3c));
    for (const Terminal& terminal : terminals_) {
        const QRectF row(kPadding + 2, terminal.centre.y() - kRow / 2,
                         rect_.width() - 2 * kPadding - 4, kRow);
        painter->drawText(row,
                          (terminal.output ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter,
                          terminal.label);
    }
    static const QBrush inputBrush(QColor(0x3d, 0x8b, 0x5a));
    static const QBrush outputBrush(QColor(0xe0, 0x8a, 0x2e));
    painter->setPen(QPen(Qt::white, 1.5));
    for (const Terminal& terminal : terminals_) {
        painter->setBrush(terminal.output ? outputBrush : inputBrush);
        painter->drawEllipse(terminal.centre, kTerminalRadius, kTerminalRadius);
    }
}

QVariant BlockItem::itemChange(GraphicsItemChange change, const QVariant& value) {
    if (change == ItemPositionHasChanged && !refreshing_) {
        emit moved(key_);
    }
    return QGraphicsObject::itemChange(change, value);
}

void BlockItem::hoverMoveEvent(QGraphicsSceneHoverEvent* event) {
    if (const Terminal* terminal = TerminalAt(event->pos(), 2); terminal != hovered_) {
        PointAt(terminal);
    }
    QGraphicsObject::hoverMoveEvent(event);
}

void BlockItem::hoverLeaveEvent(QGraphicsSceneHoverEvent* event) {
    PointAt(nullptr);
    QGraphicsObject::hoverLeaveEvent(event);
}

// Over a terminal the cursor says a wire can start here, and the tip names the terminal.
void BlockItem::PointAt(const Terminal* terminal) {
    hovered_ = terminal;
    setToolTip(terminal != nullptr ? terminal->label : description_);
    if (terminal != nullptr && !hasCursor()) {
        setCursor(Qt::CrossCursor);
    } else if (terminal == nullptr && hasCursor()) {
        unsetCursor();
    }
}

}  // namespace zerbin::studio
