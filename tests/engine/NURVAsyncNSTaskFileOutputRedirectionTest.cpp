// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVAsyncNSTaskFileOutputRedirection.h"

#include "engine/TestTasks.h"
#include "support/LogLines.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using test::waitUntil;

struct RedirectionTask : ::testing::Test {
    test::RecordingServices services;
    NURVTaskQueue queue{services};
    test::TestFolder folder;
    int outputWindows = 0;

    void SetUp() override
    {
        QObject::connect(&queue, &NURVTaskQueue::outputWindowRequested, &queue, [this] { ++outputWindows; });
    }

    std::shared_ptr<NURVAsyncNSTaskFileOutputRedirection> make(const QStringList &script)
    {
        auto task = std::make_shared<NURVAsyncNSTaskFileOutputRedirection>(
            folder.path(u"out.txt"_s), &queue, test::fakeProgramPath(), script);
        task->setTitle(u"Listing"_s);
        return task;
    }
    void runToEnd(const std::shared_ptr<NURVTask> &task)
    {
        queue.addTask(task);
        ASSERT_TRUE(waitUntil([this] { return queue.taskCount() == 0; }));
    }
};

using NURVAsyncNSTaskFileOutputRedirectionTest = RedirectionTask;

TEST_F(NURVAsyncNSTaskFileOutputRedirectionTest, SavesBothStreamsAndOpensNoWindow)
{
    folder.write(u"out.txt"_s, "an older and longer text that is replaced as a whole");
    const auto task = make({u"out=täglich\\r\\n"_s, u"until-read"_s, u"err=oops"_s});
    runToEnd(task);
    EXPECT_EQ(folder.read(u"out.txt"_s), "täglich\r\noops\n") << "the joined text ends each slot with a line feed";
    EXPECT_EQ(folder.list(), QStringList{u"out.txt"_s});
    EXPECT_EQ(outputWindows, 0);
    EXPECT_EQ(task->results(), nullptr);
    EXPECT_EQ(task->topTextField().text, u"Complete");
}

TEST_F(NURVAsyncNSTaskFileOutputRedirectionTest, ShowsItsTitleAndSubTitleWhileItRuns)
{
    const auto task = make({u"wait-file="_s + folder.path(u"go"_s)});
    task->setSubTitle(u"Please wait"_s);
    queue.addTask(task);
    EXPECT_EQ(task->textField().text, u"Listing");
    EXPECT_EQ(task->topTextField().text, u"Please wait");
    folder.write(u"go"_s, "");
    ASSERT_TRUE(waitUntil([this] { return queue.taskCount() == 0; }));
}

TEST_F(NURVAsyncNSTaskFileOutputRedirectionTest, TakesNoPartInItsSetAtTheEnd)
{
    const auto set = std::make_shared<NURVTaskResults>();
    const auto task = make({u"out=x"_s});
    task->setResults(set);
    set->addTaskInSet(*task);
    runToEnd(task);
    EXPECT_FALSE(set->taskSetDone());
}

TEST_F(NURVAsyncNSTaskFileOutputRedirectionTest, WritesWhatAFailedToolWrote)
{
    const auto task = make({u"out=half"_s, u"exit=1"_s});
    runToEnd(task);
    EXPECT_TRUE(task->error());
    EXPECT_EQ(folder.read(u"out.txt"_s), "half\n");
    EXPECT_EQ(outputWindows, 0);
}

TEST_F(NURVAsyncNSTaskFileOutputRedirectionTest, OnlyLogsThatAFileCannotBeWrittenAndWhy)
{
    const test::LogLines log;
    const auto task = std::make_shared<NURVAsyncNSTaskFileOutputRedirection>(
        folder.path(u"missing/out.txt"_s), &queue, test::fakeProgramPath(), QStringList{u"out=x"_s});
    runToEnd(task);
    EXPECT_EQ(task->topTextField().text, u"Complete");
    EXPECT_TRUE(folder.list().isEmpty());
    EXPECT_EQ(log.of(u"nurv.engine"_s),
              QStringList{u"Unable to write %1: No such file or directory"_s.arg(folder.path(u"missing/out.txt"_s))});
}

TEST_F(NURVAsyncNSTaskFileOutputRedirectionTest, WritesNoFileWhenCancelledWhileWaiting)
{
    folder.write(u"out.txt"_s, "kept");
    const auto running = std::make_shared<test::HeldTask>(&queue);
    const auto running2 = std::make_shared<test::HeldTask>(&queue);
    const auto task = make({u"out=x"_s});
    for (const auto &held : {running, running2})
        held->setResults(nullptr);
    queue.addTasks({running, running2, task});
    task->cancelTask();
    EXPECT_EQ(queue.taskCount(), 2);
    EXPECT_EQ(folder.read(u"out.txt"_s), "kept");
    running->finish();
    running2->finish();
    EXPECT_EQ(outputWindows, 0);
}

TEST_F(NURVAsyncNSTaskFileOutputRedirectionTest, TellsInAWindowThatItsToolIsMissing)
{
    folder.write(u"out.txt"_s, "kept");
    const auto task = std::make_shared<NURVAsyncNSTaskFileOutputRedirection>(
        folder.path(u"out.txt"_s), &queue, u"/nowhere/shntool"_s, QStringList{});
    runToEnd(task);
    EXPECT_TRUE(task->error());
    EXPECT_EQ(folder.read(u"out.txt"_s), "kept");
    EXPECT_EQ(outputWindows, 1);
}

} // namespace
} // namespace nurv
