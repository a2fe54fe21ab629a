// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Command.h"

#include <memory>
#include <vector>

namespace nurv {

/// `nurv tags show`, `set` and `import-cue`, in that order.
[[nodiscard]] std::vector<std::unique_ptr<Command>> makeTagsCommands();

} // namespace nurv
