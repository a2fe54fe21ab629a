// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Command.h"

#include <memory>
#include <vector>

namespace nurv {

/// `nurv shntool len`, `info`, `cmp`, `trim`, `pad`, `strip`, `split`, `join` and `cue`, in that order.
[[nodiscard]] std::vector<std::unique_ptr<Command>> makeSHNtoolCommands();

} // namespace nurv
