// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TestFolder.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace nurv::test {

/// A short sound in an MPEG-4 file by the ffmpeg program, without tags of its own wish.
/// The movie box stands at the end.
QString writeM4a(const TestFolder &folder, const QString &name, const QString &codec = QStringLiteral("alac"),
                 const QStringList &encoderArguments = {});

/// One box, read and written by the tests' own few lines.
struct TestBox {
    QByteArray type;
    QByteArray contents;
};
[[nodiscard]] QByteArray boxBytes(const QByteArray &type, const QByteArray &contents);
/// The same with a size of 64 bits in its head.
[[nodiscard]] QByteArray longBoxBytes(const QByteArray &type, const QByteArray &contents);
[[nodiscard]] QByteArray bigEndian32(quint32 number);
[[nodiscard]] QByteArray bigEndian64(quint64 number);

/// The boxes that stand in a row; fails the test where their sizes are wrong.
[[nodiscard]] QList<TestBox> boxesOf(const QByteArray &bytes);
[[nodiscard]] QByteArrayList typesOf(const QByteArray &bytes);
/// The contents of the box at the end of the path ("moov", "trak", ...); the first of each type.
[[nodiscard]] QByteArray contentsAt(const QByteArray &bytes, const QByteArrayList &path);
/// The bytes with the box at the end of the path made anew; all sizes follow.
[[nodiscard]] QByteArray edited(const QByteArray &bytes, const QByteArrayList &path,
                                const std::function<QByteArray(const QByteArray &contents)> &edit);
/// The whole boxes of the metadata items of a file.
[[nodiscard]] QByteArrayList itemsOf(const QByteArray &file);
/// An item with one value.
[[nodiscard]] QByteArray itemBytes(const QByteArray &type, quint32 valueType, const QByteArray &value);
/// The file with more bytes at the end of its metadata items. For files whose
/// movie box stands at the end.
[[nodiscard]] QByteArray withItems(const QByteArray &file, const QByteArray &items);

inline const QByteArrayList kItemsPath{"moov", "udta", "meta", "ilst"};
inline const QByteArrayList kSampleTablePath{"moov", "trak", "mdia", "minf", "stbl"};

/// The chunk offsets of the first track.
[[nodiscard]] QList<quint64> chunkOffsets(const QByteArray &file);
/// The file with the 32-bit chunk offsets of all tracks replaced by what `map` gives.
[[nodiscard]] QByteArray withChunkOffsets(const QByteArray &file, const std::function<quint64(quint64 offset)> &map);
/// All packets of all streams after ffprobe: stream, time, size and digest, a line each. Fails the test when
/// there are none.
[[nodiscard]] QByteArray packetsOf(const QString &path);
/// The file with its chunk offsets in 64 bits, each moved by `shift`.
[[nodiscard]] QByteArray withLongOffsets(const QByteArray &file, qint64 shift);

} // namespace nurv::test
