// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/CommandTree.h"

namespace nurv {

/// The commands of `nurv`.
[[nodiscard]] const CommandTree &commands();

} // namespace nurv
