// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/AACTagsHelper.h"

#include "base/Version.h"
#include "Mp4Fixtures.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/TestProgram.h"
#include "TagFixtures.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

void write(const QString &path, const TagsObject &tags, bool writeEmptyTags = false, bool encoding = false)
{
    AACTagsHelper::writeTagsForFile(path, tags, writeEmptyTags, encoding);
}

TagsObject recordWith(void (TagsObject::*set)(TagsObject::Text), const QString &text)
{
    TagsObject tags;
    (tags.*set)(text);
    return tags;
}

/// What AtomicParsley lists, one item a line.
QStringList parsleyTags(const QString &path)
{
    const ProgramResult result = runProgram(u"AtomicParsley"_s, {path, u"-t"_s});
    EXPECT_EQ(result.exitStatus, 0);
    return QString::fromUtf8(result.output).split(u'\n', Qt::SkipEmptyParts);
}

/// A field of the first section of mediainfo's report.
QString mediainfoField(const QString &path, const QString &field)
{
    const ProgramResult result = runProgram(u"mediainfo"_s, {u"--Inform=General;%"_s + field + u'%', path});
    EXPECT_EQ(result.exitStatus, 0);
    return QString::fromUtf8(result.output).trimmed();
}

/// The picture that ffmpeg finds in the file.
QImage pictureByFfmpeg(const QString &path)
{
    const ProgramResult result =
        runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, path, u"-map"_s, u"0:v:0"_s, u"-c"_s,
                                 u"copy"_s, u"-f"_s, u"image2pipe"_s, u"pipe:1"_s});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    return QImage::fromData(result.output);
}

/// QuickTime as the tests wish, while it lives.
class QuickTime {
public:
    explicit QuickTime(std::optional<std::uint32_t> version)
    {
        AACTagsHelper::setQuickTimeVersionProvider([version] { return version; });
    }
    ~QuickTime() { AACTagsHelper::setQuickTimeVersionProvider({}); }
    QuickTime(const QuickTime &) = delete;
    QuickTime &operator=(const QuickTime &) = delete;
};

class AACTagsHelperFiles : public ::testing::Test {
protected:
    TestFolder folder;

    QString makeFile(const QStringList &arguments = {}) { return writeM4a(folder, u"a.m4a"_s, u"alac"_s, arguments); }
    QByteArray bytes() { return folder.read(u"a.m4a"_s); }
    QByteArrayList items() { return itemsOf(bytes()); }
};

struct Kind {
    const char *name;
    QString codec;
    QStringList arguments;
};

void PrintTo(const Kind &kind, std::ostream *stream)
{
    *stream << kind.name;
}

class AACTagsHelperKinds : public ::testing::TestWithParam<Kind> {};

} // namespace

TEST_P(AACTagsHelperKinds, WritesEveryFieldWhereOtherReadersFindIt)
{
    const TestFolder folder;
    const QString path = writeM4a(folder, u"a.m4a"_s, GetParam().codec, GetParam().arguments);
    const QByteArray sound = decodedMd5(path);
    TagsObject record = fullRecord();
    record.setAlbumArt(picture(30, 20, Qt::darkCyan));
    write(path, record);

    EXPECT_EQ(decodedMd5(path), sound);
    const QMap<QString, QString> tags = ffprobeTags(path);
    EXPECT_EQ(tags.value(u"title"_s), u"Änderung \u6771\u4eac \U0001F3B5"_s);
    EXPECT_EQ(tags.value(u"artist"_s), u"Sigur Rós"_s);
    EXPECT_EQ(tags.value(u"album_artist"_s), u"Sigur Rós"_s);
    EXPECT_EQ(tags.value(u"album"_s), u"a=b \"quoted\""_s);
    EXPECT_EQ(tags.value(u"comment"_s), u"first line\nsecond = line"_s);
    EXPECT_EQ(tags.value(u"track"_s), u"7/12"_s);
    EXPECT_EQ(tags.value(u"disc"_s), u"2/3"_s);
    EXPECT_EQ(tags.value(u"date"_s), u"1999"_s);
    EXPECT_EQ(tags.value(u"genre"_s), u"Rímur"_s);
    EXPECT_EQ(tags.value(u"composer"_s), u"Dvořák"_s);
    EXPECT_EQ(pictureByFfmpeg(path).pixelColor(10, 10), QColor(Qt::darkCyan));
    const QByteArray bytes = folder.read(u"a.m4a"_s);
    EXPECT_FALSE(bytes.contains("never written here"));
    EXPECT_FALSE(bytes.contains("Various"));
    EXPECT_EQ(typesOf(bytes), (QByteArrayList{"ftyp", "moov", "mdat"}));
    EXPECT_EQ(folder.list().filter(u"m4a"_s), QStringList{u"a.m4a"_s});

    const QStringList parsley = parsleyTags(path);
    EXPECT_TRUE(parsley.contains(u"Atom \"trkn\" contains: 7 of 12"_s)) << qPrintable(parsley.join(u'\n'));
    EXPECT_TRUE(parsley.contains(u"Atom \"disk\" contains: 2 of 3"_s));
    EXPECT_TRUE(parsley.contains(u"Atom \"aART\" contains: Sigur Rós"_s));
    EXPECT_TRUE(parsley.contains(u"Atom \"covr\" contains: 1 piece of artwork"_s));
    EXPECT_EQ(mediainfoField(path, u"Track"_s), u"Änderung \u6771\u4eac \U0001F3B5"_s);
    EXPECT_EQ(mediainfoField(path, u"Performer"_s), u"Sigur Rós"_s);
    EXPECT_EQ(mediainfoField(path, u"Track/Position"_s), u"7"_s);
    EXPECT_EQ(mediainfoField(path, u"Track/Position_Total"_s), u"12"_s);
}

TEST_P(AACTagsHelperKinds, ReadsBackWhatItWrote)
{
    const TestFolder folder;
    const QString path = writeM4a(folder, u"a.m4a"_s, GetParam().codec, GetParam().arguments);
    TagsObject record = fullRecord();
    record.setAlbumArt(noisePicture(40, 30));
    write(path, record);
    const TagsObject read = AACTagsHelper::tagsForFile(path);
    EXPECT_EQ(read.titleText(), record.titleText());
    EXPECT_EQ(read.artistText(), record.artistText());
    EXPECT_EQ(read.dateText(), record.dateText());
    EXPECT_EQ(read.albumText(), record.albumText());
    EXPECT_EQ(read.commentText(), record.commentText());
    EXPECT_EQ(read.discText(), record.discText());
    EXPECT_EQ(read.discTotalText(), record.discTotalText());
    EXPECT_EQ(read.trackText(), record.trackText());
    EXPECT_EQ(read.trackTotalText(), record.trackTotalText());
    EXPECT_EQ(read.genreText(), record.genreText());
    EXPECT_EQ(read.composerText(), record.composerText());
    ASSERT_NE(read.albumArt(), nullptr);
    EXPECT_EQ(imageOf(read.albumArt()).convertToFormat(QImage::Format_RGB32), imageOf(record.albumArt()));
    EXPECT_FALSE(read.albumArtistText().has_value());
    EXPECT_FALSE(read.encoderSettings().has_value());
    EXPECT_TRUE(read.customTagsDictionary().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    All, AACTagsHelperKinds,
    ::testing::Values(Kind{"AppleLossless", u"alac"_s, {}},
                      Kind{"AppleLosslessMovieFirst", u"alac"_s, {u"-movflags"_s, u"+faststart"_s}},
                      Kind{"Aac", u"aac"_s, {}}, Kind{"AacMovieFirst", u"aac"_s, {u"-movflags"_s, u"+faststart"_s}}),
    [](const auto &kind) { return std::string(kind.param.name); });

TEST_F(AACTagsHelperFiles, ReadsTheTagsOfAnotherWriter)
{
    const QString path = makeFile();
    const ProgramResult result = runProgram(u"AtomicParsley"_s, {path,
                                                                 u"--overWrite"_s,
                                                                 u"--title"_s,
                                                                 u"Título"_s,
                                                                 u"--artist"_s,
                                                                 u"Artist"_s,
                                                                 u"--album"_s,
                                                                 u"Album"_s,
                                                                 u"--year"_s,
                                                                 u"1987"_s,
                                                                 u"--comment"_s,
                                                                 u"Comment"_s,
                                                                 u"--tracknum"_s,
                                                                 u"3/9"_s,
                                                                 u"--disk"_s,
                                                                 u"1/2"_s,
                                                                 u"--genre"_s,
                                                                 u"Jazz"_s,
                                                                 u"--composer"_s,
                                                                 u"Composer"_s,
                                                                 u"--albumArtist"_s,
                                                                 u"Band"_s});
    ASSERT_EQ(result.exitStatus, 0);
    ASSERT_TRUE(bytes().contains("gnre")) << "expected the genre as a number";
    const TagsObject tags = AACTagsHelper::tagsForFile(path);
    EXPECT_EQ(tags.titleText(), u"Título"_s);
    EXPECT_EQ(tags.artistText(), u"Artist"_s);
    EXPECT_EQ(tags.albumText(), u"Album"_s);
    EXPECT_EQ(tags.dateText(), u"1987"_s);
    EXPECT_EQ(tags.commentText(), u"Comment"_s);
    EXPECT_EQ(tags.trackText(), u"3"_s);
    EXPECT_EQ(tags.trackTotalText(), u"9"_s);
    EXPECT_EQ(tags.discText(), u"1"_s);
    EXPECT_EQ(tags.discTotalText(), u"2"_s);
    EXPECT_EQ(tags.genreText(), u"Jazz"_s);
    EXPECT_EQ(tags.composerText(), u"Composer"_s);
    EXPECT_FALSE(tags.albumArtistText().has_value());
}

TEST_F(AACTagsHelperFiles, ReadsZeroesAndEmptyTextsWhereTheFileHasNoTags)
{
    const QString path = makeFile();
    ASSERT_FALSE(bytes().contains("trkn"));
    for (int round = 0; round < 2; ++round) {
        const TagsObject tags = AACTagsHelper::tagsForFile(path);
        EXPECT_EQ(tags.trackText(), u"0"_s);
        EXPECT_EQ(tags.trackTotalText(), u"0"_s);
        EXPECT_EQ(tags.discText(), u"0"_s);
        EXPECT_EQ(tags.discTotalText(), u"0"_s);
        for (const auto &text : {tags.titleText(), tags.artistText(), tags.dateText(), tags.albumText(),
                                 tags.commentText(), tags.genreText(), tags.composerText()})
            EXPECT_EQ(text, u""_s);
        EXPECT_FALSE(tags.albumArtistText().has_value());
        EXPECT_FALSE(tags.encoderSettings().has_value());
        EXPECT_EQ(tags.albumArt(), nullptr);
        // The second time without any place for metadata.
        folder.write(u"a.m4a"_s, edited(bytes(), {"moov"}, [](const QByteArray &contents) {
                         QByteArray rest;
                         for (const TestBox &box : boxesOf(contents))
                             rest += box.type == "udta" ? QByteArray() : boxBytes(box.type, box.contents);
                         return rest;
                     }));
    }
}

TEST(AACTagsHelper, EmptiesNineFieldsAndLeavesTheOthers)
{
    TagsObject tags = fullRecord();
    tags.setAlbumArt(picture(2, 2, Qt::red));
    AACTagsHelper::setBlankTags(tags);
    for (const auto &text : {tags.titleText(), tags.artistText(), tags.dateText(), tags.albumText(), tags.discText(),
                             tags.trackText(), tags.commentText(), tags.genreText(), tags.composerText()})
        EXPECT_EQ(text, u""_s);
    EXPECT_EQ(tags.trackTotalText(), u"12"_s);
    EXPECT_EQ(tags.discTotalText(), u"3"_s);
    EXPECT_EQ(tags.albumArtistText(), fullRecord().albumArtistText());
    EXPECT_EQ(tags.encoderSettings(), fullRecord().encoderSettings());
    EXPECT_NE(tags.albumArt(), nullptr);
}

TEST_F(AACTagsHelperFiles, ReadsTextsInUtf16AndOfNoDeclaredKind)
{
    const QString path = makeFile({u"-metadata"_s, u"title=old"_s});
    const QByteArray utf16("\0G\0r\0\xfc\0n", 8);
    folder.write(u"a.m4a"_s, withItems(bytes(), itemBytes("\251alb", 2, utf16) + itemBytes("\251wrt", 0, "impl")
                                                    + itemBytes("\251cmt", 1, QByteArray("cut\0off", 7))));
    const TagsObject tags = AACTagsHelper::tagsForFile(path);
    EXPECT_EQ(tags.albumText(), u"Grün"_s);
    EXPECT_EQ(tags.composerText(), u"impl"_s);
    EXPECT_EQ(tags.commentText(), u"cut"_s);
}

TEST_F(AACTagsHelperFiles, ReadsNumbersBeyond32767)
{
    const QString path = makeFile({u"-metadata"_s, u"title=old"_s});
    folder.write(u"a.m4a"_s, withItems(bytes(), itemBytes("trkn", 0, QByteArray("\0\0\xff\xff\x80\0\0\0", 8))
                                                    + itemBytes("disk", 0, QByteArray("\0\0\0\5", 4))));
    const TagsObject tags = AACTagsHelper::tagsForFile(path);
    EXPECT_EQ(tags.trackText(), u"65535"_s);
    EXPECT_EQ(tags.trackTotalText(), u"32768"_s);
    EXPECT_EQ(tags.discText(), u"5"_s);
    EXPECT_EQ(tags.discTotalText(), u"0"_s);
}

TEST_F(AACTagsHelperFiles, WritesATrackWithoutATotalAsOfZero)
{
    const QString path = makeFile();
    write(path, recordWith(&TagsObject::setTrackText, u"3"_s));
    EXPECT_TRUE(items().contains(itemBytes("trkn", 0, QByteArray("\0\0\0\3\0\0\0\0", 8))));
    EXPECT_TRUE(parsleyTags(path).contains(u"Atom \"trkn\" contains: 3"_s));
    write(path, recordWith(&TagsObject::setDiscText, u"2"_s));
    EXPECT_TRUE(items().contains(itemBytes("disk", 0, QByteArray("\0\0\0\2\0\0", 6))));
    TagsObject onlyTotals;
    onlyTotals.setTrackTotalText(u"9"_s);
    onlyTotals.setDiscTotalText(u"9"_s);
    write(path, onlyTotals);
    EXPECT_EQ(ffprobeTags(path).value(u"track"_s), u"3"_s);
    EXPECT_EQ(ffprobeTags(path).value(u"disc"_s), u"2"_s);
}

TEST_F(AACTagsHelperFiles, CutsNumbersTo16Bits)
{
    const QString path = makeFile();
    TagsObject tags;
    tags.setTrackText(u"65538 or so"_s);
    tags.setTrackTotalText(u"131075"_s);
    tags.setDiscText(u"-1"_s);
    tags.setDiscTotalText(u"none"_s);
    write(path, tags);
    EXPECT_TRUE(items().contains(itemBytes("trkn", 0, QByteArray("\0\0\0\2\0\3\0\0", 8))));
    EXPECT_TRUE(items().contains(itemBytes("disk", 0, QByteArray("\0\0\xff\xff\0\0", 6))));
}

TEST_F(AACTagsHelperFiles, LeavesWhatTheRecordLacksWithoutTheFlag)
{
    const QString path = makeFile();
    write(path, fullRecord());
    const QByteArrayList before = items();
    TagsObject tags;
    tags.setTitleText(u"New"_s);
    tags.setArtistText(u""_s);
    tags.setTrackText(u""_s);
    write(path, tags);
    QByteArrayList expected = before;
    const qsizetype title = expected.indexOf(itemBytes("\251nam", 1, u"Änderung \u6771\u4eac \U0001F3B5"_s.toUtf8()));
    ASSERT_GE(title, 0);
    expected[title] = itemBytes("\251nam", 1, "New");
    EXPECT_EQ(items(), expected);
}

TEST_F(AACTagsHelperFiles, WritesEmptyTextsWithTheFlag)
{
    const QString path = makeFile();
    TagsObject record = fullRecord();
    record.setAlbumArt(picture(4, 4, Qt::red));
    write(path, record);
    TagsObject tags;
    tags.setTrackTotalText(u"5"_s);
    tags.setArtistText(u"Kept"_s);
    write(path, tags, true);
    const QMap<QString, QString> read = ffprobeTags(path);
    for (const QString &name : {u"title"_s, u"album"_s, u"comment"_s, u"date"_s, u"genre"_s, u"composer"_s})
        EXPECT_EQ(read.value(name), QString()) << qPrintable(name);
    EXPECT_EQ(read.value(u"artist"_s), u"Kept"_s);
    EXPECT_EQ(read.value(u"album_artist"_s), u"Kept"_s);
    EXPECT_TRUE(items().contains(itemBytes("\251nam", 1, {})));
    EXPECT_TRUE(items().contains(itemBytes("trkn", 0, QByteArray("\0\0\0\0\0\5\0\0", 8))));
    EXPECT_TRUE(items().contains(itemBytes("disk", 0, QByteArray(6, '\0'))));
    // The picture is not a text.
    EXPECT_EQ(pictureByFfmpeg(path).width(), 4);
    EXPECT_EQ(AACTagsHelper::tagsForFile(path).titleText(), u""_s);
}

TEST_F(AACTagsHelperFiles, KeepsForeignItemsByteForByte)
{
    const QString path = makeFile({u"-metadata"_s, u"title=old"_s});
    const QByteArray freeForm =
        boxBytes("----", boxBytes("mean", bigEndian32(0) + "org.example") + boxBytes("name", bigEndian32(0) + "NOTE")
                             + boxBytes("data", bigEndian32(1) + bigEndian32(0) + "kept"));
    const QByteArrayList foreign{itemBytes("\251grp", 2, QByteArray("\0g", 2)),
                                 itemBytes("zzin", 21, "\5"),
                                 itemBytes("\251wrt", 0, "implicit"),
                                 freeForm,
                                 itemBytes("cpil", 21, "\1"),
                                 boxBytes("zzzz", {})};
    folder.write(u"a.m4a"_s, withItems(bytes(), foreign.join()));
    write(path, recordWith(&TagsObject::setTitleText, u"A title of another length"_s));
    const QByteArrayList after = items();
    for (const QByteArray &item : foreign)
        EXPECT_TRUE(after.contains(item)) << item.mid(4, 4).constData();
    EXPECT_EQ(ffprobeTags(path).value(u"title"_s), u"A title of another length"_s);
}

TEST_F(AACTagsHelperFiles, LeavesOneItemOfSeveralWithTheSameName)
{
    const QString path = makeFile({u"-metadata"_s, u"title=old"_s});
    folder.write(u"a.m4a"_s,
                 withItems(bytes(), itemBytes("\251nam", 1, "second") + itemBytes("gnre", 0, QByteArray("\0\11", 2))));
    EXPECT_EQ(AACTagsHelper::tagsForFile(path).titleText(), u"old"_s);
    EXPECT_EQ(AACTagsHelper::tagsForFile(path).genreText(), u"Jazz"_s); // 9, counted from 1
    TagsObject tags = recordWith(&TagsObject::setTitleText, u"New"_s);
    tags.setGenreText(u"Rock"_s);
    write(path, tags);
    const QByteArray all = items().join();
    EXPECT_EQ(all.count("\251nam"), 1);
    EXPECT_EQ(all.count("gnre"), 0);
    EXPECT_EQ(ffprobeTags(path).value(u"title"_s), u"New"_s);
    EXPECT_EQ(ffprobeTags(path).value(u"genre"_s), u"Rock"_s);
}

TEST_F(AACTagsHelperFiles, FindsThePlaceForItemsInEveryShapeOfUserData)
{
    const QByteArray meta = bigEndian32(0) + boxBytes("hdlr", QByteArray(8, '\0') + "mdirappl" + QByteArray(9, '\0'))
                            + boxBytes("ilst", {});
    const QByteArrayList shapes{
        {},                                                       // none
        boxBytes("udta", {}),                                     // empty
        boxBytes("udta", bigEndian32(0)),                         // with its end mark
        boxBytes("udta", boxBytes("name", "x") + bigEndian32(0)), // with something else
        boxBytes("udta", boxBytes("meta", bigEndian32(0))),       // without a handler
        boxBytes("udta", boxBytes("meta", meta.mid(4))),          // of QuickTime, without a version
        boxBytes("udta", boxBytes("name", "x")) + boxBytes("udta", boxBytes("meta", meta)), // the second
    };
    makeFile();
    const QByteArray plain = edited(bytes(), {"moov"}, [](const QByteArray &contents) {
        QByteArray rest;
        for (const TestBox &box : boxesOf(contents))
            rest += box.type == "udta" ? QByteArray() : boxBytes(box.type, box.contents);
        return rest;
    });
    for (const QByteArray &shape : shapes) {
        const QString path = folder.write(
            u"a.m4a"_s, edited(plain, {"moov"}, [&shape](const QByteArray &contents) { return contents + shape; }));
        const QByteArray sound = decodedMd5(path);
        write(path, fullRecord());
        EXPECT_EQ(AACTagsHelper::tagsForFile(path).titleText(), fullRecord().titleText()) << shape.toHex().constData();
        EXPECT_EQ(ffprobeTags(path).value(u"title"_s), fullRecord().titleText()) << shape.toHex().constData();
        EXPECT_EQ(decodedMd5(path), sound);
        EXPECT_EQ(bytes().contains(boxBytes("name", "x")), shape.contains(boxBytes("name", "x")));
    }
}

TEST_F(AACTagsHelperFiles, TagsAFileWith64BitOffsetsAndSizes)
{
    makeFile();
    const QByteArray plain = bytes();
    const QByteArray ftyp = boxBytes("ftyp", contentsAt(plain, {"ftyp"}));
    const QByteArray path64 = ftyp + boxBytes("free", {}) + longBoxBytes("mdat", contentsAt(plain, {"mdat"}))
                              + longBoxBytes("moov", contentsAt(withLongOffsets(plain, 8), {"moov"}));
    const QString path = folder.write(u"a.m4a"_s, path64);
    const QByteArray sound = decodedMd5(path);
    write(path, fullRecord());
    EXPECT_EQ(decodedMd5(path), sound);
    EXPECT_EQ(ffprobeTags(path).value(u"title"_s), fullRecord().titleText());
    // Once more, now with the movie in front of the sound.
    write(path, recordWith(&TagsObject::setTitleText, u"short"_s));
    EXPECT_EQ(decodedMd5(path), sound);
    EXPECT_EQ(ffprobeTags(path).value(u"title"_s), u"short"_s);
}

TEST_F(AACTagsHelperFiles, ReadsTheFirstPictureWhateverItsKind)
{
    const QString path = makeFile({u"-metadata"_s, u"title=old"_s});
    const QByteArray plain = bytes();
    const QByteArray jpeg = encodedPicture(picture(20, 10, Qt::green), "JPG");
    const QByteArray png = encodedPicture(picture(5, 5, Qt::red), "PNG");
    const auto value = [](quint32 type, const QByteArray &data) {
        return boxBytes("data", bigEndian32(type) + bigEndian32(0) + data);
    };
    folder.write(u"a.m4a"_s, withItems(plain, boxBytes("covr", value(13, jpeg) + value(14, png))));
    AlbumArt art = AACTagsHelper::tagsForFile(path).albumArt();
    ASSERT_NE(art, nullptr);
    EXPECT_EQ(art->size(), QSize(20, 10));
    // The declared kind may be wrong.
    folder.write(u"a.m4a"_s, withItems(plain, itemBytes("covr", 13, png)));
    art = AACTagsHelper::tagsForFile(path).albumArt();
    ASSERT_NE(art, nullptr);
    EXPECT_EQ(art->size(), QSize(5, 5));
    // What is no picture costs nothing but the picture.
    folder.write(u"a.m4a"_s, withItems(plain, itemBytes("covr", 14, "no picture")));
    const TagsObject tags = AACTagsHelper::tagsForFile(path);
    EXPECT_EQ(tags.albumArt(), nullptr);
    EXPECT_EQ(tags.titleText(), u"old"_s);
}

TEST_F(AACTagsHelperFiles, PutsThePictureInThePlaceOfTheFirst)
{
    const QString path = makeFile({u"-metadata"_s, u"title=old"_s});
    const QByteArray back =
        boxBytes("data", bigEndian32(13) + bigEndian32(0) + encodedPicture(picture(9, 9, Qt::blue), "JPG"));
    folder.write(
        u"a.m4a"_s,
        withItems(bytes(), boxBytes("covr", boxBytes("data", bigEndian32(13) + bigEndian32(0) + "front") + back)));
    TagsObject tags;
    tags.setAlbumArt(picture(31, 7, Qt::yellow));
    write(path, tags);
    EXPECT_TRUE(parsleyTags(path).contains(u"Atom \"covr\" contains: 2 pieces of artwork"_s));
    const QImage first = pictureByFfmpeg(path);
    EXPECT_EQ(first.size(), QSize(31, 7));
    EXPECT_EQ(first.pixelColor(3, 3), QColor(Qt::yellow));
    EXPECT_TRUE(bytes().contains(back));
    EXPECT_FALSE(bytes().contains("front"));
    const qsizetype value = bytes().indexOf("data", bytes().indexOf("covr"));
    EXPECT_EQ(bytes().mid(value + 4, 4), bigEndian32(14));
    EXPECT_EQ(bytes().mid(value + 13, 3), QByteArray("PNG"));
}

TEST_F(AACTagsHelperFiles, WritesTheTextsWhenThePictureCannotBeRendered)
{
    const QString path = makeFile();
    TagsObject tags = recordWith(&TagsObject::setTitleText, u"T"_s);
    tags.setAlbumArt(std::make_shared<const CoverPicture>("no picture", QSize(3, 5), 24));
    EXPECT_EQ(AACTagsHelper::writeTagsForFile(path, tags, false, false),
              u"Unable to render the picture: it is of no known kind"_s);
    EXPECT_EQ(ffprobeTags(path).value(u"title"_s), u"T"_s);
    EXPECT_FALSE(bytes().contains("covr"));
}

TEST_F(AACTagsHelperFiles, WritesTheToolWhereAQuickTimeVersionIsKnown)
{
    const QString path = makeFile();
    const QuickTime quickTime(0x07658000U);
    TagsObject tags = recordWith(&TagsObject::setEncoderSettings, u"ABR 160kbps"_s);
    write(path, tags, false, true);
    const QString start = u"Nurv "_s + shortVersionString() + u", QuickTime 7.6.5, "_s;
    EXPECT_EQ(ffprobeTags(path).value(u"encoder"_s), start + u"ABR 160kbps"_s);
    for (const auto &settings : {TagsObject::Text(u""_s), TagsObject::Text()}) {
        tags.setEncoderSettings(settings);
        write(path, tags, false, true);
        // ffprobe drops the blank at the end.
        EXPECT_TRUE(items().contains(itemBytes("\251too", 1, start.toUtf8())));
    }
}

TEST_F(AACTagsHelperFiles, LeavesTheToolAloneWithoutTheFlagOrAVersion)
{
    const QString path = makeFile({u"-metadata"_s, u"encoder=Somebody"_s});
    const QByteArray tool = itemBytes("\251too", 1, "Somebody");
    folder.write(u"a.m4a"_s, withItems(bytes(), bytes().contains(tool) ? QByteArray() : tool));
    const TagsObject tags = recordWith(&TagsObject::setEncoderSettings, u"ABR 160kbps"_s);
    write(path, tags, true, true);
    EXPECT_TRUE(items().contains(tool));
    {
        const QuickTime unknown(std::nullopt);
        write(path, tags, true, true);
        EXPECT_TRUE(items().contains(tool));
    }
    const QuickTime quickTime(0x07700000U);
    write(path, tags, true, false);
    EXPECT_TRUE(items().contains(tool));
    EXPECT_FALSE(bytes().contains("QuickTime 7"));
}

TEST_F(AACTagsHelperFiles, KeepsTheModeAndWritesThroughALink)
{
    const QString path = makeFile();
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0640), 0);
    const QString link = folder.makeLink(u"link.m4a"_s, path);
    write(link, fullRecord());
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    struct stat info = {};
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0640U);
    EXPECT_EQ(ffprobeTags(path).value(u"title"_s), fullRecord().titleText());
}

// Gapless

TEST_F(AACTagsHelperFiles, MakesAFileGapless)
{
    const QString path = writeM4a(folder, u"a.m4a"_s, u"aac"_s);
    const QByteArray sound = decodedMd5(path);
    ASSERT_FALSE(bytes().contains("pgap"));
    write(path, fullRecord());
    AACTagsHelper::makeGapless(path);
    EXPECT_TRUE(items().contains(itemBytes("pgap", 21, "\1")));
    EXPECT_EQ(decodedMd5(path), sound);
    EXPECT_EQ(ffprobeTags(path).value(u"title"_s), fullRecord().titleText());
    EXPECT_EQ(folder.list(), QStringList{u"a.m4a"_s});
    // And the other way round.
    write(path, recordWith(&TagsObject::setTitleText, u"again"_s));
    EXPECT_TRUE(items().contains(itemBytes("pgap", 21, "\1")));
    EXPECT_EQ(decodedMd5(path), sound);
}

TEST_F(AACTagsHelperFiles, RunsTheProgramForGaplessFilesWithoutPadding)
{
    const ProgramFolder tools;
    const QString log = folder.path(u"log"_s);
    const QString environment = folder.write(u"a b.m4a"_s, "no sound");
    tools.addFake(u"AtomicParsley"_s, "log=" + log.toUtf8() + ";exec=" + tools.path(u"second"_s).toUtf8());
    folder.write(u"second"_s, "#!/bin/sh\nprintf '%s' \"$AP_PADDING\" > \"$1\"\nexit 3\n");
    ASSERT_TRUE(QFile::copy(folder.path(u"second"_s), tools.path(u"second"_s)));
    ASSERT_TRUE(QFile::setPermissions(tools.path(u"second"_s), QFile::ReadOwner | QFile::ExeOwner));
    AACTagsHelper::makeGapless(environment);
    EXPECT_EQ(folder.read(u"log"_s), environment.toUtf8() + "\t--overWrite\t--gapless\t--true\n");
    EXPECT_EQ(folder.read(u"a b.m4a"_s), QByteArray("\"DEFAULT_PAD=0:MAX_PAD=0\""));
}

TEST_F(AACTagsHelperFiles, StartsNoProgramForGaplessFilesThatCouldWriteThroughALink)
{
    const ProgramFolder tools;
    const QString log = folder.path(u"log"_s);
    tools.addFake(u"AtomicParsley"_s, "log=" + log.toUtf8());
    const QString path = folder.write(u"a.m4a"_s, "no sound");
    const QString link = folder.makeLink(u"a-temp-4711.m4a"_s, folder.path(u"nowhere"_s));
    AACTagsHelper::makeGapless(path);
    EXPECT_FALSE(folder.exists(u"log"_s));
    ASSERT_TRUE(QFile::remove(link));
    AACTagsHelper::makeGapless(path);
    EXPECT_TRUE(folder.exists(u"log"_s));
}

TEST_F(AACTagsHelperFiles, DoesNotMindAMissingOrFailingProgramForGaplessFiles)
{
    const ProgramFolder tools;
    const QString path = makeFile();
    const QByteArray before = bytes();
    AACTagsHelper::makeGapless(path);
    tools.addFake(u"AtomicParsley"_s, "err=no;exit=1");
    AACTagsHelper::makeGapless(path);
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(folder.list(), QStringList{u"a.m4a"_s});
}
