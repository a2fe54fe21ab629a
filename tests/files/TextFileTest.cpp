// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/TextFile.h"

#include "files/FileDescriptor.h"
#include "support/SystemCallRecorder.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using nurv::test::SystemCallRecorder;
using nurv::test::TestFolder;

namespace {

mode_t modeOf(const QString &path)
{
    struct stat facts = {};
    EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &facts), 0);
    return facts.st_mode & 07777;
}

// Runs `work` in a child of this process and returns its exit status.
int inChild(const std::function<int()> &work)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work());
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

TEST(TextFile, ReadsUtf8WithAndWithoutAMark)
{
    const TestFolder folder;
    const QString text = u"Caf\u00E9 \u65E5\u672C \U0001D11E\r\nline\n"_s;
    EXPECT_EQ(readTextFile(folder.write(u"plain"_s, text.toUtf8())), text);
    EXPECT_EQ(readTextFile(folder.write(u"marked"_s, "\xEF\xBB\xBF" + text.toUtf8())), text);
    EXPECT_EQ(readTextFile(folder.write(u"empty"_s, "")), QString());
    EXPECT_EQ(readTextFile(folder.write(u"mark"_s, "\xEF\xBB\xBF")), QString());
}

TEST(TextFile, ReadsNoFolderNoPipeAndNothingThatIsMissing)
{
    const TestFolder folder;
    QString reason;
    EXPECT_FALSE(readTextFile(folder.path(u"missing"_s), &reason));
    EXPECT_EQ(reason, u"No such file or directory"_s);
    EXPECT_FALSE(readTextFile(folder.path(), &reason));
    EXPECT_EQ(reason, u"Is a directory"_s);
    const QString pipe = folder.path(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &path : {pipe, u"/dev/zero"_s}) {
        EXPECT_FALSE(readTextFile(path, &reason));
        EXPECT_EQ(reason, u"It is a pipe or a device, not a file"_s);
    }
    const QString huge = folder.write(u"huge"_s, "");
    ASSERT_TRUE(QFile::resize(huge, 65LL * 1024 * 1024));
    EXPECT_FALSE(readTextFile(huge, &reason));
    EXPECT_EQ(reason, u"File too large"_s);
}

TEST(TextFile, WritesUtf8WithLineFeedsAndTheUmask)
{
    const TestFolder folder;
    const QString path = folder.path(u"list.md5"_s);
    EXPECT_EQ(inChild([&] {
                  ::umask(027);
                  return writeTextFileAtomically(path, u"Caf\u00E9\n"_s) ? 0 : 1;
              }),
              0);
    EXPECT_EQ(folder.read(u"list.md5"_s), QByteArray("Caf\xC3\xA9\n"));
    EXPECT_EQ(modeOf(path), 0640U);
    EXPECT_EQ(folder.list(), QStringList{u"list.md5"_s});
}

TEST(TextFile, KeepsThePermissionsOfTheFileItReplaces)
{
    const TestFolder folder;
    const QString path = folder.write(u"list.txt"_s, "old");
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0664), 0);
    QFile reader(path);
    ASSERT_TRUE(reader.open(QIODevice::ReadOnly));
    ASSERT_TRUE(writeTextFileAtomically(path, u"new"_s));
    EXPECT_EQ(modeOf(path), 0664U);
    EXPECT_EQ(folder.read(u"list.txt"_s), QByteArray("new"));
    EXPECT_EQ(reader.readAll(), QByteArray("old"));
}

TEST(TextFile, FollowsALinkToWhereItLeads)
{
    const TestFolder folder;
    const QString real = folder.write(u"real/list.txt"_s, "old");
    const QString link = folder.makeLink(u"link"_s, real);
    ASSERT_TRUE(writeTextFileAtomically(link, u"new"_s));
    EXPECT_TRUE(QFile::symLinkTarget(link) == real);
    EXPECT_EQ(folder.read(u"real/list.txt"_s), QByteArray("new"));
    const QString dangling = folder.makeLink(u"dangling"_s, folder.path(u"real/made.txt"_s));
    ASSERT_TRUE(writeTextFileAtomically(dangling, u"made"_s));
    EXPECT_EQ(folder.read(u"real/made.txt"_s), QByteArray("made"));
}

TEST(TextFile, TakesThePlaceOfALinkWhereThatIsAskedFor)
{
    const test::TestFolder folder;
    const QString real = folder.write(u"real.txt"_s, "somebody's");
    for (const QString &target : {real, folder.path(u"nowhere"_s), folder.makeFolder(u"folder"_s), u"/dev/null"_s}) {
        const QString link = folder.makeLink(u"link"_s, target);
        QString reason;
        EXPECT_TRUE(writeTextFileAtomically(link, u"text\n"_s, &reason, LinkAtName::Replaced)) << qPrintable(reason);
        EXPECT_FALSE(QFileInfo(link).isSymLink());
        EXPECT_EQ(folder.read(u"link"_s), "text\n");
        folder.remove(u"link"_s);
    }
    EXPECT_EQ(folder.read(u"real.txt"_s), "somebody's");
    EXPECT_EQ(folder.list(), QStringList{u"real.txt"_s});
}

TEST(TextFile, TakesThePlaceOfAPipeWhereThatIsAskedFor)
{
    const test::TestFolder folder;
    const QString pipe = folder.path(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0666), 0);
    QString reason;
    EXPECT_TRUE(writeTextFileAtomically(pipe, u"text\n"_s, &reason, LinkAtName::Replaced)) << qPrintable(reason);
    EXPECT_TRUE(QFileInfo(pipe).isFile());
    EXPECT_EQ(folder.read(u"pipe"_s), "text\n");
    EXPECT_EQ(folder.list(), QStringList{u"pipe"_s});
}

TEST(TextFile, WritesANameOfTheGreatestLength)
{
    const TestFolder folder;
    const QString name(255, u'n');
    QString reason;
    EXPECT_TRUE(writeTextFileAtomically(folder.path(name), u"x"_s, &reason)) << reason.toStdString();
    EXPECT_EQ(folder.list(), QStringList{name});
}

TEST(TextFile, WritesThroughAPipe)
{
    const TestFolder folder;
    const QString pipe = folder.path(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QString reason;
    EXPECT_FALSE(writeTextFileAtomically(pipe, u"nobody reads"_s, &reason)) << "it must not wait for a reader";
    EXPECT_FALSE(reason.isEmpty());
    const FileDescriptor reader(::open(QFile::encodeName(pipe).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    ASSERT_TRUE(reader.isOpen());
    EXPECT_TRUE(writeTextFileAtomically(pipe, u"through"_s, &reason)) << qPrintable(reason);
    std::array<char, 32> received = {};
    EXPECT_EQ(::read(reader.get(), received.data(), received.size()), 7);
    EXPECT_STREQ(received.data(), "through");
    struct stat facts = {};
    ASSERT_EQ(::stat(QFile::encodeName(pipe).constData(), &facts), 0);
    EXPECT_TRUE(S_ISFIFO(facts.st_mode));
}

TEST(TextFile, LeavesTheOldFileAndNothingElseWhenTheDiskIsFull)
{
    const TestFolder folder;
    const QString path = folder.write(u"list.txt"_s, "the only copy");
    const QString reasonPath = folder.path(u"reason"_s);
    // A limit on the size of files stands for the full disk.
    EXPECT_EQ(inChild([&] {
                  std::signal(SIGXFSZ, SIG_IGN);
                  const rlimit limit{4096, 4096};
                  ::setrlimit(RLIMIT_FSIZE, &limit);
                  QString reason;
                  const bool written = writeFileAtomically(path, QByteArray(100000, 'x'), &reason);
                  QFile out(reasonPath);
                  if (!out.open(QIODevice::WriteOnly) || out.write(reason.toUtf8()) < 0)
                      return 2;
                  out.close();
                  return written ? 1 : 0;
              }),
              0);
    EXPECT_EQ(folder.read(u"reason"_s), QByteArray("File too large"));
    EXPECT_EQ(folder.read(u"list.txt"_s), QByteArray("the only copy"));
    EXPECT_EQ(folder.list(), (QStringList{u"list.txt"_s, u"reason"_s}));
}

TEST(TextFile, LeavesTheOldFileWhenTheFolderCannotBeWritten)
{
    const TestFolder folder;
    const QString path = folder.write(u"locked/list.txt"_s, "old");
    const QByteArray locked = QFile::encodeName(folder.path(u"locked"_s));
    ASSERT_EQ(::chmod(locked.constData(), 0555), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(folder.path()).constData(), 0755), 0);
    EXPECT_EQ(inChild([&] {
                  // Permissions do not stop root: be nobody.
                  if (::getuid() == 0 && ::setuid(65534) != 0)
                      return 2;
                  QString reason;
                  return !writeTextFileAtomically(path, u"new"_s, &reason) && reason == u"Permission denied" ? 0 : 1;
              }),
              0);
    ASSERT_EQ(::chmod(locked.constData(), 0755), 0);
    EXPECT_EQ(folder.read(u"locked/list.txt"_s), QByteArray("old"));
    EXPECT_EQ(folder.list(), QStringList{u"locked/list.txt"_s});
}

TEST(TextFile, WritesNoFolderAndNotWhereNoneIs)
{
    const TestFolder folder;
    QString reason;
    EXPECT_FALSE(writeTextFileAtomically(folder.path(), u"x"_s, &reason));
    EXPECT_EQ(reason, u"Is a directory"_s);
    EXPECT_FALSE(writeTextFileAtomically(folder.path(u"no/list.txt"_s), u"x"_s, &reason));
    EXPECT_EQ(reason, u"No such file or directory"_s);
    EXPECT_EQ(folder.list(), QStringList());
}

TEST(TextFile, IsOnTheDiskBeforeItHasItsName)
{
    const TestFolder folder;
    const QString path = folder.path(u"list.txt"_s);
    for (const QString &contents : {u"new"_s, u"instead of another"_s}) {
        const bool isThere = folder.exists(u"list.txt"_s);
        const SystemCallRecorder calls;
        ASSERT_TRUE(writeTextFileAtomically(path, contents));
        const qsizetype flushed = calls.indexOf(u"fsync "_s + folder.path(isThere ? u".nurv-"_s : u"?"_s));
        const qsizetype named = calls.indexOf((isThere ? u"rename "_s : u"link "_s) + folder.path());
        const auto folderFlushed = calls.calls().indexOf(u"fsync "_s + folder.path());
        ASSERT_GE(flushed, 0) << qPrintable(calls.calls().join(u'\n'));
        EXPECT_LT(flushed, named) << qPrintable(calls.calls().join(u'\n'));
        EXPECT_LT(named, folderFlushed) << "the name is flushed with its folder";
    }
}

TEST(TextFile, LeavesTheOldFileWhenTheDiskTellsOfAnErrorAtTheEnd)
{
    const TestFolder folder;
    const QString path = folder.write(u"list.txt"_s, "old");
    for (const QString &call : {u"fsync "_s, u"close "_s}) {
        SystemCallRecorder calls;
        calls.fail(call + folder.path(u".nurv-"_s), EIO);
        QString reason;
        EXPECT_FALSE(writeTextFileAtomically(path, u"new"_s, &reason)) << call.toStdString();
        EXPECT_EQ(reason, u"Input/output error"_s);
        EXPECT_EQ(folder.read(u"list.txt"_s), QByteArray("old"));
        EXPECT_EQ(folder.list(), QStringList{u"list.txt"_s});
    }
}

TEST(TextFile, MakesNoFileThatCannotBeFlushed)
{
    const TestFolder folder;
    SystemCallRecorder calls;
    calls.fail(u"fsync "_s + folder.path(u"?"_s), EIO);
    QString reason;
    EXPECT_FALSE(writeTextFileAtomically(folder.path(u"list.txt"_s), u"new"_s, &reason));
    EXPECT_EQ(reason, u"Input/output error"_s);
    EXPECT_TRUE(folder.list().isEmpty());
}

TEST(TextFile, TellsOfAnErrorWhenItClosesWhatItWroteInPlace)
{
    const TestFolder folder;
    const QString pipe = folder.path(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const FileDescriptor reader(::open(QFile::encodeName(pipe).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    SystemCallRecorder calls;
    calls.fail(u"close "_s + pipe, EIO);
    QString reason;
    EXPECT_FALSE(writeTextFileAtomically(pipe, u"through"_s, &reason));
    EXPECT_EQ(reason, u"Input/output error"_s);
}

TEST(TextFile, IsPrivateUntilItHasThePermissionsOfTheOldFile)
{
    const TestFolder folder;
    const QString path = folder.write(u"list.txt"_s, "old");
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0600), 0);
    SystemCallRecorder calls;
    bool hasLooked = false;
    calls.before(u"fchown "_s + folder.path(u".nurv-"_s), [&] {
        for (const QString &name : folder.list()) {
            hasLooked = hasLooked || name.startsWith(u".nurv-"_s);
            EXPECT_EQ(modeOf(folder.path(name)), 0600U) << name.toStdString();
        }
    });
    ASSERT_TRUE(writeTextFileAtomically(path, u"new"_s));
    EXPECT_TRUE(hasLooked);
}
