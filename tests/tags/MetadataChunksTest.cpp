// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/MetadataInventory.h"

#include "MetadataFixtures.h"
#include "support/AudioFixtures.h"
#include "TagFixtures.h"
#include "tools/shorten/ReferenceStream.h"

#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

using Tags = QMap<QString, QStringList>;

const SoundShape kShort{.seconds = 0.2};

QByteArray infoChunk(const QByteArray &chunks)
{
    return riffChunk("LIST", "INFO" + chunks);
}

/// Chunks before and behind the sound: text, chunks with odd sizes, and what does not count.
const QByteArray kBefore =
    riffChunk("JUNK", "some filler") + riffChunk("bext", QByteArray(602, 'b'))
    + infoChunk(riffChunk("INAM", "Konzert\0") + riffChunk("ITRK", "05") + riffChunk("ISFT", "Recorder 1.0"));
const QByteArray kBehind = riffChunk("cue ", QByteArray(28, 'c')) + riffChunk("LIST", "adtl" + QByteArray(7, 'l'))
                           + riffChunk("odd ", "seven b") + riffChunk("odd ", "eight bt")
                           + riffChunk("id3 ", id3Tag(4, id3Frame("TPE1", "\3Band"))) + riffChunk("PEAK", "12345678");
const Tags kTags{{u"TITLE"_s, {u"Konzert"_s}}, {u"TRACKNUMBER"_s, {u"5"_s}}, {u"ARTIST"_s, {u"Band"_s}}};
const QStringList kChunks{u"adtl"_s, u"bext"_s, u"cue"_s, u"odd"_s};

class MetadataChunks : public ::testing::Test {
protected:
    const TestFolder folder;

    [[nodiscard]] MetadataInventory ofBytes(const QByteArray &bytes) const
    {
        return MetadataInventory::of(folder.write(u"bytes"_s, bytes));
    }
    [[nodiscard]] QString wav(const SoundShape &shape = kShort) const
    {
        return folder.write(u"a.wav"_s, wavBytes(shape, kBefore, kBehind));
    }
};

void expectSame(const MetadataInventory &left, const MetadataInventory &right)
{
    EXPECT_EQ(left.tags, right.tags);
    EXPECT_EQ(left.pictures, right.pictures);
    EXPECT_EQ(left.foreignChunks.keys(), right.foreignChunks.keys());
    EXPECT_EQ(left.foreignChunks, right.foreignChunks);
}

} // namespace

TEST_F(MetadataChunks, ReadsTheChunksOfAWavFile)
{
    const MetadataInventory inventory = MetadataInventory::of(wav());
    EXPECT_EQ(inventory.tags, kTags);
    EXPECT_EQ(inventory.foreignChunks.keys(), kChunks);
    EXPECT_EQ(inventory.foreignChunks.value(u"odd"_s).size(), 2);
}

TEST_F(MetadataChunks, ReadsWhatFfmpegWritesIntoWavFiles)
{
    for (const QString &rf64 : {u"never"_s, u"always"_s}) {
        SCOPED_TRACE(qPrintable(rf64));
        const QString path =
            writeByFfmpeg(folder.path(u"a.wav"_s), kShort,
                          {u"-rf64"_s, rf64, u"-write_bext"_s, u"1"_s, u"-metadata"_s, u"title=Änderung"_s,
                           u"-metadata"_s, u"artist=Band"_s, u"-metadata"_s, u"date=1977-05-08"_s, u"-metadata"_s,
                           u"description=Take one"_s, u"-metadata"_s, u"track=5"_s});
        const MetadataInventory inventory = MetadataInventory::of(path);
        EXPECT_EQ(inventory.foreignChunks.keys(), QStringList{u"bext"_s});
        EXPECT_EQ(inventory.tags.value(u"TITLE"_s), QStringList{u"Änderung"_s});
        EXPECT_EQ(inventory.tags.value(u"ARTIST"_s), QStringList{u"Band"_s});
        EXPECT_EQ(inventory.tags.value(u"DATE"_s), QStringList{u"1977-05-08"_s});
        EXPECT_EQ(inventory.tags.value(u"TRACKNUMBER"_s), QStringList{u"5"_s});
    }
}

TEST_F(MetadataChunks, TellsChunksApartByTheirBytes)
{
    const MetadataInventory one = ofBytes(wavBytes(kShort, riffChunk("bext", "one")));
    const MetadataInventory two = ofBytes(wavBytes(kShort, riffChunk("bext", "two")));
    const MetadataInventory behind = ofBytes(wavBytes(kShort, {}, riffChunk("bext", "one")));
    EXPECT_NE(one.foreignChunks, two.foreignChunks);
    EXPECT_EQ(one.foreignChunks, behind.foreignChunks);
}

TEST_F(MetadataChunks, ReadsTheTextsAndChunksOfAnAiffFile)
{
    const MetadataInventory inventory = ofBytes(withAiffChunks(
        aiffBytes(kShort), aiffChunk("NAME", "Konzert") + aiffChunk("AUTH", "B\xe4nd") + aiffChunk("(c) ", "1977")
                               + aiffChunk("ANNO", "one") + aiffChunk("ANNO", "two") + aiffChunk("MARK", "marks")
                               + aiffChunk("APPL", "appl") + aiffChunk("zero", QByteArray(9, '\0'))));
    EXPECT_EQ(inventory.tags, (Tags{{u"TITLE"_s, {u"Konzert"_s}},
                                    {u"ARTIST"_s, {u"Bänd"_s}},
                                    {u"COPYRIGHT"_s, {u"1977"_s}},
                                    {u"COMMENT"_s, {u"one"_s, u"two"_s}}}));
    EXPECT_EQ(inventory.foreignChunks.keys(), (QStringList{u"APPL"_s, u"MARK"_s}));
}

TEST_F(MetadataChunks, ReadsTheCommentsOfSoxButNotItsStamp)
{
    const QString wav = writeWav(folder.path(u"plain.wav"_s), kShort);
    for (const QString &name : {u"a.aiff"_s, u"a.flac"_s}) {
        SCOPED_TRACE(qPrintable(name));
        run(u"sox"_s, {wav, u"--comment"_s, u"Note"_s, folder.path(name)});
        expectSame(MetadataInventory::of(folder.path(name)),
                   {.tags = {{u"COMMENT"_s, {u"Note"_s}}}, .pictures = {}, .foreignChunks = {}});
        run(u"sox"_s, {wav, folder.path(name)});
        expectSame(MetadataInventory::of(folder.path(name)), {});
    }
}

TEST_F(MetadataChunks, TakesADamagedId3ChunkByItsBytes)
{
    const MetadataInventory inventory = ofBytes(wavBytes(kShort, {}, riffChunk("id3 ", "ID3\x03xyz")));
    EXPECT_EQ(inventory.tags, Tags());
    EXPECT_EQ(inventory.foreignChunks.keys(), QStringList{u"id3"_s});
}

// Sizes that lie

TEST_F(MetadataChunks, TakesASoundOfUnknownSizeToReachTheEnd)
{
    QByteArray bytes = wavBytes(kShort, riffChunk("bext", "b"));
    const qsizetype size = bytes.indexOf("data") + 4;
    for (const quint32 lie : {0U, 0xFFFFFFFFU, 0x7fffffffU}) {
        SCOPED_TRACE(lie);
        qToLittleEndian(lie, bytes.data() + size);
        EXPECT_EQ(ofBytes(bytes).foreignChunks.keys(), QStringList{u"bext"_s});
    }
}

TEST_F(MetadataChunks, ReadsTheChunksBehindASoundWithoutFrames)
{
    EXPECT_EQ(ofBytes(wavBytes({.seconds = 0}, {}, riffChunk("bext", "b"))).foreignChunks.keys(),
              QStringList{u"bext"_s});
}

TEST_F(MetadataChunks, ReadsChunksBehindAMissingPadByte)
{
    QByteArray bytes = wavBytes(kShort, {}, riffChunk("odd ", "seven b") + riffChunk("bext", "b"));
    bytes.remove(bytes.indexOf("seven b") + 7, 1);
    EXPECT_EQ(ofBytes(bytes).foreignChunks.keys(), (QStringList{u"bext"_s, u"odd"_s}));
}

TEST_F(MetadataChunks, KnowsThatThereIsMoreBehindTheLastChunk)
{
    EXPECT_EQ(ofBytes(wavBytes(kShort) + "\1\2more").foreignChunks.keys(), QStringList{u""_s});
    EXPECT_TRUE(ofBytes(wavBytes(kShort) + QByteArray(70'000, '\0')).foreignChunks.isEmpty());
    EXPECT_EQ(ofBytes(wavBytes(kShort) + id3v1Tag("Song", "", "", "", "", 0, 255)).tags,
              (Tags{{u"TITLE"_s, {u"Song"_s}}}));
    // A sound that is longer than its chunk.
    QByteArray cut = wavBytes(kShort);
    qToLittleEndian(quint32{400}, cut.data() + 40);
    EXPECT_EQ(ofBytes(cut).foreignChunks.keys(), QStringList{u""_s});
}

// Stored in files of other kinds

TEST_F(MetadataChunks, FindsWhatFlacKeepsOfAWavFile)
{
    const QString source = wav();
    run(u"flac"_s, {u"-s"_s, u"--keep-foreign-metadata"_s, source, u"-o"_s, folder.path(u"kept.flac"_s)});
    run(u"flac"_s, {u"-s"_s, source, u"-o"_s, folder.path(u"lost.flac"_s)});
    run(u"flac"_s, {u"-s"_s, u"-d"_s, u"--keep-foreign-metadata"_s, folder.path(u"kept.flac"_s), u"-o"_s,
                    folder.path(u"back.wav"_s)});
    const MetadataInventory expected = MetadataInventory::of(source);
    expectSame(MetadataInventory::of(folder.path(u"kept.flac"_s)), expected);
    expectSame(MetadataInventory::of(folder.path(u"back.wav"_s)), expected);
    expectSame(MetadataInventory::of(folder.path(u"lost.flac"_s)), {});
}

TEST_F(MetadataChunks, FindsWhatFlacKeepsOfRf64AndAiffFiles)
{
    const QString rf64 =
        writeByFfmpeg(folder.path(u"a.wav"_s), kShort,
                      {u"-rf64"_s, u"always"_s, u"-write_bext"_s, u"1"_s, u"-metadata"_s, u"title=Song"_s});
    const QString aiff =
        folder.write(u"a.aiff"_s, withAiffChunks(aiffBytes({.bits = 8, .channels = 1, .frames = 4411}),
                                                 aiffChunk("NAME", "Song") + aiffChunk("MARK", "marks")
                                                     + aiffChunk("ID3 ", id3Tag(4, id3Frame("TPE1", "\3Band")))));
    for (const QString &source : {rf64, aiff}) {
        SCOPED_TRACE(qPrintable(source));
        const QString kept = source + u".flac"_s;
        run(u"flac"_s, {u"-s"_s, u"--keep-foreign-metadata"_s, source, u"-o"_s, kept});
        const MetadataInventory expected = MetadataInventory::of(source);
        EXPECT_FALSE(expected.foreignChunks.isEmpty());
        expectSame(MetadataInventory::of(kept), expected);
    }
}

TEST_F(MetadataChunks, FindsWhatTheOtherKindsStore)
{
    const QList<SoundShape> shapes{kShort, {.bits = 8, .channels = 1, .frames = 4411}, {.channels = 1, .frames = 4411}};
    for (const SoundShape &shape : shapes) {
        SCOPED_TRACE(shape.bits);
        const QString source = wav(shape);
        const MetadataInventory expected = MetadataInventory::of(source);
        EXPECT_EQ(expected.foreignChunks.keys(), kChunks);
        run(u"wavpack"_s, {u"-q"_s, u"-y"_s, source, u"-o"_s, folder.path(u"a.wv"_s)});
        expectSame(MetadataInventory::of(folder.path(u"a.wv"_s)), expected);
        expectSame(MetadataInventory::of(encodeMonkeysAudio(source, folder.path(u"a.ape"_s))), expected);
        folder.remove(u"a.ape"_s);
        expectSame(MetadataInventory::of(encodeShorten(source, folder.path(u"a.shn"_s))), expected);
        expectSame(MetadataInventory::of(encodeTta(source, folder.path(u"a.tta"_s))), {});
    }
}

TEST_F(MetadataChunks, FindsWhatFormerMonkeysAudioFilesStore)
{
    const QByteArray wav = wavBytes(kShort, kBefore, kBehind);
    const qsizetype sound = wav.indexOf("data") + 8;
    const QByteArray before = wav.left(sound);
    const QByteArray behind = wav.mid(sound + makeSamples(kShort).size());
    const auto number = [](auto value) {
        const auto little = qToLittleEndian(value);
        return QByteArray(reinterpret_cast<const char *>(&little), sizeof little);
    };
    // Version 3.97 with a peak level and a count of seek elements, which stand before the stored header.
    const QByteArray file = "MAC " + number(quint16{3970}) + number(quint16{2000}) + number(quint16{4 + 16})
                            + number(quint16{2}) + number(quint32{44100}) + number(static_cast<quint32>(before.size()))
                            + number(static_cast<quint32>(behind.size())) + number(quint32{1}) + number(quint32{8820})
                            + number(quint32{32767}) + number(quint32{1}) + before + number(quint32{700})
                            + QByteArray(900, 's') + behind;
    expectSame(ofBytes(file + id3v1Tag("", "Band", "", "", "", 0, 255)),
               MetadataInventory::of(folder.write(u"a.wav"_s, wav)));
}

TEST_F(MetadataChunks, FindsChunksBehindAPartOfAFrame)
{
    // The sound has half a frame too much, and an odd number of bytes.
    QByteArray bytes = wavBytes({.frames = 1000}, {}, riffChunk("bext", "behind"));
    const qsizetype size = bytes.indexOf("data") + 4;
    qToLittleEndian(quint32{4003}, bytes.data() + size);
    bytes.insert(bytes.indexOf("bext"), QByteArray("xyz\0", 4));
    qToLittleEndian(static_cast<quint32>(bytes.size() - 8), bytes.data() + 4);
    const QString source = folder.write(u"a.wav"_s, bytes);
    EXPECT_EQ(MetadataInventory::of(source).foreignChunks.keys(), QStringList{u"bext"_s});
    EXPECT_EQ(MetadataInventory::of(encodeShorten(source, folder.path(u"a.shn"_s))).foreignChunks.keys(),
              QStringList{u"bext"_s});
    EXPECT_EQ(MetadataInventory::of(encodeMonkeysAudio(source, folder.path(u"a.ape"_s))).foreignChunks.keys(),
              QStringList{u"bext"_s});
    run(u"wavpack"_s, {u"-q"_s, u"-y"_s, source, u"-o"_s, folder.path(u"a.wv"_s)});
    EXPECT_EQ(MetadataInventory::of(folder.path(u"a.wv"_s)).foreignChunks.keys(), QStringList{u"bext"_s});
}

TEST_F(MetadataChunks, FindsWhatWavPackKeepsOfAnAiffFile)
{
    const QString source = folder.write(
        u"a.aiff"_s, withAiffChunks(aiffBytes(kShort), aiffChunk("NAME", "Song") + aiffChunk("MARK", "marks")));
    run(u"wavpack"_s, {u"-q"_s, u"-y"_s, source, u"-o"_s, folder.path(u"a.wv"_s)});
    expectSame(MetadataInventory::of(folder.path(u"a.wv"_s)), MetadataInventory::of(source));
}

TEST_F(MetadataChunks, ReadsShortenStreamsOfManyForms)
{
    using namespace nurv::shorten::test;
    const QByteArray behind = riffChunk("bext", "behind");
    const MetadataInventory expected = ofBytes(wavBytes(kShort, {}, behind));
    const QList<ReferenceStream::Settings> forms{{.version = 0},
                                                 {.version = 1, .maxOrder = 3},
                                                 {.version = 2, .blockSize = 37, .maxOrder = 3, .meanCount = 0},
                                                 {.version = 3, .blockSize = 1024, .skipped = {}}};
    for (const ReferenceStream::Settings &settings : forms) {
        for (const unsigned bits : {8U, 16U}) {
            SCOPED_TRACE(testing::Message() << "version " << settings.version << ", " << bits << " bits");
            const Wave wave{.sound = Sound::Music, .frames = 3000, .channels = 2, .bits = bits};
            const Bytes stream = mixedStream(
                wave, settings, true,
                {reinterpret_cast<const uint8_t *>(behind.constData()), static_cast<std::size_t>(behind.size())});
            expectSame(ofBytes(QByteArray(reinterpret_cast<const char *>(stream.data()),
                                          static_cast<qsizetype>(stream.size()))),
                       expected);
        }
    }
}
