// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "process/ChildProcess.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace nurv {

/// Runs one command-line program to its end and returns all it wrote.
///
/// Blocks the calling thread; meant for worker threads and quick queries. The
/// exit status is not looked at: callers judge success from the text.
class NSTaskWrapperSync {
public:
    NSTaskWrapperSync(const QString &launchPath, const QStringList &arguments);

    /// The child's environment, for callers that add variables before running.
    [[nodiscard]] ChildEnvironment &environment() { return m_command.environment; }
    /// Sets PATH to its current value, a colon and the folder.
    void appendToPATH(const QString &folder);
    void setDirectory(const QString &folder) { m_command.workingDirectory = folder; }

    /// Runs the program. Returns its standard output and error, interleaved,
    /// decoded as UTF-8; output that is no UTF-8 gives an empty text. A program
    /// that cannot be started gives a text that names it, the folder and the
    /// package that provides it. Once `isUnwanted` (may be empty) returns true, the
    /// program is ended with its process group, and the text is what it had written.
    QString runTask(const std::function<bool()> &isUnwanted = {});
    /// The output of the last `runTask`.
    [[nodiscard]] const QString &output() const { return m_totalOutput; }

private:
    ChildCommand m_command;
    QString m_totalOutput;
};

} // namespace nurv
