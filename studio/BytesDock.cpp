#include "studio/BytesDock.h"

#include <algorithm>

#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

namespace zerbin::studio {
namespace {

// Eight bytes a row keep both images readable in a dock beside the canvas.
constexpr int kColumns = 8;

QColor SpanColour(std::size_t index) {
    static const QColor colours[] = {QColor(0xdd, 0xe7, 0xf3), QColor(0xf6, 0xe3, 0xc8),
                                     QColor(0xd8, 0xef, 0xdc), QColor(0xf1, 0xd9, 0xe6),
                                     QColor(0xe4, 0xe0, 0xf4), QColor(0xf4, 0xf1, 0xc9)};
    return colours[index % std::size(colours)];
}

}  // namespace

std::vector<ImageSpan> ImageSpans(IAppObject& block) {
    std::vector<ImageSpan> spans{
        {QObject::tr("Length"), 0, 1, {}},
        {QObject::tr("Object ID"), 1, 2, QString::fromStdString(block.IAppObject_ID())}};
    if (const std::shared_ptr<IInputs> inputs = block.IAppObject_Inputs()) {
        for (const std::shared_ptr<IInput>& input : inputs->IInputs_NewEnum()) {
            if (input->IInput_CDBPosition() > 0) {
                spans.push_back({QString::fromStdString(input->IInput_Name()),
                                 input->IInput_CDBPosition(), 0,
                                 QString::fromStdString(input->IInput_Value())});
            }
        }
    }
    if (const std::shared_ptr<IAttributes> attributes = block.IAppObject_Attributes()) {
        for (const std::shared_ptr<IAttribute>& attribute : attributes->IAttributes_NewEnum()) {
            if (attribute->IAttribute_CDBPosition() > 0) {
                QString value = QString::fromStdString(attribute->IAttribute_DispValue());
                if (value.isEmpty()) {
                    value = QString::fromStdString(attribute->IAttribute_Value());
                }
                spans.push_back({QString::fromStdString(attribute->IAttribute_Name()),
                                 attribute->IAttribute_CDBPosition(), 0, value});
            }
        }
    }
    std::stable_sort(spans.begin(), spans.end(), [](const ImageSpan& a, const ImageSpan& b) {
        return a.position < b.position;
    });
    const int end = std::min(255, static_cast<int>(block.IAppObject_CDBDimension()));
    for (std::size_t i = 2; i < spans.size(); ++i) {
        const int next = i + 1 < spans.size() ? spans[i + 1].position : end;
        spans[i].length = std::max(0, next - spans[i].position);
    }
    return spans;
}

// A line of text that never asks for more width than it gets: a long name is cut short with an
// ellipsis, and the tip holds it whole. The dock keeps its width whatever the user names.
class ElidedLabel : public QLabel {
public:
    void SetFullText(const QString& text) {
        full_ = text;
        setToolTip(text);
        Elide();
    }
    QSize sizeHint() const override { return QSize(0, QLabel::sizeHint().height()); }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void resizeEvent(QResizeEvent* event) override {
        QLabel::resizeEvent(event);
        Elide();
    }

private:
    void Elide() { setText(fontMetrics().elidedText(full_, Qt::ElideRight, width())); }

    QString full_;
};

BytesDock::BytesDock(QWidget* parent)
    : QDockWidget(tr("Bytes"), parent),
      title_(new ElidedLabel),
      motorola_(new QTableWidget(0, kColumns)),
      intel_(new QTableWidget(0, kColumns)) {
    setObjectName("bytes");
    auto* body = new QWidget;
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(title_);
    for (QTableWidget* table : {motorola_, intel_}) {
        layout->addWidget(new QLabel(table == motorola_
                                         ? tr("Image (most significant byte first)")
                                         : tr("Intel image (least significant first)")));
        table->setEditTriggers(QAbstractItemView::NoEditTriggers);
        table->setSelectionMode(QAbstractItemView::NoSelection);
        table->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        table->horizontalHeader()->setDefaultSectionSize(30);
        table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
        QFont mono("monospace");
        mono.setStyleHint(QFont::Monospace);
        table->setFont(mono);
        QStringList columns;
        for (int column = 0; column < kColumns; ++column) {
            columns << QString("+%1").arg(column);
        }
        table->setHorizontalHeaderLabels(columns);
        layout->addWidget(table, 1);
    }
    setWidget(body);
    ShowBlock(nullptr);
}

void BytesDock::ShowBlock(std::shared_ptr<IAppObject> block) {
    block_ = std::move(block);
    Refresh();
}

void BytesDock::Refresh() {
    if (!block_) {
        title_->SetFullText(tr("Select a block to see its image."));
        images_[0].clear();
        images_[1].clear();
        FillTable(motorola_, {}, {});
        FillTable(intel_, {}, {});
        return;
    }
    title_->SetFullText(QString::fromStdString(block_->IAppObject_UserName() + " (" +
                                               block_->IAppObject_UniqueIDString() + ")"));
    const std::vector<ImageSpan> spans = ImageSpans(*block_);
    images_[0] = QString::fromStdString(block_->IAppObject_Stream());
    images_[1] = QString::fromStdString(block_->IAppObject_IntelStream());
    FillTable(motorola_, images_[0], spans);
    FillTable(intel_, images_[1], spans);
}

QString BytesDock::Image(bool intel) const {
    return images_[intel ? 1 : 0];
}

QString BytesDock::ToolTipAt(bool intel, int offset) const {
    const QTableWidget* table = intel ? intel_ : motorola_;
    const QTableWidgetItem* item = table->item(offset / kColumns, offset % kColumns);
    return item ? item->toolTip() : QString();
}

void BytesDock::FillTable(QTableWidget* table, const QString& image,
                          const std::vector<ImageSpan>& spans) {
    const int bytes = static_cast<int>(image.size() / 2);
    table->clearContents();
    table->setRowCount((bytes + kColumns - 1) / kColumns);
    QStringList rows;
    for (int row = 0; row < table->rowCount(); ++row) {
        rows << QString("%1").arg(row * kColumns, 2, 16, QChar('0')).toUpper();
    }
    table->setVerticalHeaderLabels(rows);
    for (int offset = 0; offset < bytes; ++offset) {
        auto* item = new QTableWidgetItem(image.mid(offset * 2, 2));
        item->setTextAlignment(Qt::AlignCenter);
        for (std::size_t i = 0; i < spans.size(); ++i) {
            const ImageSpan& span = spans[i];
            if (offset >= span.position && offset < span.position + span.length) {
                item->setBackground(SpanColour(i));
                item->setToolTip(tr("%1\noffset %2, %n byte(s)\nvalue: %3", nullptr, span.length)
                                     .arg(span.name)
                                     .arg(span.position)
                                     .arg(span.value));
            }
        }
        table->setItem(offset / kColumns, offset % kColumns, item);
    }
}

}  // namespace zerbin::studio
