// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BatchWatch.h"

#include "engine/NURVTaskResults.h"
#include "engine/TestTasks.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nurv::test {

namespace {

using State = BatchWatch::State;

/// A job that a test starts, moves and ends, with an outcome.
class WatchedTask final : public NURVTask {
public:
    using NURVTask::NURVTask;

    void show(double percent)
    {
        setProgressIndicatorValue(percent);
        setProgressIndicatorValueInGui();
    }
    /// What every job does: it stops, tells the queue, and is settled at last.
    void finish(bool failed = false)
    {
        setError(failed);
        stopTask();
        reportCompletion();
    }
    void settle() { reportSettled(); }
    void cancelTask() override
    {
        setCancelled(true);
        finish();
        settle();
    }
};

class BatchWatchTest : public ::testing::Test {
protected:
    RecordingServices services;
    NURVTaskQueue queue{services};
    std::chrono::microseconds now{1};
    BatchWatch watch{queue, services, [this] { return now; }};
    TestFolder folder;

    std::shared_ptr<WatchedTask> make(const QString &source = {})
    {
        const auto task = std::make_shared<WatchedTask>(&queue);
        task->setSourcePath(source);
        return task;
    }
    std::shared_ptr<WatchedTask> add(const QString &source = {})
    {
        const auto task = make(source);
        queue.addTask(task);
        return task;
    }
    void end(const std::shared_ptr<WatchedTask> &task, bool failed = false)
    {
        task->finish(failed);
        task->settle();
    }
    [[nodiscard]] bool isOver() const
    {
        return waitUntil([this] { return watch.state() == State::Over; });
    }
    [[nodiscard]] QString file(const QString &name, int bytes) const
    {
        return folder.write(name, QByteArray(bytes, 'x'));
    }
};

} // namespace

TEST_F(BatchWatchTest, CountsTheJobsOfTheWholeQueue)
{
    EXPECT_EQ(watch.state(), State::Idle);
    const auto first = add();
    const auto second = add();
    const auto third = add();
    EXPECT_EQ(watch.state(), State::Running);
    EXPECT_EQ(watch.progress().total(), 3);
    EXPECT_EQ(watch.progress().ended(), 0);
    end(second, true);
    EXPECT_EQ(watch.progress().ended(), 1);
    EXPECT_EQ(watch.progress().failed(), 1);
    const auto later = add();
    EXPECT_EQ(watch.progress().total(), 4) << "it belongs to the same batch";
    for (const auto &task : {first, third, later})
        end(task);
    ASSERT_TRUE(isOver());
    EXPECT_EQ(watch.summary().done, 3);
    EXPECT_EQ(watch.summary().failed, 1);
}

TEST_F(BatchWatchTest, LearnsTheSizesOfTheSourcesFromTheirFiles)
{
    const auto small = add(file(u"1.wav"_s, 1000));
    const auto large = add(file(u"2.wav"_s, 9000));
    watch.flush();
    small->show(100.0);
    ASSERT_TRUE(waitUntil([this] { return std::abs(watch.progress().share() - 0.1) < 1e-9; }));
    now += 2s;
    large->show(50.0);
    EXPECT_NEAR(watch.progress().share(), 0.55, 1e-9);
    EXPECT_EQ(watch.progress().remaining(), 2s) << "half of it took two seconds";
    end(small);
    end(large);
    ASSERT_TRUE(isOver());
}

TEST_F(BatchWatchTest, LearnsASizeFromTheOutcomeWhereTheSourceIsGone)
{
    const auto first = add(folder.path(u"gone.wav"_s));
    const auto second = add(file(u"2.wav"_s, 1000));
    watch.flush();
    first->ownOutcome().sourceBytes = 3000;
    end(first);
    EXPECT_TRUE(waitUntil([this] { return std::abs(watch.progress().share() - 0.75) < 1e-9; }));
    end(second);
    ASSERT_TRUE(isOver());
}

TEST_F(BatchWatchTest, AJobIsRunningFromTheTimeThatItsRowSaysSo)
{
    // The limit is two.
    const auto first = add(file(u"1.wav"_s, 1000));
    const auto second = add(file(u"2.wav"_s, 1000));
    const auto third = add(file(u"3.wav"_s, 1000));
    watch.flush();
    now += 10s;
    end(first);
    now += 1s;
    EXPECT_EQ(watch.progress().remaining(), 9s) << "the third began when the first had ended";
    now += 4s;
    end(second);
    end(third);
    ASSERT_TRUE(isOver());
    EXPECT_EQ(watch.summary().duration, 15s);
}

TEST_F(BatchWatchTest, IsOverOnceEveryJobIsSettled)
{
    const auto task = add();
    const auto other = add();
    task->finish();
    end(other);
    handleWaitingEvents();
    EXPECT_EQ(queue.taskCount(), 0);
    EXPECT_EQ(watch.summary().done, 1);
    EXPECT_EQ(watch.state(), State::Running) << "the original of the first may still go";
    task->ownOutcome().output = folder.path(u"late.flac"_s);
    task->settle();
    ASSERT_TRUE(isOver());
    EXPECT_EQ(watch.summary().files, 1);
}

TEST_F(BatchWatchTest, WhatFollowsASetOfJobsBelongsToTheBatch)
{
    const auto results = std::make_shared<NURVTaskResults>();
    const auto task = make();
    task->setResults(results);
    results->addTaskInSet(*task);
    const auto list = make();
    results->setTaskAfterSetDone(list);
    queue.addTask(task);
    end(task);
    ASSERT_TRUE(waitUntil([this] { return watch.progress().total() == 2; }));
    EXPECT_EQ(watch.state(), State::Running);
    end(list);
    ASSERT_TRUE(isOver());
    EXPECT_EQ(watch.summary().done, 2);
}

TEST_F(BatchWatchTest, TellsOfManyChangesAtOnceAndOfTheEndWithoutDelay)
{
    int told = 0;
    QObject::connect(&watch, &BatchWatch::changed, &watch, [&] { ++told; });
    std::vector<std::shared_ptr<WatchedTask>> tasks;
    for (int i = 0; i < 200; ++i)
        tasks.push_back(add());
    for (const auto &task : tasks)
        task->finish();
    EXPECT_EQ(told, 0);
    for (const auto &task : tasks)
        task->settle();
    ASSERT_TRUE(isOver());
    EXPECT_LE(told, 30);
    EXPECT_EQ(watch.progress().ended(), 200);
}

TEST_F(BatchWatchTest, ShowsItsShareOnTheIconAndTakesItAway)
{
    const auto first = add();
    const auto second = add();
    watch.flush();
    ASSERT_EQ(services.shares, (std::vector<std::optional<double>>{0.0}));
    watch.flush();
    EXPECT_EQ(services.shares.size(), 1U) << "nothing has changed";
    first->show(50.0);
    watch.flush();
    EXPECT_EQ(services.shares.back(), 0.25);
    end(first);
    end(second);
    ASSERT_TRUE(isOver());
    EXPECT_EQ(services.shares.back(), std::nullopt);
}

TEST_F(BatchWatchTest, TakesTheShareAwayWhenTheApplicationEnds)
{
    const auto task = add();
    watch.flush();
    watch.stop();
    EXPECT_EQ(services.shares.back(), std::nullopt);
    task->show(80.0);
    watch.flush();
    EXPECT_EQ(services.shares.size(), 2U);
    queue.killAllTasks();
}

TEST_F(BatchWatchTest, KeepsTheLastReportUntilTheNextBatch)
{
    std::vector<std::pair<QString, QString>> shown;
    QObject::connect(&queue, &NURVTaskQueue::outputWindowRequested, &watch,
                     [&](const QString &text, const QString &title) { shown.emplace_back(text, title); });
    const auto task = add();
    queue.showOutputWindow(u"one"_s, u"1.wav"_s);
    queue.showOutputWindow(u"two"_s, std::nullopt);
    end(task);
    ASSERT_TRUE(isOver());
    queue.showOutputWindow(u"another row's"_s, u"old.wav"_s);
    shown.clear();
    ASSERT_TRUE(watch.hasReport());
    watch.showReport();
    EXPECT_EQ(shown, (std::vector{std::pair(u"two"_s, u"Output"_s)}));
    const auto next = add();
    EXPECT_FALSE(watch.hasReport());
    end(next);
    ASSERT_TRUE(isOver());
    EXPECT_EQ(watch.summary().done, 1) << "of the new batch only";
}

TEST_F(BatchWatchTest, CancelledJobsAreCountedAsThat)
{
    const auto first = add();
    add();
    add();
    queue.cancelAllTasks();
    ASSERT_TRUE(isOver());
    EXPECT_EQ(watch.summary().canceled, 3);
    EXPECT_EQ(watch.progress().canceled(), 3);
    EXPECT_FALSE(watch.hasReport());
}

TEST_F(BatchWatchTest, TwentyThousandJobsWithAListenerToEachEvent)
{
    std::vector<std::shared_ptr<NURVTask>> tasks;
    for (int i = 0; i < 20'000; ++i)
        tasks.push_back(make(folder.path(u"%1.wav"_s.arg(i))));
    queue.addTasks(tasks);
    EXPECT_EQ(watch.progress().total(), 20'000);
    watch.flush();
    queue.cancelAllTasks();
    ASSERT_TRUE(isOver());
    EXPECT_EQ(watch.summary().canceled, 20'000);
}

TEST_F(BatchWatchTest, GoesWhileItsWorkerLooksAtFiles)
{
    auto other = std::make_unique<BatchWatch>(queue, services);
    for (int i = 0; i < 2000; ++i)
        add(folder.path(u"%1.wav"_s.arg(i)));
    other->flush();
    other.reset();
    queue.cancelAllTasks();
    ASSERT_TRUE(isOver());
}

} // namespace nurv::test
