// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/Mp4Edit.h"

#include "base/NurvFailure.h"
#include "tags/Mp4Movie.h"
#include "tags/Mp4Optimizer.h"
#include "tags/TagEditStream.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Edits the stream so that the movie box stands in the place of the file's. Returns nothing on success, else
/// why not; then nothing is edited.
std::optional<QString> putInPlace(TagEditStream &stream, const Mp4Layout &layout, Mp4Movie movie)
{
    const Mp4Box &oldBox = *layout.only(fourCharacters("moov"));
    if (movie.standsIn(stream, oldBox))
        return std::nullopt;
    if (movie.box().size() != oldBox.size) {
        if (layout.namesPlaces() || movie.isFragmented())
            return u"the file has movie fragments or other boxes that name places in it"_s;
        const auto follow = [&](std::uint64_t offset, std::int64_t movieSize) -> std::optional<std::uint64_t> {
            if (offset <= static_cast<std::uint64_t>(oldBox.offset))
                return offset;
            const std::int64_t growth = movieSize - oldBox.size;
            const std::uint64_t moved = offset + static_cast<std::uint64_t>(growth); // modulo 2^64 when it shrinks
            const bool isOverflow = growth > 0 && moved < offset;
            if (offset < static_cast<std::uint64_t>(oldBox.end()) || isOverflow)
                return std::nullopt;
            return moved;
        };
        if (std::optional<QString> reason = movie.moveChunkOffsets(follow))
            return reason;
    }
    const QByteArray box = movie.box();
    stream.insert({box.constData(), static_cast<unsigned int>(box.size())},
                  static_cast<TagEditStream::Start>(oldBox.offset), static_cast<TagEditStream::Size>(oldBox.size));
    return std::nullopt;
}

[[noreturn]] void failToSave(const QString &reason)
{
    throw NurvFailure(u"Unable to save the tags: %1."_s.arg(reason));
}

} // namespace

std::optional<QString> editMp4Movie(const QString &path, const std::function<bool(Mp4Movie &movie)> &edit)
{
    TagEditStream stream(path, TagEditStream::Access::Edit);
    const Mp4Layout layout = Mp4Layout::of(stream);
    std::optional<Mp4Movie> movie = Mp4Movie::of(stream, layout);
    if (!movie)
        throw NurvFailure(u"Unable to open the output file for tagging."_s);
    if (const std::optional<QString> reason = movie->foreignPlaces())
        failToSave(*reason);
    if (!edit(*movie))
        failToSave(u"the metadata is damaged or of another kind"_s);
    if (!movie->fitsTheLimit())
        failToSave(u"the tags are too large for this kind of file"_s);
    std::optional<QString> disorder = Mp4Optimizer::putInOrder(stream, layout, *movie);
    if (disorder) {
        if (const std::optional<QString> reason = putInPlace(stream, layout, *std::move(movie)))
            failToSave(*reason);
    }
    if (const std::optional<QString> reason = Mp4Optimizer::commit(stream))
        failToSave(*reason);
    return disorder;
}

} // namespace nurv
