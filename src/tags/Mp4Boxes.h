// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <tiostream.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace nurv {

/// The four characters that name a kind of box, as the number that stands in the file.
using FourCharacters = std::uint32_t;

[[nodiscard]] constexpr FourCharacters fourCharacters(const char (&text)[5])
{
    FourCharacters number = 0;
    for (int i = 0; i < 4; ++i)
        number = number << 8 | static_cast<unsigned char>(text[i]);
    return number;
}

inline constexpr std::int64_t kMp4HeadSize = 8;    ///< of a box whose size fits into 32 bits, as mp4Box makes it
inline constexpr std::int64_t kMp4VersionSize = 4; ///< version and flags of a full box

/// Where a box of an MPEG-4 file (ISO/IEC 14496-12) stands. Positions are bytes, counted
/// from the start of the file or of the run of bytes that the box was found in.
struct Mp4Box {
    FourCharacters type = 0;
    std::int64_t offset = 0;
    std::int64_t headerSize = 0;
    std::int64_t size = 0;         ///< with the head
    bool reachesEndOfFile = false; ///< the head gives no size

    [[nodiscard]] std::int64_t contents() const { return offset + headerSize; }
    [[nodiscard]] std::int64_t end() const { return offset + size; }
};

using Mp4Boxes = std::vector<Mp4Box>;

/// Hours of sound in fragments have fewer boxes in a row; bytes that are nothing but
/// heads would have more.
inline constexpr std::size_t kMostMp4Boxes = 100'000;

/// The boxes that fill the bytes from `begin` to `end`; nothing when their sizes do
/// not add up to that, and for more than `kMostMp4Boxes`.
[[nodiscard]] std::optional<Mp4Boxes> mp4BoxesIn(const QByteArray &bytes, std::int64_t begin, std::int64_t end);

/// The boxes of this kind that stand in the parents, one after the other; nothing when one of the
/// parents is damaged, and for more than `kMostMp4Boxes`.
[[nodiscard]] std::optional<Mp4Boxes> mp4BoxesInside(const QByteArray &bytes, const Mp4Boxes &parents,
                                                     FourCharacters type);

/// The boxes of user data, which a zero of four bytes may end.
[[nodiscard]] std::optional<Mp4Boxes> mp4UserDataBoxes(const QByteArray &bytes, const Mp4Box &box);

/// The boxes of metadata. MPEG-4 has a version before them, QuickTime has not.
[[nodiscard]] std::optional<Mp4Boxes> mp4MetadataBoxes(const QByteArray &bytes, const Mp4Box &box);

/// Whether boxes of this kind only take up room.
[[nodiscard]] constexpr bool isMp4Filler(FourCharacters type)
{
    return type == fourCharacters("free") || type == fourCharacters("skip") || type == fourCharacters("wide");
}

/// A whole box.
[[nodiscard]] QByteArray mp4Box(FourCharacters type, const QByteArray &contents);

/// The integer at that place, big-endian; the place must be within the bytes.
template<typename Number>
[[nodiscard]] Number mp4Number(const QByteArray &bytes, std::int64_t offset);

/// The boxes of a file's top level.
///
///     box box ... box │ tail: what is no box; zeros, tags of other formats
struct Mp4Layout {
    Mp4Boxes boxes;
    std::int64_t tail = 0;   ///< where the last box ends
    std::int64_t length = 0; ///< of the file
    /// The tail starts like a box that readers look for, or there are more boxes than are looked at.
    bool isCutShort = false;

    /// The boxes as far as their sizes are sound. The file's contents are not read.
    [[nodiscard]] static Mp4Layout of(TagLib::IOStream &file);
    /// The one box of this kind; a null pointer when there is none, and when there are several.
    [[nodiscard]] const Mp4Box *only(FourCharacters type) const;
    [[nodiscard]] bool contains(FourCharacters type) const;
    /// Whether boxes beside the movie box may name places in the file, as those of
    /// movie fragments do; then no byte should move.
    [[nodiscard]] bool namesPlaces() const;
};

} // namespace nurv
