// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace nurv {

/// What became of work for the GUI thread.
enum class HandOver {
    Done,
    Refused, ///< did not run: the gate is closed, or there is no application object
    Failed,  ///< threw; the log has the reason
};

/// Runs `work` on the GUI thread, the thread of the application object, and
/// waits until it has run: inline on that thread, queued and waited for on any
/// other. What it throws is caught on that other thread only.
[[nodiscard]] HandOver runOnGuiThread(const std::function<void()> &work);
/// The same for work that nobody misses once the application ends, such as painting.
void showOnGuiThread(const std::function<void()> &work);

/// Queues `work` for the GUI thread and returns at once, also on that thread.
/// Work that is still queued when the gate closes is dropped.
void postToGuiThread(std::function<void()> work);

[[nodiscard]] bool isGuiThread();

/// The hand-over between workers and the GUI thread: a mutex, a condition and a
/// queue of requests; the posted event is only the wake-up. Closing it wakes
/// every waiter, so that a quitting application never waits for a worker that
/// waits for it.
namespace guiThreadGate {

/// Refuses requests from now on, those of waiting callers too.
void close();
/// Accepts requests again (a second application object in one process: tests).
void open();

} // namespace guiThreadGate

} // namespace nurv
