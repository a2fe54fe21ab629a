// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dvda/DiscTables.h"
#include "mkisofs/TrackSectors.h"
#include "support/ToolError.h"

#include <algorithm>
#include <cstdlib>

/// The first byte is the number of sectors of sound, in packs of 16; the rest is ATS_01_0.IFO, and AUDIO_PP.IFO once
/// more.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace nurv;
    if (size == 0)
        return 0;
    const uint64_t sectors = uint64_t{data[0]} * 16;
    const std::span<const uint8_t> bytes(data + 1, size - 1);
    std::vector<SectorRange> tracks;
    try {
        tracks = trackSectors(bytes, sectors);
        for (const SectorRange &track : tracks) {
            if (track.first > track.last || track.last >= sectors)
                std::abort();
        }
    } catch (const ToolError &) {
        tracks.assign(bytes.size() % 400, {1, 2});
    }
    std::vector<uint8_t> simple(discTables::kSimpleTableBytes * discTables::kSimpleTableCopies);
    std::copy_n(bytes.begin(), std::min(bytes.size(), simple.size()), simple.begin());
    for (const bool isTable : {false, true}) {
        if (isTable) {
            AudioDisc disc{.format = {44100, 16, 2},
                           .tracks = std::vector<DiscTrack>(std::min<size_t>(tracks.size(), 314))};
            simple = discTables::simpleManager(disc, 278);
        }
        try {
            putTrackSectors(simple, tracks, 0xFFFF0000);
        } catch (const ToolError &) {
            continue;
        }
        const auto half = simple.begin() + static_cast<std::ptrdiff_t>(simple.size() / 2);
        if (!std::equal(simple.begin(), half, half))
            std::abort();
    }
    return 0;
}
