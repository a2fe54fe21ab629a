// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/CreateAllListsTask.h"
#include "checksum/CreateMD5Task.h"
#include "checksum/FilesInUse.h"
#include "checksum/MD5Helper.h"
#include "checksum/VerifyFFPTask.h"
#include "checksum/VerifyListFixture.h"
#include "checksum/VerifyMD5Task.h"
#include "checksum/VerifyST5Task.h"
#include "support/TestProgram.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QByteArray kDigestOfAbc = "900150983cd24fb0d6963f7d28e17f72";
const QByteArray kAnyDigest = "0123456789abcdef0123456789abcdef";

class ChecksumBadLuckTest : public test::VerifyListFixture {
protected:
    ChecksumBadLuckTest() { tools.addAllReal(); }

    /// A file that takes no room, and longer to read than any test lasts.
    [[nodiscard]] QString writeEndless(const QString &name) const
    {
        const QString path = folder.write(name, "");
        EXPECT_TRUE(QFile::resize(path, 1LL << 38));
        return path;
    }
    /// Starts the job, and does something to the file while it is in the midst of it.
    void duringReadingOf(const QString &path, const std::shared_ptr<NURVTask> &task, const std::function<void()> &work)
    {
        queue.addTask(task);
        ASSERT_TRUE(test::waitUntil([&] { return test::isBeingRead(path); }));
        work();
        ASSERT_TRUE(finish());
    }
    [[nodiscard]] static std::shared_ptr<NURVTaskResults> join(NURVTask &task)
    {
        const auto results = std::make_shared<NURVTaskResults>();
        results->addTaskInSet(task);
        task.setResults(results);
        return results;
    }
    /// How often a program ran that addLogged has put in.
    [[nodiscard]] qsizetype runsIn(const QString &log) const
    {
        return folder.exists(log) ? folder.read(log).count('\n') : 0;
    }

    test::ProgramFolder tools;
};

TEST_F(ChecksumBadLuckTest, ADigestOfAFileThatGrowsBetweenTwoBlocksIsNone)
{
    const QString path = folder.write(u"a.wav"_s, QByteArray(2 * 1'048'576, 'x'));
    int asked = 0;
    const FileDigest digest = MD5Helper::digestOf(path, MD5Helper::Kind::Regular, [&] {
        if (++asked == 2) {
            QFile file(path);
            EXPECT_TRUE(file.open(QIODevice::Append));
            file.write("more");
        }
        return false;
    });
    EXPECT_EQ(digest.failure, u"it changed while it was read");
    EXPECT_FALSE(digest.isMissing);
}

TEST_F(ChecksumBadLuckTest, ADigestOfAFileThatIsWrittenOverWhileItIsReadIsNone)
{
    const QString path = folder.write(u"a.wav"_s, QByteArray(2 * 1'048'576, 'x'));
    // Its times are those of a file that has been there for a while.
    ASSERT_EQ(test::runProgram(u"touch"_s, {u"-d"_s, u"2020-01-01"_s, path}).exitStatus, 0);
    int asked = 0;
    const FileDigest digest = MD5Helper::digestOf(path, MD5Helper::Kind::Regular, [&] {
        if (++asked == 2) {
            QFile file(path);
            EXPECT_TRUE(file.open(QIODevice::ReadWrite));
            file.write("y");
        }
        return false;
    });
    EXPECT_EQ(digest.failure, u"it changed while it was read");
}

TEST_F(ChecksumBadLuckTest, TellsAFileThatIsCutWhileItIsListed)
{
    const QString path = writeEndless(u"a.wav"_s);
    const auto task = std::make_shared<CreateMD5Task>(&queue, QStringList{path}, folder.path(u"l.md5"_s));
    duringReadingOf(path, task, [&] { EXPECT_TRUE(QFile::resize(path, 3)); });
    EXPECT_EQ(task->warnings(), QStringList{path + u" was not read for the list: it changed while it was read"_s});
}

TEST_F(ChecksumBadLuckTest, TellsAFileThatIsCutWhileItIsChecked)
{
    const QString path = writeEndless(u"a.wav"_s);
    const auto task = std::make_shared<VerifyMD5Task>(&queue, folder.write(u"l.md5"_s, kAnyDigest + " *a.wav\n"),
                                                      std::make_shared<NURVTaskResults>());
    const auto results = join(*task);
    duringReadingOf(path, task, [&] { EXPECT_TRUE(QFile::resize(path, 3)); });
    EXPECT_EQ(results->results(*task), u"Verify MD5: l.md5\na.wav : FAILED\n1 of 1 file could not be read\n");
    ASSERT_EQ(statesOf(*task), std::vector{State::Unreadable});
    EXPECT_EQ(task->outcome().listedFiles[0].detail, u"it changed while it was read");
}

TEST_F(ChecksumBadLuckTest, EndsAtOnceWhenItIsCanceledInsideAFile)
{
    const QString path = writeEndless(u"a.txt"_s);
    const QString old = folder.write(u"l.md5"_s, "old");
    const CreateAllListsTask::Lists lists{.md5 = old, .st5 = folder.path(u"l.st5"_s), .ffp = folder.path(u"l.ffp"_s)};
    const auto check = std::make_shared<VerifyMD5Task>(&queue, folder.write(u"check.md5"_s, kAnyDigest + " *a.txt\n"),
                                                       std::make_shared<NURVTaskResults>());
    const auto results = join(*check);
    const std::vector<std::shared_ptr<NURVTask>> tasks{std::make_shared<CreateMD5Task>(&queue, QStringList{path}, old),
                                                       std::make_shared<CreateAllListsTask>(&queue, QStringList{path}, lists),
                                                       check};
    for (const auto &task : tasks) {
        duringReadingOf(path, task, [&] { task->cancelTask(); });
        EXPECT_EQ(task->textField().text, u"Canceled");
        EXPECT_TRUE(task->warnings().isEmpty());
    }
    EXPECT_EQ(results->results(*check), u"Verify MD5: check.md5\nCanceled\n");
    EXPECT_EQ(folder.read(u"l.md5"_s), "old");
    EXPECT_EQ(folder.list(), (QStringList{u"a.txt"_s, u"check.md5"_s, u"l.md5"_s}));
}

TEST_F(ChecksumBadLuckTest, TellsAListWhoseFolderIsGoneWhenItsTurnComes)
{
    const auto results = std::make_shared<NURVTaskResults>();
    std::vector<std::shared_ptr<NURVTask>> tasks;
    for (const QString &kind : {u"md5"_s, u"st5"_s, u"ffp"_s}) {
        const QString list = folder.write(u"show/l."_s + kind, kDigestOfAbc + " *a.wav\n");
        if (kind == u"md5")
            tasks.push_back(std::make_shared<VerifyMD5Task>(&queue, list, results));
        else if (kind == u"st5")
            tasks.push_back(std::make_shared<VerifyST5Task>(&queue, list, results));
        else
            tasks.push_back(std::make_shared<VerifyFFPTask>(&queue, list, results));
        results->addTaskInSet(*tasks.back());
    }
    queue.hold();
    queue.addTasks(tasks);
    ASSERT_TRUE(QDir(folder.path(u"show"_s)).removeRecursively());
    queue.release();
    ASSERT_TRUE(finish());
    const QString line = u"the list cannot be read: No such file or directory\n"_s;
    EXPECT_EQ(outputWindows, QStringList{u"Verify MD5: l.md5\n"_s + line + u"\nVerify ST5: l.st5\n"_s + line
                                         + u"\nVerify FFP: l.ffp\n"_s + line + u'\n'});
    for (const auto &task : tasks)
        EXPECT_TRUE(task->error());
}

TEST_F(ChecksumBadLuckTest, TellsAFolderThatIsGoneWhenItsListIsToBeWritten)
{
    const QString path = folder.write(u"show/a.wav"_s, "abc");
    const QString list = folder.path(u"show/l.md5"_s);
    const auto task = std::make_shared<CreateMD5Task>(&queue, QStringList{path}, list);
    queue.hold();
    queue.addTask(task);
    ASSERT_TRUE(QDir(folder.path(u"show"_s)).removeRecursively());
    queue.release();
    ASSERT_TRUE(finish());
    ASSERT_EQ(task->warnings().size(), 2) << qPrintable(task->warnings().join(u'\n'));
    EXPECT_TRUE(task->warnings()[0].startsWith(path + u" was not read for the list: "_s));
    EXPECT_TRUE(task->warnings()[1].startsWith(u"Unable to write %1: "_s.arg(list)));
    EXPECT_EQ(outputWindows.size(), 1);
}

TEST_F(ChecksumBadLuckTest, RunsNoProgramForLinesThatAreNoEntries)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.1});
    const QByteArray digest = test::runProgram(u"metaflac"_s, {u"--show-md5sum"_s, flac}).output.trimmed();
    for (const QString &program : {u"shntool"_s, u"metaflac"_s, u"flac"_s}) {
        tools.remove(program);
        tools.addLogged(program, folder.path(u"runs of "_s + program));
    }
    const QByteArray comments = QByteArray(";\n").repeated(1'000'000);
    const auto ofSt5 = verify<VerifyST5Task>(
        folder.write(u"l.st5"_s, comments + (digest + "  [shntool]  a.wav\n").repeated(3)));
    EXPECT_EQ(report, u"Verify ST5: l.st5\n"_s + u"a.wav : OK\n"_s.repeated(3));
    EXPECT_EQ(runsIn(u"runs of shntool"_s), 3);
    const auto ofFfp = verify<VerifyFFPTask>(folder.write(u"l.ffp"_s, comments + ("a.flac:" + digest + '\n').repeated(3)));
    EXPECT_TRUE(report.startsWith(u"Verify FFP: l.ffp\n"_s + u"a.flac : OK\n"_s.repeated(3))) << qPrintable(report);
    EXPECT_EQ(runsIn(u"runs of metaflac"_s), 3);
    EXPECT_EQ(runsIn(u"runs of flac"_s), 3);
    EXPECT_FALSE(ofSt5->error() || ofFfp->error());
}

TEST_F(ChecksumBadLuckTest, LooksForAbsoluteNamesBelowTheListAndForRelativeOnesWhereTheyLead)
{
    folder.write(u"outside.wav"_s, "abc");
    folder.makeFolder(u"show"_s);
    const QByteArray absolute = QFile::encodeName(folder.path(u"outside.wav"_s));
    const QByteArray list = kDigestOfAbc + " *" + absolute + '\n' + kDigestOfAbc + " *../outside.wav\n" + kDigestOfAbc
                            + " *../../../../../../../../../../etc/passwd\n";
    const auto task = verify<VerifyMD5Task>(folder.write(u"show/l.md5"_s, list));
    EXPECT_EQ(report, u"Verify MD5: l.md5\noutside.wav : FAILED\noutside.wav : OK\npasswd : FAILED\n"
                      "1 of 3 files is missing\n1 of 3 files is another one\n");
    EXPECT_EQ(statesOf(*task), (std::vector{State::Missing, State::Ok, State::Different}));
    // Below the folder of the list there is such a file now.
    folder.write(u"show"_s + folder.path(u"outside.wav"_s), "abc");
    verify<VerifyMD5Task>(folder.path(u"show/l.md5"_s));
    EXPECT_TRUE(report.startsWith(u"Verify MD5: l.md5\noutside.wav : OK\noutside.wav : OK\n"_s)) << qPrintable(report);
}

TEST_F(ChecksumBadLuckTest, FindsNoFileOfAnotherProgramsListOutsideItsFolderByItsLastName)
{
    folder.write(u"outside.wav"_s, "abc");
    folder.makeFolder(u"show"_s);
    const QByteArray absolute = QFile::encodeName(folder.path(u"outside.wav"_s));
    const auto results = std::make_shared<NURVTaskResults>();
    const auto task = std::make_shared<VerifyMD5Task>(
        &queue, folder.write(u"show/l.md5"_s, kDigestOfAbc + "  " + absolute + '\n' + kDigestOfAbc + "  C:\\..\\outside.wav\n"),
        results);
    task->setUnderstandsOthers(true);
    results->addTaskInSet(*task);
    run(task);
    EXPECT_EQ(statesOf(*task), (std::vector{State::Missing, State::Missing})) << qPrintable(results->results(*task));
}

TEST_F(ChecksumBadLuckTest, GivesNamesOfListsToProgramsAsPathsOnly)
{
    // What begins with a dash would be an option.
    test::writeFlac(folder.path(u"-h.flac"_s), {.seconds = 0.1});
    const QByteArray digest = test::runProgram(u"metaflac"_s, {u"--show-md5sum"_s, folder.path(u"-h.flac"_s)}).output.trimmed();
    verify<VerifyST5Task>(folder.write(u"l.st5"_s, digest + "  [shntool]  -h.flac\n"));
    EXPECT_EQ(report, u"Verify ST5: l.st5\n-h.flac : OK\n");
    EXPECT_FALSE(verify<VerifyFFPTask>(folder.write(u"l.ffp"_s, "-h.flac:" + digest + '\n'))->error()) << qPrintable(report);
    // A name that is none: the folder, and a program's own word for standard input.
    EXPECT_EQ(statesOf(*verify<VerifyST5Task>(folder.write(u"m.st5"_s, kAnyDigest + "  [shntool]  .\n" + kAnyDigest + "  [shntool]  -\n"))),
              (std::vector{State::Different, State::Missing}))
        << qPrintable(report);
}

} // namespace
} // namespace nurv
