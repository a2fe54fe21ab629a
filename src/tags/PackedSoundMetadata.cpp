// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/PackedSoundMetadata.h"

#include "base/NurvFailure.h"
#include "tags/SoundChunks.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

// WavPack

constexpr std::int64_t kBlockHeadSize = 32;
constexpr std::int64_t kSizeStart = 8; // the size of a block counts from here on

enum SubBlock { RiffHeader = 0x21, RiffTrailer = 0x22, OtherHeader = 0x23, OtherTrailer = 0x24 };

struct StoredParts {
    QByteArray before;
    QByteArray behind;
};

/// Looks through the parts that a block consists of.
void readSubBlocks(const MetadataBytes &bytes, std::int64_t position, std::int64_t end, StoredParts &parts)
{
    while (end - position >= 2) {
        const QByteArray head = bytes.peek(position, 4);
        const int id = static_cast<unsigned char>(head.at(0));
        const bool hasLongSize = (id & 0x80) != 0;
        if (hasLongSize && head.size() < 4)
            throw NurvFailure(u"its WavPack blocks are damaged"_s);
        const std::int64_t words = hasLongSize ? littleEndianAt<quint32>(head, 0) >> 8 : head.at(1) & 0xff;
        position += hasLongSize ? 4 : 2;
        const std::int64_t size = 2 * words - ((id & 0x40) != 0 ? 1 : 0);
        if (size < 0 || 2 * words > end - position)
            throw NurvFailure(u"its WavPack blocks are damaged"_s);
        const int kind = id & 0x3f;
        if (kind == RiffHeader || kind == OtherHeader)
            parts.before += bytes.read(position, size);
        else if (kind == RiffTrailer || kind == OtherTrailer)
            parts.behind += bytes.read(position, size);
        position += 2 * words;
    }
}

// Monkey's Audio

constexpr int kFirstVersionWithDescriptor = 3980;
enum OldFlag { HasPeak = 4, HasSeekCount = 16, MakesHeader = 32 };

struct Place {
    std::int64_t offset = 0;
    std::int64_t size = 0;
};

/// Where the stored header stands behind the heads of a newer file, and how large the end is.
Place placeByDescriptor(const MetadataBytes &bytes, std::int64_t begin, std::int64_t &sizeBehind)
{
    const QByteArray descriptor = bytes.read(begin, 52);
    sizeBehind = littleEndianAt<quint32>(descriptor, 32);
    std::int64_t offset = begin;
    for (const qsizetype field : {8, 12, 16}) // the descriptor's own size, the header's, the seek table's
        offset += littleEndianAt<quint32>(descriptor, field);
    return {.offset = offset, .size = littleEndianAt<quint32>(descriptor, 20)};
}

Place placeInOldFile(const MetadataBytes &bytes, std::int64_t begin, std::int64_t &sizeBehind)
{
    constexpr std::int64_t kOldHeaderSize = 32;
    const QByteArray header = bytes.read(begin, kOldHeaderSize);
    const int flags = littleEndianAt<quint16>(header, 8);
    sizeBehind = littleEndianAt<quint32>(header, 20);
    const std::int64_t more = ((flags & HasPeak) != 0 ? 4 : 0) + ((flags & HasSeekCount) != 0 ? 4 : 0);
    return {.offset = begin + kOldHeaderSize + more,
            .size = (flags & MakesHeader) != 0 ? 0 : littleEndianAt<quint32>(header, 16)};
}

} // namespace

void readWavPackMetadata(const MetadataBytes &bytes, std::int64_t begin, std::int64_t end, MetadataCollector &found)
{
    StoredParts parts;
    bool isSoundAhead = true;
    for (std::int64_t position = begin; end - position >= kBlockHeadSize;) {
        const QByteArray head = bytes.peek(position, kBlockHeadSize);
        const std::int64_t size = std::int64_t{littleEndianAt<quint32>(head, 4)} + kSizeStart;
        if (!head.startsWith("wvpk") || size < kBlockHeadSize || size > end - position)
            throw NurvFailure(u"its WavPack blocks are damaged"_s);
        // Only the first block with sound, and those without, hold anything else.
        const bool hasSound = littleEndianAt<quint32>(head, 20) != 0;
        if (isSoundAhead || !hasSound)
            readSubBlocks(bytes, position + kBlockHeadSize, position + size, parts);
        isSoundAhead = isSoundAhead && !hasSound;
        position += size;
    }
    soundChunks::readStored(parts.before, parts.behind, found);
}

void readMonkeysAudioMetadata(const MetadataBytes &bytes, std::int64_t begin, std::int64_t end,
                              MetadataCollector &found)
{
    const auto version = littleEndianAt<quint16>(bytes.read(begin + 4, 2), 0);
    std::int64_t sizeBehind = 0;
    const Place before = version >= kFirstVersionWithDescriptor ? placeByDescriptor(bytes, begin, sizeBehind)
                                                                : placeInOldFile(bytes, begin, sizeBehind);
    if (before.size > end - before.offset || sizeBehind > end - before.offset - before.size)
        throw NurvFailure(u"its Monkey's Audio header is damaged"_s);
    soundChunks::readStored(bytes.read(before.offset, before.size), bytes.read(end - sizeBehind, sizeBehind), found);
}

} // namespace nurv
