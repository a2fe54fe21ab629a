// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/AlbumArt.h"

#include "support/LimitedRun.h"
#include "TagFixtures.h"
#include "tags/PictureMemory.h"

#include <QFile>
#include <QImageReader>
#include <QtEndian>

#include <gtest/gtest.h>
#include <zlib.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

QByteArray pngChunk(const QByteArray &type, const QByteArray &contents)
{
    const QByteArray body = type + contents;
    QByteArray size(4, '\0');
    qToBigEndian(static_cast<quint32>(contents.size()), size.data());
    QByteArray sum(4, '\0');
    qToBigEndian(static_cast<quint32>(::crc32(0, reinterpret_cast<const Bytef *>(body.constData()),
                                              static_cast<uInt>(body.size()))),
                 sum.data());
    return size + body + sum;
}

/// A whole and playable MNG around a PNG.
QByteArray mngAround(const QByteArray &png, quint32 width, quint32 height)
{
    QByteArray head(28, '\0');
    qToBigEndian(width, head.data());
    qToBigEndian(height, head.data() + 4);
    head[27] = 1;
    return QByteArray("\x8aMNG\r\n\x1a\n", 8) + pngChunk("MHDR", head) + png.mid(8) + pngChunk("MEND", {});
}

/// A PNG whose head says that it has so many pixels, in which nearly nothing stands.
QByteArray pngHead(quint32 width, quint32 height)
{
    QByteArray head(13, '\0');
    qToBigEndian(width, head.data());
    qToBigEndian(height, head.data() + 4);
    head[8] = 8;
    head[9] = 6;
    return QByteArray("\x89PNG\r\n\x1a\n", 8) + pngChunk("IHDR", head)
           + pngChunk("IDAT", QByteArray::fromHex("78da0300000000 01")) + pngChunk("IEND", {});
}

} // namespace

TEST(AlbumArt, DecodesEveryKindThatItKnows)
{
    const AlbumArt source = picture(20, 10, Qt::blue);
    const QList<QByteArray> installed = QImageReader::supportedImageFormats();
    for (const char *format : {"bmp", "tiff", "webp"}) {
        if (!installed.contains(format))
            continue;
        const AlbumArt decoded = readPicture(encodedPicture(source, format)).picture;
        ASSERT_NE(decoded, nullptr) << format;
        EXPECT_EQ(decoded->size(), source->size()) << format;
    }
    // One black pixel.
    const QByteArray gif = QByteArray::fromHex("47494638396101000100800000000000ffffff2c00000000010001000002024401003b");
    const AlbumArt decoded = readPicture(gif).picture;
    ASSERT_NE(decoded, nullptr);
    EXPECT_EQ(decoded->size(), QSize(1, 1));
}

TEST(AlbumArt, GivesNoneForPicturesOfOtherKinds)
{
    const AlbumArt source = picture(20, 10, Qt::blue);
    for (const char *format : {"ppm", "xbm", "xpm", "ico", "cur", "wbmp", "icns"}) {
        const QByteArray bytes = encodedPicture(source, format);
        ASSERT_FALSE(bytes.isEmpty()) << format;
        EXPECT_EQ(readPicture(bytes).picture, nullptr) << format;
    }
}

TEST(AlbumArt, ShowsAnMngToNoDecoder)
{
    const QByteArray mng = mngAround(encodedPicture(picture(4, 4, Qt::red), "png"), 4, 4);
    EXPECT_EQ(runLimited(512, 20, [&] { return readPicture(mng).picture ? u"decoded"_s : u"left out"_s; }), u"left out"_s);
    EXPECT_EQ(readPicture(mng).picture, nullptr);
    EXPECT_EQ(readPicture(mng.left(40)).picture, nullptr);
}

TEST(AlbumArt, LoadsNoDecoderOfOtherKinds)
{
    const auto hasMngDecoder = [] {
        QFile maps(u"/proc/self/maps"_s);
        EXPECT_TRUE(maps.open(QIODevice::ReadOnly));
        return maps.readAll().contains("libqmng");
    };
    if (hasMngDecoder())
        GTEST_SKIP() << "another test of this process has loaded it";
    EXPECT_EQ(readPicture(pngHead(4, 4).left(60)).picture, nullptr);
    EXPECT_EQ(readPicture(QByteArray("\xff\xd8\xff\xe0", 4)).picture, nullptr);
    EXPECT_EQ(readPicture(QByteArray("\x8aMNG\r\n\x1a\n", 8)).picture, nullptr);
    EXPECT_FALSE(hasMngDecoder());
}

TEST(AlbumArt, LooksAtTheSizeBeforeItDecodes)
{
    for (const auto &[width, height] : {std::pair(30'000U, 30'000U), std::pair(0x7fffffffU, 1U), std::pair(9'000U, 9'000U)}) {
        EXPECT_EQ(runLimited(64, 5,
                             [&, w = width, h = height] {
                                 return readPicture(pngHead(w, h)).picture ? u"decoded"_s : u"left out"_s;
                             }),
                  u"left out"_s);
    }
}

TEST(AlbumArt, WaitsForItsShareOfTheMemory)
{
    const QByteArray png = encodedPicture(picture(1'000, 1'000, Qt::blue), "png");
    std::atomic<bool> isDecoded = false;
    std::thread other;
    {
        const PictureMemory::Share all = PictureMemory::take(10 * PictureMemory::kCapacity);
        EXPECT_EQ(PictureMemory::givenOut(), PictureMemory::kCapacity);
        other = std::thread([&] { isDecoded = readPicture(png).picture != nullptr; });
        std::this_thread::yield();
        EXPECT_FALSE(isDecoded);
    }
    other.join();
    EXPECT_TRUE(isDecoded);
    EXPECT_EQ(PictureMemory::givenOut(), 0);
}

TEST(AlbumArt, DecodesManyAtTheSameTimeWithinOneLimit)
{
    const QByteArray png = encodedPicture(picture(4'000, 4'000, Qt::blue), "png");
    std::vector<std::thread> threads;
    std::atomic<int> decoded = 0;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] { decoded += readPicture(png).picture != nullptr ? 1 : 0; });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(decoded, 8);
    EXPECT_EQ(PictureMemory::givenOut(), 0);
}

TEST(AlbumArt, DecodesPngAndJpegByTheirBytes)
{
    const AlbumArt source = picture(20, 10, Qt::blue);
    const AlbumArt png = readPicture(encodedPicture(source, "png")).picture;
    ASSERT_NE(png, nullptr);
    EXPECT_EQ(imageOf(png).convertToFormat(QImage::Format_RGB32), imageOf(source));
    const AlbumArt jpeg = readPicture(encodedPicture(source, "jpeg")).picture;
    ASSERT_NE(jpeg, nullptr);
    EXPECT_EQ(jpeg->size(), source->size());
}

TEST(AlbumArt, GivesNoneForBytesThatAreNoPicture)
{
    EXPECT_EQ(readPicture({}).picture, nullptr);
    EXPECT_EQ(readPicture("no picture at all").picture, nullptr);
    EXPECT_EQ(readPicture(QByteArray("\x89PNG\r\n\x1a\n", 8)).picture, nullptr);
}

TEST(AlbumArt, GivesNoneForAVectorPicture)
{
    EXPECT_EQ(readPicture("<svg xmlns='http://www.w3.org/2000/svg' width='4' height='4'/>").picture, nullptr);
}

TEST(AlbumArt, RefusesAHeadThatAsksForTooMuchMemory)
{
    // A bitmap head of 30000 x 30000 pixels with nothing behind it.
    QByteArray bitmap = QByteArray::fromHex("424d36000000000000003600000028000000307500003075000001001800");
    bitmap.append(64, '\0');
    EXPECT_EQ(readPicture(bitmap).picture, nullptr);
}

TEST(AlbumArt, RendersToPng)
{
    const AlbumArt source = picture(3, 5, Qt::green);
    const QByteArray png = getBitmapDataForImage(source, ImageFileType::Png);
    EXPECT_TRUE(png.startsWith("\x89PNG\r\n\x1a\n"));
    EXPECT_EQ(QImage::fromData(png, "png").convertToFormat(QImage::Format_RGB32), imageOf(source));
}

TEST(AlbumArt, FailsToRenderWhatIsNoPicture)
{
    const AlbumArt damaged = std::make_shared<const CoverPicture>("no picture", QSize(3, 5), 24);
    EXPECT_EQ(failureOf([&] { static_cast<void>(getBitmapDataForImage(damaged, ImageFileType::Png)); }),
              u"Unable to render the picture: it is of no known kind"_s);
}

TEST(AlbumArt, SurvivesPicturesCutAtAnyByte)
{
    const AlbumArt source = noisePicture(24, 24);
    for (const char *format : {"png", "jpeg", "bmp"}) {
        const QByteArray whole = encodedPicture(source, format);
        for (qsizetype length = 0; length < whole.size(); length += 37) {
            const AlbumArt decoded = readPicture(whole.left(length)).picture;
            if (decoded) {
                EXPECT_EQ(decoded->size(), source->size());
            }
        }
    }
}
