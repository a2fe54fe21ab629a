// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TestFolder.h"

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace nurv::test {

/// A zlib stream of so many zeros.
[[nodiscard]] QByteArray compressedZeros(std::int64_t count);
/// Some bytes as a zlib stream.
[[nodiscard]] QByteArray compressed(const QByteArray &bytes);

/// A frame of ID3v2.3 or 2.4 of any size.
[[nodiscard]] QByteArray longId3Frame(int version, const QByteArray &id, const QByteArray &contents, int flags = 0);
/// The same, compressed; `declared` is the size that it claims to inflate to.
[[nodiscard]] QByteArray compressedId3Frame(int version, const QByteArray &id, const QByteArray &stream,
                                            std::uint32_t declared);
/// An ID3v2 tag around frames that are written as they are.
[[nodiscard]] QByteArray longId3Tag(int version, const QByteArray &frames, int flags = 0);

/// A FLAC file whose metadata are so many blocks of 16 MiB each, all of them holes. Takes no room.
QString writeSparseFlac(const TestFolder &folder, const QString &name, int blocks);
/// The same with a short sound behind the blocks.
QString writeSparseFlacWithSound(const TestFolder &folder, const QString &name, int blocks);

/// The bytes of an MPEG-4 file whose last box is the movie, with millions of empty boxes in that.
[[nodiscard]] QByteArray withCountlessBoxes(const QByteArray &file);

} // namespace nurv::test
