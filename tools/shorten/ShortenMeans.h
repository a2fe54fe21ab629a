// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shorten/ShortenFormat.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace nurv::shorten {

/// The means of a channel's last blocks, from which DIFF0 and QLPC predict the level
/// that the samples swing around. Encoder and decoder keep the same ones.
class ShortenMeans {
public:
    explicit ShortenMeans(const StreamHeader &header);

    /// The level expected of the next block, in samples that are shifted down already.
    [[nodiscard]] int32_t level(unsigned shift) const;

    /// Takes the block's sum into account, of samples that are shifted down.
    void add(int64_t sum, uint32_t frames, unsigned shift);

    /// The remembered means, the oldest first, of samples as they are in the file.
    /// There is always one, which never changes when the stream remembers none.
    [[nodiscard]] size_t count() const { return m_means.size(); }
    [[nodiscard]] int32_t at(size_t age) const { return m_means[(m_oldest + age) % m_means.size()]; }

private:
    std::vector<int32_t> m_means; ///< a ring
    size_t m_oldest = 0;
    int64_t m_sum = 0;
    bool m_isConstant;
    /// Since version 2: rounded, and kept as the samples are in the file.
    bool m_isRounded;
};

} // namespace nurv::shorten
