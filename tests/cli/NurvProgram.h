// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <optional>

namespace nurv::test {

/// The absolute path of the built command line program.
[[nodiscard]] QString nurvPath();

/// Runs it to its end.
[[nodiscard]] ProgramResult runNurv(const QStringList &arguments);

/// A run, and what it took: the memory of the process that took most, and the processor's time of all together.
struct MeasuredResult : ProgramResult {
    qint64 peakBytes = 0;
    double processorSeconds = 0;
};
/// Runs it to its end, with its texts by way of files in the folder. Fails the test when it runs for longer than
/// two minutes.
[[nodiscard]] MeasuredResult runMeasured(const TestFolder &folder, const QStringList &arguments);

/// The program as it lies in an installation of its own, with another program, or none, in the place of
/// the one that reads tags.
class InstalledNurv {
public:
    /// `tagsProgram` is a script of the shell, whose descriptor 3 is the socket; without one nothing is there.
    InstalledNurv(const TestFolder &folder, const std::optional<QByteArray> &tagsProgram);
    [[nodiscard]] ProgramResult run(const QStringList &arguments) const { return runProgram(m_path, arguments); }

private:
    QString m_path;
};

/// The objects of an output with one JSON object a line. Fails the test when a
/// line is none.
[[nodiscard]] QList<QJsonObject> jsonLines(const QByteArray &output);

/// The command lines of all processes of the machine that mention the text.
[[nodiscard]] QList<QByteArray> processesMentioning(const QString &text);

/// A run that the test looks at while it goes on.
class RunningNurv {
public:
    explicit RunningNurv(const QStringList &arguments);
    /// Kills it when it still runs.
    ~RunningNurv();

    void sendSignal(int number);
    /// Whether one of its threads comes to be held by the system in an open(), within the usual limit.
    [[nodiscard]] bool waitForHeldOpen();
    /// Whether standard error comes to hold the text within the usual limit.
    [[nodiscard]] bool waitForError(const QByteArray &text);
    /// The result, once it has ended; fails the test when it does not end.
    [[nodiscard]] ProgramResult finish();
    /// Ends the reading of its standard output, as `head` does.
    void closeOutput() { m_process.closeReadChannel(QProcess::StandardOutput); }

private:
    QProcess m_process;
    QByteArray m_errors;
};

} // namespace nurv::test
