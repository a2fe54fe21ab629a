// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dvda/DvdAudioFormat.h"
#include "support/ByteSink.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace nurv {

/// Where a track lies and how long it is, as the tables of a disc tell it.
struct DiscTrack {
    uint64_t frames = 0; ///< sample frames of its file
    uint32_t startPts = 0;
    uint32_t lengthTicks = 0; ///< of 1/90000 second
    uint32_t firstSector = 0; ///< from the start of the first AOB
    uint32_t lastSector = 0;
};

/// Makes the packs of one title, track by track: a pack a sector of 2048 bytes, in runs.
///
///     pack header | system header (first pack only) | PES header | private header | audio | padding
///
/// The clock runs on from track to track; each track begins with a pack of its own.
class AobTitle {
public:
    AobTitle(const DvdAudioFormat &format, ByteSink sectors);

    void beginTrack();
    /// The next sample frames of the track as a WAV file has them, whole ones.
    void add(std::span<const uint8_t> pcm);
    /// Throws ToolError(UnsupportedFormat) for a title that is longer than its clock goes.
    [[nodiscard]] DiscTrack endTrack();

    /// Hands on what is left.
    void finish();

    [[nodiscard]] uint64_t packs() const { return m_packs; }

private:
    struct PackTimes {
        uint64_t scr = 0;
        uint64_t pts = 0;
        uint16_t firstUnit = 0; ///< where the first access unit starts; 0: none does
    };

    [[nodiscard]] uint64_t ptsAt(uint64_t frame) const;
    [[nodiscard]] PackTimes nextTimes(uint64_t frames, unsigned headerBytes);
    void putPack(std::span<const uint8_t> pcm, const PackDivision &division);
    void putShortPack(std::span<const uint8_t> pcm);

    DvdAudioFormat m_format;
    ByteSink m_sectors;
    std::vector<uint8_t> m_run;     ///< sectors to hand on
    std::vector<uint8_t> m_waiting; ///< PCM of less than a pack
    uint64_t m_packs = 0;
    uint64_t m_position = 0; ///< sample frames of the title so far
    uint64_t m_lastScr = 0;
    std::array<uint64_t, 4> m_played{}; ///< sample frames at the ends of the last four packs, by their numbers
    uint64_t m_trackFirstPack = 0;
    uint64_t m_trackFirstFrame = 0;
    uint64_t m_trackBytes = 0; ///< of its PCM
};

} // namespace nurv
