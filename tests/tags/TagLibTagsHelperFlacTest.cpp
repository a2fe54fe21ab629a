// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagLibTagsHelper.h"

#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/TestProgram.h"
#include "TagFixtures.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

void metaflac(const QStringList &arguments)
{
    const ProgramResult result = runProgram(u"metaflac"_s, QStringList{u"--no-utf8-convert"_s} + arguments);
    ASSERT_EQ(result.exitStatus, 0) << result.errors.constData();
}

/// What metaflac lists of the picture blocks.
QString listedPictures(const QString &path)
{
    return QString::fromUtf8(runProgram(u"metaflac"_s, {u"--list"_s, u"--block-type=PICTURE"_s, path}).output);
}

int pictureCount(const QString &path)
{
    return static_cast<int>(listedPictures(path).count(u"METADATA block"_s));
}

QStringList values(const QString &path, const QString &key)
{
    QStringList found;
    for (const QString &line : metaflacTags(path)) {
        if (line.startsWith(key + u'='))
            found.append(line.mid(key.size() + 1));
    }
    return found;
}

} // namespace

class TagLibTagsHelperFlac : public ::testing::Test {
protected:
    TestFolder folder;
    QString path = writeTaggableFlac(folder, u"a.flac"_s);
    QByteArray sound = decodedMd5(path);

    void expectSoundKept() const
    {
        EXPECT_EQ(decodedMd5(path), sound);
        EXPECT_EQ(runProgram(u"flac"_s, {u"-t"_s, u"-s"_s, path}).exitStatus, 0);
    }
};

TEST_F(TagLibTagsHelperFlac, WritesEveryFieldOfTheTable)
{
    TagsObject record = fullRecord();
    record.setCommentText(u"one line = value"_s);
    record.customTagsDictionary().insert(u"MOOD"_s, u"calm"_s);
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    const QMap<QString, QString> expected = {{u"TITLE"_s, *record.titleText()},
                                             {u"ARTIST"_s, *record.artistText()},
                                             {u"ALBUMARTIST"_s, *record.albumArtistText()},
                                             {u"DATE"_s, u"1999"_s},
                                             {u"ALBUM"_s, *record.albumText()},
                                             {u"COMMENT"_s, *record.commentText()},
                                             {u"DESCRIPTION"_s, *record.commentText()},
                                             {u"DISCNUMBER"_s, u"2"_s},
                                             {u"DISCTOTAL"_s, u"3"_s},
                                             {u"TRACKNUMBER"_s, u"7"_s},
                                             {u"TRACKTOTAL"_s, u"12"_s},
                                             {u"GENRE"_s, *record.genreText()},
                                             {u"COMPOSER"_s, *record.composerText()},
                                             {u"ENCODER"_s, u"Nurv "_s + QStringLiteral(NURV_VERSION)},
                                             {u"MOOD"_s, u"calm"_s}};
    EXPECT_EQ(metaflacTags(path).size(), expected.size());
    for (auto tag = expected.cbegin(); tag != expected.cend(); ++tag)
        EXPECT_EQ(values(path, tag.key()), QStringList{tag.value()}) << qPrintable(tag.key());
    expectSoundKept();
}

TEST_F(TagLibTagsHelperFlac, ReadsWhatItWroteWithTheDiscTotalAlsoAmongTheCustomTags)
{
    TagsObject record = fullRecord();
    record.customTagsDictionary().insert(u"MOOD"_s, u"two\nlines = calm"_s);
    record.setAlbumArt(noisePicture(16, 16));
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    const TagsObject read = TagLibTagsHelper::tagsForFlacFile(path);
    ASSERT_NE(read.albumArt(), nullptr);
    EXPECT_EQ(imageOf(read.albumArt()).convertToFormat(QImage::Format_RGB32), imageOf(record.albumArt()));
    record.setAlbumArt(read.albumArt());
    EXPECT_TRUE(read.isEqualToTagsObject(record));
    EXPECT_EQ(read.albumArtistText(), record.albumArtistText());
    EXPECT_FALSE(read.encoderSettings().has_value());
    const QMap<QString, QString> custom = {{u"DISCTOTAL"_s, u"3"_s}, {u"MOOD"_s, u"two\nlines = calm"_s}};
    EXPECT_EQ(read.customTagsDictionary(), custom);
}

TEST_F(TagLibTagsHelperFlac, GivesTheBlankRecordForAFileWithoutTags)
{
    TagsObject blank;
    TagLibTagsHelper::setBlankTags(blank);
    const TagsObject read = TagLibTagsHelper::tagsForFlacFile(path);
    EXPECT_TRUE(read.isEqualToTagsObject(blank));
    EXPECT_FALSE(read.albumArtistText().has_value());
    EXPECT_TRUE(read.customTagsDictionary().isEmpty());
}

TEST_F(TagLibTagsHelperFlac, JoinsSeveralValuesWithABlank)
{
    metaflac({u"--set-tag=ARTIST=one"_s, u"--set-tag=artist=two"_s, u"--set-tag=mood=calm"_s, u"--set-tag=MOOD=dark"_s,
              path});
    const TagsObject read = TagLibTagsHelper::tagsForFlacFile(path);
    EXPECT_EQ(read.artistText(), u"one two"_s);
    const QMap<QString, QString> custom = {{u"MOOD"_s, u"calm dark"_s}};
    EXPECT_EQ(read.customTagsDictionary(), custom);
}

TEST_F(TagLibTagsHelperFlac, LeavesAllKnownKeysButTheDiscTotalOutOfTheCustomTags)
{
    QStringList arguments;
    for (const char *key : {"title", "ARTIST", "ALBUMARTIST", "DATE", "Album", "DISCNUMBER", "DISCTOTAL", "TRACKNUMBER",
                            "TRACKTOTAL", "DESCRIPTION", "COMMENT", "GENRE", "COMPOSER", "ENCODER", "LABEL"})
        arguments.append(u"--set-tag=%1=%1-value"_s.arg(QLatin1StringView(key)));
    metaflac(arguments + QStringList{path});
    EXPECT_EQ(TagLibTagsHelper::tagsForFlacFile(path).customTagsDictionary().keys(),
              (QStringList{u"DISCTOTAL"_s, u"LABEL"_s}));
}

TEST_F(TagLibTagsHelperFlac, ReadsTheDescriptionBeforeTheComment)
{
    metaflac({u"--set-tag=COMMENT=from comment"_s, path});
    EXPECT_EQ(TagLibTagsHelper::tagsForFlacFile(path).commentText(), u"from comment"_s);
    metaflac({u"--set-tag=DESCRIPTION=from description"_s, path});
    EXPECT_EQ(TagLibTagsHelper::tagsForFlacFile(path).commentText(), u"from description"_s);
}

TEST_F(TagLibTagsHelperFlac, LeavesWhatTheRecordLacksWithoutTheFlag)
{
    metaflac({u"--set-tag=TITLE=old"_s, u"--set-tag=ARTIST=old"_s, u"--set-tag=MOOD=old"_s, path});
    TagsObject record;
    record.setTitleText(u"new"_s);
    record.setArtistText(u""_s);
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    EXPECT_EQ(values(path, u"TITLE"_s), QStringList{u"new"_s});
    EXPECT_EQ(values(path, u"ARTIST"_s), QStringList{u"old"_s});
    EXPECT_EQ(values(path, u"MOOD"_s), QStringList{u"old"_s});
}

TEST_F(TagLibTagsHelperFlac, RemovesEveryFieldButTheDateAndEveryPictureWithTheFlag)
{
    TagsObject record = fullRecord();
    record.setAlbumArt(picture(8, 8, Qt::red));
    record.customTagsDictionary().insert(u"MOOD"_s, u"calm"_s);
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    TagsObject few;
    few.setTitleText(u"new"_s);
    few.setAlbumText(u""_s);
    TagLibTagsHelper::writeTagsForFLACFile(path, few, true);
    EXPECT_EQ(values(path, u"TITLE"_s), QStringList{u"new"_s});
    EXPECT_EQ(values(path, u"ENCODER"_s).size(), 1);
    EXPECT_EQ(values(path, u"DATE"_s).size(), 1);
    EXPECT_EQ(metaflacTags(path).size(), 3);
    EXPECT_EQ(pictureCount(path), 0);
    expectSoundKept();
}

TEST_F(TagLibTagsHelperFlac, AddsAPictureBesideTheOldOne)
{
    TagsObject record;
    record.setAlbumArt(picture(8, 8, Qt::red));
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    record.setAlbumArt(picture(9, 9, Qt::blue));
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    EXPECT_EQ(pictureCount(path), 2);
    EXPECT_EQ(TagLibTagsHelper::tagsForFlacFile(path).albumArt()->size(), QSize(8, 8));
    TagLibTagsHelper::writeTagsForFLACFile(path, record, true);
    EXPECT_EQ(pictureCount(path), 1);
}

TEST_F(TagLibTagsHelperFlac, DescribesThePictureBlock)
{
    TagsObject record;
    record.setAlbumArt(picture(40, 30, Qt::green));
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    const QString listed = listedPictures(path);
    EXPECT_TRUE(listed.contains(u"type: 3 (Cover (front))"_s)) << qPrintable(listed);
    EXPECT_TRUE(listed.contains(u"MIME type: image/png"_s));
    EXPECT_TRUE(listed.contains(u"width: 40"_s));
    EXPECT_TRUE(listed.contains(u"height: 30"_s));
    EXPECT_TRUE(listed.contains(u"depth: 24"_s));
    const QString exported = folder.path(u"cover.png"_s);
    metaflac({u"--export-picture-to="_s + exported, path});
    EXPECT_EQ(QImage(exported, "png").convertToFormat(QImage::Format_RGB32), imageOf(record.albumArt()));
}

TEST_F(TagLibTagsHelperFlac, GivesTheDepthOfAPictureWithTransparency)
{
    QImage image(5, 5, QImage::Format_ARGB32);
    image.fill(QColor(1, 2, 3, 4));
    TagsObject record;
    record.setAlbumArt(artOf(image));
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    EXPECT_TRUE(listedPictures(path).contains(u"depth: 32"_s));
}

TEST_F(TagLibTagsHelperFlac, ReadsAJpegCoverOfAnotherWriterAndNoneWhenItIsRuined)
{
    const QByteArray jpeg = encodedPicture(picture(30, 20, Qt::green), "jpeg");
    metaflac({u"--import-picture-from="_s + folder.write(u"cover.jpg"_s, jpeg), path});
    ASSERT_NE(TagLibTagsHelper::tagsForFlacFile(path).albumArt(), nullptr);
    EXPECT_EQ(TagLibTagsHelper::tagsForFlacFile(path).albumArt()->size(), QSize(30, 20));
    QByteArray bytes = folder.read(u"a.flac"_s);
    bytes.replace(jpeg, QByteArray(jpeg.size(), 'x'));
    folder.write(u"a.flac"_s, bytes);
    EXPECT_EQ(TagLibTagsHelper::tagsForFlacFile(path).albumArt(), nullptr);
}

TEST_F(TagLibTagsHelperFlac, KeepsTheOldDateWhenTheRecordHasNone)
{
    metaflac({u"--set-tag=DATE=1977-06-05"_s, path});
    TagsObject record;
    record.setTitleText(u"T"_s);
    for (const auto &date : {TagsObject::Text(), TagsObject::Text(u""_s)}) {
        record.setDateText(date);
        for (const bool writeEmptyTags : {false, true}) {
            TagLibTagsHelper::writeTagsForFLACFile(path, record, writeEmptyTags);
            EXPECT_EQ(values(path, u"DATE"_s), QStringList{u"1977-06-05"_s});
        }
    }
}

TEST_F(TagLibTagsHelperFlac, WritesSeveralOldDatesBackAsOne)
{
    metaflac({u"--set-tag=DATE=1977"_s, u"--set-tag=DATE=1999"_s, path});
    TagsObject record;
    record.setTitleText(u"T"_s);
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    EXPECT_EQ(values(path, u"DATE"_s), QStringList{u"1977 1999"_s});
}

TEST_F(TagLibTagsHelperFlac, WritesTheDateThroughMetaflacOnly)
{
    const ProgramFolder tools;
    static_cast<void>(tools.addLogged(u"metaflac"_s, folder.path(u"log"_s)));
    TagsObject record;
    record.setDateText(u"2001"_s);
    TagLibTagsHelper::writeTagsForFLACFile(path, record, true);
    EXPECT_EQ(folder.read(u"log"_s), (u"--remove-tag=DATE\t%1\n--set-tag=DATE=2001\t%1\n"_s.arg(path)).toUtf8());
    EXPECT_EQ(values(path, u"DATE"_s), QStringList{u"2001"_s});
    tools.remove(u"metaflac"_s);
    record.setDateText(u"2002"_s);
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    EXPECT_EQ(values(path, u"DATE"_s), QStringList{u"2001"_s});
}

TEST_F(TagLibTagsHelperFlac, RunsNoMetaflacWithoutAnyDate)
{
    const ProgramFolder tools;
    static_cast<void>(tools.addLogged(u"metaflac"_s, folder.path(u"log"_s)));
    TagLibTagsHelper::writeTagsForFLACFile(path, {}, true);
    EXPECT_FALSE(folder.exists(u"log"_s));
}

TEST_F(TagLibTagsHelperFlac, LogsCustomTagsAndGoesOnAfterAnImpossibleName)
{
    TagsObject record;
    record.customTagsDictionary() = {
        {u"A=B"_s, u"one"_s}, {u"EMPTY"_s, u""_s}, {u"Größe"_s, u"two"_s}, {u"label"_s, u"x = y\nz"_s}};
    const LogCapture log;
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    EXPECT_EQ(log.texts(u"nurv.tags"_s),
              (QStringList{u"setting custom tag: A=B one"_s, u"Error setting custom tag: A=B"_s,
                           u"setting custom tag: Größe two"_s, u"Error setting custom tag: Größe"_s,
                           u"setting custom tag: label x = y\nz"_s}));
    const TagsObject read = TagLibTagsHelper::tagsForFlacFile(path);
    const QMap<QString, QString> custom = {{u"LABEL"_s, u"x = y\nz"_s}};
    EXPECT_EQ(read.customTagsDictionary(), custom);
}

TEST_F(TagLibTagsHelperFlac, ReplacesACustomTag)
{
    metaflac({u"--set-tag=MOOD=one"_s, u"--set-tag=mood=two"_s, path});
    TagsObject record;
    record.customTagsDictionary().insert(u"Mood"_s, u"three"_s);
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    EXPECT_EQ(values(path, u"MOOD"_s), QStringList{u"three"_s});
}

TEST_F(TagLibTagsHelperFlac, TakesVeryLongTextsAndFilesWithoutPadding)
{
    path = writeTaggableFlac(folder, u"tight.flac"_s, {u"--no-padding"_s});
    TagsObject record;
    record.setCommentText(u"длинный=\n"_s.repeated(50'000));
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    EXPECT_EQ(TagLibTagsHelper::tagsForFlacFile(path).commentText(), record.commentText());
    expectSoundKept();
}

TEST_F(TagLibTagsHelperFlac, TakesALargePictureAndRefusesOneThatNoBlockHolds)
{
    TagsObject record;
    record.setAlbumArt(noisePicture(2000, 2000)); // about 12 MB
    TagLibTagsHelper::writeTagsForFLACFile(path, record, true);
    EXPECT_EQ(pictureCount(path), 1);
    expectSoundKept();
    const QByteArray before = folder.read(u"a.flac"_s);
    record.setAlbumArt(noisePicture(2500, 2500)); // about 19 MB; a block holds 16 MiB
    EXPECT_TRUE(failureOf([&] { TagLibTagsHelper::writeTagsForFLACFile(path, record, true); }).has_value());
    EXPECT_EQ(folder.read(u"a.flac"_s), before);
}

TEST_F(TagLibTagsHelperFlac, RefusesACommentThatNoBlockHolds)
{
    const QByteArray before = folder.read(u"a.flac"_s);
    TagsObject record;
    record.setCommentText(QString(9'000'000, u'x')); // written twice
    EXPECT_TRUE(failureOf([&] { TagLibTagsHelper::writeTagsForFLACFile(path, record, true); }).has_value());
    EXPECT_EQ(folder.read(u"a.flac"_s), before);
}

TEST_F(TagLibTagsHelperFlac, TakesFileNamesWithBlanksQuotesAndNewlines)
{
    for (const QString &name : {u"-a b'\"c.flac"_s, u"line\nbreak.flac"_s, u"\u6771\u4eac ä.flac"_s}) {
        const QString file = writeTaggableFlac(folder, name);
        TagLibTagsHelper::writeTagsForFLACFile(file, fullRecord(), true);
        EXPECT_TRUE(TagLibTagsHelper::tagsForFlacFile(file).isEqualToTagsObject(fullRecord())) << qPrintable(name);
    }
}

TEST_F(TagLibTagsHelperFlac, FollowsALinkAndKeepsTheMode)
{
    const QString link = folder.makeLink(u"link.flac"_s, path);
    ASSERT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    const auto mode = QFile::permissions(path);
    TagsObject record;
    record.setAlbumArt(noisePicture(200, 200)); // beyond any padding
    TagLibTagsHelper::writeTagsForFLACFile(link, record, false);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(pictureCount(path), 1);
    EXPECT_EQ(QFile::permissions(path), mode);
}
