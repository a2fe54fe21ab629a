// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shorten/ShortenFormat.h"

#include <cstdint>
#include <string>

namespace nurv {
class WaveReader;
struct WaveFormat;
} // namespace nurv

namespace nurv::shorten {

class ShortenEncoder;

/// The header for the stream of a WAV file. Throws ToolError(UnsupportedFormat), with
/// `name` in front, where samples are not integers of 8 or 16 bits in 1 to 8 channels.
[[nodiscard]] StreamHeader streamHeaderFor(const WaveFormat &format, const std::string &name);

/// Encodes the whole WAV file, from its first byte to its last, and ends the stream.
/// Returns the stream's length in bytes.
uint64_t encodeWave(WaveReader &wave, const StreamHeader &header, ShortenEncoder &encoder);

} // namespace nurv::shorten
