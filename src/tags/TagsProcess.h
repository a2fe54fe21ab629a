// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/AlbumArt.h"
#include "tags/MetadataInventory.h"
#include "tags/StoredTags.h"
#include "tags/TagFormat.h"
#include "tags/TagsObject.h"

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

#include <chrono>
#include <cstdint>
#include <optional>

namespace nurv {

struct TagTrial;

/// Asks processes of their own to read and edit the tags of files, so that a file that overcomes a
/// reader ends that process and no batch.
///
///     job ──> file, open for reading ──> nurv-tags ──> record, inventory, edits ──> checked ──> job
///                                        no files, no privileges, limits          edits: written here
///
/// Processes start on first need, up to a number that work at the same time, and live on; one that
/// ends, takes too long or answers nonsense is replaced when the next is needed. What it was asked then
/// throws TagsUnavailable, and so does everything where the program is not there; what the process itself
/// could not do throws what it threw there. Until `setUp` everything gives nothing: then, and in such a
/// process itself, the callers do the work. Any thread; blocks.
class TagsProcess {
public:
    struct Settings {
        QString program;
        int most = 1; ///< processes; the GUI thread may have one more, so that it waits for none
        std::chrono::milliseconds timeToRead{std::chrono::minutes(3)};
        std::chrono::milliseconds timeToTakeStock{std::chrono::minutes(30)};
    };

    /// `nurv-tags` of this installation, as many as the machine has processors. Where it is not there, no
    /// tags are read or written from now on.
    static void setUp();
    static void setUp(const Settings &settings);
    /// Ends them all and asks none from now on.
    static void takeDown();
    [[nodiscard]] static QString installedProgram();

    [[nodiscard]] static std::optional<TagsObject> readTags(TagFormat format, const QString &path);
    [[nodiscard]] static std::optional<MetadataInventory> readInventory(const QString &path);
    [[nodiscard]] static std::optional<QByteArray> pictureDigest(const QByteArray &picture);
    [[nodiscard]] static std::optional<PictureReading> examinePicture(const QByteArray &picture);
    [[nodiscard]] static std::optional<QImage> scaledPicture(const QByteArray &picture, QSize box);
    [[nodiscard]] static std::optional<StoredTags> readStoredTags(TagFormat format, const QString &path);

    struct Writing {
        TagFormat format;
        bool writeEmptyTags = false;
        bool encoding = false;
        std::optional<std::uint32_t> quickTimeVersion = std::nullopt;
    };
    /// What was not written: a date that TagLib shall not write, why the picture was left out, and why
    /// the boxes of an MPEG-4 file are in their old order.
    struct Written {
        TagsObject::Text date;
        TagsObject::Text leftOut;
        TagsObject::Text disorder;
    };
    [[nodiscard]] static std::optional<Written> writeTags(const Writing &writing, const QString &path,
                                                          const TagsObject &tags);
    [[nodiscard]] static std::optional<TagTrial> tryTags(const Writing &writing, const QString &path,
                                                         const TagsObject &tags);
    /// False: the caller does the work.
    [[nodiscard]] static bool replaceStoredTags(TagFormat format, const QString &path, const StoredTags &tags);
};

} // namespace nurv
