#include "studio/BlockItem.h"

#include <algorithm>

#include <QFontMetricsF>
#include <QHash>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include "interfaces/ICanvasElement.h"
#include "platform/Picture.h"

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
    QPixmap pixmap;
    if (const std::shared_ptr<const Picture> icon = block.IAppObject_Icon()) {
        pixmap.loadFromData(icon->bytes.data(), static_cast<uint>(icon->bytes.size()));
    }
    if (pixmap.isNull()) {
        pixmap = QPixmap(size, size);
        pixmap.fill(QColor(0xdd, 0xe4, 0xec));
    }
    pixmap = pixmap.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    cache.insert(key, pixmap);
    return pixmap;
}

TerminalItem::TerminalItem(QGraphicsItem* parent, std::string name, bool output, QPointF centre)
    : QGraphicsEllipseItem(centre.x() - kRadius, centre.y() - kRadius, 2 * kRadius, 2 * kRadius,
                           parent),
      name_(std::move(name)),
      output_(output) {
    setBrush(output ? QColor(0xe0, 0x8a, 0x2e) : QColor(0x3d, 0x8b, 0x5a));
    setPen(QPen(Qt::white, 1.5));
    setToolTip(QString::fromStdString(name_));
    setCursor(Qt::CrossCursor);
}

std::string TerminalItem::BlockKey() const {
    const auto* block = qgraphicsitem_cast<const BlockItem*>(parentItem());
    return block ? block->Key() : std::string();
}

BlockItem::BlockItem(std::string key, std::shared_ptr<IAppObject> block)
    : key_(std::move(key)), block_(std::move(block)) {
    setFlags(ItemIsMovable | ItemIsSelectable | ItemSendsGeometryChanges);
    setCacheMode(DeviceCoordinateCache);
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
    setToolTip(QString::fromStdString(block_->IAppObject_Description()));

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
    static const QFontMetricsF small(SmallFont());
    qreal longestIn = 0;
    qreal longestOut = 0;
    for (const std::string& name : inputs) {
        longestIn = std::max(longestIn, small.horizontalAdvance(QString::fromStdString(name)));
    }
    for (const std::string& name : outputs) {
        longestOut = std::max(longestOut, small.horizontalAdvance(QString::fromStdString(name)));
    }
    const qreal width = std::max({kMinWidth, names.horizontalAdvance(name_) + 20 + 3 * kPadding,
                                  small.horizontalAdvance(type_) + 20 + 3 * kPadding,
                                  longestIn + longestOut + 5 * kPadding});
    const std::size_t rows = std::max(inputs.size(), outputs.size());
    rect_ = QRectF(0, 0, width, kHeader + static_cast<qreal>(rows) * kRow + kPadding / 2);

    for (TerminalItem* terminal : terminals_) {
        delete terminal;
    }
    terminals_.clear();
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        terminals_.push_back(new TerminalItem(
            this, inputs[i], false, QPointF(0, kHeader + (static_cast<qreal>(i) + 0.5) * kRow)));
    }
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        terminals_.push_back(
            new TerminalItem(this, outputs[i], true,
                             QPointF(width, kHeader + (static_cast<qreal>(i) + 0.5) * kRow)));
    }

    refreshing_ = true;
    setPos(block_->IAppObject_XPosition(), block_->IAppObject_YPosition());
    refreshing_ = false;
    update();
    emit moved(key_);
}

TerminalItem* BlockItem::Terminal(const std::string& name, bool output) const {
    for (TerminalItem* terminal : terminals_) {
        if (terminal->IsOutput() == output && terminal->Name() == name) {
            return terminal;
        }
    }
    return nullptr;
}

QRectF BlockItem::NameRect() const {
    return QRectF(kPadding + 24, 2, rect_.width() - 2 * kPadding - 24, 18);
}

QRectF BlockItem::boundingRect() const {
    return rect_.adjusted(-TerminalItem::kRadius - 2, -2, TerminalItem::kRadius + 2, 2);
}

void BlockItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget*) {
    painter->setRenderHint(QPainter::Antialiasing);
    const bool selected = option->state & QStyle::State_Selected;
    QPainterPath outline;
    outline.addRoundedRect(rect_, 6, 6);
    painter->fillPath(outline, QColor(0xfb, 0xfc, 0xfd));
    QPainterPath header;
    header.setFillRule(Qt::WindingFill);
    header.addRoundedRect(QRectF(0, 0, rect_.width(), kHeader), 6, 6);
    header.addRect(QRectF(0, kHeader - 8, rect_.width(), 8));
    painter->fillPath(header.simplified(), colour_);
    painter->setPen(
        QPen(selected ? QColor(0xff, 0xb0, 0x20) : colour_.darker(140), selected ? 2.5 : 1.2));
    painter->drawPath(outline);
    // Far out, names and terminals would be unreadable specks: the block's shape suffices.
    if (option->levelOfDetailFromTransform(painter->worldTransform()) < 0.35) {
        return;
    }

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
    for (const TerminalItem* terminal : terminals_) {
        const qreal y = terminal->rect().center().y();
        const QString name = QString::fromStdString(terminal->Name());
        const QRectF row(kPadding + 2, y - kRow / 2, rect_.width() - 2 * kPadding - 4, kRow);
        painter->drawText(
            row, (terminal->IsOutput() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter, name);
    }
}

QVariant BlockItem::itemChange(GraphicsItemChange change, const QVariant& value) {
    if (change == ItemPositionHasChanged && !refreshing_) {
        emit moved(key_);
    }
    return QGraphicsObject::itemChange(change, value);
}

}  // namespace zerbin::studio
