// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ArgumentParser.h"
#include "cli/ExitStatus.h"

namespace nurv {

class Console;

/// `nurv doctor`: which external programs are there.
class DoctorCommand {
public:
    [[nodiscard]] static const CommandSpec &spec();
    /// Starts every program once for its version. Blocks. Returns MissingProgram
    /// when one that `encode` or `decode` cannot do without is missing.
    [[nodiscard]] static ExitStatus run(const ParsedArguments &arguments, Console &console);
};

} // namespace nurv
