// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace nurv {

/// What depends on the sample size (TTA1, frame coding).
template<int BytesPerSample>
struct TtaShifts {
    static constexpr int kFixed = BytesPerSample == 1 ? 4 : 5;
    static constexpr int kAdaptive = BytesPerSample == 2 ? 9 : 10;
};

/// The first predictor of one channel: 15/16 or 31/32 of the previous value.
template<int Shift>
struct TtaFixedPredictor {
    int32_t previous = 0;

    [[gnu::always_inline]] int32_t prediction() const
    {
        return static_cast<int32_t>((int64_t{previous} * ((1 << Shift) - 1)) >> Shift);
    }
};

/// The adaptive filter of one channel: eight taps whose weights move by the sign of the
/// last error. All arithmetic wraps around at 32 bits (the sources are built with -fwrapv).
template<int Shift>
class TtaFilter {
public:
    [[gnu::always_inline]] int32_t predict()
    {
        const Lanes direction = broadcast(m_error >> 31);
        const Lanes isWrong = broadcast(-static_cast<int32_t>(m_error != 0));
        m_oldWeights += ((m_oldSteps & isWrong) ^ direction) - direction;
        m_newWeights += ((m_newSteps & isWrong) ^ direction) - direction;
        const int32_t sum = sumOf(m_oldWeights * m_oldHistory + m_newWeights * m_newHistory);
        m_oldSteps = nextLanes(m_oldSteps, m_newSteps);
        m_newSteps = ((m_newHistory >> 30) | Lanes{1, 2, 2, 4}) & Lanes{~0, ~1, ~1, ~3};
        m_oldHistory = nextLanes(m_oldHistory, m_newHistory);
        return (sum + (1 << (Shift - 1))) >> Shift;
    }

    /// Takes the value that was predicted, and by how much that went wrong.
    [[gnu::always_inline]] void learn(int32_t value, int32_t error)
    {
        m_error = error;
        // The value and its first, second and third difference, in lanes 3 to 0.
        const Lanes one = nextLanes(m_newHistory, Lanes{});
        const Lanes two = nextLanes(one, Lanes{});
        const Lanes three = nextLanes(two, Lanes{});
        m_newHistory = broadcast(value) - one - two - three;
    }

private:
    typedef int32_t Lanes [[gnu::vector_size(16)]];

    [[gnu::always_inline]] static Lanes broadcast(int32_t value) { return Lanes{value, value, value, value}; }

    [[gnu::always_inline]] static Lanes nextLanes(Lanes first, Lanes second)
    {
        return __builtin_shufflevector(first, second, 1, 2, 3, 4);
    }

    [[gnu::always_inline]] static int32_t sumOf(Lanes lanes)
    {
        lanes += __builtin_shufflevector(lanes, lanes, 2, 3, 0, 1);
        lanes += __builtin_shufflevector(lanes, lanes, 1, 0, 3, 2);
        return lanes[0];
    }

    // Taps 0 to 3 and 4 to 7.
    Lanes m_oldWeights{};
    Lanes m_newWeights{};
    Lanes m_oldSteps{};
    Lanes m_newSteps{};
    Lanes m_oldHistory{};
    Lanes m_newHistory{};
    int32_t m_error = 0;
};

/// All that the codec remembers of one channel within a frame.
template<int BytesPerSample>
struct TtaPredictors {
    TtaFixedPredictor<TtaShifts<BytesPerSample>::kFixed> fixed;
    TtaFilter<TtaShifts<BytesPerSample>::kAdaptive> filter;
};

} // namespace nurv
