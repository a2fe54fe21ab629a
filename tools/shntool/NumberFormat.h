// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace nurv {

/// The number in a format as printf(3) has it, with one place for it at most: "%02d", "disc %u". Nothing for a
/// format that asks for anything else.
[[nodiscard]] std::optional<std::string> formattedNumber(const std::string &format, int number);

} // namespace nurv
