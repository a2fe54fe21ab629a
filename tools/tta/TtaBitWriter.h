// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/ByteSink.h"
#include "tta/TtaRice.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

namespace nurv {

/// Packs the codes of one frame after the other, least significant bit first, and hands
/// the bytes on in pieces: memory does not depend on the length of the codes. The position
/// is a value of its own, so that an encoding loop can hold it in registers.
class TtaBitWriter {
public:
    class Position {
    public:
        /// Writes one Rice code and adapts its parameters. Throws what the sink throws.
        [[gnu::always_inline]] void writeCode(TtaBitWriter &writer, TtaRice &rice, int32_t code);

    private:
        friend class TtaBitWriter;

        /// At most 56 bits; those above the count are 0.
        [[gnu::always_inline]] void put(TtaBitWriter &writer, uint64_t bits, uint32_t count);

        uint64_t m_bits = 0;     ///< not stored yet, the first one lowest
        uint32_t m_bitCount = 0; ///< 0 to 7
        uint8_t *m_at = nullptr;
        uint8_t *m_lastStore = nullptr; ///< where eight bytes still have room
    };

    explicit TtaBitWriter(ByteSink sink);

    [[nodiscard]] Position begin();

    /// Fills the last byte with zeros and hands on what is left.
    void finish(Position position);

private:
    [[nodiscard]] Position flush(Position position);
    [[nodiscard]] Position putLongCode(Position position, uint32_t ones, uint32_t low, uint32_t k);

    ByteSink m_sink;
    std::vector<uint8_t> m_buffer;
};

inline void TtaBitWriter::Position::put(TtaBitWriter &writer, uint64_t bits, uint32_t count)
{
    m_bits |= bits << m_bitCount;
    m_bitCount += count;
    uint64_t word = m_bits;
    if constexpr (std::endian::native == std::endian::big)
        word = __builtin_bswap64(word);
    std::memcpy(m_at, &word, sizeof word);
    m_at += m_bitCount >> 3;
    m_bits >>= m_bitCount & 56;
    m_bitCount &= 7;
    if (m_at > m_lastStore) [[unlikely]]
        *this = writer.flush(*this);
}

inline void TtaBitWriter::Position::writeCode(TtaBitWriter &writer, TtaRice &rice, int32_t code)
{
    uint32_t value = TtaRice::fold(code);
    const uint32_t limit = 1U << rice.shallow.k;
    // A mask: the borrow of the subtraction.
    const auto isDeep = ~static_cast<uint32_t>((uint64_t{value} - limit) >> 32);
    const uint32_t k = rice.k(isDeep);
    rice.shallow.adapt(value);
    value -= limit & isDeep;
    rice.deep.adapt(value, isDeep);
    const uint32_t ones = (value >> k) - isDeep;
    const uint32_t low = value & ((1U << k) - 1);
    if (ones + 1 + k > 56) [[unlikely]]
        *this = writer.putLongCode(*this, ones, low, k);
    else
        put(writer, (uint64_t{low} << (ones + 1)) | ((uint64_t{1} << ones) - 1), ones + 1 + k);
}

} // namespace nurv
