// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/Mp4Boxes.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <iterator>

namespace nurv {

namespace {

constexpr std::int64_t kLongHeadSize = 16;

// What readers look for at the top level, where it is not filler.
constexpr std::array kStructure = {fourCharacters("ftyp"), fourCharacters("moov"), fourCharacters("mdat"),
                                   fourCharacters("moof"), fourCharacters("mfra"), fourCharacters("sidx"),
                                   fourCharacters("meta")};

/// The box whose head stands at the start of `head`, which has 8 to 16 bytes; nothing when
/// it does not fit into `room`.
std::optional<Mp4Box> boxOf(const QByteArray &head, std::int64_t offset, std::int64_t room)
{
    Mp4Box box{.type = mp4Number<FourCharacters>(head, 4), .offset = offset, .headerSize = kMp4HeadSize};
    const auto size = mp4Number<std::uint32_t>(head, 0);
    if (size == 1) {
        if (head.size() < kLongHeadSize)
            return std::nullopt;
        const auto longSize = mp4Number<std::uint64_t>(head, kMp4HeadSize);
        if (longSize > static_cast<std::uint64_t>(room))
            return std::nullopt;
        box.headerSize = kLongHeadSize;
        box.size = static_cast<std::int64_t>(longSize);
    } else if (size == 0) {
        box.size = room;
        box.reachesEndOfFile = true;
    } else {
        box.size = size;
    }
    if (box.size < box.headerSize || box.size > room)
        return std::nullopt;
    return box;
}

} // namespace

template<typename Number>
Number mp4Number(const QByteArray &bytes, std::int64_t offset)
{
    Q_ASSERT(offset >= 0 && offset + static_cast<std::int64_t>(sizeof(Number)) <= bytes.size());
    return qFromBigEndian<Number>(bytes.constData() + offset);
}

template std::uint16_t mp4Number<std::uint16_t>(const QByteArray &, std::int64_t);
template std::uint32_t mp4Number<std::uint32_t>(const QByteArray &, std::int64_t);
template std::uint64_t mp4Number<std::uint64_t>(const QByteArray &, std::int64_t);

std::optional<Mp4Boxes> mp4BoxesIn(const QByteArray &bytes, std::int64_t begin, std::int64_t end)
{
    Mp4Boxes boxes;
    for (std::int64_t offset = begin; offset < end;) {
        const std::int64_t room = end - offset;
        if (room < kMp4HeadSize || boxes.size() == kMostMp4Boxes)
            return std::nullopt;
        const QByteArray head = QByteArray::fromRawData(bytes.constData() + offset, std::min(room, kLongHeadSize));
        const std::optional<Mp4Box> box = boxOf(head, offset, room);
        if (!box || box->reachesEndOfFile)
            return std::nullopt;
        boxes.push_back(*box);
        offset = box->end();
    }
    return boxes;
}

std::optional<Mp4Boxes> mp4BoxesInside(const QByteArray &bytes, const Mp4Boxes &parents, FourCharacters type)
{
    Mp4Boxes found;
    for (const Mp4Box &parent : parents) {
        const std::optional<Mp4Boxes> boxes = mp4BoxesIn(bytes, parent.contents(), parent.end());
        if (!boxes || found.size() > kMostMp4Boxes)
            return std::nullopt;
        std::copy_if(boxes->begin(), boxes->end(), std::back_inserter(found),
                     [type](const Mp4Box &box) { return box.type == type; });
    }
    return found;
}

std::optional<Mp4Boxes> mp4UserDataBoxes(const QByteArray &bytes, const Mp4Box &box)
{
    const std::int64_t end = box.end();
    const std::optional<Mp4Boxes> boxes = mp4BoxesIn(bytes, box.contents(), end);
    if (boxes || end - box.contents() < 4 || mp4Number<std::uint32_t>(bytes, end - 4) != 0)
        return boxes;
    return mp4BoxesIn(bytes, box.contents(), end - 4);
}

std::optional<Mp4Boxes> mp4MetadataBoxes(const QByteArray &bytes, const Mp4Box &box)
{
    const std::int64_t begin = box.contents();
    const std::int64_t length = box.end() - begin;
    const bool isPlain = length >= kMp4HeadSize && mp4Number<FourCharacters>(bytes, begin + 4) == fourCharacters("hdlr");
    if (isPlain)
        return mp4BoxesIn(bytes, begin, box.end());
    if (length < kMp4VersionSize)
        return std::nullopt;
    return mp4BoxesIn(bytes, begin + kMp4VersionSize, box.end());
}

QByteArray mp4Box(FourCharacters type, const QByteArray &contents)
{
    QByteArray box(kMp4HeadSize, '\0');
    qToBigEndian(static_cast<std::uint32_t>(contents.size() + kMp4HeadSize), box.data());
    qToBigEndian(type, box.data() + 4);
    return box + contents;
}

Mp4Layout Mp4Layout::of(TagLib::IOStream &file)
{
    Mp4Layout layout{.boxes = {}, .tail = 0, .length = file.length(), .isCutShort = false};
    while (layout.tail < layout.length) {
        file.seek(layout.tail);
        const TagLib::ByteVector bytes = file.readBlock(kLongHeadSize);
        const QByteArray head(bytes.data(), static_cast<qsizetype>(bytes.size()));
        if (head.size() < kMp4HeadSize)
            break;
        const auto type = mp4Number<FourCharacters>(head, 4);
        const std::optional<Mp4Box> box = boxOf(head, layout.tail, layout.length - layout.tail);
        const bool isTooMany = layout.boxes.size() == kMostMp4Boxes;
        // Zeros at the end have no type.
        if (!box || type == 0 || isTooMany) {
            layout.isCutShort = isTooMany || std::find(kStructure.begin(), kStructure.end(), type) != kStructure.end();
            break;
        }
        layout.boxes.push_back(*box);
        layout.tail = box->end();
    }
    return layout;
}

const Mp4Box *Mp4Layout::only(FourCharacters type) const
{
    const Mp4Box *found = nullptr;
    for (const Mp4Box &box : boxes) {
        if (box.type != type)
            continue;
        if (found != nullptr)
            return nullptr;
        found = &box;
    }
    return found;
}

bool Mp4Layout::contains(FourCharacters type) const
{
    return std::any_of(boxes.begin(), boxes.end(), [type](const Mp4Box &box) { return box.type == type; });
}

bool Mp4Layout::namesPlaces() const
{
    return contains(fourCharacters("moof")) || contains(fourCharacters("mfra")) || contains(fourCharacters("sidx"))
           || contains(fourCharacters("meta"));
}

} // namespace nurv
