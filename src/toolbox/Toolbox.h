// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Tool.h"

#include <vector>

namespace nurv {

/// The tools in the order of their pages, also those that are not there.
[[nodiscard]] const std::vector<Tool> &toolbox();

} // namespace nurv
