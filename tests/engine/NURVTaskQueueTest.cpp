// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVTaskQueue.h"

#include "base/NotificationCenter.h"
#include "engine/NURVTaskResults.h"
#include "engine/TestTasks.h"
#include "settings/SettingsStore.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using test::HeldTask;
using test::waitUntil;

struct Queue : ::testing::Test {
    test::RecordingServices services;
    std::unique_ptr<NURVTaskQueue> queue;
    std::vector<std::shared_ptr<HeldTask>> tasks;
    QStringList windows;
    int panelCloses = 0;

    void SetUp() override
    {
        SettingsStore::instance().setValue(u"maxThreads"_s, 2);
        makeQueue();
    }
    void makeQueue()
    {
        queue = std::make_unique<NURVTaskQueue>(services);
        QObject::connect(queue.get(), &NURVTaskQueue::outputWindowRequested, queue.get(),
                         [this](const QString &text, const QString &title) { windows.append(title + u'|' + text); });
        QObject::connect(queue.get(), &NURVTaskQueue::panelCloseRequested, queue.get(), [this] { ++panelCloses; });
    }
    void add(int count)
    {
        for (int i = 0; i < count; ++i) {
            tasks.push_back(std::make_shared<HeldTask>(queue.get()));
            tasks.back()->setTitle(QString::number(tasks.size()));
            tasks.back()->setResults(nullptr);
            queue->addTask(tasks.back());
        }
    }
    [[nodiscard]] QString started() const
    {
        QString numbers;
        for (const auto &task : tasks) {
            if (task->starts > 0)
                numbers += task->title();
        }
        return numbers;
    }
    static void announceLimit(int limit)
    {
        NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), limit);
    }
};

using NURVTaskQueueTest = Queue;

TEST_F(NURVTaskQueueTest, StartsTwoOfFiveAndThenTheNextInListOrder)
{
    add(5);
    EXPECT_EQ(started(), u"12");
    EXPECT_EQ(tasks[2]->topTextField().text, u"Waiting...");
    tasks[1]->finish();
    EXPECT_EQ(started(), u"123");
    tasks[0]->finish();
    EXPECT_EQ(started(), u"1234");
    tasks[2]->finish();
    EXPECT_EQ(started(), u"12345");
    EXPECT_EQ(queue->activeTask(), 2);
}

TEST_F(NURVTaskQueueTest, TakesItsLimitFromTheSetting)
{
    SettingsStore::instance().setValue(u"maxThreads"_s, 3);
    makeQueue();
    add(5);
    EXPECT_EQ(started(), u"123");
}

TEST_F(NURVTaskQueueTest, RunsNoMoreThan256JobsWhateverTheSetting)
{
    SettingsStore::instance().setValue(u"maxThreads"_s, 100000);
    makeQueue();
    EXPECT_EQ(queue->maxThreads(), 256);
}

TEST_F(NURVTaskQueueTest, RunsOneJobWhenTheSettingIsUnusable)
{
    SettingsStore::instance().setValue(u"maxThreads"_s, 0);
    makeQueue();
    add(2);
    EXPECT_EQ(started(), u"1");
}

TEST_F(NURVTaskQueueTest, AppliesARaisedLimitAtTheNextCompletion)
{
    add(8);
    announceLimit(4);
    EXPECT_EQ(started(), u"12") << "no job at once";
    tasks[0]->finish();
    EXPECT_EQ(started(), u"12345");
    EXPECT_EQ(queue->activeTask(), 4);
}

TEST_F(NURVTaskQueueTest, LeavesRunningJobsAloneWhenTheLimitFalls)
{
    add(4);
    announceLimit(1);
    tasks[0]->finish();
    EXPECT_EQ(started(), u"12");
    tasks[1]->finish();
    EXPECT_EQ(started(), u"123");
}

TEST_F(NURVTaskQueueTest, KeepsTheRowOfAFailedJobAndGivesNoNotice)
{
    add(3);
    tasks[0]->finish();
    tasks[1]->finish(true);
    EXPECT_EQ(queue->panelArray().size(), 3U) << "rows stay until nothing runs";
    tasks[2]->finish();
    ASSERT_EQ(queue->panelArray().size(), 1U);
    EXPECT_EQ(queue->panelArray().front(), tasks[1]);
    EXPECT_EQ(queue->rowOf(*tasks[1]), 0);
    EXPECT_EQ(queue->rowOf(*tasks[0]), -1);
    EXPECT_TRUE(tasks[0]->isHidden());
    EXPECT_FALSE(tasks[1]->isHidden());
    EXPECT_EQ(panelCloses, 0);
    EXPECT_TRUE(services.notifications.isEmpty());
    EXPECT_EQ(services.badges.back(), 0);
}

TEST_F(NURVTaskQueueTest, ClosesThePanelAndGivesNoticeWhenNothingFailed)
{
    add(2);
    tasks[0]->finish();
    EXPECT_TRUE(services.notifications.isEmpty());
    tasks[1]->finish();
    EXPECT_EQ(services.notifications, QStringList{u"Nurv task(s) completed"_s});
    EXPECT_EQ(services.attentionRequests, 0);
    EXPECT_EQ(panelCloses, 1);
    EXPECT_TRUE(queue->panelArray().empty());
}

TEST_F(NURVTaskQueueTest, AsksForAttentionWhereThereAreNoNotifications)
{
    services.hasNotifications = false;
    add(1);
    tasks[0]->finish();
    EXPECT_EQ(services.attentionRequests, 1);
}

TEST_F(NURVTaskQueueTest, CountsDownAlsoForAJobCancelledWhileItWaited)
{
    add(5);
    tasks[4]->cancelTask();
    EXPECT_EQ(started(), u"123") << "one more than the limit";
    EXPECT_EQ(queue->activeTask(), 2);
    tasks[3]->cancelTask();
    EXPECT_EQ(queue->activeTask(), 1) << "three run";
}

TEST_F(NURVTaskQueueTest, SweepsWhileJobsRunWhenTheCountHasFallenToZero)
{
    add(4);
    tasks[3]->cancelTask();
    EXPECT_EQ(started(), u"123");
    tasks[0]->finish();
    EXPECT_EQ(queue->activeTask(), 1);
    tasks[1]->finish();
    EXPECT_EQ(queue->activeTask(), 0);
    EXPECT_EQ(queue->taskCount(), 1) << "one still runs";
    EXPECT_TRUE(queue->panelArray().empty());
    EXPECT_EQ(services.notifications.size(), 1);
    tasks[2]->finish();
    EXPECT_EQ(queue->activeTask(), 0) << "an empty queue counts from zero again";
}

TEST_F(NURVTaskQueueTest, ShowsOnItsBadgeHowManyJobsHaveNotCompleted)
{
    add(3);
    EXPECT_EQ(services.badges, (std::vector<int>{1, 2, 3}));
    tasks[0]->finish(true);
    EXPECT_EQ(services.badges.back(), 2);
    tasks[1]->finish();
    tasks[2]->finish();
    EXPECT_EQ(services.badges.back(), 0);
}

TEST_F(NURVTaskQueueTest, RemovesFailedRowsOnCommand)
{
    add(2);
    tasks[0]->finish(true);
    queue->removeAllErrors();
    EXPECT_EQ(queue->panelArray().size(), 1U);
    EXPECT_TRUE(tasks[0]->isHidden());
    EXPECT_EQ(panelCloses, 0) << "a job still runs";
    tasks[1]->finish(true);
    queue->removeAllErrors();
    EXPECT_TRUE(queue->panelArray().empty());
    EXPECT_EQ(panelCloses, 1);
}

TEST_F(NURVTaskQueueTest, CancelsEveryJobWithoutStartingAnother)
{
    add(6);
    queue->cancelAllTasks();
    EXPECT_EQ(started(), u"12");
    for (const auto &task : tasks)
        EXPECT_TRUE(task->cancelled());
    EXPECT_EQ(queue->taskCount(), 2) << "running jobs end by themselves";
    tasks[0]->finish();
    tasks[1]->finish();
    EXPECT_EQ(started(), u"12");
    EXPECT_EQ(queue->taskCount(), 0);
    EXPECT_EQ(queue->activeTask(), 0);
}

TEST_F(NURVTaskQueueTest, KeepsToItsLimitInABatchAddedAfterCancelAll)
{
    add(100);
    queue->cancelAllTasks();
    EXPECT_EQ(queue->activeTask(), 2) << "the two that run to their end";
    EXPECT_TRUE(services.notifications.isEmpty());
    EXPECT_EQ(panelCloses, 0);
    EXPECT_GE(queue->rowOf(*tasks[0]), 0) << "a job that runs keeps its row";
    tasks.clear();
    add(10);
    EXPECT_EQ(started(), QString()) << "no place is free";
    for (int i = 0; i < 2; ++i)
        std::static_pointer_cast<HeldTask>(queue->panelArray()[static_cast<std::size_t>(i)])->finish();
    EXPECT_EQ(started(), u"12");
}

TEST_F(NURVTaskQueueTest, EndsTheRunWhenEveryCancelledJobWasWaiting)
{
    add(3);
    for (const int i : {0, 1})
        tasks[static_cast<std::size_t>(i)]->stopTask(); // ended, the queue not told yet
    queue->cancelAllTasks();
    EXPECT_EQ(tasks[2]->starts, 0);
    EXPECT_EQ(queue->taskCount(), 0);
    EXPECT_EQ(queue->activeTask(), 0);
    EXPECT_TRUE(queue->panelArray().empty());
    EXPECT_EQ(services.notifications.size(), 1);
}

TEST_F(NURVTaskQueueTest, KeepsAFailedJobThatWasAlsoCancelledAfterTheSweep)
{
    add(2);
    tasks[0]->setCancelled(true);
    tasks[0]->finish(true);
    tasks[1]->setCancelled(true);
    tasks[1]->finish();
    ASSERT_EQ(queue->panelArray().size(), 1U);
    EXPECT_EQ(queue->panelArray().front(), tasks[0]);
}

TEST_F(NURVTaskQueueTest, ForgetsTheSleepStepAlsoWhenTheReleaseFails)
{
    add(1);
    services.failsToRelease = true;
    tasks[0]->finish();
    EXPECT_FALSE(queue->noSleep());
    EXPECT_EQ(queue->activeTask(), 0);
}

TEST_F(NURVTaskQueueTest, CallsTheWindowOfAJobWithoutTitleOutput)
{
    const auto task = std::make_shared<HeldTask>(queue.get());
    queue->addTask(task);
    task->write(u"text"_s);
    task->finish();
    EXPECT_EQ(windows, QStringList{u"Output|text\n"_s});
}

TEST_F(NURVTaskQueueTest, OpensOneWindowWhenTwoMembersSeeTheSetDone)
{
    const auto set = std::make_shared<NURVTaskResults>();
    add(2);
    for (const auto &task : tasks) {
        task->setResults(set);
        set->addTaskInSet(*task);
        task->stopTask();
    }
    for (const auto &task : tasks)
        queue->taskCompleted(task);
    EXPECT_EQ(windows.size(), 1);
}

TEST_F(NURVTaskQueueTest, IgnoresACompletionThatItHasHadAlready)
{
    add(3);
    tasks[0]->finish();
    queue->taskCompleted(tasks[0]);
    EXPECT_EQ(queue->activeTask(), 2);
}

TEST_F(NURVTaskQueueTest, BringsThePanelToTheFrontForEveryAddedAndEveryStartedJob)
{
    int requests = 0;
    QObject::connect(queue.get(), &NURVTaskQueue::panelRequested, queue.get(), [&] { ++requests; });
    add(3);
    EXPECT_EQ(requests, 3);
    tasks[0]->finish();
    EXPECT_EQ(requests, 4);
}

TEST_F(NURVTaskQueueTest, RunsTwentyThousandJobsOfOneSet)
{
    const auto set = std::make_shared<NURVTaskResults>();
    add(20000);
    for (const auto &task : tasks) {
        task->setResults(set);
        set->addTaskInSet(*task);
    }
    for (const auto &task : tasks)
        task->finish();
    EXPECT_TRUE(set->taskSetDone());
    EXPECT_EQ(windows.size(), 1);
}

TEST_F(NURVTaskQueueTest, StartsJobsAgainAfterAllWereCancelled)
{
    add(3);
    int resets = 0;
    QObject::connect(queue.get(), &NURVTaskQueue::rowsReset, queue.get(), [&] { ++resets; });
    queue->killAllTasks();
    EXPECT_EQ(resets, 1);
    tasks[0]->finish();
    tasks[1]->finish();
    add(2);
    EXPECT_EQ(tasks[3]->starts, 1);
    EXPECT_EQ(tasks[4]->starts, 1);
}

TEST_F(NURVTaskQueueTest, TakesTheSleepStepOncePerRun)
{
    add(3);
    EXPECT_EQ(services.assertionReasons, QStringList{u"Nurv task running"_s});
    EXPECT_EQ(services.released, std::vector<std::uint32_t>{7}) << "given back at once";
    EXPECT_TRUE(queue->noSleep());
    for (const auto &task : tasks)
        task->finish();
    EXPECT_FALSE(queue->noSleep());
    EXPECT_EQ(services.released.back(), 7U);
    add(1);
    EXPECT_EQ(services.assertionReasons.size(), 2);
}

TEST_F(NURVTaskQueueTest, TriesTheSleepStepAgainWhenItFailed)
{
    services.assertion.reset();
    add(2);
    EXPECT_EQ(services.assertionReasons.size(), 2);
    EXPECT_FALSE(queue->noSleep());
}

TEST_F(NURVTaskQueueTest, OpensTheOutputWindowOfABatchThatIsDone)
{
    const auto set = std::make_shared<NURVTaskResults>();
    add(2);
    for (const auto &task : tasks) {
        task->setResults(set);
        set->addTaskInSet(*task);
    }
    tasks[1]->write(u"second"_s);
    tasks[1]->finish();
    EXPECT_TRUE(windows.isEmpty());
    tasks[0]->write(u"first"_s);
    tasks[0]->finish();
    EXPECT_EQ(windows, QStringList{u"1|first\nsecond\n"_s});
}

TEST_F(NURVTaskQueueTest, LetsEveryListenerAddAJob)
{
    const auto addOneFrom = [this](auto signal) {
        auto done = std::make_shared<bool>(false);
        QObject::connect(queue.get(), signal, queue.get(), [this, done] {
            if (!std::exchange(*done, true))
                add(1);
        });
    };
    addOneFrom(&NURVTaskQueue::panelRequested);
    addOneFrom(&NURVTaskQueue::rowAppended);
    addOneFrom(&NURVTaskQueue::rowChanged);
    addOneFrom(&NURVTaskQueue::taskCountChanged);
    addOneFrom(&NURVTaskQueue::scrollRequested);
    addOneFrom(&NURVTaskQueue::taskEnded);
    QList<int> rows;
    QObject::connect(queue.get(), &NURVTaskQueue::rowAppended, queue.get(), [&rows](int row) { rows.append(row); });
    add(1);
    EXPECT_EQ(tasks.size(), 5U);
    tasks[0]->finish();
    EXPECT_EQ(tasks.size(), 7U);
    EXPECT_EQ(queue->taskCount(), 6);
    EXPECT_EQ(queue->activeTask(), 2);
    std::ranges::sort(rows);
    EXPECT_EQ(rows, (QList<int>{0, 1, 2, 3, 4, 5, 6})) << "each is told of once";
}

TEST_F(NURVTaskQueueTest, TellsTheDesktopWhenItsListsMayChange)
{
    // As a bus does that is waited for: events are handled meanwhile.
    services.whenAsked = [this] {
        if (tasks.size() < 3)
            add(1);
    };
    add(1);
    EXPECT_EQ(tasks.size(), 3U);
    EXPECT_EQ(queue->taskCount(), 3);
}

TEST_F(NURVTaskQueueTest, KeepsAJobThatIsAddedDuringASweep)
{
    add(2);
    QObject::connect(queue.get(), &NURVTaskQueue::rowsReset, queue.get(), [this] {
        if (tasks.size() == 2)
            add(1);
    });
    tasks[0]->finish();
    tasks[1]->finish();
    EXPECT_EQ(tasks.size(), 3U);
    EXPECT_EQ(queue->panelArray().size(), 1U);
    EXPECT_EQ(queue->rowOf(*tasks[2]), 0);
    EXPECT_EQ(started(), u"123");
}

TEST_F(NURVTaskQueueTest, StartsAJobThatIsAddedWhileAllAreCancelled)
{
    announceLimit(1);
    add(2);
    QObject::connect(queue.get(), &NURVTaskQueue::taskEnded, queue.get(), [this] {
        if (tasks.size() == 2)
            add(1);
    });
    queue->cancelAllTasks();
    ASSERT_EQ(tasks.size(), 3U);
    for (const auto &task : {tasks[0], tasks[1]}) {
        if (!task->isDone())
            task->finish();
    }
    EXPECT_EQ(tasks[2]->starts, 1);
    EXPECT_EQ(queue->activeTask(), 1);
}

TEST_F(NURVTaskQueueTest, StartsNothingWhileItIsHeld)
{
    queue->hold();
    add(3);
    EXPECT_EQ(started(), QString());
    EXPECT_EQ(queue->activeTask(), 0);
    queue->release();
    EXPECT_EQ(started(), u"12");
    queue->hold();
    tasks[0]->finish();
    EXPECT_EQ(started(), u"12");
    EXPECT_EQ(panelCloses, 0);
    queue->release();
    EXPECT_EQ(started(), u"123");
    EXPECT_EQ(queue->activeTask(), 2);
}

TEST_F(NURVTaskQueueTest, CallsAWindowWithoutTitleOutput)
{
    queue->showOutputWindow(u"text"_s, std::nullopt);
    queue->showOutputWindow(u"text"_s, u"Mine"_s);
    EXPECT_EQ(windows, (QStringList{u"Output|text"_s, u"Mine|text"_s}));
}

TEST_F(NURVTaskQueueTest, ScrollsToTheLastJobThatWasStarted)
{
    std::vector<int> scrolls;
    QObject::connect(queue.get(), &NURVTaskQueue::scrollRequested, queue.get(), [&](int row) { scrolls.push_back(row); });
    add(4);
    EXPECT_EQ(queue->lowestActivePosition(), 1);
    tasks[1]->finish();
    EXPECT_EQ(scrolls, std::vector<int>{2});
    for (const int i : {0, 2, 3})
        tasks[static_cast<std::size_t>(i)]->finish();
    EXPECT_EQ(queue->lowestActivePosition(), 0);
}

TEST_F(NURVTaskQueueTest, SignalsTheRowThatHasToBePainted)
{
    std::vector<int> rows;
    add(3);
    QObject::connect(queue.get(), &NURVTaskQueue::rowChanged, queue.get(), [&](int row) { rows.push_back(row); });
    tasks[1]->setTopTextFieldString(u"x"_s);
    tasks[1]->updateStatus();
    EXPECT_EQ(rows, std::vector<int>{1});
}

TEST_F(NURVTaskQueueTest, SurvivesAnExceptionWhileAJobCompletes)
{
    add(1);
    const auto results = std::make_shared<NURVTaskResults>();
    results->addTaskInSet(*tasks[0]);
    results->appendResults(u"said"_s);
    tasks[0]->setResults(results);
    int scrolls = 0;
    QObject::connect(queue.get(), &NURVTaskQueue::scrollRequested, queue.get(), [&scrolls] { ++scrolls; });
    services.failsToSetBadge = true;
    tasks[0]->finish();
    services.failsToSetBadge = false;
    EXPECT_EQ(windows, QStringList{u"1|said\n"_s}) << "its report is shown all the same";
    EXPECT_EQ(scrolls, 1);
    EXPECT_TRUE(queue->panelArray().empty());
    EXPECT_EQ(queue->taskCount(), 0);
    EXPECT_EQ(queue->activeTask(), 0);
    EXPECT_FALSE(queue->noSleep());
    add(1);
    EXPECT_EQ(tasks[1]->starts, 1) << "the lock has been released";
}

TEST_F(NURVTaskQueueTest, RunsTwentyThousandJobsInOrder)
{
    add(20000);
    EXPECT_EQ(queue->taskCount(), 20000);
    for (const auto &task : tasks) {
        ASSERT_EQ(task->starts, 1);
        task->finish();
    }
    EXPECT_EQ(queue->taskCount(), 0);
    EXPECT_TRUE(queue->panelArray().empty());
}

} // namespace
} // namespace nurv
