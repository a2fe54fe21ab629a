// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/MetadataReader.h"

#include "base/NurvFailure.h"
#include "tags/FlacMetadata.h"
#include "tags/Id3Tag.h"
#include "tags/MetadataBytes.h"
#include "tags/MetadataCollector.h"
#include "tags/Mp4Boxes.h"
#include "tags/Mp4Metadata.h"
#include "tags/OggMetadata.h"
#include "tags/PackedSoundMetadata.h"
#include "tags/ShortenMetadata.h"
#include "tags/SoundChunks.h"
#include "tags/TrailingTags.h"

#include <algorithm>
#include <array>
#include <new>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::array kFirstMp4Boxes = {fourCharacters("ftyp"), fourCharacters("moov"), fourCharacters("mdat"),
                                       fourCharacters("free"), fourCharacters("skip"), fourCharacters("wide")};

bool isMp4(const QByteArray &head)
{
    return head.size() >= 8
           && std::find(kFirstMp4Boxes.begin(), kFirstMp4Boxes.end(), bigEndianAt<FourCharacters>(head, 4))
                  != kFirstMp4Boxes.end();
}

/// Whether these are the first bytes of a frame of MPEG audio: 11 bits set, then a version and a layer that there are.
bool isMpegAudio(const QByteArray &head)
{
    if (head.size() < 2)
        return false;
    const auto number = bigEndianAt<quint16>(head, 0);
    return (number & 0xFFE0) == 0xFFE0 && (number & 0x18) != 0x08 && (number & 0x06) != 0;
}

/// Reads tags that stand before the sound file proper. Returns where that starts.
std::int64_t readTagsInFront(const MetadataBytes &bytes, MetadataCollector &found)
{
    std::int64_t begin = 0;
    while (const std::int64_t size = id3v2SizeAt(bytes, begin)) {
        readId3v2(bytes, begin, found);
        begin += size;
    }
    return begin;
}

void readMp4File(const QString &path, const MetadataBytes &bytes, MetadataCollector &found)
{
    const std::int64_t end = readMp4Metadata(path, found);
    const std::int64_t tags = readTrailingTags(bytes, end, found);
    if (!bytes.isZero(end, tags - end))
        throw NurvFailure(u"its boxes are damaged"_s);
}

void readAnyFile(const QString &path, const MetadataBytes &bytes, MetadataCollector &found)
{
    const std::int64_t begin = readTagsInFront(bytes, found);
    const QByteArray head = bytes.peek(begin, soundChunks::kFormSize);
    if (soundChunks::isForm(head)) {
        soundChunks::readFile(bytes, begin, found);
    } else if (head.startsWith("fLaC")) {
        static_cast<void>(readTrailingTags(bytes, readFlacMetadata(bytes, begin, found), found));
    } else if (head.startsWith("wvpk")) {
        readWavPackMetadata(bytes, begin, readTrailingTags(bytes, begin, found), found);
    } else if (head.startsWith("MAC ")) {
        readMonkeysAudioMetadata(bytes, begin, readTrailingTags(bytes, begin, found), found);
    } else if (head.startsWith("TTA")) {
        static_cast<void>(readTrailingTags(bytes, begin, found));
    } else if (head.startsWith("ajkg")) {
        static_cast<void>(readTrailingTags(bytes, begin, found));
        readShortenMetadata(bytes, begin, found);
    } else if (head.startsWith("OggS")) {
        readOggMetadata(bytes, begin, found);
    } else if (isMpegAudio(head)) {
        static_cast<void>(readTrailingTags(bytes, begin, found));
    } else if (begin == 0 && isMp4(head)) {
        readMp4File(path, bytes, found);
    } else {
        throw NurvFailure(u"it is no sound file of a known kind"_s);
    }
}

} // namespace

MetadataInventory readMetadata(const QString &path)
{
    try {
        MetadataCollector found;
        readAnyFile(path, MetadataBytes::ofFile(path), found);
        return found.inventory();
    } catch (const std::bad_alloc &) {
        throw NurvFailure(u"there is not enough memory"_s);
    }
}

} // namespace nurv
