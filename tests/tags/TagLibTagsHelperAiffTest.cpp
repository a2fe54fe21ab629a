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

TEST(TagLibTagsHelperAiff, WritesAndReadsEveryFieldOfTheTable)
{
    const TestFolder folder;
    const QString path = writeTaggableAiff(folder, u"a.aiff"_s);
    const QByteArray sound = decodedMd5(path);
    TagsObject record = fullRecord();
    record.setAlbumArt(noisePicture(16, 12));
    TagLibTagsHelper::writeTagsForAIFFFile(path, record);

    const QMap<QString, QString> tags = ffprobeTags(path);
    EXPECT_EQ(tags.value(u"title"_s), *record.titleText());
    EXPECT_EQ(tags.value(u"artist"_s), *record.artistText());
    EXPECT_EQ(tags.value(u"album_artist"_s), *record.albumArtistText());
    EXPECT_EQ(tags.value(u"date"_s), u"1999"_s);
    EXPECT_EQ(tags.value(u"album"_s), *record.albumText());
    EXPECT_EQ(tags.value(u"disc"_s), u"2/3"_s);
    EXPECT_EQ(tags.value(u"track"_s), u"7/12"_s);
    EXPECT_EQ(tags.value(u"genre"_s), *record.genreText());
    EXPECT_EQ(tags.value(u"composer"_s), *record.composerText());
    EXPECT_EQ(decodedMd5(path), sound);

    const TagsObject read = TagLibTagsHelper::tagsForAIFFFile(path);
    ASSERT_NE(read.albumArt(), nullptr);
    EXPECT_EQ(imageOf(read.albumArt()).convertToFormat(QImage::Format_RGB32), imageOf(record.albumArt()));
    EXPECT_EQ(read.albumArtistText(), record.albumArtistText());
    EXPECT_FALSE(read.encoderSettings().has_value());
    record.setAlbumArt(read.albumArt());
    EXPECT_TRUE(read.isEqualToTagsObject(record));
}

TEST(TagLibTagsHelperAiff, ReadsTheTagsOfAnotherWriter)
{
    const TestFolder folder;
    const QString path = writeByFfmpeg(folder.path(u"a.aiff"_s), {.seconds = 0.2},
                                       {u"-write_id3v2"_s, u"1"_s, u"-metadata"_s, u"title=Größe"_s, u"-metadata"_s,
                                        u"date=1971"_s, u"-metadata"_s, u"album_artist=Band"_s, u"-metadata"_s,
                                        u"track=4/9"_s, u"-metadata"_s, u"disc=1"_s});
    const TagsObject tags = TagLibTagsHelper::tagsForAIFFFile(path);
    EXPECT_EQ(tags.titleText(), u"Größe"_s);
    EXPECT_EQ(tags.dateText(), u"1971"_s);
    EXPECT_EQ(tags.albumArtistText(), u"Band"_s);
    EXPECT_EQ(tags.trackText(), u"4"_s);
    EXPECT_EQ(tags.trackTotalText(), u"9"_s);
    EXPECT_EQ(tags.discText(), u"1"_s);
    EXPECT_EQ(tags.discTotalText(), u""_s);
    EXPECT_EQ(tags.artistText(), u""_s);
}

TEST(TagLibTagsHelperAiff, GivesTheBlankRecordForAFileWithoutTags)
{
    const TestFolder folder;
    const TagsObject tags = TagLibTagsHelper::tagsForAIFFFile(writeTaggableAiff(folder, u"a.aiff"_s));
    TagsObject blank;
    TagLibTagsHelper::setBlankTags(blank);
    EXPECT_TRUE(tags.isEqualToTagsObject(blank));
    EXPECT_FALSE(tags.albumArtistText().has_value());
}

TEST(TagLibTagsHelperAiff, WritesTheSlashOfAnEmptyDiscTotalButNotOfAnEmptyTrackTotal)
{
    const TestFolder folder;
    const QString path = writeTaggableAiff(folder, u"a.aiff"_s);
    TagsObject record;
    record.setDiscText(u"1"_s);
    record.setDiscTotalText(u""_s);
    record.setTrackText(u"2"_s);
    record.setTrackTotalText(u""_s);
    TagLibTagsHelper::writeTagsForAIFFFile(path, record);
    const QList<Id3Frame> frames = id3Frames(folder.read(u"a.aiff"_s));
    EXPECT_EQ(frameTexts(frames, "TPOS"), QStringList{u"1/"_s});
    EXPECT_EQ(frameTexts(frames, "TRCK"), QStringList{u"2"_s});
}

TEST(TagLibTagsHelperAiff, WritesTheDiscAloneWithoutATotal)
{
    const TestFolder folder;
    const QString path = writeTaggableAiff(folder, u"a.aiff"_s);
    TagsObject record;
    record.setDiscText(u"1"_s);
    TagLibTagsHelper::writeTagsForAIFFFile(path, record);
    EXPECT_EQ(frameTexts(id3Frames(folder.read(u"a.aiff"_s)), "TPOS"), QStringList{u"1"_s});
}

TEST(TagLibTagsHelperAiff, AddsAlbumArtistComposerAndPictureBesideTheOldOnes)
{
    const TestFolder folder;
    const QString path = writeTaggableAiff(folder, u"a.aiff"_s);
    TagsObject record;
    record.setAlbumArtistText(u"one"_s);
    record.setComposerText(u"one"_s);
    record.setTrackText(u"1"_s);
    record.setDiscText(u"1"_s);
    record.setAlbumArt(picture(8, 8, Qt::red));
    TagLibTagsHelper::writeTagsForAIFFFile(path, record);
    record.setAlbumArtistText(u"two"_s);
    record.setComposerText(u"two"_s);
    record.setTrackText(u"2"_s);
    record.setDiscText(u"2"_s);
    TagLibTagsHelper::writeTagsForAIFFFile(path, record);
    const QList<Id3Frame> frames = id3Frames(folder.read(u"a.aiff"_s));
    EXPECT_EQ(frameTexts(frames, "TPE2"), (QStringList{u"one"_s, u"two"_s}));
    EXPECT_EQ(frameTexts(frames, "TCOM"), (QStringList{u"one"_s, u"two"_s}));
    EXPECT_EQ(frameTexts(frames, "TRCK"), QStringList{u"2"_s});
    EXPECT_EQ(frameTexts(frames, "TPOS"), QStringList{u"2"_s});
    EXPECT_EQ(frameCount(frames, "APIC"), 2);
}

TEST(TagLibTagsHelperAiff, LeavesWhatTheRecordLacks)
{
    const TestFolder folder;
    const QString path = writeTaggableAiff(folder, u"a.aiff"_s);
    TagLibTagsHelper::writeTagsForAIFFFile(path, fullRecord());
    TagsObject empty;
    TagLibTagsHelper::setBlankTags(empty);
    TagLibTagsHelper::writeTagsForAIFFFile(path, empty);
    EXPECT_TRUE(TagLibTagsHelper::tagsForAIFFFile(path).isEqualToTagsObject(fullRecord()));
}

TEST(TagLibTagsHelperAiff, RefusesAFileThatIsNoAiff)
{
    const TestFolder folder;
    const QString path = folder.write(u"a.aiff"_s, "FORM but nothing else");
    const std::optional<QString> failure =
        failureOf([&] { TagLibTagsHelper::writeTagsForAIFFFile(path, fullRecord()); });
    EXPECT_EQ(failure, u"Unable to open the output file for tagging."_s);
    EXPECT_EQ(folder.read(u"a.aiff"_s), QByteArray("FORM but nothing else"));
}
