// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

class NURVController;

/// The end of the application, after the user has agreed to it:
///
///     cancel searches and jobs ──> end the children ──> close the GUI-thread gate ──> wait for the workers
///
/// Children get SIGTERM, and SIGKILL 500 ms later; no further one starts. Workers
/// that wait for the GUI thread are woken and have 5 seconds to end. No child is
/// left, running or unreaped. Jobs that end meanwhile still tell the queue: a
/// window that shows nothing more disconnects from it first.
///
/// GUI thread; blocks for at most about 7 seconds, usually for some milliseconds.
/// Returns whether everything has ended; what has not is in the log.
bool shutDown(NURVController &controller);

} // namespace nurv
