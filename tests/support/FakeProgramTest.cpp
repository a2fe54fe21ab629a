// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QElapsedTimer>
#include <QProcess>

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;

namespace nurv::test {

TEST(FakeProgram, WritesWhatItsArgumentsSay)
{
    const ProgramResult result =
        runProgram(fakeProgramPath(), {u"out=a\\nb\\x00"_s, u"flood=70000"_s, u"err=no"_s, u"exit=5"_s});
    EXPECT_EQ(result.output, QByteArray("a\nb\0", 4) + QByteArray(70000, 'x'));
    EXPECT_EQ(result.errors, "no");
    EXPECT_EQ(result.exitStatus, 5);
}

TEST(FakeProgram, ObeysTheEnvironmentBeforeItsArguments)
{
    qputenv("NURV_FAKE", "out=script;exit=4");
    const ProgramResult result = runProgram(fakeProgramPath(), {u"exit=5"_s});
    qunsetenv("NURV_FAKE");
    EXPECT_EQ(result.output, "script");
    EXPECT_EQ(result.exitStatus, 4);
}

TEST(FakeProgram, RefusesAStepThatItDoesNotKnow)
{
    EXPECT_EQ(runProgram(fakeProgramPath(), {u"nonsense"_s}).exitStatus, 99);
    EXPECT_EQ(runProgram(fakeProgramPath(), {u"exit=x"_s}).exitStatus, 99);
}

TEST(FakeProgram, DiesByTheSignalThatIsAskedFor)
{
    QProcess process;
    process.start(fakeProgramPath(), {u"out=x"_s, u"signal=9"_s});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(process.exitCode(), SIGKILL);
}

TEST(FakeProgram, HangsUntilItIsTerminated)
{
    QProcess process;
    process.start(fakeProgramPath(), {u"out=ready"_s, u"hang"_s});
    ASSERT_TRUE(process.waitForReadyRead());
    EXPECT_FALSE(process.waitForFinished(50));
    process.terminate();
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), SIGTERM);
}

TEST(FakeProgram, IgnoresTerminationWhenTold)
{
    QProcess process;
    process.start(fakeProgramPath(), {u"ignore-term"_s, u"out=ready"_s, u"hang"_s});
    ASSERT_TRUE(process.waitForReadyRead());
    process.terminate();
    EXPECT_FALSE(process.waitForFinished(50));
    process.kill();
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), SIGKILL);
}

TEST(FakeProgram, ReplaysATranscriptInChunks)
{
    const TestFolder folder;
    const QString transcript = folder.write(u"t.txt"_s, "out 10%\\b\\b\\b\ndelay 20\nout \\xe3\\x81\nerr !\nout \\x82");
    const ProgramResult result = runProgram(fakeProgramPath(), {u"replay="_s + transcript});
    EXPECT_EQ(result.output, "10%\b\b\b\xe3\x81\x82");
    EXPECT_EQ(result.errors, "!");
}

TEST(FakeProgram, ReportsWhatItWasStartedWith)
{
    qputenv("NURV_SUPPORT_PROBE", "yes");
    const ProgramResult result = runProgram(
        fakeProgramPath(), {u"env=NURV_SUPPORT_PROBE"_s, u"env=NURV_NOT_THERE"_s, u"fds"_s, u"read-stdin"_s}, "12345");
    qunsetenv("NURV_SUPPORT_PROBE");
    // Descriptors of the program that runs the tests may follow the standard three.
    EXPECT_TRUE(result.output.startsWith("NURV_SUPPORT_PROBE=yes\nNURV_NOT_THERE unset\nfds: 0 1 2"))
        << result.output.data();
    EXPECT_TRUE(result.output.endsWith("\nread 5 bytes\n")) << result.output.data();
}

TEST(FakeProgram, LeavesAGrandchildThatHoldsTheOutput)
{
    // The shell ends when the last writer has closed the pipe, long after fake_program itself.
    QElapsedTimer watch;
    watch.start();
    const ProgramResult result = runProgram(u"sh"_s, {u"-c"_s, u"\"$0\" grandchild=200 | cat"_s, fakeProgramPath()});
    EXPECT_TRUE(result.output.startsWith("grandchild ")) << result.output.constData();
    EXPECT_GE(watch.elapsed(), 150);
}

TEST(FakeProgram, ActsOnConditionsAndPlaceholders)
{
    const TestFolder folder;
    const QString target = folder.path(u"made.flac"_s);
    qputenv("NURV_FAKE", "when=bad;exit=1;end;first=@2;out=once;end;append=@1:data");
    EXPECT_EQ(runProgram(fakeProgramPath(), {target, folder.path(u"mark"_s)}).output, "once");
    EXPECT_EQ(runProgram(fakeProgramPath(), {target, folder.path(u"mark"_s)}).output, "");
    EXPECT_EQ(runProgram(fakeProgramPath(), {target, u"a bad one"_s}).exitStatus, 1);
    qunsetenv("NURV_FAKE");
    EXPECT_EQ(folder.read(u"made.flac"_s), "datadata");
}

} // namespace nurv::test
