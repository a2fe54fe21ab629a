// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace nurv {

/// The kinds of files that have readers of their own.
enum class TagFormat : std::uint8_t { Mp3, Aiff, Flac, Ape, Tta, Wavpack, Mp4 };

} // namespace nurv
