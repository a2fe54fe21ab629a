// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace nurv {

/// Whether a Shorten file ends with the table that players look for: "yes", "no", or why that cannot be told.
[[nodiscard]] std::string shortenSeekability(const std::string &fileName);

} // namespace nurv
