// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/NurvFailure.h"
#include "tags/ApeItems.h"
#include "tags/TagEditStream.h"
#include "tags/TagsObject.h"
#include "tags/TagsUnavailable.h"

#include <QString>

#include <aifffile.h>
#include <apefile.h>
#include <audioproperties.h>
#include <flacfile.h>
#include <id3v2framefactory.h>
#include <mpegfile.h>
#include <trueaudiofile.h>
#include <wavpackfile.h>

#include <exception>
#include <new>
#include <optional>
#include <type_traits>

namespace nurv::tagLibFile {

// Opening, saving and the fence around TagLib: no exception of its own, and none
// that a hostile file provokes, gets past these functions.

/// Sizes in the heads of FLAC metadata blocks have 24 bits.
inline constexpr unsigned int kFlacBlockLimit = 0xffffff;

/// The process-wide frame factory, with UTF-8 as the encoding of the frames it makes.
[[nodiscard]] TagLib::ID3v2::FrameFactory *frameFactory();

/// A file of TagLib on a stream of ours; audio properties are not read.
template<typename File>
class OpenFile {
public:
    OpenFile(const QString &path, TagEditStream::Access access) : m_stream(path, access), m_file(open(m_stream)) {}

    [[nodiscard]] bool isValid() const { return m_stream.isOpen() && m_file.isValid(); }
    /// Valid and of this format. TagLib takes any file for a valid AIFF, Monkey's Audio
    /// or WavPack file; saving would put chunks and sizes into, say, a misnamed WAV file.
    [[nodiscard]] bool isWritable()
    {
        if constexpr (
            std::is_same_v<
                File,
                TagLib::RIFF::AIFF::
                    File> || std::is_same_v<File, TagLib::APE::File> || std::is_same_v<File, TagLib::WavPack::File>)
            return isValid() && File::isSupported(&m_stream);
        else
            return isValid();
    }
    [[nodiscard]] File &file() { return m_file; }
    [[nodiscard]] TagEditStream &stream() { return m_stream; }

private:
    static File open(TagEditStream &stream)
    {
        stream.guardReading();
        // Also for the kinds that do not take the factory: it sets the encoding
        // that their frames are written in.
        [[maybe_unused]] auto *const factory = frameFactory();
        [[maybe_unused]] constexpr auto kStyle = TagLib::AudioProperties::Average;
        // From version 2 on TagLib takes the factory last, for more kinds of files.
        if constexpr (std::is_constructible_v<File, TagEditStream *, bool, decltype(kStyle), decltype(factory)>)
            return File(&stream, false, kStyle, factory);
        else if constexpr (std::is_constructible_v<File, TagEditStream *, decltype(factory), bool>)
            return File(&stream, factory, false);
        else
            return File(&stream, false);
    }

    TagEditStream m_stream;
    File m_file;
};

/// Runs `read(file, stream)` on a valid file and gives what that gives; nothing for any other file. Throws
/// TagsUnavailable for a file whose tags may not or cannot be read: to take it for one without tags would lose them.
template<typename File, typename Read>
[[nodiscard]] auto readWithStream(const QString &path, const Read &read)
{
    using Result = std::invoke_result_t<Read, File &, TagEditStream &>;
    try {
        OpenFile<File> opened(path, TagEditStream::Access::Read);
        std::optional<Result> result;
        if (opened.isValid())
            result = read(opened.file(), opened.stream());
        if (const std::optional<QString> reason = opened.stream().readingFailure())
            throw TagsUnavailable(*reason);
        return result;
    } catch (const NurvFailure &) {
        throw;
    } catch (const std::bad_alloc &) {
        throw TagsUnavailable(QStringLiteral("there is not enough memory to read its tags"));
    } catch (const std::exception &failure) {
        throw TagsUnavailable(QStringLiteral("its tags could not be read: %1").arg(QString::fromUtf8(failure.what())));
    }
}

/// The same of `read(file)`, which returns the record.
template<typename File, typename Read>
[[nodiscard]] std::optional<TagsObject> read(const QString &path, const Read &read)
{
    return readWithStream<File>(path, [&read](File &file, TagEditStream &) { return read(file); });
}

/// Runs `edit(file, stream)`, which saves, and commits. Throws NurvFailure for all that goes wrong;
/// then the file is as it was.
template<typename File, typename Edit>
void editWithStream(const QString &path, const Edit &edit)
{
    try {
        OpenFile<File> opened(path, TagEditStream::Access::Edit);
        if (const std::optional<QString> reason = opened.stream().readingFailure())
            throw NurvFailure(QStringLiteral("Unable to save the tags: %1.").arg(*reason));
        if (!opened.isWritable())
            throw NurvFailure(QStringLiteral("Unable to open the output file for tagging."));
        opened.stream().refuseUnreadFrames();
        // These save the APE tags that they have read.
        if constexpr (
            std::is_same_v<
                File,
                TagLib::MPEG::File> || std::is_same_v<File, TagLib::APE::File> || std::is_same_v<File, TagLib::WavPack::File>)
            refuseUnreadableItems(opened.stream());
        edit(opened.file(), opened.stream());
        if (const std::optional<QString> reason = opened.stream().commit())
            throw NurvFailure(QStringLiteral("Unable to save the tags: %1.").arg(*reason));
    } catch (const NurvFailure &) {
        throw;
    } catch (const std::bad_alloc &) {
        throw NurvFailure(QStringLiteral("Unable to allocate memory."));
    } catch (const std::exception &failure) {
        throw NurvFailure(QStringLiteral("Unable to save the tags: %1.").arg(QString::fromUtf8(failure.what())));
    }
}

/// Runs `edit(file)`, saves and commits, in the same way.
template<typename File, typename Edit>
void edit(const QString &path, const Edit &edit)
{
    editWithStream<File>(path, [&edit](File &file, TagEditStream &) {
        edit(file);
        if (!file.save())
            throw NurvFailure(QStringLiteral("Unable to save the tags."));
    });
}

} // namespace nurv::tagLibFile
