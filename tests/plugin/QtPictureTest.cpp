// The component's icon as a Qt host shows it: every image of the icon resource decodes, at
// the sizes it was drawn, with its transparent background.
#include "zerbin/QtPicture.h"

#include <gtest/gtest.h>

#include <QGuiApplication>

#include "platform/Picture.h"

namespace zerbin {
namespace {

TEST(QtPicture, TheDefaultIconDecodesInEverySize) {
    const auto icon = LoadIconResource(kDefaultIconResource);
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(LoadIconResource(kDefaultIconResource), icon);  // one picture for the process
    EXPECT_EQ(LoadIconResource("OTHER"), nullptr);

    int argc = 1;
    char name[] = "QtPictureTest";
    char* argv[] = {name, nullptr};
    QGuiApplication application(argc, argv);
    const QIcon qicon = ToQIcon(icon.get());
    ASSERT_FALSE(qicon.isNull());
    EXPECT_EQ(qicon.availableSizes(), (QList<QSize>{{16, 16}, {32, 32}}));
    for (const int size : {16, 32}) {
        SCOPED_TRACE(size);
        const QImage image = ToQPixmap(icon.get(), QSize(size, size)).toImage();
        ASSERT_EQ(image.size(), QSize(size, size));
        EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);                       // background
        EXPECT_EQ(image.pixelColor(size / 2, size - 5).alpha(), 255);  // the block's body
        EXPECT_EQ(image.pixelColor(size / 2, size * 3 / 32), QColor(0, 0, 0x80));  // its frame
    }
    EXPECT_TRUE(ToQIcon(nullptr).isNull());
    const Picture garbage{{0, 0, 1, 0, 1, 0, 'x'}, "garbage"};
    EXPECT_TRUE(ToQIcon(&garbage).isNull());
}

}  // namespace
}  // namespace zerbin
