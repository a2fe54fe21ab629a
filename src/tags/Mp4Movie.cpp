// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/Mp4Movie.h"

#include <QStringDecoder>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kMovieLimit = std::int64_t{128} << 20;
constexpr std::int64_t kBoxHeadSize = 8;   // of a box that mp4Box has made
constexpr std::int64_t kVersionSize = 4;   // version and flags of a full box
constexpr std::int64_t kValueHeadSize = 8; // type and locale
constexpr std::int64_t kTableHeadSize = 8; // version and flags, number of entries
constexpr std::uint32_t kUtf8Type = 1;
constexpr std::uint32_t kUtf16Type = 2;
constexpr std::uint32_t kPngType = 14;

constexpr FourCharacters kUserData = fourCharacters("udta");
constexpr FourCharacters kMetadata = fourCharacters("meta");
constexpr FourCharacters kHandler = fourCharacters("hdlr");
constexpr FourCharacters kItems = fourCharacters("ilst");
constexpr FourCharacters kValue = fourCharacters("data");
constexpr FourCharacters kPicture = fourCharacters("covr");
constexpr FourCharacters kOwnName = fourCharacters("name");
constexpr FourCharacters kTrack = fourCharacters("trak");
constexpr FourCharacters kSound = fourCharacters("soun");
constexpr FourCharacters kOffsets32 = fourCharacters("stco");
constexpr FourCharacters kOffsets64 = fourCharacters("co64");

const Mp4Box *firstOf(const Mp4Boxes &boxes, FourCharacters type)
{
    const auto found = std::find_if(boxes.begin(), boxes.end(), [type](const Mp4Box &box) { return box.type == type; });
    return found == boxes.end() ? nullptr : &*found;
}

std::optional<Mp4Box> copyOfFirst(const Mp4Boxes &boxes, FourCharacters type)
{
    const Mp4Box *const box = firstOf(boxes, type);
    return box != nullptr ? std::optional(*box) : std::nullopt;
}

/// The boxes of user data, which a zero of four bytes may end.
std::optional<Mp4Boxes> userDataBoxes(const QByteArray &bytes, const Mp4Box &box)
{
    std::int64_t end = box.end();
    const std::optional<Mp4Boxes> boxes = mp4BoxesIn(bytes, box.contents(), end);
    if (boxes || end - box.contents() < 4 || mp4Number<std::uint32_t>(bytes, end - 4) != 0)
        return boxes;
    return mp4BoxesIn(bytes, box.contents(), end - 4);
}

/// The boxes of metadata. MPEG-4 has a version before them, QuickTime has not.
std::optional<Mp4Boxes> metadataBoxes(const QByteArray &bytes, const Mp4Box &box)
{
    const std::int64_t begin = box.contents();
    const bool isPlain = box.size - box.headerSize >= 8 && mp4Number<FourCharacters>(bytes, begin + 4) == kHandler;
    if (isPlain)
        return mp4BoxesIn(bytes, begin, box.end());
    if (box.size - box.headerSize < kVersionSize)
        return std::nullopt;
    return mp4BoxesIn(bytes, begin + kVersionSize, box.end());
}

/// Whether the items are numbered and a table names them, so that none has a name of its own.
bool hasNumberedItems(const QByteArray &bytes, const Mp4Boxes &metadata)
{
    const Mp4Box *const handler = firstOf(metadata, kHandler);
    return handler != nullptr && handler->size - handler->headerSize >= 12
           && mp4Number<FourCharacters>(bytes, handler->contents() + 8) == fourCharacters("mdta");
}

QByteArray valueBox(std::uint32_t type, const QByteArray &bytes)
{
    QByteArray head(kValueHeadSize, '\0');
    qToBigEndian(type, head.data());
    return mp4Box(kValue, head + bytes);
}

/// The handler box of metadata with named items.
QByteArray handlerBox()
{
    return mp4Box(kHandler, QByteArray(8, '\0') + "mdirappl" + QByteArray(9, '\0'));
}

QByteArray replaced(const QByteArray &bytes, std::int64_t offset, std::int64_t length, const QByteArray &newBytes)
{
    return bytes.left(offset) + newBytes + bytes.mid(offset + length);
}

} // namespace

std::optional<Mp4Movie> Mp4Movie::of(TagLib::IOStream &file, const Mp4Layout &layout)
{
    const Mp4Box *const box = layout.only(fourCharacters("moov"));
    if (box == nullptr || box->size > kMovieLimit)
        return std::nullopt;
    const std::int64_t length = box->size - box->headerSize;
    file.seek(box->contents());
    const TagLib::ByteVector bytes = file.readBlock(static_cast<unsigned long>(length));
    if (bytes.size() != static_cast<std::uint64_t>(length))
        return std::nullopt;
    Mp4Movie movie(QByteArray(bytes.data(), length));
    const std::optional<Mp4Boxes> boxes = mp4BoxesIn(movie.m_contents, 0, length);
    if (!boxes || firstOf(*boxes, fourCharacters("mvhd")) == nullptr)
        return std::nullopt;
    return movie;
}

QByteArray Mp4Movie::box() const
{
    return mp4Box(fourCharacters("moov"), m_contents);
}

bool Mp4Movie::fitsTheLimit() const
{
    return box().size() <= kMovieLimit;
}

bool Mp4Movie::isFragmented() const
{
    const std::optional<Mp4Boxes> boxes = mp4BoxesIn(m_contents, 0, m_contents.size());
    return !boxes || firstOf(*boxes, fourCharacters("mvex")) != nullptr;
}

// Items

Mp4Movie::Path Mp4Movie::findItems() const
{
    Path path;
    path.isUsable = false;
    const std::optional<Mp4Boxes> boxes = mp4BoxesIn(m_contents, 0, m_contents.size());
    if (!boxes)
        return path;
    for (const Mp4Box &box : *boxes) {
        if (box.type != kUserData)
            continue;
        const std::optional<Mp4Boxes> userData = userDataBoxes(m_contents, box);
        if (!userData)
            return path;
        if (!path.userData || !path.metadata)
            path.userData = box;
        if (!path.metadata)
            path.metadata = copyOfFirst(*userData, kMetadata);
    }
    if (!path.metadata) {
        path.isUsable = true;
        return path;
    }
    const std::optional<Mp4Boxes> metadata = metadataBoxes(m_contents, *path.metadata);
    if (!metadata || hasNumberedItems(m_contents, *metadata))
        return path;
    path.hasHandler = firstOf(*metadata, kHandler) != nullptr;
    path.items = copyOfFirst(*metadata, kItems);
    path.isUsable = !path.items || mp4BoxesIn(m_contents, path.items->contents(), path.items->end());
    return path;
}

std::optional<Mp4Boxes> Mp4Movie::itemBoxes() const
{
    const Path path = findItems();
    if (!path.isUsable)
        return std::nullopt;
    return path.items ? mp4BoxesIn(m_contents, path.items->contents(), path.items->end()) : Mp4Boxes();
}

Mp4Boxes Mp4Movie::valueBoxes(const Mp4Box &item) const
{
    return mp4BoxesIn(m_contents, item.contents(), item.end()).value_or(Mp4Boxes());
}

std::optional<Mp4Movie::Value> Mp4Movie::value(FourCharacters item) const
{
    const Mp4Boxes items = itemBoxes().value_or(Mp4Boxes());
    const Mp4Box *const found = firstOf(items, item);
    if (found == nullptr)
        return std::nullopt;
    const std::optional<Mp4Box> data = copyOfFirst(valueBoxes(*found), kValue);
    return data ? valueIn(*data) : std::nullopt;
}

std::optional<Mp4Movie::Value> Mp4Movie::valueIn(const Mp4Box &data) const
{
    if (data.size < data.headerSize + kValueHeadSize)
        return std::nullopt;
    return Value{.type = mp4Number<std::uint32_t>(m_contents, data.contents()) & 0xffffffU,
                 .bytes =
                     m_contents.mid(data.contents() + kValueHeadSize, data.size - data.headerSize - kValueHeadSize)};
}

std::optional<QString> Mp4Movie::text(FourCharacters item) const
{
    const std::optional<Value> found = value(item);
    return found ? std::optional(textOf(*found)) : std::nullopt;
}

QString Mp4Movie::textOf(const Value &value)
{
    const QString text = value.type == kUtf16Type ? QStringDecoder(QStringDecoder::Utf16BE).decode(value.bytes)
                                                  : QString::fromUtf8(value.bytes);
    const qsizetype zero = text.indexOf(QChar(u'\0'));
    return zero < 0 ? text : text.left(zero);
}

Mp4Movie::NumberAndTotal Mp4Movie::numbers(FourCharacters item) const
{
    NumberAndTotal numbers;
    const QByteArray bytes = value(item).value_or(Value()).bytes;
    if (bytes.size() >= 4)
        numbers.number = mp4Number<std::uint16_t>(bytes, 2);
    if (bytes.size() >= 6)
        numbers.total = mp4Number<std::uint16_t>(bytes, 4);
    return numbers;
}

Mp4Movie::Item Mp4Movie::itemIn(const Mp4Box &box) const
{
    Item item{.name = box.type, .ownName = {}, .values = {}};
    for (const Mp4Box &part : valueBoxes(box)) {
        if (part.type == kOwnName && part.size >= part.headerSize + kVersionSize)
            item.ownName = QString::fromUtf8(
                m_contents.mid(part.contents() + kVersionSize, part.size - part.headerSize - kVersionSize));
        if (part.type != kValue)
            continue;
        if (std::optional<Value> value = valueIn(part))
            item.values.push_back(*std::move(value));
    }
    return item;
}

std::optional<std::vector<Mp4Movie::Item>> Mp4Movie::items() const
{
    const std::optional<Mp4Boxes> boxes = itemBoxes();
    if (!boxes)
        return std::nullopt;
    std::vector<Item> items;
    items.reserve(boxes->size());
    for (const Mp4Box &box : *boxes)
        items.push_back(itemIn(box));
    return items;
}

bool Mp4Movie::setText(FourCharacters item, const QString &text)
{
    return setItem(item, mp4Box(item, valueBox(kUtf8Type, text.toUtf8())));
}

bool Mp4Movie::setNumbers(FourCharacters item, NumberAndTotal numbers, int size)
{
    QByteArray bytes(size, '\0');
    qToBigEndian(numbers.number, bytes.data() + 2);
    qToBigEndian(numbers.total, bytes.data() + 4);
    return setItem(item, mp4Box(item, valueBox(0, bytes)));
}

bool Mp4Movie::setFirstPicture(const QByteArray &png)
{
    const std::optional<Mp4Boxes> items = itemBoxes();
    if (!items)
        return false;
    QByteArray values = valueBox(kPngType, png);
    if (const Mp4Box *const item = firstOf(*items, kPicture)) {
        if (const std::optional<Mp4Box> first = copyOfFirst(valueBoxes(*item), kValue)) {
            values = m_contents.mid(item->contents(), first->offset - item->contents()) + values
                     + m_contents.mid(first->end(), item->end() - first->end());
        }
    }
    return setItem(kPicture, mp4Box(kPicture, values));
}

bool Mp4Movie::removeItem(FourCharacters item)
{
    const std::optional<Mp4Boxes> items = itemBoxes();
    if (items && firstOf(*items, item) == nullptr)
        return true;
    return setItem(item, QByteArray());
}

bool Mp4Movie::setItem(FourCharacters item, const QByteArray &newBox)
{
    const std::optional<Mp4Boxes> boxes = itemBoxes();
    if (!boxes)
        return false;
    QByteArray items;
    bool isSet = false;
    for (const Mp4Box &box : *boxes) {
        if (box.type != item) {
            items += m_contents.mid(box.offset, box.size);
        } else if (!isSet) {
            items += newBox;
            isSet = true;
        }
    }
    if (!isSet)
        items += newBox;
    replaceItems(findItems(), items);
    return true;
}

void Mp4Movie::replaceItems(const Path &path, const QByteArray &items)
{
    QByteArray box = mp4Box(kItems, items);
    // From the inside out: each box around it is made anew with what it holds besides.
    const auto wrap = [&](FourCharacters type, const Mp4Box &parent, const std::optional<Mp4Box> &old,
                          std::int64_t newPlace) {
        const std::int64_t place = (old ? old->offset : newPlace) - parent.contents();
        const QByteArray contents = m_contents.mid(parent.contents(), parent.size - parent.headerSize);
        return mp4Box(type, replaced(contents, place, old ? old->size : 0, box));
    };
    box = path.metadata ? wrap(kMetadata, *path.metadata, path.items, path.metadata->end())
                        : mp4Box(kMetadata, QByteArray(kVersionSize, '\0') + box);
    // Without a handler other readers do not look at the items.
    if (!path.hasHandler)
        box = mp4Box(kMetadata,
                     box.mid(kBoxHeadSize, kVersionSize) + handlerBox() + box.mid(kBoxHeadSize + kVersionSize));
    box = path.userData ? wrap(kUserData, *path.userData, path.metadata, path.userData->contents())
                        : mp4Box(kUserData, box);
    m_contents =
        path.userData ? replaced(m_contents, path.userData->offset, path.userData->size, box) : m_contents + box;
}

// Other parts

Mp4Movie::Part Mp4Movie::partOf(const Mp4Box &box) const
{
    return {.type = box.type, .contents = m_contents.mid(box.contents(), box.size - box.headerSize)};
}

FourCharacters Mp4Movie::kindOfTrack(const Mp4Box &track) const
{
    const Mp4Boxes media = boxesAt({track}, fourCharacters("mdia")).value_or(Mp4Boxes());
    const Mp4Boxes handlers = boxesAt(media, kHandler).value_or(Mp4Boxes());
    if (handlers.empty() || handlers.front().size - handlers.front().headerSize < 12)
        return 0;
    return mp4Number<FourCharacters>(m_contents, handlers.front().contents() + 8);
}

std::optional<std::vector<Mp4Movie::Part>> Mp4Movie::otherParts() const
{
    const std::optional<Mp4Boxes> boxes = mp4BoxesIn(m_contents, 0, m_contents.size());
    const Path path = findItems();
    if (!boxes || !path.isUsable)
        return std::nullopt;
    std::vector<Part> parts;
    const auto addAllBut = [&](const Mp4Boxes &others, std::initializer_list<FourCharacters> known) {
        for (const Mp4Box &box : others) {
            const bool isKnown = std::find(known.begin(), known.end(), box.type) != known.end();
            const bool isPath = path.metadata && box.offset == path.metadata->offset;
            if (!isKnown && !isPath && !isMp4Filler(box.type))
                parts.push_back(partOf(box));
        }
    };
    addAllBut(*boxes, {fourCharacters("mvhd"), fourCharacters("iods"), fourCharacters("mvex"), kTrack, kUserData});
    for (const Mp4Box &box : *boxes) {
        if (box.type == kUserData)
            addAllBut(userDataBoxes(m_contents, box).value_or(Mp4Boxes()), {});
        const FourCharacters kind = box.type == kTrack ? kindOfTrack(box) : kSound;
        if (kind != kSound)
            parts.push_back({.type = kind, .contents = partOf(box).contents});
    }
    if (path.metadata)
        addAllBut(metadataBoxes(m_contents, *path.metadata).value_or(Mp4Boxes()), {kHandler, kItems});
    return parts;
}

// Chunk offsets

std::optional<Mp4Boxes> Mp4Movie::boxesAt(const Mp4Boxes &parents, FourCharacters type) const
{
    Mp4Boxes found;
    for (const Mp4Box &parent : parents) {
        const std::optional<Mp4Boxes> boxes = mp4BoxesIn(m_contents, parent.contents(), parent.end());
        if (!boxes || found.size() > kMostMp4Boxes)
            return std::nullopt;
        std::copy_if(boxes->begin(), boxes->end(), std::back_inserter(found),
                     [type](const Mp4Box &box) { return box.type == type; });
    }
    return found;
}

std::optional<QString> Mp4Movie::mapChunkOffsets(const std::function<std::optional<std::uint64_t>(std::uint64_t)> &map)
{
    const QString damaged = u"the movie box is damaged"_s;
    const Mp4Box whole{.type = 0, .offset = 0, .headerSize = 0, .size = m_contents.size()};
    std::optional<Mp4Boxes> boxes = boxesAt({whole}, kTrack);
    for (const FourCharacters type : {fourCharacters("mdia"), fourCharacters("minf"), fourCharacters("stbl")}) {
        if (boxes)
            boxes = boxesAt(*boxes, type);
    }
    if (!boxes)
        return damaged;
    const Mp4Boxes sampleTables = *boxes;
    const std::optional<Mp4Boxes> auxiliary = boxesAt(sampleTables, fourCharacters("saio"));
    if (!auxiliary || !auxiliary->empty())
        return u"the movie box names places that are no chunk offsets"_s;

    for (const FourCharacters type : {kOffsets32, kOffsets64}) {
        const std::int64_t width = type == kOffsets32 ? 4 : 8;
        const std::optional<Mp4Boxes> tables = boxesAt(sampleTables, type);
        if (!tables)
            return damaged;
        for (const Mp4Box &table : *tables) {
            const std::int64_t room = table.size - table.headerSize - kTableHeadSize;
            if (room < 0)
                return damaged;
            const auto count = mp4Number<std::uint32_t>(m_contents, table.contents() + 4);
            if (count > room / width)
                return damaged;
            for (std::int64_t i = 0; i < count; ++i) {
                const std::int64_t place = table.contents() + kTableHeadSize + i * width;
                const std::uint64_t offset = width == 4 ? mp4Number<std::uint32_t>(m_contents, place)
                                                        : mp4Number<std::uint64_t>(m_contents, place);
                const std::optional<std::uint64_t> mapped = map(offset);
                if (!mapped)
                    return u"a chunk offset names a place without sound"_s;
                if (width == 4 && *mapped > std::numeric_limits<std::uint32_t>::max())
                    return u"a chunk offset would need more than 32 bits"_s;
                if (width == 4)
                    qToBigEndian(static_cast<std::uint32_t>(*mapped), m_contents.data() + place);
                else
                    qToBigEndian(*mapped, m_contents.data() + place);
            }
        }
    }
    return std::nullopt;
}

} // namespace nurv
