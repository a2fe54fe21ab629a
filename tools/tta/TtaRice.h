// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

namespace nurv {

/// The adaptive Rice parameters of one channel (TTA1, frame coding). A value below
/// 2^k0 is written in k0 bits; a larger one less 2^k0 as a unary and a k1-bit part.
struct TtaRice {
    struct Parameter {
        uint32_t k = 10;
        uint32_t mean = 1U << (10 + 4); ///< 16 times the moving mean of the values

        /// All bits of `mask` are 1, or all are 0: nothing is to be done then. Which of the
        /// two is as good as random, and a branch would cost more than the work.
        [[gnu::always_inline]] void adapt(uint32_t value, uint32_t mask = ~0U)
        {
            mean += (value - (mean >> 4)) & mask;
            // The first and the last threshold keep k within them; a checked index costs a
            // twentieth of all the work on a sample.
            const uint32_t *const threshold = kThresholds.data() + k;
            if ((mean | ~mask) < threshold[0]) [[unlikely]]
                --k;
            else if ((mean & mask) > threshold[1]) [[unlikely]]
                ++k;
        }
    };

    /// [k]: 2^(k+4), at most 2^31. The first and the last keep k within 0 to 31.
    static constexpr std::array<uint32_t, 33> kThresholds = [] {
        std::array<uint32_t, 33> thresholds{};
        for (uint32_t k = 1; k < 32; ++k)
            thresholds[k] = k < 27 ? 1U << (k + 4) : 1U << 31;
        thresholds[32] = UINT32_MAX;
        return thresholds;
    }();

    Parameter shallow; ///< k0
    Parameter deep;    ///< k1

    /// 0, 1, -1, 2, -2 ... as 0, 1, 2, 3, 4 ...
    [[gnu::always_inline]] static uint32_t fold(int32_t value)
    {
        const auto isNotPositive = static_cast<uint32_t>((int64_t{value} - 1) >> 63);
        return ((static_cast<uint32_t>(value) << 1) - 1) ^ isNotPositive;
    }

    [[gnu::always_inline]] static int32_t unfold(uint32_t value)
    {
        const uint32_t isEven = (value & 1) - 1;
        return static_cast<int32_t>((((value >> 1) + (value & 1)) ^ isEven) - isEven);
    }

    /// The parameter of a value: `isDeep` is a mask.
    [[gnu::always_inline]] uint32_t k(uint32_t isDeep) const { return shallow.k ^ ((shallow.k ^ deep.k) & isDeep); }
};

} // namespace nurv
