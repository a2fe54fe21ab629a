// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/OggMetadata.h"

#include "base/NurvFailure.h"
#include "tags/FlacMetadata.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

// A page: "OggS", version, flags, 8 bytes of position, 4 each of serial number, sequence and checksum, then the
// number of lengths and these; a packet goes on behind a length of 255.
constexpr std::int64_t kPageHeadSize = 27;
constexpr qsizetype kSerialPlace = 14;
constexpr qsizetype kSerialSize = 4;
constexpr qsizetype kLengthCountPlace = 26;
constexpr int kGoesOn = 255;
/// More pages than the largest comment takes that is read here.
constexpr int kMostPages = 4096;

[[noreturn]] void failAsDamaged()
{
    throw NurvFailure(u"its Ogg pages are damaged"_s);
}

struct Page {
    QByteArray serial;
    QByteArray lengths;
    std::int64_t body = 0; ///< its offset

    static Page at(const MetadataBytes &bytes, std::int64_t offset)
    {
        const QByteArray head = bytes.peek(offset, kPageHeadSize);
        if (head.size() < kPageHeadSize || !head.startsWith("OggS") || head.at(4) != 0)
            failAsDamaged();
        const auto count = static_cast<unsigned char>(head.at(kLengthCountPlace));
        return {.serial = head.mid(kSerialPlace, kSerialSize),
                .lengths = bytes.read(offset + kPageHeadSize, count),
                .body = offset + kPageHeadSize + count};
    }
};

/// The second packet of the stream that the first page belongs to.
QByteArray secondPacket(const MetadataBytes &bytes, std::int64_t begin)
{
    QByteArray packet;
    QByteArray serial;
    int number = 0;
    std::int64_t offset = begin;
    for (int pages = 0; pages < kMostPages; ++pages) {
        const Page page = Page::at(bytes, offset);
        offset = page.body;
        if (serial.isEmpty())
            serial = page.serial;
        const bool isOurs = page.serial == serial;
        std::int64_t partBegin = offset;
        for (const char lacing : page.lengths) {
            const int length = static_cast<unsigned char>(lacing);
            offset += length;
            if (!isOurs || length == kGoesOn)
                continue;
            if (number == 1)
                return packet + bytes.read(partBegin, offset - partBegin);
            ++number;
            partBegin = offset;
        }
        if (isOurs && number == 1)
            packet += bytes.read(partBegin, offset - partBegin);
    }
    throw NurvFailure(u"its Ogg stream has a comment of more than %1 pages"_s.arg(kMostPages));
}

} // namespace

void readOggMetadata(const MetadataBytes &bytes, std::int64_t begin, MetadataCollector &found)
{
    const QByteArray packet = secondPacket(bytes, begin);
    for (const QByteArrayView mark : {QByteArrayView("OpusTags"), QByteArrayView("\3vorbis")}) {
        if (packet.startsWith(mark)) {
            readVorbisComment(packet.mid(mark.size()), found);
            return;
        }
    }
    throw NurvFailure(u"its Ogg stream has no comment of a known kind"_s);
}

} // namespace nurv
