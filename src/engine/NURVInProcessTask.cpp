// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVInProcessTask.h"

#include "base/GuiThread.h"
#include "base/NurvFailure.h"
#include "base/WorkerThreads.h"

#include <exception>
#include <system_error>
#include <utility>

namespace nurv {

void NURVInProcessTask::startTask()
{
    if (std::exchange(m_started, true))
        return;
    // The queue must not take the job for a waiting one before its thread runs.
    becomeActive();
    if (const std::optional<QString> reason = reasonNotToStart())
        failToStart(*reason);
    else
        startWorker();
}

void NURVInProcessTask::startWorker()
{
    const std::shared_ptr<NURVTask> self = shared_from_this();
    try {
        workerThreads::start([this, self] { run(); });
    } catch (const std::system_error &failure) {
        failToStart(QString::fromLocal8Bit(failure.what()));
    }
}

void NURVInProcessTask::failToStart(const QString &reason)
{
    failWith(reason);
    // The queue holds its lock while it starts a job: the job ends afterwards.
    postToGuiThread([this, self = shared_from_this()] { complete(); });
}

void NURVInProcessTask::cancelTask()
{
    // The queue may let go of a job that stops, and the caller may only refer to it.
    const std::shared_ptr<NURVTask> self = shared_from_this();
    setCancelled(true);
    if (!std::exchange(m_started, true))
        complete();
}

void NURVInProcessTask::run()
{
    try {
        doStartTask();
    } catch (const NurvFailure &failure) {
        failWith(failure.reason());
    } catch (const std::exception &failure) {
        failWith(QString::fromUtf8(failure.what()));
    }
    complete();
}

void NURVInProcessTask::complete()
{
    stopTask();
    reportCompletion();
    afterCompletion();
    reportSettled();
}

} // namespace nurv
