// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/ByteSink.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace nurv::shorten {

/// Writes the numbers of a Shorten bit stream, most significant bit first. The bytes
/// reach the sink in pieces of whole 32-bit words; the last word written so far is held
/// back, so that whoever describes a position can still see its word go by.
class ShortenBitWriter {
public:
    explicit ShortenBitWriter(ByteSink sink);

    /// `uvar(lowBits)`: a Rice code. `lowBits` is 0 to 31.
    void writeUnsigned(uint32_t value, unsigned lowBits);

    /// `ulong`: a number that brings its number of low-order bits with it.
    void writeLong(uint32_t value);

    /// Folded signed numbers, as Rice codes of `codeBits` low-order bits, the one for the
    /// sign included: 1 to 31.
    void writeFolded(std::span<const uint32_t> codes, unsigned codeBits);

    /// Bits written so far.
    [[nodiscard]] uint64_t position() const;

    /// Fills the last word (a 1, then zeros, or nothing at its border) and hands over what
    /// was held back. The last call.
    void finish();

private:
    void put(uint64_t bits, unsigned count);
    void putZeros(uint64_t count);
    void makeRoom();

    ByteSink m_sink;
    std::vector<uint8_t> m_buffer;
    size_t m_size = 0;         ///< whole bytes in the buffer
    uint64_t m_handedOver = 0; ///< bytes
    uint64_t m_cache = 0;      ///< the bits of the next byte, from the top
    unsigned m_cachedBits = 0; ///< 0 to 7
};

} // namespace nurv::shorten
