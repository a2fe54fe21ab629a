// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/NurvFailure.h"
#include "tags/TagsObject.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <optional>

namespace nurv {

/// Reads and writes the metadata items of MPEG-4 audio files (AAC and Apple Lossless, "m4a").
///
///     record ──> items of the movie box ──> file ──> optimised order ──> file
///
/// Only the items that a record has are touched; all others keep their bytes. The operations
/// throw NurvFailure, block, and may be called from any thread, but not twice at a time for
/// one file. Paths are absolute.
class AACTagsHelper {
public:
    /// The new tags are in the file, but it could not be optimised.
    class Unoptimized final : public NurvFailure {
    public:
        using NurvFailure::NurvFailure;
    };

    /// A new record. Track, disc and their totals are always set, to "0" where the file has
    /// none. Throws for what is no MPEG-4 file or cannot be read; of a picture that cannot, the record tells.
    [[nodiscard]] static TagsObject tagsForFile(const QString &path);

    /// Writes the texts that are not empty, with `writeEmptyTags` all of them, and the picture if there is one.
    /// The artist is written as album artist, too; the record's own album artist is
    /// not written. With `encoding`, and where a QuickTime version is known, the encoding tool is written.
    ///
    /// The boxes of the new file are in the order of Mp4Optimizer; it is written in one pass, and not at all
    /// when it would be the file as it stands. Files whose sound lies in other files, or whose movie names
    /// places by means that are not known, are refused. The file is as it was when the tags cannot be
    /// written; it holds the new tags in the old order when it cannot be optimised (Unoptimized). Returns why the
    /// picture is not in it, as the end of a sentence, when it cannot be rendered; that costs nothing else.
    static TagsObject::Text writeTagsForFile(const QString &path, const TagsObject &tagObject, bool writeEmptyTags,
                                             bool encoding);

    /// What did not become of a file with new tags.
    struct Shortfall {
        TagsObject::Text picture; ///< why it is not in it
        TagsObject::Text order;   ///< why the boxes are in their old order
    };
    /// `writeTagsForFile` that throws nothing for a file in its old order.
    [[nodiscard]] static Shortfall writeInAnyOrder(const QString &path, const TagsObject &tagObject,
                                                   bool writeEmptyTags, bool encoding);

    /// Empties title, artist, date, album, disc, track, comment, genre and composer; leaves
    /// the other fields.
    static void setBlankTags(TagsObject &tagObject);

    /// Marks the file as gapless by a run of `AtomicParsley`, whose success is not looked
    /// at: what it does not mark stays as it was. `isUnwanted` is asked now and then and
    /// ends the run. Throws nothing; blocks.
    static void makeGapless(const QString &path, const std::function<bool()> &isUnwanted = {});

    /// The version of QuickTime on this machine, one digit in each of the 4 bits from bits
    /// 24, 20 and 16 on; nothing where there is none.
    using QuickTimeVersionProvider = std::function<std::optional<std::uint32_t>()>;
    /// The provider is asked on the thread that writes. Without one, as at first, no version is known.
    static void setQuickTimeVersionProvider(QuickTimeVersionProvider provider);

private:
    static void runParsley(const QString &path, const std::function<bool()> &isUnwanted);
};

} // namespace nurv
