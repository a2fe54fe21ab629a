// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/Mpeg4Timing.h"
#include "base/NurvFailure.h"
#include "FuzzedChoices.h"
#include "FuzzedFolder.h"
#include "tags/AACTagsHelper.h"
#include "tags/Mp4Movie.h"
#include "tags/Mp4Optimizer.h"

#include <tbytevectorstream.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

using namespace nurv;
using nurv::fuzz::FuzzedFolder;

constexpr FourCharacters kTitle = fourCharacters("\251nam");
constexpr FourCharacters kTrackNumber = fourCharacters("trkn");

void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

void readTiming(std::span<const std::uint8_t> file)
{
    const Mpeg4Timing::ReadAt readAt = [file](std::int64_t offset, void *bytes, std::size_t size) {
        const auto fileSize = static_cast<std::int64_t>(file.size());
        if (offset < 0 || offset > fileSize || size > static_cast<std::size_t>(fileSize - offset))
            return false;
        std::memcpy(bytes, file.data() + offset, size);
        return true;
    };
    const auto fileSize = static_cast<std::int64_t>(file.size());
    static_cast<void>(Mpeg4Timing::trackCount(readAt, fileSize));
    for (const std::uint32_t track : {0U, 1U}) {
        const std::optional<Mpeg4Timing> timing = Mpeg4Timing::read(readAt, fileSize, track);
        if (!timing)
            continue;
        require(timing->length().value_or(0) >= 0 && timing->length().value_or(0) <= timing->mediaDuration);
        require(timing->tableDuration.value_or(0) >= 0);
        for (const std::int64_t place :
             {timing->movieTimescaleAt, timing->movieDurationAt, timing->trackDurationAt, timing->editDurationAt})
            require(place >= 0 && place <= fileSize);
    }
}

Mp4Layout layoutOf(const QByteArray &file)
{
    TagLib::ByteVectorStream stream({file.constData(), static_cast<unsigned int>(file.size())});
    return Mp4Layout::of(stream);
}

std::optional<Mp4Movie> movieOf(const QByteArray &file)
{
    TagLib::ByteVectorStream stream({file.constData(), static_cast<unsigned int>(file.size())});
    return Mp4Movie::of(stream, Mp4Layout::of(stream));
}

/// What was set is read back from the box as it is written.
void editAndReadBack(Mp4Movie movie)
{
    const QString title = u"Title \u266B"_s;
    if (!movie.setText(kTitle, title))
        return;
    require(movie.setNumbers(kTrackNumber, {.number = 5, .total = 12}, 8));
    require(movie.setFirstPicture("\x89PNG picture"));
    require(movie.removeItem(fourCharacters("aART")));
    const std::optional<Mp4Movie> again = movieOf(movie.box());
    require(again && again->text(kTitle) == title);
    const Mp4Movie::NumberAndTotal numbers = again->numbers(kTrackNumber);
    require(numbers.number == 5 && numbers.total == 12);
    require(again->value(fourCharacters("covr")).has_value() && !again->value(fourCharacters("aART")));
    require(again->box() == movie.box());
}

/// The chunk offsets in the order of their tables; nothing when those are damaged.
std::optional<std::vector<std::uint64_t>> offsetsOf(const QByteArray &file)
{
    std::vector<std::uint64_t> offsets;
    std::optional<Mp4Movie> movie = movieOf(file);
    const auto note = [&offsets](std::uint64_t offset, std::int64_t) {
        offsets.push_back(offset);
        return std::optional(offset);
    };
    if (!movie || movie->moveChunkOffsets(note))
        return std::nullopt;
    return offsets;
}

/// Whether each chunk begins with the bytes with which it began, as far as the movie box is not in the way.
void compareChunks(const QByteArray &before, const QByteArray &after)
{
    constexpr std::uint64_t kCompared = 16;
    const Mp4Layout layout = layoutOf(before);
    const Mp4Box &movie = *layout.only(fourCharacters("moov"));
    const auto oldOffsets = offsetsOf(before);
    const auto newOffsets = offsetsOf(after);
    require(oldOffsets.has_value() == newOffsets.has_value());
    if (!oldOffsets)
        return;
    require(oldOffsets->size() == newOffsets->size());
    for (std::size_t i = 0; i < oldOffsets->size(); ++i) {
        const std::uint64_t old = (*oldOffsets)[i];
        std::uint64_t end = static_cast<std::uint64_t>(before.size());
        // An offset that names the very end of a sound names an empty chunk.
        for (const Mp4Box &box : layout.boxes) {
            if (box.type == fourCharacters("mdat") && old >= static_cast<std::uint64_t>(box.contents())
                && old <= static_cast<std::uint64_t>(box.end()))
                end = static_cast<std::uint64_t>(box.end());
        }
        if (old < static_cast<std::uint64_t>(movie.offset))
            end = std::min(end, static_cast<std::uint64_t>(movie.offset));
        else if (old < static_cast<std::uint64_t>(movie.end()))
            continue;
        if (old >= end)
            continue;
        const auto count = static_cast<qsizetype>(std::min(kCompared, end - old));
        const std::uint64_t moved = (*newOffsets)[i];
        require(moved <= static_cast<std::uint64_t>(after.size() - count));
        require(after.mid(static_cast<qsizetype>(moved), count) == before.mid(static_cast<qsizetype>(old), count));
    }
}

QByteArray soundOf(const QByteArray &file, const Mp4Layout &layout)
{
    QByteArray sound;
    for (const Mp4Box &box : layout.boxes) {
        if (box.type == fourCharacters("mdat"))
            sound += file.mid(box.offset, box.size);
    }
    return sound;
}

/// The file as it is in order: the same sound and tail, no fillers, and nothing to be done a second time.
void checkOrder(const QByteArray &before, const QByteArray &after)
{
    const Mp4Layout oldLayout = layoutOf(before);
    const Mp4Layout newLayout = layoutOf(after);
    require(soundOf(after, newLayout) == soundOf(before, oldLayout));
    require(after.mid(newLayout.tail) == before.mid(oldLayout.tail));
    const auto fillers = std::count_if(oldLayout.boxes.begin(), oldLayout.boxes.end(),
                                       [](const Mp4Box &box) { return isMp4Filler(box.type); });
    require(newLayout.boxes.size() + static_cast<std::size_t>(fillers) == oldLayout.boxes.size());
    const std::size_t movieAt = newLayout.contains(fourCharacters("ftyp")) ? 1 : 0;
    require(newLayout.boxes.at(movieAt).type == fourCharacters("moov"));

    TagEditStream stream(
        FuzzedFolder::instance().write(u"again.m4a"_s, {reinterpret_cast<const std::uint8_t *>(after.constData()),
                                                        static_cast<std::size_t>(after.size())}),
        TagEditStream::Access::Edit);
    std::optional<Mp4Movie> movie = Mp4Movie::of(stream, newLayout);
    require(movie && !Mp4Optimizer::putInOrder(stream, newLayout, *std::move(movie)) && !stream.isEdited());
}

/// A tag is read back from the file, whose sound is what it was; or the file is.
void writeTitle(std::span<const std::uint8_t> bytes, const QByteArray &before)
{
    const FuzzedFolder &folder = FuzzedFolder::instance();
    const QString path = folder.write(u"a.m4a"_s, bytes);
    TagsObject tags;
    tags.setTitleText(u"A title"_s);
    try {
        const AACTagsHelper::Shortfall shortfall = AACTagsHelper::writeInAnyOrder(path, tags, false, false);
        require(AACTagsHelper::tagsForFile(path).titleText() == tags.titleText());
        const QByteArray after = FuzzedFolder::read(path);
        compareChunks(before, after);
        if (!shortfall.order)
            checkOrder(before, after);
    } catch (const NurvFailure &) {
        require(FuzzedFolder::read(path) == before);
    }
    for (const QString &name : folder.list())
        require(name == u"a.m4a"_s || name == u"again.m4a"_s);
}

/// All of 32 bits that outgrow their tables, and those of 64.
void moveFar(Mp4Movie movie)
{
    constexpr std::uint64_t kFar = 0xFFFF'FFF0;
    std::vector<std::uint64_t> wanted;
    const auto follow = [&wanted](std::uint64_t offset, std::int64_t movieSize) -> std::optional<std::uint64_t> {
        if (offset > kFar * 2)
            return std::nullopt;
        wanted.push_back(offset + kFar + static_cast<std::uint64_t>(movieSize));
        return wanted.back();
    };
    if (movie.moveChunkOffsets(follow))
        return;
    // What was asked last was written.
    const auto offsets = offsetsOf(movie.box());
    require(offsets && wanted.size() >= offsets->size());
    require(std::equal(offsets->begin(), offsets->begin() + static_cast<std::ptrdiff_t>(offsets->size() / 2),
                       wanted.end() - static_cast<std::ptrdiff_t>(offsets->size() / 2)));
}

} // namespace

/// The boxes of a file: its timing, its movie with the metadata, edits of it, the file with a new tag and in
/// order.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    readTiming({data, size});
    const QByteArray file = QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    std::optional<Mp4Movie> movie = movieOf(file);
    if (!movie)
        return 0;
    static_cast<void>(movie->text(kTitle));
    static_cast<void>(movie->numbers(kTrackNumber));
    static_cast<void>(movie->items());
    static_cast<void>(movie->otherParts());
    static_cast<void>(movie->isFragmented());
    editAndReadBack(*movie);
    static_cast<void>(movie->foreignPlaces());
    moveFar(*movie);
    writeTitle({data, size}, file);
    return 0;
}
