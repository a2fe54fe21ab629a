// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

namespace nurv {

/// What the boxes of an MPEG-4 file say about the length of one track (ISO/IEC
/// 14496-12): the media in units of its own, and what the edit list shows of it in
/// units of the movie, which many writers make as coarse as a millisecond.
struct Mpeg4Timing {
    /// Reads `size` bytes at `offset` of the file, all of them or nothing.
    using ReadAt = std::function<bool(std::int64_t offset, void *bytes, std::size_t size)>;

    std::uint32_t movieTimescale = 0; ///< units per second
    std::uint32_t mediaTimescale = 0;
    std::int64_t mediaDuration = 0; ///< 0: not told
    /// The sum of the table that has the duration of every packet ("stts"); nothing where it
    /// is missing, longer than any that is written, or beyond all numbers.
    std::optional<std::int64_t> tableDuration;
    bool hasOneEdit = false;        ///< the edit list is one stretch of the media
    std::int64_t editDuration = 0;  ///< in units of the movie
    std::int64_t editStart = 0;     ///< in units of the media

    // Where the 32-bit fields in units of the movie are; 0: there are none.
    std::int64_t movieTimescaleAt = 0;
    std::int64_t movieDurationAt = 0;
    std::int64_t trackDurationAt = 0;
    std::int64_t editDurationAt = 0;

    /// Reads the timing of a track; nothing when the boxes are not there or damaged.
    [[nodiscard]] static std::optional<Mpeg4Timing> read(const ReadAt &readAt, std::int64_t fileSize,
                                                         std::uint32_t trackId);

    /// How many tracks the file announces.
    [[nodiscard]] static int trackCount(const ReadAt &readAt, std::int64_t fileSize);

    /// The length of the track in units of the media, when it is one stretch of it. An
    /// edit that ends less than a unit of the movie beside the end of the media was
    /// meant to end there.
    [[nodiscard]] std::optional<std::int64_t> length() const;
};

} // namespace nurv
