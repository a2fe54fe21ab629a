// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFormat.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QString>
#include <QStringList>

namespace nurv::test {

[[nodiscard]] inline QString mac()
{
    return QString::fromLocal8Bit(NURV_MAC);
}

[[nodiscard]] inline ProgramResult runMac(const QStringList &arguments, const QByteArray &input = {})
{
    return runProgram(mac(), arguments, input);
}

/// The option that chooses the level.
[[nodiscard]] inline QString levelOption(ApeLevel level)
{
    return QStringLiteral("-c%1").arg(static_cast<int>(level));
}

/// Runs a line of shell with the program as $0 and the arguments as $1 and so on.
[[nodiscard]] inline ProgramResult runShell(const QString &line, const QStringList &arguments)
{
    return runProgram(QStringLiteral("/bin/bash"), QStringList{QStringLiteral("-c"), line, mac()} + arguments);
}

} // namespace nurv::test
