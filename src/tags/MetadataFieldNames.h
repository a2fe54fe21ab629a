// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace nurv::metadataFields {

// One name for what the kinds of tags name differently: the names of Vorbis comments, as TagLib's
// property map has them. Names that no table holds stay as they are, in capitals.

/// The name of a field that has a name in words: of a Vorbis comment, an APE tag, a free-form
/// item of MPEG-4, a TXXX frame.
[[nodiscard]] QString fromWords(const QString &name);
/// The name of a frame of ID3v2.3 or 2.4, "TIT2".
[[nodiscard]] QString fromId3Frame(const QByteArray &id);
/// The frame of ID3v2.3 that stands for one of ID3v2.2, "TT2"; the same name where none does.
[[nodiscard]] QByteArray id3FrameOfVersion2(const QByteArray &id);
/// The name of a metadata item of MPEG-4, "\251nam".
[[nodiscard]] QString fromMp4Item(const QByteArray &item);
/// The name of a chunk of a LIST chunk "INFO" in RIFF, "INAM".
[[nodiscard]] QString fromInfoChunk(const QByteArray &chunk);

/// Whether the field tells only how, when and by what the file was made, so that another file
/// cannot truly have the same.
[[nodiscard]] bool describesTheEncoding(const QString &field);
/// Whether the field holds the number of a track or disc, or how many there are.
[[nodiscard]] bool isNumber(const QString &field);
/// The field for the total that may follow such a number after a slash; empty for others.
[[nodiscard]] QString totalOf(const QString &field);

} // namespace nurv::metadataFields
