// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/ByteSource.h"

#include <cstdint>
#include <optional>

namespace nurv {

/// How much of an MPEG audio file is there, 0 to 1, after the bytes that encoders count in a "Xing" or "Info" header in
/// its first frame, which begins at `start`. Nothing for a file without such a count. One read.
[[nodiscard]] std::optional<double> shareOfCountedMpegAudio(const ByteSource &source, std::int64_t start);

} // namespace nurv
