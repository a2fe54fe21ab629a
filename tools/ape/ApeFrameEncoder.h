// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFrameCoder.h"

#include <functional>
#include <span>
#include <vector>

namespace nurv {

/// Makes frames of PCM: checksum, special code, coded samples. Reusable, one at a time.
class ApeFrameEncoder {
public:
    ApeFrameEncoder(ApeLevel level, unsigned bitsPerSample, unsigned channels,
                    ApeInstructionSet set = bestInstructionSet());

    /// `pcm`: whole blocks as in a WAV file, at least one. `onBlocks` is told now and then
    /// how many blocks were coded since. The result is good until the next call.
    std::span<const uint8_t> encode(std::span<const uint8_t> pcm, const std::function<void(size_t)> &onBlocks = {});

private:
    [[nodiscard]] bool isSilent(std::span<const uint8_t> pcm) const;
    [[nodiscard]] bool hasEqualChannels(std::span<const uint8_t> pcm) const;
    [[nodiscard]] uint32_t specialCode(std::span<const uint8_t> pcm) const;
    void encodeSamples(std::span<const uint8_t> pcm, bool asMono, ApeRangeEncoder &coder,
                       const std::function<void(size_t)> &onBlocks);
    void makeRoom(ApeRangeEncoder &coder, size_t bytes);

    unsigned m_bitsPerSample;
    unsigned m_channels;
    std::unique_ptr<ApeFrameCoder> m_coder;
    std::vector<int32_t> m_samples; ///< of one piece, interleaved
    std::vector<uint8_t> m_frame;
};

} // namespace nurv
