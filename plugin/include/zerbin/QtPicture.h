// For a Qt host: the icon of a block (IAppObject_Icon) as a QIcon, with every image of the
// icon file, so that Qt picks the size it draws. Header-only, so that the component itself
// does not link Qt; the host links Qt6::Gui.
#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QIcon>
#include <QImage>
#include <QImageReader>
#include <QPixmap>

#include "platform/Picture.h"

namespace zerbin {

// An empty QIcon for nothing or for bytes that do not decode.
inline QIcon ToQIcon(const Picture* picture) {
    QIcon icon;
    if (picture == nullptr || picture->bytes.empty()) {
        return icon;
    }
    const QByteArray data(reinterpret_cast<const char*>(picture->bytes.data()),
                          static_cast<qsizetype>(picture->bytes.size()));
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, "ico");
    for (int i = 0; i < reader.imageCount(); ++i) {
        if (!reader.jumpToImage(i)) {
            break;
        }
        const QImage image = reader.read();
        if (!image.isNull()) {
            icon.addPixmap(QPixmap::fromImage(image));
        }
    }
    return icon;
}

// The image of the icon nearest to size, or a null QPixmap.
inline QPixmap ToQPixmap(const Picture* picture, const QSize& size) {
    const QIcon icon = ToQIcon(picture);
    return icon.isNull() ? QPixmap() : icon.pixmap(size);
}

}  // namespace zerbin
