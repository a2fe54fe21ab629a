// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaBitWriter.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace nurv {

namespace {

constexpr size_t kPieceBytes = size_t{64} << 10;
constexpr size_t kWordBytes = sizeof(uint64_t);

} // namespace

TtaBitWriter::TtaBitWriter(ByteSink sink) : m_sink(std::move(sink)), m_buffer(kPieceBytes + kWordBytes) {}

TtaBitWriter::Position TtaBitWriter::begin()
{
    Position position;
    position.m_at = m_buffer.data();
    position.m_lastStore = m_buffer.data() + kPieceBytes;
    return position;
}

void TtaBitWriter::finish(Position position)
{
    if (position.m_bitCount != 0)
        *position.m_at++ = static_cast<uint8_t>(position.m_bits);
    m_sink({m_buffer.data(), position.m_at});
}

TtaBitWriter::Position TtaBitWriter::flush(Position position)
{
    m_sink({m_buffer.data(), position.m_at});
    position.m_at = m_buffer.data();
    return position;
}

TtaBitWriter::Position TtaBitWriter::putLongCode(Position position, uint32_t ones, uint32_t low, uint32_t k)
{
    constexpr uint32_t kOnesAtOnce = 32;
    for (; ones >= kOnesAtOnce; ones -= kOnesAtOnce)
        position.put(*this, UINT32_MAX, kOnesAtOnce);
    // One zero ends them.
    position.put(*this, (uint64_t{1} << ones) - 1, ones + 1);
    position.put(*this, low, k);
    return position;
}

} // namespace nurv
