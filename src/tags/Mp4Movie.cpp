// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/Mp4Movie.h"

#include <QStringDecoder>
#include <QStringList>
#include <QtEndian>

#include <algorithm>
#include <cstddef>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kMovieLimit = std::int64_t{128} << 20;
constexpr std::int64_t kFileLimit = std::int64_t{1} << 62; // so that no place in it comes near the end of all numbers
constexpr std::int64_t kValueHeadSize = 8; // type and locale
constexpr std::uint32_t kUtf8Type = 1;
constexpr std::uint32_t kUtf16Type = 2;
constexpr std::uint32_t kPngType = 14;

constexpr FourCharacters kUserData = fourCharacters("udta");
constexpr FourCharacters kMetadata = fourCharacters("meta");
constexpr FourCharacters kHandler = fourCharacters("hdlr");
constexpr FourCharacters kItems = fourCharacters("ilst");
constexpr FourCharacters kValue = fourCharacters("data");
constexpr FourCharacters kPicture = fourCharacters("covr");
constexpr FourCharacters kMeaning = fourCharacters("mean");
constexpr FourCharacters kOwnName = fourCharacters("name");
constexpr FourCharacters kTrack = fourCharacters("trak");
constexpr FourCharacters kSound = fourCharacters("soun");

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
    if (box == nullptr || box->size > kMovieLimit || layout.length > kFileLimit)
        return std::nullopt;
    const std::int64_t length = box->size - box->headerSize;
    file.seek(box->contents());
    const TagLib::ByteVector bytes = file.readBlock(static_cast<std::size_t>(length));
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

bool Mp4Movie::standsIn(TagLib::IOStream &file, const Mp4Box &oldBox) const
{
    const QByteArray newBox = box();
    if (newBox.size() != oldBox.size)
        return false;
    file.seek(oldBox.offset);
    const TagLib::ByteVector bytes = file.readBlock(static_cast<unsigned long>(oldBox.size));
    return QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())) == newBox;
}

bool Mp4Movie::fitsTheLimit() const
{
    return m_contents.size() + kMp4HeadSize <= kMovieLimit;
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
        const std::optional<Mp4Boxes> userData = mp4UserDataBoxes(m_contents, box);
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
    const std::optional<Mp4Boxes> metadata = mp4MetadataBoxes(m_contents, *path.metadata);
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
    for (const Mp4Box &box : items) {
        if (box.type != item)
            continue;
        // Some writers leave an empty item in front of the one with the value.
        const std::optional<Mp4Box> data = copyOfFirst(valueBoxes(box), kValue);
        if (data)
            return valueIn(*data);
    }
    return std::nullopt;
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
        if (part.type == kOwnName && part.size >= part.headerSize + kMp4VersionSize)
            item.ownName = QString::fromUtf8(
                m_contents.mid(part.contents() + kMp4VersionSize, part.size - part.headerSize - kMp4VersionSize));
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

QString Mp4Movie::fullNameOf(const Mp4Box &item) const
{
    char type[4];
    qToBigEndian(item.type, type);
    QString name = QString::fromLatin1(type, sizeof type);
    for (const FourCharacters kind : {kMeaning, kOwnName}) {
        const std::optional<Mp4Box> part = copyOfFirst(valueBoxes(item), kind);
        if (part && part->size >= part->headerSize + kMp4VersionSize)
            name += u':' + QString::fromUtf8(m_contents.mid(part->contents() + kMp4VersionSize,
                                                            part->size - part->headerSize - kMp4VersionSize));
    }
    return name;
}

std::optional<std::vector<Mp4Movie::RawItem>> Mp4Movie::rawItems() const
{
    const std::optional<Mp4Boxes> boxes = itemBoxes();
    if (!boxes)
        return std::nullopt;
    std::vector<RawItem> items;
    items.reserve(boxes->size());
    for (const Mp4Box &box : *boxes) {
        RawItem raw{.name = fullNameOf(box), .box = m_contents.mid(box.offset, box.size)};
        QStringList texts;
        const Item item = itemIn(box);
        for (const Value &value : item.values) {
            if (value.type == kUtf8Type || value.type == kUtf16Type)
                texts.append(textOf(value));
        }
        const bool isPair = box.type == fourCharacters("trkn") || box.type == fourCharacters("disk");
        if (isPair && !item.values.empty() && item.values.front().bytes.size() >= 6)
            texts.append(u"%1/%2"_s.arg(mp4Number<std::uint16_t>(item.values.front().bytes, 2))
                             .arg(mp4Number<std::uint16_t>(item.values.front().bytes, 4)));
        if (!texts.isEmpty())
            raw.text = texts.join(u", "_s);
        items.push_back(raw);
    }
    return items;
}

bool Mp4Movie::setRawItems(const QByteArray &boxes)
{
    const Path path = findItems();
    if (!path.isUsable)
        return false;
    if (!boxes.isEmpty() || path.items)
        replaceItems(path, boxes);
    return true;
}

bool Mp4Movie::isItem(const QByteArray &box)
{
    const std::optional<Mp4Boxes> boxes = mp4BoxesIn(box, 0, box.size());
    return boxes && boxes->size() == 1 && !boxes->front().reachesEndOfFile
           && mp4BoxesIn(box, boxes->front().contents(), boxes->front().end());
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
    const QByteArray value = valueBox(kPngType, png);
    for (const Mp4Box &item : *items) {
        if (item.type != kPicture)
            continue;
        const std::optional<Mp4Box> first = copyOfFirst(valueBoxes(item), kValue);
        if (!first)
            continue;
        const QByteArray values = replaced(m_contents.mid(item.contents(), item.size - item.headerSize),
                                           first->offset - item.contents(), first->size, value);
        replaceItem(item, mp4Box(kPicture, values));
        return true;
    }
    return setItem(kPicture, mp4Box(kPicture, value));
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

void Mp4Movie::replaceItem(const Mp4Box &item, const QByteArray &newBox)
{
    const Path path = findItems();
    const std::int64_t begin = path.items->contents();
    replaceItems(path,
                 replaced(m_contents.mid(begin, path.items->end() - begin), item.offset - begin, item.size, newBox));
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
                        : mp4Box(kMetadata, QByteArray(kMp4VersionSize, '\0') + box);
    // Without a handler other readers do not look at the items.
    if (!path.hasHandler)
        box = mp4Box(kMetadata,
                     box.mid(kMp4HeadSize, kMp4VersionSize) + handlerBox() + box.mid(kMp4HeadSize + kMp4VersionSize));
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
    const Mp4Boxes media = mp4BoxesInside(m_contents, {track}, fourCharacters("mdia")).value_or(Mp4Boxes());
    const Mp4Boxes handlers = mp4BoxesInside(m_contents, media, kHandler).value_or(Mp4Boxes());
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
            addAllBut(mp4UserDataBoxes(m_contents, box).value_or(Mp4Boxes()), {});
        const FourCharacters kind = box.type == kTrack ? kindOfTrack(box) : kSound;
        if (kind != kSound)
            parts.push_back({.type = kind, .contents = partOf(box).contents});
    }
    if (path.metadata)
        addAllBut(mp4MetadataBoxes(m_contents, *path.metadata).value_or(Mp4Boxes()), {kHandler, kItems});
    return parts;
}

// Chunk offsets

std::optional<QString> Mp4Movie::foreignPlaces() const
{
    return Mp4ChunkOffsets::foreignPlaces(m_contents);
}

std::optional<QString> Mp4Movie::moveChunkOffsets(const Mp4ChunkOffsets::Move &move)
{
    Mp4ChunkOffsets offsets(std::move(m_contents));
    std::optional<QString> reason = offsets.follow(move);
    m_contents = offsets.takeMovie();
    return reason;
}

} // namespace nurv
