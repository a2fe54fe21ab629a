// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeRangeCoder.h"

#include <cstring>

// The steps of range coding. Everything here is local to the source that includes it:
// those sources are compiled for different instructions.

namespace nurv {
namespace {

constexpr uint32_t kRangeBottom = uint32_t{1} << 23;
constexpr uint32_t kLowMask = 0x7FFFFFFF;

/// The fixed distribution of the overflow symbols, out of 65536 (versions from 3980 on).
constexpr uint32_t kSymbols = 64;
constexpr uint32_t kEscapeSymbol = kSymbols - 1;
constexpr uint32_t kUniform16 = 65536;
constexpr uint32_t kListedSymbols = 22;
/// Where each symbol's interval starts; from the last one listed each is 1 wide.
constexpr uint32_t kListedStarts[kListedSymbols] = {0,     19578, 36160, 48417, 56323, 60899, 63265, 64435,
                                                    64971, 65232, 65351, 65416, 65447, 65466, 65476, 65482,
                                                    65485, 65488, 65490, 65491, 65492, 65493};

struct SymbolTable {
    uint32_t start[kSymbols + 1] = {};
    /// The symbol at each sixteenth position; the next ones are found from there.
    uint8_t nearby[kUniform16 / 16] = {};

    constexpr SymbolTable()
    {
        for (uint32_t symbol = 0; symbol <= kSymbols; ++symbol) {
            const uint32_t listed = symbol < kListedSymbols ? symbol : kListedSymbols - 1;
            start[symbol] = kListedStarts[listed] + (symbol - listed);
        }
        uint8_t symbol = 0;
        for (uint32_t i = 0; i < kUniform16 / 16; ++i) {
            while (i * 16 >= start[symbol + 1])
                ++symbol;
            nearby[i] = symbol;
        }
    }
};
constexpr SymbolTable kSymbolTable;
static_assert(kSymbolTable.start[kSymbols] == kUniform16);

/// How many bytes the interval must move up by, to be wider than the bottom; 0 to 3.
inline unsigned bytesToNormalise(uint32_t range)
{
    // `range` is at least 128 here, and at most 2^31.
    return static_cast<unsigned>(__builtin_clz(range - 1) - 1) >> 3;
}

inline void propagateCarry(uint8_t *next)
{
    while (++*--next == 0) {
    }
}

inline void normalise(ApeRangeEncoder &coder)
{
    if (coder.low > kLowMask) {
        propagateCarry(coder.next);
        coder.low &= kLowMask;
    }
    const unsigned bytes = bytesToNormalise(coder.range);
    const uint32_t top = __builtin_bswap32(coder.low << 1);
    std::memcpy(coder.next, &top, sizeof top);
    coder.next += bytes;
    coder.low = (coder.low << (8 * bytes)) & kLowMask;
    coder.range <<= 8 * bytes;
}

inline void encodeSymbol(ApeRangeEncoder &coder, uint32_t symbol)
{
    normalise(coder);
    const uint32_t unit = coder.range >> 16;
    const uint32_t start = kSymbolTable.start[symbol];
    coder.low += unit * start;
    coder.range = unit * (kSymbolTable.start[symbol + 1] - start);
}

/// `value` is one of `count` equally likely ones.
inline void encodeUniform(ApeRangeEncoder &coder, uint32_t value, uint32_t count)
{
    normalise(coder);
    const uint32_t unit = coder.range / count;
    coder.low += unit * value;
    coder.range = unit;
}

inline void normalise(ApeRangeDecoder &coder)
{
    const unsigned bytes = bytesToNormalise(coder.range);
    uint64_t ahead = 0;
    std::memcpy(&ahead, coder.next, sizeof ahead);
    // The decoder stands one bit before the end of its byte.
    ahead = (__builtin_bswap64(ahead) << 7) >> 1;
    coder.next += bytes;
    coder.low = (coder.low << (8 * bytes)) | static_cast<uint32_t>(ahead >> (63 - 8 * bytes));
    coder.range <<= 8 * bytes;
}

inline uint32_t decodeSymbol(ApeRangeDecoder &coder)
{
    normalise(coder);
    const uint32_t unit = coder.range >> 16;
    uint32_t position = coder.low / unit;
    if (position >= kUniform16) {
        coder.isCorrupt = true;
        position = kUniform16 - 1;
    }
    uint32_t symbol = kSymbolTable.nearby[position / 16];
    while (position >= kSymbolTable.start[symbol + 1])
        ++symbol;
    const uint32_t start = kSymbolTable.start[symbol];
    coder.low -= unit * start;
    coder.range = unit * (kSymbolTable.start[symbol + 1] - start);
    return symbol;
}

inline uint32_t decodeUniform(ApeRangeDecoder &coder, uint32_t count)
{
    normalise(coder);
    const uint32_t unit = coder.range / count;
    const uint32_t value = coder.low / unit;
    coder.low -= unit * value;
    coder.range = unit;
    if (value >= count)
        coder.isCorrupt = true;
    return value;
}

} // namespace
} // namespace nurv
