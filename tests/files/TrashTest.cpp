// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/Trash.h"

#include "support/SystemCallRecorder.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using nurv::moveToTrash;
using nurv::test::SystemCallRecorder;
using nurv::test::TestFolder;

namespace {

// Makes a folder the XDG data folder while it lives.
class DataHome {
public:
    explicit DataHome(const QString &path) : m_former(qgetenv("XDG_DATA_HOME"))
    {
        qputenv("XDG_DATA_HOME", QFile::encodeName(path));
    }
    ~DataHome() { qputenv("XDG_DATA_HOME", m_former); }
    DataHome(const DataHome &) = delete;
    DataHome &operator=(const DataHome &) = delete;

private:
    QByteArray m_former;
};

dev_t deviceOf(const QString &path)
{
    struct stat facts = {};
    EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &facts), 0) << path.toStdString();
    return facts.st_dev;
}

} // namespace

TEST(Trash, TakesAFileAndRecordsWhereItWas)
{
    const TestFolder folder;
    const DataHome home(folder.path(u"not/there/yet"_s));
    const QString path = folder.write(u"music/100% \u00E9 song.flac"_s, "sound");
    const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
    ASSERT_TRUE(moveToTrash(path));
    EXPECT_FALSE(QFileInfo::exists(path));
    const QString trash = u"not/there/yet/Trash/"_s;
    EXPECT_EQ(folder.read(trash + u"files/100% \u00E9 song.flac"_s), QByteArray("sound"));
    const QList<QByteArray> info = folder.read(trash + u"info/100% \u00E9 song.flac.trashinfo"_s).split('\n');
    ASSERT_EQ(info.size(), 4);
    EXPECT_EQ(info.at(0), QByteArray("[Trash Info]"));
    EXPECT_EQ(info.at(1), "Path=" + QFile::encodeName(folder.path()) + "/music/100%25%20%C3%A9%20song.flac");
    ASSERT_TRUE(info.at(2).startsWith("DeletionDate="));
    const QDateTime date = QDateTime::fromString(QString::fromLatin1(info.at(2).sliced(13)), u"yyyy-MM-ddTHH:mm:ss"_s);
    EXPECT_GE(date, before);
    EXPECT_LE(date, QDateTime::currentDateTime());
    struct stat facts = {};
    ASSERT_EQ(::stat(QFile::encodeName(folder.path(trash)).constData(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0700U);
}

TEST(Trash, KeepsEveryFileOfTheSameName)
{
    const TestFolder folder;
    const DataHome home(folder.path(u"data"_s));
    for (const QByteArray &contents : {QByteArray("1"), QByteArray("2"), QByteArray("3")}) {
        ASSERT_TRUE(moveToTrash(folder.write(u"a.wav"_s, contents)));
        EXPECT_FALSE(folder.exists(u"a.wav"_s));
    }
    EXPECT_EQ(folder.read(u"data/Trash/files/a.wav"_s), QByteArray("1"));
    EXPECT_EQ(folder.read(u"data/Trash/files/a.wav.2"_s), QByteArray("2"));
    EXPECT_EQ(folder.read(u"data/Trash/files/a.wav.3"_s), QByteArray("3"));
    EXPECT_TRUE(folder.read(u"data/Trash/info/a.wav.3.trashinfo"_s).contains("/a.wav\n"));
}

TEST(Trash, LeavesAStrayFileAloneOnFileSystemsThatCanOnlyReplace)
{
    const TestFolder folder;
    const DataHome home(folder.path(u"data"_s));
    folder.write(u"data/Trash/files/a.wav"_s, "stray");
    {
        SystemCallRecorder calls;
        calls.forgetRenameFlags();
        EXPECT_TRUE(moveToTrash(folder.write(u"a.wav"_s, "1")));
        EXPECT_TRUE(moveToTrash(folder.write(u"b.wav"_s, "2")));
    }
    EXPECT_EQ(folder.list(),
              (QStringList{u"data/Trash/files/a.wav"_s, u"data/Trash/files/a.wav.2"_s, u"data/Trash/files/b.wav"_s,
                           u"data/Trash/info/a.wav.2.trashinfo"_s, u"data/Trash/info/b.wav.trashinfo"_s}));
    EXPECT_EQ(folder.read(u"data/Trash/files/a.wav"_s), QByteArray("stray"));
    EXPECT_EQ(folder.read(u"data/Trash/files/a.wav.2"_s), QByteArray("1"));
}

TEST(Trash, TakesALinkItselfAndAFolderWhole)
{
    const TestFolder folder;
    const DataHome home(folder.path(u"data"_s));
    const QString target = folder.write(u"target.wav"_s, "x");
    ASSERT_TRUE(moveToTrash(folder.makeLink(u"link.wav"_s, target)));
    EXPECT_TRUE(folder.exists(u"target.wav"_s));
    EXPECT_EQ(QFile::symLinkTarget(folder.path(u"data/Trash/files/link.wav"_s)), target);
    folder.write(u"album/1.wav"_s, "1");
    ASSERT_TRUE(moveToTrash(folder.path(u"album"_s)));
    EXPECT_EQ(folder.read(u"data/Trash/files/album/1.wav"_s), QByteArray("1"));
}

TEST(Trash, TakesANameOfTheGreatestLength)
{
    const TestFolder folder;
    const DataHome home(folder.path(u"data"_s));
    const QString name(127, u'\u00E9'); // 254 bytes
    ASSERT_TRUE(moveToTrash(folder.write(name, "x")));
    EXPECT_FALSE(folder.exists(name));
    EXPECT_EQ(QDir(folder.path(u"data/Trash/files"_s)).entryList(QDir::Files).size(), 1);
}

TEST(Trash, LeavesTheFileWhereItIsWhenThereIsNoUsableTrash)
{
    const TestFolder folder;
    const QString path = folder.write(u"a.wav"_s, "sound");
    {
        const DataHome home(folder.write(u"file"_s, "no folder"));
        EXPECT_FALSE(moveToTrash(path));
    }
    {
        const DataHome home(folder.path(u"data"_s));
        folder.makeFolder(u"data/Trash/files"_s);
        folder.write(u"data/Trash/info"_s, "no folder either");
        EXPECT_FALSE(moveToTrash(path));
    }
    EXPECT_EQ(folder.read(u"a.wav"_s), QByteArray("sound"));
    EXPECT_TRUE(QDir(folder.path(u"data/Trash/files"_s)).isEmpty());
}

TEST(Trash, TakesNothingThatIsNotThere)
{
    const TestFolder folder;
    const DataHome home(folder.path(u"data"_s));
    EXPECT_FALSE(moveToTrash(folder.path(u"missing.wav"_s)));
    EXPECT_FALSE(moveToTrash(folder.path() + u"/."_s));
    EXPECT_FALSE(moveToTrash(folder.path() + u"/.."_s));
    EXPECT_FALSE(moveToTrash(QString()));
    // The trash cannot take the folder that it lies in, and keeps no record of it.
    ASSERT_TRUE(moveToTrash(folder.write(u"a.wav"_s, "x")));
    EXPECT_FALSE(moveToTrash(folder.path(u"data"_s)));
    EXPECT_FALSE(folder.exists(u"data/Trash/info/data.trashinfo"_s));
    EXPECT_TRUE(folder.exists(u"data/Trash/files/a.wav"_s));
}

TEST(Trash, UsesNoTrashThatIsALinkToElsewhere)
{
    const TestFolder folder;
    const DataHome home(folder.path(u"data"_s));
    folder.makeFolder(u"data"_s);
    folder.makeFolder(u"elsewhere"_s);
    folder.makeLink(u"data/Trash"_s, folder.path(u"elsewhere"_s));
    EXPECT_FALSE(moveToTrash(folder.write(u"a.wav"_s, "x")));
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
    EXPECT_TRUE(QDir(folder.path(u"elsewhere"_s)).isEmpty());
}

TEST(Trash, UsesNoTrashOfSomebodyElse)
{
    const TestFolder folder;
    const DataHome home(folder.path(u"data"_s));
    const QString path = folder.write(u"a.wav"_s, "x");
    for (const QString &name : {u"data/Trash"_s, u"data/Trash/files"_s, u"data/Trash/info"_s}) {
        SystemCallRecorder calls;
        calls.lie(folder.makeFolder(name), [](struct stat &facts) { ++facts.st_uid; });
        EXPECT_FALSE(moveToTrash(path)) << name.toStdString();
        EXPECT_TRUE(folder.exists(u"a.wav"_s));
    }
    EXPECT_TRUE(moveToTrash(path));
}

TEST(Trash, KeepsTheFileWhenItsNoteCannotBeWritten)
{
    const TestFolder folder;
    const DataHome home(folder.path(u"data"_s));
    const QString path = folder.write(u"a.wav"_s, "x");
    for (const QString &call : {u"write "_s, u"close "_s}) {
        SystemCallRecorder calls;
        calls.fail(call + folder.path(u"data/Trash/info/"_s), EIO);
        EXPECT_FALSE(moveToTrash(path));
        EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s}) << "without a note";
    }
}

TEST(Trash, TakesItsNoteBackWhenTheFileStays)
{
    const TestFolder folder;
    const DataHome home(folder.path(u"data"_s));
    const QString path = folder.write(u"a.wav"_s, "x");
    SystemCallRecorder calls;
    calls.fail(u"rename "_s + path, EACCES);
    EXPECT_FALSE(moveToTrash(path));
    EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
}

TEST(Trash, UsesTheTrashOfAllOnADiskOnlyWhereNobodyElseMayEmptyIt)
{
    const TestFolder folder;
    const DataHome home(folder.path(u"data"_s));
    SystemCallRecorder calls;
    calls.lie(folder.makeFolder(u"disk"_s), [](struct stat &facts) { ++facts.st_dev; });
    const QString shared = folder.makeFolder(u"disk/.Trash"_s);
    const QString user = QString::number(::getuid());
    ASSERT_EQ(::chmod(QFile::encodeName(shared).constData(), 0777), 0);
    ASSERT_TRUE(moveToTrash(folder.write(u"disk/a.wav"_s, "1")));
    EXPECT_EQ(folder.read(u"disk/.Trash-%1/files/a.wav"_s.arg(user)), "1");
    ASSERT_EQ(::chmod(QFile::encodeName(shared).constData(), 01777), 0);
    ASSERT_TRUE(moveToTrash(folder.write(u"disk/b.wav"_s, "2")));
    EXPECT_EQ(folder.read(u"disk/.Trash/%1/files/b.wav"_s.arg(user)), "2");
}

TEST(Trash, UsesTheTrashAtTheTopOfAnotherFileSystem)
{
    const TestFolder folder;
    const QTemporaryDir other(u"/dev/shm/nurv-test-XXXXXX"_s);
    if (!other.isValid() || deviceOf(other.path()) == deviceOf(folder.path()))
        GTEST_SKIP() << "there is no second file system to write to";
    const DataHome home(folder.path(u"data"_s));
    const QString name = u"song-%1.wav"_s.arg(QFileInfo(other.path()).fileName());
    const QString path = other.filePath(name);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("sound");
    file.close();
    const QString trash = u"/dev/shm/.Trash-%1"_s.arg(::getuid());
    ASSERT_TRUE(moveToTrash(path));
    EXPECT_FALSE(QFileInfo::exists(path));
    EXPECT_FALSE(folder.exists(u"data/Trash"_s));
    QFile moved(trash + u"/files/"_s + name);
    QFile info(trash + u"/info/"_s + name + u".trashinfo"_s);
    ASSERT_TRUE(moved.open(QIODevice::ReadOnly) && info.open(QIODevice::ReadOnly));
    EXPECT_EQ(moved.readAll(), QByteArray("sound"));
    EXPECT_TRUE(info.readAll().contains("\nPath=" + QFile::encodeName(QFileInfo(other.path()).fileName()) + "/song-"));
    EXPECT_TRUE(moved.remove() && info.remove());
    // Only where nothing else is in it.
    for (const QString &made : {trash + u"/files"_s, trash + u"/info"_s, trash})
        (void)QDir().rmdir(made);
}
