// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/Mp4Optimizer.h"

#include "FolderWatch.h"
#include "Mp4Fixtures.h"
#include "support/AudioFixtures.h"
#include "support/SystemCallRecorder.h"
#include "TagFixtures.h"
#include "tags/AACTagsHelper.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QtEndian>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

const QString kNotOptimized = u"unable to optimize @% file"_s;
const QString kCannotOpen = u"Unable to open the output file for tagging."_s;
const QString kDamaged = u"Unable to save the tags: the movie box is damaged."_s;

/// Writes no item, so that nothing is left but the order.
void optimize(const QString &path)
{
    AACTagsHelper::writeTagsForFile(path, TagsObject(), false, false);
}

class Mp4OptimizerFiles : public ::testing::Test {
protected:
    TestFolder folder;

    /// The bytes of a file as ffmpeg writes it: ftyp free mdat moov.
    QByteArray plainFile()
    {
        writeM4a(folder, u"plain.m4a"_s);
        const QByteArray bytes = folder.read(u"plain.m4a"_s);
        folder.remove(u"plain.m4a"_s);
        EXPECT_EQ(typesOf(bytes), (QByteArrayList{"ftyp", "free", "mdat", "moov"}));
        return bytes;
    }

    /// Whether the file cannot be optimised, and stays as it is.
    ::testing::AssertionResult isRefused(const QByteArray &bytes, const QString &reason = kNotOptimized)
    {
        const QString path = folder.write(u"a.m4a"_s, bytes);
        const std::optional<QString> failure = failureOf([&] { optimize(path); });
        if (failure != reason)
            return ::testing::AssertionFailure() << "failure: " << qPrintable(failure.value_or(u"none"_s));
        if (folder.read(u"a.m4a"_s) != bytes)
            return ::testing::AssertionFailure() << "the file has changed";
        if (folder.list() != QStringList{u"a.m4a"_s})
            return ::testing::AssertionFailure() << qPrintable(folder.list().join(u' '));
        return ::testing::AssertionSuccess();
    }

    /// Optimises the bytes as a file that must keep its sound. Returns its new bytes.
    QByteArray optimized(const QByteArray &bytes)
    {
        const QString path = folder.write(u"a.m4a"_s, bytes);
        const QByteArray sound = decodedMd5(path);
        EXPECT_EQ(failureOf([&] { optimize(path); }), std::nullopt);
        EXPECT_EQ(decodedMd5(path), sound);
        EXPECT_EQ(folder.list(), QStringList{u"a.m4a"_s});
        return folder.read(u"a.m4a"_s);
    }
};

QByteArray boxOfType(const QByteArray &file, const QByteArray &type)
{
    for (const TestBox &box : boxesOf(file)) {
        if (box.type == type)
            return boxBytes(box.type, box.contents);
    }
    return {};
}

} // namespace

TEST_F(Mp4OptimizerFiles, PutsTheMovieBeforeTheSoundAndDropsPadding)
{
    const QByteArray before = plainFile();
    const QByteArray after = optimized(before);
    EXPECT_EQ(typesOf(after), (QByteArrayList{"ftyp", "moov", "mdat"}));
    EXPECT_EQ(boxOfType(after, "ftyp"), boxOfType(before, "ftyp"));
    EXPECT_EQ(boxOfType(after, "mdat"), boxOfType(before, "mdat"));
    const qint64 shift = after.indexOf("mdat") - before.indexOf("mdat");
    EXPECT_GT(shift, 0);
    const QList<quint64> offsets = chunkOffsets(before);
    const QList<quint64> movedOffsets = chunkOffsets(after);
    ASSERT_EQ(movedOffsets.size(), offsets.size());
    for (qsizetype i = 0; i < offsets.size(); ++i)
        EXPECT_EQ(movedOffsets.at(i), offsets.at(i) + static_cast<quint64>(shift));
}

TEST_F(Mp4OptimizerFiles, GivesTheSameBytesTheSecondTime)
{
    const QByteArray once = optimized(plainFile());
    EXPECT_EQ(optimized(once), once);
}

TEST_F(Mp4OptimizerFiles, TakesAFileWithTheMovieInFront)
{
    writeM4a(folder, u"b.m4a"_s, u"aac"_s, {u"-movflags"_s, u"+faststart"_s});
    const QByteArray before = folder.read(u"b.m4a"_s);
    folder.remove(u"b.m4a"_s);
    ASSERT_EQ(typesOf(before), (QByteArrayList{"ftyp", "moov", "free", "mdat"}));
    const QByteArray after = optimized(before);
    EXPECT_EQ(typesOf(after), (QByteArrayList{"ftyp", "moov", "mdat"}));
    EXPECT_EQ(after.size(), before.size() - 8);
}

TEST_F(Mp4OptimizerFiles, KeepsOtherBoxesInTheirOrderBeforeTheSound)
{
    const QByteArray uuid = boxBytes("uuid", QByteArray(16, 'u') + "first");
    const QByteArray other = longBoxBytes("abcd", "second");
    const QByteArray after = optimized(plainFile() + uuid + boxBytes("skip", "x") + other + boxBytes("wide", {})
                                       + boxBytes("free", QByteArray(100, 'f')));
    EXPECT_EQ(typesOf(after), (QByteArrayList{"ftyp", "moov", "uuid", "abcd", "mdat"}));
    EXPECT_TRUE(after.contains(uuid + other));
}

TEST_F(Mp4OptimizerFiles, KeepsPaddingInsideTheMovie)
{
    const QByteArray before = edited(plainFile(), {"moov"}, [](const QByteArray &contents) {
        return contents + boxBytes("free", QByteArray(50, 'f'));
    });
    EXPECT_EQ(boxOfType(optimized(before), "moov").right(58), boxBytes("free", QByteArray(50, 'f')));
}

TEST_F(Mp4OptimizerFiles, Follows64BitOffsetsAnd64BitSizes)
{
    const QByteArray plain = plainFile();
    // The longer head moves the sound by 8.
    const QByteArray before = boxOfType(plain, "ftyp") + boxBytes("free", {})
                              + longBoxBytes("mdat", contentsAt(plain, {"mdat"}))
                              + boxOfType(withLongOffsets(plain, 8), "moov");
    const QByteArray after = optimized(before);
    EXPECT_EQ(typesOf(after), (QByteArrayList{"ftyp", "moov", "mdat"}));
    EXPECT_TRUE(after.endsWith(longBoxBytes("mdat", contentsAt(plain, {"mdat"}))));
    EXPECT_TRUE(typesOf(contentsAt(after, kSampleTablePath)).contains("co64"));
}

TEST_F(Mp4OptimizerFiles, TakesASoundThatReachesTheEndOfTheFile)
{
    QByteArray before = optimized(plainFile());
    const qsizetype sound = before.indexOf("mdat") - 4;
    before.replace(sound, 4, bigEndian32(0));
    before.insert(sound, boxBytes("free", "12345678"));
    // The padding has moved the sound by 16.
    before = edited(before.left(sound), {"moov", "trak", "mdia", "minf", "stbl", "stco"},
                    [](const QByteArray &table) {
                        QByteArray moved = table;
                        for (qsizetype at = 8; at < moved.size(); at += 4)
                            qToBigEndian(qFromBigEndian<quint32>(moved.constData() + at) + 16, moved.data() + at);
                        return moved;
                    })
             + before.mid(sound);
    const QByteArray after = optimized(before);
    EXPECT_EQ(typesOf(after), (QByteArrayList{"ftyp", "moov", "mdat"}));
    EXPECT_EQ(after.size(), before.size() - 16);
}

TEST_F(Mp4OptimizerFiles, RefusesSeveralMoviesAndFilesWithoutMovieOrSound)
{
    const QByteArray plain = plainFile();
    EXPECT_TRUE(isRefused(plain + boxOfType(plain, "moov"), kCannotOpen));
    EXPECT_TRUE(isRefused(plain + boxOfType(plain, "ftyp")));
    EXPECT_TRUE(isRefused(boxOfType(plain, "ftyp") + boxOfType(plain, "moov")));
    EXPECT_TRUE(isRefused(boxOfType(plain, "ftyp") + boxOfType(plain, "mdat"), kCannotOpen));
    EXPECT_TRUE(isRefused({}, kCannotOpen));
}

TEST_F(Mp4OptimizerFiles, RefusesMovieFragments)
{
    const QByteArray plain = plainFile();
    EXPECT_TRUE(isRefused(plain + boxBytes("moof", boxBytes("mfhd", QByteArray(8, '\0')))));
    EXPECT_TRUE(isRefused(plain + boxBytes("mfra", {})));
    EXPECT_TRUE(
        isRefused(edited(plain, {"moov"}, [](const QByteArray &contents) { return contents + boxBytes("mvex", {}); })));
    writeM4a(folder, u"a.m4a"_s, u"aac"_s, {u"-movflags"_s, u"+frag_keyframe+empty_moov"_s});
    const QByteArray fragmented = folder.read(u"a.m4a"_s);
    ASSERT_TRUE(typesOf(fragmented).contains("moof"));
    EXPECT_TRUE(isRefused(fragmented));
}

TEST_F(Mp4OptimizerFiles, RefusesDamagedSizes)
{
    const QByteArray plain = plainFile();
    // What is cut short or damaged at the end must be no box that readers look for.
    for (const QByteArray &type : QByteArrayList{"mdat", "moof", "mfra", "sidx", "meta", "ftyp", "moov"}) {
        EXPECT_TRUE(isRefused(plain + boxBytes(type, "cut").chopped(1))) << type.constData();
        EXPECT_TRUE(isRefused(plain + bigEndian32(7) + type)) << type.constData();
        EXPECT_TRUE(isRefused(plain + bigEndian32(1) + type + bigEndian64(15))) << type.constData();
        EXPECT_TRUE(isRefused(plain + bigEndian32(1) + type + bigEndian64(~quint64{0}))) << type.constData();
    }
    EXPECT_TRUE(isRefused(plain.left(plain.size() - 1), kCannotOpen));
    for (const QByteArrayList &path : {QByteArrayList{"moov"}, {"moov", "trak"}, kSampleTablePath}) {
        EXPECT_TRUE(isRefused(edited(plain, path, [](const QByteArray &contents) { return contents + "xxxxxxxx"; }),
                              path.size() == 1 ? kCannotOpen : kDamaged))
            << path.last().constData();
    }
    const QByteArrayList table = kSampleTablePath + QByteArrayList{"stco"};
    EXPECT_TRUE(isRefused(edited(plain, table, [](const QByteArray &contents) { return contents.chopped(1); })));
    EXPECT_TRUE(isRefused(edited(plain, table, [](const QByteArray &) { return QByteArray(7, '\0'); })));
    EXPECT_TRUE(isRefused(edited(plain, table, [](const QByteArray &contents) {
        return contents.left(4) + bigEndian32(0xffffffff) + contents.mid(8);
    })));
}

TEST_F(Mp4OptimizerFiles, RefusesOffsetsThatNameNoSound)
{
    const QByteArray plain = plainFile();
    const auto sound = static_cast<quint32>(plain.indexOf("mdat") + 4);
    const auto movie = static_cast<quint32>(plain.indexOf("moov") - 4);
    for (const quint32 offset : {0U, sound - 1, movie + 1, 0xffffffffU}) {
        EXPECT_TRUE(isRefused(edited(plain, kSampleTablePath + QByteArrayList{"stco"},
                                     [offset](const QByteArray &contents) {
                                         return contents.left(8) + bigEndian32(offset) + contents.mid(12);
                                     })))
            << offset;
    }
}

TEST_F(Mp4OptimizerFiles, FollowsAnOffsetOfTheVeryEndOfTheSound)
{
    const QByteArray plain = plainFile();
    const auto end = static_cast<quint32>(plain.indexOf("moov") - 4);
    const QString path = folder.write(u"a.m4a"_s, edited(plain, kSampleTablePath + QByteArrayList{"stco"},
                                                         [end](const QByteArray &contents) {
                                                             return contents.left(8) + bigEndian32(end) + contents.mid(12);
                                                         }));
    EXPECT_EQ(failureOf([&] { optimize(path); }), std::nullopt) << "an empty chunk may lie there";
    const QByteArray after = folder.read(u"a.m4a"_s);
    EXPECT_EQ(typesOf(after), (QByteArrayList{"ftyp", "moov", "mdat"}));
    EXPECT_EQ(chunkOffsets(after).value(0), static_cast<quint64>(after.size()));
}

TEST_F(Mp4OptimizerFiles, RefusesItemsBesideTheMovie)
{
    EXPECT_TRUE(isRefused(plainFile() + boxBytes("meta", QByteArray(4, '\0'))));
}

TEST_F(Mp4OptimizerFiles, NeedsNoMemoryForTheSound)
{
    const QByteArray plain = plainFile();
    constexpr qint64 kSoundSize = qint64{256} << 20;
    QByteArray head = plain.left(plain.indexOf("mdat") - 4) + bigEndian32(static_cast<quint32>(kSoundSize)) + "mdat";
    head += contentsAt(plain, {"mdat"});
    const QString path = folder.write(u"a.m4a"_s, head);
    const qint64 movieAt = plain.indexOf("mdat") - 4 + kSoundSize;
    QFile file(path);
    ASSERT_TRUE(file.resize(movieAt));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.seek(movieAt));
    file.write(boxOfType(plain, "moov"));
    file.close();
    rusage before = {};
    ::getrusage(RUSAGE_SELF, &before);
    EXPECT_EQ(failureOf([&] { optimize(path); }), std::nullopt);
    rusage after = {};
    ::getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 32 << 10) << "KiB";
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.read(2000).mid(boxOfType(plain, "ftyp").size() + 4, 4), QByteArray("moov"));
}

TEST_F(Mp4OptimizerFiles, WorksByATemporaryFileBesideItWithItsExtension)
{
    const QString path = folder.write(u"a.b.m4a"_s, plainFile());
    const FolderWatch watch(folder.path());
    optimize(path);
    const QList<FolderWatch::Event> events = watch.events();
    // At no time is there no file of that name.
    ASSERT_EQ(events.size(), 3);
    EXPECT_EQ(events.at(0).kind, static_cast<uint32_t>(IN_CREATE));
    EXPECT_TRUE(QRegularExpression(u"^Nurv-[0-9a-f]{8}-[A-Za-z0-9]{8}\\.m4a$"_s).match(events.at(0).name).hasMatch())
        << qPrintable(events.at(0).name);
    EXPECT_EQ(events.at(1).kind, static_cast<uint32_t>(IN_MOVED_FROM));
    EXPECT_EQ(events.at(1).name, events.at(0).name);
    EXPECT_EQ(events.at(2).kind, static_cast<uint32_t>(IN_MOVED_TO));
    EXPECT_EQ(events.at(2).name, u"a.b.m4a"_s);
}

TEST_F(Mp4OptimizerFiles, KeepsTheModeOfTheFile)
{
    const QString path = folder.write(u"a.m4a"_s, plainFile());
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0640), 0);
    optimize(path);
    struct stat info = {};
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0640U);
}

TEST_F(Mp4OptimizerFiles, ReplacesTheFileThatALinkLeadsTo)
{
    const QString target = folder.write(u"sub/a.m4a"_s, plainFile());
    const QString link = folder.makeLink(u"link.m4a"_s, target);
    optimize(link);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(typesOf(folder.read(u"sub/a.m4a"_s)), (QByteArrayList{"ftyp", "moov", "mdat"}));
    EXPECT_EQ(folder.list().size(), 2);
}

TEST_F(Mp4OptimizerFiles, LeavesTheFileAsItWasWhenTheDiskIsFull)
{
    const QByteArray plain = plainFile();
    const QString path = folder.write(u"a.m4a"_s, plain);
    const FileSizeLimit limit(static_cast<rlim_t>(plain.size()) / 2);
    EXPECT_EQ(failureOf([&] { optimize(path); }), u"Unable to save the tags: File too large."_s);
    EXPECT_EQ(folder.read(u"a.m4a"_s), plain);
    EXPECT_EQ(folder.list(), QStringList{u"a.m4a"_s});
}

TEST_F(Mp4OptimizerFiles, HasReplacedAFileWhenTheNewOneIsOnTheDisk)
{
    const QString path = folder.write(u"a.m4a"_s, "old");
    const QString temporary = folder.write(u"temporary.m4a"_s, "new");
    const SystemCallRecorder calls;
    Mp4Optimizer::replace(path, temporary);
    EXPECT_EQ(folder.read(u"a.m4a"_s), QByteArray("new"));
    const qsizetype named = calls.indexOf(u"rename "_s + temporary);
    ASSERT_GE(named, 0);
    EXPECT_TRUE(calls.calls().mid(named).contains(u"fsync "_s + folder.path())) << qPrintable(calls.calls().join(u'\n'));
}

TEST_F(Mp4OptimizerFiles, FailsWhenTheOldFileCannotBeDeleted)
{
    const QString path = folder.makeFolder(u"a.m4a"_s); // no file takes the place of a folder
    const QString temporary = folder.write(u"temporary.m4a"_s, "new");
    EXPECT_EQ(failureOf([&] { Mp4Optimizer::replace(path, temporary); }), u"unable to delete file @%"_s);
    EXPECT_TRUE(QFileInfo(path).isDir());
    EXPECT_FALSE(folder.exists(u"temporary.m4a"_s));
}

TEST_F(Mp4OptimizerFiles, FailsWhenTheNewFileCannotBeMoved)
{
    const QString path = folder.write(u"a.m4a"_s, "old");
    const QString temporary = folder.path(u"taken-by-somebody.m4a"_s);
    const LogCapture log;
    EXPECT_EQ(failureOf([&] { Mp4Optimizer::replace(path, temporary); }), u"file @% was lost"_s);
    EXPECT_TRUE(log.texts(u"nurv.tags"_s).join(u'\n').contains(temporary));
    EXPECT_EQ(folder.read(u"a.m4a"_s), QByteArray("old"));
}
