// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVTask.h"
#include "process/ChildProcess.h"
#include "text/Utf8ChunkDecoder.h"

#include <QStringList>

#include <functional>
#include <optional>

namespace nurv {

/// A job that runs one command-line program.
///
///     startTask ──> child ── one pipe ──> processTaskOutput(chunk) ──> row, results
///                     └── end of output + exit ──> cleanup ──> row ──> finalCleanup ──> queue
///
/// Lives on the GUI thread, driven by its event loop. Chunks arrive as the reads
/// return them: lines are neither split nor joined. Cancelling does not end the
/// program: the job stays in the queue and becomes cancelled when the program
/// has ended.
class NURVAsyncNSTask : public NURVTask {
public:
    NURVAsyncNSTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments);
    ~NURVAsyncNSTask() override;

    /// Sets PATH to its current value, a colon and the folder. Before the start.
    void appendToPATH(const QString &folder);
    /// The program's working folder; inherited when never set. Before the start.
    void setDirectory(const QString &folder) { m_currentDirectoryPath = folder; }
    [[nodiscard]] const QString &directory() const { return m_currentDirectoryPath; }

    [[nodiscard]] const QString &launchPath() const { return m_launchPath; }
    [[nodiscard]] const QStringList &arguments() const { return m_arguments; }

    /// The program, and what that starts itself when it is given these arguments.
    [[nodiscard]] NeededPrograms neededPrograms() const override;

    void startTask() override;
    void stopTask() override;
    /// The command line: each word in double quotes, then a line feed and a blank.
    [[nodiscard]] QString description() const override;

protected:
    /// Handles one chunk. This one appends it to the job's result text.
    virtual void processTaskOutput(const QString &chunk);
    /// After the program has ended and the flags are final, before the row is painted.
    virtual void cleanup() {}
    /// After the row is painted, before the queue is told.
    virtual void finalCleanup() {}
    /// The stop itself; runs once, when no program runs any more.
    virtual void completeStop();

    /// Runs what may throw: everything here runs in an event handler, which no exception may
    /// leave. What it throws fails the job.
    void runHook(const std::function<void()> &hook);

    /// Ends the job in error from `startTask`, without a program. The stop follows
    /// by a later event: the queue holds its lock while it starts a job.
    void failToStart(const QString &reason);

    /// Whether the program was started; false for a job cancelled while waiting
    /// and for a program that could not be started.
    [[nodiscard]] bool hasRun() const { return m_hasRun; }
    /// How the program ended, whatever the job's flags say; nothing before.
    [[nodiscard]] std::optional<ChildExit> exitState() const { return m_task.exitState(); }

private:
    void taskDataAvailable(const QByteArray &bytes);
    void readExitStatus();

    QString m_launchPath;
    QStringList m_arguments;
    QString m_currentDirectoryPath;
    QStringList m_pathFolders;
    ChildProcess m_task;
    Utf8ChunkDecoder m_decoder;
    bool m_hasRun = false;
    bool m_isStopped = false;
};

} // namespace nurv
