// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioFormatObject.h"
#include "tags/TagsObject.h"

#include <QString>

#include <optional>

namespace nurv {

/// Reads and writes the Vorbis comment of a FLAC file, and reads its stream format,
/// by one run of `metaflac` per key.
///
///     path, key ──> arguments ──> metaflac ──> output ──> text after the last "="
///
/// Every operation blocks until its runs have ended and may be called from any
/// thread. Nothing is reported: a failing run gives empty values or leaves the
/// file as it was. Paths are absolute.
class FlacTagHelper {
public:
    static constexpr QStringView kTitle = u"TITLE";
    static constexpr QStringView kArtist = u"ARTIST";
    static constexpr QStringView kDate = u"DATE";
    static constexpr QStringView kAlbum = u"ALBUM";
    static constexpr QStringView kComment = u"COMMENT";
    static constexpr QStringView kGenre = u"GENRE";
    static constexpr QStringView kTrackNumber = u"TRACKNUMBER";
    static constexpr QStringView kDiscNumber = u"DISCNUMBER";
    static constexpr QStringView kComposer = u"COMPOSER";

    /// The value of the key; empty when the file lacks it. Of a value with "=" only
    /// what follows the last one, and of a key with several values only the last
    /// one's, is given.
    [[nodiscard]] static QString tagForFile(const QString &path, QStringView tagKey);
    /// A new record with the fields of the nine keys; the others stay absent.
    [[nodiscard]] static TagsObject tagsForFile(const QString &path);
    static void removeTagForFile(const QString &path, QStringView tagKey);
    /// Removes the key and sets it to the value. An empty or absent value is written
    /// only with `writeEmptyTags`; without it the key keeps what the file had.
    static void writeTagForFile(const QString &path, QStringView tagKey, const std::optional<QString> &tagValue,
                                bool writeEmptyTags);
    /// `writeTagForFile` for each of the nine keys.
    static void writeTagsForFile(const QString &path, const TagsObject &tagObject, bool writeEmptyTags);
    /// Sample rate, channels, bits and frames; what is no number reads as 0.
    [[nodiscard]] static AudioFormatObject getFormatInfo(const QString &path);
};

} // namespace nurv
