// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchRun.h"

#include "app/BaseTab.h"
#include "cli/Console.h"
#include "cli/ConsolePrompts.h"
#include "cli/RowDisplay.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"
#include "engine/NURVTaskResults.h"
#include "platform/ChildProcess.h"
#include "platform/GuiThread.h"
#include "platform/TerminationSignals.h"
#include "platform/WorkerThreads.h"

#include <QCoreApplication>
#include <QEventLoop>
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

QString statusWord(const NURVTask &task)
{
    return endingText(task).toLower();
}

} // namespace

BatchRun::BatchRun(NURVTaskQueue &queue, ConsolePrompts &prompts, Console &console, Options options)
    : m_queue(queue), m_prompts(prompts), m_console(console), m_options(std::move(options))
{
    connect(&queue, &NURVTaskQueue::rowAppended, this, [this] { ++m_addedCount; });
    connect(&queue, &NURVTaskQueue::taskEnded, this, &BatchRun::taskEnded);
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
    if (!m_options.quiet)
        rows.emplace(m_queue, m_console);

    tab.executeCommand();
    m_prompts.setInterruptDescriptor(-1);
    waitForJobs();
    waitForWorkers();
    rows.reset();
    printUnseenReports();
    return status();
}

void BatchRun::waitForJobs()
{
    if (m_queue.taskCount() == 0)
        return;
    QEventLoop loop;
    m_loop = &loop;
    loop.exec();
    m_loop = nullptr;
}

/// A job may still remove its original after the queue has been told of its end.
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

void BatchRun::outputWindowRequested(const QString &text, const QString &title)
{
    m_outputWasShown = true;
    m_outputs.append(QJsonObject{{u"title"_s, title}, {u"text"_s, text}});
    // A set without any report is nothing but line ends.
    if (!m_options.json && !text.trimmed().isEmpty())
        m_console.writeOutput(text);
}

void BatchRun::taskEnded(const std::shared_ptr<NURVTask> &task)
{
    const std::shared_ptr<NURVTaskResults> results = task->results();
    const QString report = task->report();
    const bool wasShown = std::exchange(m_outputWasShown, false);
    if (wasShown) {
        std::erase_if(m_failedReports, [&](const FailedReport &failed) { return failed.results.lock() == results; });
    }
    if (task->cancelled()) {
        ++m_canceledCount;
    } else if (task->error()) {
        ++m_failedCount;
        if (!wasShown)
            m_failedReports.push_back({task->title(), report, results});
    } else {
        ++m_completeCount;
        m_warnings.append(task->warnings());
    }
    if (m_options.json) {
        m_console.writeJson({{u"type"_s, u"job"_s},
                             {u"title"_s, task->title()},
                             {u"source"_s, task->sourcePath()},
                             {u"status"_s, statusWord(*task)},
                             {u"report"_s, report}});
    }
    endWhenIdle();
}

/// A follow-up job is posted to this thread before the queue hears of the last
/// member's end: what is posted now comes after it.
void BatchRun::endWhenIdle()
{
    if (m_queue.taskCount() > 0)
        return;
    postToGuiThread([self = QPointer<BatchRun>(this)] {
        if (self && self->m_loop && self->m_queue.taskCount() == 0)
            self->m_loop->quit();
    });
}

void BatchRun::interrupted()
{
    if (std::exchange(m_isInterrupted, true)) {
        endChildren();
        return;
    }
    m_queue.cancelAllTasks();
    if (const int running = m_queue.taskCount(); running > 0) {
        m_console.writeNote(u"canceled; %1 running job(s) are coming to their end "
                            "(press Ctrl-C again to end them now)"_s.arg(running));
    } else {
        m_console.writeNote(u"canceled"_s);
    }
}

void BatchRun::terminated()
{
    if (!std::exchange(m_isInterrupted, true))
        m_queue.cancelAllTasks();
    endChildren();
}

void BatchRun::endChildren()
{
    if (std::exchange(m_childrenEnded, true))
        return;
    m_console.writeNote(u"canceled; the running programs are ended"_s);
    children::terminateAll(kTerminationGrace, true);
    // The event loop reaps the children and lets the jobs clean up.
    QTimer::singleShot(kCleanupLimit, this, [this] {
        if (m_loop)
            m_loop->quit();
    });
}

void BatchRun::printUnseenReports()
{
    if (m_options.json)
        return;
    for (const QString &warning : std::as_const(m_warnings))
        m_console.writeNote(warning);
    for (const FailedReport &failed : std::as_const(m_failedReports)) {
        m_console.writeNote(u"%1 failed:"_s.arg(failed.title));
        const QStringList lines = failed.text.trimmed().split(u'\n', Qt::SkipEmptyParts);
        for (const QString &line : lines)
            m_console.writeLine(u"    "_s + line);
    }
}

ExitStatus BatchRun::status() const
{
    if (m_isInterrupted || m_prompts.outcome() == ConsolePrompts::Outcome::Interrupted)
        return ExitStatus::Interrupted;
    if (m_failedCount > 0)
        return m_options.programIsMissing() ? ExitStatus::MissingProgram : ExitStatus::Failed;
    if (m_prompts.outcome() == ConsolePrompts::Outcome::Unanswered)
        return ExitStatus::Usage;
    if (m_prompts.outcome() == ConsolePrompts::Outcome::Declined)
        return ExitStatus::Failed;
    return m_canceledCount > 0 || !m_warnings.isEmpty() || m_addedCount == 0 ? ExitStatus::Failed : ExitStatus::Ok;
}

void BatchRun::printBatchObject(ExitStatus exitStatus, const QStringList &refusals, const QStringList &skipped)
{
    if (!m_options.json)
        return;
    m_console.writeJson({{u"type"_s, u"batch"_s},
                         {u"jobs"_s, m_addedCount},
                         {u"complete"_s, m_completeCount},
                         {u"failed"_s, m_failedCount},
                         {u"canceled"_s, m_canceledCount},
                         {u"refused"_s, QJsonArray::fromStringList(refusals)},
                         {u"skipped"_s, QJsonArray::fromStringList(skipped)},
                         {u"warnings"_s, QJsonArray::fromStringList(m_warnings)},
                         {u"outputs"_s, m_outputs},
                         {u"exitStatus"_s, static_cast<int>(exitStatus)}});
}

} // namespace nurv
