// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApePlainFilter.h"

#include <immintrin.h>

// The filters with SSE2 or AVX2, by what the including source is compiled for, and local
// to it.

namespace nurv {
namespace {

inline __m128i loadUnaligned(const int16_t *from)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
}

/// Eight bytes as 16-bit values.
inline __m128i loadWidened(const int8_t *from)
{
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(from));
    return _mm_srai_epi16(_mm_unpacklo_epi8(bytes, bytes), 8);
}

inline __m128i load(const int16_t *from)
{
    return _mm_load_si128(reinterpret_cast<const __m128i *>(from));
}

inline void store(int16_t *to, __m128i values)
{
    _mm_store_si128(reinterpret_cast<__m128i *>(to), values);
}

inline int32_t sumOfLanes(__m128i sums)
{
    sums = _mm_add_epi32(sums, _mm_shuffle_epi32(sums, _MM_SHUFFLE(1, 0, 3, 2)));
    sums = _mm_add_epi32(sums, _mm_shuffle_epi32(sums, _MM_SHUFFLE(2, 3, 0, 1)));
    return _mm_cvtsi128_si32(sums);
}

/// Computes what PlainFilter does. One pass over the weights moves them by the residual
/// before and multiplies them with the history. The latest eight entries are kept in
/// registers: loading them as a vector right after they were stored one by one would wait
/// for the stores. A step halves as it becomes 1, 2 and 8 entries old; it is stored as it is
/// at the end, and the latest eight are scaled up.
template<int kOrder, int kShift>
class SimdFilter {
public:
    template<ApeSums kSums>
    int32_t encode(int32_t value)
    {
        const int32_t residual = wrappedSubtract(value, roundedShift<kShift, kSums>(adaptAndMultiply()));
        advance(value, residual);
        return residual;
    }

    template<ApeSums kSums>
    int32_t decode(int32_t residual)
    {
        const int32_t value = wrappedAdd(residual, roundedShift<kShift, kSums>(adaptAndMultiply()));
        advance(value, residual);
        return value;
    }

private:
    static constexpr int kRecent = 8;
    static constexpr int kWindow = 256;
    static_assert(kOrder % 16 == 0);

    int32_t adaptAndMultiply()
    {
        const int16_t *const values = m_values + m_at - kOrder;
        const int8_t *const steps = m_steps + m_at - kOrder - 1; // as they were before the last one
        const __m128i sign = _mm_set1_epi16(static_cast<int16_t>(m_sign));

        int16_t *const recentWeights = m_weights + kOrder;
        const __m128i recentSteps = _mm_mullo_epi16(m_recentSteps, _mm_setr_epi16(2, 2, 2, 2, 2, 2, 4, 8));
        const __m128i recent = _mm_add_epi16(load(recentWeights), _mm_mullo_epi16(recentSteps, sign));
        store(recentWeights, recent);
        __m128i sums = _mm_madd_epi16(recent, m_recentValues);

        int16_t *const oldestWeights = m_weights + kRecent;
        const __m128i oldest = _mm_add_epi16(load(oldestWeights), _mm_mullo_epi16(loadWidened(steps), sign));
        store(oldestWeights, oldest);
        sums = _mm_add_epi32(sums, _mm_madd_epi16(oldest, loadUnaligned(values)));
        if constexpr (kOrder > 16)
            sums = _mm_add_epi32(sums, adaptAndMultiplyMiddle(values + kRecent, steps + kRecent, sign));

        m_recentSteps = pushedInto(m_recentSteps, _mm_cvtsi32_si128(m_lastStep));
        return sumOfLanes(sums);
    }

    /// All but the first and last eight weights.
    __m128i adaptAndMultiplyMiddle(const int16_t *values, const int8_t *steps, __m128i sign)
    {
        int16_t *const weights = m_weights + 2 * kRecent;
#ifdef __AVX2__
        const auto wide = [](const int16_t *from) {
            return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(from));
        };
        const __m256i wideSign = _mm256_broadcastsi128_si256(sign);
        __m256i sums = _mm256_setzero_si256();
        for (int i = 0; i < kOrder - 16; i += 16) {
            auto *const at = reinterpret_cast<__m256i *>(weights + i);
            const __m256i adapted = _mm256_add_epi16(
                _mm256_load_si256(at),
                _mm256_sign_epi16(_mm256_cvtepi8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i *>(steps + i))),
                                  wideSign));
            _mm256_store_si256(at, adapted);
            sums = _mm256_add_epi32(sums, _mm256_madd_epi16(adapted, wide(values + i)));
        }
        return _mm_add_epi32(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
#else
        __m128i sums = _mm_setzero_si128();
        for (int i = 0; i < kOrder - 16; i += 8) {
            const __m128i adapted = _mm_add_epi16(load(weights + i), _mm_mullo_epi16(loadWidened(steps + i), sign));
            store(weights + i, adapted);
            sums = _mm_add_epi32(sums, _mm_madd_epi16(adapted, loadUnaligned(values + i)));
        }
        return sums;
#endif
    }

    /// The entries moved down by one, with the lowest 16 bits of `entry` as the newest.
    static __m128i pushedInto(__m128i entries, __m128i entry)
    {
        return _mm_or_si128(_mm_srli_si128(entries, 2), _mm_slli_si128(entry, 14));
    }

    void advance(int32_t value, int32_t residual)
    {
        m_sign = signOf(residual);
        m_lastStep = m_stepSize.next(value);
        const __m128i clamped = _mm_packs_epi32(_mm_cvtsi32_si128(value), _mm_setzero_si128());
        m_recentValues = pushedInto(m_recentValues, clamped);
        m_values[m_at] = static_cast<int16_t>(_mm_cvtsi128_si32(clamped));
        m_steps[m_at] = static_cast<int8_t>(m_lastStep);
        if (++m_at == kHistory)
            moveToFront();
    }

    void moveToFront()
    {
        std::memmove(m_values, m_values + kHistory - kKept, kKept * sizeof *m_values);
        std::memmove(m_steps, m_steps + kHistory - kKept, kKept * sizeof *m_steps);
        m_at = kKept;
    }

    static constexpr int kKept = kOrder + 1;
    static constexpr int kHistory = kKept + kWindow;

    /// Oldest first, from `kRecent` on: so the first vector of 16 is aligned.
    alignas(32) int16_t m_weights[kRecent + kOrder] = {};
    int16_t m_values[kHistory] = {}; ///< oldest first, up to `m_at`
    int8_t m_steps[kHistory] = {};   ///< an eighth of PlainFilter's when new
    __m128i m_recentValues = _mm_setzero_si128();
    __m128i m_recentSteps = _mm_setzero_si128(); ///< without the last one
    int m_at = kKept;
    int32_t m_sign = 0; ///< of the residual before
    int32_t m_lastStep = 0;
    StepSize m_stepSize;
};

} // namespace
} // namespace nurv
