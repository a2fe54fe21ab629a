// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TestProgram.h"

#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace nurv::test {

/// The absolute path of the built command line program.
[[nodiscard]] QString nurvPath();

/// Runs it to its end.
[[nodiscard]] ProgramResult runNurv(const QStringList &arguments);

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
