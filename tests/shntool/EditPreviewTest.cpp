// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/EditPreview.h"

#include "shntool/SplitTitles.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

constexpr std::int64_t kSector = 588;

bool isUnwanted()
{
    return false;
}

struct EditPreviewTest : ::testing::Test {
    test::TestFolder folder;
    test::TestFolder out;

    [[nodiscard]] EditPreview split(const QString &points, const test::SoundShape &shape = {.frames = 10 * 44'100}) const
    {
        const QString source = test::writeWav(folder.path(u"a.wav"_s), shape);
        return EditPreview::ofSplit(source, points, splitTitles::read(points, u"flac"_s), out.path(), u"flac"_s);
    }
    static QStringList namesOf(const EditPreview &preview)
    {
        QStringList names;
        for (const EditPreview::Output &output : preview.outputs())
            names.append(output.name);
        return names;
    }
    static QStringList lengthsOf(const EditPreview &preview)
    {
        QStringList lengths;
        for (const EditPreview::Output &output : preview.outputs())
            lengths.append(output.length);
        return lengths;
    }
};

TEST_F(EditPreviewTest, TellsThePiecesOfASplit)
{
    const EditPreview preview = split(u"0:03\n0:05.50\n"_s);
    EXPECT_EQ(namesOf(preview), (QStringList{u"split-track01.flac"_s, u"split-track02.flac"_s, u"split-track03.flac"_s}));
    // Five seconds and 50 of 75 frames; ten seconds in all.
    EXPECT_EQ(lengthsOf(preview), (QStringList{u"0:03.00"_s, u"0:02.50"_s, u"0:04.25"_s}));
    EXPECT_EQ(preview.obstacles(), QStringList());
    EXPECT_EQ(preview.text(), u"split-track01.flac  0:03.00\nsplit-track02.flac  0:02.50\nsplit-track03.flac  0:04.25\n");
}

TEST_F(EditPreviewTest, NamesThePiecesByTheCueSheet)
{
    const EditPreview preview = split(u"FILE \"a.wav\" WAVE\nTRACK 01 AUDIO\nTITLE \"AC/DC\"\nINDEX 01 00:00:00\nTRACK 02 AUDIO\n"
                                      "TITLE \"Song\"\nINDEX 01 00:04:00\n"_s);
    EXPECT_EQ(namesOf(preview), (QStringList{u"split-track01.flac"_s, u"02 Song.flac"_s}));
    EXPECT_EQ(lengthsOf(preview), (QStringList{u"0:04.00"_s, u"0:06.00"_s}));
    EXPECT_EQ(preview.outputs()[0].remarks, QStringList{u"its title cannot be the name of a file"_s});
}

TEST_F(EditPreviewTest, TellsWhatAnEndOffASectorIs)
{
    const EditPreview preview = split(QString::number(4 * (kSector + 1)) + u'\n');
    ASSERT_EQ(preview.outputs().size(), 2U);
    EXPECT_EQ(preview.outputs()[0].remarks, QStringList{u"does not end on a sector boundary"_s});
    // Sound that is not that of a CD has no sectors.
    const EditPreview studio = split(u"0:01\n"_s, {.rate = 48'000, .bits = 24, .frames = 100'000});
    ASSERT_EQ(studio.outputs().size(), 2U);
    EXPECT_EQ(studio.outputs()[0].remarks, QStringList());
    EXPECT_EQ(lengthsOf(studio), (QStringList{u"0:01.000"_s, u"0:01.083"_s}));
}

TEST_F(EditPreviewTest, TellsOfPointsThatDoNotFit)
{
    EXPECT_EQ(split(u"0:11\n"_s).obstacles(), QStringList{u"the point 0:11 lies behind the end of the file, 0:10.00"_s});
    EXPECT_EQ(split(u"0:05\n0:03\n"_s).obstacles(), QStringList{u"the point 0:03 does not come after the one before it"_s});
    EXPECT_EQ(split(u"0:05\n0:05\n"_s).obstacles(), QStringList{u"the point 0:05 does not come after the one before it"_s});
    EXPECT_EQ(split(u"later\n"_s).obstacles(),
              (QStringList{u"a line is no point in time: m:ss, m:ss.ff, m:ss.nnn or a number of bytes"_s,
                           u"there are no points to split at"_s}));
    EXPECT_EQ(split(QString()).obstacles(), QStringList{u"there are no points to split at"_s});
}

TEST_F(EditPreviewTest, StopsAtTheMostPiecesThatThereCanBe)
{
    QString points;
    for (int i = 1; i < 1000; ++i)
        points += QString::number(4 * kSector * i) + u'\n';
    const EditPreview preview = split(points, {.frames = kSector * 1000});
    EXPECT_TRUE(preview.obstacles().contains(u"there are more than 256 pieces"_s));
    EXPECT_LE(preview.outputs().size(), 257U);
}

TEST_F(EditPreviewTest, TellsWhichNamesAreTaken)
{
    out.write(u"split-track01.flac"_s, "x");
    const EditPreview preview = split(u"0:03\n"_s);
    EXPECT_EQ(preview.outputs()[0].remarks, QStringList{u"exists already"_s});
    EXPECT_EQ(preview.obstacles(), QStringList{u"split-track01.flac exists already"_s});
    EXPECT_EQ(preview.text(), u"split-track01.flac  0:03.00  exists already\nsplit-track02.flac  0:07.00\n\nThis would fail:\n"
                              "  split-track01.flac exists already\n");
}

TEST_F(EditPreviewTest, TellsOfTheProgramsOwnNameWhereAPieceGetsAnother)
{
    out.write(u"split-track01.flac"_s, "x");
    const EditPreview preview = split(u"FILE \"a.wav\" WAVE\nTRACK 01 AUDIO\nTITLE \"A\"\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nINDEX 01 00:04:00\n"_s);
    EXPECT_EQ(preview.obstacles(), QStringList{u"split-track01.flac exists already"_s});
}

TEST_F(EditPreviewTest, TellsTheOutputsOfEveryEdit)
{
    const QStringList sources{test::writeWav(folder.path(u"a.wav"_s), {.frames = 10 * kSector}),
                              test::writeFlac(folder.path(u"b.FLAC"_s), {.frames = 75 * kSector + 1})};
    EXPECT_EQ(EditPreview::ofFiles(u"trim"_s, sources, out.path(), u"wav"_s, isUnwanted).text(),
              u"a-trimmed.wav       up to 0:00.10\nb.FLAC-trimmed.wav  up to 0:01.00\n");
    EXPECT_EQ(
        EditPreview::ofFiles(u"pad"_s, sources, out.path(), u"shn"_s, isUnwanted).text(),
        u"a-padded.shn       0:00.10\nb.FLAC-padded.shn  0:01.01\n\nThis would fail:\n  a.wav needs no padding\n");
    EXPECT_EQ(EditPreview::ofFiles(u"strip"_s, sources, out.path(), u"wav"_s, isUnwanted).text(),
              u"a-stripped.wav       0:00.10\nb.FLAC-stripped.wav  0:01.00  does not end on a sector boundary\n");
    EXPECT_EQ(EditPreview::ofFiles(u"join"_s, sources, out.path(), u"flac"_s, isUnwanted).text(),
              u"joined.flac  0:01.10  does not end on a sector boundary\n");
}

TEST_F(EditPreviewTest, TellsOfSourcesWhoseHeadersSayNothing)
{
    const QStringList sources{folder.write(u"a.wav"_s, "no sound")};
    EXPECT_EQ(EditPreview::ofFiles(u"join"_s, sources, out.path(), u"flac"_s, isUnwanted).obstacles(),
              QStringList{u"a.wav: its header does not tell how long it is"_s});
    EXPECT_EQ(EditPreview::ofSplit(sources.first(), u"0:01\n"_s, {}, out.path(), u"flac"_s).obstacles(),
              QStringList{u"a.wav: its header does not tell how long it is"_s});
}

TEST_F(EditPreviewTest, TellsOfTwoOutputsOfOneName)
{
    const QStringList sources{test::writeWav(folder.path(u"x/a.wav"_s)), test::writeWav(folder.path(u"y/a.wav"_s))};
    EXPECT_EQ(EditPreview::ofFiles(u"strip"_s, sources, out.path(), u"wav"_s, isUnwanted).obstacles(),
              QStringList{u"a-stripped.wav would be made twice"_s});
}

} // namespace
} // namespace nurv
