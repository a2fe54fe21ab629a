// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AudioFixtures.h"

#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QCryptographicHash>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

TEST(AudioFixtures, WritesWavAndAiffThatAnotherReaderUnderstands)
{
    const TestFolder folder;
    const SoundShape shapes[] = {
        {.rate = 44100, .bits = 16, .channels = 2, .frames = 4711},
        {.rate = 96000, .bits = 24, .channels = 1, .frames = 333},
        {.rate = 48000, .bits = 24, .channels = 6, .frames = 100, .extensible = true},
        {.rate = 22050, .bits = 8, .channels = 1, .frames = 51},
    };
    for (const SoundShape &shape : shapes) {
        const QString wav = writeWav(folder.path(u"a.wav"_s), shape);
        const QString aiff = writeAiff(folder.path(u"a.aiff"_s), shape);
        const QMap<QString, QString> facts = ffprobeStream(wav);
        EXPECT_EQ(facts.value(u"sample_rate"_s), QString::number(shape.rate));
        EXPECT_EQ(facts.value(u"channels"_s), QString::number(shape.channels));
        EXPECT_EQ(facts.value(u"bits_per_sample"_s), QString::number(shape.bits));
        EXPECT_EQ(facts.value(u"duration_ts"_s), QString::number(shape.frames));
        EXPECT_EQ(ffprobeStream(aiff).value(u"duration_ts"_s), QString::number(shape.frames));
        EXPECT_TRUE(sameSound(wav, aiff));
    }
}

TEST(AudioFixtures, TellsOtherSamplesApart)
{
    const TestFolder folder;
    const QString one = writeWav(folder.path(u"1.wav"_s), {.frames = 500, .seed = 1});
    const QString two = writeWav(folder.path(u"2.wav"_s), {.frames = 500, .seed = 2});
    const QString faster = writeWav(folder.path(u"3.wav"_s), {.rate = 48000, .frames = 500});
    EXPECT_FALSE(sameSound(one, two));
    EXPECT_FALSE(sameSound(one, faster));
    EXPECT_EQ(wavBytes({.frames = 500, .seed = 1}), folder.read(u"1.wav"_s));
}

TEST(AudioFixtures, HashesTheSamplesOfA32BitFileAsTheyStand)
{
    const TestFolder folder;
    const SoundShape shape{.bits = 32, .frames = 1000};
    const QString wav = writeWav(folder.path(u"a.wav"_s), shape);
    EXPECT_EQ(decodedMd5(wav), QCryptographicHash::hash(makeSamples(shape), QCryptographicHash::Md5).toHex());
}

TEST(AudioFixtures, ReadsTheTagsOfAFlacFileTwice)
{
    const TestFolder folder;
    const SoundShape shape{.frames = 2000};
    const QString flac = writeFlac(folder.path(u"sub/a.flac"_s), shape, {u"--tag=TITLE=Öl"_s, u"--tag=Artist=A"_s});
    EXPECT_EQ(metaflacTags(flac), (QStringList{u"TITLE=Öl"_s, u"Artist=A"_s}));
    EXPECT_EQ(ffprobeTags(flac).value(u"title"_s), u"Öl"_s);
    EXPECT_TRUE(sameSound(flac, writeWav(folder.path(u"a.wav"_s), shape)));
    EXPECT_TRUE(sameSound(flac, writeByFfmpeg(folder.path(u"a.tta"_s), shape)));
}

TEST(AudioFixtures, PutsChunksAroundTheData)
{
    const SoundShape shape{.channels = 1, .frames = 10};
    const QByteArray bytes = wavBytes(shape, riffChunk("odd ", "abc"), riffChunk("tail", "abcd"));
    EXPECT_EQ(bytes.mid(36, 12), QByteArray("odd \3\0\0\0abc\0", 12));
    EXPECT_TRUE(bytes.endsWith(QByteArray("tail\4\0\0\0abcd", 12)));
}

} // namespace nurv::test
