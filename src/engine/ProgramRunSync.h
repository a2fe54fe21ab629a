// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "process/ChildProcess.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace nurv {

/// Runs one command-line program on the calling worker thread and hands its text over
/// chunk by chunk, for in-process jobs that show how far their program is.
///
///     run ──> child ── one pipe ──> chunk as text ──> takeChunk ──> true: the next one
///       <── how it ended ──────────────────────────────────────└──> false: end it
///
/// Lines are neither split nor joined: a chunk is what one read gave.
class ProgramRunSync {
public:
    /// How the run ended.
    struct Ending {
        std::optional<ChildExit> exit; ///< nothing when the program could not be started
        QString startFailure;          ///< names the program, the folder and the package
        bool wasStopped = false;       ///< ended before it was through

        [[nodiscard]] bool succeeded() const { return exit && exit->succeeded() && !wasStopped; }
        /// Nothing of its own doing: it was ended, or it died by a signal.
        [[nodiscard]] bool wasCutShort() const { return wasStopped || (exit && exit->signal != 0); }
    };

    /// `launchPath` is absolute. The environment is the application's, with the resource
    /// folder in PATH.
    ProgramRunSync(const QString &launchPath, const QStringList &arguments);

    [[nodiscard]] ChildEnvironment &environment() { return m_command.environment; }
    /// Sets PATH to its current value, a colon and the folder.
    void appendToPATH(const QString &folder);
    /// The program's working folder; inherited when never set.
    void setDirectory(const QString &folder) { m_command.workingDirectory = folder; }

    /// Blocks until the program has ended and has been reaped. `takeChunk` is called for
    /// every text; when it returns false, and when `isUnwanted` (asked while the program
    /// is silent; may be empty) returns true, the pipe is closed and the program ended
    /// with its process group.
    [[nodiscard]] Ending run(const std::function<bool(const QString &chunk)> &takeChunk,
                             const std::function<bool()> &isUnwanted = {});

private:
    ChildCommand m_command;
};

} // namespace nurv
