// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/ParallelLoop.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <future>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace nurv {

unsigned parallelThreads()
{
    return std::max(1U, std::thread::hardware_concurrency());
}

void runInParallel(qsizetype count, unsigned threads, const std::function<bool()> &isStopped,
                   const std::function<void(qsizetype)> &work)
{
    std::atomic<qsizetype> next = 0;
    std::atomic<bool> hasThrown = false;
    std::mutex lock;
    std::exception_ptr first;
    const auto takeTurns = [&] {
        try {
            while (!hasThrown && !isStopped()) {
                const qsizetype index = next++;
                if (index >= count)
                    return;
                work(index);
            }
        } catch (...) {
            const std::scoped_lock locked(lock);
            if (!hasThrown.exchange(true))
                first = std::current_exception();
        }
    };
    std::vector<std::future<void>> others;
    try {
        for (qsizetype i = 1; i < std::min<qsizetype>(threads, count); ++i)
            others.push_back(std::async(std::launch::async, takeTurns));
    } catch (const std::system_error &) {
        // Those that there are do it all.
    }
    takeTurns();
    for (const std::future<void> &other : others)
        other.wait();
    if (first)
        std::rethrow_exception(first);
}

} // namespace nurv
