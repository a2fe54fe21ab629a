// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/AACTagsHelper.h"

#include "FolderWatch.h"
#include "Mp4Fixtures.h"
#include "support/AudioFixtures.h"
#include "support/TestProgram.h"
#include "TagFixtures.h"
#include "tags/MetadataInventory.h"

#include <QFile>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

const QString kElsewhere = u"Unable to save the tags: its sound lies in another file."_s;
const QString kForeignPlaces = u"Unable to save the tags: the movie box names places that are no chunk offsets."_s;

TagsObject titled(const QString &title)
{
    TagsObject tags;
    tags.setTitleText(title);
    return tags;
}

QByteArray id3v1()
{
    return ("TAG" + QByteArray("Old title").leftJustified(124, '\0')) + '\x11';
}

QByteArray pictureValue(const QByteArray &picture)
{
    return boxBytes("data", bigEndian32(14) + bigEndian32(0) + picture);
}

/// Files that players make or take, though few writers do.
class AACTagsHelperWildFiles : public ::testing::Test {
protected:
    TestFolder folder;

    [[nodiscard]] QString path() const { return folder.path(u"a.m4a"_s); }
    QByteArray bytes() { return folder.read(u"a.m4a"_s); }

    /// A sound of many chunks: ftyp free mdat moov.
    QByteArray manyChunks()
    {
        writeM4a(folder, u"a.m4a"_s, u"aac"_s, {u"-map"_s, u"0"_s, u"-map"_s, u"0"_s, u"-b:a:0"_s, u"64k"_s});
        EXPECT_EQ(typesOf(bytes()), (QByteArrayList{"ftyp", "free", "mdat", "moov"}));
        EXPECT_GT(chunkOffsets(bytes()).size(), 8);
        return bytes();
    }

    /// Writes a title twice, the second of another length. Both times the packets of all streams stay,
    /// and the title is found, at last by four readers. The boxes then have this order.
    void writeTitles(const QByteArray &file, const QByteArrayList &order)
    {
        folder.write(u"a.m4a"_s, file);
        const QByteArray packets = packetsOf(path());
        const QByteArray sound = decodedMd5(path());
        for (const QString &title : {u"A title of some length"_s, u"short"_s}) {
            EXPECT_EQ(failureOf([&] { AACTagsHelper::writeTagsForFile(path(), titled(title), false, false); }),
                      std::nullopt);
            EXPECT_EQ(packetsOf(path()), packets);
            EXPECT_EQ(AACTagsHelper::tagsForFile(path()).titleText(), title);
            EXPECT_EQ(ffprobeTags(path()).value(u"title"_s), title);
            EXPECT_EQ(typesOf(bytes()), order);
        }
        EXPECT_EQ(decodedMd5(path()), sound);
        const ProgramResult parsley = runProgram(u"AtomicParsley"_s, {path(), u"-t"_s});
        EXPECT_TRUE(QString::fromUtf8(parsley.output).contains(u"contains: short"_s)) << parsley.output.constData();
        const ProgramResult info = runProgram(u"mediainfo"_s, {u"--Inform=General;%Track%"_s, path()});
        EXPECT_EQ(QString::fromUtf8(info.output).trimmed(), u"short"_s);
        EXPECT_EQ(folder.list(), QStringList{u"a.m4a"_s});
    }

    /// Whether nothing is written into the file, whatever is to be.
    ::testing::AssertionResult isRefused(const QByteArray &file, const QString &reason)
    {
        folder.write(u"a.m4a"_s, file);
        for (const TagsObject &tags : {TagsObject(), titled(u"new"_s)}) {
            const std::optional<QString> failure =
                failureOf([&] { AACTagsHelper::writeTagsForFile(path(), tags, false, false); });
            if (failure != reason)
                return ::testing::AssertionFailure() << "failure: " << qPrintable(failure.value_or(u"none"_s));
            if (bytes() != file || folder.list() != QStringList{u"a.m4a"_s})
                return ::testing::AssertionFailure() << "not untouched";
        }
        return ::testing::AssertionSuccess();
    }
};

/// The sound of a file, which has one box of it, in two boxes with others around them, cut in front of
/// a chunk in its middle.
QByteArray withTwoSounds(const QByteArray &file, bool isMovieBetween)
{
    QList<quint64> offsets = chunkOffsets(file);
    const auto cut = static_cast<qsizetype>(offsets.at(offsets.size() / 2));
    const qsizetype begin = file.indexOf("mdat") + 4;
    const QByteArray sound = contentsAt(file, {"mdat"});
    const QByteArray head = boxBytes("ftyp", contentsAt(file, {"ftyp"}));
    const QByteArray first = boxBytes("mdat", sound.left(cut - begin));
    const QByteArray second = boxBytes("wide", {}) + longBoxBytes("mdat", sound.mid(cut - begin));
    const auto placed = [&](qsizetype firstAt, qsizetype secondAt) {
        const QByteArray moved = withChunkOffsets(file, [&](quint64 offset) {
            const auto place = static_cast<qsizetype>(offset);
            return static_cast<quint64>(place < cut ? place - begin + firstAt + 8 : place - cut + secondAt + 8 + 16);
        });
        return boxBytes("moov", contentsAt(moved, {"moov"}));
    };
    const QByteArray between = isMovieBetween ? placed(0, 0) : boxBytes("uuid", QByteArray(20, 'u'));
    const qsizetype secondAt = head.size() + first.size() + between.size();
    const QByteArray movie = placed(head.size(), secondAt);
    return head + first + (isMovieBetween ? movie : between) + second + boxBytes("mdat", {})
           + (isMovieBetween ? QByteArray() : movie);
}

} // namespace

TEST_F(AACTagsHelperWildFiles, TakesSeveralSounds)
{
    const QByteArray file = manyChunks();
    writeTitles(withTwoSounds(file, false), {"ftyp", "moov", "uuid", "mdat", "mdat", "mdat"});
    writeTitles(withTwoSounds(file, true), {"ftyp", "moov", "mdat", "mdat", "mdat"});
}

TEST_F(AACTagsHelperWildFiles, TakesAnEmptyChunkAtTheVeryEndOfASound)
{
    const QByteArray file = withTwoSounds(manyChunks(), false);
    const quint64 firstEnd = static_cast<quint64>(file.indexOf("mdat") - 4)
                             + static_cast<quint64>(boxBytes("mdat", contentsAt(file, {"mdat"})).size());
    // A second table of the track, whose only chunk is empty; readers take the first.
    const auto withEmptyChunk = [&](quint64 offset) {
        return edited(file, kSampleTablePath, [offset](const QByteArray &contents) {
            return contents + boxBytes("co64", bigEndian32(0) + bigEndian32(1) + bigEndian64(offset));
        });
    };
    folder.write(u"a.m4a"_s, withEmptyChunk(firstEnd));
    EXPECT_EQ(failureOf([&] { AACTagsHelper::writeTagsForFile(path(), titled(u"t"_s), false, false); }), std::nullopt);
    const quint64 newEnd = static_cast<quint64>(bytes().indexOf("mdat") - 4)
                           + static_cast<quint64>(boxBytes("mdat", contentsAt(bytes(), {"mdat"})).size());
    EXPECT_EQ(chunkOffsets(bytes()).last(), newEnd);
    // One further is the head of the next box.
    const QByteArray beyond = withEmptyChunk(firstEnd + 1);
    folder.write(u"a.m4a"_s, beyond);
    EXPECT_EQ(failureOf([&] { AACTagsHelper::writeTagsForFile(path(), TagsObject(), false, false); }),
              u"unable to optimize @% file"_s);
    EXPECT_EQ(bytes(), beyond);
}

TEST_F(AACTagsHelperWildFiles, KeepsWhatStandsBehindTheLastBox)
{
    const QByteArray file = manyChunks();
    const QByteArray packets = packetsOf(path());
    for (const QByteArray &tail :
         QByteArrayList{id3v1(), QByteArray(7, '\0'), QByteArray(4096, '\0'), QByteArray(100, '\0') + id3v1(), "x",
                        "no box, but some text", bigEndian32(0) + "uuid" + "to the end of the file"}) {
        const QString name = QString::fromLatin1(tail.left(30).toPercentEncoding());
        folder.write(u"a.m4a"_s, file + tail);
        EXPECT_EQ(failureOf([&] { AACTagsHelper::writeTagsForFile(path(), titled(name), false, false); }),
                  std::nullopt);
        EXPECT_EQ(packetsOf(path()), packets) << qPrintable(name);
        EXPECT_EQ(ffprobeTags(path()).value(u"title"_s), name);
        EXPECT_TRUE(bytes().endsWith(tail)) << qPrintable(name);
        EXPECT_EQ(typesOf(bytes().chopped(tail.size())), (QByteArrayList{"ftyp", "moov", "mdat"})) << qPrintable(name);
    }
    // Other programs refuse a file that ends so, before and after.
    const QByteArray cut = boxBytes("uuid", "cut short").chopped(1);
    folder.write(u"a.m4a"_s, file + cut);
    AACTagsHelper::writeTagsForFile(path(), titled(u"t"_s), false, false);
    EXPECT_TRUE(bytes().endsWith(cut));
    QFile::resize(path(), bytes().size() - cut.size());
    EXPECT_EQ(packetsOf(path()), packets);
}

TEST_F(AACTagsHelperWildFiles, NamesWhatStandsBehindTheLastBoxInTheInventory)
{
    const QByteArray file = manyChunks();
    for (const QByteArray &zeros : {QByteArray(), QByteArray(100, '\0')}) {
        folder.write(u"a.m4a"_s, file + zeros + id3v1());
        AACTagsHelper::writeTagsForFile(path(), titled(u"New"_s), false, false);
        const MetadataInventory inventory = MetadataInventory::of(path());
        EXPECT_EQ(inventory.tags.value(u"TITLE"_s), (QStringList{u"New"_s, u"Old title"_s}));
        EXPECT_TRUE(inventory.foreignChunks.isEmpty());
    }
    folder.write(u"a.m4a"_s, file + QByteArray(100, '\0'));
    EXPECT_TRUE(MetadataInventory::of(path()).foreignChunks.isEmpty());
}

TEST_F(AACTagsHelperWildFiles, KeepsFurtherPicturesInItemsOfTheirOwn)
{
    writeM4a(folder, u"a.m4a"_s, u"alac"_s, {u"-metadata"_s, u"title=old"_s});
    const QByteArray front = encodedPicture(picture(11, 11, Qt::red), "PNG");
    const QByteArray back = boxBytes("covr", pictureValue(encodedPicture(picture(9, 9, Qt::blue), "PNG")));
    const QByteArray empty = boxBytes("covr", {});
    folder.write(u"a.m4a"_s, withItems(bytes(), empty + boxBytes("covr", pictureValue(front)) + back));
    const QByteArray sound = decodedMd5(path());
    ASSERT_NE(AACTagsHelper::tagsForFile(path()).albumArt(), nullptr);
    EXPECT_EQ(imageOf(AACTagsHelper::tagsForFile(path()).albumArt()).size(), QSize(11, 11));

    TagsObject tags = titled(u"new"_s);
    tags.setAlbumArt(picture(31, 7, Qt::yellow));
    EXPECT_EQ(failureOf([&] { AACTagsHelper::writeTagsForFile(path(), tags, false, false); }), std::nullopt);
    EXPECT_EQ(decodedMd5(path()), sound);
    EXPECT_EQ(imageOf(AACTagsHelper::tagsForFile(path()).albumArt()).size(), QSize(31, 7));
    EXPECT_EQ(ffprobeTags(path()).value(u"title"_s), u"new"_s);
    EXPECT_EQ(itemsOf(bytes()).count(back), 1);
    EXPECT_EQ(itemsOf(bytes()).count(empty), 1);
    EXPECT_FALSE(bytes().contains(front));
    EXPECT_EQ(MetadataInventory::of(path()).pictures.size(), 2);

    // Without a picture in the record all stay.
    const QByteArrayList before = itemsOf(bytes());
    AACTagsHelper::writeTagsForFile(path(), titled(u"newer"_s), false, false);
    for (const QByteArray &item : before)
        EXPECT_TRUE(item.mid(4, 4) != "covr" || itemsOf(bytes()).contains(item));
}

TEST_F(AACTagsHelperWildFiles, TakesASecondTrackOfSoundAndOneOfChapters)
{
    writeTitles(manyChunks(), {"ftyp", "moov", "mdat"});
    const QString chapters =
        folder.write(u"chapters"_s, ";FFMETADATA1\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=0\nEND=200\ntitle=one\n"
                                    "[CHAPTER]\nTIMEBASE=1/1000\nSTART=200\nEND=500\ntitle=two\n");
    const ProgramResult made =
        runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, path(), u"-i"_s, chapters, u"-map"_s,
                                 u"0"_s, u"-map_metadata"_s, u"1"_s, u"-c"_s, u"copy"_s, folder.path(u"b.m4a"_s)});
    ASSERT_EQ(made.exitStatus, 0) << made.errors.constData();
    const QByteArray file = folder.read(u"b.m4a"_s);
    folder.remove(u"chapters"_s);
    folder.remove(u"b.m4a"_s);
    ASSERT_EQ(file.count("stco"), 3) << "two tracks of sound and the text of the chapters";
    const auto titlesOf = [this] {
        return runProgram(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_chapters"_s, u"-of"_s, u"csv"_s, path()}).output;
    };
    folder.write(u"a.m4a"_s, file);
    const QByteArray titles = titlesOf();
    ASSERT_TRUE(titles.contains("two"));
    writeTitles(file, {"ftyp", "moov", "mdat"});
    EXPECT_EQ(titlesOf(), titles);
}

TEST_F(AACTagsHelperWildFiles, WritesOnceAndNotAtAllWhatIsThereAlready)
{
    TagsObject record = fullRecord();
    record.setAlbumArt(noisePicture(20, 20));
    writeM4a(folder, u"a.m4a"_s);
    const FolderWatch watch(folder.path());
    AACTagsHelper::writeTagsForFile(path(), record, false, false);
    const QList<FolderWatch::Event> events = watch.events();
    ASSERT_EQ(events.size(), 3);
    EXPECT_EQ(events.at(0).kind, static_cast<std::uint32_t>(IN_CREATE));
    EXPECT_EQ(events.at(1).kind, static_cast<std::uint32_t>(IN_MOVED_FROM));
    EXPECT_EQ(events.at(2).kind, static_cast<std::uint32_t>(IN_MOVED_TO));
    EXPECT_EQ(events.at(2).name, u"a.m4a"_s);

    struct stat before = {};
    ASSERT_EQ(::stat(QFile::encodeName(path()).constData(), &before), 0);
    AACTagsHelper::writeTagsForFile(path(), record, false, false);
    AACTagsHelper::writeTagsForFile(path(), TagsObject(), false, false);
    struct stat after = {};
    ASSERT_EQ(::stat(QFile::encodeName(path()).constData(), &after), 0);
    EXPECT_TRUE(watch.events().isEmpty());
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    EXPECT_EQ(after.st_ctim.tv_nsec, before.st_ctim.tv_nsec);
    // One byte of a tag is a change.
    record.setTitleText(*record.titleText() + u'.');
    AACTagsHelper::writeTagsForFile(path(), record, false, false);
    EXPECT_EQ(watch.events().size(), 3);
}

TEST_F(AACTagsHelperWildFiles, RefusesSoundInOtherFilesUntouched)
{
    const QByteArrayList references{"moov", "trak", "mdia", "minf", "dinf", "dref"};
    const QByteArray file = manyChunks();
    const auto withReference = [&](quint32 flags, const QByteArray &name) {
        return edited(file, references, [&](const QByteArray &contents) {
            const QByteArray reference = boxBytes("url ", bigEndian32(flags) + name);
            return contents.left(4) + bigEndian32(2) + contents.mid(8) + reference;
        });
    };
    EXPECT_TRUE(isRefused(withReference(0, "file:///sound.m4a"), kElsewhere));
    EXPECT_TRUE(isRefused(withReference(2, {}), kElsewhere));
    EXPECT_TRUE(isRefused(
        edited(file, references, [](const QByteArray &contents) { return contents + bigEndian32(9) + "url x"; }),
        u"Unable to save the tags: the movie box is damaged."_s));
    EXPECT_TRUE(isRefused(edited(file, references, [](const QByteArray &contents) { return contents.left(7); }),
                          u"Unable to save the tags: the movie box is damaged."_s));
    writeTitles(withReference(1, {}), {"ftyp", "moov", "mdat"});
}

TEST_F(AACTagsHelperWildFiles, RefusesItemsThatLieSomewhereInTheFileUntouched)
{
    const QByteArray file = manyChunks();
    const QByteArray items = boxBytes("iloc", QByteArray(12, '\0'));
    const QByteArray metadata = boxBytes("meta", bigEndian32(0) + boxBytes("hdlr", QByteArray(25, '\0')) + items);
    const auto with = [&](const QByteArrayList &place, const QByteArray &box) {
        return edited(file, place, [&](const QByteArray &contents) { return contents + box; });
    };
    EXPECT_TRUE(isRefused(with({"moov"}, metadata), kForeignPlaces));
    EXPECT_TRUE(isRefused(with({"moov", "trak"}, metadata), kForeignPlaces));
    EXPECT_TRUE(isRefused(with({"moov", "udta"}, metadata), kForeignPlaces));
    EXPECT_TRUE(isRefused(with({"moov", "udta", "meta"}, items), kForeignPlaces));
    EXPECT_TRUE(isRefused(with({"moov", "trak"}, boxBytes("udta", metadata + bigEndian32(0))), kForeignPlaces));
    EXPECT_TRUE(isRefused(with({"moov"}, boxBytes("meco", metadata)), kForeignPlaces));
    EXPECT_TRUE(
        isRefused(with({"moov"}, boxBytes("meta", boxBytes("hdlr", QByteArray(25, '\0')) + items)), kForeignPlaces));
    EXPECT_TRUE(isRefused(with(kSampleTablePath, boxBytes("saio", QByteArray(12, '\0'))), kForeignPlaces));
}
