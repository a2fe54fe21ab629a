// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace nurv {

/// Runs `work` on the GUI thread, the thread of the application object, and
/// waits until it has run: inline on that thread, queued and waited for on any
/// other. Returns false, without running it, once the gate is closed or when
/// there is no application object.
bool runOnGuiThread(const std::function<void()> &work);

/// Queues `work` for the GUI thread and returns at once, also on that thread.
/// Work that is still queued when the gate closes is dropped.
void postToGuiThread(std::function<void()> work);

[[nodiscard]] bool isGuiThread();

/// The hand-over between workers and the GUI thread: a mutex, a condition and a
/// queue of requests; the posted event is only the wake-up. Closing it wakes
/// every waiter, so that a quitting application never waits for a worker that
/// waits for it.
namespace guiThreadGate {

/// Refuses requests from now on; waiting callers return false.
void close();
/// Accepts requests again (a second application object in one process: tests).
void open();

} // namespace guiThreadGate

} // namespace nurv
