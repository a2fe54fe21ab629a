// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagEditStream.h"

#include "support/SystemCallRecorder.h"
#include "TagFixtures.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <functional>
#include <random>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

using Access = TagEditStream::Access;

TagLib::ByteVector bytes(const QByteArray &data)
{
    return {data.constData(), static_cast<unsigned int>(data.size())};
}

QByteArray allOf(TagEditStream &stream)
{
    stream.seek(0);
    const TagLib::ByteVector block = stream.readBlock(static_cast<unsigned long>(stream.length()));
    return {block.data(), static_cast<qsizetype>(block.size())};
}

ino_t inodeOf(const QString &path)
{
    struct stat info = {};
    EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &info), 0);
    return info.st_ino;
}

} // namespace

TEST(TagEditStream, LeavesTheFileUntouchedUntilTheCommit)
{
    const TestFolder folder;
    const QString path = folder.write(u"a"_s, "0123456789");
    TagEditStream stream(path, Access::Edit);
    ASSERT_TRUE(stream.isOpen());
    stream.insert(bytes("abc"), 2, 1);
    EXPECT_EQ(allOf(stream), QByteArray("01abc3456789"));
    EXPECT_EQ(folder.read(u"a"_s), QByteArray("0123456789"));
    EXPECT_EQ(stream.commit(), std::nullopt);
    EXPECT_EQ(folder.read(u"a"_s), QByteArray("01abc3456789"));
    EXPECT_EQ(folder.list(), QStringList{u"a"_s});
}

TEST(TagEditStream, ReadsSeeksAndTells)
{
    const TestFolder folder;
    TagEditStream stream(folder.write(u"a"_s, "0123456789"), Access::Read);
    stream.seek(-3, TagLib::IOStream::End);
    EXPECT_EQ(stream.tell(), 7);
    EXPECT_EQ(stream.readBlock(100), bytes("789"));
    EXPECT_EQ(stream.tell(), 10);
    EXPECT_TRUE(stream.readBlock(1).isEmpty());
    stream.seek(-8, TagLib::IOStream::Current);
    EXPECT_EQ(stream.readBlock(2), bytes("23"));
    stream.seek(-99, TagLib::IOStream::Current);
    EXPECT_EQ(stream.tell(), 4);
    stream.seek(99);
    EXPECT_TRUE(stream.readBlock(1).isEmpty());
    EXPECT_EQ(stream.length(), 10);
}

TEST(TagEditStream, RefusesEditsOfAFileOpenedForReading)
{
    const TestFolder folder;
    TagEditStream stream(folder.write(u"a"_s, "0123"), Access::Read);
    EXPECT_TRUE(stream.readOnly());
    stream.insert(bytes("x"), 0, 0);
    stream.removeBlock(0, 2);
    stream.truncate(1);
    EXPECT_EQ(allOf(stream), QByteArray("0123"));
    EXPECT_EQ(stream.commit(), std::nullopt);
    EXPECT_EQ(folder.read(u"a"_s), QByteArray("0123"));
}

TEST(TagEditStream, DoesNotOpenWhatIsNoRegularFile)
{
    const TestFolder folder;
    const QString pipe = folder.path(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &path : {folder.path(u"missing"_s), folder.path(), pipe, QString(), u"/dev/null"_s}) {
        EXPECT_FALSE(TagEditStream(path, Access::Read).isOpen()) << qPrintable(path);
        EXPECT_FALSE(TagEditStream(path, Access::Edit).isOpen()) << qPrintable(path);
    }
}

TEST(TagEditStream, DoesAnySeriesOfEditsLikeATextInMemory)
{
    const TestFolder folder;
    std::minstd_rand random(7);
    const auto below = [&random](std::size_t limit) { return limit == 0 ? 0 : random() % limit; };
    for (int round = 0; round < 60; ++round) {
        std::string expected(below(200), 'o');
        for (std::size_t i = 0; i < expected.size(); ++i)
            expected[i] = static_cast<char>('a' + i % 26);
        const QString path = folder.write(u"a"_s, QByteArray::fromStdString(expected));
        TagEditStream stream(path, Access::Edit);
        for (int step = 0; step < 12; ++step) {
            const std::size_t start = below(expected.size() + 1);
            const std::size_t length = below(expected.size() - start + 1);
            const std::string added(below(30), static_cast<char>('A' + step));
            switch (below(4)) {
            case 0:
                stream.insert({added.data(), static_cast<unsigned int>(added.size())}, start, length);
                expected.replace(start, length, added);
                break;
            case 1:
                stream.removeBlock(start, length);
                expected.erase(start, length);
                break;
            case 2:
                stream.seek(static_cast<long>(start));
                stream.writeBlock({added.data(), static_cast<unsigned int>(added.size())});
                expected.replace(start, std::min(added.size(), expected.size() - start), added);
                EXPECT_EQ(stream.tell(), static_cast<long>(start + added.size()));
                break;
            default:
                stream.truncate(static_cast<long>(start));
                expected.resize(start);
                break;
            }
            ASSERT_EQ(stream.length(), static_cast<long>(expected.size()));
            ASSERT_EQ(allOf(stream), QByteArray::fromStdString(expected));
        }
        ASSERT_EQ(stream.commit(), std::nullopt);
        ASSERT_EQ(folder.read(u"a"_s), QByteArray::fromStdString(expected));
    }
    EXPECT_EQ(folder.list(), QStringList{u"a"_s});
}

TEST(TagEditStream, FillsAGapBehindTheEndWithZeroes)
{
    const TestFolder folder;
    TagEditStream stream(folder.write(u"a"_s, "ab"), Access::Edit);
    stream.seek(4);
    stream.writeBlock(bytes("c"));
    EXPECT_EQ(stream.commit(), std::nullopt);
    EXPECT_EQ(folder.read(u"a"_s), QByteArray("ab\0\0c", 5));
}

TEST(TagEditStream, EditsInPlaceWhatDiffersWithinOneBlock)
{
    const TestFolder folder;
    const QString path = folder.write(u"a"_s, QByteArray(3 * 4096, 'o'));
    const ino_t inode = inodeOf(path);
    const auto commitWith = [&path](const auto &edit) {
        TagEditStream stream(path, Access::Edit);
        edit(stream);
        EXPECT_EQ(stream.commit(), std::nullopt);
    };
    commitWith([](TagEditStream &stream) {
        stream.seek(4096);
        stream.writeBlock(bytes("first"));
    });
    commitWith([](TagEditStream &stream) {
        stream.seek(2 * 4096 - 4);
        stream.writeBlock(bytes("last"));
    });
    EXPECT_EQ(inodeOf(path), inode);
    EXPECT_EQ(folder.read(u"a"_s),
              QByteArray(4096, 'o') + "first" + QByteArray(4096 - 9, 'o') + "last" + QByteArray(4096, 'o'));
}

// Who is killed, or loses power, between two blocks or two calls would leave half of the edit.
TEST(TagEditStream, ReplacesTheFileForAnEditThatCouldBeLeftHalfDone)
{
    const TestFolder folder;
    const QByteArray before(3 * 4096, 'o');
    const QString path = folder.path(u"a"_s);
    const auto isReplacedBy = [&](const auto &edit) {
        folder.write(u"a"_s, before);
        const ino_t inode = inodeOf(path);
        TagEditStream stream(path, Access::Edit);
        edit(stream);
        EXPECT_EQ(stream.commit(), std::nullopt);
        EXPECT_EQ(folder.list(), QStringList{u"a"_s});
        return inodeOf(path) != inode;
    };
    EXPECT_TRUE(isReplacedBy([](TagEditStream &stream) {
        stream.seek(4096 - 2);
        stream.writeBlock(bytes("four"));
    })) << "of two blocks";
    EXPECT_EQ(folder.read(u"a"_s).mid(4093, 6), "ofouro");
    EXPECT_TRUE(isReplacedBy([](TagEditStream &stream) {
        stream.writeBlock(bytes("a"));
        stream.seek(10);
        stream.writeBlock(bytes("b"));
    })) << "in two places";
    EXPECT_EQ(folder.read(u"a"_s).left(11), "aooooooooob");
    EXPECT_TRUE(isReplacedBy([](TagEditStream &stream) { stream.insert(bytes("tail"), 3 * 4096, 0); })) << "longer";
    EXPECT_EQ(folder.read(u"a"_s), before + "tail");
    EXPECT_TRUE(isReplacedBy([](TagEditStream &stream) { stream.truncate(5); })) << "shorter";
    EXPECT_EQ(folder.read(u"a"_s), "ooooo");
}

TEST(TagEditStream, LeavesAFileThatSomebodyElseHasWrittenTo)
{
    const TestFolder folder;
    const QString foreign = u"another program has changed or replaced the file meanwhile"_s;
    const QString path = folder.path(u"a"_s);
    const QByteArray other = "9876543210";
    const std::vector<std::function<void(TagEditStream &)>> edits{
        [](TagEditStream &stream) { stream.writeBlock(bytes("in place")); },
        [](TagEditStream &stream) { stream.insert(bytes("head"), 0, 0); }};
    for (const auto &edit : edits) {
        folder.write(u"a"_s, "0123456789");
        {
            // Of the same length, into the same file.
            TagEditStream stream(path, Access::Edit);
            edit(stream);
            folder.write(u"a"_s, other);
            // However coarse the clock of the file system is.
            const std::array<timespec, 2> longAgo{};
            ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), longAgo.data(), 0), 0);
            EXPECT_EQ(stream.commit(), foreign);
            EXPECT_EQ(folder.read(u"a"_s), other);
        }
        {
            // Another file of that name.
            TagEditStream stream(path, Access::Edit);
            edit(stream);
            folder.write(u"b"_s, "saved");
            ASSERT_EQ(std::rename(folder.path(u"b"_s).toUtf8().constData(), path.toUtf8().constData()), 0);
            EXPECT_EQ(stream.commit(), foreign);
            EXPECT_EQ(folder.read(u"a"_s), "saved");
        }
        {
            TagEditStream stream(path, Access::Edit);
            edit(stream);
            ASSERT_TRUE(QFile::remove(path));
            EXPECT_EQ(stream.commit(), foreign);
        }
        EXPECT_EQ(folder.list(), QStringList());
    }
}

TEST(TagEditStream, GivesItsPlaceToAFileOfTheSameFolder)
{
    const TestFolder folder;
    const QString path = folder.write(u"a"_s, "old");
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0640), 0);
    TagEditStream stream(path, Access::Edit);
    EXPECT_EQ(stream.replaceBy(folder.path(u"none"_s)), u"No such file or directory"_s);
    const QString next = folder.write(u"next"_s, "new");
    EXPECT_EQ(stream.replaceBy(folder.makeLink(u"link"_s, next)), u"Too many levels of symbolic links"_s);
    EXPECT_EQ(folder.read(u"a"_s), "old");
    EXPECT_EQ(stream.replaceBy(next), std::nullopt);
    EXPECT_EQ(folder.read(u"a"_s), "new");
    EXPECT_FALSE(QFileInfo::exists(next));
    struct stat info = {};
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0640U);
    // It is not the file any more that was opened.
    EXPECT_NE(stream.replaceBy(folder.write(u"next"_s, "third")), std::nullopt);
    EXPECT_EQ(folder.read(u"a"_s), "new");
}

TEST(TagEditStream, WritesInPlaceOnlyWhatDiffers)
{
    const TestFolder folder;
    const QString path = folder.write(u"a"_s, QByteArray());
    constexpr qsizetype kSize = 1 << 20;
    ASSERT_TRUE(QFile::resize(path, kSize)); // a hole: whatever is written takes room
    const auto blocksUsed = [&path] {
        struct stat info = {};
        EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &info), 0);
        return info.st_blocks;
    };
    ASSERT_EQ(blocksUsed(), 0);
    QByteArray edited(kSize, '\0');
    const auto commitEdited = [&] {
        TagEditStream stream(path, Access::Edit);
        stream.writeBlock(bytes(edited));
        return stream.commit();
    };
    EXPECT_EQ(commitEdited(), std::nullopt);
    EXPECT_EQ(blocksUsed(), 0);
    edited[kSize / 2] = 'x';
    EXPECT_EQ(commitEdited(), std::nullopt);
    EXPECT_EQ(folder.read(u"a"_s), edited);
    EXPECT_GT(blocksUsed(), 0);
    EXPECT_LT(blocksUsed(), kSize / 512 / 4);
}

TEST(TagEditStream, ReplacesTheFileWithItsModeAndAttributesWhenBytesMove)
{
    const TestFolder folder;
    const QString path = folder.write(u"a"_s, "0123456789");
    const QByteArray name = QFile::encodeName(path);
    ASSERT_EQ(::chmod(name.constData(), 0640), 0);
    const bool hasAttributes = ::setxattr(name.constData(), "user.note", "kept", 4, 0) == 0;
    const ino_t inode = inodeOf(path);
    TagEditStream stream(path, Access::Edit);
    stream.insert(bytes("head"), 0, 0);
    EXPECT_EQ(stream.commit(), std::nullopt);
    EXPECT_EQ(folder.read(u"a"_s), QByteArray("head0123456789"));
    EXPECT_NE(inodeOf(path), inode);
    struct stat info = {};
    ASSERT_EQ(::stat(name.constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0640U);
    if (hasAttributes) {
        char value[16] = {};
        EXPECT_EQ(::getxattr(name.constData(), "user.note", value, sizeof value), 4);
        EXPECT_STREQ(value, "kept");
    }
}

TEST(TagEditStream, WritesThroughALink)
{
    const TestFolder folder;
    const QString target = folder.write(u"sub/a"_s, "0123");
    const QString link = folder.makeLink(u"link"_s, target);
    TagEditStream stream(link, Access::Edit);
    stream.insert(bytes("head"), 0, 0);
    EXPECT_EQ(stream.commit(), std::nullopt);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(folder.read(u"sub/a"_s), QByteArray("head0123"));
}

TEST(TagEditStream, LeavesTheFileAsItWasWhenTheDiskIsFull)
{
    const TestFolder folder;
    const QByteArray before(100'000, 'o');
    const QString path = folder.write(u"a"_s, before);
    for (const unsigned long place : {0UL, 50'000UL, 100'000UL}) {
        TagEditStream stream(path, Access::Edit);
        stream.seek(10);
        stream.writeBlock(bytes("overwritten"));
        stream.insert(bytes(QByteArray(5000, 'n')), place, 0);
        std::optional<QString> reason;
        {
            const FileSizeLimit limit(102'000);
            reason = stream.commit();
        }
        EXPECT_TRUE(reason.has_value()) << place;
        EXPECT_EQ(folder.read(u"a"_s), before) << place;
        EXPECT_EQ(folder.list(), QStringList{u"a"_s}) << place;
    }
}

TEST(TagEditStream, TakesTheFirstWriteBackWhenTheSecondFails)
{
    const TestFolder folder;
    const QByteArray before(100'000, 'o');
    const QString path = folder.write(u"a"_s, before);
    const ino_t inode = inodeOf(path);
    TagEditStream stream(path, Access::Edit);
    stream.seek(10);
    stream.writeBlock(bytes("first"));
    stream.seek(90'000);
    stream.writeBlock(bytes("second"));
    {
        const FileSizeLimit limit(50'000);
        EXPECT_EQ(stream.commit(), u"File too large"_s);
    }
    EXPECT_EQ(folder.read(u"a"_s), before);
    EXPECT_EQ(inodeOf(path), inode);
    // Nothing but the second write was in the way.
    EXPECT_EQ(stream.commit(), std::nullopt);
    EXPECT_EQ(folder.read(u"a"_s).mid(10, 6), QByteArray("firsto"));
}

TEST(TagEditStream, RefusesToCommitAfterAFailedRead)
{
    const TestFolder folder;
    const QString path = folder.write(u"a"_s, QByteArray(10'000, 'o'));
    TagEditStream stream(path, Access::Edit);
    // Somebody else cuts the file.
    ASSERT_TRUE(QFile::resize(path, 10));
    EXPECT_TRUE(stream.readBlock(10'000).isEmpty());
    stream.insert(bytes("head"), 0, 0);
    EXPECT_TRUE(stream.commit().has_value());
    EXPECT_EQ(folder.read(u"a"_s), QByteArray(10, 'o'));
}

TEST(TagEditStream, TakesEditsThatWereMadeElsewhere)
{
    const TestFolder folder;
    const QString path = folder.write(u"a"_s, "0123456789");
    TagEditStream stream(path, Access::Edit);
    stream.insert(bytes("gone"), 0, 0);
    stream.apply({.isEdited = true,
                  .pieces = {{.isNew = false, .offset = 7, .length = 3},
                             {.isNew = true, .offset = 1, .length = 2},
                             {.isNew = false, .offset = 0, .length = 4}},
                  .newBytes = "abc"});
    EXPECT_TRUE(stream.isEdited());
    EXPECT_EQ(allOf(stream), QByteArray("789bc0123"));
    EXPECT_EQ(stream.commit(), std::nullopt);
    EXPECT_EQ(folder.read(u"a"_s), QByteArray("789bc0123"));
}

TEST(TagEditStream, WritesTheEditedContentsIntoAnotherFile)
{
    const TestFolder folder;
    const QString path = folder.write(u"a"_s, "0123456789");
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0640), 0);
    const QString other = folder.write(u"b"_s, QByteArray(100, 'o'));
    TagEditStream stream(path, Access::Edit);
    stream.insert(bytes("abc"), 4, 1);
    EXPECT_EQ(stream.writeTo(other), std::nullopt);
    EXPECT_EQ(folder.read(u"b"_s), QByteArray("0123abc56789"));
    EXPECT_EQ(folder.read(u"a"_s), QByteArray("0123456789"));
    struct stat info = {};
    ASSERT_EQ(::stat(QFile::encodeName(other).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0640U);
    EXPECT_TRUE(stream.writeTo(folder.path(u"missing"_s)).has_value());
    EXPECT_TRUE(stream.writeTo(folder.makeLink(u"link"_s, other)).has_value());
    const FileSizeLimit limit(5);
    EXPECT_EQ(stream.writeTo(other), u"File too large"_s);
    EXPECT_EQ(folder.read(u"a"_s), QByteArray("0123456789"));
}

TEST(TagEditStream, IsOnTheDiskWhenTheCommitIsDone)
{
    const TestFolder folder;
    const QString path = folder.write(u"a"_s, "0123456789");
    {
        TagEditStream stream(path, Access::Edit);
        stream.seek(3);
        stream.writeBlock(bytes("xy"));
        const SystemCallRecorder calls;
        ASSERT_EQ(stream.commit(), std::nullopt);
        const qsizetype written = calls.indexOf(u"pwrite "_s + path);
        ASSERT_GE(written, 0);
        EXPECT_LT(written, calls.indexOf(u"fdatasync "_s + path)) << qPrintable(calls.calls().join(u'\n'));
    }
    TagEditStream stream(path, Access::Edit);
    stream.insert(bytes("head"), 0, 0);
    const SystemCallRecorder calls;
    ASSERT_EQ(stream.commit(), std::nullopt);
    const qsizetype flushed = calls.indexOf(u"fsync "_s + folder.path(u".nurv-tags-"_s));
    const qsizetype named = calls.indexOf(u"rename "_s + folder.path(u".nurv-tags-"_s));
    ASSERT_GE(flushed, 0) << qPrintable(calls.calls().join(u'\n'));
    EXPECT_LT(flushed, named);
    EXPECT_TRUE(calls.calls().mid(named).contains(u"fsync "_s + folder.path()));
}

TEST(TagEditStream, LeavesTheFileWhenItsReplacementMayNotBeOnTheDisk)
{
    const TestFolder folder;
    const QString path = folder.write(u"a"_s, "0123456789");
    for (const QString &call : {u"fsync "_s, u"close "_s}) {
        TagEditStream stream(path, Access::Edit);
        stream.insert(bytes("head"), 0, 0);
        SystemCallRecorder calls;
        calls.fail(call + folder.path(u".nurv-tags-"_s), EIO);
        EXPECT_EQ(stream.commit(), u"Input/output error"_s) << qPrintable(call);
        EXPECT_EQ(folder.read(u"a"_s), QByteArray("0123456789"));
        EXPECT_EQ(folder.list(), QStringList{u"a"_s});
    }
}

TEST(TagEditStream, TakesAWriteInPlaceBackWhenTheDiskTellsOfAnError)
{
    const TestFolder folder;
    const QByteArray before(10'000, 'o');
    const QString path = folder.write(u"a"_s, before);
    for (const QString &call : {u"pwrite "_s, u"fdatasync "_s}) {
        TagEditStream stream(path, Access::Edit);
        stream.seek(10);
        stream.writeBlock(bytes("first"));
        SystemCallRecorder calls;
        calls.fail(call + path, EIO, 1);
        EXPECT_EQ(stream.commit(), u"Input/output error"_s) << qPrintable(call);
        EXPECT_TRUE(folder.read(u"a"_s) == before);
    }
}

TEST(TagEditStream, ReplacesNoFileThatSomebodyCutsMeanwhile)
{
    const TestFolder folder;
    const QString path = folder.write(u"a"_s, QByteArray(10'000, 'o'));
    TagEditStream stream(path, Access::Edit);
    stream.insert(bytes("head"), 0, 0);
    ASSERT_TRUE(QFile::resize(path, 10));
    EXPECT_EQ(stream.commit(), u"Input/output error"_s);
    EXPECT_EQ(folder.read(u"a"_s), QByteArray(10, 'o'));
    EXPECT_EQ(folder.list(), QStringList{u"a"_s});
}
