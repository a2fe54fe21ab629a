// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

namespace nurv {

struct WaveHeader;
struct WaveInfo;

/// The first thing that differs between the shapes of two sounds: "number of channels". Null where none does. A
/// header with a subformat is no difference by itself.
[[nodiscard]] const char *differenceOf(const WaveHeader &one, const WaveHeader &other);

/// The same among many.
[[nodiscard]] const char *differenceAmong(std::span<const WaveInfo> infos);

} // namespace nurv
