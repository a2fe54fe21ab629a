// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ArgumentParser.h"
#include "cli/Console.h"
#include "cli/ExitStatus.h"

#include <QByteArray>
#include <QList>

namespace nurv {

class BatchCommand;

/// The program `nurv`, from its arguments to its exit status.
class CliApplication {
public:
    /// Runs to the end of the command. `argc` and `argv` are those of main().
    [[nodiscard]] static int main(int argc, char **argv);

private:
    CliApplication(int &argc, char **argv);

    ExitStatus run();
    ExitStatus runCommand(const QByteArray &name, const QList<QByteArray> &words);
    ExitStatus runBatch(const BatchCommand &command, const ParsedArguments &arguments);
    ExitStatus tellUsageError(const QString &command, const UsageError &error);

    int &m_argc;
    char **m_argv;
    Console m_console;
};

} // namespace nurv
