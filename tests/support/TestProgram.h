// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace nurv::test {

/// How a program that a test ran ended, and what it wrote.
struct ProgramResult {
    int exitStatus = -1; ///< -1: not started, killed by a signal, or over the limit
    QByteArray output;
    QByteArray errors;
};

/// Runs a program of the machine (a name is looked up in PATH) to its end, for at
/// most 60 seconds, in the UTF-8 locale whatever the test's own is. Blocks without
/// running the event loop. Independent of the child processes of the system under
/// test, so that it can check them.
[[nodiscard]] ProgramResult runProgram(const QString &program, const QStringList &arguments,
                                       const QByteArray &input = {});

} // namespace nurv::test
