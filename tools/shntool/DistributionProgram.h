// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

namespace nurv {

/// The folder that this program is in, links followed.
[[nodiscard]] std::string ownFolder();

/// The shntool of the distribution: `usual` where that exists, else the first along
/// PATH that is not this program, nor another copy of it: one found by mistake is told
/// by the environment what is none. Nothing where there is none.
[[nodiscard]] std::optional<std::string> findDistributionProgram(const std::string &usual);

/// The absolute folders of PATH with this one at their end, unless it is among them.
[[nodiscard]] std::string pathWithFolder(const std::string &folder);

} // namespace nurv
