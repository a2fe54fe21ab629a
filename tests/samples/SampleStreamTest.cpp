// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/SampleStream.h"

#include "SampleFixtures.h"
#include "support/TestProgram.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <ostream>

#include <sys/stat.h>

extern "C" {
#include <libavcodec/avcodec.h>
}

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using namespace test;

struct SampleStreamTest : ::testing::Test {
    TestFolder folder;

    void expectTheSamplesOf(const QString &kind, const SoundShape &shape) const
    {
        SCOPED_TRACE(::testing::Message() << qPrintable(kind) << ", " << shape.bits << " bits, " << shape.channels
                                          << " channels, " << shape.rate << " Hz");
        const Decoded decoded = decode(makeSound(folder, kind, shape));
        EXPECT_EQ(decoded.refusal, QString());
        EXPECT_EQ(decoded.complaint, QString());
        EXPECT_EQ(decoded.format, (SampleFormat{shape.rate, shape.channels, shape.bits, false}));
        EXPECT_EQ(decoded.declaredFrames, shape.frameCount());
        EXPECT_TRUE(decoded.isLossless);
        EXPECT_TRUE(decoded.samples == expectedSamples(shape)) << decoded.frames() << " frames";
    }
};

struct Row {
    QString kind;
    std::vector<int> bits;
    std::vector<int> channels;
};

void PrintTo(const Row &row, std::ostream *out)
{
    *out << qPrintable(row.kind);
}

struct EveryFormat : SampleStreamTest, ::testing::WithParamInterface<Row> {};

TEST_P(EveryFormat, DecodesToWhatWasEncoded)
{
    for (const int bits : GetParam().bits) {
        for (const int channels : GetParam().channels) {
            for (const int rate : {44100, 96000})
                expectTheSamplesOf(GetParam().kind,
                                   {.rate = rate, .bits = bits, .channels = channels, .frames = 10'007});
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Samples, EveryFormat,
    ::testing::Values(Row{u"wav"_s, {8, 16, 24, 32}, {1, 2, 6}}, Row{u"wavx"_s, {8, 16, 24, 32}, {1, 2, 6}},
                      Row{u"aiff"_s, {8, 16, 24, 32}, {1, 2, 6}}, Row{u"aifc"_s, {8, 16, 24, 32}, {1, 2, 6}},
                      Row{u"sowt"_s, {16}, {1, 2, 6}}, Row{u"flac"_s, {8, 16, 24}, {1, 2, 6}},
                      Row{u"flac-ffmpeg"_s, {16, 24}, {1, 2, 6}}, Row{u"wv"_s, {8, 16, 24, 32}, {1, 2, 6}},
                      Row{u"wv-ffmpeg"_s, {8, 16, 32}, {1, 2, 6}}, Row{u"tta"_s, {8, 16, 24}, {1, 2, 6}},
                      Row{u"tta-ffmpeg"_s, {8, 16, 24}, {1, 2, 6}}, Row{u"ape1000"_s, {8, 16, 24}, {1, 2}},
                      Row{u"ape2000"_s, {8, 16, 24}, {1, 2}}, Row{u"ape3000"_s, {8, 16, 24}, {1, 2}},
                      Row{u"ape4000"_s, {8, 16, 24}, {1, 2}}, Row{u"ape5000"_s, {8, 16, 24}, {1, 2}},
                      Row{u"shn"_s, {8, 16}, {1, 2, 6}}, Row{u"m4a"_s, {16, 24}, {1, 2, 6}}),
    [](const auto &row) {
        QString name = row.param.kind;
        return name.remove(u'-').toStdString();
    });

TEST_F(SampleStreamTest, DecodesTheSameInPiecesOfAnySize)
{
    const SoundShape shape{.frames = 50'001};
    for (const QString &kind : {u"wav"_s, u"flac"_s, u"wv"_s, u"tta"_s, u"ape2000"_s, u"shn"_s, u"m4a"_s}) {
        const QString path = makeSound(folder, kind, shape);
        for (const std::size_t frames : {1UL, 4096UL, 1'000'000UL})
            EXPECT_TRUE(decode(path, frames).samples == expectedSamples(shape)) << qPrintable(kind) << frames;
    }
}

/// Loud noise, where sums of 32 bits wrap around.
QByteArray noise(qsizetype size)
{
    QByteArray bytes(size, '\0');
    std::uint32_t state = 1;
    for (char &byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

TEST_F(SampleStreamTest, DecodesLoudNoiseOf24BitsAtEveryLevelOfMonkeysAudio)
{
    const SoundShape shape{.bits = 24, .frames = 20'000};
    QByteArray wav = wavBytes(shape);
    wav = wav.left(44) + noise(wav.size() - 44);
    const QString source = folder.write(u"noise.wav"_s, wav);
    const std::vector<std::int32_t> samples = decode(source).samples;
    for (const int level : {1000, 2000, 3000, 4000, 5000}) {
        const QString path = folder.path(u"noise.ape"_s);
        runOrFail(bundled(u"mac"_s), {source, path, u"-c"_s + QString::number(level)});
        const Decoded decoded = decode(path);
        EXPECT_EQ(decoded.complaint, QString()) << level;
        EXPECT_TRUE(decoded.samples == samples) << level;
    }
}

TEST_F(SampleStreamTest, DecodesFloatsAsTheirBits)
{
    const SoundShape shape{.bits = 24, .channels = 6, .frames = 5'000};
    const QString wav = makeSound(folder, u"wav"_s, shape);
    std::vector<std::int32_t> expected = expectedSamples(shape);
    for (std::int32_t &sample : expected)
        sample = std::bit_cast<std::int32_t>(std::ldexp(static_cast<float>(sample), -31));
    const QString floats = folder.path(u"float.wav"_s);
    runOrFail(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, wav, u"-c:a"_s, u"pcm_f32le"_s, floats});
    const QString aifc = folder.path(u"float.aifc"_s);
    runOrFail(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, wav, u"-c:a"_s, u"pcm_f32be"_s, u"-f"_s, u"aiff"_s, aifc});
    const QString wavpack = folder.path(u"float.wv"_s);
    runOrFail(u"wavpack"_s, {u"-q"_s, floats, u"-o"_s, wavpack});
    for (const QString &path : {floats, aifc, wavpack}) {
        const Decoded decoded = decode(path);
        EXPECT_EQ(decoded.refusal + decoded.complaint, QString()) << qPrintable(path);
        EXPECT_EQ(decoded.format, (SampleFormat{44100, 6, 32, true})) << qPrintable(path);
        EXPECT_TRUE(decoded.samples == expected) << qPrintable(path);
    }
}

TEST_F(SampleStreamTest, RefusesFloatsOf64Bits)
{
    const QString wav = makeSound(folder, u"wav"_s, {});
    for (const QString &name : {u"f64le.wav"_s, u"f64be.aiff"_s}) {
        const QString path = folder.path(name);
        runOrFail(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, wav, u"-c:a"_s, u"pcm_"_s + name.left(5), path});
        EXPECT_EQ(decode(path).refusal,
                  u"its samples are floating-point numbers of 64 bits, which nothing here compares"_s);
    }
}

TEST_F(SampleStreamTest, TellsLossyFilesFromLosslessOnes)
{
    const SoundShape shape{.frames = 44'100};
    const QString wav = makeSound(folder, u"wav"_s, shape);
    for (const QString &name : {u"a.mp3"_s, u"a.ogg"_s, u"a.opus"_s, u"a.ac3"_s, u"aac.m4a"_s, u"adts.aac"_s}) {
        const Decoded decoded = decode(writeByFfmpeg(folder.path(name), {.rate = 48000, .frames = 48'000}));
        EXPECT_EQ(decoded.refusal + decoded.complaint, QString()) << qPrintable(name);
        EXPECT_FALSE(decoded.isLossless) << qPrintable(name);
        EXPECT_NEAR(static_cast<double>(decoded.frames()), 48'000.0, 5'000.0) << qPrintable(name);
    }
    for (const QString &codec : {u"ac3"_s, u"libopus"_s, u"libmp3lame"_s}) {
        const QString path = writeByFfmpeg(folder.path(u"lossy.mp4"_s), {.rate = 48000}, {u"-c:a"_s, codec});
        EXPECT_FALSE(decode(path).isLossless) << qPrintable(codec);
    }
    const QString hybrid = folder.path(u"hybrid.wv"_s);
    runOrFail(u"wavpack"_s, {u"-q"_s, u"-b256"_s, wav, u"-o"_s, hybrid});
    EXPECT_FALSE(decode(hybrid).isLossless);
    runOrFail(u"wavpack"_s, {u"-q"_s, u"-y"_s, u"-b256"_s, u"-c"_s, wav, u"-o"_s, hybrid});
    EXPECT_FALSE(decode(hybrid).isLossless) << "the correction file is not read";
}

TEST_F(SampleStreamTest, PassesOverTagsAroundTheSound)
{
    const SoundShape shape{.frames = 9'000};
    const QByteArray front = QByteArray::fromHex("49443304000000000014") + QByteArray(20, '\0');
    const QByteArray behind = "TAG" + QByteArray(125, ' ');
    QByteArray apeTag =
        "APETAGEX" + little32(2000) + little32(32 + 11) + little32(1) + little32(0x80000000) + QByteArray(8, '\0');
    // The head says that it is one; the foot that there is one.
    const QByteArray foot = patched(apeTag, 20, little32(0x80000000));
    apeTag = patched(apeTag, 20, little32(0xA0000000)) + little32(1) + little32(0) + "K" + '\0' + "v" + foot;
    for (const QString &kind : {u"flac"_s, u"ape2000"_s, u"tta"_s, u"shn"_s}) {
        const QString plain = makeSound(folder, kind, shape);
        folder.write(u"tagged"_s, front + folder.read(u"sound."_s + kind));
        EXPECT_TRUE(decode(folder.path(u"tagged"_s)).samples == expectedSamples(shape)) << qPrintable(kind);
        EXPECT_EQ(decode(folder.path(u"tagged"_s)).complaint, QString()) << qPrintable(kind);
    }
    for (const QString &kind : {u"flac"_s, u"ape2000"_s, u"tta"_s, u"shn"_s, u"wv"_s, u"wav"_s}) {
        const QString plain = makeSound(folder, kind, shape);
        for (const QByteArray &tag : {behind, apeTag, apeTag + behind}) {
            const Decoded decoded = decode(folder.write(u"tagged"_s, folder.read(u"sound."_s + kind) + tag));
            EXPECT_EQ(decoded.complaint, QString()) << qPrintable(kind) << tag.size();
            EXPECT_TRUE(decoded.samples == expectedSamples(shape)) << qPrintable(kind) << tag.size();
        }
    }
}

TEST_F(SampleStreamTest, TellsTheBitsThatCountOfWiderSamples)
{
    const SoundShape shape{.bits = 24, .frames = 5'000, .extensible = true};
    QByteArray wav = wavBytes(shape);
    // The valid bits stand behind the size of what extends the format.
    wav = patched(wav, wav.indexOf("fmt ") + 8 + 18, QByteArray("\x14\0", 2));
    for (qsizetype at = wav.indexOf("data") + 8; at < wav.size(); at += 3)
        wav[at] = static_cast<char>(wav[at] & '\xF0');
    const QString source = folder.write(u"20.wav"_s, wav);
    const QString flac = folder.path(u"20.flac"_s);
    runOrFail(u"flac"_s, {u"--silent"_s, u"-o"_s, flac, source});
    const QString wavpack = folder.path(u"20.wv"_s);
    runOrFail(u"wavpack"_s, {u"-q"_s, source, u"-o"_s, wavpack});
    const Decoded expected = decode(source);
    for (const QString &path : {source, flac, wavpack}) {
        const Decoded decoded = decode(path);
        EXPECT_EQ(decoded.complaint, QString()) << qPrintable(path);
        EXPECT_EQ(decoded.format, (SampleFormat{44100, 2, 20, false})) << qPrintable(path);
        EXPECT_TRUE(decoded.samples == expected.samples) << qPrintable(path);
    }
}

TEST_F(SampleStreamTest, DecodesFlacInOtherContainers)
{
    const SoundShape shape{.frames = 20'000};
    const QString wav = makeSound(folder, u"wav"_s, shape);
    const QString ogg = folder.path(u"a.oga"_s);
    runOrFail(u"flac"_s, {u"--silent"_s, u"--ogg"_s, u"-o"_s, ogg, wav});
    for (const QString &path :
         {ogg, writeByFfmpeg(folder.path(u"a.mp4"_s), shape, {u"-c:a"_s, u"flac"_s, u"-strict"_s, u"-2"_s})}) {
        const Decoded decoded = decode(path);
        EXPECT_EQ(decoded.complaint, QString()) << qPrintable(path);
        EXPECT_TRUE(decoded.isLossless) << qPrintable(path);
        EXPECT_EQ(decoded.declaredFrames, 20'000) << qPrintable(path);
        EXPECT_TRUE(decoded.samples == expectedSamples(shape)) << qPrintable(path);
    }
}

TEST_F(SampleStreamTest, SaysSoWhereNoDecoderIsAtHand)
{
    makeSound(folder, u"tta"_s, {.channels = 5, .frames = 9'000});
    EXPECT_EQ(decode(folder.path(u"sound.tta"_s)).refusal, u"the decoder knows no TTA files of 5 channels"_s);
}

TEST_F(SampleStreamTest, DecodesFlacOf32BitsWhereTheDecoderKnowsThem)
{
    const SoundShape shape{.bits = 32, .frames = 9'000};
    const Decoded decoded = decode(makeSound(folder, u"flac"_s, shape));
    const bool isKnown = avcodec_version() >= AV_VERSION_INT(60, 0, 0); // from FFmpeg 6 on
    if (isKnown)
        EXPECT_TRUE(decoded.samples == expectedSamples(shape)) << decoded;
    else
        EXPECT_EQ(decoded.refusal, u"its samples have 32 bits, and the decoder knows FLAC of up to 24"_s);
    EXPECT_EQ(decoded.complaint, QString());
}

TEST_F(SampleStreamTest, RefusesWhatIsNoSoundFile)
{
    const QString unknown = u"it is no sound file of a kind that can be decoded here"_s;
    EXPECT_EQ(decode(folder.write(u"a.flac"_s, "no sound at all, but some text")).refusal, unknown);
    EXPECT_EQ(decode(folder.write(u"empty.wav"_s, "")).refusal, unknown);
    EXPECT_EQ(decode(folder.write(u"short.wav"_s, "RIFF")).refusal, unknown);
    EXPECT_EQ(decode(folder.makeFolder(u"folder.wav"_s)).refusal, u"it is no regular file"_s);
    EXPECT_EQ(decode(folder.path(u"missing.wav"_s)).refusal, u"No such file or directory"_s);
    EXPECT_EQ(decode(u"/dev/zero"_s).refusal, u"it is no regular file"_s);
    const QByteArray pipe = folder.path(u"pipe.wav"_s).toLocal8Bit();
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    EXPECT_EQ(decode(folder.path(u"pipe.wav"_s)).refusal, u"it is no regular file"_s);
}

} // namespace
} // namespace nurv
