// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/Mp4ChunkOffsets.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kTableHeadSize = 8; // version and flags, number of entries
constexpr std::int64_t kNarrow = 4;
constexpr std::int64_t kWide = 8;
constexpr std::uint32_t kIsThisFile = 1; // flag of a data reference

constexpr FourCharacters kTrack = fourCharacters("trak");
constexpr FourCharacters kMetadata = fourCharacters("meta");
constexpr FourCharacters kUserData = fourCharacters("udta");
constexpr FourCharacters kOffsets32 = fourCharacters("stco");
constexpr FourCharacters kOffsets64 = fourCharacters("co64");

/// From the movie down to the tables.
constexpr std::array kWayToTables = {kTrack, fourCharacters("mdia"), fourCharacters("minf"), fourCharacters("stbl")};

/// The boxes at the end of a way through the movie; nothing when one on it is damaged.
template<typename Way>
std::optional<Mp4Boxes> boxesAtEndOf(const Way &way, const QByteArray &movie)
{
    const Mp4Box whole{.type = 0, .offset = 0, .headerSize = 0, .size = movie.size()};
    std::optional<Mp4Boxes> boxes = Mp4Boxes{whole};
    for (const FourCharacters type : way) {
        if (boxes)
            boxes = mp4BoxesInside(movie, *boxes, type);
    }
    return boxes;
}

QString damagedMovie()
{
    return u"the movie box is damaged"_s;
}

/// Whether all entries of a data reference box are the file itself; nothing when it is damaged.
std::optional<bool> isOnlyThisFile(const QByteArray &movie, const Mp4Box &references)
{
    const std::int64_t begin = references.contents() + kTableHeadSize;
    if (begin > references.end())
        return std::nullopt;
    const std::optional<Mp4Boxes> entries = mp4BoxesIn(movie, begin, references.end());
    if (!entries)
        return std::nullopt;
    for (const Mp4Box &entry : *entries) {
        if (entry.size < entry.headerSize + kMp4VersionSize)
            return std::nullopt;
        if ((mp4Number<std::uint32_t>(movie, entry.contents()) & kIsThisFile) == 0)
            return false;
    }
    return true;
}

/// Whether metadata in these boxes, or in what they hold besides, has a table of items by their places.
bool namesItemsByPlace(const QByteArray &movie, const Mp4Boxes &holders)
{
    const auto has = [&movie](const Mp4Box &metadata) {
        const Mp4Boxes boxes = mp4MetadataBoxes(movie, metadata).value_or(Mp4Boxes());
        return std::any_of(boxes.begin(), boxes.end(),
                           [](const Mp4Box &box) { return box.type == fourCharacters("iloc"); });
    };
    const auto hasAny = [&has](const Mp4Boxes &boxes) {
        return std::any_of(boxes.begin(), boxes.end(),
                           [&has](const Mp4Box &box) { return box.type == kMetadata && has(box); });
    };
    for (const Mp4Box &holder : holders) {
        // What is damaged in here has no items that a reader would find.
        const Mp4Boxes boxes = mp4BoxesIn(movie, holder.contents(), holder.end()).value_or(Mp4Boxes());
        if (hasAny(boxes))
            return true;
        for (const Mp4Box &box : boxes) {
            const bool isHolder = box.type == kUserData || box.type == fourCharacters("meco");
            if (isHolder && hasAny(mp4UserDataBoxes(movie, box).value_or(Mp4Boxes())))
                return true;
        }
    }
    return false;
}

} // namespace

std::optional<QString> Mp4ChunkOffsets::foreignPlaces(const QByteArray &movie)
{
    const std::optional<Mp4Boxes> tracks = boxesAtEndOf(std::array{kTrack}, movie);
    const std::optional<Mp4Boxes> sampleTables = boxesAtEndOf(kWayToTables, movie);
    const std::optional<Mp4Boxes> auxiliary =
        sampleTables ? mp4BoxesInside(movie, *sampleTables, fourCharacters("saio")) : std::nullopt;
    const std::optional<Mp4Boxes> references =
        boxesAtEndOf(std::array{kTrack, fourCharacters("mdia"), fourCharacters("minf"), fourCharacters("dinf"),
                                fourCharacters("dref")},
                     movie);
    if (!tracks || !auxiliary || !references)
        return damagedMovie();
    for (const Mp4Box &box : *references) {
        const std::optional<bool> isOnly = isOnlyThisFile(movie, box);
        if (!isOnly)
            return damagedMovie();
        if (!*isOnly)
            return u"its sound lies in another file"_s;
    }
    Mp4Boxes holders = *tracks;
    holders.push_back({.type = 0, .offset = 0, .headerSize = 0, .size = movie.size()});
    if (!auxiliary->empty() || namesItemsByPlace(movie, holders))
        return u"the movie box names places that are no chunk offsets"_s;
    return std::nullopt;
}

std::optional<QString> Mp4ChunkOffsets::follow(const Move &move)
{
    for (bool isFirstRound = true;; isFirstRound = false) {
        const std::optional<Tables> tables = findTables();
        if (!tables)
            return damagedMovie();
        const std::int64_t movieSize = m_movie.size() + kMp4HeadSize;
        Tables narrow;
        for (const Table &table : *tables) {
            const Fit fit = fitOf(table, move, movieSize);
            if (fit == Fit::NoSound)
                return u"a chunk offset names a place without sound"_s;
            if (fit == Fit::TooNarrow)
                narrow.push_back(table);
        }
        if (narrow.empty()) {
            for (const Table &table : *tables)
                write(table, move, movieSize);
            return std::nullopt;
        }
        // The tables that grow may have moved the sound of others beyond 32 bits. No third round.
        if (!isFirstRound) {
            narrow.clear();
            std::copy_if(tables->begin(), tables->end(), std::back_inserter(narrow),
                         [](const Table &table) { return table.width == kNarrow; });
        }
        m_movie = widened(0, m_movie.size(), 0, narrow);
    }
}

std::int64_t Mp4ChunkOffsets::Table::place(std::uint32_t index) const
{
    return box.contents() + kTableHeadSize + index * width;
}

std::optional<Mp4ChunkOffsets::Tables> Mp4ChunkOffsets::findTables() const
{
    const std::optional<Mp4Boxes> sampleTables = boxesAtEndOf(kWayToTables, m_movie);
    if (!sampleTables)
        return std::nullopt;
    Tables tables;
    for (const FourCharacters type : {kOffsets32, kOffsets64}) {
        const std::optional<Mp4Boxes> boxes = mp4BoxesInside(m_movie, *sampleTables, type);
        if (!boxes)
            return std::nullopt;
        for (const Mp4Box &box : *boxes) {
            Table table{.box = box, .width = type == kOffsets32 ? kNarrow : kWide};
            const std::int64_t room = box.size - box.headerSize - kTableHeadSize;
            if (room < 0)
                return std::nullopt;
            table.count = mp4Number<std::uint32_t>(m_movie, box.contents() + kMp4VersionSize);
            if (table.count > room / table.width)
                return std::nullopt;
            tables.push_back(table);
        }
    }
    std::sort(tables.begin(), tables.end(),
              [](const Table &left, const Table &right) { return left.box.offset < right.box.offset; });
    return tables;
}

std::uint64_t Mp4ChunkOffsets::offsetAt(const Table &table, std::uint32_t index) const
{
    return table.width == kNarrow ? mp4Number<std::uint32_t>(m_movie, table.place(index))
                                  : mp4Number<std::uint64_t>(m_movie, table.place(index));
}

Mp4ChunkOffsets::Fit Mp4ChunkOffsets::fitOf(const Table &table, const Move &move, std::int64_t movieSize) const
{
    Fit fit = Fit::Fits;
    for (std::uint32_t index = 0; index < table.count; ++index) {
        const std::optional<std::uint64_t> moved = move(offsetAt(table, index), movieSize);
        if (!moved)
            return Fit::NoSound;
        if (table.width == kNarrow && *moved > std::numeric_limits<std::uint32_t>::max())
            fit = Fit::TooNarrow;
    }
    return fit;
}

void Mp4ChunkOffsets::write(const Table &table, const Move &move, std::int64_t movieSize)
{
    for (std::uint32_t index = 0; index < table.count; ++index) {
        const std::uint64_t moved = move(offsetAt(table, index), movieSize).value_or(0);
        char *const place = m_movie.data() + table.place(index);
        if (table.width == kNarrow)
            qToBigEndian(static_cast<std::uint32_t>(moved), place);
        else
            qToBigEndian(moved, place);
    }
}

QByteArray Mp4ChunkOffsets::widened(std::int64_t begin, std::int64_t end, std::size_t depth, const Tables &tables) const
{
    QByteArray bytes;
    const Mp4Boxes boxes = mp4BoxesIn(m_movie, begin, end).value_or(Mp4Boxes());
    for (const Mp4Box &box : boxes) {
        const auto next =
            std::lower_bound(tables.begin(), tables.end(), box.offset,
                             [](const Table &table, std::int64_t offset) { return table.box.offset < offset; });
        const bool holdsTable = next != tables.end() && next->box.offset < box.end();
        if (holdsTable && depth == kWayToTables.size())
            bytes += wideBox(*next);
        else if (holdsTable && box.type == kWayToTables[depth])
            bytes += mp4Box(box.type, widened(box.contents(), box.end(), depth + 1, tables));
        else
            bytes.append(m_movie.constData() + box.offset, box.size);
    }
    return bytes;
}

QByteArray Mp4ChunkOffsets::wideBox(const Table &table) const
{
    QByteArray contents = m_movie.mid(table.box.contents(), kTableHeadSize);
    contents.resize(kTableHeadSize + std::int64_t{table.count} * kWide);
    for (std::uint32_t index = 0; index < table.count; ++index)
        qToBigEndian(offsetAt(table, index), contents.data() + kTableHeadSize + std::int64_t{index} * kWide);
    return mp4Box(kOffsets64, contents);
}

} // namespace nurv
