// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/WavpackBlocks.h"

#include "base/NurvFailure.h"
#include "samples/ByteSource.h"

#include <QtEndian>

#include <array>
#include <cstring>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kBlockHeadBytes = 32;
constexpr std::uint32_t kUnknownTotal = 0xFFFFFFFF;
/// Of a block without samples that is looked into.
constexpr std::int64_t kMostTrailerBytes = 16 * 1024 * 1024;
// The head of a piece of metadata: its kind in the low six bits, then how its size is told.
constexpr std::uint8_t kKindBits = 0x3F;
constexpr std::uint8_t kHasOddSize = 0x40;
constexpr std::uint8_t kIsLarge = 0x80;
constexpr std::uint8_t kRiffTrailer = 0x22;
constexpr std::uint8_t kOtherTrailer = 0x24;

} // namespace

std::optional<WavpackBlocks::Block> WavpackBlocks::readBlock(const ByteSource &source, std::int64_t offset)
{
    std::array<std::uint8_t, kBlockHeadBytes> head{};
    if (!source.readAll(offset, head.data(), head.size()) || std::memcmp(head.data(), "wvpk", 4) != 0)
        return std::nullopt;
    const auto number = [&head](std::size_t at) { return qFromLittleEndian<quint32>(head.data() + at); };
    Block block;
    block.size = std::int64_t{number(4)} + 8;
    // The bytes before the 32-bit numbers are their highest ones, of 40 bits.
    block.firstFrame = std::int64_t{head[10]} << 32 | number(16);
    if (number(12) != kUnknownTotal)
        block.totalFrames = (std::int64_t{head[11]} << 32 | number(12)) - head[11];
    block.frames = number(20);
    block.flags = number(24);
    if (block.size < kBlockHeadBytes)
        return std::nullopt;
    return block;
}

WavpackBlocks::WavpackBlocks(const ByteSource &source, std::int64_t start)
{
    std::int64_t offset = start;
    while (const auto block = readBlock(source, offset)) {
        if (offset + block->size > source.size())
            throw NurvFailure(u"it ends inside a block"_s);
        add(*block);
        readTrailer(source, offset, *block);
        offset += block->size;
    }
    m_soundEnd = offset;
    if (!holdsOnlyTags(source, offset))
        throw NurvFailure(u"it holds something else than blocks of sound"_s);
}

void WavpackBlocks::add(const Block &block)
{
    if (block.frames == 0)
        return;
    m_isLossless = m_isLossless && !block.isHybrid();
    if (!block.isFirstOfFrame())
        return;
    m_isBroken = m_isBroken || block.firstFrame != m_heldFrames;
    m_heldFrames += block.frames;
}

void WavpackBlocks::readTrailer(const ByteSource &source, std::int64_t offset, const Block &block)
{
    if (block.frames > 0)
        return;
    if (block.size > kMostTrailerBytes)
        throw NurvFailure(u"it holds too large a block without sound"_s);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(block.size - kBlockHeadBytes));
    if (!source.readAll(offset + kBlockHeadBytes, bytes.data(), bytes.size()))
        throw NurvFailure(u"it ends inside a block"_s);
    for (std::size_t at = 0; at + 2 <= bytes.size();) {
        const std::uint8_t head = bytes[at];
        std::size_t size = std::size_t{bytes[at + 1]} * 2;
        at += 2;
        if ((head & kIsLarge) != 0) {
            if (at + 2 > bytes.size())
                return;
            size |= std::size_t{bytes[at]} << 9 | std::size_t{bytes[at + 1]} << 17;
            at += 2;
        }
        if (size > bytes.size() - at)
            return;
        const std::size_t used = (head & kHasOddSize) != 0 && size > 0 ? size - 1 : size;
        const auto kind = static_cast<std::uint8_t>(head & kKindBits);
        if (kind == kRiffTrailer || kind == kOtherTrailer) {
            if (m_trailer.size() + used > static_cast<std::size_t>(kMostTrailerBytes))
                throw NurvFailure(u"it keeps too much behind its sound"_s);
            m_trailer.insert(m_trailer.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at),
                             bytes.begin() + static_cast<std::ptrdiff_t>(at + used));
        }
        at += size;
    }
}

} // namespace nurv
