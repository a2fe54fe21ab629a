// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ExitStatus.h"

#include <QJsonArray>
#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

class QEventLoop;

namespace nurv {

class BaseTab;
class Console;
class ConsolePrompts;
class NURVTask;
class NURVTaskQueue;
class NURVTaskResults;

/// Presses a tab's execute button and stays until the last job has ended.
///
///     executeCommand ──> queue ──> taskEnded ────────────> JSON object
///                          └────> outputWindowRequested ─> standard output
///     first Ctrl-C ──> waiting jobs cancelled, running ones run to their end
///     second one ────> children ended, then the batch
///
/// GUI thread.
class BatchRun : public QObject {
    Q_OBJECT

public:
    struct Options {
        bool json = false;
        bool quiet = false;
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
    struct FailedReport {
        QString title;
        QString text;
        std::weak_ptr<NURVTaskResults> results;
    };

    void taskEnded(const std::shared_ptr<NURVTask> &task);
    void outputWindowRequested(const QString &text, const QString &title);
    void interrupted();
    void terminated();
    void endChildren();
    void endWhenIdle();
    void waitForJobs();
    void waitForWorkers();
    void printUnseenReports();
    [[nodiscard]] ExitStatus status() const;

    NURVTaskQueue &m_queue;
    ConsolePrompts &m_prompts;
    Console &m_console;
    Options m_options;
    QEventLoop *m_loop = nullptr;
    QJsonArray m_outputs;
    std::vector<FailedReport> m_failedReports;
    QStringList m_warnings; ///< of jobs that ended well
    int m_addedCount = 0;
    int m_completeCount = 0;
    int m_failedCount = 0;
    int m_canceledCount = 0;
    bool m_isInterrupted = false;
    bool m_childrenEnded = false;
    bool m_outputWasShown = false; ///< for the job that is completing now
};

} // namespace nurv
