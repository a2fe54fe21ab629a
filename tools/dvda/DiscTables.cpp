// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dvda/DiscTables.h"

#include "dvda/BigEndian.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace nurv::discTables {

namespace {

constexpr uint16_t kVersion = 0x0012;
constexpr size_t kTitleBytes = 14;
constexpr size_t kTitleIndexBytes = 8;
constexpr size_t kTitleHeadBytes = 16;
constexpr size_t kTrackEntryBytes = 20;
constexpr size_t kCellBytes = 12;
constexpr uint8_t kTitleFlag = 0x80;

/// Left and right gains of the channels for two speakers, as discs have them.
constexpr std::array<uint8_t, 18> kDownMix{0x00, 0x00, 0x1E, 0xFF, 0xFF, 0x1E, 0x2D, 0x2D, 0x3C,
                                           0xFF, 0xFF, 0x3C, 0x4B, 0x4B, 0x00, 0x00, 0x00, 0x00};
constexpr size_t kDownMixTables = 16;

void putText(uint8_t *at, std::string_view text)
{
    std::copy(text.begin(), text.end(), at);
}

/// The sum of the tracks, as the title's entry has it.
uint32_t ticksOf(const AudioDisc &disc)
{
    uint32_t ticks = 0;
    for (const DiscTrack &track : disc.tracks)
        ticks += track.lengthTicks;
    return ticks;
}

size_t titleTableBytes(const AudioDisc &disc)
{
    return 2 * kTitleIndexBytes + kTitleHeadBytes + disc.tracks.size() * (kTrackEntryBytes + kCellBytes);
}

size_t titleSetSectors(const AudioDisc &disc)
{
    return 1 + (titleTableBytes(disc) + kDiscSectorBytes - 1) / kDiscSectorBytes;
}

void putTrackEntry(uint8_t *at, const AudioDisc &disc, size_t index)
{
    constexpr uint8_t kNewClock = 0xC0;
    constexpr uint8_t kNoDownMixTable = 0x10;
    const DiscTrack &track = disc.tracks[index];
    at[0] = index == 0 ? kNewClock : 0;
    at[1] = disc.format.isMultichannel() ? 0 : kNoDownMixTable;
    at[4] = static_cast<uint8_t>(index + 1);
    putBigEndian32(at + 6, track.startPts);
    putBigEndian32(at + 10, track.lengthTicks);
}

void putCell(uint8_t *at, const DiscTrack &track)
{
    at[0] = 1;
    putBigEndian32(at + 4, track.firstSector);
    putBigEndian32(at + 8, track.lastSector);
}

/// The only title, from its table's first byte.
void putTitleTable(uint8_t *table, const AudioDisc &disc)
{
    const size_t tracks = disc.tracks.size();
    putBigEndian16(table, 1);
    putBigEndian32(table + 4, static_cast<uint32_t>(titleTableBytes(disc) - 1));
    uint8_t *const index = table + kTitleIndexBytes;
    index[0] = kTitleFlag | 1;
    index[1] = disc.format.isMultichannel() ? 1 : 0;
    putBigEndian32(index + 4, 2 * kTitleIndexBytes);
    uint8_t *const title = table + 2 * kTitleIndexBytes;
    title[2] = static_cast<uint8_t>(tracks);
    title[3] = static_cast<uint8_t>(tracks);
    putBigEndian32(title + 4, ticksOf(disc));
    putBigEndian16(title + 10, kTitleHeadBytes);
    putBigEndian16(title + 12, static_cast<uint16_t>(kTitleHeadBytes + kTrackEntryBytes * tracks));
    uint8_t *const cells = title + kTitleHeadBytes + kTrackEntryBytes * tracks;
    for (size_t i = 0; i < tracks; ++i) {
        putTrackEntry(title + kTitleHeadBytes + kTrackEntryBytes * i, disc, i);
        putCell(cells + kCellBytes * i, disc.tracks[i]);
    }
}

} // namespace

std::vector<uint8_t> titleSet(const AudioDisc &disc)
{
    const auto sectors = static_cast<uint32_t>(titleSetSectors(disc));
    std::vector<uint8_t> bytes(sectors * kDiscSectorBytes);
    uint8_t *const at = bytes.data();
    putText(at, "DVDAUDIO-ATS");
    putBigEndian32(at + 0x00C, 2 * sectors + disc.sectors - 1);
    putBigEndian32(at + 0x01C, sectors - 1);
    putBigEndian16(at + 0x020, kVersion);
    putBigEndian32(at + 0x080, kDiscSectorBytes - 1);
    putBigEndian32(at + 0x0C4, sectors);
    putBigEndian32(at + 0x0CC, 1);
    at[0x102] = disc.format.sizesByte();
    at[0x103] = disc.format.ratesByte();
    at[0x104] = disc.format.channelAssignment();
    for (size_t i = 0; i < (disc.format.isMultichannel() ? kDownMixTables : 1); ++i)
        std::copy(kDownMix.begin(), kDownMix.end(), at + 0x180 + i * kDownMix.size());
    putTitleTable(at + kDiscSectorBytes, disc);
    return bytes;
}

std::vector<uint8_t> manager(const AudioDisc &disc)
{
    std::vector<uint8_t> bytes(kManagerSectors * kDiscSectorBytes);
    uint8_t *const at = bytes.data();
    putText(at, "DVDAUDIO-AMG");
    putBigEndian32(at + 0x00C, 2 * kManagerSectors - 1);
    putBigEndian32(at + 0x01C, kManagerSectors - 1);
    putBigEndian16(at + 0x020, kVersion);
    putBigEndian16(at + 0x026, 1); // volumes, and which of them this is
    putBigEndian16(at + 0x028, 1);
    at[0x02A] = 1; // side
    at[0x02F] = 1; // plays by itself
    at[0x03F] = 1; // audio title sets
    putText(at + kProviderOffset, kProvider);
    putBigEndian32(at + 0x080, kDiscSectorBytes - 1);
    putBigEndian32(at + 0x0C4, 1);
    putBigEndian32(at + 0x0C8, 2);
    for (size_t sector = 1; sector <= 2; ++sector) {
        uint8_t *const table = at + sector * kDiscSectorBytes;
        putBigEndian16(table, 1);
        putBigEndian16(table + 2, 3 + kTitleBytes);
        uint8_t *const title = table + 4;
        title[0] = kTitleFlag | 1;
        title[1] = static_cast<uint8_t>(disc.tracks.size());
        putBigEndian32(title + 4, ticksOf(disc));
        title[8] = 1;
        title[9] = 1;
        putBigEndian32(title + 10, 2 * kManagerSectors);
    }
    return bytes;
}

std::vector<uint8_t> simpleManager(const AudioDisc &disc, uint32_t firstSector)
{
    constexpr uint8_t kFirstOfGroup = 0x80;
    const auto audio =
        static_cast<uint32_t>(firstSector + kSimpleManagerSectors + 2 * kManagerSectors + titleSetSectors(disc));
    std::vector<uint8_t> table(kSimpleTableBytes);
    putText(table.data(), "DVDAUDIOSAPP");
    putBigEndian16(table.data() + 12, static_cast<uint16_t>(disc.tracks.size()));
    putBigEndian16(table.data() + 14, kVersion);
    for (size_t i = 0; i < disc.tracks.size(); ++i) {
        const DiscTrack &track = disc.tracks[i];
        uint8_t *const at = table.data() + kSimpleTracksOffset + kSimpleTrackBytes * i;
        at[2] = 1;
        at[3] = static_cast<uint8_t>(i + 1);
        putBigEndian32(at + 4, track.startPts);
        putBigEndian32(at + 8, track.lengthTicks);
        at[16] = static_cast<uint8_t>((i == 0 ? kFirstOfGroup : 0) | (disc.format.isMultichannel() ? 0x40 : 0x48));
        at[17] = disc.format.sizesByte();
        at[18] = disc.format.ratesByte();
        at[19] = disc.format.channelAssignment();
        uint8_t *const sectors = at + kSimpleSectorsOffset;
        putBigEndian32(sectors, audio + track.firstSector);
        putBigEndian32(sectors + 4, audio + track.firstSector);
        putBigEndian32(sectors + 8, audio + track.lastSector);
    }
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < kSimpleTableCopies; ++i)
        bytes.insert(bytes.end(), table.begin(), table.end());
    return bytes;
}

uint32_t usualFirstSector(unsigned aobs)
{
    return 277 + aobs;
}

} // namespace nurv::discTables
