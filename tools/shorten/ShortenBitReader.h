// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace nurv {
class InputFile;
}

namespace nurv::shorten {

/// Reads the numbers of a Shorten bit stream (most significant bit first) from the
/// place where the input stands. Every operation throws ToolError(Damaged) when the
/// input ends inside a number, or the number exceeds 32 bits.
class ShortenBitReader {
public:
    explicit ShortenBitReader(InputFile &input);

    /// `uvar(lowBits)`: a Rice code. `lowBits` is 0 to 32.
    [[nodiscard]] uint32_t readUnsigned(unsigned lowBits);

    /// `var(lowBits)`: a Rice code with the sign in the lowest bit. `lowBits` is 0 to 31.
    [[nodiscard]] int32_t readSigned(unsigned lowBits);

    /// `ulong`: a number that brings its number of low-order bits with it.
    [[nodiscard]] uint32_t readLong();

    /// As many signed numbers as `values` has room for. They fold into Rice codes of
    /// `codeBits` low-order bits, the one for the sign included: 0 to kMaxEnergy + 1.
    void readResiduals(unsigned codeBits, std::span<int32_t> values);

    /// Bytes of the input that have been read, one that was begun included.
    [[nodiscard]] uint64_t position() const;

private:
    void fillCache();
    bool fillBuffer();
    [[nodiscard]] uint32_t readBits(unsigned count);
    void drop(unsigned count);
    [[noreturn]] void failAtEnd() const;
    [[noreturn]] void failTooLarge() const;

    InputFile &m_input;
    std::vector<uint8_t> m_buffer;
    size_t m_next = 0; ///< in the buffer: the first byte of which no bit is counted as cached
    size_t m_end = 0;
    uint64_t m_cache = 0;      ///< the next bits, from the top
    unsigned m_cachedBits = 0; ///< how many of them count; what lies below is of the bytes at `m_next`, or 0
};

} // namespace nurv::shorten
