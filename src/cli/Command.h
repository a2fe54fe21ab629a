// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ArgumentParser.h"
#include "cli/ExitStatus.h"

namespace nurv {

class Console;

/// What a command of `nurv` does, and what may follow its name.
class Command {
public:
    virtual ~Command() = default;

    [[nodiscard]] virtual const CommandSpec &spec() const = 0;
    /// Runs to its end, with an application object around it; the arguments go together. Throws UsageError for what only
    /// a look at the disk tells.
    [[nodiscard]] virtual ExitStatus run(const ParsedArguments &arguments, Console &console) const = 0;
};

} // namespace nurv
