// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVInProcessTask.h"

#include "base/NurvFailure.h"
#include "base/WorkerThreads.h"
#include "engine/TestTasks.h"
#include "support/WaitUntil.h"

#include <QCoreApplication>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using test::waitUntil;
using test::WorkTask;

struct InProcess : ::testing::Test {
    test::RecordingServices services;
    NURVTaskQueue queue{services};
    int ended = 0;

    void SetUp() override
    {
        QObject::connect(&queue, &NURVTaskQueue::taskEnded, &queue, [this] { ++ended; });
    }
    std::shared_ptr<WorkTask> make(std::function<void(WorkTask &)> work)
    {
        return std::make_shared<WorkTask>(&queue, std::move(work));
    }
    [[nodiscard]] bool runToEnd(const std::shared_ptr<NURVTask> &task)
    {
        queue.addTask(task);
        return waitUntil([this] { return queue.taskCount() == 0; });
    }
};

using NURVInProcessTaskTest = InProcess;

/// A job that may be refused its start, and that writes down what happens.
class OrderedTask final : public NURVInProcessTask {
public:
    explicit OrderedTask(NURVTaskQueue *queue) : NURVInProcessTask(queue) {}

    std::optional<QString> refusal;
    QStringList steps; ///< read it when no thread runs any more

protected:
    std::optional<QString> reasonNotToStart() override
    {
        steps.append(QThread::currentThread() == qApp->thread() ? u"asked"_s : u"asked on a worker"_s);
        return refusal;
    }
    void doStartTask() override { steps.append(u"work"_s); }
    void afterCompletion() override { steps.append(queue()->taskCount() == 0 ? u"after the queue"_s : u"too early"_s); }
};

TEST_F(NURVInProcessTaskTest, WorksOnAThreadOfItsOwnAndLeavesTheQueue)
{
    std::atomic<bool> onGuiThread = true;
    const auto task = make([&](WorkTask &self) {
        onGuiThread = QThread::currentThread() == qApp->thread();
        self.appendResultsForSelf(u"report"_s);
    });
    ASSERT_TRUE(runToEnd(task));
    EXPECT_FALSE(onGuiThread);
    EXPECT_EQ(task->topTextField().text, u"Complete");
    EXPECT_EQ(task->results()->results(), u"report\n");
    EXPECT_EQ(ended, 1);
}

TEST_F(NURVInProcessTaskTest, CountsAsActiveAsSoonAsTheQueueStartsIt)
{
    std::atomic<bool> go = false;
    const auto task = make([&](WorkTask &) {
        while (!go)
            QThread::msleep(1);
    });
    queue.addTask(task);
    EXPECT_TRUE(task->isActive());
    go = true;
    ASSERT_TRUE(waitUntil([this] { return queue.taskCount() == 0; }));
}

TEST_F(NURVInProcessTaskTest, FailsWithTheTextOfAFailureThatLeavesItsWork)
{
    const auto task = make([](WorkTask &) { throw NurvFailure(u"Unable to open the output file for tagging."_s); });
    ASSERT_TRUE(runToEnd(task));
    EXPECT_TRUE(task->error());
    EXPECT_EQ(task->results()->results(), u"Unable to open the output file for tagging.\n");
}

TEST_F(NURVInProcessTaskTest, FailsWithTheTextOfAnyOtherException)
{
    const auto task = make([](WorkTask &) { throw std::runtime_error("no memory"); });
    ASSERT_TRUE(runToEnd(task));
    EXPECT_TRUE(task->error());
    EXPECT_EQ(task->results()->results(), u"no memory\n");
}

TEST_F(NURVInProcessTaskTest, EndsWhenItsWorkNoticesThatItIsCancelled)
{
    const auto task = make([](WorkTask &self) {
        while (!self.cancelled())
            QThread::msleep(1);
    });
    queue.addTask(task);
    ASSERT_TRUE(waitUntil([&] { return !task->progressIndicator().hidden; }));
    task->cancelTask();
    EXPECT_FALSE(task->isDone()) << "the worker decides when it is done";
    ASSERT_TRUE(waitUntil([this] { return queue.taskCount() == 0; }));
    EXPECT_EQ(task->textField().text, u"Canceled");
    EXPECT_EQ(ended, 1);
}

TEST_F(NURVInProcessTaskTest, CompletesOnceWhenCancelledTwice)
{
    const auto task = make([](WorkTask &self) {
        while (!self.cancelled())
            QThread::msleep(1);
    });
    queue.addTask(task);
    task->cancelTask();
    task->cancelTask();
    ASSERT_TRUE(waitUntil([this] { return queue.taskCount() == 0; }));
    task->cancelTask();
    EXPECT_EQ(ended, 1);
}

TEST_F(NURVInProcessTaskTest, CompletesOnceWhenCancelledTwiceWhileWaiting)
{
    queue.hold();
    std::atomic<int> runs = 0;
    const auto task = make([&](WorkTask &) { ++runs; });
    int settled = 0;
    QObject::connect(&queue, &NURVTaskQueue::taskSettled, &queue, [&settled] { ++settled; });
    queue.addTask(task);
    task->cancelTask();
    task->cancelTask();
    queue.release();
    test::handleWaitingEvents();
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(settled, 1);
    EXPECT_EQ(runs, 0);
}

TEST_F(NURVInProcessTaskTest, NeverStartsOnceCancelledWhileWaiting)
{
    std::atomic<int> runs = 0;
    const auto held = std::make_shared<test::HeldTask>(&queue);
    const auto held2 = std::make_shared<test::HeldTask>(&queue);
    const auto task = make([&](WorkTask &) { ++runs; });
    queue.addTasks({held, held2, task});
    task->cancelTask();
    EXPECT_EQ(ended, 1);
    EXPECT_TRUE(task->isDone());
    held->finish();
    held2->finish();
    test::handleWaitingEvents();
    EXPECT_EQ(runs, 0);
}

TEST_F(NURVInProcessTaskTest, AsksBeforeTheWorkAndGoesOnAfterTheQueueWasTold)
{
    const auto task = std::make_shared<OrderedTask>(&queue);
    ASSERT_TRUE(runToEnd(task));
    ASSERT_TRUE(waitUntil([] { return workerThreads::runningCount() == 0; }));
    EXPECT_EQ(task->steps, (QStringList{u"asked"_s, u"work"_s, u"after the queue"_s}));
    EXPECT_EQ(task->topTextField().text, u"Complete");
}

TEST_F(NURVInProcessTaskTest, EndsInErrorWithoutAWorkerWhenItsStartIsRefused)
{
    const auto task = std::make_shared<OrderedTask>(&queue);
    task->refusal = u"no room"_s;
    ASSERT_TRUE(runToEnd(task));
    EXPECT_EQ(task->steps, (QStringList{u"asked"_s, u"after the queue"_s}));
    EXPECT_TRUE(task->error());
    EXPECT_EQ(task->results()->results(), u"no room\n");
    EXPECT_EQ(ended, 1);
}

} // namespace
} // namespace nurv
