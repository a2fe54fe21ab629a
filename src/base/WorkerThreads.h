// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>

namespace nurv::workerThreads {

/// Runs `work` on a new thread of its own. `work` must not throw. Throws
/// std::system_error when the system gives no thread.
void start(std::function<void()> work);

/// The same, but on this thread when the system gives no other: for work that
/// must be done, and a caller that cannot fail.
void startOrRun(const std::function<void()> &work);

/// Waits until every started thread has ended, at most `limit`.
/// Returns whether all have.
[[nodiscard]] bool waitForAll(std::chrono::milliseconds limit);

/// How many started threads still run.
[[nodiscard]] int runningCount();

} // namespace nurv::workerThreads
