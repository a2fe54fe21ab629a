// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace nurv {

/// Everything that a sound file holds besides its sound: all that its readers can name,
/// not only what the tag record has fields for. Without what only describes the encoding
/// (the encoder's name, seek tables, fillers, padding).
struct MetadataInventory {
    /// Values by field. A field has one name for all containers, that of Vorbis comments
    /// ("TRACKNUMBER"), and its values one form: the composed form of Unicode, no zeros at
    /// the end, "5/12" as number and total. What is no text stands as a digest. Every
    /// value once.
    QMap<QString, QStringList> tags;
    /// The bytes of each picture, as they are in the file.
    QByteArrayList pictures;
    /// Digests, by name, of the chunks, blocks and boxes that are neither sound nor tag: "bext",
    /// "cue", "CUESHEET", ... Also of those that stand inside a file of another kind, so
    /// that decoding would bring them back. Bytes that have no name stand under an empty one.
    QMap<QString, QByteArrayList> foreignChunks;

    /// Reads a regular file; what it holds decides how, not its name. Throws NurvFailure
    /// when it cannot tell what the file holds; the reason is the end of a sentence ("its ID3
    /// tag is damaged"). Memory is bounded, whatever the file says. Blocks; any thread.
    [[nodiscard]] static MetadataInventory of(const QString &path);
};

/// What of the source the output does not hold, as a sentence without a full stop:
/// "14 tags and a picture have no place in a WAV file" when this program can put none
/// of it into files of the output's kind, else "2 tags (COMPOSER, MOOD) are not in the output".
/// Nothing when all is there. A picture is there, too, when one with the same pixels is.
/// `outputName` tells the kind by its extension. Decodes pictures that differ in
/// their bytes; any thread.
[[nodiscard]] std::optional<QString> metadataLost(const MetadataInventory &source, const MetadataInventory &output,
                                                  const QString &outputName);

} // namespace nurv
