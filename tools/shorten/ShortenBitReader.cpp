// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenBitReader.h"

#include "shorten/ShortenFormat.h"
#include "support/InputFile.h"
#include "support/ToolError.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace nurv::shorten {

namespace {

constexpr size_t kBufferBytes = 64 * 1024;
constexpr size_t kCacheBytes = sizeof(uint64_t);
/// A cache filled in one step holds at least this many bits.
constexpr unsigned kFilledBits = 56;
constexpr unsigned kCacheBits = 64;

uint64_t loadBigEndian(const uint8_t *at)
{
    uint64_t word = 0;
    std::memcpy(&word, at, sizeof word);
    if constexpr (std::endian::native == std::endian::little)
        word = __builtin_bswap64(word);
    return word;
}

constexpr int32_t unfold(uint32_t code)
{
    return static_cast<int32_t>((code >> 1) ^ (0U - (code & 1)));
}

} // namespace

ShortenBitReader::ShortenBitReader(InputFile &input) : m_input(input), m_buffer(kBufferBytes) {}

uint64_t ShortenBitReader::position() const
{
    return m_input.position() - (m_end - m_next) - m_cachedBits / 8;
}

uint32_t ShortenBitReader::readUnsigned(unsigned lowBits)
{
    uint64_t zeros = 0;
    for (;;) {
        fillCache();
        if (m_cachedBits == 0)
            failAtEnd();
        const auto run = std::min(static_cast<unsigned>(std::countl_zero(m_cache)), m_cachedBits);
        zeros += run;
        if (run < m_cachedBits) {
            drop(run + 1);
            break;
        }
        drop(run);
    }
    if (zeros > uint64_t{std::numeric_limits<uint32_t>::max()} >> lowBits)
        failTooLarge();
    return static_cast<uint32_t>(zeros << lowBits) | readBits(lowBits);
}

int32_t ShortenBitReader::readSigned(unsigned lowBits)
{
    return unfold(readUnsigned(lowBits + 1));
}

uint32_t ShortenBitReader::readLong()
{
    const uint32_t lowBits = readUnsigned(kLongBits);
    if (lowBits > 32)
        failTooLarge();
    return readUnsigned(lowBits);
}

void ShortenBitReader::readResiduals(unsigned codeBits, std::span<int32_t> values)
{
    const uint8_t *const buffer = m_buffer.data();
    const unsigned longestRun = kFilledBits - 1 - codeBits;
    for (size_t i = 0; i < values.size();) {
        // The members are copied so that the compiler keeps them in registers.
        size_t next = m_next;
        uint64_t cache = m_cache;
        unsigned cachedBits = m_cachedBits;
        const size_t lastLoad = m_end < kCacheBytes ? 0 : m_end - kCacheBytes;
        for (; i < values.size() && next < lastLoad; ++i) {
            cache |= loadBigEndian(buffer + next) >> cachedBits;
            next += (kCacheBits - 1 - cachedBits) / 8;
            cachedBits |= kFilledBits;
            const auto run = static_cast<unsigned>(std::countl_zero(cache));
            if (run > longestRun)
                break;
            // The one after the run stands for 2^codeBits, and run of them are wanted.
            cache <<= run;
            const uint64_t code = (cache >> (kCacheBits - 1 - codeBits)) + ((uint64_t{run} - 1) << codeBits);
            values[i] = unfold(static_cast<uint32_t>(code));
            cache <<= 1;
            cache <<= codeBits;
            cachedBits -= run + 1 + codeBits;
        }
        m_next = next;
        m_cache = cache;
        m_cachedBits = cachedBits;
        // Long runs, and codes at the end of the buffer.
        if (i < values.size())
            values[i++] = unfold(readUnsigned(codeBits));
    }
}

/// Makes 56 to 63 bits available, less at the end of the input only.
void ShortenBitReader::fillCache()
{
    while (m_cachedBits < kFilledBits) {
        if (m_next == m_end && !fillBuffer())
            return;
        m_cache |= uint64_t{m_buffer[m_next++]} << (kFilledBits - m_cachedBits);
        m_cachedBits += 8;
    }
}

bool ShortenBitReader::fillBuffer()
{
    m_next = 0;
    m_end = m_input.read(m_buffer);
    return m_end > 0;
}

uint32_t ShortenBitReader::readBits(unsigned count)
{
    fillCache();
    if (m_cachedBits < count)
        failAtEnd();
    if (count == 0)
        return 0;
    const auto bits = static_cast<uint32_t>(m_cache >> (kCacheBits - count));
    drop(count);
    return bits;
}

void ShortenBitReader::drop(unsigned count)
{
    m_cache = count < kCacheBits ? m_cache << count : 0;
    m_cachedBits -= count;
}

void ShortenBitReader::failAtEnd() const
{
    throw ToolError(ToolError::Kind::Damaged, m_input.name() + ": the Shorten stream is cut short");
}

void ShortenBitReader::failTooLarge() const
{
    throw ToolError(ToolError::Kind::Damaged,
                    m_input.name() + ": the Shorten stream is damaged: a number is too large");
}

} // namespace nurv::shorten
