// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Command.h"

#include <memory>
#include <vector>

namespace nurv {

/// "util rip", "util dvda", "util replaygain", "util deemphasis", "util rename".
[[nodiscard]] std::vector<std::unique_ptr<Command>> makeUtilCommands();

} // namespace nurv
