// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "FuzzedChoices.h"
#include "platform/Mpeg4Timing.h"
#include "tags/Mp4Movie.h"

#include <tbytevectorstream.h>

#include <cstdlib>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

using namespace nurv;

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

} // namespace

/// The boxes of a file: its timing, its movie with the metadata, edits of it.
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
    const qsizetype length = movie->box().size();
    const auto follow = [](std::uint64_t offset) {
        return offset < 0xFFFFFF00 ? std::optional(offset + 0x40) : std::nullopt;
    };
    if (!movie->mapChunkOffsets(follow))
        require(movie->box().size() == length);
    return 0;
}
