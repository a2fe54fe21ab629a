// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SplitPoints.h"

#include "support/LogLines.h"
#include "support/TestFolder.h"

#include <QFile>
#include <QStringEncoder>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class SplitPointsTest : public ::testing::Test {
protected:
    std::optional<SplitPoints> read(const QByteArray &bytes)
    {
        path = folder.write(u"points.cue"_s, bytes);
        return SplitPoints::read(path, &reason);
    }
    /// The file that the program gets.
    static QByteArray givenTo(const SplitPoints &points)
    {
        QFile file(points.path());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    /// That nothing is read of the file, with what the user and the log are told.
    void expectRefusal(const QString &file, const QString &why)
    {
        SCOPED_TRACE(qPrintable(file));
        const test::LogLines log;
        EXPECT_FALSE(SplitPoints::read(file, &reason));
        EXPECT_EQ(reason, why);
        EXPECT_EQ(log.of(u"nurv.files.unread"_s),
                  (QStringList{u"error "_s + why, u"Trying to open as unicode..."_s, u"error "_s + why,
                               u"Last hope: opening using NSASCIIStringEncoding..."_s,
                               u"Could not open file...%1  %2"_s.arg(file, why)}));
    }

    test::TestFolder folder;
    QString path;
    QString reason;
};

const QString kSheet = u"TRACK 01 AUDIO\nTITLE \"Größe\"\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nINDEX 01 00:01:00\n"_s;

TEST_F(SplitPointsTest, HandOnTheFileItselfWhereTheProgramCanReadIt)
{
    const test::LogLines log;
    for (const QByteArray &bytes : {kSheet.toUtf8(), QByteArray("\xEF\xBB\xBF") + kSheet.toUtf8(), kSheet.toLatin1()}) {
        const std::optional<SplitPoints> points = read(bytes);
        ASSERT_TRUE(points);
        EXPECT_EQ(points->text(), kSheet);
        EXPECT_EQ(points->path(), path);
    }
    const std::optional<SplitPoints> windows = read(QString(kSheet).replace(u"\n"_s, u"\r\n"_s).toUtf8());
    ASSERT_TRUE(windows);
    EXPECT_EQ(windows->path(), path);
    EXPECT_EQ(log.of(u"nurv.files.unread"_s), QStringList());
    EXPECT_EQ(folder.list(), QStringList{u"points.cue"_s});
}

TEST_F(SplitPointsTest, KnowTheDashesAndQuotesOfWindows)
{
    const std::optional<SplitPoints> points = read("TRACK 01\r\nTITLE \"A \x96 \x93"
                                                   "B\x94\"\r\n0:01\r\n");
    ASSERT_TRUE(points);
    EXPECT_EQ(points->text(), u"TRACK 01\r\nTITLE \"A \u2013 \u201CB\u201D\"\r\n0:01\r\n");
    EXPECT_EQ(points->path(), path);
}

TEST_F(SplitPointsTest, KnowShiftJis)
{
    // "東京の夜は静かです。雨が降っています。".
    const QByteArray title = QByteArray::fromHex("938c8b9e82cc96e982cd90c382a982c582b781428"
                                                 "94a82aa8d7e82c182c482a282dc82b78142");
    const std::optional<SplitPoints> points = read("TRACK 01 AUDIO\nTITLE \"" + title + "\"\nINDEX 01 00:00:00\n");
    ASSERT_TRUE(points);
    EXPECT_EQ(points->text(), u"TRACK 01 AUDIO\nTITLE \"東京の夜は静かです。雨が降っています。\"\nINDEX 01 00:00:00\n");
    EXPECT_EQ(points->path(), path);
}

TEST_F(SplitPointsTest, CopyWhatHasLettersOfSeveralBytes)
{
    using Encoder = QStringEncoder;
    const std::vector<QByteArray> wide{
        "\xFF\xFE" + QByteArray(Encoder(Encoder::Utf16LE).encode(kSheet)),
        "\xFE\xFF" + QByteArray(Encoder(Encoder::Utf16BE).encode(kSheet)),
        QByteArray("\xFF\xFE\0\0", 4) + QByteArray(Encoder(Encoder::Utf32LE).encode(kSheet)),
        QByteArray("\0\0\xFE\xFF", 4) + QByteArray(Encoder(Encoder::Utf32BE).encode(kSheet))};
    for (const QByteArray &bytes : wide) {
        SCOPED_TRACE(bytes.left(4).toHex().constData());
        const std::optional<SplitPoints> points = read(bytes);
        ASSERT_TRUE(points);
        EXPECT_EQ(points->text(), kSheet);
        EXPECT_NE(points->path(), path);
        EXPECT_EQ(givenTo(*points), kSheet.toUtf8());
        EXPECT_EQ(folder.read(u"points.cue"_s), bytes) << "the file of the user stays";
    }
}

TEST_F(SplitPointsTest, CopyLinesThatEndInCarriageReturnsAlone)
{
    const std::optional<SplitPoints> points = read(QString(kSheet).replace(u'\n', u'\r').toUtf8());
    ASSERT_TRUE(points);
    EXPECT_NE(points->path(), path);
    EXPECT_EQ(givenTo(*points), kSheet.toUtf8());
}

TEST_F(SplitPointsTest, KeepACopyForAsLongAsAnybodyHasIt)
{
    std::optional<SplitPoints> first = read("0:01\r0:02\r");
    ASSERT_TRUE(first);
    const QString copy = first->path();
    std::optional<SplitPoints> second = first;
    first.reset();
    EXPECT_EQ(givenTo(*second), "0:01\n0:02\n");
    second.reset();
    EXPECT_FALSE(QFile::exists(copy));
}

TEST_F(SplitPointsTest, AreNotReadOfWhatIsNoText)
{
    const QString missing = folder.path(u"gone.cue"_s);
    expectRefusal(missing, QString::fromLocal8Bit(std::strerror(ENOENT)));
    expectRefusal(folder.makeFolder(u"folder.cue"_s), QString::fromLocal8Bit(std::strerror(EISDIR)));
    const QString pipe = folder.path(u"pipe.cue"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    expectRefusal(pipe, u"It is a pipe or a device, not a file"_s);
    expectRefusal(folder.makeLink(u"link.cue"_s, missing), QString::fromLocal8Bit(std::strerror(ENOENT)));
}

TEST_F(SplitPointsTest, AreNotReadOfAnEmptyFile)
{
    expectRefusal(folder.write(u"empty.cue"_s, ""), u"it is empty"_s);
    expectRefusal(folder.write(u"mark.cue"_s, "\xEF\xBB\xBF"), u"it is empty"_s);
}

TEST_F(SplitPointsTest, AreNotReadOfMoreThanAnyTextHas)
{
    // It takes no room on the disk.
    const QString huge = folder.write(u"huge.cue"_s, "0:01\n");
    ASSERT_TRUE(QFile::resize(huge, 64 * 1024 * 1024 + 1));
    expectRefusal(huge, QString::fromLocal8Bit(std::strerror(EFBIG)));
}

} // namespace
} // namespace nurv
