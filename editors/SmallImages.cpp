#include "editors/SmallImages.h"

namespace zerbin {

QStringList SmallImageKeys() {
    return {QStringLiteral("cp"),      QStringLiteral("nvi"),      QStringLiteral("nvo"),
            QStringLiteral("error"),   QStringLiteral("nvofield"), QStringLiteral("nvifield"),
            QStringLiteral("cpfield"), QStringLiteral("cross"),    QStringLiteral("ledon"),
            QStringLiteral("ledoff"),  QStringLiteral("switchon"), QStringLiteral("switchoff"),
            QStringLiteral("info")};
}

QIcon SmallImage(const QString& key) {
    if (!SmallImageKeys().contains(key)) {
        return {};
    }
    // The @2x file beside each image is picked up for high-density screens.
    return QIcon(QStringLiteral(":/zerbin/editors/icons/%1.png").arg(key));
}

}  // namespace zerbin
