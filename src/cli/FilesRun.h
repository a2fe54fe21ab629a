// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ArgumentParser.h"
#include "cli/ExitStatus.h"
#include "cli/InputFiles.h"
#include "process/TerminationSignals.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace nurv {

class Console;
class OutputJournal;

/// One run of a command that works on files itself, without jobs: its files, and what is told of each.
class FilesRun {
public:
    /// The page whose rules count, and what it makes use of a file of that name; any thread.
    struct Page {
        QString label;
        std::function<bool(const QString &path)> takes;
    };

    /// Finds the files that the operands name, and tells which were refused.
    FilesRun(const ParsedArguments &arguments, const QList<QByteArray> &operands, Console &console, const Page &page);

    /// In the order of a file browser.
    [[nodiscard]] const QStringList &files() const { return m_files; }
    [[nodiscard]] QString nameOf(const QString &path) const { return m_input.names.nameOf(path); }

    /// Notes on the disk which files will be written, for a run that is killed: `forFile` ends it for each.
    void setJournal(std::shared_ptr<OutputJournal> journal) { m_journal = std::move(journal); }
    /// Runs `work` for a file; what it throws is told and counts as a failure. JSON: what `work` returns, or what went
    /// wrong. Does nothing more once the user or the system wants the program to end.
    void forFile(const QString &path, const std::function<QJsonObject()> &work);
    /// Something was done with a file outside `forFile`. JSON: the object.
    void tellDone(const QJsonObject &object);
    /// So many files were not looked at, since the user or the system wants the program to end.
    void leave(qsizetype count) { m_leftCount += count; }
    /// Whether the user or the system wants the program to end.
    [[nodiscard]] bool isToEnd() const;
    /// Whether one of the files that were asked for cannot be worked on.
    [[nodiscard]] bool hasRefusals() const { return !m_input.refusals.isEmpty(); }
    /// Whether sounds of kinds without tags were passed over in a folder.
    [[nodiscard]] bool hasSkippedSounds() const { return m_input.hasSkippedSounds; }
    /// Something could not be done that is of no single file.
    void tellProblem(const QString &problem);
    /// The file, or what should be one, cannot be worked on.
    void fail(const QString &path, const QString &reason);
    void note(const QString &line);
    /// Standard output, unless JSON is wanted.
    void print(const QString &text);
    /// Tells, or prints as an object, what a writing would change in the file.
    QJsonObject tellChanges(const QString &path, const QStringList &changes);
    /// Tells how it went: `done` is "written".
    [[nodiscard]] ExitStatus finish(const QString &done);

private:
    Console &m_console;
    bool m_isJson;
    bool m_isQuiet;
    InputFiles m_input;
    QStringList m_files;
    QStringList m_problems;
    std::shared_ptr<OutputJournal> m_journal;
    TerminationSignals m_signals;
    qsizetype m_doneCount = 0;
    qsizetype m_leftCount = 0; ///< not looked at, since the program is to end
};

} // namespace nurv
