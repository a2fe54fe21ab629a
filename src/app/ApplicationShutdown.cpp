// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ApplicationShutdown.h"

#include "app/NURVController.h"
#include "base/GuiThread.h"
#include "base/Log.h"
#include "base/WorkerThreads.h"
#include "process/ChildProcess.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

#include <chrono>

namespace nurv {

namespace {

using namespace std::chrono_literals;

constexpr auto kTerminateGrace = 500ms;
constexpr auto kWorkerLimit = 5s;
constexpr auto kReapLimit = 3s;
constexpr auto kReapPause = 2ms;

// The children of command jobs are reaped by the event loop, which has ended or
// does not come to it. A program's job ends only when its output has, too, which a
// program that it started may hold open for a moment longer.
void reapChildren()
{
    const QDeadlineTimer deadline(kReapLimit);
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    while ((children::runningCount() > 0 || ChildProcess::unfinishedCount() > 0) && !deadline.hasExpired()) {
        QThread::usleep(static_cast<unsigned long>(std::chrono::microseconds(kReapPause).count()));
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    }
}

} // namespace

bool shutDown(NURVController &controller)
{
    controller.applicationWillTerminate();
    children::terminateAll(kTerminateGrace, true);
    guiThreadGate::close();
    reapChildren();
    const bool workersHaveEnded = workerThreads::waitForAll(kWorkerLimit);
    if (!workersHaveEnded)
        qCWarning(appLog) << workerThreads::runningCount() << "jobs have not ended in time";
    const int left = children::runningCount();
    if (left > 0)
        qCWarning(appLog) << left << "programs have not ended in time";
    return workersHaveEnded && left == 0;
}

} // namespace nurv
