// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/CommandTree.h"

#include <QString>

namespace nurv {

// Scripts that complete the command line of `nurv`: commands, options, and the values of options.

/// A function for bash's `complete -F`.
[[nodiscard]] QString bashCompletion(const CommandTree &commands);
/// A file "_nurv" of zsh's completion system.
[[nodiscard]] QString zshCompletion(const CommandTree &commands);
/// `complete` lines for fish.
[[nodiscard]] QString fishCompletion(const CommandTree &commands);

} // namespace nurv
