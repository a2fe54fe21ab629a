// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/Mp4Optimizer.h"

#include "app/Util.h"
#include "journal/NotedTemporary.h"
#include "platform/FileDescriptor.h"
#include "platform/NurvFailure.h"
#include "platform/SystemError.h"
#include "tags/Mp4Movie.h"
#include "tags/TagEditStream.h"
#include "tags/TagsLog.h"
#include "tags/TagsProcess.h"
#include "tags/TagsUnavailable.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <exception>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr FourCharacters kFileType = fourCharacters("ftyp");
constexpr FourCharacters kMovie = fourCharacters("moov");
constexpr FourCharacters kSound = fourCharacters("mdat");

/// Edits the stream into the new order. Returns nothing on success, else why not.
std::optional<QString> putInOrder(TagEditStream &stream)
{
    const Mp4Layout layout = Mp4Layout::of(stream);
    if (!layout.isWhole)
        return u"the boxes do not fill the file"_s;
    std::optional<Mp4Movie> movie = Mp4Movie::of(stream, layout);
    if (!movie)
        return u"the movie box is missing, damaged, or there more than once"_s;
    const Mp4Box *const sound = layout.only(kSound);
    if (sound == nullptr)
        return u"the media data is missing, or in more than one box"_s;
    const Mp4Box *const fileType = layout.only(kFileType);
    if (fileType == nullptr && layout.contains(kFileType))
        return u"there is more than one file type box"_s;
    if (layout.namesPlaces() || movie->isFragmented())
        return u"the file has movie fragments or other boxes that name places in it"_s;

    Mp4Boxes others;
    for (const Mp4Box &box : layout.boxes) {
        if (box.type == kFileType || box.type == kMovie || box.type == kSound || isMp4Filler(box.type))
            continue;
        if (box.reachesEndOfFile)
            return u"a box has no size"_s;
        others.push_back(box);
    }

    std::int64_t newPlace = movie->box().size() + (fileType != nullptr ? fileType->size : 0);
    for (const Mp4Box &box : others)
        newPlace += box.size;
    const auto begin = static_cast<std::uint64_t>(sound->contents());
    const auto end = static_cast<std::uint64_t>(sound->end());
    const auto move = static_cast<std::uint64_t>(newPlace - sound->offset); // modulo 2^64 for a move to the front
    const auto follow = [&](std::uint64_t offset) {
        return offset >= begin && offset <= end ? std::optional(offset + move) : std::nullopt;
    };
    if (std::optional<QString> reason = movie->mapChunkOffsets(follow))
        return reason;

    const long oldLength = stream.length();
    if (fileType != nullptr)
        stream.appendRange(fileType->offset, fileType->size);
    const QByteArray movieBox = movie->box();
    stream.seek(0, TagLib::IOStream::End);
    stream.writeBlock({movieBox.constData(), static_cast<unsigned int>(movieBox.size())});
    for (const Mp4Box &box : others)
        stream.appendRange(box.offset, box.size);
    stream.appendRange(sound->offset, sound->size);
    stream.removeBlock(0, static_cast<unsigned long>(oldLength));
    return std::nullopt;
}

} // namespace

std::optional<QString> Mp4Optimizer::optimize(const QString &path, const QString &targetPath)
{
    try {
        if (TagsProcess::optimize(path, targetPath))
            return std::nullopt;
        TagEditStream stream(path, TagEditStream::Access::Edit);
        if (!stream.isOpen())
            return u"the file cannot be opened"_s;
        if (std::optional<QString> reason = putInOrder(stream))
            return reason;
        return stream.writeTo(targetPath);
    } catch (const TagsUnavailable &) {
        throw;
    } catch (const std::exception &failure) {
        return QString::fromUtf8(failure.what());
    }
}

void Mp4Optimizer::optimizeInPlace(const QString &path)
{
    // Of a link the file that it leads to is replaced.
    const QFileInfo file(QFileInfo(path).canonicalFilePath());
    if (file.filePath().isEmpty()) {
        qCWarning(tagsLog, "Not optimized, since it is not there: %s", qUtf8Printable(path));
        throw NurvFailure(u"unable to optimize @% file"_s);
    }
    const QString temporaryPath = Util::generateTempFileName(file.absolutePath(), file.suffix());
    const NotedTemporary note(temporaryPath);
    const auto reason = [&] {
        try {
            return optimize(file.filePath(), temporaryPath);
        } catch (const TagsUnavailable &) {
            ::unlink(QFile::encodeName(temporaryPath).constData());
            throw;
        }
    }();
    if (reason) {
        ::unlink(QFile::encodeName(temporaryPath).constData());
        qCWarning(tagsLog, "Not optimized: %s: %s", qUtf8Printable(path), qUtf8Printable(*reason));
        throw NurvFailure(u"unable to optimize @% file"_s);
    }
    replace(file.filePath(), temporaryPath);
}

void Mp4Optimizer::replace(const QString &path, const QString &temporaryPath)
{
    const QByteArray name = QFile::encodeName(path);
    const QByteArray temporaryName = QFile::encodeName(temporaryPath);
    if (::unlink(name.constData()) != 0) {
        qCWarning(tagsLog, "Not deleted: %s: %s", name.constData(), qUtf8Printable(systemErrorText(errno)));
        ::unlink(temporaryName.constData());
        throw NurvFailure(u"unable to delete file @%"_s);
    }
    if (std::rename(temporaryName.constData(), name.constData()) != 0) {
        qCCritical(tagsLog, "%s could not be moved to %s: %s", temporaryName.constData(), name.constData(),
                   qUtf8Printable(systemErrorText(errno)));
        throw NurvFailure(u"file @% was lost"_s);
    }
    // Makes the move itself durable.
    const QByteArray folder = name.left(name.lastIndexOf('/') + 1);
    const FileDescriptor directory(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.isOpen())
        static_cast<void>(::fsync(directory.get()));
}

} // namespace nurv
