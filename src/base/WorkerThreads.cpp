// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/WorkerThreads.h"

#include "base/Log.h"

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace nurv::workerThreads {

namespace {

// Never destroyed: a thread that outlives the wait at quit still counts itself
// out here.
struct WorkerRegistry {
    std::mutex lock;
    std::condition_variable ended;
    int running = 0;
};

WorkerRegistry &registry()
{
    static WorkerRegistry *const instance = new WorkerRegistry;
    return *instance;
}

void countOutAtThreadExit()
{
    std::unique_lock lock(registry().lock);
    --registry().running;
    std::notify_all_at_thread_exit(registry().ended, std::move(lock));
}

} // namespace

void start(std::function<void()> work)
{
    {
        const std::scoped_lock lock(registry().lock);
        ++registry().running;
    }
    try {
        std::thread([work = std::move(work)]() mutable {
            work();
            work = nullptr; // what it owns goes before the thread counts as ended
            countOutAtThreadExit();
        }).detach();
    } catch (...) {
        const std::scoped_lock lock(registry().lock);
        --registry().running;
        throw;
    }
}

void startOrRun(const std::function<void()> &work)
{
    try {
        start(work);
    } catch (const std::system_error &error) {
        qCWarning(baseLog, "no thread to work on: %s", error.what());
        work();
    }
}

bool waitForAll(std::chrono::milliseconds limit)
{
    std::unique_lock lock(registry().lock);
    return registry().ended.wait_for(lock, limit, [] { return registry().running == 0; });
}

int runningCount()
{
    const std::scoped_lock lock(registry().lock);
    return registry().running;
}

} // namespace nurv::workerThreads
