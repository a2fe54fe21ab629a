// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/PictureView.h"

#include "support/TestFolder.h"
#include "TagFixtures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {
namespace {

TEST(PictureViewTest, ScalesWhatIsLargerThanItsBox)
{
    const QImage view = pictureView(picture(400, 200, Qt::red)->bytes(), {100, 100});
    EXPECT_EQ(view.size(), QSize(100, 50));
    EXPECT_EQ(view.pixelColor(50, 25), QColor(Qt::red));
    EXPECT_EQ(pictureView(picture(40, 20, Qt::blue)->bytes(), {100, 100}).size(), QSize(40, 20));
}

TEST(PictureViewTest, ExaminesALargePictureAndADamagedOne)
{
    QImage image(8000, 5000, QImage::Format_RGB32);
    image.fill(Qt::green);
    const QByteArray large = encodedPicture(image, "png");
    const PictureReading reading = examinePicture(large);
    ASSERT_TRUE(reading.picture);
    EXPECT_EQ(reading.picture->size(), QSize(8000, 5000));
    const PictureReading damaged = examinePicture(large.left(large.size() / 2));
    EXPECT_FALSE(damaged.picture);
    EXPECT_TRUE(damaged.fault);
    EXPECT_TRUE(pictureView(large.left(40), {64, 64}).isNull());
}

TEST(PictureViewTest, TellsWhyAFileIsNoPicture)
{
    const TestFolder folder;
    EXPECT_EQ(*examinePictureFile(folder.path()).fault, u"it is no regular file");
    EXPECT_EQ(*examinePictureFile(folder.write(u"a.png"_s, {})).fault, u"it is empty");
    EXPECT_EQ(*examinePictureFile(folder.write(u"b.png"_s, "x")).fault, u"it is of no known kind");
}

TEST(PictureViewTest, NamesTheKind)
{
    const AlbumArt art = picture(4, 4, Qt::red);
    EXPECT_EQ(pictureExtension(encodedPicture(art, "jpeg")), u"jpg");
    EXPECT_EQ(pictureExtension(encodedPicture(art, "webp")), u"webp");
    EXPECT_EQ(pictureExtension("text"), QString());
    EXPECT_EQ(pictureWords(*art), u"PNG of 4 × 4");
}

} // namespace
} // namespace nurv::test
