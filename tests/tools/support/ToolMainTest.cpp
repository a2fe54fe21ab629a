// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ToolMain.h"

#include "support/TestFolder.h"
#include "support/TestProgram.h"
#include "support/ToolError.h"

#include <QFile>
#include <QProcess>

#include <gmock/gmock.h>

#include <csignal>
#include <cstring>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using ::testing::StartsWith;

QString copyTool()
{
    return QString::fromLocal8Bit(NURV_COPY_TOOL);
}

ProgramResult runCopyTool(const QStringList &arguments, const QByteArray &input = {})
{
    return runProgram(copyTool(), arguments, input);
}

/// Runs a line of shell with the program as $0.
ProgramResult runShell(const QString &line, const QStringList &arguments)
{
    return runProgram(u"/bin/bash"_s, QStringList{u"-c"_s, line, copyTool()} + arguments);
}

TEST(ToolMain, AnswersQuestionsOnStandardOutput)
{
    const ProgramResult help = runCopyTool({u"a"_s, u"--help"_s});
    EXPECT_EQ(help.exitStatus, 0);
    EXPECT_EQ(help.output, "copy_tool [--wait] IN OUT\n");
    EXPECT_EQ(help.errors, "");
    const ProgramResult version = runCopyTool({u"--version"_s});
    EXPECT_EQ(version.exitStatus, 0);
    EXPECT_EQ(version.output, "copy_tool (Nurv Audio Workbench) " NURV_VERSION "\n");
    EXPECT_EQ(version.errors, "");
}

TEST(ToolMain, NamesCannotGiveATerminalOrders)
{
    // 0x9B is no UTF-8, so that a terminal of eight bits would obey it.
    const ProgramResult result = runShell(u"\"$0\" $'a\\e[2J\\u009b1m\\u202e\\x9b\\tb' out"_s, {});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.errors, "copy_tool: cannot read a\\x1B[2J\\u{009B}1m\\u{202E}\\x9B\tb: No such file or directory\n");
}

TEST(ToolMain, TakesEverythingAfterTwoDashesAsNames)
{
    const ProgramResult result = runCopyTool({u"--"_s, u"--help"_s, u"x"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.output, "");
}

TEST(ToolMain, NamesWrongArgumentsAndWhereHelpIs)
{
    const ProgramResult result = runCopyTool({u"a"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "copy_tool: two files are needed\nTry 'copy_tool --help'.\n");
}

TEST(ToolMain, NamesWhatFailed)
{
    const TestFolder folder;
    const QString missing = folder.path(u"missing"_s);
    const ProgramResult result = runCopyTool({missing, folder.path(u"out"_s)});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.errors, "copy_tool: cannot read " + missing.toUtf8() + ": No such file or directory\n");
    EXPECT_EQ(folder.list(), QStringList());
}

TEST(ToolMain, SurvivesTheLackOfMemory)
{
    const ProgramResult result = runCopyTool({u"--exhaust"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.errors, "copy_tool: not enough memory\n");
}

TEST(ToolMain, ReportsInTheWayOfTheProgram)
{
    char name[] = "program";
    char *arguments[] = {name, nullptr};
    std::string reported;
    const int status = toolMain(
        {"program", ""}, 1, arguments,
        [](std::span<const std::string>) -> int { throw ToolError(ToolError::Kind::Damaged, "bad checksum"); },
        [&reported](const ToolError &error) { reported = error.what(); });
    EXPECT_EQ(status, 1);
    EXPECT_EQ(reported, "bad checksum");
}

TEST(ToolMain, CopiesFromAndToStandardStreams)
{
    const ProgramResult result = runCopyTool({u"-"_s, u"-"_s}, QByteArray(300'000, 'x'));
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output, QByteArray(300'000, 'x'));
    EXPECT_EQ(result.errors, "");
}

TEST(ToolMain, TakesOverAStreamWhereItStands)
{
    const TestFolder folder;
    const QString in = folder.write(u"in"_s, "0123456789");
    const QString out = folder.path(u"out"_s);
    const ProgramResult result =
        runShell(u"exec 3< \"$1\" 4> \"$2\"; read -r -N 4 <&3; printf head >&4; \"$0\" - - <&3 >&4"_s, {in, out});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_EQ(folder.read(u"out"_s), "head456789");
}

TEST(ToolMain, RefusesToReadAndWriteOneFileThroughStreams)
{
    const TestFolder folder;
    const QString file = folder.write(u"a"_s, "bytes");
    const ProgramResult result = runShell(u"\"$0\" \"$1\" - >> \"$1\""_s, {file});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), StartsWith("copy_tool: the output is the same file as the input"));
    EXPECT_EQ(folder.read(u"a"_s), "bytes");
}

TEST(ToolMain, EndsQuietlyWhenItsReaderIsGone)
{
    const TestFolder folder;
    const QString in = folder.write(u"in"_s, QByteArray(3'000'000, 'x'));
    for (const QString &line : {u"\"$0\" \"$1\" - | head -c 1; exit ${PIPESTATUS[0]}"_s,
                                u"trap '' PIPE; \"$0\" \"$1\" - | head -c 1; exit ${PIPESTATUS[0]}"_s}) {
        const ProgramResult result = runShell(line, {in});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_EQ(result.output, "x");
        EXPECT_EQ(result.errors, "");
    }
}

TEST(ToolMain, WritesToNoFileInPlaceOfAClosedStream)
{
    const TestFolder folder;
    const QString in = folder.write(u"in"_s, "bytes");
    const ProgramResult closedOutput = runShell(u"\"$0\" \"$1\" - >&-"_s, {in});
    EXPECT_EQ(closedOutput.exitStatus, 1);
    EXPECT_THAT(closedOutput.errors.toStdString(), StartsWith("copy_tool: cannot write standard output: "));
    // Its message must not end up in the file that got the number of the closed stream.
    const ProgramResult closedErrors = runShell(u"\"$0\" 2>&- \"$1\" \"$2\""_s, {in, folder.path(u"out"_s)});
    EXPECT_EQ(closedErrors.exitStatus, 0);
    EXPECT_EQ(folder.read(u"out"_s), "bytes");
    const ProgramResult closedInput = runShell(u"\"$0\" - \"$1\" <&-"_s, {folder.path(u"other"_s)});
    EXPECT_EQ(closedInput.exitStatus, 1);
    EXPECT_FALSE(folder.exists(u"other"_s));
}

/// Starts a copy, waits until a part of it is written and sends the signal.
class EndedBySignal : public ::testing::TestWithParam<int> {};

TEST_P(EndedBySignal, LeavesTheFormerFileAndNothingElse)
{
    const TestFolder folder;
    const QString in = folder.write(u"in"_s, QByteArray(300'000, 'x'));
    const QString out = folder.write(u"out"_s, "former");
    QProcess process;
    process.start(copyTool(), {u"--wait"_s, in, out});
    process.setReadChannel(QProcess::StandardError);
    ASSERT_TRUE(process.waitForReadyRead(30'000));
    ::kill(static_cast<pid_t>(process.processId()), GetParam());
    ASSERT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(process.exitCode(), GetParam());
    EXPECT_EQ(folder.list(), (QStringList{u"in"_s, u"out"_s}));
    EXPECT_EQ(folder.read(u"out"_s), "former");
}

INSTANTIATE_TEST_SUITE_P(ToolMain, EndedBySignal, ::testing::Values(SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGXCPU),
                         [](const auto &tested) { return std::string(::sigabbrev_np(tested.param)); });

TEST(ToolMain, LeavesNothingOfANewFileAlsoWhenItIsKilled)
{
    const TestFolder folder;
    const QString in = folder.write(u"in"_s, QByteArray(300'000, 'x'));
    QProcess process;
    process.start(copyTool(), {u"--wait"_s, in, folder.path(u"out"_s)});
    process.setReadChannel(QProcess::StandardError);
    ASSERT_TRUE(process.waitForReadyRead(30'000));
    process.kill();
    ASSERT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(folder.list(), QStringList{u"in"_s});
}

TEST(ToolMain, TellsThatAFileMayNotGrowAndLeavesNothing)
{
    const TestFolder folder;
    const QString in = folder.write(u"in"_s, QByteArray(300'000, 'x'));
    const ProgramResult result = runShell(u"ulimit -f 100; \"$0\" \"$1\" \"$2\""_s, {in, folder.path(u"out"_s)});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), ::testing::HasSubstr("File too large"));
    EXPECT_EQ(folder.list(), QStringList{u"in"_s});
}

TEST(ToolMain, GoesOnIgnoringAHangUp)
{
    const TestFolder folder;
    const QString in = folder.write(u"in"_s, "bytes");
    const ProgramResult result =
        runShell(u"trap '' HUP; \"$0\" --wait \"$1\" \"$2\" 2> \"$3\" & "
                 "while [ ! -s \"$3\" ]; do sleep 0.01; done; kill -HUP $!; kill -TERM $!; wait $!"_s,
                 {in, folder.path(u"out"_s), folder.path(u"errors"_s)});
    EXPECT_EQ(result.exitStatus, 128 + SIGTERM);
    EXPECT_FALSE(folder.exists(u"out"_s));
}

} // namespace

} // namespace nurv::test
