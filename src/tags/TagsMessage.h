// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/NurvFailure.h"
#include "tags/MetadataInventory.h"
#include "tags/StoredTags.h"
#include "tags/TagEditStream.h"
#include "tags/TagFormat.h"
#include "tags/TagsObject.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstdint>
#include <optional>
#include <utility>

namespace nurv {

/// What the process that reads tags and the one that asks it say to each other.
enum class TagsMessageKind : std::uint8_t {
    ReadTags = 1,  ///< format; with a file
    EditTags,      ///< format, what to write; with a file
    ReadInventory, ///< with a file
    DigestPixels,  ///< bytes of a picture
    ExaminePicture, ///< bytes of a picture
    ScalePicture,   ///< width, height, bytes of a picture
    ReadStored,     ///< format; with a file
    ReplaceStored,  ///< format, stored tags; with a file
    TryTags,        ///< format, what would be written; with a file
    Done = 16,     ///< what was asked for
    Failed,        ///< whether that is a TagsUnavailable, the reason
    NeedMemory,    ///< in between: bytes for a picture
    Granted,       ///< the answer to that
    Logged,        ///< in between: kind and text of a line for the log
    Refused        ///< the reason why this process can do nothing at all
};

/// Puts values behind each other.
class TagsMessageWriter {
public:
    void putNumber(std::uint64_t number);
    void putBytes(const QByteArray &bytes);
    void putText(const QString &text);
    void putOptional(const TagsObject::Text &text);
    void putRecord(const TagsObject &record);
    void putInventory(const MetadataInventory &inventory);
    void putStoredTags(const StoredTags &tags);
    void putEdits(const TagEditStream::Edits &edits);

    [[nodiscard]] const QByteArray &bytes() const { return m_bytes; }

private:
    void putPicture(const AlbumArt &picture);

    QByteArray m_bytes;
};

/// A message does not fit together.
class DamagedMessage : public NurvFailure {
public:
    using NurvFailure::NurvFailure;
};

/// Takes them off again. What it reads is foreign: the other process may have been taken over by the
/// file that it read. Throws DamagedMessage for what does not fit together, before room is made for it.
class TagsMessageReader {
public:
    explicit TagsMessageReader(QByteArray bytes) : m_bytes(std::move(bytes)) {}

    [[nodiscard]] std::uint64_t takeNumber();
    [[nodiscard]] std::uint64_t takeNumber(std::uint64_t largest);
    [[nodiscard]] QByteArray takeBytes();
    [[nodiscard]] QString takeText();
    [[nodiscard]] TagsObject::Text takeOptional();
    [[nodiscard]] TagsObject takeRecord();
    [[nodiscard]] MetadataInventory takeInventory();
    [[nodiscard]] StoredTags takeStoredTags();
    /// Of a file of that length.
    [[nodiscard]] TagEditStream::Edits takeEdits(std::int64_t fileLength);
    /// Nothing may follow.
    void expectEnd() const;

private:
    [[nodiscard]] AlbumArt takePicture();
    /// Valid while this lives.
    [[nodiscard]] QByteArrayView takeView();
    /// A count of parts that have at least so many bytes each.
    [[nodiscard]] std::uint64_t takeCount(std::uint64_t smallestPart);

    QByteArray m_bytes;
    qsizetype m_position = 0;
};

} // namespace nurv
