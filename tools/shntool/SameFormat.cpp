// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SameFormat.h"

#include "shntool/WaveInfo.h"

namespace nurv {

const char *differenceOf(const WaveHeader &one, const WaveHeader &other)
{
    if (one.channels != other.channels)
        return "number of channels";
    if (one.samplesPerSecond != other.samplesPerSecond)
        return "samples per second";
    if (one.bytesPerSecond != other.bytesPerSecond)
        return "average bytes per second";
    if (one.bitsPerSample != other.bitsPerSample)
        return "bits per sample";
    return one.blockAlign == other.blockAlign ? nullptr : "block align";
}

const char *differenceAmong(std::span<const WaveInfo> infos)
{
    for (size_t i = 1; i < infos.size(); ++i) {
        if (const char *difference = differenceOf(infos.front().header, infos[i].header))
            return difference;
    }
    return nullptr;
}

} // namespace nurv
