// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagBombs.h"

#include "support/AudioFixtures.h"

#include <QFile>
#include <QtEndian>

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <array>

namespace nurv::test {

namespace {

QByteArray bigEndianBytes(std::uint32_t number)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

QByteArray synchsafeBytes(std::uint32_t number)
{
    QByteArray bytes;
    for (const int shift : {21, 14, 7, 0})
        bytes += static_cast<char>(number >> shift & 0x7fU);
    return bytes;
}

QByteArray sizeBytes(int version, std::uint32_t size)
{
    return version == 3 ? bigEndianBytes(size) : synchsafeBytes(size);
}

QByteArray deflated(const QByteArray &piece, std::int64_t repetitions)
{
    z_stream stream = {};
    EXPECT_EQ(::deflateInit(&stream, 6), Z_OK);
    QByteArray all;
    std::array<char, 65536> room{};
    for (std::int64_t i = 1; i <= repetitions; ++i) {
        stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(piece.constData()));
        stream.avail_in = static_cast<uInt>(piece.size());
        do {
            stream.next_out = reinterpret_cast<Bytef *>(room.data());
            stream.avail_out = static_cast<uInt>(room.size());
            ::deflate(&stream, i == repetitions ? Z_FINISH : Z_NO_FLUSH);
            all.append(room.data(), static_cast<qsizetype>(room.size() - stream.avail_out));
        } while (stream.avail_out == 0);
    }
    ::deflateEnd(&stream);
    return all;
}

} // namespace

QByteArray compressedZeros(std::int64_t count)
{
    constexpr std::int64_t kPiece = std::int64_t{1} << 20;
    EXPECT_EQ(count % kPiece, 0);
    return deflated(QByteArray(kPiece, '\0'), count / kPiece);
}

QByteArray compressed(const QByteArray &bytes)
{
    return deflated(bytes, 1);
}

QByteArray longId3Frame(int version, const QByteArray &id, const QByteArray &contents, int flags)
{
    return id + sizeBytes(version, static_cast<std::uint32_t>(contents.size())) + QByteArray(1, '\0')
           + static_cast<char>(flags) + contents;
}

QByteArray compressedId3Frame(int version, const QByteArray &id, const QByteArray &stream, std::uint32_t declared)
{
    // Version 4 says that the size stands there by a flag of its own.
    return longId3Frame(version, id, sizeBytes(version, declared) + stream, version == 3 ? 0x80 : 0x09);
}

QByteArray longId3Tag(int version, const QByteArray &frames, int flags)
{
    return "ID3" + QByteArray(1, static_cast<char>(version)) + QByteArray(1, '\0') + static_cast<char>(flags)
           + synchsafeBytes(static_cast<std::uint32_t>(frames.size())) + frames;
}

namespace {

constexpr qint64 kBlockSize = 0xffffff;

/// Puts the heads of so many blocks where the file ends, and their contents as holes.
void appendHoles(QFile &file, int blocks, bool isLast)
{
    qint64 place = file.size();
    for (int block = 1; block <= blocks; ++block) {
        file.seek(place);
        file.write(QByteArray::fromHex(isLast && block == blocks ? "82ffffff" : "02ffffff"));
        place += 4 + kBlockSize;
    }
    EXPECT_TRUE(file.resize(place));
}

} // namespace

QString writeSparseFlac(const TestFolder &folder, const QString &name, int blocks)
{
    const QByteArray streamInfo = QByteArray::fromHex("00000022") + QByteArray::fromHex("10001000000000000000")
                                  + QByteArray::fromHex("0ac442f000000000") + QByteArray(16, '\0');
    const QString path = folder.write(name, "fLaC" + streamInfo);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadWrite));
    appendHoles(file, blocks, true);
    return path;
}

QString writeSparseFlacWithSound(const TestFolder &folder, const QString &name, int blocks)
{
    constexpr qsizetype kEndOfStreamInfo = 4 + 4 + 34;
    const QString path = writeFlac(folder.path(name), {.seconds = 0.1});
    const QByteArray whole = folder.read(name);
    EXPECT_EQ(whole.at(4), 0) << "other blocks follow";
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadWrite));
    EXPECT_TRUE(file.resize(kEndOfStreamInfo));
    appendHoles(file, blocks, false);
    file.seek(file.size());
    EXPECT_EQ(file.write(whole.mid(kEndOfStreamInfo)), whole.size() - kEndOfStreamInfo);
    return path;
}

QByteArray withCountlessBoxes(const QByteArray &file)
{
    const qsizetype movie = file.indexOf("moov") - 4;
    EXPECT_GT(movie, file.indexOf("mdat")) << "places of the sound would move";
    QByteArray size(4, '\0');
    const QByteArray boxes = QByteArray("\0\0\0\x08"
                                        "free",
                                        8)
                                 .repeated(3'000'000);
    qToBigEndian(static_cast<quint32>(file.size() - movie + boxes.size()), size.data());
    return file.left(movie) + size + file.mid(movie + 4) + boxes;
}

} // namespace nurv::test
