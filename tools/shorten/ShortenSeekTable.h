// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shorten/ShortenFormat.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace nurv::shorten {

/// The state of a decoder just before the audio command of channel 0.
struct ShortenSeekPoint {
    uint64_t frame = 0;
    uint64_t bitPosition = 0; ///< in the bit stream, from kStreamOffset
    unsigned shift = 0;
    std::array<std::array<int32_t, 3>, 2> history{}; ///< by channel, the newest first
    std::array<std::array<int32_t, 4>, 2> means{};   ///< by channel, the oldest first
};

/// The table that players of live recordings look for behind a stream, to start in its
/// middle. An entry describes a reader that takes 32-bit words from a buffer of 512 bytes.
///
/// It holds 80 bytes for every 25600 frames, and gives up before 4 GiB of stream or 2^32
/// frames, beyond which the format has no numbers.
class ShortenSeekTable {
public:
    /// Whether the format has room for what decoders of such streams keep.
    [[nodiscard]] static bool canDescribe(const StreamHeader &header);

    /// Whether the block that starts with this frame is one to add a point for.
    [[nodiscard]] bool wantsPoint(uint64_t frame) const { return frame >= m_nextFrame; }
    void addPoint(const ShortenSeekPoint &point);

    /// Takes notice of the next bytes of the bit stream: whole 32-bit words, and the
    /// word that a point lies in after the point was added.
    void watch(std::span<const uint8_t> words);

    /// The table as it follows a stream of that many bytes, magic and version included.
    /// Empty when there can be none.
    [[nodiscard]] std::vector<uint8_t> finish(uint64_t streamBytes);

private:
    uint64_t m_nextFrame = 0;
    bool m_isTooLong = false;
    std::vector<uint8_t> m_entries;
    uint64_t m_watched = 0;        ///< bytes of the bit stream
    size_t m_firstWithoutWord = 0; ///< in `m_entries`
};

} // namespace nurv::shorten
