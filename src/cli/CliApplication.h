// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ArgumentParser.h"
#include "cli/Console.h"
#include "cli/ExitStatus.h"

#include <QByteArray>
#include <QList>

namespace nurv {

class Command;
class CommandTree;

/// A program of commands, from its arguments to its exit status.
class CliApplication {
public:
    /// Runs to the end of the command. `argc` and `argv` are those of main().
    [[nodiscard]] static int main(int argc, char **argv, const CommandTree &commands);

private:
    CliApplication(int &argc, char **argv, const CommandTree &commands);

    ExitStatus run();
    ExitStatus runCommand(const Command &command, const QList<QByteArray> &words);
    ExitStatus tellUnknown(const QList<QByteArray> &words);
    ExitStatus tellUsageError(const QString &command, const UsageError &error);

    int &m_argc;
    char **m_argv;
    const CommandTree &m_commands;
    Console m_console;
};

} // namespace nurv
