// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Command.h"

namespace nurv {

/// `nurv settings`: the settings of the window, read and stored without it.
class SettingsCommand final : public Command {
public:
    [[nodiscard]] const CommandSpec &spec() const override;
    /// Lists all, prints one, stores one, or forgets what was stored of one. Failed: the file could not be written.
    [[nodiscard]] ExitStatus run(const ParsedArguments &arguments, Console &console) const override;
};

} // namespace nurv
