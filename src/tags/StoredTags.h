// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/TagFormat.h"
#include "tags/TagsObject.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstdint>
#include <optional>

namespace nurv {

/// One tag as it is stored in a file: a value of a field, a frame, an item, a picture, or a whole old tag.
struct StoredTag {
    /// What holds it.
    enum class Holder : std::uint8_t { Vorbis, FlacPicture, Id3v2, Id3v1, Ape, Mp4 };

    Holder holder = Holder::Vorbis;
    /// "ARTIST", "TPE1", "Artist", "\251ART", "----:com.apple.iTunes:MOOD".
    QString name = {};
    /// The value in words; absent where it is no text.
    TagsObject::Text text = {};
    /// What brings it back: the frame, item, picture block or tag as bytes. Empty where the text does.
    QByteArray data = {};

    bool operator==(const StoredTag &) const = default;
};

/// Every tag of a FLAC, MP3, Monkey's Audio, WavPack or MPEG-4 file, also those that a TagsObject has no place for:
/// repeated fields, all pictures, frames and items of any kind. Those of a holder keep their order.
using StoredTags = QList<StoredTag>;

namespace storedTags {

/// By a process of its own where TagsProcess is set up. Throws NurvFailure when the file cannot be read. Blocks; any
/// thread.
[[nodiscard]] StoredTags read(TagFormat format, const QString &path);

/// Gives the file these tags and no others. Throws NurvFailure, and then leaves the file as it was. Blocks; any thread,
/// but not twice at a time for one file.
void replace(TagFormat format, const QString &path, const StoredTags &tags);

/// The word for a holder in JSON, and back; the first that has that word.
[[nodiscard]] QString wordOf(StoredTag::Holder holder);
[[nodiscard]] std::optional<StoredTag::Holder> holderOf(const QString &word);
/// Whether files of that format can have such a holder.
[[nodiscard]] bool canHold(TagFormat format, StoredTag::Holder holder);

} // namespace storedTags

} // namespace nurv
