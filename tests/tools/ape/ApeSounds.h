// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFrameCoder.h"

#include <QByteArray>
#include <QList>

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace nurv::test {

constexpr ApeLevel kApeLevels[] = {ApeLevel::Fast, ApeLevel::Normal, ApeLevel::High, ApeLevel::ExtraHigh,
                                   ApeLevel::Insane};

enum class Sound { Silence, Square, Alternation, Noise, Bursts, Sweep, EqualChannels, OneChannel, Music };

struct PcmShape {
    unsigned bits = 16;
    unsigned channels = 2;
    uint32_t rate = 44100;
};

/// Interleaved samples, as wide as `shape.bits`. The same values give the same samples.
[[nodiscard]] std::vector<int32_t> makeSamples(Sound sound, const PcmShape &shape, size_t blocks);

/// The two long sounds of the reference values, 'A' and 'B'.
[[nodiscard]] std::vector<int32_t> referenceSamples(char set, const PcmShape &shape);

/// Little-endian PCM as in a WAV file.
[[nodiscard]] QByteArray pcmOf(const std::vector<int32_t> &samples, const PcmShape &shape);

/// A WAV file with a header of 44 bytes. No pad byte is added.
[[nodiscard]] QByteArray wavOf(const QByteArray &pcm, const PcmShape &shape);
[[nodiscard]] QByteArray wavOf(Sound sound, const PcmShape &shape, size_t blocks);

[[nodiscard]] std::span<const uint8_t> bytesOf(const QByteArray &bytes);

/// What the library makes of the file; throws as it does.
[[nodiscard]] QByteArray encoded(const QByteArray &wav, ApeLevel level, ApeInstructionSet set = bestInstructionSet());
[[nodiscard]] QByteArray decoded(const QByteArray &ape, ApeInstructionSet set = bestInstructionSet());

/// Compares whole files without printing them.
[[nodiscard]] bool isSame(const QByteArray &left, const QByteArray &right);

} // namespace nurv::test
