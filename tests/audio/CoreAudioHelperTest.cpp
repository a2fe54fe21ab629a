// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CoreAudioHelper.h"

#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

#include <random>
#include <sys/stat.h>
#include <thread>

using namespace Qt::StringLiterals;
using nurv::AudioFormatObject;
using nurv::CoreAudioHelper;
using namespace nurv::test;

namespace {

void expectFormat(const QString &path, const SoundShape &shape, int bits)
{
    const std::optional<AudioFormatObject> format = CoreAudioHelper::getFormatInfo(path);
    ASSERT_TRUE(format) << path.toStdString();
    EXPECT_EQ(format->sampleRate, shape.rate) << path.toStdString();
    EXPECT_EQ(format->channels, shape.channels) << path.toStdString();
    EXPECT_EQ(format->bitsPerChannel, bits) << path.toStdString();
    EXPECT_EQ(format->totalSamples, shape.frameCount()) << path.toStdString();
}

/// Everything that this thread has read by system calls so far.
qint64 bytesReadByThisThread()
{
    QFile counts(u"/proc/thread-self/io"_s);
    EXPECT_TRUE(counts.open(QIODevice::ReadOnly));
    const QByteArray first = counts.readLine();
    EXPECT_TRUE(first.startsWith("rchar: ")) << first.constData();
    return first.mid(7).trimmed().toLongLong();
}

} // namespace

TEST(CoreAudioHelper, TellsTheFormatOfWavAndAiffFiles)
{
    const TestFolder folder;
    for (const int bits : {8, 16, 24, 32}) {
        for (const int channels : {1, 2, 6}) {
            const SoundShape shape{.rate = 48000, .bits = bits, .channels = channels, .frames = 4801};
            expectFormat(writeWav(folder.path(u"a.wav"_s), shape), shape, bits);
            expectFormat(writeAiff(folder.path(u"a.aiff"_s), shape), shape, bits);
        }
    }
    const SoundShape extensible{.rate = 192000, .bits = 24, .channels = 6, .frames = 777, .extensible = true};
    expectFormat(writeWav(folder.path(u"x.wav"_s), extensible), extensible, 24);
}

TEST(CoreAudioHelper, TellsTheFormatOfLosslessFiles)
{
    const TestFolder folder;
    const SoundShape cd{.frames = 44100 + 17};
    const SoundShape studio{.rate = 96000, .bits = 24, .channels = 1, .frames = 96001};
    expectFormat(writeByFfmpeg(folder.path(u"cd.m4a"_s), cd, {u"-c:a"_s, u"alac"_s}), cd, 16);
    expectFormat(writeByFfmpeg(folder.path(u"studio.m4a"_s), studio, {u"-c:a"_s, u"alac"_s, u"-sample_fmt"_s, u"s32p"_s}),
                 studio, 24);
    expectFormat(writeFlac(folder.path(u"cd.flac"_s), cd), cd, 16);
    expectFormat(writeFlac(folder.path(u"studio.flac"_s), studio), studio, 24);
}

TEST(CoreAudioHelper, TellsTheFormatOfLossyFilesWithoutBits)
{
    const TestFolder folder;
    const SoundShape shape{.rate = 48000, .frames = 96000};
    const auto aac = CoreAudioHelper::getFormatInfo(writeByFfmpeg(folder.path(u"a.m4a"_s), shape, {u"-c:a"_s, u"aac"_s}));
    ASSERT_TRUE(aac);
    EXPECT_EQ(aac->sampleRate, 48000);
    EXPECT_EQ(aac->channels, 2);
    EXPECT_EQ(aac->bitsPerChannel, 0);
    EXPECT_NEAR(aac->time(), 2.0, 0.05);
    const auto mp3 = CoreAudioHelper::getFormatInfo(writeByFfmpeg(folder.path(u"a.mp3"_s), shape));
    ASSERT_TRUE(mp3);
    EXPECT_EQ(mp3->sampleRate, 48000);
    EXPECT_EQ(mp3->channels, 2);
}

TEST(CoreAudioHelper, KnowsAppleLosslessFromOtherMp4Audio)
{
    const TestFolder folder;
    EXPECT_TRUE(CoreAudioHelper::isAppleLossless(writeByFfmpeg(folder.path(u"a.m4a"_s), {}, {u"-c:a"_s, u"alac"_s})));
    EXPECT_FALSE(CoreAudioHelper::isAppleLossless(writeByFfmpeg(folder.path(u"b.m4a"_s), {}, {u"-c:a"_s, u"aac"_s})));
    EXPECT_FALSE(CoreAudioHelper::isAppleLossless(writeWav(folder.path(u"c.m4a"_s))));
    EXPECT_FALSE(CoreAudioHelper::isAppleLossless(folder.write(u"d.m4a"_s, "no audio at all")));
}

TEST(CoreAudioHelper, KnowsWavAndAiffByTheirSamplesWhateverTheirNames)
{
    const TestFolder folder;
    for (const int bits : {8, 16, 24, 32}) {
        const QString wav = writeWav(folder.path(u"song.dat"_s), {.bits = bits, .frames = 100});
        EXPECT_TRUE(CoreAudioHelper::isWav(wav)) << bits;
        EXPECT_FALSE(CoreAudioHelper::isAiff(wav)) << bits;
        EXPECT_TRUE(CoreAudioHelper::isAiffOrWav(wav)) << bits;
        const QString aiff = writeAiff(folder.path(u"song"_s), {.bits = bits, .frames = 100});
        EXPECT_FALSE(CoreAudioHelper::isWav(aiff)) << bits;
        EXPECT_TRUE(CoreAudioHelper::isAiff(aiff)) << bits;
        EXPECT_TRUE(CoreAudioHelper::isAiffOrWav(aiff)) << bits;
    }
}

TEST(CoreAudioHelper, GoesByTheByteOrderOfTheSamples)
{
    const TestFolder folder;
    const QString sowt = writeByFfmpeg(folder.path(u"a.aiff"_s), {}, {u"-c:a"_s, u"pcm_s16le"_s});
    EXPECT_TRUE(CoreAudioHelper::isWav(sowt));
    EXPECT_FALSE(CoreAudioHelper::isAiff(sowt));
    EXPECT_TRUE(CoreAudioHelper::isAiffOrWav(sowt));
    const QString floating = writeByFfmpeg(folder.path(u"f.wav"_s), {}, {u"-c:a"_s, u"pcm_f32le"_s});
    EXPECT_FALSE(CoreAudioHelper::isAiffOrWav(floating));
    EXPECT_EQ(CoreAudioHelper::getFormatInfo(floating)->bitsPerChannel, 32);
    EXPECT_FALSE(CoreAudioHelper::isAiffOrWav(writeFlac(folder.path(u"a.flac"_s))));
}

TEST(CoreAudioHelper, OpensNothingButRegularFiles)
{
    const TestFolder folder;
    const QString pipe = folder.path(u"pipe.wav"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &path : {pipe, folder.path(), folder.path(u"missing.wav"_s), u"/dev/zero"_s, u"/dev/tty"_s, QString(),
                                u"http://localhost/a.wav"_s, u"concat:"_s + writeWav(folder.path(u"a.wav"_s))}) {
        EXPECT_FALSE(CoreAudioHelper::isAiffOrWav(path)) << path.toStdString();
        EXPECT_FALSE(CoreAudioHelper::getFormatInfo(path)) << path.toStdString();
    }
}

TEST(CoreAudioHelper, FollowsNoPlayList)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s));
    const QString list = folder.write(u"list.wav"_s, "#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXTINF:10,\n"
                                                         + QFile::encodeName(wav) + "\n#EXT-X-ENDLIST\n");
    EXPECT_FALSE(CoreAudioHelper::getFormatInfo(list));
    EXPECT_FALSE(CoreAudioHelper::getFormatInfo(
        folder.write(u"concat.wav"_s, "ffconcat version 1.0\nfile " + QFile::encodeName(wav) + "\n")));
}

TEST(CoreAudioHelper, SurvivesFilesThatAreCutOrDamagedAnywhere)
{
    const TestFolder folder;
    std::mt19937 random(11);
    for (const QString &source : {writeWav(folder.path(u"s.wav"_s), {.frames = 50}),
                                  writeAiff(folder.path(u"s.aiff"_s), {.frames = 50}),
                                  writeFlac(folder.path(u"s.flac"_s), {.frames = 50}),
                                  writeByFfmpeg(folder.path(u"s.m4a"_s), {.frames = 50}, {u"-c:a"_s, u"alac"_s})}) {
        QFile file(source);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray whole = file.readAll();
        for (int round = 0; round < 150; ++round) {
            QByteArray damaged = whole.first(static_cast<qsizetype>(random() % static_cast<unsigned long>(whole.size())));
            for (int hits = 0; hits < round % 4 && !damaged.isEmpty(); ++hits)
                damaged[static_cast<qsizetype>(random() % static_cast<unsigned long>(damaged.size()))] =
                    static_cast<char>(random());
            const QString path = folder.write(u"damaged"_s, damaged);
            if (const auto format = CoreAudioHelper::getFormatInfo(path)) {
                EXPECT_GE(format->totalSamples, 0);
                EXPECT_GE(format->sampleRate, 0);
                EXPECT_GE(format->channels, 0);
                EXPECT_GE(format->bitsPerChannel, 0);
            }
        }
    }
}

TEST(CoreAudioHelper, ReadsOnlyTheHeader)
{
    const TestFolder folder;
    // An hour of sound at the end of a sparse file.
    QByteArray header = wavBytes({.frames = 1000}).first(44);
    const quint32 dataSize = 3600U * 44100U * 4U;
    header.replace(40, 4, QByteArray(reinterpret_cast<const char *>(&dataSize), 4));
    const QString hour = folder.write(u"long.wav"_s, header);
    ASSERT_TRUE(QFile::resize(hour, 44 + static_cast<qint64>(dataSize)));
    const SoundShape sound{.seconds = 12.0};
    const QList<std::pair<QString, qint64>> files = {
        {hour, 3600LL * 44100},
        {writeAiff(folder.path(u"a.aiff"_s), sound), sound.frameCount()},
        {writeFlac(folder.path(u"a.flac"_s), sound), sound.frameCount()},
        // The index is the header of these, wherever it is.
        {writeByFfmpeg(folder.path(u"a.m4a"_s), sound, {u"-c:a"_s, u"alac"_s}), sound.frameCount()},
        {writeByFfmpeg(folder.path(u"b.m4a"_s), sound, {u"-c:a"_s, u"alac"_s, u"-movflags"_s, u"+faststart"_s}),
         sound.frameCount()},
    };
    for (const auto &[path, frames] : files) {
        ASSERT_GT(QFileInfo(path).size(), 1'000'000) << path.toStdString();
        const qint64 before = bytesReadByThisThread();
        ASSERT_EQ(CoreAudioHelper::getFormatInfo(path)->totalSamples, frames) << path.toStdString();
        EXPECT_LT(bytesReadByThisThread() - before, 200 * 1024) << path.toStdString();
        EXPECT_GT(bytesReadByThisThread() - before, 0);
    }
}

TEST(CoreAudioHelper, AnswersSeveralThreadsAtOnce)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.frames = 100});
    const QString alac = writeByFfmpeg(folder.path(u"a.m4a"_s), {.frames = 100}, {u"-c:a"_s, u"alac"_s});
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([&] {
            for (int round = 0; round < 25; ++round) {
                EXPECT_TRUE(CoreAudioHelper::isWav(wav));
                EXPECT_TRUE(CoreAudioHelper::isAppleLossless(alac));
            }
        });
    for (std::thread &thread : threads)
        thread.join();
}
