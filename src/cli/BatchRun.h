// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/BatchReport.h"
#include "cli/ExitStatus.h"

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>
#include <set>
#include <utility>
#include <vector>

class QEventLoop;

namespace nurv {

class BaseTab;
class Console;
class ConsolePrompts;
class NURVTask;
class NURVTaskQueue;

/// Presses a tab's execute button and stays until the last job is settled.
///
///     executeCommand ──> queue ──> taskSettled ──────────> BatchReport
///                          └────> outputWindowRequested ─> BatchReport
///     first Ctrl-C ──> waiting jobs cancelled, running ones run to their end
///     second one ────> children ended, then the batch
///
/// GUI thread.
class BatchRun : public QObject {
    Q_OBJECT

public:
    struct Options {
        BatchReport::Options report;
        /// Whether a program that the batch needs is missing; asked after a job has failed.
        std::function<bool()> programIsMissing;
    };

    /// All must outlive the run.
    BatchRun(NURVTaskQueue &queue, ConsolePrompts &prompts, Console &console, Options options);
    ~BatchRun() override;

    /// Blocks until the batch has ended. Everything is told by then.
    [[nodiscard]] ExitStatus run(BaseTab &tab);

    /// Prints the object of the batch when JSON is wanted. `refusals`: what was
    /// asked for and could not be worked on.
    void printBatchObject(ExitStatus status, const QStringList &refusals, const QStringList &skipped);

private:
    void rowAppended(int row);
    void taskEnded(const std::shared_ptr<NURVTask> &task);
    void taskSettled(const std::shared_ptr<NURVTask> &task);
    void outputWindowRequested(const QString &text, const QString &title);
    void interrupted();
    void terminated();
    /// Cancels what is queued and tells it in one line; `ofTheRunning` says what becomes
    /// of so many programs.
    void cancelJobs(const std::function<QString(int running)> &ofTheRunning);
    void endChildren();
    void endWhenIdle();
    void waitForJobs();
    void waitForWorkers();
    void tellOfUnsettled();
    [[nodiscard]] bool isIdle() const;
    [[nodiscard]] ExitStatus status() const;

    NURVTaskQueue &m_queue;
    ConsolePrompts &m_prompts;
    Console &m_console;
    Options m_options;
    BatchReport m_report;
    QEventLoop *m_loop = nullptr;
    QElapsedTimer m_clock;                           ///< started by the first job
    std::set<std::shared_ptr<NURVTask>> m_unsettled; ///< added, and not settled yet
    /// What an output window was asked for, by the job that is completing now.
    std::vector<std::pair<QString, QString>> m_windowsOfTask;
    int m_addedCount = 0;
    bool m_hasWorkedItself = false; ///< the tab, without a job
    bool m_hasExecuted = true;
    bool m_isInterrupted = false;
    bool m_childrenEnded = false;
};

} // namespace nurv
