// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace nurv {

/// How the bytes of a sample stand in a file.
struct PcmCoding {
    int bytesPerSample = 0; ///< 1 to 4
    bool isBigEndian = false;
    bool isUnsigned = false; ///< only where a sample is one byte, or Shorten's rare ones of two

    bool operator==(const PcmCoding &) const = default;
};

// Samples between the form of files and the one that comparisons use: integers in the high
// bits of 32, floats as their bit patterns.
namespace pcmSamples {

/// Reads `count` samples.
void widen(const std::uint8_t *bytes, std::size_t count, const PcmCoding &coding, std::int32_t *samples);

/// Writes the high `bits` bits of every sample (1 to 32) as signed little-endian numbers of
/// as many bytes as they need: what the MD5 of FLAC is made of.
void narrow(const std::int32_t *samples, std::size_t count, int bits, std::uint8_t *bytes);

} // namespace pcmSamples

} // namespace nurv
