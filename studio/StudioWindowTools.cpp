// What an engineer does with a drawing beyond editing it: find a block, line blocks up, export
// the drawing, print it, and look up the keys.
#include <algorithm>
#include <cmath>

#include <QBuffer>
#include <QDialog>
#include <QFileInfo>
#include <QGraphicsItem>
#include <QHeaderView>
#include <QImage>
#include <QMenuBar>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QStatusBar>
#include <QTableWidget>
#include <QVBoxLayout>

#ifdef ZERBIN_STUDIO_WITH_SVG
#include <QSvgGenerator>
#endif

#include "studio/BlockItem.h"
#include "studio/CanvasScene.h"
#include "studio/GuardedCall.h"
#include "studio/StudioWindow.h"

namespace zerbin::studio {
namespace {

constexpr qreal kDrawingMargin = 20;
// A PNG of a large drawing is scaled down to this many pixels on its longer side.
constexpr int kLargestImage = 8000;

}  // namespace

bool StudioWindow::FindBlock(const QString& text) {
    const std::vector<std::string>& keys = project_->BlockKeys();
    if (text.isEmpty() || keys.empty()) {
        return false;
    }
    // From the block after the last one found, round to it.
    const auto last = std::find(keys.begin(), keys.end(), found_);
    const std::size_t start =
        last == keys.end() ? 0 : static_cast<std::size_t>(last - keys.begin()) + 1;
    std::string hit;
    GuardedCall("find the block", [&] {
        for (std::size_t i = 0; i < keys.size() && hit.empty(); ++i) {
            const std::string& key = keys[(start + i) % keys.size()];
            const std::shared_ptr<IAppObject> block = project_->Block(key);
            if (QString::fromStdString(block->IAppObject_UserName())
                    .contains(text, Qt::CaseInsensitive) ||
                QString::fromStdString(block->IAppObject_UniqueIDString())
                    .contains(text, Qt::CaseInsensitive) ||
                QString::fromStdString(key).compare(text, Qt::CaseInsensitive) == 0) {
                hit = key;
            }
        }
    });
    if (!hit.empty()) {
        found_ = hit;
        SelectBlock(hit);
        if (const BlockItem* item = scene_->Item(hit)) {
            view_->centerOn(item);
        }
        return true;
    }
    statusBar()->showMessage(tr("No block's name, type or key holds \"%1\".").arg(text), 8000);
    return false;
}

void StudioWindow::Arrange(Arrangement arrangement) {
    std::vector<std::pair<std::string, QPointF>> blocks;
    for (const std::string& key : scene_->SelectedBlocks()) {
        blocks.emplace_back(key, scene_->Item(key)->pos());
    }
    if (blocks.size() < 2) {
        return;
    }
    const bool across =
        arrangement == Arrangement::AlignLeft || arrangement == Arrangement::SpreadAcross;
    const auto along = [across](QPointF pos) { return across ? pos.x() : pos.y(); };
    std::stable_sort(blocks.begin(), blocks.end(), [&](const auto& a, const auto& b) {
        return along(a.second) < along(b.second);
    });
    const qreal first = along(blocks.front().second);
    const qreal step =
        (along(blocks.back().second) - first) / static_cast<qreal>(blocks.size() - 1);
    std::vector<BlockMove> moves;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const auto& [key, from] = blocks[i];
        qreal place = first;
        if (arrangement == Arrangement::SpreadAcross || arrangement == Arrangement::SpreadDown) {
            place = scene_->Snapped(QPointF(first + step * static_cast<qreal>(i), 0)).x();
        }
        const QPointF to = across ? QPointF(place, from.y()) : QPointF(from.x(), place);
        if (to != from) {
            moves.push_back(BlockMove{key, from, to});
        }
    }
    if (!moves.empty()) {
        Do("arrange the blocks", new MoveCommand(*project_, std::move(moves)));
    }
}

void StudioWindow::RenderDrawing(QPainter& painter, const QRectF& target) {
    const QRectF source = scene_->ItemsBounds().adjusted(-kDrawingMargin, -kDrawingMargin,
                                                         kDrawingMargin, kDrawingMargin);
    // The drawing as it stands, not as the user happens to have selected it.
    const QList<QGraphicsItem*> selected = scene_->selectedItems();
    {
        const QSignalBlocker quiet(scene_);
        scene_->clearSelection();
        scene_->render(&painter, target, source, Qt::KeepAspectRatio);
        for (QGraphicsItem* item : selected) {
            item->setSelected(true);
        }
    }
}

bool StudioWindow::ExportDrawing(const QString& file) {
    const QString suffix = QFileInfo(file).suffix().toLower();
    const QRectF bounds = scene_->ItemsBounds().adjusted(-kDrawingMargin, -kDrawingMargin,
                                                         kDrawingMargin, kDrawingMargin);
    // Drawn whole in memory first, then written as every file of the studio is: all of it or,
    // the old file left as it was, nothing.
    QByteArray bytes;
    QBuffer out(&bytes);
    out.open(QIODevice::WriteOnly);
    bool drawn = false;
    GuardedCall("export the drawing", [&] {
        if (suffix == "pdf") {
            QPdfWriter pdf(&out);
            pdf.setTitle(QFileInfo(file_).completeBaseName());
            pdf.setCreator(QStringLiteral("Zerbin Studio"));
            pdf.setPageSize(QPageSize(bounds.size() * 0.75, QPageSize::Point));
            pdf.setPageMargins(QMarginsF());
            QPainter painter(&pdf);
            RenderDrawing(painter, QRectF(QPointF(), QSizeF(pdf.width(), pdf.height())));
            drawn = painter.end();
#ifdef ZERBIN_STUDIO_WITH_SVG
        } else if (suffix == "svg") {
            QSvgGenerator svg;
            svg.setOutputDevice(&out);
            svg.setSize(bounds.size().toSize());
            svg.setViewBox(QRectF(QPointF(), bounds.size()));
            svg.setTitle(QFileInfo(file_).completeBaseName());
            QPainter painter(&svg);
            RenderDrawing(painter, QRectF(QPointF(), bounds.size()));
            drawn = painter.end();
#endif
        } else if (suffix == "png") {
            const qreal scale =
                std::min(1.0, kLargestImage / std::max(bounds.width(), bounds.height()));
            QImage image((bounds.size() * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::white);
            QPainter painter(&image);
            RenderDrawing(painter, QRectF(QPointF(), QSizeF(image.size())));
            painter.end();
            drawn = image.save(&out, "PNG");
        }
    });
    std::string why;
    if (!drawn) {
        why = tr("cannot write drawing '%1': the studio cannot write .%2 files")
                  .arg(file, suffix)
                  .toStdString();
    } else {
        BlockFactory::ProjectFiles()->IProjectFiles_WriteText(file.toStdString(), "drawing",
                                                              bytes.toStdString(), why);
    }
    if (!why.empty()) {
        ShowMessage("Cannot export the drawing: " + why + ".", "Zerbin Studio",
                    MessageIcon::Critical);
        return false;
    }
    statusBar()->showMessage(tr("Drawing exported to %1").arg(file), 8000);
    return true;
}

void StudioWindow::PrintDrawing(QPrinter& printer) {
    QPainter painter;
    if (!painter.begin(&printer)) {
        ShowMessage("Cannot print the drawing: the printer did not start.", "Zerbin Studio",
                    MessageIcon::Critical);
        return;
    }
    GuardedCall("print the drawing", [&] {
        RenderDrawing(painter, printer.pageLayout().paintRectPixels(printer.resolution()));
    });
    painter.end();
}

void StudioWindow::BuildHelp() {
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    QAction* keys = help->addAction(tr("&Keyboard shortcuts"));
    keys->setObjectName("actionShortcuts");
    connect(keys, &QAction::triggered, this, [this] {
        auto* dialog = new QDialog(this);
        dialog->setObjectName("shortcuts");
        dialog->setWindowTitle(tr("Keyboard shortcuts"));
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        auto* table = new QTableWidget(0, 2, dialog);
        table->setHorizontalHeaderLabels({tr("Action"), tr("Keys")});
        table->verticalHeader()->setVisible(false);
        table->setEditTriggers(QAbstractItemView::NoEditTriggers);
        for (QAction* action : findChildren<QAction*>()) {
            if (action->shortcuts().isEmpty() || action->objectName().isEmpty()) {
                continue;
            }
            QStringList sequences;
            for (const QKeySequence& sequence : action->shortcuts()) {
                sequences << sequence.toString(QKeySequence::NativeText);
            }
            const int row = table->rowCount();
            table->insertRow(row);
            table->setItem(row, 0, new QTableWidgetItem(action->text().remove('&')));
            table->setItem(row, 1, new QTableWidgetItem(sequences.join(tr(" or "))));
        }
        table->sortItems(0);
        table->resizeColumnsToContents();
        table->horizontalHeader()->setStretchLastSection(true);
        auto* layout = new QVBoxLayout(dialog);
        layout->addWidget(table);
        dialog->resize(460, 560);
        dialog->show();
    });
}

}  // namespace zerbin::studio
