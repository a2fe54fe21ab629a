// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/Mpeg4Timing.h"

#include <QtEndian>

#include <array>
#include <cstring>

namespace nurv {

namespace {

/// More boxes side by side than any file has.
constexpr int kMostBoxes = 10'000;
constexpr int kBoxHeadSize = 8;
/// Packets of one length are one entry.
constexpr quint32 kMostDurations = 100'000;

struct Box {
    std::int64_t start = 0; ///< of the contents
    std::int64_t end = 0;
};

class BoxReader {
public:
    explicit BoxReader(const Mpeg4Timing::ReadAt &readAt) : m_readAt(readAt) {}

    /// The next box of that name in `parent` from `parent.start` on; what is left of
    /// the parent goes back into it.
    std::optional<Box> next(Box &parent, const char *name) const
    {
        for (int count = 0; count < kMostBoxes && parent.end - parent.start >= kBoxHeadSize; ++count) {
            std::array<char, 16> head = {};
            if (!m_readAt(parent.start, head.data(), kBoxHeadSize))
                return std::nullopt;
            std::int64_t size = qFromBigEndian<quint32>(head.data());
            std::int64_t headSize = kBoxHeadSize;
            if (size == 1) {
                headSize = 16;
                if (!m_readAt(parent.start, head.data(), head.size()))
                    return std::nullopt;
                size = qFromBigEndian<qint64>(head.data() + 8);
            } else if (size == 0) {
                size = parent.end - parent.start;
            }
            if (size < headSize || size > parent.end - parent.start)
                return std::nullopt;
            const Box box{parent.start + headSize, parent.start + size};
            parent.start += size;
            if (std::memcmp(head.data() + 4, name, 4) == 0)
                return box;
        }
        return std::nullopt;
    }
    std::optional<Box> first(Box parent, const char *name) const { return next(parent, name); }

    template<typename Number>
    std::optional<Number> number(const Box &box, std::int64_t offset) const
    {
        std::array<char, sizeof(Number)> bytes = {};
        if (offset + std::int64_t{sizeof(Number)} > box.end - box.start
            || !m_readAt(box.start + offset, bytes.data(), bytes.size()))
            return std::nullopt;
        return qFromBigEndian<Number>(bytes.data());
    }
    /// A number of 64 bits in version 1 of a box, of 32 in version 0.
    std::optional<std::int64_t> versioned(const Box &box, std::int64_t offset32, std::int64_t offset64) const
    {
        if (isWide(box))
            return number<qint64>(box, offset64);
        const auto value = number<quint32>(box, offset32);
        return value ? std::optional<std::int64_t>(*value) : std::nullopt;
    }
    bool isWide(const Box &box) const { return number<quint8>(box, 0).value_or(0) == 1; }

private:
    const Mpeg4Timing::ReadAt &m_readAt;
};

std::optional<Box> findTrack(const BoxReader &boxes, Box movie, std::uint32_t trackId)
{
    while (const auto track = boxes.next(movie, "trak")) {
        const auto header = boxes.first(*track, "tkhd");
        if (header && boxes.number<quint32>(*header, boxes.isWide(*header) ? 20 : 12) == trackId)
            return track;
    }
    return std::nullopt;
}

void readEdit(const BoxReader &boxes, const Box &track, Mpeg4Timing &timing)
{
    const auto edits = boxes.first(track, "edts");
    const auto list = edits ? boxes.first(*edits, "elst") : std::nullopt;
    if (!list || boxes.number<quint32>(*list, 4) != 1U)
        return;
    const bool isWide = boxes.isWide(*list);
    const auto duration = boxes.versioned(*list, 8, 8);
    // An edit that starts at -1 shows nothing.
    const std::int64_t start =
        isWide ? boxes.number<qint64>(*list, 16).value_or(-1) : boxes.number<qint32>(*list, 12).value_or(-1);
    if (!duration || *duration < 0 || start < 0)
        return;
    timing.hasOneEdit = true;
    timing.editDuration = *duration;
    timing.editStart = start;
    timing.editDurationAt = isWide ? 0 : list->start + 8;
}

std::optional<std::int64_t> sumOfDurations(const BoxReader &boxes, const Box &media)
{
    const auto information = boxes.first(media, "minf");
    const auto tables = information ? boxes.first(*information, "stbl") : std::nullopt;
    const auto table = tables ? boxes.first(*tables, "stts") : std::nullopt;
    const auto count = table ? boxes.number<quint32>(*table, 4) : std::nullopt;
    if (!count || *count > kMostDurations)
        return std::nullopt;
    std::int64_t sum = 0;
    for (quint32 entry = 0; entry < *count; ++entry) {
        const auto packets = boxes.number<quint32>(*table, 8 + std::int64_t{entry} * 8);
        const auto duration = boxes.number<quint32>(*table, 12 + std::int64_t{entry} * 8);
        std::int64_t product = 0;
        if (!packets || !duration || __builtin_mul_overflow(std::int64_t{*packets}, std::int64_t{*duration}, &product)
            || __builtin_add_overflow(sum, product, &sum))
            return std::nullopt;
    }
    return sum;
}

} // namespace

int Mpeg4Timing::trackCount(const ReadAt &readAt, std::int64_t fileSize)
{
    const BoxReader boxes(readAt);
    auto movie = boxes.first(Box{0, fileSize}, "moov");
    int count = 0;
    while (movie && boxes.next(*movie, "trak"))
        ++count;
    return count;
}

std::optional<Mpeg4Timing> Mpeg4Timing::read(const ReadAt &readAt, std::int64_t fileSize, std::uint32_t trackId)
{
    const BoxReader boxes(readAt);
    const auto movie = boxes.first({0, fileSize}, "moov");
    const auto movieHeader = movie ? boxes.first(*movie, "mvhd") : std::nullopt;
    const auto track = movieHeader ? findTrack(boxes, *movie, trackId) : std::nullopt;
    const auto trackHeader = track ? boxes.first(*track, "tkhd") : std::nullopt;
    const auto media = track ? boxes.first(*track, "mdia") : std::nullopt;
    const auto mediaHeader = media ? boxes.first(*media, "mdhd") : std::nullopt;
    if (!trackHeader || !mediaHeader)
        return std::nullopt;
    const auto movieScale = boxes.number<quint32>(*movieHeader, boxes.isWide(*movieHeader) ? 20 : 12);
    const auto mediaScale = boxes.number<quint32>(*mediaHeader, boxes.isWide(*mediaHeader) ? 20 : 12);
    const auto mediaDuration = boxes.versioned(*mediaHeader, 16, 24);
    if (!movieScale || !mediaScale || !mediaDuration || *movieScale == 0 || *mediaScale == 0 || *mediaDuration < 0)
        return std::nullopt;
    Mpeg4Timing timing;
    timing.movieTimescale = *movieScale;
    timing.mediaTimescale = *mediaScale;
    timing.mediaDuration = *mediaDuration;
    if (!boxes.isWide(*movieHeader)) {
        timing.movieTimescaleAt = movieHeader->start + 12;
        timing.movieDurationAt = movieHeader->start + 16;
    }
    if (!boxes.isWide(*trackHeader))
        timing.trackDurationAt = trackHeader->start + 20;
    timing.tableDuration = sumOfDurations(boxes, *media);
    readEdit(boxes, *track, timing);
    return timing;
}

std::optional<std::int64_t> Mpeg4Timing::length() const
{
    if (!hasOneEdit || mediaDuration == 0 || editStart > mediaDuration)
        return std::nullopt;
    const std::int64_t whole = mediaDuration - editStart;
    const double shown = static_cast<double>(editDuration) * mediaTimescale / movieTimescale;
    const double unit = static_cast<double>(mediaTimescale) / movieTimescale;
    if (shown > static_cast<double>(whole) - unit)
        return whole;
    return static_cast<std::int64_t>(shown + 0.5);
}

} // namespace nurv
