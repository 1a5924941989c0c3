// ilSmall: the 16 by 16 images of the parameter list, by key. Each key has its image at 16 and
// at 32 pixels, so that it stays sharp at 200 % scaling.
#pragma once

#include <QIcon>
#include <QString>
#include <QStringList>

namespace zerbin {

// The thirteen keys.
QStringList SmallImageKeys();
// The image of a key; a null icon for a key that is none of the thirteen.
QIcon SmallImage(const QString& key);

}  // namespace zerbin
