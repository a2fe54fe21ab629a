// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Command.h"

namespace nurv {

class Console;

/// `nurv recover`: removes what runs that were killed left half made, and names what
/// they did not finish.
class RecoverCommand final : public Command {
public:
    [[nodiscard]] const CommandSpec &spec() const override;
    /// Lists, asks once, cleans up. Blocks. Ok when nothing is left to do; Failed when
    /// something was left, or the answer was no; Usage when there was nobody to ask.
    [[nodiscard]] ExitStatus run(const ParsedArguments &arguments, Console &console) const override;
};

/// One line for the beginning of a batch, when an earlier run left something behind.
/// Changes nothing. Whether there is something that `nurv recover` would do.
[[nodiscard]] bool tellOfUnfinishedWork(Console &console);

} // namespace nurv
