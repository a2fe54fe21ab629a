// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ApplicationShutdown.h"

#include "app/TestApplication.h"
#include "base/GuiThread.h"
#include "base/NotificationCenter.h"
#include "base/WorkerThreads.h"
#include "engine/NURVAsyncNSTask.h"
#include "engine/NURVInProcessTask.h"
#include "engine/NURVTaskQueue.h"
#include "process/ChildProcess.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <functional>
#include <thread>

#include <sys/wait.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nurv {

namespace {

class FunctionTask final : public NURVInProcessTask {
public:
    FunctionTask(NURVTaskQueue *queue, std::function<void(FunctionTask &)> work)
        : NURVInProcessTask(queue), m_work(std::move(work))
    {
    }

    void showProgress() { updateStatus(); }

protected:
    void doStartTask() override { m_work(*this); }

private:
    std::function<void(FunctionTask &)> m_work;
};

class ApplicationShutdown : public ::testing::Test {
protected:
    ApplicationShutdown() : m_jobs(u"maxThreads"_s, 4), application(QStringList()) {}
    ~ApplicationShutdown() override
    {
        guiThreadGate::open();
        children::terminateAll(0ms, false);
    }

    NURVTaskQueue &queue() { return application.controller.taskQueue(); }

    std::shared_ptr<NURVTask> addShell(const QString &script)
    {
        auto task = std::make_shared<NURVAsyncNSTask>(&queue(), u"/bin/sh"_s, QStringList{u"-c"_s, script});
        queue().addTask(task);
        return task;
    }

    [[nodiscard]] bool waitForFile(const QString &name) const
    {
        return test::waitUntil([&] { return folder.exists(name); });
    }

private:
    test::SettingForTest m_jobs;

protected:
    test::TestApplication application;
    test::TestFolder folder;
};

/// The programs of these tests would run for a minute.
constexpr qint64 kFarFromTheProgramsEndMs = 30'000;

// What the kernel says: no child is left, neither running nor unreaped.
bool hasNoChild()
{
    return ::waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
}

} // namespace

TEST_F(ApplicationShutdown, IsQuickWithNothingToDo)
{
    EXPECT_TRUE(shutDown(application.controller));
}

TEST_F(ApplicationShutdown, EndsRunningProgramsAndReapsThem)
{
    const auto one = addShell(u"touch '%1'; exec sleep 60"_s.arg(folder.path(u"one"_s)));
    const auto two = addShell(u"touch '%1'; sleep 60; true"_s.arg(folder.path(u"two"_s)));
    ASSERT_TRUE(waitForFile(u"one"_s) && waitForFile(u"two"_s));
    QElapsedTimer time;
    time.start();
    EXPECT_TRUE(shutDown(application.controller));
    EXPECT_LT(time.elapsed(), kFarFromTheProgramsEndMs);
    EXPECT_TRUE(hasNoChild());
    EXPECT_TRUE(one->cancelled());
    EXPECT_TRUE(two->cancelled());
    EXPECT_TRUE(two->isDone());
}

TEST_F(ApplicationShutdown, EndsTwentyJobsInFlight)
{
    NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), 20);
    std::atomic<int> workers = 0;
    for (int i = 0; i < 10; ++i) {
        addShell(u"sleep 60"_s);
        queue().addTask(std::make_shared<FunctionTask>(&queue(), [&workers](FunctionTask &self) {
            ++workers;
            while (!self.cancelled())
                std::this_thread::sleep_for(1ms);
        }));
    }
    ASSERT_TRUE(test::waitUntil([&] { return workers == 10 && children::runningCount() == 10; }));
    EXPECT_TRUE(shutDown(application.controller));
    EXPECT_EQ(children::runningCount(), 0);
    EXPECT_EQ(workerThreads::runningCount(), 0);
    EXPECT_TRUE(hasNoChild());
}

TEST_F(ApplicationShutdown, KillsAProgramThatWillNotEnd)
{
    addShell(u"trap '' TERM; touch '%1'; while :; do sleep 1; done"_s.arg(folder.path(u"ready"_s)));
    ASSERT_TRUE(waitForFile(u"ready"_s));
    QElapsedTimer time;
    time.start();
    EXPECT_TRUE(shutDown(application.controller));
    EXPECT_GE(time.elapsed(), 500);
    EXPECT_LT(time.elapsed(), kFarFromTheProgramsEndMs);
    EXPECT_TRUE(hasNoChild());
}

TEST_F(ApplicationShutdown, StartsNoWaitingJobAndNoFurtherProgram)
{
    const test::SettingForTest oneJob(u"maxThreads"_s, 1);
    test::TestApplication other{QStringList()};
    NURVTaskQueue &single = other.controller.taskQueue();
    const auto add = [&](const QString &name) {
        const QStringList arguments{u"-c"_s, u"touch '%1'; exec sleep 60"_s.arg(folder.path(name))};
        single.addTask(std::make_shared<NURVAsyncNSTask>(&single, u"/bin/sh"_s, arguments));
    };
    add(u"first"_s);
    add(u"second"_s);
    ASSERT_TRUE(waitForFile(u"first"_s));
    EXPECT_TRUE(shutDown(other.controller));
    EXPECT_FALSE(runChild({.launchPath = u"/bin/true"_s, .arguments = {}, .environment = {}, .workingDirectory = {}})
                     .exit.has_value());
    EXPECT_FALSE(folder.exists(u"second"_s));
    EXPECT_TRUE(hasNoChild());
}

TEST_F(ApplicationShutdown, WakesAWorkerThatWaitsForTheGuiThread)
{
    std::atomic<bool> isWaiting = false;
    std::atomic<bool> hasEnded = false;
    queue().addTask(std::make_shared<FunctionTask>(&queue(), [&](FunctionTask &task) {
        isWaiting = true;
        isWaiting.notify_all();
        task.showProgress(); // this thread serves it only once it runs its events
        while (!task.cancelled())
            std::this_thread::yield();
        task.showProgress();
        hasEnded = true;
    }));
    isWaiting.wait(false);
    QElapsedTimer time;
    time.start();
    EXPECT_TRUE(shutDown(application.controller));
    EXPECT_TRUE(hasEnded);
    EXPECT_LT(time.elapsed(), kFarFromTheProgramsEndMs);
    EXPECT_EQ(workerThreads::runningCount(), 0);
}

TEST_F(ApplicationShutdown, EndsTheProgramThatAWorkerWaitsFor)
{
    std::atomic<bool> succeeded = true;
    const QString ready = folder.path(u"ready"_s);
    queue().addTask(std::make_shared<FunctionTask>(&queue(), [&](FunctionTask &) {
        const QStringList arguments{u"-c"_s, u"touch '%1'; exec sleep 60"_s.arg(ready)};
        const ChildResult result = runChild(
            {.launchPath = u"/bin/sh"_s, .arguments = arguments, .environment = {{u"PATH"_s, u"/usr/bin:/bin"_s}}, .workingDirectory = {}});
        succeeded = result.exit && result.exit->succeeded();
    }));
    ASSERT_TRUE(waitForFile(u"ready"_s));
    EXPECT_TRUE(shutDown(application.controller));
    EXPECT_FALSE(succeeded);
    EXPECT_TRUE(hasNoChild());
}

TEST_F(ApplicationShutdown, GivesUpOnAWorkerThatDoesNotEndInFiveSeconds)
{
    std::atomic<bool> mayEnd = false;
    queue().addTask(std::make_shared<FunctionTask>(&queue(), [&](FunctionTask &) { mayEnd.wait(false); }));
    QElapsedTimer time;
    time.start();
    EXPECT_FALSE(shutDown(application.controller));
    EXPECT_GE(time.elapsed(), 5000);
    mayEnd = true;
    mayEnd.notify_all();
    EXPECT_TRUE(workerThreads::waitForAll(5s));
}

} // namespace nurv
