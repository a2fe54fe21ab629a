// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVAsyncNSTask.h"

#include "base/NotificationCenter.h"
#include "engine/TestTasks.h"
#include "process/ResourceFolder.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

#include <QFileInfo>

#include <gtest/gtest.h>

#include <signal.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using test::ScriptedTask;
using test::waitUntil;

struct AsyncTask : ::testing::Test {
    test::RecordingServices services;
    NURVTaskQueue queue{services};

    std::shared_ptr<ScriptedTask> run(const QStringList &script)
    {
        auto task = std::make_shared<ScriptedTask>(&queue, script);
        queue.addTask(task);
        EXPECT_TRUE(waitUntil([&] { return queue.taskCount() == 0; }));
        return task;
    }
};

using NURVAsyncNSTaskTest = AsyncTask;

TEST_F(NURVAsyncNSTaskTest, TakesStandardErrorAsIfWrittenToStandardOutput)
{
    const auto task = run({u"err=oops\\n"_s});
    EXPECT_EQ(task->chunks, QStringList{u"oops\n"_s});
    EXPECT_EQ(task->results()->results(), u"oops\n\n");
    EXPECT_FALSE(task->error());
}

TEST_F(NURVAsyncNSTaskTest, CompletesWithEmptyResultsWhenTheToolWritesNothing)
{
    const auto task = run({u"exit=0"_s});
    EXPECT_TRUE(task->chunks.isEmpty());
    EXPECT_EQ(task->results()->results(), u"\n");
    EXPECT_EQ(task->topTextField().text, u"Complete");
}

TEST_F(NURVAsyncNSTaskTest, ShowsErrorAndKeepsTheTextOfAToolThatFails)
{
    const auto task = run({u"out=working\\n"_s, u"exit=3"_s});
    EXPECT_TRUE(task->error());
    EXPECT_EQ(task->topTextField().text, u"Error");
    EXPECT_EQ(task->results()->results(), u"working\n\n");
}

TEST_F(NURVAsyncNSTaskTest, SaysWhichSignalEndedATool)
{
    const auto task = run({u"out=half\\n"_s, u"signal=9"_s});
    EXPECT_TRUE(task->error());
    const QString text = task->results()->results();
    EXPECT_TRUE(text.startsWith(u"half\n"_s));
    EXPECT_TRUE(text.contains(u"fake_program was ended by signal 9"_s)) << text.toStdString();
    EXPECT_TRUE(text.contains(u"scripted"_s));
}

TEST_F(NURVAsyncNSTaskTest, RunsItsHooksAroundThePaintedState)
{
    const auto task = run({u"exit=0"_s});
    EXPECT_EQ(task->steps, (QStringList{u"cleanup, Waiting..."_s, u"done"_s, u"finalCleanup, Complete"_s}));
}

TEST_F(NURVAsyncNSTaskTest, LetsTheToolRunToItsEndWhenCancelled)
{
    const test::TestFolder folder;
    const QString go = folder.path(u"go"_s);
    const auto task = std::make_shared<ScriptedTask>(
        &queue, QStringList{u"out=started"_s, u"wait-file="_s + go, u"out=ended"_s, u"exit=5"_s});
    queue.addTask(task);
    ASSERT_TRUE(waitUntil([&] { return !task->chunks.isEmpty(); }));
    task->cancelTask();
    test::handleWaitingEvents();
    EXPECT_TRUE(task->isActive()) << "cancelled but running";
    EXPECT_EQ(queue.taskCount(), 1);
    EXPECT_FALSE(task->cancelButton().hidden);

    folder.write(u"go"_s, "");
    ASSERT_TRUE(waitUntil([&] { return queue.taskCount() == 0; }));
    EXPECT_EQ(task->chunks.join(QString()), u"startedended");
    EXPECT_EQ(task->textField().text, u"Canceled");
    EXPECT_FALSE(task->error()) << "whatever the exit status";
}

TEST_F(NURVAsyncNSTaskTest, CompletesOnceWhenCancelledTwice)
{
    int ended = 0;
    QObject::connect(&queue, &NURVTaskQueue::taskEnded, &queue, [&] { ++ended; });
    const auto task = std::make_shared<ScriptedTask>(&queue, QStringList{u"delay=50"_s});
    queue.addTask(task);
    task->cancelTask();
    task->cancelTask();
    ASSERT_TRUE(waitUntil([&] { return queue.taskCount() == 0; }));
    task->cancelTask();
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(task->steps.filter(u"finalCleanup"_s).size(), 1);
}

TEST_F(NURVAsyncNSTaskTest, LeavesTheQueueWhenCancelledWhileItWaits)
{
    const auto running = std::make_shared<test::HeldTask>(&queue);
    const auto running2 = std::make_shared<test::HeldTask>(&queue);
    const auto waiting = std::make_shared<ScriptedTask>(&queue, QStringList{u"out=never"_s});
    queue.addTasks({running, running2, waiting});
    waiting->cancelTask();
    EXPECT_EQ(queue.taskCount(), 2);
    EXPECT_TRUE(waiting->isDone());
    EXPECT_EQ(waiting->textField().text, u"Canceled");
    EXPECT_TRUE(waiting->chunks.isEmpty());
    running->finish();
    running2->finish();
}

TEST_F(NURVAsyncNSTaskTest, FailsWithTheTextOfAHookThatThrows)
{
    for (const QString &hook : {u"processTaskOutput"_s, u"cleanup"_s, u"finalCleanup"_s}) {
        const auto task = std::make_shared<ScriptedTask>(&queue, QStringList{u"out=x"_s});
        task->throwingHook = hook;
        queue.addTask(task);
        ASSERT_TRUE(waitUntil([this] { return queue.taskCount() == 0; })) << hook.toStdString();
        EXPECT_TRUE(task->error());
        EXPECT_TRUE(task->results()->results().endsWith(u"planted\n"_s));
    }
}

TEST_F(NURVAsyncNSTaskTest, ShowsTheErrorThatOnlyItsParserSaw)
{
    const auto task = std::make_shared<ScriptedTask>(&queue, QStringList{u"out=x"_s, u"exit=0"_s});
    task->parserSetsError = true;
    queue.addTask(task);
    ASSERT_TRUE(waitUntil([this] { return queue.taskCount() == 0; }));
    EXPECT_EQ(task->topTextField().text, u"Error");
}

TEST_F(NURVAsyncNSTaskTest, RunsItsHooksAlsoWhenTheToolFailed)
{
    EXPECT_EQ(run({u"exit=1"_s})->steps,
              (QStringList{u"cleanup, Waiting..."_s, u"done"_s, u"finalCleanup, Error"_s}));
}

TEST_F(NURVAsyncNSTaskTest, SurvivesThatTheQueueLetsGoOfItWhileItIsCancelled)
{
    NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), 1);
    const auto running = std::make_shared<test::HeldTask>(&queue);
    queue.addTask(running);
    queue.addTask(std::make_shared<ScriptedTask>(&queue, QStringList{}));
    const std::weak_ptr<NURVTask> waiting = queue.panelArray()[1];
    // The count falls to zero, and the sweep lets go of the last reference.
    queue.panelArray()[1]->cancelTask();
    test::handleWaitingEvents(); // the news that it is settled
    EXPECT_TRUE(waiting.expired());
    running->finish();
}

TEST_F(NURVAsyncNSTaskTest, CompletesWhenTheToolEndsLongAfterItsOutput)
{
    const auto task = run({u"out=x"_s, u"until-read"_s, u"delay=50"_s, u"exit=2"_s});
    EXPECT_TRUE(task->error());
}

TEST_F(NURVAsyncNSTaskTest, DescribesItselfByItsCommandLine)
{
    const NURVAsyncNSTask task(nullptr, u"/opt/tool"_s, {u"-x"_s, u"a b"_s});
    EXPECT_EQ(task.description(), u"\"/opt/tool\"\n \"-x\"\n \"a b\"\n ");
}

TEST_F(NURVAsyncNSTaskTest, GivesTheToolTheResourceFolderAfterTheUsersPath)
{
    const auto task = std::make_shared<ScriptedTask>(
        &queue, QStringList{u"env=PATH"_s, u"env=NSUnbufferedIO"_s, u"cwd"_s, u"stdin"_s, u"fds"_s});
    task->appendToPATH(u"/more"_s);
    task->setDirectory(u"/usr"_s);
    queue.addTask(task);
    ASSERT_TRUE(waitUntil([&] { return queue.taskCount() == 0; }));
    const QString path = qEnvironmentVariable("PATH");
    EXPECT_EQ(task->chunks.join(QString()),
              u"PATH=%1:%2:/more\nNSUnbufferedIO=YES\ncwd: /usr\nstdin: /dev/null\nfds: 0 1 2\n"_s.arg(
                  path, pathToCommandLineTools()));
}

TEST_F(NURVAsyncNSTaskTest, FailsWithTheToolTheFolderAndThePackageWhenTheToolIsMissing)
{
    const test::ProgramFolder tools;
    const auto task = std::make_shared<NURVAsyncNSTask>(&queue, programPath(u"flac"_s), QStringList{});
    task->setTitle(u"a.wav"_s);
    queue.addTask(task);
    EXPECT_EQ(queue.taskCount(), 1) << "never completes while the queue starts it";
    ASSERT_TRUE(waitUntil([&] { return queue.taskCount() == 0; }));
    EXPECT_TRUE(task->error());
    const QString text = task->results()->results();
    EXPECT_TRUE(text.contains(u"flac"_s));
    EXPECT_TRUE(text.contains(tools.path()));
    EXPECT_TRUE(text.contains(u"package"_s)) << text.toStdString();
}

TEST_F(NURVAsyncNSTaskTest, FailsWhenTheToolMayNotBeRun)
{
    const test::ProgramFolder tools;
    const test::TestFolder folder;
    const QString program = folder.write(u"tool"_s, "#!/bin/sh\n");
    const auto task = std::make_shared<NURVAsyncNSTask>(&queue, program, QStringList{});
    queue.addTask(task);
    ASSERT_TRUE(waitUntil([&] { return queue.taskCount() == 0; }));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->results()->results().contains(u"Permission denied"_s));
}

TEST_F(NURVAsyncNSTaskTest, TakesAFloodWithoutLineEnds)
{
    const auto task = run({u"flood=5000000"_s});
    EXPECT_EQ(task->chunks.join(QString()).size(), 5000000);
    EXPECT_FALSE(task->error());
}

TEST_F(NURVAsyncNSTaskTest, JoinsASequenceThatIsCutBetweenTwoReads)
{
    const auto task = run({u"out=\\xe3\\x81"_s, u"until-read"_s, u"out=\\x82"_s});
    EXPECT_EQ(task->chunks.join(QString()), u"あ");
}

TEST_F(NURVAsyncNSTaskTest, TakesNoTextFromBytesThatAreNoUtf8)
{
    const auto task = run({u"out=\\xff\\xfe"_s, u"until-read"_s, u"out=fine"_s});
    EXPECT_EQ(task->chunks, QStringList{u"fine"_s});
}

TEST_F(NURVAsyncNSTaskTest, LosesNothingThatAFastToolWrote)
{
    for (int i = 0; i < 30; ++i) {
        const auto task = run({u"flood=70000"_s, u"out=end"_s});
        ASSERT_EQ(task->chunks.join(QString()).size(), 70003);
    }
}

TEST_F(NURVAsyncNSTaskTest, EndsAlthoughAGrandchildHoldsThePipe)
{
    const auto task = run({u"grandchild=60000"_s, u"out=done"_s});
    EXPECT_TRUE(task->chunks.join(QString()).endsWith(u"done"_s));
    EXPECT_EQ(task->topTextField().text, u"Complete");
    const QString text = task->chunks.join(QString());
    const int grandchild = text.section(u"grandchild "_s, 1).section(u'\n', 0, 0).toInt();
    ASSERT_GT(grandchild, 0) << text.toStdString();
    ::kill(grandchild, SIGKILL);
}

} // namespace
} // namespace nurv
