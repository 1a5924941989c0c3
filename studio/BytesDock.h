// The selected block's CDB image in both byte orders, one cell a byte, each member's bytes in
// a colour of their own; hovering a byte names the member, its place, length and value.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <QDockWidget>

#include "interfaces/IAppObject.h"

class QLabel;
class QTableWidget;

namespace zerbin::studio {

class ElidedLabel;

// One member's bytes in the image.
struct ImageSpan {
    QString name;
    int position = 0;
    int length = 0;
    QString value;
};

// The spans of a block's image, by position: the header, then each input and attribute that
// has a place in the CDB. A member's length reaches to the next member (or the image's end).
std::vector<ImageSpan> ImageSpans(IAppObject& block);

class BytesDock : public QDockWidget {
    Q_OBJECT

public:
    explicit BytesDock(QWidget* parent = nullptr);
    // Shows the block's images; nullptr empties the dock.
    void ShowBlock(std::shared_ptr<IAppObject> block);
    // Reads the images again.
    void Refresh();
    QString Image(bool intel) const;
    QString ToolTipAt(bool intel, int offset) const;

private:
    void FillTable(QTableWidget* table, const QString& image, const std::vector<ImageSpan>& spans);

    std::shared_ptr<IAppObject> block_;
    ElidedLabel* title_;
    QTableWidget* motorola_;
    QTableWidget* intel_;
    QString images_[2];
};

}  // namespace zerbin::studio
