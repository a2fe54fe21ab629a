// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>

namespace nurv {

class ByteSource;

/// How many samples per channel a FLAC file holds by the number and the length that its last
/// frame tells of itself (RFC 9639, section 9): encoders that write into a pipe leave no
/// total in the header, and a total may be wrong. `start`: of the file's header.
///
/// Reads the header and the end of the file, two pieces. Nothing when the file does not end
/// with a frame whose two checksums are right, and when it only looks a hundred times as if it
/// did; tags behind it may be ID3v1 only.
[[nodiscard]] std::optional<std::int64_t> framesByLastFlacFrame(const ByteSource &source, std::int64_t start);

} // namespace nurv
