// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenBitWriter.h"

#include "shorten/ShortenFormat.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace nurv::shorten {

namespace {

constexpr size_t kBufferBytes = 64 * 1024;
constexpr size_t kWordBytes = 4;
constexpr unsigned kCacheBits = 64;
/// With up to 7 bits waiting, a code of this size still fits the cache.
constexpr unsigned kMaxPutBits = 56;
/// Codes between two looks at the room in the buffer.
constexpr size_t kStep = 256;
/// What such a step can fill, and a whole cache store beyond.
constexpr size_t kStepBytes = kStep * kMaxPutBits / 8 + sizeof(uint64_t);

void storeBigEndian(uint8_t *at, uint64_t word)
{
    if constexpr (std::endian::native == std::endian::little)
        word = __builtin_bswap64(word);
    std::memcpy(at, &word, sizeof word);
}

} // namespace

ShortenBitWriter::ShortenBitWriter(ByteSink sink) : m_sink(std::move(sink)), m_buffer(kBufferBytes) {}

void ShortenBitWriter::writeUnsigned(uint32_t value, unsigned lowBits)
{
    putZeros(value >> lowBits);
    const uint64_t one = uint64_t{1} << lowBits;
    put(one | (value & (one - 1)), lowBits + 1);
}

void ShortenBitWriter::writeLong(uint32_t value)
{
    const auto lowBits = static_cast<unsigned>(std::bit_width(value));
    writeUnsigned(lowBits, kLongBits);
    put((uint64_t{1} << lowBits) | value, lowBits + 1);
}

void ShortenBitWriter::writeFolded(std::span<const uint32_t> codes, unsigned codeBits)
{
    const uint32_t one = 1U << codeBits;
    for (size_t i = 0; i < codes.size();) {
        makeRoom();
        const size_t end = std::min(codes.size(), i + kStep);
        // The members are copied so that the compiler keeps them in registers.
        uint8_t *at = m_buffer.data() + m_size;
        uint64_t cache = m_cache;
        unsigned cachedBits = m_cachedBits;
        uint32_t code = 0;
        bool isLong = false;
        for (; i < end; ++i) {
            code = codes[i];
            const uint64_t size = uint64_t{code >> codeBits} + 1 + codeBits;
            isLong = size > kMaxPutBits;
            if (isLong)
                break;
            cachedBits += static_cast<unsigned>(size);
            cache |= uint64_t{one | (code & (one - 1))} << (kCacheBits - cachedBits);
            storeBigEndian(at, cache);
            at += cachedBits / 8;
            cache <<= cachedBits & ~7U;
            cachedBits &= 7;
        }
        m_size = static_cast<size_t>(at - m_buffer.data());
        m_cache = cache;
        m_cachedBits = cachedBits;
        if (isLong) {
            writeUnsigned(code, codeBits);
            ++i;
        }
    }
}

uint64_t ShortenBitWriter::position() const
{
    return (m_handedOver + m_size) * 8 + m_cachedBits;
}

void ShortenBitWriter::finish()
{
    const auto used = static_cast<unsigned>(position() % (kWordBytes * 8));
    if (used != 0) {
        put(1, 1);
        putZeros(kWordBytes * 8 - used - 1);
    }
    m_sink({m_buffer.data(), m_size});
    m_handedOver += m_size;
    m_size = 0;
}

/// The lowest `count` bits, 1 to 56, of a number that has no others.
void ShortenBitWriter::put(uint64_t bits, unsigned count)
{
    makeRoom();
    m_cachedBits += count;
    m_cache |= bits << (kCacheBits - m_cachedBits);
    storeBigEndian(m_buffer.data() + m_size, m_cache);
    m_size += m_cachedBits / 8;
    m_cache = m_cachedBits < kCacheBits ? m_cache << (m_cachedBits & ~7U) : 0;
    m_cachedBits &= 7;
}

void ShortenBitWriter::putZeros(uint64_t count)
{
    for (; count > 0; count -= std::min<uint64_t>(count, kMaxPutBits))
        put(0, static_cast<unsigned>(std::min<uint64_t>(count, kMaxPutBits)));
}

void ShortenBitWriter::makeRoom()
{
    if (m_size + kStepBytes <= m_buffer.size())
        return;
    const size_t kept = kWordBytes + m_size % kWordBytes;
    const size_t count = m_size - kept;
    m_sink({m_buffer.data(), count});
    m_handedOver += count;
    std::copy_n(m_buffer.begin() + static_cast<std::ptrdiff_t>(count), kept, m_buffer.begin());
    m_size = kept;
}

} // namespace nurv::shorten
