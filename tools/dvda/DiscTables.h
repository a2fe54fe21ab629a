// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dvda/AobTitle.h"

#include <cstdint>
#include <vector>

namespace nurv {

/// A disc of one group with one title.
struct AudioDisc {
    DvdAudioFormat format;
    std::vector<DiscTrack> tracks;
    uint32_t sectors = 0; ///< of all AOBs
    unsigned aobs = 0;
};

namespace discTables {

// The bytes of the tables of a disc, whole sectors each.

inline constexpr size_t kSimpleTableBytes = 16384;
inline constexpr size_t kSimpleTableCopies = 8;
inline constexpr size_t kSimpleTracksOffset = 16;
inline constexpr size_t kSimpleTrackBytes = 52;
/// In a track of the simple table: its first sector in the image, the same again, its last one.
inline constexpr size_t kSimpleSectorsOffset = 40;

inline constexpr size_t kManagerSectors = 3;
inline constexpr size_t kSimpleManagerSectors = kSimpleTableBytes * kSimpleTableCopies / kDiscSectorBytes;

/// Of whoever made the disc, in the table of all titles.
inline constexpr size_t kProviderOffset = 0x40;
inline constexpr char kProvider[] = "NURV AUDIO WORKBENCH";

/// ATS_01_0.IFO: where the tracks are, and how long.
[[nodiscard]] std::vector<uint8_t> titleSet(const AudioDisc &disc);

/// AUDIO_TS.IFO: all titles.
[[nodiscard]] std::vector<uint8_t> manager(const AudioDisc &disc);

/// AUDIO_PP.IFO: all tracks by their sectors in an image in which this file begins at `firstSector`.
[[nodiscard]] std::vector<uint8_t> simpleManager(const AudioDisc &disc, uint32_t firstSector);

/// Where AUDIO_PP.IFO begins in an image of AUDIO_TS and an empty VIDEO_TS alone.
[[nodiscard]] uint32_t usualFirstSector(unsigned aobs);

} // namespace discTables

} // namespace nurv
