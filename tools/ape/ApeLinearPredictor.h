// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFrameCoder.h"

// Local to the source that includes it.

namespace nurv {
namespace {

inline int32_t signOf(int32_t value)
{
    return (value >> 31) | static_cast<int32_t>((0U - static_cast<uint32_t>(value)) >> 31);
}

inline int32_t wrappedAdd(int32_t left, int32_t right)
{
    return static_cast<int32_t>(static_cast<uint32_t>(left) + static_cast<uint32_t>(right));
}

inline int32_t wrappedSubtract(int32_t left, int32_t right)
{
    return static_cast<int32_t>(static_cast<uint32_t>(left) - static_cast<uint32_t>(right));
}

/// The part of a value that the first-order filters take to come from the one before.
inline int32_t faded(int32_t before)
{
    return static_cast<int32_t>(31U * static_cast<uint32_t>(before)) >> 5;
}

/// The latest of a row of values and the differences before it, newest first, with the
/// adaptive weights that predict from them.
template<int kLength>
struct WeightedHistory {
    int32_t values[kLength] = {};
    int32_t signs[kLength] = {};
    int32_t weights[kLength] = {};

    void push(int32_t value)
    {
        for (int i = kLength - 1; i > 1; --i) {
            values[i] = values[i - 1];
            signs[i] = signs[i - 1];
        }
        values[1] = wrappedSubtract(value, values[0]);
        signs[1] = signOf(values[1]);
        values[0] = value;
        signs[0] = signOf(value);
    }

    [[nodiscard]] int32_t wrappedSum() const
    {
        uint32_t sum = 0;
        for (int i = 0; i < kLength; ++i)
            sum += static_cast<uint32_t>(values[i]) * static_cast<uint32_t>(weights[i]);
        return static_cast<int32_t>(sum);
    }

    [[nodiscard]] int64_t wideSum() const
    {
        uint64_t sum = 0;
        for (int i = 0; i < kLength; ++i)
            sum += static_cast<uint64_t>(int64_t{values[i]} * weights[i]);
        return static_cast<int64_t>(sum);
    }

    void adapt(int32_t sign)
    {
        for (int i = 0; i < kLength; ++i)
            weights[i] = wrappedAdd(weights[i], sign * signs[i]);
    }
};

/// Predicts a channel from its own past and from the other channel: the stage between the
/// samples and the filters of the level. `kHasSide` is false where there is no other one.
class LinearPredictor {
public:
    /// What is left of `value` after prediction.
    template<bool kHasSide, ApeSums kSums>
    int32_t encode(int32_t value, int32_t side)
    {
        const int32_t prediction = predict<kHasSide, kSums>(side);
        const int32_t filtered = wrappedSubtract(value, faded(m_lastValue));
        m_lastValue = value;
        const int32_t residual = wrappedSubtract(filtered, prediction);
        adapt<kHasSide>(residual, filtered);
        return residual;
    }

    template<bool kHasSide, ApeSums kSums>
    int32_t decode(int32_t residual, int32_t side)
    {
        const int32_t filtered = wrappedAdd(residual, predict<kHasSide, kSums>(side));
        adapt<kHasSide>(residual, filtered);
        m_lastValue = wrappedAdd(filtered, faded(m_lastValue));
        return m_lastValue;
    }

private:
    template<bool kHasSide, ApeSums kSums>
    int32_t predict(int32_t side)
    {
        m_own.push(m_lastFiltered);
        if constexpr (kHasSide) {
            m_side.push(wrappedSubtract(side, faded(m_lastSide)));
            m_lastSide = side;
        }
        if constexpr (kSums == ApeSums::Wide) {
            const uint64_t halfSide = kHasSide ? static_cast<uint64_t>(m_side.wideSum() >> 1) : 0;
            const uint64_t sum = static_cast<uint64_t>(m_own.wideSum()) + halfSide;
            return static_cast<int32_t>(static_cast<int64_t>(sum) >> 10);
        } else {
            const int32_t halfSide = kHasSide ? m_side.wrappedSum() >> 1 : 0;
            return wrappedAdd(m_own.wrappedSum(), halfSide) >> 10;
        }
    }

    template<bool kHasSide>
    void adapt(int32_t residual, int32_t filtered)
    {
        const int32_t sign = signOf(residual);
        m_own.adapt(sign);
        if constexpr (kHasSide)
            m_side.adapt(sign);
        m_lastFiltered = filtered;
    }

    int32_t m_lastValue = 0;
    int32_t m_lastSide = 0;
    int32_t m_lastFiltered = 0;
    WeightedHistory<4> m_own = {{}, {}, {360, 317, -109, 98}};
    WeightedHistory<5> m_side;
};

} // namespace
} // namespace nurv
