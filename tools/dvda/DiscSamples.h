// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dvda/DvdAudioFormat.h"

#include <cstdint>
#include <span>

namespace nurv {

/// Puts PCM as WAV files have it into the order of a disc, in units of two sample frames: channel group 2 before group
/// 1, and in each the two high bytes of all samples, most significant first, before their low bytes. `pcm` holds whole
/// units; `out` gets as many bytes.
void putDiscSamples(const DvdAudioFormat &format, std::span<const uint8_t> pcm, uint8_t *out);

} // namespace nurv
