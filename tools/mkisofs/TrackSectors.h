// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace nurv {

/// The packs of a track, from the start of the first AOB.
struct SectorRange {
    uint32_t first = 0;
    uint32_t last = 0;
};

// Two tables of a disc that say where tracks are: ATS_01_0.IFO from the start of the sound, AUDIO_PP.IFO from the
// start of the image. Both may come from strangers.

/// The tracks of all titles in ATS_01_0.IFO, in their order. Throws ToolError(InvalidInput) where the table contradicts
/// itself, or names a sector behind the last of `sectors`.
[[nodiscard]] std::vector<SectorRange> trackSectors(std::span<const uint8_t> titleSet, uint64_t sectors);

/// Puts the sectors of the tracks into AUDIO_PP.IFO, for an image in which the sound begins at `firstSector`. Throws
/// ToolError(InvalidInput) where it is no such file, or one of other tracks.
void putTrackSectors(std::span<uint8_t> simpleManager, std::span<const SectorRange> tracks, uint32_t firstSector);

} // namespace nurv
