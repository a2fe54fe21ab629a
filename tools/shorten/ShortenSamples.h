// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shorten/ShortenFormat.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace nurv::shorten {

/// Writes one channel's block into interleaved frames: shifted up, clipped to the
/// type's range, in the type's byte order. `at` is the channel's first sample and
/// `channels` the distance, in samples, from one to the next.
void storeSamples(FileType type, std::span<const int32_t> samples, unsigned shift, uint8_t *at, size_t channels);

/// The other way: one channel's block of interleaved frames. Unsigned8 and
/// Signed16LittleEndian only, which is what WAV files hold.
void loadSamples(FileType type, const uint8_t *at, size_t channels, std::span<int32_t> samples);

} // namespace nurv::shorten
