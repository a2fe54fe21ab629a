// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/ParallelLoop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace nurv {
namespace {

const auto kNever = [] { return false; };

TEST(ParallelLoop, DoesEachOnce)
{
    std::vector<std::atomic<int>> times(1000);
    runInParallel(1000, 3, kNever, [&](qsizetype index) { ++times[static_cast<std::size_t>(index)]; });
    for (const std::atomic<int> &count : times)
        EXPECT_EQ(count, 1);
}

TEST(ParallelLoop, WorksOnAsManyAtATimeAsToldAndOnTheCallersThread)
{
    std::latch allAreHere(3);
    std::mutex lock;
    std::set<std::thread::id> threads;
    runInParallel(3, 3, kNever, [&](qsizetype) {
        allAreHere.arrive_and_wait();
        const std::scoped_lock locked(lock);
        threads.insert(std::this_thread::get_id());
    });
    EXPECT_EQ(threads.size(), 3U);
    EXPECT_TRUE(threads.contains(std::this_thread::get_id()));
}

TEST(ParallelLoop, DoesThemInOrderOnOneThread)
{
    std::vector<qsizetype> done;
    runInParallel(5, 1, kNever, [&](qsizetype index) { done.push_back(index); });
    EXPECT_EQ(done, (std::vector<qsizetype>{0, 1, 2, 3, 4}));
}

TEST(ParallelLoop, DoesNothingOfNothing)
{
    runInParallel(0, 2, kNever, [](qsizetype) { FAIL(); });
}

TEST(ParallelLoop, BeginsNoneOnceItIsStopped)
{
    std::atomic<int> done = 0;
    runInParallel(1000, 2, [&] { return done >= 10; }, [&](qsizetype) { ++done; });
    EXPECT_GE(done, 10);
    EXPECT_LE(done, 12) << "one more of each thread";
}

TEST(ParallelLoop, ThrowsTheFirstOfWhatIsThrownAndBeginsNoMore)
{
    std::atomic<int> done = 0;
    const auto work = [&](qsizetype index) {
        ++done;
        if (index == 0)
            throw std::runtime_error("planted");
    };
    try {
        runInParallel(1'000'000, 1, kNever, work);
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error &failure) {
        EXPECT_EQ(std::string(failure.what()), "planted");
    }
    EXPECT_EQ(done, 1);
}

TEST(ParallelLoop, ThrowsWhatAnotherThreadThrew)
{
    const std::thread::id caller = std::this_thread::get_id();
    std::latch bothAreHere(2);
    const auto work = [&](qsizetype) {
        bothAreHere.arrive_and_wait();
        if (std::this_thread::get_id() != caller)
            throw std::runtime_error("planted");
    };
    EXPECT_THROW(runInParallel(2, 2, kNever, work), std::runtime_error);
}

} // namespace
} // namespace nurv
