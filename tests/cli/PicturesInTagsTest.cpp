// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"

#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QBuffer>
#include <QImage>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

QByteArray pngOf(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(Qt::darkCyan);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "png"));
    return buffer.data();
}

class PicturesInTags : public ::testing::Test {
protected:
    const TestFolder folder;

    void SetUp() override
    {
        folder.makeFolder(u"in"_s);
        folder.makeFolder(u"out"_s);
    }

    /// A FLAC file with a cover, whatever its bytes are.
    QString writeSource(const QString &name, const QByteArray &cover, const QString &type) const
    {
        const QString path = writeFlac(folder.path(u"in/"_s + name), {.seconds = 0.1}, {u"--tag=TITLE=T"_s});
        const QString picture = folder.write(u"cover"_s, cover);
        EXPECT_EQ(runProgram(u"metaflac"_s,
                             {u"--import-picture-from=3|%1||1x1x24|%2"_s.arg(type, picture), path})
                      .exitStatus,
                  0);
        folder.remove(u"cover"_s);
        return path;
    }

    [[nodiscard]] QStringList encoding(const QString &format, const QStringList &options = {}) const
    {
        return QStringList{u"encode"_s, u"--json"_s, u"--format"_s, format, u"--output-dir"_s, folder.path(u"out"_s)}
               + options + QStringList{folder.path(u"in"_s)};
    }
};

struct LostPicture {
    QString type;
    QByteArray bytes;
    QString reason;
};

QList<LostPicture> lostPictures()
{
    const QByteArray icon = QByteArray::fromHex("00000100010001010000010018003000000016000000280000000100000002000000"
                                                "01001800000000000000000000000000000000000000000000000000ff00000000000000");
    const QByteArray avif = QByteArray::fromHex("0000001c66747970617669660000000061766966") + "mif1miaf";
    QByteArray damaged = pngOf(40, 30);
    damaged.chop(40);
    return {{u"image/x-icon"_s, icon, u"it is of no known kind"_s},
            {u"image/avif"_s, avif, u"it is of no known kind"_s},
            {u"image/png"_s, damaged, u"it cannot be decoded: "_s}};
}

} // namespace

TEST_F(PicturesInTags, AreToldOfWhenTheyCannotBeCopied)
{
    for (const LostPicture &lost : lostPictures()) {
        for (const QString &format : {u"m4a"_s, u"wv"_s}) {
            SCOPED_TRACE(qPrintable(lost.type + u" to "_s + format));
            const QString source = writeSource(u"a.flac"_s, lost.bytes, lost.type);
            // The reader of the sound that a proof needs knows no such type of a picture.
            const bool deletes = lost.type == u"image/png";
            const ProgramResult result = runNurv(
                encoding(format, deletes ? QStringList{u"--delete-originals"_s, u"--yes"_s} : QStringList()));
            EXPECT_EQ(result.exitStatus, 1) << result.errors.constData();
            const QJsonObject job = jsonLines(result.output).value(0);
            EXPECT_TRUE(job[u"reason"_s].toString().startsWith(u"its picture was not copied: "_s + lost.reason))
                << qPrintable(job[u"reason"_s].toString());
            EXPECT_EQ(job[u"status"_s].toString(), u"complete"_s);
            EXPECT_EQ(job[u"original"_s].toString(), deletes ? u"kept"_s : u"untouched"_s);
            EXPECT_TRUE(job[u"report"_s].toString().contains(u"a.flac: its picture was not copied: "_s));
            const QString output = folder.path(u"out/a."_s + format);
            EXPECT_TRUE(sameSound(source, output));
            EXPECT_EQ(ffprobeTags(output).value(u"title"_s), u"T"_s) << "only the picture is lost";
            EXPECT_TRUE(QFile::remove(output));
        }
    }
}

TEST_F(PicturesInTags, AreCopiedWithoutAWord)
{
    writeSource(u"a.flac"_s, pngOf(40, 30), u"image/png"_s);
    const ProgramResult result = runNurv(encoding(u"m4a"_s));
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_FALSE(result.errors.contains("icture")) << result.errors.constData();
    EXPECT_TRUE(folder.read(u"out/a.m4a"_s).contains("\x89PNG"));
}

TEST_F(PicturesInTags, TakeNoMoreMemoryInManyJobsThanInOne)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers need memory of their own";
#endif
    constexpr qint64 kPixelBytes = qint64{4} * 4'000 * 4'000;
    const QByteArray png = pngOf(4'000, 4'000);
    for (const QString &name : {u"1"_s, u"2"_s, u"3"_s, u"4"_s})
        writeSource(name + u".flac"_s, png, u"image/png"_s);
    const MeasuredResult result = runMeasured(folder, encoding(u"m4a"_s, {u"--jobs=4"_s}));
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    // One picture is decoded in a process for tags; no job keeps it.
    EXPECT_LT(result.peakBytes, 2 * kPixelBytes);
}
