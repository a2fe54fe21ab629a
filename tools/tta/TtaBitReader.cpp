// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaBitReader.h"

#include <algorithm>
#include <array>
#include <utility>

namespace nurv {

namespace {

constexpr size_t kPieceBytes = size_t{64} << 10;
constexpr size_t kWordBytes = sizeof(uint64_t);
/// A word is fetched up to seven bytes behind the last bit in use.
constexpr size_t kPadBytes = 2 * kWordBytes - 1;

} // namespace

TtaBitReader::TtaBitReader(Source source) : m_source(std::move(source)), m_buffer(kPieceBytes + kWordBytes + kPadBytes)
{
}

TtaBitReader::Position TtaBitReader::begin()
{
    m_isAtEnd = false;
    m_end = m_buffer.data() + 1;
    Position position;
    position.m_at = m_end;
    position.m_lastLoad = m_buffer.data();
    return position;
}

bool TtaBitReader::isWithinFrame(const Position &position) const
{
    if (!m_isAtEnd)
        return true;
    const auto loadedBits = static_cast<uint64_t>(position.m_at - m_buffer.data()) * 8;
    return loadedBits - position.m_bitCount <= static_cast<uint64_t>(m_end - m_buffer.data()) * 8;
}

bool TtaBitReader::holdsMore(const Position &position)
{
    constexpr size_t kMostPadBytes = 3;
    // Bits that are ready are not read yet; the highest ones of a byte may be left.
    const uint8_t *at = position.m_at - position.m_bitCount / 8;
    const uint32_t bitsOfByte = position.m_bitCount % 8;
    if (bitsOfByte != 0 && (at[-1] >> (8 - bitsOfByte)) != 0)
        return true;
    std::vector<uint8_t> rest(at, std::max(at, static_cast<const uint8_t *>(m_end)));
    std::array<uint8_t, kMostPadBytes + 1> more{};
    while (!m_isAtEnd && rest.size() <= kMostPadBytes) {
        const size_t count = m_source(more);
        rest.insert(rest.end(), more.begin(), more.begin() + static_cast<std::ptrdiff_t>(count));
        m_isAtEnd = count == 0;
    }
    return rest.size() > kMostPadBytes || std::any_of(rest.begin(), rest.end(), [](uint8_t byte) { return byte != 0; });
}

TtaBitReader::Position TtaBitReader::refill(Position position)
{
    if (m_isAtEnd)
        throw TtaFrameOverrun();
    m_end = std::copy(position.m_at, static_cast<const uint8_t *>(m_end), m_buffer.data());
    position.m_at = m_buffer.data();
    const uint8_t *const enough = m_buffer.data() + kWordBytes;
    while (m_end < enough && !m_isAtEnd) {
        const size_t count = m_source({m_end, kPieceBytes});
        m_end += count;
        m_isAtEnd = count == 0;
    }
    if (m_isAtEnd) {
        // The last codes are fetched together with bits that are not there.
        std::fill_n(m_end, kPadBytes, uint8_t{0});
        position.m_lastLoad = m_end + kPadBytes - kWordBytes;
    } else {
        position.m_lastLoad = m_end - kWordBytes;
    }
    return position;
}

TtaBitReader::LongCode TtaBitReader::readLongCode(Position position, uint32_t k)
{
    uint64_t ones = 0;
    for (;;) {
        position.fill(*this);
        const uint32_t run = std::min(static_cast<uint32_t>(std::countr_one(position.m_bits)), position.m_bitCount);
        ones += run;
        if (run < position.m_bitCount) {
            position.take(run);
            break;
        }
        // A shift by the whole word would do nothing.
        position.m_bits = 0;
        position.m_bitCount = 0;
    }
    position.fill(*this);
    position.take(1);
    const uint64_t low = position.m_bits & ((uint64_t{1} << k) - 1);
    position.take(k);
    // The unary part counts from 1.
    const auto value = static_cast<uint32_t>(((ones - 1) << k) + low);
    return {position, value};
}

} // namespace nurv
