// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/Mp4Optimizer.h"

#include "app/Util.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "files/FileFlush.h"
#include "journal/NotedTemporary.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iterator>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr FourCharacters kFileType = fourCharacters("ftyp");
constexpr FourCharacters kMovie = fourCharacters("moov");
constexpr FourCharacters kSound = fourCharacters("mdat");

/// The contents of the new file, run by run.
class Arrangement {
public:
    void addRange(std::int64_t offset, std::int64_t length)
    {
        TagEditStream::Piece *const last = m_edits.pieces.empty() ? nullptr : &m_edits.pieces.back();
        if (length == 0)
            return;
        if (last != nullptr && !last->isNew && last->offset + last->length == offset)
            last->length += length;
        else
            m_edits.pieces.push_back({.isNew = false, .offset = offset, .length = length});
    }
    void addBox(const Mp4Box &box) { addRange(box.offset, box.size); }
    void addNewBytes(const QByteArray &bytes)
    {
        m_edits.pieces.push_back(
            {.isNew = true, .offset = static_cast<std::int64_t>(m_edits.newBytes.size()), .length = bytes.size()});
        m_edits.newBytes.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }

    /// Whether that is a file of this length as it stands.
    [[nodiscard]] bool isWholeFile(std::int64_t length) const
    {
        return m_edits.pieces.size() == 1 && !m_edits.pieces.front().isNew && m_edits.pieces.front().offset == 0
               && m_edits.pieces.front().length == length;
    }
    [[nodiscard]] TagEditStream::Edits takeEdits()
    {
        m_edits.isEdited = true;
        return std::exchange(m_edits, {});
    }

private:
    TagEditStream::Edits m_edits;
};

/// Why the boxes of the file cannot be put in order, whatever its chunk offsets; nothing when they can.
std::optional<QString> faultOf(const Mp4Layout &layout, const Mp4Movie &movie)
{
    if (layout.isCutShort)
        return u"the boxes do not fill the file"_s;
    if (!layout.contains(kSound))
        return u"the media data is missing"_s;
    if (layout.only(kFileType) == nullptr && layout.contains(kFileType))
        return u"there is more than one file type box"_s;
    if (layout.namesPlaces() || movie.isFragmented())
        return u"the file has movie fragments or other boxes that name places in it"_s;
    return std::nullopt;
}

/// The boxes of a file by what becomes of them.
struct SortedBoxes {
    Mp4Boxes others;
    Mp4Boxes sounds;
    std::optional<Mp4Box> endless; ///< neither, and its head gives no size, so that it must stay the last

    explicit SortedBoxes(const Mp4Layout &layout)
    {
        for (const Mp4Box &box : layout.boxes) {
            if (box.type == kFileType || box.type == kMovie || isMp4Filler(box.type))
                continue;
            if (box.type == kSound)
                sounds.push_back(box);
            else if (box.reachesEndOfFile)
                endless = box;
            else
                others.push_back(box);
        }
    }
};

/// How far each sound moves when the first one comes to stand at `place`.
struct SoundMove {
    const Mp4Boxes &sounds;
    std::vector<std::int64_t> before; ///< the length of the sounds that stand in front of each

    explicit SoundMove(const Mp4Boxes &boxes) : sounds(boxes)
    {
        std::int64_t length = 0;
        for (const Mp4Box &box : sounds) {
            before.push_back(length);
            length += box.size;
        }
    }

    [[nodiscard]] std::optional<std::uint64_t> follow(std::uint64_t offset, std::int64_t place) const
    {
        // The last one that begins at or before the offset. An offset may name the very end of a sound:
        // there an empty chunk lies.
        const auto next =
            std::upper_bound(sounds.begin(), sounds.end(), offset, [](std::uint64_t wanted, const Mp4Box &box) {
                return wanted < static_cast<std::uint64_t>(box.contents());
            });
        if (next == sounds.begin())
            return std::nullopt;
        const Mp4Box &sound = *std::prev(next);
        if (offset > static_cast<std::uint64_t>(sound.end()))
            return std::nullopt;
        const std::int64_t newOffset = place + before[static_cast<std::size_t>(std::prev(next) - sounds.begin())];
        return static_cast<std::uint64_t>(newOffset) + (offset - static_cast<std::uint64_t>(sound.offset));
    }
};

} // namespace

std::optional<QString> Mp4Optimizer::putInOrder(TagEditStream &stream, const Mp4Layout &layout, Mp4Movie movie)
{
    if (std::optional<QString> fault = faultOf(layout, movie))
        return fault;
    const Mp4Box *const fileType = layout.only(kFileType);
    const Mp4Box &oldMovie = *layout.only(kMovie);
    const SortedBoxes boxes(layout);

    Arrangement arrangement;
    std::int64_t beside = 0; // the bytes in front of the sound, but for the movie
    if (fileType != nullptr) {
        arrangement.addBox(*fileType);
        beside += fileType->size;
    }
    for (const Mp4Box &box : boxes.others)
        beside += box.size;
    const SoundMove sounds(boxes.sounds);
    const auto follow = [&](std::uint64_t offset, std::int64_t movieSize) {
        return sounds.follow(offset, beside + movieSize);
    };
    if (std::optional<QString> reason = movie.moveChunkOffsets(follow))
        return reason;
    if (!movie.fitsTheLimit())
        return u"the movie box would be too large"_s;

    if (movie.standsIn(stream, oldMovie))
        arrangement.addBox(oldMovie);
    else
        arrangement.addNewBytes(movie.box());
    for (const Mp4Box &box : boxes.others)
        arrangement.addBox(box);
    for (const Mp4Box &box : boxes.sounds)
        arrangement.addBox(box);
    if (boxes.endless)
        arrangement.addBox(*boxes.endless);
    arrangement.addRange(layout.tail, layout.length - layout.tail);
    if (!arrangement.isWholeFile(layout.length))
        stream.apply(arrangement.takeEdits());
    return std::nullopt;
}

std::optional<QString> Mp4Optimizer::commit(TagEditStream &stream)
{
    if (stream.isHanded() || !stream.isEdited())
        return stream.commit();
    // The name is free of links: of a link the file that it leads to is replaced.
    const QFileInfo file(QFile::decodeName(stream.name()));
    const QString temporaryPath = Util::generateTempFileName(file.absolutePath(), file.suffix());
    const NotedTemporary note(temporaryPath);
    std::optional<QString> reason = stream.writeTo(temporaryPath);
    if (!reason)
        reason = stream.foreignChange();
    if (reason) {
        ::unlink(QFile::encodeName(temporaryPath).constData());
        return reason;
    }
    replace(file.filePath(), temporaryPath);
    return std::nullopt;
}

void Mp4Optimizer::replace(const QString &path, const QString &temporaryPath)
{
    const QByteArray name = QFile::encodeName(path);
    const QByteArray temporaryName = QFile::encodeName(temporaryPath);
    if (std::rename(temporaryName.constData(), name.constData()) != 0) {
        const int error = errno;
        qCWarning(tagsLog, "%s stays as it was, %s did not take its place: %s", name.constData(),
                  temporaryName.constData(), qUtf8Printable(systemErrorText(error)));
        if (::unlink(temporaryName.constData()) != 0 && errno == ENOENT)
            throw NurvFailure(u"file @% was lost"_s);
        throw NurvFailure(u"unable to delete file @%"_s);
    }
    static_cast<void>(flushFolderToDisk(QFileInfo(path).path()));
}

} // namespace nurv
