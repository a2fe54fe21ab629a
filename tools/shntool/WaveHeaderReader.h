// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace nurv {

class RunMessages;
class WaveSource;
struct WaveHeader;

/// Why a head could not be read.
enum class WaveHeaderFault {
    None,
    NotWave,   ///< it begins as no WAV file does
    Malformed, ///< it contradicts itself, or holds what is no integer PCM
    NoBytes,   ///< the source gave nothing at all
};

/// Reads the head of a WAV file, up to its first sample: RIFF or RF64, plain or with a subformat. Chunks of odd
/// size may be padded or not. Tells what is wrong as a warning that names `fileName`. At most 64 MiB are kept.
[[nodiscard]] WaveHeaderFault readWaveHeader(WaveSource &source, const std::string &fileName, const RunMessages &messages,
                                             WaveHeader &header);

/// What the number of a format stands for: "Microsoft PCM".
[[nodiscard]] std::string waveFormatName(uint16_t tag);

} // namespace nurv
