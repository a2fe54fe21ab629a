// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/CodecHeaders.h"

#include "samples/ByteSource.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <vector>

namespace nurv {

namespace {

constexpr int kMostFlacBlocks = 10'000;
constexpr std::int64_t kMostTtaFrames = std::int64_t{1} << 22;
constexpr std::uint32_t kMostApeFrames = 1U << 22;
constexpr std::uint32_t kMostApeBlocks = 1U << 26;
constexpr std::uint16_t kFirstApeDescriptorVersion = 3980;

bool isSensible(const SampleFormat &format)
{
    return format.sampleRateHz > 0 && format.channels > 0 && format.channels <= 64 && format.bitsPerSample > 0
           && format.bitsPerSample <= 32;
}

/// RFC 9639, section 8: STREAMINFO is the first block.
std::optional<CodecHeader> readFlac(const ByteSource &source, std::int64_t start)
{
    std::array<std::uint8_t, 4 + CodecHeader::kStreamInfoBytes> bytes{};
    if (!source.readAll(start + 4, bytes.data(), bytes.size()) || (bytes[0] & 0x7F) != 0)
        return std::nullopt;
    return CodecHeader::fromStreamInfo(std::span(bytes).subspan<4>());
}

std::optional<CodecHeader> readTta(const ByteSource &source, std::int64_t start)
{
    std::array<std::uint8_t, 22> bytes{};
    if (!source.readAll(start, bytes.data(), bytes.size()))
        return std::nullopt;
    const auto rate = qFromLittleEndian<quint32>(bytes.data() + 10);
    const std::int64_t frames = qFromLittleEndian<quint32>(bytes.data() + 14);
    CodecHeader header;
    header.kind = CodecHeader::Kind::Tta;
    header.format = {.sampleRateHz = static_cast<int>(std::min<quint32>(rate, 100'000'000)),
                     .channels = qFromLittleEndian<quint16>(bytes.data() + 6),
                     .bitsPerSample = qFromLittleEndian<quint16>(bytes.data() + 8),
                     .isFloat = false};
    header.declaredFrames = frames;
    // A frame is 256/245 seconds long; behind the header come its size, of every frame, and a CRC.
    const std::int64_t frameLength = std::int64_t{256} * rate / 245;
    const std::int64_t count = frameLength > 0 ? (frames + frameLength - 1) / frameLength : 0;
    if (count > kMostTtaFrames || count * 4 > source.size())
        return header;
    std::vector<std::uint8_t> sizes(static_cast<std::size_t>(count) * 4);
    if (!source.readAll(start + 22, sizes.data(), sizes.size()))
        return header;
    header.soundEnd = start + 22 + static_cast<std::int64_t>(sizes.size()) + 4;
    for (std::size_t at = 0; at < sizes.size(); at += 4)
        header.soundEnd += qFromLittleEndian<quint32>(sizes.data() + at);
    return header;
}

/// Blocks (samples per channel) of a frame in versions whose header does not tell.
std::uint32_t apeBlocksPerFrame(std::uint16_t version, std::uint16_t level)
{
    if (version >= 3950)
        return 73728 * 4;
    return version >= 3900 || (version >= 3800 && level >= 4000) ? 73728 : 9216;
}

std::optional<CodecHeader> readApe(const ByteSource &source, std::int64_t start)
{
    std::array<std::uint8_t, 32> bytes{};
    if (!source.readAll(start, bytes.data(), bytes.size()))
        return std::nullopt;
    const auto word = [&bytes](std::size_t at) { return qFromLittleEndian<quint16>(bytes.data() + at); };
    const auto number = [&bytes](std::size_t at) { return qFromLittleEndian<quint32>(bytes.data() + at); };
    CodecHeader header;
    header.kind = CodecHeader::Kind::MonkeysAudio;
    header.version = word(4);
    std::uint32_t blocksPerFrame = 0;
    std::uint32_t finalBlocks = 0;
    std::uint32_t frames = 0;
    std::uint32_t rate = 0;
    if (header.version >= kFirstApeDescriptorVersion) {
        const std::int64_t descriptorBytes = number(8);
        if (!source.readAll(start + std::max<std::int64_t>(descriptorBytes, 52), bytes.data(), 24))
            return std::nullopt;
        blocksPerFrame = number(4);
        finalBlocks = number(8);
        frames = number(12);
        header.format.bitsPerSample = word(16);
        header.format.channels = word(18);
        rate = number(20);
    } else {
        const std::uint16_t flags = word(8);
        blocksPerFrame = apeBlocksPerFrame(header.version, word(6));
        header.format.channels = word(10);
        header.format.bitsPerSample = (flags & 1) != 0 ? 8 : (flags & 8) != 0 ? 24 : 16;
        rate = number(12);
        frames = number(24);
        finalBlocks = number(28);
    }
    header.format.sampleRateHz = static_cast<int>(std::min<std::uint32_t>(rate, 100'000'000));
    if (frames > kMostApeFrames || blocksPerFrame > kMostApeBlocks || finalBlocks > kMostApeBlocks)
        return std::nullopt;
    header.declaredFrames = frames > 0 ? std::int64_t{frames - 1} * blocksPerFrame + finalBlocks : 0;
    return header;
}

} // namespace

CodecHeader CodecHeader::fromStreamInfo(std::span<const std::uint8_t, kStreamInfoBytes> info)
{
    const auto packed = qFromBigEndian<quint64>(info.data() + 10);
    CodecHeader header;
    header.format = {.sampleRateHz = static_cast<int>(packed >> 44),
                     .channels = static_cast<int>((packed >> 41) & 7) + 1,
                     .bitsPerSample = static_cast<int>((packed >> 36) & 31) + 1,
                     .isFloat = false};
    if (const auto frames = static_cast<std::int64_t>(packed & 0xFFFFFFFFFULL); frames != 0)
        header.declaredFrames = frames;
    std::copy_n(info.begin() + 18, header.md5.size(), header.md5.begin());
    return header;
}

std::optional<std::int64_t> CodecHeader::flacSoundStart(const ByteSource &source, std::int64_t start)
{
    std::int64_t offset = start + 4;
    for (int blocks = 0; blocks < kMostFlacBlocks; ++blocks) {
        std::array<std::uint8_t, 4> head{};
        if (!source.readAll(offset, head.data(), head.size()))
            return std::nullopt;
        offset += 4 + (std::int64_t{qFromBigEndian<quint32>(head.data())} & 0xFFFFFF);
        if ((head[0] & 0x80) != 0)
            return offset <= source.size() ? std::optional(offset) : std::nullopt;
    }
    return std::nullopt;
}

std::optional<CodecHeader> CodecHeader::read(const ByteSource &source, std::int64_t start)
{
    std::array<char, 4> magic{};
    if (!source.readAll(start, magic.data(), magic.size()))
        return std::nullopt;
    const auto is = [&magic](const char *name) { return std::memcmp(magic.data(), name, magic.size()) == 0; };
    std::optional<CodecHeader> header;
    if (is("fLaC"))
        header = readFlac(source, start);
    else if (is("TTA1"))
        header = readTta(source, start);
    else if (is("MAC "))
        header = readApe(source, start);
    return header && isSensible(header->format) ? header : std::nullopt;
}

} // namespace nurv
