// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/AlbumArt.h"

#include "TagFixtures.h"

#include <gtest/gtest.h>

using namespace nurv;
using namespace nurv::test;

TEST(AlbumArt, DecodesPngAndJpegByTheirBytes)
{
    const AlbumArt source = picture(20, 10, Qt::blue);
    const AlbumArt png = albumArtFromBytes(encodedPicture(source, "png"));
    ASSERT_NE(png, nullptr);
    EXPECT_EQ(png->convertToFormat(QImage::Format_RGB32), *source);
    const AlbumArt jpeg = albumArtFromBytes(encodedPicture(source, "jpeg"));
    ASSERT_NE(jpeg, nullptr);
    EXPECT_EQ(jpeg->size(), source->size());
}

TEST(AlbumArt, GivesNoneForBytesThatAreNoPicture)
{
    EXPECT_EQ(albumArtFromBytes({}), nullptr);
    EXPECT_EQ(albumArtFromBytes("no picture at all"), nullptr);
    EXPECT_EQ(albumArtFromBytes(QByteArray("\x89PNG\r\n\x1a\n", 8)), nullptr);
}

TEST(AlbumArt, GivesNoneForAVectorPicture)
{
    EXPECT_EQ(albumArtFromBytes("<svg xmlns='http://www.w3.org/2000/svg' width='4' height='4'/>"), nullptr);
}

TEST(AlbumArt, RefusesAHeadThatAsksForTooMuchMemory)
{
    // A bitmap head of 30000 x 30000 pixels with nothing behind it.
    QByteArray bitmap = QByteArray::fromHex("424d36000000000000003600000028000000307500003075000001001800");
    bitmap.append(64, '\0');
    EXPECT_EQ(albumArtFromBytes(bitmap), nullptr);
}

TEST(AlbumArt, RendersToPng)
{
    const AlbumArt source = picture(3, 5, Qt::green);
    const QByteArray png = getBitmapDataForImage(source, ImageFileType::Png);
    EXPECT_TRUE(png.startsWith("\x89PNG\r\n\x1a\n"));
    EXPECT_EQ(QImage::fromData(png, "png").convertToFormat(QImage::Format_RGB32), *source);
}

TEST(AlbumArt, FailsToRenderAnEmptyImage)
{
    EXPECT_TRUE(failureOf([] {
                    static_cast<void>(getBitmapDataForImage(std::make_shared<const QImage>(), ImageFileType::Png));
                }).has_value());
}

TEST(AlbumArt, SurvivesPicturesCutAtAnyByte)
{
    const AlbumArt source = noisePicture(24, 24);
    for (const char *format : {"png", "jpeg", "bmp"}) {
        const QByteArray whole = encodedPicture(source, format);
        for (qsizetype length = 0; length < whole.size(); length += 37) {
            const AlbumArt decoded = albumArtFromBytes(whole.left(length));
            if (decoded) {
                EXPECT_EQ(decoded->size(), source->size());
            }
        }
    }
}
