// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ArgumentParser.h"

#include <QString>

#include <vector>

namespace nurv {

/// What `nurv --help` prints, with one line for each command.
[[nodiscard]] QString generalHelp(const std::vector<const CommandSpec *> &commands);

/// What `nurv <command> --help` prints.
[[nodiscard]] QString commandHelp(const CommandSpec &command);

/// What `nurv --version` prints.
[[nodiscard]] QString versionText();

} // namespace nurv
