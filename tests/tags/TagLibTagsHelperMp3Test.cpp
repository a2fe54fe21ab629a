// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagLibTagsHelper.h"

#include "support/AudioFixtures.h"
#include "support/TestProgram.h"
#include "TagFixtures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

QList<Id3Frame> framesOf(const TestFolder &folder, const QString &name)
{
    return id3Frames(folder.read(name));
}

} // namespace

TEST(TagLibTagsHelperMp3, WritesEveryFieldOfTheTable)
{
    const TestFolder folder;
    const QString path = writeMp3(folder, u"a.mp3"_s);
    const QByteArray sound = decodedMd5(path);
    TagLibTagsHelper::writeTagsForMP3File(path, fullRecord(), false);

    const QMap<QString, QString> tags = ffprobeTags(path);
    EXPECT_EQ(tags.value(u"title"_s), u"Änderung \u6771\u4eac \U0001F3B5"_s);
    EXPECT_EQ(tags.value(u"artist"_s), u"Sigur Rós"_s);
    EXPECT_EQ(tags.value(u"album_artist"_s), u"Various \u0416"_s);
    EXPECT_EQ(tags.value(u"date"_s), u"1999"_s);
    EXPECT_EQ(tags.value(u"album"_s), u"a=b \"quoted\""_s);
    EXPECT_EQ(tags.value(u"disc"_s), u"2/3"_s);
    EXPECT_EQ(tags.value(u"track"_s), u"7/12"_s);
    EXPECT_EQ(tags.value(u"genre"_s), u"Rímur"_s);
    EXPECT_EQ(tags.value(u"composer"_s), u"Dvořák"_s);
    const QList<Id3Frame> frames = framesOf(folder, u"a.mp3"_s);
    ASSERT_EQ(frameCount(frames, "COMM"), 1);
    for (const Id3Frame &frame : frames) {
        EXPECT_FALSE(frame.payload.contains("never written here"));
        if (frame.id == "COMM") {
            EXPECT_TRUE(frame.payload.endsWith(QByteArray("\0first line\nsecond = line", 25)));
        }
    }
    EXPECT_EQ(decodedMd5(path), sound);
}

TEST(TagLibTagsHelperMp3, ReadsBackWithEmptyDateAndAbsentAlbumArtist)
{
    const TestFolder folder;
    const QString path = writeMp3(folder, u"a.mp3"_s);
    const TagsObject record = fullRecord();
    TagLibTagsHelper::writeTagsForMP3File(path, record, false);
    const TagsObject read = TagLibTagsHelper::tagsForMP3File(path);
    EXPECT_EQ(read.dateText(), u""_s);
    EXPECT_FALSE(read.albumArtistText().has_value());
    EXPECT_FALSE(read.encoderSettings().has_value());
    EXPECT_EQ(read.titleText(), record.titleText());
    EXPECT_EQ(read.artistText(), record.artistText());
    EXPECT_EQ(read.albumText(), record.albumText());
    EXPECT_EQ(read.commentText(), record.commentText());
    EXPECT_EQ(read.discText(), record.discText());
    EXPECT_EQ(read.discTotalText(), record.discTotalText());
    EXPECT_EQ(read.trackText(), record.trackText());
    EXPECT_EQ(read.trackTotalText(), record.trackTotalText());
    EXPECT_EQ(read.genreText(), record.genreText());
    EXPECT_EQ(read.composerText(), record.composerText());
    EXPECT_EQ(read.albumArt(), nullptr);
}

TEST(TagLibTagsHelperMp3, ReadsTheTagsOfAnotherWriter)
{
    const TestFolder folder;
    const QString path =
        writeMp3(folder, u"a.mp3"_s,
                 {u"--tt"_s, u"Title"_s,         u"--ta"_s,    u"Artist"_s,   u"--tl"_s, u"Album"_s,    u"--ty"_s,
                  u"1987"_s, u"--tc"_s,          u"Comment"_s, u"--tn"_s,     u"3"_s,    u"--tg"_s,     u"Jazz"_s,
                  u"--tv"_s, u"TCOM=Composer"_s, u"--tv"_s,    u"TPOS=1/2"_s, u"--tv"_s, u"TPE2=Band"_s});
    const TagsObject tags = TagLibTagsHelper::tagsForMP3File(path);
    EXPECT_EQ(tags.titleText(), u"Title"_s);
    EXPECT_EQ(tags.artistText(), u"Artist"_s);
    EXPECT_EQ(tags.albumText(), u"Album"_s);
    EXPECT_EQ(tags.commentText(), u"Comment"_s);
    EXPECT_EQ(tags.genreText(), u"Jazz"_s);
    EXPECT_EQ(tags.composerText(), u"Composer"_s);
    EXPECT_EQ(tags.trackText(), u"3"_s);
    EXPECT_EQ(tags.trackTotalText(), u""_s);
    EXPECT_EQ(tags.discText(), u"1"_s);
    EXPECT_EQ(tags.discTotalText(), u"2"_s);
    EXPECT_EQ(tags.dateText(), u""_s);
    EXPECT_FALSE(tags.albumArtistText().has_value());
}

TEST(TagLibTagsHelperMp3, SplitsNumbersAtTheFirstSlash)
{
    const TestFolder folder;
    const QString path =
        writeMp3(folder, u"a.mp3"_s, {u"--id3v2-only"_s, u"--tv"_s, u"TPOS=1/2/3"_s, u"--tv"_s, u"TRCK=4/"_s});
    const TagsObject tags = TagLibTagsHelper::tagsForMP3File(path);
    EXPECT_EQ(tags.discText(), u"1"_s);
    EXPECT_EQ(tags.discTotalText(), u"2/3"_s);
    EXPECT_EQ(tags.trackText(), u"4"_s);
    EXPECT_EQ(tags.trackTotalText(), u""_s);
}

TEST(TagLibTagsHelperMp3, GivesTheBlankRecordForAFileWithoutTags)
{
    const TestFolder folder;
    const TagsObject tags = TagLibTagsHelper::tagsForMP3File(writeMp3(folder, u"a.mp3"_s));
    TagsObject blank;
    TagLibTagsHelper::setBlankTags(blank);
    EXPECT_TRUE(tags.isEqualToTagsObject(blank));
    EXPECT_FALSE(tags.albumArtistText().has_value());
}

TEST(TagLibTagsHelperMp3, LeavesWhatTheRecordLacksWithoutTheFlag)
{
    const TestFolder folder;
    const QString path = writeMp3(folder, u"a.mp3"_s);
    TagLibTagsHelper::writeTagsForMP3File(path, fullRecord(), false);
    TagsObject few;
    few.setTitleText(u"New"_s);
    few.setArtistText(u""_s);
    few.setTrackText(u""_s);
    few.setTrackTotalText(u"99"_s);
    few.setDiscText(u"5"_s);
    few.setDiscTotalText(u""_s);
    TagLibTagsHelper::writeTagsForMP3File(path, few, false);
    const QMap<QString, QString> tags = ffprobeTags(path);
    EXPECT_EQ(tags.value(u"title"_s), u"New"_s);
    EXPECT_EQ(tags.value(u"artist"_s), u"Sigur Rós"_s);
    EXPECT_EQ(tags.value(u"album_artist"_s), u"Various \u0416"_s);
    EXPECT_EQ(tags.value(u"date"_s), u"1999"_s);
    EXPECT_EQ(tags.value(u"track"_s), u"7/12"_s);
    EXPECT_EQ(tags.value(u"disc"_s), u"5"_s);
}

TEST(TagLibTagsHelperMp3, KeepsForeignFramesWithoutTheFlagAndStripsThemWithIt)
{
    const TestFolder folder;
    const QString path = writeMp3(folder, u"a.mp3"_s, {u"--tv"_s, u"TXXX=MOOD=calm"_s, u"--tt"_s, u"Old"_s});
    TagsObject record;
    record.setArtistText(u"A"_s);
    TagLibTagsHelper::writeTagsForMP3File(path, record, false);
    EXPECT_EQ(ffprobeTags(path).value(u"mood"_s), u"calm"_s);
    EXPECT_EQ(ffprobeTags(path).value(u"title"_s), u"Old"_s);
    TagLibTagsHelper::writeTagsForMP3File(path, record, true);
    const QMap<QString, QString> tags = ffprobeTags(path);
    EXPECT_EQ(tags.value(u"artist"_s), u"A"_s);
    EXPECT_FALSE(tags.contains(u"mood"_s));
    EXPECT_FALSE(tags.contains(u"title"_s));
}

TEST(TagLibTagsHelperMp3, StripsTagsOfAllTypesWithTheFlag)
{
    const TestFolder folder;
    const QString path = writeMp3(folder, u"a.mp3"_s, {u"--add-id3v2"_s, u"--tt"_s, u"Stale"_s, u"--tl"_s, u"Stale"_s});
    // An APE tag of one item, between the sound and the ID3v1 tag.
    QByteArray bytes = folder.read(u"a.mp3"_s);
    ASSERT_TRUE(bytes.right(128).startsWith("TAG"));
    const QByteArray item = QByteArray::fromHex("0500000000000000") + QByteArray("Artist\0Stale", 12);
    const auto apeHead = [](quint8 flags) {
        return QByteArray("APETAGEX") + QByteArray::fromHex("d00700003400000001000000000000")
               + QByteArray(1, static_cast<char>(flags)) + QByteArray(8, '\0');
    };
    bytes.insert(bytes.size() - 128, apeHead(0xa0) + item + apeHead(0x80));
    folder.write(u"a.mp3"_s, bytes);
    ASSERT_EQ(TagLibTagsHelper::tagsForMP3File(path).artistText(), u"Stale"_s);
    const QByteArray sound = decodedMd5(path);

    TagsObject record;
    record.setGenreText(u"Jazz"_s);
    TagLibTagsHelper::writeTagsForMP3File(path, record, true);
    const QByteArray written = folder.read(u"a.mp3"_s);
    EXPECT_FALSE(written.contains("Stale"));
    EXPECT_FALSE(written.contains("APETAGEX"));
    EXPECT_EQ(ffprobeTags(path).value(u"genre"_s), u"Jazz"_s);
    EXPECT_EQ(decodedMd5(path), sound);
}

TEST(TagLibTagsHelperMp3, ReplacesNumberFramesAndNamesOfArtists)
{
    const TestFolder folder;
    const QString path = writeMp3(folder, u"a.mp3"_s);
    TagLibTagsHelper::writeTagsForMP3File(path, fullRecord(), false);
    TagLibTagsHelper::writeTagsForMP3File(path, fullRecord(), false);
    const QList<Id3Frame> frames = framesOf(folder, u"a.mp3"_s);
    for (const char *id : {"TPE2", "TCOM", "TRCK", "TPOS", "TIT2", "COMM"})
        EXPECT_EQ(frameCount(frames, id), 1) << id;
}

TEST(TagLibTagsHelperMp3, WritesTheLeadingIntegerOfTheDateAsTheYear)
{
    const TestFolder folder;
    TagsObject record;
    for (const auto &[date, year] :
         {std::pair{u"2001-05-03"_s, u"2001"_s}, {u" 1984 x"_s, u"1984"_s}, {u"unknown"_s, QString()}}) {
        const QString path = writeMp3(folder, u"a.mp3"_s);
        record.setDateText(date);
        TagLibTagsHelper::writeTagsForMP3File(path, record, true);
        EXPECT_EQ(ffprobeTags(path).value(u"date"_s), year);
    }
}

TEST(TagLibTagsHelperMp3, AddsAPictureBesideTheOldOneWithoutTheFlag)
{
    const TestFolder folder;
    const QString path = writeMp3(folder, u"a.mp3"_s);
    TagsObject record;
    record.setAlbumArt(picture(8, 8, Qt::red));
    TagLibTagsHelper::writeTagsForMP3File(path, record, false);
    record.setAlbumArt(picture(9, 9, Qt::blue));
    TagLibTagsHelper::writeTagsForMP3File(path, record, false);
    EXPECT_EQ(frameCount(framesOf(folder, u"a.mp3"_s), "APIC"), 2);
    // The first one is read.
    const AlbumArt read = TagLibTagsHelper::tagsForMP3File(path).albumArt();
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->size(), QSize(8, 8));
    EXPECT_EQ(imageOf(read).pixelColor(3, 3), QColor(Qt::red));
}

TEST(TagLibTagsHelperMp3, WritesThePictureAsPng)
{
    const TestFolder folder;
    const QString path = writeMp3(folder, u"a.mp3"_s);
    TagsObject record;
    record.setAlbumArt(noisePicture(64, 48));
    TagLibTagsHelper::writeTagsForMP3File(path, record, false);
    const QList<Id3Frame> frames = framesOf(folder, u"a.mp3"_s);
    ASSERT_EQ(frameCount(frames, "APIC"), 1);
    for (const Id3Frame &frame : frames) {
        if (frame.id != "APIC")
            continue;
        EXPECT_TRUE(frame.payload.mid(1).startsWith(QByteArray("image/png\0", 10)));
        const QImage image = QImage::fromData(frame.payload.mid(frame.payload.indexOf("\x89PNG")), "png");
        EXPECT_EQ(image.convertToFormat(QImage::Format_RGB32), imageOf(record.albumArt()));
    }
}

TEST(TagLibTagsHelperMp3, LeavesThePictureWithoutTheFlagAndTakesItAwayWithIt)
{
    const TestFolder folder;
    const QString path = writeMp3(folder, u"a.mp3"_s);
    TagsObject record;
    record.setAlbumArt(picture(8, 8, Qt::red));
    TagLibTagsHelper::writeTagsForMP3File(path, record, false);
    record.setAlbumArt(nullptr);
    record.setTitleText(u"T"_s);
    TagLibTagsHelper::writeTagsForMP3File(path, record, false);
    EXPECT_EQ(frameCount(framesOf(folder, u"a.mp3"_s), "APIC"), 1);
    TagLibTagsHelper::writeTagsForMP3File(path, record, true);
    EXPECT_EQ(frameCount(framesOf(folder, u"a.mp3"_s), "APIC"), 0);
}

TEST(TagLibTagsHelperMp3, ReadsAJpegCover)
{
    const TestFolder folder;
    const QString cover = folder.write(u"cover.jpg"_s, encodedPicture(picture(30, 20, Qt::green), "jpeg"));
    const QString path = writeMp3(folder, u"a.mp3"_s, {u"--ti"_s, cover});
    const AlbumArt read = TagLibTagsHelper::tagsForMP3File(path).albumArt();
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->size(), QSize(30, 20));
}

TEST(TagLibTagsHelperMp3, TakesVeryLongTexts)
{
    const TestFolder folder;
    const QString path = writeMp3(folder, u"a.mp3"_s);
    TagsObject record;
    record.setCommentText(u"длинный=\n"_s.repeated(100'000));
    TagLibTagsHelper::writeTagsForMP3File(path, record, false);
    EXPECT_EQ(TagLibTagsHelper::tagsForMP3File(path).commentText(), record.commentText());
    EXPECT_TRUE(folder.read(u"a.mp3"_s).contains(record.commentText()->toUtf8()));
}
