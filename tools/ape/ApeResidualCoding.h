// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeRangeCoding.h"

// Residuals as symbols of the range coder. Local to the source that includes it.

namespace nurv {
namespace {

constexpr uint32_t kFirstMagnitude = 16384;

/// Uniform values have at most this many bits; wider ones are coded in two parts.
constexpr uint32_t kMaxUniformBits = 16;

/// A running estimate of the size of one channel's residuals. A folded residual (the sign
/// in the lowest bit) is coded as its multiple of the pivot and what remains.
struct ResidualScale {
    uint32_t magnitude = kFirstMagnitude;

    [[nodiscard]] uint32_t pivot() const { return magnitude < 64 ? 1 : magnitude >> 5; }
    void adapt(uint32_t halfFolded) { magnitude += halfFolded - ((magnitude + 16) >> 5); }
};

/// Bits that are coded apart from the 16 highest ones of the pivot.
inline uint32_t lowBits(uint32_t pivot)
{
    return 32 - static_cast<uint32_t>(__builtin_clz(pivot)) - kMaxUniformBits;
}

inline void encodeWideRemainder(ApeRangeEncoder &coder, uint32_t remainder, uint32_t pivot)
{
    const uint32_t bits = lowBits(pivot);
    encodeUniform(coder, remainder >> bits, (pivot >> bits) + 1);
    encodeUniform(coder, remainder & ((uint32_t{1} << bits) - 1), uint32_t{1} << bits);
}

[[gnu::always_inline]] inline void encodeResidual(ApeRangeEncoder &coder, ResidualScale &scale, int32_t residual)
{
    const auto bits = static_cast<uint32_t>(residual);
    const uint32_t folded = residual > 0 ? 2 * bits - 1 : 0 - 2 * bits;
    const uint32_t pivot = scale.pivot();
    scale.adapt((folded >> 1) + (folded & 1));
    const uint32_t multiple = folded / pivot;
    const uint32_t remainder = folded - multiple * pivot;
    if (multiple < kEscapeSymbol) [[likely]] {
        encodeSymbol(coder, multiple);
    } else {
        encodeSymbol(coder, kEscapeSymbol);
        encodeUniform(coder, multiple >> 16, kUniform16);
        encodeUniform(coder, multiple & 0xFFFF, kUniform16);
    }
    if (pivot < kUniform16) [[likely]]
        encodeUniform(coder, remainder, pivot);
    else
        encodeWideRemainder(coder, remainder, pivot);
}

inline uint32_t decodeWideRemainder(ApeRangeDecoder &coder, uint32_t pivot)
{
    const uint32_t bits = lowBits(pivot);
    const uint32_t high = decodeUniform(coder, (pivot >> bits) + 1);
    return (high << bits) + decodeUniform(coder, uint32_t{1} << bits);
}

[[gnu::always_inline]] inline int32_t decodeResidual(ApeRangeDecoder &coder, ResidualScale &scale)
{
    const uint32_t pivot = scale.pivot();
    uint32_t multiple = decodeSymbol(coder);
    if (multiple == kEscapeSymbol) [[unlikely]] {
        multiple = decodeUniform(coder, kUniform16) << 16;
        multiple += decodeUniform(coder, kUniform16);
    }
    const uint32_t remainder = pivot < kUniform16 ? decodeUniform(coder, pivot) : decodeWideRemainder(coder, pivot);
    const uint32_t folded = multiple * pivot + remainder;
    const uint32_t half = (folded >> 1) + (folded & 1);
    scale.adapt(half);
    const uint32_t negative = (folded & 1) - 1;
    return static_cast<int32_t>((half ^ negative) - negative);
}

} // namespace
} // namespace nurv
