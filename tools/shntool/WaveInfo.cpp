// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/WaveInfo.h"

#include "shntool/AudioFormat.h"

#include <algorithm>

namespace nurv {

uint64_t WaveHeader::calculatedRate() const
{
    return uint64_t{samplesPerSecond} * channels * bitsPerSample / 8;
}

bool WaveHeader::isCdQuality() const
{
    return channels == 2 && bitsPerSample == 16 && samplesPerSecond == 44100 && bytesPerSecond == kCdBytesPerSecond;
}

uint64_t WaveHeader::canonicalBytes() const
{
    return kCanonicalHeaderBytes + (isExtensible() ? kExtensibleFormatBytes - kPlainFormatBytes : 0);
}

bool WaveInfo::isBlockAligned() const
{
    return header.blockAlign == 0 || dataBytes() % header.blockAlign == 0;
}

uint64_t WaveInfo::bytesBehindData() const
{
    const uint64_t before = header.bytes.size() + dataBytes();
    return totalBytes() > before ? totalBytes() - before : 0;
}

WaveInfo::PadByte WaveInfo::padByte() const
{
    if (dataBytes() % 2 == 0)
        return PadByte::NotNeeded;
    if (isInconsistent())
        return PadByte::Unknown;
    switch (bytesBehindData()) {
    case 0: return PadByte::Missing;
    case 1: return PadByte::Present;
    default: return PadByte::Unknown;
    }
}

uint64_t WaveInfo::extraBytes() const
{
    const uint64_t behind = bytesBehindData();
    return behind - (behind > 0 && dataBytes() % 2 != 0 ? 1 : 0);
}

bool WaveInfo::isInconsistent() const
{
    return totalBytes() >= header.bytes.size() && dataBytes() > totalBytes() - header.bytes.size();
}

bool WaveInfo::canTellTruncation() const
{
    return format != nullptr && format->isWave();
}

uint64_t WaveInfo::missingBytes() const
{
    const uint64_t present = actualBytes - std::min(actualBytes, id3Bytes);
    return canTellTruncation() && present < totalBytes() ? totalBytes() - present : 0;
}

uint64_t WaveInfo::junkBytes() const
{
    const uint64_t present = actualBytes - std::min(actualBytes, id3Bytes);
    return canTellTruncation() && present > totalBytes() ? present - totalBytes() : 0;
}

double WaveInfo::ratio() const
{
    return static_cast<double>(actualBytes) / static_cast<double>(totalBytes());
}

} // namespace nurv
