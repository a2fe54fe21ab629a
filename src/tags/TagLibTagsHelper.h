// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/TagFormat.h"
#include "tags/TagsObject.h"

#include <QString>

#include <tstring.h>

namespace nurv {

/// Reads and writes the tags of MP3, AIFF, FLAC, Monkey's Audio and WavPack files
/// with TagLib. Each format has a pair of operations of its own, since each keeps
/// another subset of the fields.
///
/// Readers give the blank record for a file that is missing or of another format, and throw
/// NurvFailure for one whose tags are not to be trusted (TagLibGuard) or cannot be read, since it
/// has tags that a blank record would lose. Writers throw NurvFailure and then leave the file as it was;
/// they save by TagEditStream. Where TagsProcess is set up, it does the reading and editing. All operations block and may be called from any
/// thread, but not twice at a time for one file. Paths are absolute.
///
/// `writeEmptyTags`: with it, what the record lacks is cleared in the file; without
/// it, only texts that are present and not empty are written, and the rest of the
/// file's tags stays.
class TagLibTagsHelper {
public:
    /// Year and album artist (TPE2) are not read.
    [[nodiscard]] static TagsObject tagsForMP3File(const QString &path);
    /// With `writeEmptyTags` all tags of all types are stripped first. The picture is
    /// added beside those already there.
    static void writeTagsForMP3File(const QString &path, const TagsObject &tagObject, bool writeEmptyTags);

    [[nodiscard]] static TagsObject tagsForAIFFFile(const QString &path);
    /// Writes what is present and not empty. Album artist, composer and picture are
    /// added beside those already there. A disc total that is present but empty still
    /// writes its slash: "1/".
    static void writeTagsForAIFFFile(const QString &path, const TagsObject &tagObject);

    [[nodiscard]] static TagsObject tagsForFlacFile(const QString &path);
    /// With `writeEmptyTags` all fields and pictures are removed first. The picture is
    /// added beside those already there. The date goes through FlacTagHelper.
    static void writeTagsForFLACFile(const QString &path, const TagsObject &tagObject, bool writeEmptyTags);
    /// `writeTagsForFLACFile` up to the date. Returns the one that the file had.
    [[nodiscard]] static TagsObject::Text writeTagsButDate(const QString &path, const TagsObject &tagObject,
                                                           bool writeEmptyTags);

    [[nodiscard]] static TagsObject tagsForAPEFile(const QString &path);
    static void writeTagsForAPEFile(const QString &path, const TagsObject &tagObject, bool writeEmptyTags);

    /// From an ID3 tag at either end.
    [[nodiscard]] static TagsObject tagsForTTAFile(const QString &path);

    [[nodiscard]] static TagsObject tagsForWavpackFile(const QString &path);
    static void writeTagsForWavpackFile(const QString &path, const TagsObject &tagObject, bool writeEmptyTags);

    /// Empties title, artist, date, album, disc, track, comment, genre, composer and
    /// the two totals, and clears the picture; leaves the other fields.
    static void setBlankTags(TagsObject &tagObject);
    /// Throws NurvFailure when a file of the format cannot get the picture of the record: it cannot be rendered, or is too
    /// large as PNG. Says nothing of files that get none, or that get all else without it.
    static void checkPicture(TagFormat format, const TagsObject &tagObject);
    /// Whether a field of a FLAC file can be called so: characters of ASCII from " " to "}", but for "=".
    [[nodiscard]] static bool isFlacFieldName(const QString &name);
    /// The text as TagLib's, by way of UTF-8.
    [[nodiscard]] static TagLib::String tagLibString(const QString &text);
};

} // namespace nurv
