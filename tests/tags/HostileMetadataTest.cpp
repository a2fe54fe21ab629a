// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/MetadataInventory.h"

#include "MetadataFixtures.h"
#include "Mp4Fixtures.h"
#include "support/AudioFixtures.h"
#include "TagFixtures.h"

#include <QDirIterator>
#include <QFile>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

const SoundShape kShort{.seconds = 0.1};

class HostileMetadata : public ::testing::Test {
protected:
    const TestFolder folder;

    [[nodiscard]] std::optional<QString> reasonFor(const QByteArray &bytes) const
    {
        return failureOf([&] { static_cast<void>(MetadataInventory::of(folder.write(u"hostile"_s, bytes))); });
    }

    /// Reads or fails, whatever the bytes are.
    void survive(const QByteArray &bytes) const { static_cast<void>(reasonFor(bytes)); }

    /// A file of each kind with tags of each kind.
    [[nodiscard]] QByteArrayList files() const
    {
        const QString cover = folder.write(u"cover.png"_s, encodedPicture(noisePicture(8, 8), "png"));
        const QByteArray chunks =
            riffChunk("LIST", "INFO" + riffChunk("INAM", "Song")) + riffChunk("bext", "bext")
            + riffChunk("id3 ", id3Tag(3, id3Frame("TIT2", "\3Song") + id3Frame("COMM", "\3eng\3a")));
        const QString wav = folder.write(u"a.wav"_s, wavBytes(kShort, chunks, chunks));
        const QString aiff = folder.write(
            u"a.aiff"_s, withAiffChunks(aiffBytes(kShort),
                                        aiffChunk("NAME", "Song")
                                            + aiffChunk("COMT", QByteArray::fromHex("0001000000000000000441414141"))));
        const QString wavPack = folder.path(u"a.wv"_s);
        run(u"wavpack"_s, {u"-q"_s, wav, u"-o"_s, wavPack});
        addWavPackTags(wavPack, {{u"Title"_s, u"Song"_s}}, cover);
        const QString flac = folder.path(u"a.flac"_s);
        run(u"flac"_s, {u"-s"_s, u"--keep-foreign-metadata"_s, u"-T"_s, u"TITLE=Song"_s, u"--picture="_s + cover, wav,
                        u"-o"_s, flac});
        const QString ape = encodeMonkeysAudio(wav, folder.path(u"a.ape"_s));
        copyApeTag(wavPack, ape);
        const QString shorten = encodeShorten(wav, folder.path(u"a.shn"_s));
        const QString mp4 =
            addMp4Tags(writeM4a(folder, u"a.m4a"_s), {{u"--title"_s, u"Song"_s}, {u"--artwork"_s, cover}});
        QByteArrayList all;
        for (const QString &path : {wav, aiff, wavPack, flac, ape, shorten, mp4})
            all.append(folder.read(path.section(u'/', -1)));
        all.append(id3Tag(4, id3Frame("TIT2", "\3Song")) + "TTA1" + QByteArray(50, 'x')
                   + id3v1Tag("a", "b", "c", "1977", "d", 1, 2));
        return all;
    }
};

} // namespace

TEST_F(HostileMetadata, SurvivesFilesCutAtManyPlaces)
{
    for (const QByteArray &whole : files()) {
        EXPECT_EQ(reasonFor(whole), std::nullopt);
        for (qsizetype length = 0; length < whole.size(); length += 1 + length / 20)
            survive(whole.left(length));
        for (qsizetype cut = 1; cut < 600 && cut < whole.size(); cut += 7)
            survive(whole.left(whole.size() - cut));
    }
}

TEST_F(HostileMetadata, SurvivesFilesWithWrongBytes)
{
    std::minstd_rand random(7);
    for (const QByteArray &whole : files()) {
        for (int round = 0; round < 300; ++round) {
            QByteArray ruined = whole;
            for (int i = 0; i < 4; ++i) {
                const auto distance = static_cast<qsizetype>(random() % 1200);
                const qsizetype place = std::clamp<qsizetype>(
                    (round & 1) != 0 ? distance : ruined.size() - 1 - distance, 0, ruined.size() - 1);
                ruined[place] = static_cast<char>((random() & 1U) != 0 ? 0xff : random() & 0xffU);
            }
            survive(ruined);
        }
    }
}

TEST_F(HostileMetadata, SurvivesTheCorpusOfTheDecoders)
{
    int count = 0;
    QDirIterator files(QStringLiteral(NURV_TOOL_TESTS), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (!path.contains(u"/corpus/"_s))
            continue;
        static_cast<void>(failureOf([&] { static_cast<void>(MetadataInventory::of(path)); }));
        ++count;
    }
    EXPECT_GT(count, 50);
}

TEST_F(HostileMetadata, RefusesMoreEntriesThanASoundFileHas)
{
    const QByteArray emptyChunks = QByteArray("abcd\0\0\0\0", 8).repeated(20'000);
    EXPECT_EQ(reasonFor(wavBytes(kShort, {}, emptyChunks)), u"it has more than 10000 chunks"_s);
    QByteArray fields;
    for (int i = 0; i < 20'000; ++i)
        fields += riffChunk("INAM", QByteArray::number(i));
    EXPECT_EQ(reasonFor(wavBytes(kShort, {}, riffChunk("LIST", "INFO" + fields))),
              u"they have more than 10000 parts"_s);
}

TEST_F(HostileMetadata, RefusesMoreBytesThanTagsHave)
{
    // Blocks of 16 MiB each in a file that is a hole for the most part.
    const QString path = folder.write(u"a.flac"_s, "fLaC");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    for (qint64 block = 0; block < 10; ++block) {
        file.seek(4 + block * (4 + 0xffffff));
        file.write(QByteArray::fromHex(block == 9 ? "86ffffff" : "06ffffff"));
    }
    file.resize(4 + 10 * (4 + 0xffffff));
    file.close();
    EXPECT_EQ(failureOf([&] { static_cast<void>(MetadataInventory::of(path)); }), u"they have more than 128 MiB"_s);
}

TEST_F(HostileMetadata, RefusesSizesBeyondTheFile)
{
    EXPECT_EQ(reasonFor(QByteArray("ID3\4\0\0\x7f\x7f\x7f\x7f", 10) + QByteArray(100, 'x')),
              u"it breaks off in its tags"_s);
    EXPECT_EQ(reasonFor("fLaC" + QByteArray::fromHex("84ffffff") + QByteArray(100, 'x')),
              u"its FLAC metadata is damaged"_s);
    EXPECT_EQ(reasonFor("fLaC"
                        + QByteArray::fromHex("84000010"
                                              "ffffffff")
                        + QByteArray(100, 'x')),
              u"its FLAC metadata is damaged"_s);
    EXPECT_EQ(reasonFor("wvpk" + QByteArray::fromHex("ffffff7f") + QByteArray(100, 'x')),
              u"its WavPack blocks are damaged"_s);
    QByteArray ape = folder.read(writeApe(folder, u"a.ape"_s).section(u'/', -1));
    ape.replace(20, 4, "\xff\xff\xff\x7f");
    EXPECT_EQ(reasonFor(ape), u"its Monkey's Audio header is damaged"_s);
}

TEST_F(HostileMetadata, SurvivesBoxesInBoxes)
{
    const auto nested = [](const QByteArray &type) {
        QByteArray heads;
        for (quint32 left = 400'000; left > 0; --left)
            heads += bigEndian32(8 * left) + type;
        return heads;
    };
    writeM4a(folder, u"a.m4a"_s);
    const QByteArray file = folder.read(u"a.m4a"_s);
    for (const QByteArrayList &path : QList<QByteArrayList>{
             {"moov", "udta", "meta", "ilst"}, {"moov", "udta"}, {"moov"}, {"moov", "trak", "mdia"}}) {
        for (const char *type : {"udta", "meta", "data", "trak", "moov"})
            survive(edited(file, path, [&](const QByteArray &contents) { return contents + nested(type); }));
    }
}
