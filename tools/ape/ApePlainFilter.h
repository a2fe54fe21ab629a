// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeLinearPredictor.h"

#include <cstring>

// Local to the source that includes it.

namespace nurv {
namespace {

/// How far a filter's weights move for an entry of its history: the sign of the entry
/// times 1, 2 or 4, by its size against the running average.
class StepSize {
public:
    int32_t next(int32_t value)
    {
        const int64_t size = value < 0 ? -int64_t{value} : int64_t{value};
        const int32_t step = 1 + (3 * size > 4 * m_average) + 2 * (size > 3 * m_average);
        m_average += (size - m_average) / 16;
        return signOf(value) * step;
    }

private:
    int64_t m_average = 0;
};

template<int kShift, ApeSums kSums>
int32_t roundedShift(int32_t sum)
{
    constexpr int32_t kHalf = 1 << (kShift - 1);
    if constexpr (kSums == ApeSums::Wide)
        return static_cast<int32_t>((int64_t{sum} + kHalf) >> kShift);
    return wrappedAdd(sum, kHalf) >> kShift;
}

inline int16_t clampTo16(int32_t value)
{
    return static_cast<int16_t>(value < -32768 ? -32768 : value > 32767 ? 32767 : value);
}

/// A sign-LMS filter of `kOrder` 16-bit weights: predicts a value from the last ones, and
/// moves each weight by the sign of what it missed.
template<int kOrder, int kShift>
class PlainFilter {
public:
    template<ApeSums kSums>
    int32_t encode(int32_t value)
    {
        const int32_t residual = wrappedSubtract(value, roundedShift<kShift, kSums>(dotProduct()));
        advance(value, residual);
        return residual;
    }

    template<ApeSums kSums>
    int32_t decode(int32_t residual)
    {
        const int32_t value = wrappedAdd(residual, roundedShift<kShift, kSums>(dotProduct()));
        advance(value, residual);
        return value;
    }

private:
    static constexpr int kWindow = 512;

    [[nodiscard]] int32_t dotProduct() const
    {
        const int16_t *const values = m_values + m_at - kOrder;
        uint32_t sum = 0;
        for (int i = 0; i < kOrder; ++i)
            sum += static_cast<uint32_t>(values[i] * m_weights[i]);
        return static_cast<int32_t>(sum);
    }

    void advance(int32_t value, int32_t residual)
    {
        int16_t *const steps = m_steps + m_at;
        const int32_t sign = signOf(residual);
        for (int i = 0; i < kOrder; ++i)
            m_weights[i] = static_cast<int16_t>(m_weights[i] + sign * steps[i - kOrder]);
        // A step fades as it grows older.
        steps[0] = static_cast<int16_t>(8 * m_stepSize.next(value));
        for (const int age : {1, 2, 8})
            steps[-age] = static_cast<int16_t>(steps[-age] >> 1);
        m_values[m_at] = clampTo16(value);
        if (++m_at == kOrder + kWindow)
            moveToFront();
    }

    void moveToFront()
    {
        std::memmove(m_values, m_values + kWindow, kOrder * sizeof *m_values);
        std::memmove(m_steps, m_steps + kWindow, kOrder * sizeof *m_steps);
        m_at = kOrder;
    }

    static_assert(kWindow >= 8 && kOrder >= 8);

    int16_t m_weights[kOrder] = {};
    int16_t m_values[kOrder + kWindow] = {}; ///< oldest first, up to `m_at`
    int16_t m_steps[kOrder + kWindow] = {};
    int m_at = kOrder;
    StepSize m_stepSize;
};

} // namespace
} // namespace nurv
