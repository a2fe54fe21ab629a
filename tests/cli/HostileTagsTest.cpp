// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"

#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "TagBombs.h"

#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

/// An AIFF file with that ID3 tag.
QByteArray aiffWith(const QByteArray &tag)
{
    QByteArray size(4, '\0');
    qToBigEndian(static_cast<quint32>(tag.size()), size.data());
    QByteArray aiff = aiffBytes({.seconds = 0.1}) + "ID3 " + size + tag + QByteArray(tag.size() % 2, '\0');
    qToBigEndian(static_cast<quint32>(aiff.size() - 8), aiff.data() + 4);
    return aiff;
}

QByteArray title(const QByteArray &text)
{
    return longId3Frame(4, "TIT2", '\3' + text);
}

/// The head of a PNG of 30,000 x 30,000 pixels in a picture frame.
QByteArray pictureBomb()
{
    return longId3Frame(4, "APIC",
                        QByteArray("\3image/png\0\3\0", 13)
                            + QByteArray::fromHex("89504e470d0a1a0a0000000d494844520000753000007530080600000000000000"));
}

class HostileTags : public ::testing::Test {
protected:
    const TestFolder folder;

    /// Encodes the bomb and three healthy files behind it, which must come out with their tags.
    ProgramResult encodeWithHealthyFiles(const QByteArray &bomb, const QString &format)
    {
        folder.write(u"in/1 bomb.aiff"_s, bomb);
        for (const char *name : {"2", "3", "4"})
            folder.write(u"in/%1.aiff"_s.arg(QLatin1String(name)), aiffWith(longId3Tag(4, title(name))));
        folder.makeFolder(u"out"_s);
        return runNurv({u"encode"_s, u"--format"_s, format, u"--output-dir"_s, folder.path(u"out"_s), folder.path(u"in"_s)});
    }

    void expectHealthyFiles()
    {
        for (const QString &name : {u"2"_s, u"3"_s, u"4"_s}) {
            const ProgramResult tags =
                runProgram(u"metaflac"_s, {u"--show-tag=TITLE"_s, folder.path(u"out/"_s + name + u".flac"_s)});
            EXPECT_EQ(tags.output.trimmed(), "TITLE=" + name.toUtf8());
        }
    }
};

} // namespace

TEST_F(HostileTags, OfAFrameThatInflatesEndNoBatch)
{
    const QByteArray frame = compressedId3Frame(4, "TIT2", compressedZeros(std::int64_t{1} << 30), 10);
    const ProgramResult result = encodeWithHealthyFiles(aiffWith(longId3Tag(4, frame)), u"flac"_s);
    EXPECT_TRUE((result.errors + result.output)
                    .contains("its tags were not copied: its ID3 tag is not to be trusted: its compressed frames inflate"))
        << result.errors.constData() << result.output.constData();
    expectHealthyFiles();
}

TEST_F(HostileTags, WithCountlessFramesEndNoBatch)
{
    const QByteArray frames = longId3Frame(4, "TXXX", "\3").repeated(3'000'000);
    const ProgramResult result = encodeWithHealthyFiles(aiffWith(longId3Tag(4, frames)), u"flac"_s);
    EXPECT_TRUE((result.errors + result.output).contains("it has more than 10000 frames"))
        << result.errors.constData() << result.output.constData();
    expectHealthyFiles();
}

TEST_F(HostileTags, WithAHugePictureEndNoBatch)
{
    const ProgramResult result =
        encodeWithHealthyFiles(aiffWith(longId3Tag(4, title("bomb") + pictureBomb())), u"flac"_s);
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData() << result.output.constData();
    expectHealthyFiles();
}

TEST_F(HostileTags, LeaveNoProcessBehind)
{
    encodeWithHealthyFiles(aiffWith(longId3Tag(4, title("bomb"))), u"flac"_s);
    EXPECT_TRUE(processesMentioning(folder.path()).isEmpty());
}
