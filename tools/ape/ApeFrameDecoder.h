// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFrameCoder.h"

#include <functional>
#include <span>
#include <vector>

namespace nurv {

/// Turns frames into PCM and checks it. Reusable, one frame at a time.
class ApeFrameDecoder {
public:
    /// Blocks that are decoded before the decoder looks where it stands.
    static constexpr size_t kBlocksPerPiece = 1024;
    /// Bytes that follow a frame in memory: the decoder reads them when the frame is
    /// damaged, before it notices.
    static constexpr size_t kPaddingBytes = kBlocksPerPiece * 2 * kApeMaxBytesPerSample + kApeRangeCoderSlack;

    ApeFrameDecoder(ApeLevel level, unsigned bitsPerSample, unsigned channels,
                    ApeInstructionSet set = bestInstructionSet());

    /// `frame` is followed by `kPaddingBytes` bytes that are not part of it. Returns
    /// the PCM of that many blocks as in a WAV file, good until the next call. Throws
    /// ApeError(InvalidChecksum), or ApeError(Decompressing) for bytes that no encoder
    /// writes. `onBlocks` is told now and then how many blocks were decoded since.
    std::span<const uint8_t> decode(std::span<const uint8_t> frame, size_t blocks,
                                    const std::function<void(size_t)> &onBlocks = {});

private:
    struct Head {
        uint32_t crc = 0;
        uint32_t special = 0;
        size_t bytes = 0;
    };

    [[nodiscard]] static Head readHead(std::span<const uint8_t> frame);
    [[nodiscard]] bool isSilent(uint32_t special) const;
    void decodeSamples(std::span<const uint8_t> coded, bool asMono, ApeSums sums,
                       const std::function<void(size_t)> &onBlocks);
    void check(uint32_t crc) const;

    unsigned m_bitsPerSample;
    unsigned m_channels;
    std::unique_ptr<ApeFrameCoder> m_coder;
    /// How wide the sums were that the last frame was coded with.
    ApeSums m_sums = ApeSums::Wrapping;
    std::vector<int32_t> m_samples; ///< of one piece, interleaved
    std::vector<uint8_t> m_pcm;
};

} // namespace nurv
