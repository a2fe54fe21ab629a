// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVTask.h"

#include "engine/TestTasks.h"
#include "support/LogLines.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using test::HeldTask;
using test::waitUntil;

std::shared_ptr<HeldTask> makeTask(const QString &title = u"a.wav"_s)
{
    auto task = std::make_shared<HeldTask>(nullptr);
    task->setTitle(title);
    return task;
}

TEST(NURVTask, WaitsWithTheBarAndTheCancelButtonHidden)
{
    const auto task = makeTask();
    EXPECT_FALSE(task->isActive());
    EXPECT_FALSE(task->isDone());
    EXPECT_EQ(task->topTextField().text, u"Waiting...");
    EXPECT_EQ(task->topTextField().font.pointSize, 9);
    EXPECT_FALSE(task->topTextField().font.bold);
    EXPECT_EQ(task->textField().font.pointSize, 12);
    EXPECT_TRUE(task->textField().font.bold);
    EXPECT_TRUE(task->progressIndicator().hidden);
    EXPECT_FALSE(task->progressIndicator().indeterminate);
    EXPECT_TRUE(task->cancelButton().hidden);
    EXPECT_EQ(task->cancelButton().toolTip, u"Cancel");
}

TEST(NURVTask, ShowsItsTitleTheBarAndTheCancelButtonWhenItStarts)
{
    const auto task = makeTask();
    task->startTask();
    EXPECT_TRUE(task->isActive());
    EXPECT_FALSE(task->isDone());
    EXPECT_EQ(task->textField().text, u"a.wav");
    EXPECT_FALSE(task->progressIndicator().hidden);
    EXPECT_FALSE(task->cancelButton().hidden);
}

TEST(NURVTask, KeepsTheBarWithinItsEndsWhateverItsProgress)
{
    const auto task = makeTask();
    task->startTask();
    for (const auto &[progress, shown] : {std::pair{-1.0, 0.0}, std::pair{45.0, 45.0}, std::pair{1045.0, 100.0}}) {
        task->setProgressIndicatorValue(progress);
        task->updateStatus();
        EXPECT_EQ(task->progressIndicatorValue(), progress);
        EXPECT_EQ(task->progressIndicator().value, shown);
    }
}

TEST(NURVTask, TurnsGreenWhenComplete)
{
    const auto task = makeTask();
    task->startTask();
    task->stopTask();
    EXPECT_EQ(task->topTextField().text, u"Complete");
    EXPECT_EQ(task->textField().text, u"a.wav");
    EXPECT_EQ(task->textField().color, RowColor::DarkGreen);
    EXPECT_TRUE(task->progressIndicator().hidden);
    EXPECT_TRUE(task->cancelButton().hidden);
    EXPECT_TRUE(task->isDone());
    EXPECT_FALSE(task->isActive());
}

TEST(NURVTask, TurnsRedAndIsLoggedWhenItFailed)
{
    const test::LogLines log;
    const auto task = makeTask();
    task->startTask();
    task->setError(true);
    task->stopTask();

    EXPECT_EQ(task->topTextField().text, u"Error");
    EXPECT_EQ(task->textField().text, u"a.wav");
    EXPECT_EQ(task->textField().color, RowColor::SystemRed);
    EXPECT_FALSE(task->progressIndicator().hidden);
    EXPECT_FALSE(task->progressIndicator().animated);
    EXPECT_TRUE(task->cancelButton().hidden);
    EXPECT_EQ(log.with(QString()), QStringList{u"a.wav Error"_s});
}

TEST(NURVTask, SaysCanceledAndLeavesTheStatusLineAndTheBar)
{
    const auto task = makeTask();
    task->startTask();
    task->setTopTextFieldString(u"half way"_s);
    task->setProgressIndicatorValue(50.0);
    task->updateStatus();
    task->setCancelled(true);
    task->stopTask();
    EXPECT_EQ(task->textField().text, u"Canceled");
    EXPECT_EQ(task->textField().color, RowColor::SystemRed);
    EXPECT_EQ(task->topTextField().text, u"half way");
    EXPECT_FALSE(task->progressIndicator().hidden);
    EXPECT_TRUE(task->cancelButton().hidden);
}

TEST(NURVTask, ShowsAsCancelledWhenItAlsoFailed)
{
    const auto task = makeTask();
    task->startTask();
    task->setError(true);
    task->setCancelled(true);
    task->stopTask();
    EXPECT_EQ(task->textField().text, u"Canceled");
    EXPECT_NE(task->topTextField().text, u"Error");
}

TEST(NURVTask, GoesStraightToCancelledWhileItWaits)
{
    const auto task = std::make_shared<NURVTask>(nullptr);
    task->cancelTask();
    EXPECT_TRUE(task->isDone());
    EXPECT_EQ(task->textField().text, u"Canceled");
    EXPECT_EQ(task->topTextField().text, u"Waiting...");
    EXPECT_TRUE(task->results()->taskSetDone());
}

TEST(NURVTask, CancelsThroughItsButton)
{
    const auto task = std::make_shared<NURVTask>(nullptr);
    task->cancelButton().action();
    EXPECT_TRUE(task->cancelled());
}

TEST(NURVTask, FinishesASetOfItsOwn)
{
    const auto task = makeTask();
    EXPECT_EQ(task->results()->memberCount(), 1);
    task->write(u"report"_s);
    task->stopTask();
    EXPECT_TRUE(task->results()->taskSetDone());
    EXPECT_EQ(task->results()->results(), u"report\n");
}

TEST(NURVTask, WritesNothingOnceItsSetIsDropped)
{
    const auto task = makeTask();
    task->setResults(nullptr);
    task->write(u"lost"_s);
    task->stopTask();
    EXPECT_EQ(task->results(), nullptr);
    EXPECT_EQ(task->topTextField().text, u"Complete");
}

TEST(NURVTask, PaintsFromAWorkerBeforeTheWorkerGoesOn)
{
    const auto task = makeTask();
    std::atomic<bool> isPainted = false;
    std::thread worker([&] {
        task->setTopTextFieldString(u"from a worker"_s);
        task->setProgressIndicatorValue(42.0);
        task->updateStatus();
        isPainted = task->topTextField().text == u"from a worker";
    });
    ASSERT_TRUE(waitUntil([&] { return isPainted.load(); }));
    worker.join();
    EXPECT_EQ(task->progressIndicator().value, 42.0);
}

TEST(NURVTask, ShowsEachFieldByItself)
{
    const auto task = makeTask();
    task->setTopTextFieldString(u"status"_s);
    task->setTextFieldString(u"main"_s);
    task->setProgressIndicatorValue(3.5);
    task->setTopTextFieldValue();
    EXPECT_EQ(task->topTextField().text, u"status");
    EXPECT_EQ(task->textField().text, QString());
    EXPECT_EQ(task->progressIndicator().value, 0.0);
    task->setTextFieldValue();
    EXPECT_EQ(task->textField().text, u"main");
    task->setProgressIndicatorValueInGui();
    EXPECT_EQ(task->progressIndicator().value, 3.5);
    task->startIndeterminateProgressBar();
    EXPECT_TRUE(task->progressIndicator().indeterminate);
}

struct FollowUp : ::testing::Test {
    test::RecordingServices services;
    NURVTaskQueue queue{services};
    std::shared_ptr<NURVTaskResults> set = std::make_shared<NURVTaskResults>();
    std::shared_ptr<HeldTask> first = std::make_shared<HeldTask>(&queue);
    std::shared_ptr<HeldTask> second = std::make_shared<HeldTask>(&queue);
    std::shared_ptr<HeldTask> next = std::make_shared<HeldTask>(&queue);

    void SetUp() override
    {
        for (const auto &task : {first, second}) {
            task->setResults(set);
            set->addTaskInSet(*task);
        }
        set->setTaskAfterSetDone(next);
        queue.addTasks({first, second});
    }
};

TEST_F(FollowUp, IsQueuedByTheLastMemberToStop)
{
    second->finish();
    test::handleWaitingEvents();
    EXPECT_EQ(next->starts, 0);
    EXPECT_FALSE(set->taskSetDone());
    first->finish();
    EXPECT_TRUE(set->taskSetDone());
    ASSERT_TRUE(waitUntil([this] { return next->starts == 1; }));
    test::handleWaitingEvents();
    EXPECT_EQ(next->starts, 1);
    next->finish();
}

TEST_F(FollowUp, IsQueuedAlsoWhenAMemberFailed)
{
    first->finish(true);
    second->finish();
    EXPECT_TRUE(waitUntil([this] { return next->starts == 1; }));
    next->finish();
}

TEST_F(FollowUp, IsNotQueuedAfterCancelAll)
{
    queue.cancelAllTasks();
    first->finish();
    second->finish();
    test::handleWaitingEvents();
    EXPECT_EQ(next->starts, 0);
    EXPECT_EQ(queue.taskCount(), 0);
}

TEST_F(FollowUp, IsNotQueuedWhenItRunsAlready)
{
    next->startTask();
    first->finish();
    second->finish();
    test::handleWaitingEvents();
    EXPECT_EQ(next->starts, 1);
    EXPECT_EQ(queue.taskCount(), 0);
}

TEST_F(FollowUp, IsNotQueuedWhenItIsDoneAlready)
{
    next->stopTask();
    first->finish();
    second->finish();
    test::handleWaitingEvents();
    EXPECT_EQ(next->starts, 0);
    EXPECT_EQ(queue.taskCount(), 0);
}

} // namespace
} // namespace nurv
