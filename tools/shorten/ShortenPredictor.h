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

/// Finds the cheapest of the four difference predictors for a block, and the number
/// of low-order bits with which its residuals take the least room.
class ShortenPredictor {
public:
    explicit ShortenPredictor(uint32_t maxBlockSize);

    /// What `choose` found.
    struct Choice {
        Function function = Function::Diff0;
        unsigned codeBits = 1;           ///< of the folded residuals: the energy + 1
        uint64_t bits = 0;               ///< that the residuals take
        std::span<const uint32_t> codes; ///< the folded residuals, good until the next call
    };

    /// `samples` is the block, with the kMinHistory samples before it in front of it
    /// in memory.
    [[nodiscard]] Choice choose(std::span<const int32_t> samples, int32_t level);

private:
    static constexpr size_t kOrders = 4;

    void computeCodes(std::span<const int32_t> samples, int32_t level);

    std::array<std::vector<uint32_t>, kOrders> m_codes;
};

} // namespace nurv::shorten
