// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mkisofs/TrackSectors.h"

#include "dvda/BigEndian.h"
#include "dvda/DiscNames.h"
#include "dvda/DiscTables.h"
#include "support/Bytes.h"
#include "support/ToolError.h"

#include <algorithm>
#include <limits>

namespace nurv {

namespace {

[[noreturn]] void refuse(const char *file, const std::string &why)
{
    throw ToolError(ToolError::Kind::InvalidInput, std::string(file) + ": " + why);
}

[[noreturn]] void refuseTitleSet()
{
    refuse(discNames::kTitleSet, "the table of the tracks contradicts itself");
}

std::span<const uint8_t> part(std::span<const uint8_t> bytes, size_t offset, size_t count)
{
    if (offset > bytes.size() || count > bytes.size() - offset)
        refuseTitleSet();
    return bytes.subspan(offset, count);
}

/// Adds the tracks of a title; `record` begins with it.
void addTracks(std::span<const uint8_t> record, uint64_t sectors, std::vector<SectorRange> &tracks)
{
    constexpr size_t kHeadBytes = 16;
    constexpr size_t kEntryBytes = 20;
    constexpr size_t kCellBytes = 12;
    const std::span<const uint8_t> head = part(record, 0, kHeadBytes);
    const size_t trackCount = head[2];
    const size_t cellCount = head[3];
    const std::span<const uint8_t> entries = part(record, bigEndian16(head.data() + 10), trackCount * kEntryBytes);
    const std::span<const uint8_t> cells = part(record, bigEndian16(head.data() + 12), cellCount * kCellBytes);
    for (size_t i = 0; i < trackCount; ++i) {
        const size_t firstCell = entries[i * kEntryBytes + 4];
        const size_t nextCell = i + 1 < trackCount ? entries[(i + 1) * kEntryBytes + 4] : cellCount + 1;
        if (firstCell == 0 || nextCell <= firstCell || nextCell > cellCount + 1)
            refuseTitleSet();
        const SectorRange range{bigEndian32(cells.data() + (firstCell - 1) * kCellBytes + 4),
                                bigEndian32(cells.data() + (nextCell - 2) * kCellBytes + 8)};
        if (range.first > range.last || range.last >= sectors)
            refuseTitleSet();
        tracks.push_back(range);
    }
}

} // namespace

std::vector<SectorRange> trackSectors(std::span<const uint8_t> titleSet, uint64_t sectors)
{
    constexpr size_t kIndexOffset = 8;
    constexpr size_t kIndexBytes = 8;
    constexpr size_t kMostTitles = 99;
    if (!startsWith(titleSet, "DVDAUDIO-ATS"))
        refuse(discNames::kTitleSet, "this is no table of titles");
    const std::span<const uint8_t> table = part(titleSet, kDiscSectorBytes, titleSet.size() - kDiscSectorBytes);
    const size_t titles = bigEndian16(part(table, 0, kIndexOffset).data());
    if (titles == 0 || titles > kMostTitles)
        refuseTitleSet();
    const std::span<const uint8_t> index = part(table, kIndexOffset, titles * kIndexBytes);
    std::vector<SectorRange> tracks;
    for (size_t i = 0; i < titles; ++i) {
        const uint32_t offset = bigEndian32(index.data() + i * kIndexBytes + 4);
        addTracks(part(table, offset, table.size() - std::min<size_t>(offset, table.size())), sectors, tracks);
    }
    return tracks;
}

void putTrackSectors(std::span<uint8_t> simpleManager, std::span<const SectorRange> tracks, uint32_t firstSector)
{
    using namespace discTables;
    constexpr size_t kMostTracks = 314;
    if (simpleManager.size() != kSimpleTableBytes * kSimpleTableCopies || !startsWith(simpleManager, "DVDAUDIOSAPP"))
        refuse(discNames::kSimpleManager, "this is no table of tracks");
    const std::span<uint8_t> table = simpleManager.first(kSimpleTableBytes);
    if (bigEndian16(table.data() + 12) != tracks.size() || tracks.size() > kMostTracks)
        refuse(discNames::kSimpleManager, std::string("it has other tracks than ") + discNames::kTitleSet);
    for (size_t i = 0; i < tracks.size(); ++i) {
        if (tracks[i].last > std::numeric_limits<uint32_t>::max() - firstSector)
            refuseTitleSet();
        uint8_t *const at = table.data() + kSimpleTracksOffset + kSimpleTrackBytes * i + kSimpleSectorsOffset;
        putBigEndian32(at, firstSector + tracks[i].first);
        putBigEndian32(at + 4, firstSector + tracks[i].first);
        putBigEndian32(at + 8, firstSector + tracks[i].last);
    }
    for (size_t copy = 1; copy < kSimpleTableCopies; ++copy)
        std::copy(table.begin(), table.end(), simpleManager.begin() + static_cast<std::ptrdiff_t>(copy * table.size()));
}

} // namespace nurv
