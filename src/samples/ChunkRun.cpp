// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/ChunkRun.h"

#include "samples/ByteSource.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>

namespace nurv {

namespace {

constexpr std::int64_t kChunkHeadBytes = 8;
constexpr int kMostChunks = 10'000;

bool isChunkName(const std::uint8_t *name)
{
    return std::all_of(name, name + 4, [](std::uint8_t character) { return character >= ' ' && character <= '~'; });
}

/// Also a whole file that was put behind another one.
bool holdsSamples(const std::uint8_t *name)
{
    static constexpr std::array<const char *, 8> kNames{"data", "SSND", "wavl", "RIFF", "RIFX", "RF64", "BW64", "FORM"};
    return std::any_of(kNames.begin(), kNames.end(),
                       [name](const char *known) { return std::memcmp(name, known, 4) == 0; });
}

BehindSound follow(const ByteSource &source, std::int64_t position, bool isBigEndian)
{
    BehindSound found = BehindSound::Chunks;
    for (int chunks = 0; chunks < kMostChunks; ++chunks) {
        if (holdsOnlyTags(source, position))
            return found;
        std::array<std::uint8_t, kChunkHeadBytes> head{};
        if (!source.readAll(position, head.data(), head.size()) || !isChunkName(head.data()))
            return BehindSound::SomethingElse;
        if (holdsSamples(head.data()))
            found = BehindSound::FurtherSound;
        const std::int64_t size =
            isBigEndian ? qFromBigEndian<quint32>(head.data() + 4) : qFromLittleEndian<quint32>(head.data() + 4);
        if (size > source.size() - position - kChunkHeadBytes)
            return BehindSound::SomethingElse;
        position += kChunkHeadBytes + size + (size & 1);
    }
    return BehindSound::SomethingElse;
}

} // namespace

BehindSound lookBehindSound(const ByteSource &source, std::int64_t from, bool padded, bool isBigEndian)
{
    // A pad byte is zero; another one may be a sample that the size leaves out.
    std::uint8_t pad = 0;
    if (padded && (!source.readAll(from, &pad, 1) || pad == 0)) {
        const BehindSound found = follow(source, from + 1, isBigEndian);
        if (found != BehindSound::SomethingElse)
            return found;
    }
    return follow(source, from, isBigEndian);
}

} // namespace nurv
