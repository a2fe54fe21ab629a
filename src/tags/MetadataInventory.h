// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace nurv {

/// Everything that a sound file holds besides its sound: all that its readers can name,
/// not only what the tag record has fields for.
struct MetadataInventory {
    /// Values by field, the fields under one name for all containers.
    QMap<QString, QStringList> tags;
    /// A digest of the bytes of each picture.
    QList<QByteArray> pictures;
    /// A name and a digest of each chunk or block that is neither sound nor tag: "bext",
    /// "cue ", ... Without fillers and what only describes the encoding.
    QMap<QString, QByteArray> foreignChunks;

    /// Reads a regular file. Throws NurvFailure when it cannot tell what the file holds.
    [[nodiscard]] static MetadataInventory of(const QString &path);
};

/// What of the source the output does not hold, as a sentence without a full stop:
/// "14 tags and a picture have no place in a WAV file" when the output's kind holds none
/// of it, else "2 tags (Composer, Mood) are not in the output". Nothing when all is there.
/// `outputName` tells the kind by its extension.
[[nodiscard]] std::optional<QString> metadataLost(const MetadataInventory &source, const MetadataInventory &output,
                                                  const QString &outputName);

} // namespace nurv
