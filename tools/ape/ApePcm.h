// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

namespace nurv {

/// The samples of little-endian PCM as a WAV file holds it: 8 bits unsigned, 16 and 24 bits
/// signed. `samples` has one element for each of `pcm`.
void readPcm(std::span<const uint8_t> pcm, unsigned bitsPerSample, std::span<int32_t> samples);

/// The counterpart. Samples that are too large lose their upper bits.
void writePcm(std::span<const int32_t> samples, unsigned bitsPerSample, std::span<uint8_t> pcm);

} // namespace nurv
