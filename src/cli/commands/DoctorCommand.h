// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Command.h"

namespace nurv {

/// `nurv doctor`: which external programs are there.
class DoctorCommand final : public Command {
public:
    [[nodiscard]] const CommandSpec &spec() const override;
    /// Starts every program once for its version. Blocks. Returns MissingProgram
    /// when one that `encode` or `decode` cannot do without is missing.
    [[nodiscard]] ExitStatus run(const ParsedArguments &arguments, Console &console) const override;
};

} // namespace nurv
