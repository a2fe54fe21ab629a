// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/GuiThread.h"

#include "base/WorkerThreads.h"
#include "support/WaitUntil.h"

#include <QElapsedTimer>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace nurv {
namespace {

using test::waitUntil;
using namespace std::chrono_literals;

struct GuiThread : ::testing::Test {
    void TearDown() override { guiThreadGate::open(); }
};

TEST_F(GuiThread, RunsInlineOnItself)
{
    bool hasRun = false;
    EXPECT_EQ(runOnGuiThread([&] { hasRun = true; }), HandOver::Done);
    EXPECT_TRUE(hasRun);
}

TEST_F(GuiThread, RunsTheWorkOfAWorkerBeforeTheWorkerGoesOn)
{
    std::atomic<bool> wasRunWhenReturned = false;
    std::atomic<bool> onGuiThread = false;
    std::atomic<bool> isDone = false;
    std::thread worker([&] {
        bool hasRun = false;
        const HandOver result = runOnGuiThread([&] {
            hasRun = true;
            onGuiThread = isGuiThread();
        });
        wasRunWhenReturned = result == HandOver::Done && hasRun;
        isDone = true;
    });
    ASSERT_TRUE(waitUntil([&] { return isDone.load(); }));
    worker.join();
    EXPECT_TRUE(wasRunWhenReturned);
    EXPECT_TRUE(onGuiThread);
}

TEST_F(GuiThread, KeepsTheOrderOfRequestsOfOneThread)
{
    std::vector<int> order;
    std::atomic<bool> isDone = false;
    std::thread worker([&] {
        for (int i = 0; i < 100; i += 2) {
            postToGuiThread([&order, i] { order.push_back(i); });
            showOnGuiThread([&order, i] { order.push_back(i + 1); });
        }
        isDone = true;
    });
    ASSERT_TRUE(waitUntil([&] { return isDone.load(); }));
    worker.join();
    ASSERT_EQ(order.size(), 100U);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST_F(GuiThread, PostsWithoutRunningAtOnce)
{
    bool hasRun = false;
    postToGuiThread([&] { hasRun = true; });
    EXPECT_FALSE(hasRun);
    EXPECT_TRUE(waitUntil([&] { return hasRun; }));
}

TEST_F(GuiThread, MayAskAgainFromInsideAPostedWork)
{
    int depth = 0;
    postToGuiThread([&] {
        ++depth;
        showOnGuiThread([&] { ++depth; });
        postToGuiThread([&] { ++depth; });
    });
    EXPECT_TRUE(waitUntil([&] { return depth == 3; }));
}

TEST_F(GuiThread, WakesEveryWaiterWhenTheGateCloses)
{
    std::atomic<int> refused = 0;
    std::atomic<int> asking = 0;
    std::vector<std::thread> workers;
    for (int i = 0; i < 8; ++i) {
        workers.emplace_back([&] {
            ++asking;
            if (runOnGuiThread([] {}) == HandOver::Refused)
                ++refused;
        });
    }
    while (asking < 8)
        QThread::msleep(1);
    guiThreadGate::close(); // no event loop has run: all of them wait, or have yet to ask
    for (std::thread &worker : workers)
        worker.join();
    EXPECT_EQ(refused, 8);
    EXPECT_EQ(runOnGuiThread([] {}), HandOver::Done) << "the GUI thread itself needs no gate";
}

TEST_F(GuiThread, WakesTheWorkerWhoseWorkThrew)
{
    std::atomic<bool> hasReturned = false;
    HandOver result = HandOver::Done;
    std::thread worker([&] {
        result = runOnGuiThread([] { throw std::runtime_error("planted"); });
        hasReturned = true;
    });
    EXPECT_TRUE(waitUntil([&] { return hasReturned.load(); }));
    worker.join();
    EXPECT_EQ(result, HandOver::Failed) << "it was not refused";
}

TEST_F(GuiThread, DropsPostedWorkWhenTheGateCloses)
{
    bool hasRun = false;
    postToGuiThread([&] { hasRun = true; });
    guiThreadGate::close();
    guiThreadGate::open();
    test::handleWaitingEvents();
    EXPECT_FALSE(hasRun);
}

TEST(WorkerThreads, AreWaitedForUpToALimit)
{
    std::atomic<bool> go = false;
    workerThreads::start([&] {
        while (!go)
            QThread::msleep(1);
    });
    EXPECT_EQ(workerThreads::runningCount(), 1);
    EXPECT_FALSE(workerThreads::waitForAll(20ms));
    go = true;
    EXPECT_TRUE(workerThreads::waitForAll(10s));
    EXPECT_EQ(workerThreads::runningCount(), 0);
}

TEST(WorkerThreads, DropWhatTheirWorkOwnsBeforeTheyCountAsEnded)
{
    const auto owned = std::make_shared<int>(1);
    workerThreads::start([owned] {});
    ASSERT_TRUE(workerThreads::waitForAll(10s));
    EXPECT_EQ(owned.use_count(), 1);
}

TEST(WorkerThreads, DoNotKeepTheGuiThreadWaitingAtTheEnd)
{
    // The order in which an application quits: close the gate, then join.
    for (int i = 0; i < 20; ++i) {
        workerThreads::start([] {
            while (runOnGuiThread([] {}) == HandOver::Done)
                QThread::yieldCurrentThread();
        });
    }
    test::handleWaitingEvents();
    guiThreadGate::close();
    EXPECT_TRUE(workerThreads::waitForAll(5s));
    guiThreadGate::open();
}

} // namespace
} // namespace nurv
