// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/VerifyST5Task.h"

#include "checksum/VerifyListFixture.h"
#include "support/TestProgram.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class VerifyST5TaskTest : public test::VerifyListFixture {
protected:
    VerifyST5TaskTest() { tools.addAllReal(); }
    /// The lines of the distribution's shntool for files of the folder.
    [[nodiscard]] QByteArray referenceList(const QStringList &names)
    {
        QByteArray list;
        for (const QString &name : names) {
            const auto result = test::runProgram(
                u"bash"_s, {u"-c"_s, u"cd \"$1\" && exec /usr/bin/shntool hash -m \"$2\""_s, u"-"_s, folder.path(), name});
            EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
            list += result.output;
        }
        return list;
    }

    test::ProgramFolder tools;
};

TEST_F(VerifyST5TaskTest, AgreesWithTheDistributionsShntool)
{
    test::writeWav(folder.path(u"a b.wav"_s), {.seconds = 0.5});
    test::writeFlac(folder.path(u"c.flac"_s), {.seconds = 0.5, .seed = 2});
    const QString list = folder.write(u"checksum.st5"_s, ";comment\n\n" + referenceList({u"a b.wav"_s, u"c.flac"_s}));
    const auto task = verify<VerifyST5Task>(list);
    EXPECT_EQ(report, u"Verify ST5: checksum.st5\na b.wav : OK\nc.flac : OK\n");
    EXPECT_FALSE(task->error());
    EXPECT_EQ(statesOf(*task), (std::vector{State::Ok, State::Ok}));
    EXPECT_TRUE(statuses.contains(u"Verigying ST5 File"_s)) << qPrintable(statuses.join(u'|'));
}

TEST_F(VerifyST5TaskTest, SeesOtherMissingAndUnreadableFiles)
{
    test::writeWav(folder.path(u"a.wav"_s), {.seconds = 0.5});
    test::writeWav(folder.path(u"gone.wav"_s), {.seconds = 0.5});
    const QByteArray lines = referenceList({u"a.wav"_s, u"gone.wav"_s});
    folder.remove(u"gone.wav"_s);
    test::writeWav(folder.path(u"a.wav"_s), {.seconds = 0.5, .seed = 3});
    const auto task = verify<VerifyST5Task>(folder.write(u"l.st5"_s, lines + "without the mark a.wav\n"));
    const QStringList reported = report.split(u'\n');
    EXPECT_EQ(reported.value(1), u"a.wav : did not match shntool md5 file");
    EXPECT_TRUE(reported.value(2).startsWith(u"gone.wav : "_s) && reported.value(2) != u"gone.wav : OK") << qPrintable(report);
    EXPECT_EQ(reported.value(3), u"without the mark a.wav : Invalid checksum format");
    EXPECT_EQ(task->outcome().problem, u"1 of 3 files is missing, 1 of 3 files is another one, 1 of 3 lines is no entry");
    EXPECT_EQ(statesOf(*task), (std::vector{State::Different, State::Missing, State::NotAnEntry}));
    EXPECT_TRUE(task->error());
}

TEST_F(VerifyST5TaskTest, GoesOnBehindANameThatLeadsNowhere)
{
    test::writeWav(folder.path(u"a.wav"_s), {.seconds = 0.5});
    const QByteArray line = referenceList({u"a.wav"_s});
    const auto task = verify<VerifyST5Task>(folder.write(u"l.st5"_s, "0f  [shntool]  gone/b.wav\n" + line));
    EXPECT_EQ(statesOf(*task), (std::vector{State::Missing, State::Ok})) << qPrintable(report);
    EXPECT_TRUE(report.contains(u"a.wav : OK\n"_s)) << qPrintable(report);
}

TEST_F(VerifyST5TaskTest, ReportsTheNameAndThenTheWarning)
{
    folder.write(u"a.wav"_s, "abc");
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s, "log=" + folder.path(u"log"_s).toUtf8()
                                    + ";out=\\b 45% \\b;until-read;out=shntool [hash]: warning: it is odd: ;until-read;out=[a]\\n"
                                      "0f  [shntool]  a.wav\\n");
    const auto task = verify<VerifyST5Task>(folder.write(u"l.st5"_s, "0f  [shntool]  a.wav\n"));
    EXPECT_EQ(report, u"Verify ST5: l.st5\na.wav : warning: it is odd: [a]a.wav\n1 of 1 file is another one\n");
    EXPECT_TRUE(task->error());
    EXPECT_EQ(folder.read(u"log"_s), "hash\t" + folder.path(u"a.wav"_s).toUtf8() + '\n');
    EXPECT_TRUE(statuses.contains(u"Verifying: 45.000000%"_s)) << qPrintable(statuses.join(u'|'));
}

TEST_F(VerifyST5TaskTest, NeedsTheWholeLineToBeTheSame)
{
    folder.write(u"cd2/a.wav"_s, "abc");
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s, "out=0f  [shntool]  anything;until-read;out= at all\\n");
    verify<VerifyST5Task>(folder.write(u"l.st5"_s, "0f  [shntool]  cd2/a.wav\n"));
    // The program's line is put together with the file's own name.
    EXPECT_EQ(report.section(u'\n', 1, 1), u"a.wav : did not match shntool md5 file");
}

TEST_F(VerifyST5TaskTest, NamesAProgramThatIsMissing)
{
    tools.remove(u"shntool"_s);
    const auto task = verify<VerifyST5Task>(folder.write(u"l.st5"_s, "0f  [shntool]  a.wav\n"));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->outcome().problem.contains(u"shntool"_s)) << qPrintable(task->outcome().problem);
    EXPECT_TRUE(task->outcome().listedFiles.empty());
}

TEST_F(VerifyST5TaskTest, KeepsWhatItSawBeforeItsProgramWasGone)
{
    folder.write(u"a.wav"_s, "abc");
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s, "out=0f  [shntool]  a.wav\\n;delete=" + QFile::encodeName(tools.path(u"shntool"_s)));
    const auto task = verify<VerifyST5Task>(folder.write(u"l.st5"_s, "0f  [shntool]  a.wav\n0f  [shntool]  b.wav\n"));
    EXPECT_TRUE(report.startsWith(u"Verify ST5: l.st5\na.wav : OK\n\"shntool\" could not be started: "_s)) << qPrintable(report);
    EXPECT_EQ(statesOf(*task), std::vector{State::Ok});
    EXPECT_TRUE(task->error());
}

TEST_F(VerifyST5TaskTest, FindsAFileUnreadableWhoseProgramWasEnded)
{
    folder.write(u"a.wav"_s, "abc");
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s, "out=0f  [shntool]  a.wav\\n;signal=9");
    const auto task = verify<VerifyST5Task>(folder.write(u"l.st5"_s, "0f  [shntool]  a.wav\n"));
    EXPECT_EQ(report, u"Verify ST5: l.st5\na.wav : OK\n1 of 1 file could not be read\n");
    EXPECT_EQ(statesOf(*task), std::vector{State::Unreadable});
    EXPECT_EQ(task->outcome().listedFiles[0].detail, u"shntool was ended by signal 9 (Killed) while working on a.wav");
}

TEST_F(VerifyST5TaskTest, ChecksItsListToTheEndAlsoWhenItIsCanceled)
{
    const QByteArray entry = "0f  [shntool]  a.wav\n";
    folder.write(u"a.wav"_s, "abc");
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s, "log=" + folder.path(u"runs"_s).toUtf8() + ";wait-file=" + folder.path(u"go-on"_s).toUtf8()
                                    + ";out=0f  [shntool]  a.wav\\n");
    const auto results = std::make_shared<NURVTaskResults>();
    const auto task = std::make_shared<VerifyST5Task>(&queue, folder.write(u"l.st5"_s, entry.repeated(3)), results);
    results->addTaskInSet(*task);
    queue.addTask(task);
    ASSERT_TRUE(test::waitUntil([this] { return folder.exists(u"runs"_s); }));
    task->cancelTask();
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_EQ(results->results(*task), u"Verify ST5: l.st5\na.wav : OK\na.wav : OK\na.wav : OK\n");
    EXPECT_EQ(folder.read(u"runs"_s).count('\n'), 3);
    EXPECT_EQ(task->textField().text, u"Canceled");
    EXPECT_NE(task->topTextField().text, u"Complete");
}

TEST_F(VerifyST5TaskTest, BeginsNoFurtherProgramWhenThoseOfACanceledCheckAreEnded)
{
    const QByteArray entry = "0f  [shntool]  a.wav\n";
    folder.write(u"a.wav"_s, "abc");
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s, "log=" + folder.path(u"runs"_s).toUtf8() + ";wait-file=" + folder.path(u"go-on"_s).toUtf8()
                                    + ";signal=15");
    const auto results = std::make_shared<NURVTaskResults>();
    const auto task = std::make_shared<VerifyST5Task>(&queue, folder.write(u"l.st5"_s, entry.repeated(3)), results);
    results->addTaskInSet(*task);
    queue.addTask(task);
    ASSERT_TRUE(test::waitUntil([this] { return folder.exists(u"runs"_s); }));
    task->cancelTask();
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_EQ(folder.read(u"runs"_s).count('\n'), 1);
    EXPECT_TRUE(results->results(*task).startsWith(u"Verify ST5: l.st5\nshntool was ended by signal 15"_s))
        << qPrintable(results->results(*task));
    EXPECT_EQ(task->textField().text, u"Canceled");
}

TEST_F(VerifyST5TaskTest, FailsForAListWithoutLines)
{
    const auto task = verify<VerifyST5Task>(folder.write(u"l.st5"_s, ""));
    EXPECT_EQ(report, u"Verify ST5: l.st5\nthe list has no entries\n");
    EXPECT_TRUE(task->error());
}

} // namespace
} // namespace nurv
