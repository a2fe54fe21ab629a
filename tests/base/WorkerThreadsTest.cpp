// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/WorkerThreads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <system_error>
#include <thread>

#include <pthread.h>

namespace nurv {
namespace {

using namespace std::chrono_literals;

/// While it lives no thread can be started: its stack would not fit into any memory.
class NoThreads {
public:
    NoThreads()
    {
        EXPECT_EQ(::pthread_getattr_default_np(&m_former), 0);
        pthread_attr_t hopeless;
        EXPECT_EQ(::pthread_attr_init(&hopeless), 0);
        EXPECT_EQ(::pthread_attr_setstacksize(&hopeless, std::size_t{1} << 60U), 0);
        EXPECT_EQ(::pthread_setattr_default_np(&hopeless), 0);
        ::pthread_attr_destroy(&hopeless);
    }
    ~NoThreads()
    {
        EXPECT_EQ(::pthread_setattr_default_np(&m_former), 0);
        ::pthread_attr_destroy(&m_former);
    }
    NoThreads(const NoThreads &) = delete;
    NoThreads &operator=(const NoThreads &) = delete;

private:
    pthread_attr_t m_former{};
};

TEST(WorkerThreads, RunWorkOnAThreadOfItsOwn)
{
    std::atomic<std::thread::id> where;
    workerThreads::startOrRun([&] { where = std::this_thread::get_id(); });
    EXPECT_TRUE(workerThreads::waitForAll(10s));
    EXPECT_NE(where.load(), std::thread::id());
    EXPECT_NE(where.load(), std::this_thread::get_id());
}

TEST(WorkerThreads, RunNecessaryWorkOnThisThreadWhenThereIsNoOther)
{
    const NoThreads noThreads;
    int runs = 0;
    EXPECT_THROW(workerThreads::start([&] { ++runs; }), std::system_error);
    EXPECT_EQ(runs, 0);
    workerThreads::startOrRun([&] { ++runs; });
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(workerThreads::runningCount(), 0);
}

} // namespace
} // namespace nurv
