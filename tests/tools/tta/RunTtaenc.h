// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QString>
#include <QStringList>

namespace nurv::test {

[[nodiscard]] inline QString ttaenc()
{
    return QString::fromLocal8Bit(NURV_TTAENC);
}

[[nodiscard]] inline ProgramResult runTtaenc(const QStringList &arguments, const QByteArray &input = {})
{
    return runProgram(ttaenc(), arguments, input);
}

/// Runs a line of shell with the program as $0 and the arguments as $1 and so on.
[[nodiscard]] inline ProgramResult runShell(const QString &line, const QStringList &arguments)
{
    return runProgram(QStringLiteral("/bin/bash"), QStringList{QStringLiteral("-c"), line, ttaenc()} + arguments);
}

} // namespace nurv::test
