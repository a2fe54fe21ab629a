// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TestFolder.h"
#include "tags/MetadataInventory.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <utility>

namespace nurv::test {

/// Fields and values, in the words of the program that writes them.
using Fields = QList<std::pair<QString, QString>>;

// These write with programs that know nothing of the code under test: metaflac, wvtag, AtomicParsley,
// ffmpeg. Each gives the path of the file.

/// Adds fields, and a front cover from a file where one is named.
QString addFlacTags(const QString &path, const Fields &fields, const QString &picture = {});
QString addWavPackTags(const QString &path, const Fields &fields, const QString &picture = {});
/// The options of AtomicParsley in pairs: "--title", "Song".
QString addMp4Tags(const QString &path, const Fields &options);
/// An AIFF file with an ID3 chunk of version 3 or 4.
QString writeTaggedAiff(const QString &path, const Fields &fields, const QString &picture, int id3Version);
/// Puts the APE tag of a WavPack file, which wvtag has written, behind a file of another kind.
void copyApeTag(const QString &wavPack, const QString &path);

/// Files of each kind made by the bundled encoders of a WAV file.
QString encodeMonkeysAudio(const QString &wav, const QString &path);
QString encodeShorten(const QString &wav, const QString &path);
QString encodeTta(const QString &wav, const QString &path);

/// A run of a program that must succeed.
void run(const QString &program, const QStringList &arguments);

/// A chunk of an AIFF file, with its padding.
[[nodiscard]] QByteArray aiffChunk(const char *fourCharacters, const QByteArray &contents);
/// The AIFF file with more chunks at its end.
[[nodiscard]] QByteArray withAiffChunks(QByteArray aiff, const QByteArray &chunks);

/// A frame of ID3v2.3 or 2.4 with a short value; the contents start with their encoding where they are text.
[[nodiscard]] QByteArray id3Frame(const QByteArray &id, const QByteArray &contents, int flags = 0);
/// An ID3v2 tag around frames, with some padding.
[[nodiscard]] QByteArray id3Tag(int version, const QByteArray &frames, int flags = 0);
/// An ID3v1.1 tag.
[[nodiscard]] QByteArray id3v1Tag(const QByteArray &title, const QByteArray &artist, const QByteArray &album,
                                  const QByteArray &year, const QByteArray &comment, int track, int genre);

} // namespace nurv::test
