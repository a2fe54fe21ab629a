// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchRun.h"

#include "app/BaseTab.h"
#include "app/NURVController.h"
#include "base/GuiThread.h"
#include "base/WorkerThreads.h"
#include "cli/Console.h"
#include "cli/ConsolePrompts.h"
#include "cli/RowDisplay.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"
#include "process/ChildProcess.h"
#include "process/TerminationSignals.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonObject>
#include <QPointer>
#include <QTimer>

#include <chrono>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using namespace std::chrono_literals;

/// What a program gets between the request to end and the order.
constexpr auto kTerminationGrace = 500ms;
/// What the jobs get to clean up after their programs have been ended.
constexpr auto kCleanupLimit = 5s;
constexpr auto kWorkerPoll = 10ms;

} // namespace

BatchRun::BatchRun(NURVTaskQueue &queue, ConsolePrompts &prompts, Console &console, Options options)
    : m_queue(queue), m_prompts(prompts), m_console(console), m_options(std::move(options)),
      m_report(console, m_options.report)
{
    connect(&queue, &NURVTaskQueue::rowAppended, this, &BatchRun::rowAppended);
    connect(&queue, &NURVTaskQueue::taskEnded, this, &BatchRun::taskEnded);
    connect(&queue, &NURVTaskQueue::taskSettled, this, &BatchRun::taskSettled);
    connect(&queue, &NURVTaskQueue::outputWindowRequested, this, &BatchRun::outputWindowRequested);
}

BatchRun::~BatchRun() = default;

ExitStatus BatchRun::run(BaseTab &tab)
{
    const TerminationSignals signalsToEnd;
    connect(&signalsToEnd, &TerminationSignals::interrupted, this, &BatchRun::interrupted);
    connect(&signalsToEnd, &TerminationSignals::terminated, this, &BatchRun::terminated);
    m_prompts.setInterruptDescriptor(signalsToEnd.descriptor());
    std::optional<RowDisplay> rows;
    if (!m_options.report.quiet)
        rows.emplace(m_queue, m_console);

    m_hasExecuted = tab.nurvController().execute(tab);
    m_prompts.setInterruptDescriptor(-1);
    m_hasWorkedItself = tab.hasWorkedItself();
    m_report.setSkippedExisting(static_cast<int>(tab.passedOver().size()));
    waitForJobs();
    waitForWorkers();
    tellOfUnsettled();
    rows.reset();
    m_report.writeWindows();
    if (m_addedCount > 0 || !tab.passedOver().isEmpty())
        m_report.writeClosingLine(std::chrono::milliseconds(m_clock.isValid() ? m_clock.elapsed() : 0));
    return status();
}

void BatchRun::rowAppended(int row)
{
    if (m_addedCount++ == 0)
        m_clock.start();
    m_unsettled.insert(m_queue.panelArray()[static_cast<std::size_t>(row)]);
}

void BatchRun::waitForJobs()
{
    if (isIdle())
        return;
    QEventLoop loop;
    m_loop = &loop;
    loop.exec();
    m_loop = nullptr;
}

/// A job that is settled may still be on its thread; one that hangs is not waited for long.
void BatchRun::waitForWorkers()
{
    std::optional<std::chrono::steady_clock::time_point> deadline;
    while (!workerThreads::waitForAll(kWorkerPoll)) {
        QCoreApplication::processEvents();
        if (!m_childrenEnded)
            continue;
        if (!deadline) {
            deadline = std::chrono::steady_clock::now() + kCleanupLimit;
            guiThreadGate::close();
        } else if (std::chrono::steady_clock::now() > *deadline) {
            m_console.writeNote(u"%1 job(s) have not ended in time"_s.arg(workerThreads::runningCount()));
            break;
        }
    }
}

/// Of jobs that hang there is nothing more to be had than how they end.
void BatchRun::tellOfUnsettled()
{
    for (const std::shared_ptr<NURVTask> &task : std::exchange(m_unsettled, {}))
        m_report.addUnsettled(*task);
}

void BatchRun::outputWindowRequested(const QString &text, const QString &title)
{
    m_windowsOfTask.emplace_back(text, title);
}

void BatchRun::taskEnded(const std::shared_ptr<NURVTask> &task)
{
    for (const auto &[text, title] : std::exchange(m_windowsOfTask, {}))
        m_report.addWindow(text, title, task->results());
}

void BatchRun::taskSettled(const std::shared_ptr<NURVTask> &task)
{
    if (m_unsettled.erase(task) > 0)
        m_report.addSettled(*task);
    endWhenIdle();
}

/// A job that has left the queue may still prove and remove its original.
bool BatchRun::isIdle() const
{
    return m_queue.taskCount() == 0 && m_unsettled.empty();
}

/// A follow-up job is posted to this thread before the queue hears of the last
/// member's end: what is posted now comes after it.
void BatchRun::endWhenIdle()
{
    if (!isIdle())
        return;
    postToGuiThread([self = QPointer<BatchRun>(this)] {
        if (self && self->m_loop && self->isIdle())
            self->m_loop->quit();
    });
}

void BatchRun::interrupted()
{
    if (std::exchange(m_isInterrupted, true)) {
        if (!m_childrenEnded)
            m_console.writeNote(u"canceled; the running programs are ended"_s);
        endChildren();
        return;
    }
    cancelJobs([](int running) {
        return running == 1 ? u"1 running comes to its end (Ctrl-C again ends it now)"_s
                            : u"%1 running come to their end (Ctrl-C again ends them now)"_s.arg(running);
    });
}

void BatchRun::terminated()
{
    if (!std::exchange(m_isInterrupted, true))
        cancelJobs([](int running) { return u"%1 running ended now"_s.arg(running); });
    endChildren();
}

void BatchRun::cancelJobs(const std::function<QString(int running)> &ofTheRunning)
{
    int waiting = 0;
    for (const std::shared_ptr<NURVTask> &task : m_queue.panelArray()) {
        if (task->isActive() || task->isDone())
            continue;
        m_report.addNotBegun(*task);
        ++waiting;
    }
    m_queue.cancelAllTasks();
    const BatchCounts &counts = m_report.counts();
    QStringList parts{u"%1 done"_s.arg(counts.done)};
    if (counts.failed > 0)
        parts.append(u"%1 failed"_s.arg(counts.failed));
    if (waiting > 0)
        parts.append(u"%1 not begun"_s.arg(waiting));
    if (const int running = m_queue.taskCount(); running > 0)
        parts.append(ofTheRunning(running));
    m_console.writeNote(u"canceled: "_s + parts.join(u", "_s));
}

void BatchRun::endChildren()
{
    if (std::exchange(m_childrenEnded, true))
        return;
    children::terminateAll(kTerminationGrace, true);
    // The event loop reaps the children and lets the jobs clean up.
    QTimer::singleShot(kCleanupLimit, this, [this] {
        if (m_loop)
            m_loop->quit();
    });
}

ExitStatus BatchRun::status() const
{
    if (m_isInterrupted || m_prompts.outcome() == ConsolePrompts::Outcome::Interrupted)
        return ExitStatus::Interrupted;
    const BatchCounts &counts = m_report.counts();
    if (counts.failed > 0)
        return m_options.programIsMissing() ? ExitStatus::MissingProgram : ExitStatus::Failed;
    if (m_prompts.outcome() == ConsolePrompts::Outcome::Unanswered)
        return ExitStatus::Usage;
    if (m_prompts.outcome() == ConsolePrompts::Outcome::Declined)
        return ExitStatus::Failed;
    if (!m_hasExecuted)
        return ExitStatus::Failed;
    const bool hadNothingToDo = m_addedCount == 0 && counts.skippedExisting == 0 && !m_hasWorkedItself;
    return counts.allDone() && !hadNothingToDo ? ExitStatus::Ok : ExitStatus::Failed;
}

void BatchRun::printBatchObject(ExitStatus exitStatus, const QStringList &refusals, const QStringList &skipped)
{
    if (!m_options.report.json)
        return;
    const BatchCounts &counts = m_report.counts();
    m_console.writeJson({{u"type"_s, u"batch"_s},
                         {u"jobs"_s, m_addedCount},
                         {u"complete"_s, counts.complete},
                         {u"failed"_s, counts.failed},
                         {u"canceled"_s, counts.canceled},
                         {u"kept"_s, counts.originalsKept},
                         {u"notInFull"_s, counts.notInFull},
                         {u"notProven"_s, counts.notProven},
                         {u"skippedExisting"_s, counts.skippedExisting},
                         {u"sourceBytes"_s, counts.sourceBytes},
                         {u"outputBytes"_s, counts.outputBytes},
                         {u"refused"_s, QJsonArray::fromStringList(refusals)},
                         {u"skipped"_s, QJsonArray::fromStringList(skipped)},
                         {u"warnings"_s, QJsonArray::fromStringList(m_report.warnings())},
                         {u"outputs"_s, m_report.windows()},
                         {u"exitStatus"_s, static_cast<int>(exitStatus)}});
}

} // namespace nurv
