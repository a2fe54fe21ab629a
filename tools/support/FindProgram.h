// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

namespace nurv {

/// Where a program of that name is: along PATH, or beside this one; in the current folder never. A name with a slash
/// is its path. Nothing where it is nowhere.
[[nodiscard]] std::optional<std::string> findProgram(const std::string &name);

} // namespace nurv
