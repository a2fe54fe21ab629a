// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/FlacLastFrame.h"

#include "samples/ByteSource.h"
#include "samples/FlacCodedNumber.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <vector>

extern "C" {
#include <libavutil/crc.h>
}

namespace nurv {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::int64_t kId3v1Bytes = 128;
/// Of the largest frame, where the header does not tell: 8 channels of 24 bits in blocks of
/// 16384, hardly packed.
constexpr std::int64_t kLargestFrameBytes = std::int64_t{512} << 10;
/// Sync code to number of a frame.
constexpr std::size_t kFixedHeadBytes = 4;
constexpr std::size_t kCrc16Bytes = 2;
/// Of heads with a right checksum, in bytes that may be nothing but such heads: each costs a
/// checksum of all that follows. Sound that looks like one by chance is rare.
constexpr int kMostHeads = 100;

std::size_t bytesOfBlockSize(unsigned code)
{
    return code == 6 ? 1 : code == 7 ? 2 : 0;
}

std::size_t bytesOfSampleRate(unsigned code)
{
    return code == 12 ? 1 : code == 13 || code == 14 ? 2 : 0;
}

/// Samples per channel; 0 where the code is reserved. `extra`: what follows the number.
std::int64_t blockSize(unsigned code, Bytes extra)
{
    switch (code) {
    case 0: return 0;
    case 1: return 192;
    case 2:
    case 3:
    case 4:
    case 5: return std::int64_t{576} << (code - 2);
    case 6: return extra[0] + 1;
    case 7: return qFromBigEndian<quint16>(extra.data()) + 1;
    default: return std::int64_t{256} << (code - 8);
    }
}

/// What the head of a frame says.
struct FrameHead {
    std::int64_t number = 0; ///< of the frame, or of its first sample
    std::int64_t samples = 0;
    bool countsSamples = false;

    /// Nothing when these bytes do not begin with one, and with room for a frame.
    static std::optional<FrameHead> read(Bytes bytes)
    {
        const auto number = FlacCodedNumber::read(bytes.subspan(kFixedHeadBytes));
        if (!number)
            return std::nullopt;
        const unsigned sizeCode = bytes[2] >> 4;
        const std::size_t sizeAt = kFixedHeadBytes + number->bytes;
        const std::size_t crcAt = sizeAt + bytesOfBlockSize(sizeCode) + bytesOfSampleRate(bytes[2] & 0x0F);
        if (bytes.size() < crcAt + 1 + kCrc16Bytes)
            return std::nullopt;
        const std::int64_t samples = blockSize(sizeCode, bytes.subspan(sizeAt));
        // A checksum over itself, too, is 0.
        if (samples == 0 || av_crc(av_crc_get_table(AV_CRC_8_ATM), 0, bytes.data(), crcAt + 1) != 0)
            return std::nullopt;
        return FrameHead{.number = static_cast<std::int64_t>(number->value),
                         .samples = samples, .countsSamples = (bytes[1] & 1) != 0};
    }

    /// The number of the first sample behind the frame. `fixedBlockSize`: of every frame but the last.
    [[nodiscard]] std::int64_t end(std::int64_t fixedBlockSize) const
    {
        return (countsSamples ? number : number * fixedBlockSize) + samples;
    }
};

/// Whether a frame that begins there fills these bytes.
bool isWholeFrame(Bytes bytes)
{
    return av_crc(av_crc_get_table(AV_CRC_16_ANSI), 0, bytes.data(), bytes.size()) == 0;
}

bool mayBeginFrame(Bytes bytes)
{
    return bytes[0] == 0xFF && (bytes[1] & 0xFE) == 0xF8 && (bytes[3] & 1) == 0;
}

std::int64_t endOfSound(const ByteSource &source)
{
    std::array<char, 3> mark{};
    const std::int64_t at = source.size() - kId3v1Bytes;
    const bool hasTag = at > 0 && source.readAll(at, mark.data(), mark.size()) && std::memcmp(mark.data(), "TAG", 3) == 0;
    return hasTag ? at : source.size();
}

} // namespace

std::optional<std::int64_t> framesByLastFlacFrame(const ByteSource &source, std::int64_t start)
{
    // Smallest and largest block, smallest and largest frame.
    std::array<std::uint8_t, 10> sizes{};
    if (!source.readAll(start + 8, sizes.data(), sizes.size()))
        return std::nullopt;
    const std::int64_t largestBlock = qFromBigEndian<quint16>(sizes.data() + 2);
    const std::int64_t largestFrame = std::int64_t{qFromBigEndian<quint32>(sizes.data() + 6)} & 0xFFFFFF;
    const std::int64_t end = endOfSound(source);
    const std::int64_t window =
        std::min(largestFrame > 0 ? std::min(largestFrame, kLargestFrameBytes) : kLargestFrameBytes, end - start);
    if (window < static_cast<std::int64_t>(kFixedHeadBytes + 2 + kCrc16Bytes))
        return std::nullopt;
    std::vector<std::uint8_t> tail(static_cast<std::size_t>(window));
    if (!source.readAll(end - window, tail.data(), tail.size()))
        return std::nullopt;
    int heads = 0;
    for (std::size_t at = tail.size() - kFixedHeadBytes + 1; at-- > 0 && heads < kMostHeads;) {
        const Bytes frame = Bytes(tail).subspan(at);
        const auto head = mayBeginFrame(frame) ? FrameHead::read(frame) : std::nullopt;
        if (!head)
            continue;
        if (isWholeFrame(frame))
            return head->end(largestBlock);
        ++heads;
    }
    return std::nullopt;
}

} // namespace nurv
