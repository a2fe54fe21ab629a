// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/XingHeader.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>

namespace nurv {

namespace {

constexpr std::size_t kFrameHeader = 4;
constexpr std::uint32_t kHasFrames = 1;
constexpr std::uint32_t kHasBytes = 2;

/// ISO/IEC 11172-3 and 13818-3: between the header of a frame of layer III and its data.
std::size_t sideInformationSize(std::uint8_t versionByte, std::uint8_t modeByte)
{
    const bool isMpeg1 = ((versionByte >> 3) & 3) == 3;
    const bool isMono = modeByte >> 6 == 3;
    if (isMpeg1)
        return isMono ? 17 : 32;
    return isMono ? 9 : 17;
}

} // namespace

std::optional<double> shareOfCountedMpegAudio(const ByteSource &source, std::int64_t start)
{
    // The longest way to the count: header, side information, name, flags, frames, bytes.
    std::array<std::uint8_t, kFrameHeader + 32 + 16> head = {};
    if (!source.readAll(start, head.data(), head.size()) || head[0] != 0xFF || (head[1] & 0xE0) != 0xE0)
        return std::nullopt;
    const std::uint8_t *const header = head.data() + kFrameHeader + sideInformationSize(head[1], head[3]);
    if (std::memcmp(header, "Xing", 4) != 0 && std::memcmp(header, "Info", 4) != 0)
        return std::nullopt;
    const auto flags = qFromBigEndian<std::uint32_t>(header + 4);
    const auto bytes = qFromBigEndian<std::uint32_t>(header + ((flags & kHasFrames) != 0 ? 12 : 8));
    if ((flags & kHasBytes) == 0 || bytes == 0)
        return std::nullopt;
    return std::min(1.0, static_cast<double>(source.size() - start) / bytes);
}

} // namespace nurv
