// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string_view>

namespace nurv {

// Of a folder in which the bundled shntool lets other programs work: the prefix, and behind it that many
// letters or digits. Who is killed leaves one; shntool and the recovery know it by its name.

inline constexpr std::string_view kPrivateFolderPrefix = ".nurv-shntool-";
inline constexpr std::size_t kPrivateFolderLetters = 6;

} // namespace nurv
