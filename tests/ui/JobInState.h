// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"

namespace nurv::test {

/// A job that a test puts into every state of its row.
class JobInState final : public NURVTask {
public:
    JobInState(NURVTaskQueue &queue, const QString &title) : NURVTask(&queue) { setTitle(title); }

    void show(const QString &status, double percent)
    {
        setTopTextFieldString(status);
        setProgressIndicatorValue(percent);
        updateStatus();
    }
    /// What a conversion does when it is made.
    void showTitle()
    {
        setTextFieldString(title());
        setTextFieldValue();
    }
    void write(const QString &text) { appendResultsForSelf(text); }
    /// What every job does at its end: stops and tells the queue.
    void finish(bool failed = false)
    {
        setError(failed);
        stopTask();
        reportCompletion();
    }
    /// A running job takes note only; its program has yet to end.
    void cancelTask() override
    {
        ++cancels;
        setCancelled(true);
        if (!isActive()) {
            finish();
        } else if (NURVTaskQueue *const own = queue()) {
            own->rowStateChanged(*this);
        }
    }

    int cancels = 0;
};

} // namespace nurv::test
