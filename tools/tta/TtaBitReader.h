// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tta/TtaRice.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <span>
#include <stdexcept>
#include <vector>

namespace nurv {

/// Thrown when the codes of a frame run past its last byte.
class TtaFrameOverrun : public std::runtime_error {
public:
    TtaFrameOverrun() : std::runtime_error("frame overrun") {}
};

/// The bits of one frame after the other, least significant bit first, from a source
/// that is read in pieces. The position is a value of its own, so that a decoding loop can
/// hold it in registers.
class TtaBitReader {
public:
    /// Puts the next bytes of the frame into the span and returns their number, 0 at its end.
    using Source = std::function<size_t(std::span<uint8_t>)>;

    class Position {
    public:
        /// Reads one Rice code and adapts its parameters. Throws TtaFrameOverrun.
        [[gnu::always_inline]] int32_t readCode(TtaBitReader &reader, TtaRice &rice);

    private:
        friend class TtaBitReader;

        /// Makes at least 56 bits ready.
        [[gnu::always_inline]] void fill(TtaBitReader &reader);
        [[gnu::always_inline]] void take(uint32_t count)
        {
            m_bits >>= count;
            m_bitCount -= count;
        }

        uint64_t m_bits = 0;     ///< the next one lowest
        uint32_t m_bitCount = 0; ///< how many of them are ready
        const uint8_t *m_at = nullptr;
        const uint8_t *m_lastLoad = nullptr; ///< where eight bytes can still be read
    };

    explicit TtaBitReader(Source source);

    /// The start of the next frame; what was read of the one before is dropped.
    [[nodiscard]] Position begin();

    /// Whether the codes read so far end within the frame.
    [[nodiscard]] bool isWithinFrame(const Position &position) const;

    /// Whether something but padding follows the codes in the frame: four bytes or more, or
    /// anything but zeros. Reads on, so that no more codes can be read.
    [[nodiscard]] bool holdsMore(const Position &position);

private:
    struct LongCode {
        Position position;
        uint32_t value;
    };

    [[nodiscard]] Position refill(Position position);
    /// The value of a code with a unary part: of any length.
    [[nodiscard]] LongCode readLongCode(Position position, uint32_t k);

    Source m_source;
    std::vector<uint8_t> m_buffer;
    uint8_t *m_end = nullptr; ///< of the frame's bytes in the buffer
    bool m_isAtEnd = false;   ///< nothing follows them but zeros
};

inline void TtaBitReader::Position::fill(TtaBitReader &reader)
{
    if (m_at > m_lastLoad) [[unlikely]]
        *this = reader.refill(*this);
    uint64_t word;
    std::memcpy(&word, m_at, sizeof word);
    if constexpr (std::endian::native == std::endian::big)
        word = __builtin_bswap64(word);
    // Bits above the count are set already, to the same values.
    m_bits |= word << m_bitCount;
    m_at += (63 - m_bitCount) >> 3;
    m_bitCount |= 56;
}

inline int32_t TtaBitReader::Position::readCode(TtaBitReader &reader, TtaRice &rice)
{
    fill(reader);
    const auto ones = static_cast<uint32_t>(std::countr_one(m_bits));
    // A mask.
    const uint32_t isDeep = 0U - static_cast<uint32_t>(m_bits & 1);
    const uint32_t k = rice.k(isDeep);
    uint32_t value;
    if (ones + 1 + k > 56) [[unlikely]] {
        const LongCode code = reader.readLongCode(*this, k);
        *this = code.position;
        value = code.value;
    } else {
        const uint64_t mask = (uint64_t{1} << k) - 1;
        value = ((ones + isDeep) << k) + static_cast<uint32_t>((m_bits >> (ones + 1)) & mask);
        take(ones + 1 + k);
    }
    rice.deep.adapt(value, isDeep);
    value += (1U << rice.shallow.k) & isDeep;
    rice.shallow.adapt(value);
    return TtaRice::unfold(value);
}

} // namespace nurv
