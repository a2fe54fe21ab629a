// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace nurv {

/// No sample takes more coded bytes: five coding steps of up to three bytes each.
constexpr size_t kApeMaxBytesPerSample = 16;
/// Bytes that may be written or read beyond the last coded one.
constexpr size_t kApeRangeCoderSlack = 16;

/// State of the range encoder: a 31-bit number `low` in an interval of width `range`,
/// the bytes above it written already. A late carry is added to the written bytes.
struct ApeRangeEncoder {
    uint8_t *next = nullptr; ///< where the next byte goes
    uint32_t low = 0;
    uint32_t range = uint32_t{1} << 31;

    /// Writes the byte that every frame begins with.
    explicit ApeRangeEncoder(uint8_t *out) : next(out) { *next++ = 0; }
};

/// Ends the coded bytes and returns where they end. Needs `kApeRangeCoderSlack` bytes.
[[nodiscard]] uint8_t *finishRangeEncoder(ApeRangeEncoder &coder);

/// State of the range decoder.
struct ApeRangeDecoder {
    const uint8_t *next = nullptr; ///< the byte whose lowest bit is the next to be used
    uint32_t low = 0;
    uint32_t range = 128;
    bool isCorrupt = false; ///< the bytes cannot come from an encoder

    /// `coded` begins with the byte that every frame begins with.
    explicit ApeRangeDecoder(const uint8_t *coded) : next(coded + 1), low(uint32_t{coded[1]} >> 1) {}

    /// Where the bytes end that were taken so far.
    [[nodiscard]] const uint8_t *end() const { return next + 1; }
};

} // namespace nurv
