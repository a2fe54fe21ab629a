// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

struct AVFrame;

// Samples between their forms. "Client" samples are interleaved signed big-endian
// integers of 1 to 4 bytes, packed: the one form in which readers give and writers
// take them. Narrower integers come to stand in the high bits of wider ones.
namespace nurv::audioSamples {

/// Packs frames of a decoded block into client samples. Integers keep all bits when
/// the client samples are at least as wide; floating point is rounded and limited to
/// full scale. False for sample types that no decoder in use gives.
[[nodiscard]] bool toClient(const AVFrame &block, int firstFrame, int frames, int bytesPerSample, std::uint8_t *client);

/// Unpacks client samples into the planes of a block that holds S16P, S32P or FLTP,
/// from frame `firstFrame` of the block on. False for other sample types.
[[nodiscard]] bool fromClient(const std::uint8_t *client, int frames, int bytesPerSample, AVFrame &block,
                              int firstFrame);

/// Turns the byte order of every sample, in place.
void swapBytes(std::uint8_t *samples, std::size_t byteCount, int bytesPerSample);

/// Turns 8-bit samples from unsigned to signed and back, in place.
void toggleSign(std::uint8_t *samples, std::size_t byteCount);

} // namespace nurv::audioSamples
