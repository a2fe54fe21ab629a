// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

#include <QFile>

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

/// Three sources and a flac that begins its output and then waits for a file.
class Interrupt : public ::testing::Test {
protected:
    Interrupt()
    {
        for (const QString &name : {u"a.wav"_s, u"b.wav"_s, u"c.wav"_s})
            folder.write(name, "source " + name.toUtf8());
        tools.addFake(u"flac"_s, "create=" + folder.path(u"started"_s).toUtf8()
                                     + ";wait-file=" + folder.path(u"go"_s).toUtf8() + ";append=@-1:encoded");
    }

    [[nodiscard]] QStringList arguments() const
    {
        return {u"encode"_s, u"--beside-source"_s, u"--jobs=1"_s, u"--delete-originals"_s, u"--yes"_s, folder.path()};
    }

    void expectSourcesUntouched() const
    {
        for (const QString &name : {u"a.wav"_s, u"b.wav"_s, u"c.wav"_s})
            EXPECT_EQ(folder.read(name), "source " + name.toUtf8());
    }

    [[nodiscard]] bool waitForStart() const
    {
        return waitUntil([this] { return folder.exists(u"started"_s); });
    }

    TestFolder folder;
    ProgramFolder tools;
};

} // namespace

TEST_F(Interrupt, OneCtrlCLetsTheRunningJobEndAndCancelsTheWaitingOnes)
{
    RunningNurv nurv(arguments());
    ASSERT_TRUE(waitForStart());
    nurv.sendSignal(SIGINT);
    ASSERT_TRUE(nurv.waitForError("nurv: canceled: 0 done, 2 not begun, 1 running comes to its end "
                                  "(Ctrl-C again ends it now)\n"));
    folder.write(u"go"_s, "");
    const ProgramResult result = nurv.finish();
    EXPECT_EQ(result.exitStatus, 130);
    // No line for what was not begun.
    const QList<QByteArray> lines = result.errors.trimmed().split('\n');
    ASSERT_EQ(lines.size(), 3) << result.errors.constData();
    EXPECT_EQ(lines[1], "a.wav: Canceled");
    EXPECT_TRUE(lines[2].startsWith("0 of 3 done, 3 canceled; ")) << lines[2].constData();
    expectSourcesUntouched();
    // The program ran to its end; no other one was started.
    EXPECT_EQ(folder.read(u"a.flac"_s), "encoded");
    EXPECT_FALSE(folder.exists(u"b.flac"_s));
    EXPECT_FALSE(folder.exists(u"c.flac"_s));
}

TEST_F(Interrupt, TwoCtrlCEndTheRunningProgramsToo)
{
    RunningNurv nurv(arguments());
    ASSERT_TRUE(waitForStart());
    nurv.sendSignal(SIGINT);
    ASSERT_TRUE(nurv.waitForError("Ctrl-C again ends it now"));
    EXPECT_FALSE(processesMentioning(folder.path(u"a.flac"_s)).isEmpty());
    nurv.sendSignal(SIGINT);
    const ProgramResult result = nurv.finish();
    EXPECT_EQ(result.exitStatus, 130);
    EXPECT_TRUE(result.errors.contains("nurv: canceled; the running programs are ended\n"))
        << result.errors.constData();
    expectSourcesUntouched();
    EXPECT_EQ(folder.list(), (QStringList{u"a.wav"_s, u"b.wav"_s, u"c.wav"_s, u"started"_s}));
    EXPECT_TRUE(processesMentioning(folder.path()).isEmpty());
}

TEST_F(Interrupt, AProgramThatIgnoresTheRequestIsKilled)
{
    tools.remove(u"flac"_s);
    tools.addFake(u"flac"_s, "ignore-term;create=" + folder.path(u"started"_s).toUtf8() + ";hang");
    RunningNurv nurv(arguments());
    ASSERT_TRUE(waitForStart());
    nurv.sendSignal(SIGTERM);
    EXPECT_EQ(nurv.finish().exitStatus, 130);
    expectSourcesUntouched();
    EXPECT_TRUE(processesMentioning(folder.path()).isEmpty());
}

TEST_F(Interrupt, TheEndOfTheSessionEndsEverythingAtOnce)
{
    for (const int number : {SIGTERM, SIGHUP}) {
        RunningNurv nurv(arguments());
        ASSERT_TRUE(waitForStart());
        nurv.sendSignal(number);
        EXPECT_EQ(nurv.finish().exitStatus, 130) << number;
        expectSourcesUntouched();
        EXPECT_TRUE(processesMentioning(folder.path()).isEmpty());
        folder.remove(u"started"_s);
    }
}

TEST_F(Interrupt, TheBatchObjectTellsWhatWasCanceled)
{
    RunningNurv nurv(arguments() + QStringList{u"--json"_s});
    ASSERT_TRUE(waitForStart());
    nurv.sendSignal(SIGTERM);
    const QList<QJsonObject> objects = jsonLines(nurv.finish().output);
    ASSERT_EQ(objects.size(), 4);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(objects[i][u"status"_s], u"canceled"_s);
    EXPECT_EQ(objects.last()[u"canceled"_s], 3);
    EXPECT_EQ(objects.last()[u"exitStatus"_s], 130);
}

TEST_F(Interrupt, AJobThatHangsInTheFileSystemIsNotWaitedForLong)
{
    tools.addFake(u"shorten"_s, "exit=0");
    tools.addFake(u"shntool"_s, "exit=0");
    // Whoever reads the output for its digest waits for a writer that never comes.
    ASSERT_EQ(::mkfifo(QFile::encodeName(folder.path(u"a.shn"_s)).constData(), 0600), 0);
    RunningNurv nurv({u"encode"_s, u"--format=shn"_s, u"--md5"_s, u"--json"_s, u"--beside-source"_s, folder.path(u"a.wav"_s)});
    ASSERT_TRUE(nurv.waitForError("a.wav: its output a.shn exists already\n"));
    // Cancelled before it begins to read it would end at once.
    ASSERT_TRUE(nurv.waitForHeldOpen());
    nurv.sendSignal(SIGTERM);
    const ProgramResult result = nurv.finish();
    EXPECT_EQ(result.exitStatus, 130);
    EXPECT_TRUE(result.errors.contains("nurv: 1 job(s) have not ended in time\n")) << result.errors.constData();
    // The list that hangs has its object, too.
    const QList<QJsonObject> objects = jsonLines(result.output);
    ASSERT_EQ(objects.size(), 3) << result.output.constData();
    EXPECT_EQ(objects[0][u"status"_s], u"error"_s);
    EXPECT_EQ(objects[1][u"status"_s], u"canceled"_s);
    EXPECT_EQ(objects[2][u"jobs"_s], 2);
}
