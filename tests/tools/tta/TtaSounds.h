// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tta/TtaHeader.h"

#include <QByteArray>

#include <cstdint>
#include <span>
#include <vector>

namespace nurv::test {

enum class Sound { Silence, Square, Noise, FullScale, Sweep, Music };

/// A TTA header of that shape.
[[nodiscard]] TtaHeader shapeOf(unsigned channels, unsigned bits, uint32_t samples, uint32_t rate = 44100);

/// Interleaved little-endian samples as in a WAV file; the same values give the same bytes.
[[nodiscard]] std::vector<uint8_t> makePcm(Sound sound, const TtaHeader &shape);

/// A canonical WAV file.
[[nodiscard]] QByteArray wavOf(const std::vector<uint8_t> &pcm, const TtaHeader &shape);

/// A whole TTA1 file, by our encoder.
[[nodiscard]] std::vector<uint8_t> ttaOf(const std::vector<uint8_t> &pcm, const TtaHeader &shape);

[[nodiscard]] QByteArray toQt(std::span<const uint8_t> bytes);

} // namespace nurv::test
