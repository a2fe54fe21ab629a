// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/CommandTree.h"

#include <QString>

#include <vector>

namespace nurv {

/// What `nurv --help` prints, with one line for each command.
[[nodiscard]] QString generalHelp(const CommandTree &commands);

/// What `nurv <word> --help` prints for the first word of several commands.
[[nodiscard]] QString groupHelp(const QString &word, const std::vector<const Command *> &group);

/// What `nurv <command> --help` prints.
[[nodiscard]] QString commandHelp(const CommandSpec &command);

/// What `nurv --version` prints.
[[nodiscard]] QString versionText();

} // namespace nurv
