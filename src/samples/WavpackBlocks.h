// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/SampleStream.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace nurv {

class ByteSource;

/// The block headers of a WavPack file (versions 4 and 5).
class WavpackBlocks {
public:
    /// What the header of one block says.
    struct Block {
        std::int64_t size = 0; ///< bytes, with the header
        std::uint32_t frames = 0;
        std::int64_t firstFrame = 0;
        std::optional<std::int64_t> totalFrames; ///< of the file; the first block tells
        std::uint32_t flags = 0;

        [[nodiscard]] bool isFirstOfFrame() const { return (flags & 0x800) != 0; }
        [[nodiscard]] bool isHybrid() const { return (flags & 0x8) != 0; }
        [[nodiscard]] bool isFloat() const { return (flags & 0x80) != 0; }
        [[nodiscard]] bool isDsd() const { return (flags & 0x80000000) != 0; }
        /// Bits of a sample: what its bytes hold without those that are 0 in every one.
        [[nodiscard]] int bitsPerSample() const
        {
            return (static_cast<int>(flags & 3) + 1) * 8 - static_cast<int>(flags >> 13 & 0x1F);
        }
    };

    /// Nothing when there is none at the offset.
    [[nodiscard]] static std::optional<Block> readBlock(const ByteSource &source, std::int64_t offset);

    /// Goes through all blocks from the offset on: one small read for each. Throws
    /// NurvFailure at what is no block and no tag.
    WavpackBlocks(const ByteSource &source, std::int64_t start);

    /// Samples per channel in all blocks.
    [[nodiscard]] std::int64_t heldFrames() const { return m_heldFrames; }
    /// The offset behind the last block, where only tags follow.
    [[nodiscard]] std::int64_t soundEnd() const { return m_soundEnd; }
    [[nodiscard]] bool isLossless() const { return m_isLossless; }
    /// The numbers of the blocks' first frames do not follow from their lengths.
    [[nodiscard]] bool isBroken() const { return m_isBroken; }
    /// Of the file that the sound came from, stored behind the last sample.
    [[nodiscard]] const std::vector<std::uint8_t> &storedTrailer() const { return m_trailer; }

private:
    void add(const Block &block);
    void readTrailer(const ByteSource &source, std::int64_t offset, const Block &block);

    std::int64_t m_heldFrames = 0;
    std::int64_t m_soundEnd = 0;
    bool m_isLossless = true;
    bool m_isBroken = false;
    std::vector<std::uint8_t> m_trailer;
};

} // namespace nurv
