// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/Mp4ChunkOffsets.h"

#include "Mp4Fixtures.h"
#include "support/AudioFixtures.h"
#include "tags/Mp4Optimizer.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

constexpr quint64 kLast32 = 0xffff'ffff;

QByteArray table32(const QList<quint32> &offsets)
{
    QByteArray contents = bigEndian32(0) + bigEndian32(static_cast<quint32>(offsets.size()));
    for (const quint32 offset : offsets)
        contents += bigEndian32(offset);
    return boxBytes("stco", contents);
}

QByteArray table64(const QList<quint64> &offsets)
{
    QByteArray contents = bigEndian32(0) + bigEndian32(static_cast<quint32>(offsets.size()));
    for (const quint64 offset : offsets)
        contents += bigEndian64(offset);
    return boxBytes("co64", contents);
}

QByteArray track(const QByteArray &table)
{
    const QByteArray media = boxBytes("minf", boxBytes("vmhd", "x") + boxBytes("stbl", "\0\0\0\x9stsdx" + table));
    return boxBytes("trak", boxBytes("tkhd", "head") + boxBytes("mdia", media) + boxBytes("udta", "last"));
}

/// The contents of a movie with a track for each of the tables.
QByteArray movieOf(const QByteArrayList &tables)
{
    QByteArray movie = boxBytes("mvhd", "movie");
    for (const QByteArray &table : tables)
        movie += track(table);
    return movie + boxBytes("free", "end");
}

/// The movie in which every offset has moved by the size of the movie and `more`.
QByteArray movedBy(const QByteArray &movie, quint64 more)
{
    Mp4ChunkOffsets offsets(movie);
    const auto move = [more](std::uint64_t offset, std::int64_t movieSize) {
        return std::optional(offset + static_cast<std::uint64_t>(movieSize) + more);
    };
    EXPECT_EQ(offsets.follow(move), std::nullopt);
    return offsets.takeMovie();
}

} // namespace

TEST(Mp4ChunkOffsets, StayIn32BitsUpToTheLastNumber)
{
    const quint64 size = 8 + static_cast<quint64>(movieOf({table32({0, 0})}).size());
    const auto last = static_cast<quint32>(kLast32 - size);
    EXPECT_EQ(movedBy(movieOf({table32({0, last})}), 0), movieOf({table32({static_cast<quint32>(size), 0xffff'ffff})}));
    // One more, and the table has to grow by 8, which moves the sound.
    EXPECT_EQ(movedBy(movieOf({table32({0, last + 1})}), 0), movieOf({table64({size + 8, kLast32 + 9})}));
}

TEST(Mp4ChunkOffsets, GrowOnlyWhereTheyMust)
{
    const QByteArray movie = movieOf({table32({10, 20}), table32({0xffff'0000}), table64({kLast32 + 5})});
    const quint64 size = 8 + 4 + static_cast<quint64>(movie.size());
    EXPECT_EQ(movedBy(movie, 0x10000),
              movieOf({table32({static_cast<quint32>(size) + 0x1000a, static_cast<quint32>(size) + 0x10014}),
                       table64({size + 0x1'0000'0000}), table64({size + 0x1'0001'0004})}));
}

TEST(Mp4ChunkOffsets, GrowTooWhereTheGrowthOfOthersMovesThem)
{
    const auto movieWith = [](quint32 second) {
        return movieOf({table32({0xffff'ffff}), table32({second}), table32({1})});
    };
    const quint64 size = 8 + static_cast<quint64>(movieWith(0).size());
    // It fits as long as no table grows.
    const auto second = static_cast<quint32>(kLast32 - size);
    const quint64 grown = size + 12;
    EXPECT_EQ(movedBy(movieWith(second), 0),
              movieOf({table64({kLast32 + grown}), table64({second + grown}), table64({1 + grown})}));
}

TEST(Mp4ChunkOffsets, GrowInsideBoxesWithLongHeads)
{
    const QByteArray inner = boxBytes("minf", longBoxBytes("stbl", table32({0xffff'ffff}) + boxBytes("last", "x")));
    const QByteArray movie = boxBytes("mvhd", {}) + longBoxBytes("trak", longBoxBytes("mdia", inner));
    const QByteArray wide =
        boxBytes("minf", boxBytes("stbl", table64({kLast32 + 8 + static_cast<quint64>(movie.size()) - 3 * 8 + 4})
                                              + boxBytes("last", "x")));
    EXPECT_EQ(movedBy(movie, 0), boxBytes("mvhd", {}) + boxBytes("trak", boxBytes("mdia", wide)));
}

TEST(Mp4ChunkOffsets, FailWhereThereIsNoSound)
{
    Mp4ChunkOffsets offsets(movieOf({table32({1}), table64({2})}));
    const auto move = [](std::uint64_t offset, std::int64_t) {
        return offset == 2 ? std::nullopt : std::optional(offset);
    };
    EXPECT_EQ(offsets.follow(move), u"a chunk offset names a place without sound"_s);
}

TEST(Mp4ChunkOffsets, Reach64BitsWhenASoundOfFourGigabytesMoves)
{
    // ftyp mdat moov; in the sound lies a long hole, and its last chunk below the end of all 32-bit numbers.
    const TestFolder folder;
    const QString plainPath = writeM4a(folder, u"plain.m4a"_s, u"aac"_s);
    const QByteArray plain = folder.read(u"plain.m4a"_s);
    const QByteArray sound = contentsAt(plain, {"mdat"});
    const QByteArray head = boxBytes("ftyp", contentsAt(plain, {"ftyp"}));
    const qint64 oldSoundAt = plain.indexOf("mdat") + 4;
    const qint64 soundAt = 0xffff'ffff - 100 - (static_cast<qint64>(chunkOffsets(plain).last()) - oldSoundAt);
    const QByteArray moved = withChunkOffsets(plain, [&](quint64 offset) {
        return offset - static_cast<quint64>(oldSoundAt) + static_cast<quint64>(soundAt);
    });
    const QByteArray movie = boxBytes("moov", contentsAt(moved, {"moov"}));
    const QString path = folder.path(u"long.m4a"_s);
    const auto writeAt = [](QFile &file, qint64 place, const QByteArray &bytes) {
        return file.seek(place) && file.write(bytes) == bytes.size();
    };
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(writeAt(file, 0,
                        head + bigEndian32(1) + "mdat"
                            + bigEndian64(static_cast<quint64>(soundAt + sound.size() - head.size()))));
    ASSERT_TRUE(writeAt(file, soundAt, sound + movie));
    file.close();
    const QByteArray packets = packetsOf(plainPath);
    ASSERT_EQ(packetsOf(path), packets);

    TagEditStream stream(path, TagEditStream::Access::Edit);
    const Mp4Layout layout = Mp4Layout::of(stream);
    std::optional<Mp4Movie> read = Mp4Movie::of(stream, layout);
    ASSERT_TRUE(read.has_value());
    ASSERT_EQ(Mp4Optimizer::putInOrder(stream, layout, *std::move(read)), std::nullopt);
    // The edited file, but for the hole, which would take a while to write.
    QFile result(folder.path(u"result.m4a"_s));
    ASSERT_TRUE(result.open(QIODevice::ReadWrite));
    constexpr qint64 kEnds = 1 << 20;
    ASSERT_LT(sound.size(), kEnds);
    for (const qint64 place : {qint64{0}, stream.length() - kEnds}) {
        stream.seek(place);
        const TagLib::ByteVector bytes = stream.readBlock(kEnds);
        ASSERT_TRUE(writeAt(result, place, {bytes.data(), static_cast<qsizetype>(bytes.size())}));
    }
    result.close();
    EXPECT_EQ(packetsOf(result.fileName()), packets);
    EXPECT_EQ(decodedMd5(result.fileName()), decodedMd5(plainPath));
    ASSERT_TRUE(result.open(QIODevice::ReadOnly));
    const QByteArray start = result.read(64 << 10);
    const QByteArray newMovie = start.mid(head.size(), qFromBigEndian<qint32>(start.constData() + head.size()));
    EXPECT_EQ(newMovie.mid(4, 4), QByteArray("moov"));
    EXPECT_GT(chunkOffsets(newMovie).last(), kLast32);
    EXPECT_TRUE(typesOf(contentsAt(newMovie, kSampleTablePath)).contains("co64"));
    EXPECT_FALSE(typesOf(contentsAt(newMovie, kSampleTablePath)).contains("stco"));
}
