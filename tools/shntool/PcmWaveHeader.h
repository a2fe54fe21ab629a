// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace nurv {

struct WaveHeader;

/// The head of a WAV file for integer PCM of that shape, canonical where `header` is plain, else with a
/// subformat. `behindBytes` counts what follows the data, its pad byte included. Sizes beyond 32 bits make it an
/// RF64 file, as EBU Tech 3306 has it.
[[nodiscard]] std::vector<uint8_t> makeWaveHeader(const WaveHeader &header, uint64_t dataBytes, uint64_t behindBytes);

/// The same with no chunks behind the data but a pad byte where its number is odd.
[[nodiscard]] std::vector<uint8_t> makeWaveHeader(const WaveHeader &header, uint64_t dataBytes);

/// The header of the source with other sizes: all its chunks stay.
[[nodiscard]] std::vector<uint8_t> headerWithSizes(const WaveHeader &header, uint64_t dataBytes, uint64_t behindBytes);

/// What a decoder knows of sound: rate, channels and valid bits, in containers of whole bytes. The header gets
/// a subformat where `flac -d` writes one: for more than two channels, or bits that are not 8 or 16.
/// `channelMask` 0 takes the usual places.
[[nodiscard]] WaveHeader pcmHeader(uint32_t samplesPerSecond, unsigned channels, unsigned bits,
                                   uint32_t channelMask = 0);

} // namespace nurv
