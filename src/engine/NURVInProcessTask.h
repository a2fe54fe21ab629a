// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVTask.h"

#include <QString>

#include <optional>

namespace nurv {

/// A job that does its work on a thread of its own.
///
///     startTask (GUI thread) ──> worker: doStartTask ──> stopTask ──> the queue is told
///                                                                     └──> afterCompletion
///
/// A failure that leaves `doStartTask` as an exception sets the error flag and
/// its text becomes the job's result text. Cancelling a waiting job ends it at
/// once; a running one ends when its work next looks at `cancelled`.
class NURVInProcessTask : public NURVTask {
public:
    using NURVTask::NURVTask;

    void startTask() final;
    void cancelTask() final;

protected:
    /// Asked on the GUI thread when the queue starts the job. A reason ends it in error
    /// without a worker; the text becomes its result text.
    [[nodiscard]] virtual std::optional<QString> reasonNotToStart() { return std::nullopt; }
    /// The work, on the worker thread. Sets the first status line, calls
    /// `showStarted`, works, and looks at `cancelled` between its steps.
    virtual void doStartTask() = 0;
    /// What is left to do once the queue has been told of the end, on the thread that told
    /// it: the worker, or the GUI thread for a job that never had one. Must not throw.
    virtual void afterCompletion() {}
    /// Shows the row as active, and waits until it is.
    void showStarted() { NURVTask::startTask(); }

private:
    void startWorker();
    void failToStart(const QString &reason);
    void run();
    void complete();

    bool m_started = false; ///< GUI thread only
};

} // namespace nurv
