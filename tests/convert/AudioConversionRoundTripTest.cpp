// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Every sample comes through; the ffmpeg program is the second opinion.
#include "convert/AudioConversionFixture.h"
#include "support/TwentyBitSound.h"

#include "audio/CoreAudioHelper.h"

using namespace Qt::StringLiterals;

namespace nurv::test {
namespace {

struct RoundTripCase {
    SoundShape shape;
};

void PrintTo(const RoundTripCase &value, std::ostream *out)
{
    *out << value.shape.bits << " bits, " << value.shape.channels << " channels, " << value.shape.rate << " Hz";
}

class AudioConversionRoundTrip : public AudioConversionFixture, public ::testing::WithParamInterface<RoundTripCase> {
protected:
    void expectSound(const QString &path, const SoundShape &shape)
    {
        EXPECT_EQ(decodedMd5(path), soundMd5(shape)) << qPrintable(path);
        const auto format = CoreAudioHelper::getFormatInfo(path);
        ASSERT_TRUE(format) << qPrintable(path);
        EXPECT_EQ(format->sampleRate, shape.rate);
        EXPECT_EQ(format->channels, shape.channels);
        EXPECT_EQ(format->bitsPerChannel, shape.bits);
        EXPECT_EQ(format->totalSamples, shape.frameCount());
    }
};

class AppleLosslessRoundTrip : public AudioConversionRoundTrip {};

TEST_P(AppleLosslessRoundTrip, KeepsEverySample)
{
    const SoundShape shape = GetParam().shape;
    const QString m4a = folder.path(u"a.m4a"_s);
    ASSERT_FALSE(toAppleLossless(writeWav(folder.path(u"a.wav"_s), shape), m4a)->error());
    expectSound(m4a, shape);
    ASSERT_FALSE(toWav(m4a, folder.path(u"b.wav"_s))->error());
    expectSound(folder.path(u"b.wav"_s), shape);
    ASSERT_FALSE(toAiff(m4a, folder.path(u"b.aiff"_s))->error());
    expectSound(folder.path(u"b.aiff"_s), shape);
}

TEST_P(AudioConversionRoundTrip, KeepsEverySampleBetweenWavAndAiff)
{
    const SoundShape shape = GetParam().shape;
    const QString aiff = folder.path(u"b.aiff"_s);
    ASSERT_FALSE(toAiff(writeWav(folder.path(u"a.wav"_s), shape), aiff)->error());
    expectSound(aiff, shape);
    EXPECT_EQ(folder.read(u"b.aiff"_s), aiffBytes(shape));
    ASSERT_FALSE(toWav(aiff, folder.path(u"c.wav"_s))->error());
    expectSound(folder.path(u"c.wav"_s), shape);
    SoundShape written = shape;
    written.extensible = shape.channels > 2;
    EXPECT_EQ(folder.read(u"c.wav"_s), wavBytes(written));
}

const auto kWidthsOfAppleLossless =
    ::testing::Values(RoundTripCase{{.rate = 44100, .bits = 16, .channels = 2, .frames = 44101}},
                      RoundTripCase{{.rate = 8000, .bits = 16, .channels = 1, .frames = 1}},
                      RoundTripCase{{.rate = 48000, .bits = 24, .channels = 2, .frames = 12288}},
                      RoundTripCase{{.rate = 96000, .bits = 24, .channels = 1, .frames = 4095}},
                      RoundTripCase{{.rate = 192000, .bits = 24, .channels = 8, .frames = 9999}},
                      RoundTripCase{{.rate = 176400, .bits = 24, .channels = 6, .frames = 20001}},
                      RoundTripCase{{.rate = 48000, .bits = 16, .channels = 3, .frames = 4096}},
                      RoundTripCase{{.rate = 32000, .bits = 16, .channels = 4, .frames = 8191}},
                      RoundTripCase{{.rate = 48000, .bits = 16, .channels = 5, .frames = 8193}},
                      RoundTripCase{{.rate = 88200, .bits = 24, .channels = 7, .frames = 5001}});
const auto kOtherWidths = ::testing::Values(RoundTripCase{{.rate = 22050, .bits = 8, .channels = 1, .frames = 4097}},
                                            RoundTripCase{{.rate = 48000, .bits = 32, .channels = 2, .frames = 5000}});

INSTANTIATE_TEST_SUITE_P(Shapes, AppleLosslessRoundTrip, kWidthsOfAppleLossless);
INSTANTIATE_TEST_SUITE_P(Shapes, AudioConversionRoundTrip, kWidthsOfAppleLossless);
INSTANTIATE_TEST_SUITE_P(OtherShapes, AudioConversionRoundTrip, kOtherWidths);

using AudioConversionExactness = AudioConversionFixture;

TEST_F(AudioConversionExactness, ReadsPlainAndExtensibleWav)
{
    const SoundShape shape{.bits = 24, .channels = 2, .frames = 5000, .extensible = true};
    ASSERT_FALSE(toAppleLossless(writeWav(folder.path(u"a.wav"_s), shape), folder.path(u"a.m4a"_s))->error());
    EXPECT_EQ(decodedMd5(folder.path(u"a.m4a"_s)), soundMd5(shape));
}

TEST_F(AudioConversionExactness, ReadsWavWithChunksOnBothSides)
{
    const SoundShape shape{.frames = 5000};
    const QByteArray bytes = wavBytes(shape, riffChunk("LIST", "INFOodd"), riffChunk("id3 ", QByteArray(3001, 'x')));
    ASSERT_FALSE(toAppleLossless(folder.write(u"a.wav"_s, bytes), folder.path(u"a.m4a"_s))->error());
    EXPECT_EQ(decodedMd5(folder.path(u"a.m4a"_s)), soundMd5(shape));
}

TEST_F(AudioConversionExactness, ReadsWavWith64BitSizes)
{
    const SoundShape shape{.frames = 5000};
    const QString source = writeByFfmpeg(folder.path(u"a.wav"_s), shape, {u"-rf64"_s, u"always"_s});
    ASSERT_TRUE(folder.read(u"a.wav"_s).startsWith("RF64"));
    ASSERT_FALSE(toAiff(source, folder.path(u"a.aiff"_s))->error());
    EXPECT_EQ(folder.read(u"a.aiff"_s), aiffBytes(shape));
}

TEST_F(AudioConversionExactness, ReadsAiffWithLittleEndianSamples)
{
    const SoundShape shape{.frames = 5000};
    const QString sowt = writeByFfmpeg(folder.path(u"a.aiff"_s), shape, {u"-c:a"_s, u"pcm_s16le"_s});
    ASSERT_TRUE(folder.read(u"a.aiff"_s).contains("sowt"));
    ASSERT_FALSE(toWav(sowt, folder.path(u"a.wav"_s))->error());
    EXPECT_EQ(folder.read(u"a.wav"_s), wavBytes(shape));
}

TEST_F(AudioConversionExactness, ReadsFlac)
{
    for (const int bits : {16, 24}) {
        const SoundShape shape{.bits = bits, .frames = 10000};
        ASSERT_FALSE(
            toWav(writeFlac(folder.path(u"a.flac"_s), shape, {u"--force"_s}), folder.path(u"a.wav"_s))->error());
        EXPECT_EQ(folder.read(u"a.wav"_s), wavBytes(shape));
    }
}

TEST_F(AudioConversionExactness, ReadsWavThatCameThroughAPipe)
{
    const SoundShape shape{.frames = 5000};
    for (const char *size : {"ffffffff", "00000000", "00f0ff7f"}) {
        QByteArray bytes = wavBytes(shape);
        bytes.replace(4, 4, QByteArray::fromHex("ffffffff"));
        bytes.replace(40, 4, QByteArray::fromHex(size));
        ASSERT_FALSE(toAiff(folder.write(u"a.wav"_s, bytes), folder.path(u"a.aiff"_s))->error()) << size;
        EXPECT_EQ(folder.read(u"a.aiff"_s), aiffBytes(shape)) << size;
    }
}

TEST_F(AudioConversionExactness, KeepsTwentyBitsThatStandInTwentyFour)
{
    const SoundShape shape{.bits = 24, .frames = 5000, .extensible = true};
    QByteArray bytes = wavBytes(shape);
    bytes[38] = 20; // the valid bits; the four below them are kept all the same
    ASSERT_FALSE(toAppleLossless(folder.write(u"a.wav"_s, bytes), folder.path(u"a.m4a"_s))->error());
    EXPECT_EQ(decodedMd5(folder.path(u"a.m4a"_s)), soundMd5(shape));
    ASSERT_FALSE(toAiff(folder.path(u"a.wav"_s), folder.path(u"a.aiff"_s))->error());
    EXPECT_EQ(folder.read(u"a.aiff"_s), aiffBytes(shape));
}

TEST_F(AudioConversionExactness, GivesTwentyBitAppleLosslessAsTwentyFour)
{
    for (const int channels : {1, 2}) {
        constexpr int kFrames = 10000;
        const QString source = writeTwentyBitAppleLossless(folder.path(u"a.m4a"_s), kFrames, channels);
        const SoundShape shape{.rate = 48000, .bits = 24, .channels = channels, .frames = kFrames};
        QByteArray wav = wavBytes(shape);
        wav.replace(44, wav.size() - 44, twentyBitSamples(kFrames, channels));
        ASSERT_FALSE(toWav(source, folder.path(u"b.wav"_s))->error()) << failureText.toStdString();
        EXPECT_EQ(folder.read(u"b.wav"_s), wav);
        ASSERT_FALSE(toAiff(source, folder.path(u"b.aiff"_s))->error());
        EXPECT_TRUE(sameSound(folder.path(u"b.aiff"_s), folder.path(u"b.wav"_s)));
        ASSERT_FALSE(toAppleLossless(source, folder.path(u"b.m4a"_s))->error());
        EXPECT_TRUE(sameSound(folder.path(u"b.m4a"_s), folder.path(u"b.wav"_s)));
        EXPECT_FALSE(toAac(source, folder.path(u"c.m4a"_s))->error());
        EXPECT_EQ(decodedMd5(source), decodedMd5(folder.path(u"b.wav"_s))) << "ffmpeg reads the same samples";
    }
}

TEST_F(AudioConversionExactness, RefusesAppleLosslessOfWidthsThatTheEncoderWouldChange)
{
    for (const int bits : {8, 32}) {
        const QString source = writeWav(folder.path(u"a.wav"_s), {.bits = bits, .frames = 500});
        const QString output = folder.write(u"a.m4a"_s, "an older file");
        EXPECT_EQ(toAppleLossless(source, output)->results()->results(),
                  failure(source, u"Apple Lossless"_s, u"ExtAudioFileCreateWithURL failed fmt?"_s));
        EXPECT_EQ(obstacle, u"its samples have %1 bits, and Apple Lossless is written with 16 or 24"_s.arg(bits));
        EXPECT_EQ(folder.read(u"a.m4a"_s), "an older file");
    }
}

TEST_F(AudioConversionExactness, RefusesToRoundFloatingPointButForAac)
{
    const QString source = writeByFfmpeg(folder.path(u"a.wav"_s), {.frames = 5000}, {u"-c:a"_s, u"pcm_f32le"_s});
    EXPECT_EQ(
        toWav(source, folder.path(u"b.wav"_s))->results()->results(),
        failure(source, u"WAV"_s, u"ExtAudioFileSetProperty inFile, kExtAudioFileProperty_ClientDataFormat failed"_s));
    EXPECT_EQ(obstacle, u"its samples are floating-point numbers, which WAV cannot hold exactly"_s);
    EXPECT_FALSE(toAac(source, folder.path(u"b.m4a"_s))->error());
    EXPECT_EQ(obstacle, QString());
}

TEST_F(AudioConversionExactness, RefusesMoreThanEightChannels)
{
    const QString source = folder.path(u"a.wav"_s);
    ASSERT_EQ(runProgram(u"sox"_s, {u"-R"_s, u"-n"_s, u"-r"_s, u"44100"_s, u"-c"_s, u"10"_s, u"-b"_s, u"16"_s, source,
                                    u"synth"_s, u"0.1"_s, u"sine"_s, u"440"_s}).exitStatus, 0);
    for (const auto &[format, file, name] : {std::tuple{kFormatAppleLossless, kFileM4A, u"Apple Lossless"_s},
                                             std::tuple{kFormatAAC, kFileM4A, u"AAC"_s},
                                             std::tuple{kFormatLinearPCM, kFileAIFF, u"AIFF"_s}}) {
        const QString output = folder.path(u"b"_s);
        EXPECT_EQ(convert(source, output, format, file)->results()->results(),
                  failure(source, name, u"ExtAudioFileCreateWithURL failed fmt?"_s));
        EXPECT_EQ(obstacle, u"it has 10 channels, and %1 is written with up to 8"_s.arg(name));
        EXPECT_FALSE(folder.exists(u"b"_s));
    }
}

TEST_F(AudioConversionExactness, ConvertsAnEmptyFile)
{
    SoundShape shape{.seconds = 0.0};
    const QString source = writeWav(folder.path(u"a.wav"_s), shape);
    ASSERT_FALSE(toAiff(source, folder.path(u"a.aiff"_s))->error());
    EXPECT_EQ(folder.read(u"a.aiff"_s), aiffBytes(shape));
    ASSERT_FALSE(toWav(folder.path(u"a.aiff"_s), folder.path(u"b.wav"_s))->error());
    EXPECT_EQ(folder.read(u"b.wav"_s), wavBytes(shape));
}

TEST_F(AudioConversionExactness, GivesAppleLosslessOfExactlyTheLengthThatWentIn)
{
    for (const int frames : {1, 2, 4095, 4096, 4097, 8191, 44100, 65537}) {
        const SoundShape shape{.frames = frames};
        const QString m4a = folder.path(u"a.m4a"_s);
        ASSERT_FALSE(toAppleLossless(writeWav(folder.path(u"a.wav"_s), shape), m4a)->error());
        EXPECT_EQ(ffprobeStream(m4a)[u"duration_ts"_s], QString::number(frames));
        EXPECT_EQ(CoreAudioHelper::getFormatInfo(m4a)->totalSamples, frames);
    }
}

TEST_F(AudioConversionExactness, KeepsShortLastBlocksOfManyChannels)
{
    for (const int channels : {1, 2, 5, 6, 8}) {
        for (const int frames : {1, 2, 7, 31, 63, 64, 65, 4096 + 1, 4096 + 63}) {
            const SoundShape shape{.bits = frames % 2 == 0 ? 16 : 24, .channels = channels, .frames = frames};
            const QString m4a = folder.path(u"a.m4a"_s);
            ASSERT_FALSE(toAppleLossless(writeWav(folder.path(u"a.wav"_s), shape), m4a)->error());
            ASSERT_FALSE(toAiff(m4a, folder.path(u"b.aiff"_s))->error()) << frames;
            EXPECT_EQ(folder.read(u"b.aiff"_s), aiffBytes(shape)) << channels << " channels, " << frames << " frames";
        }
        const SoundShape last{.channels = channels, .frames = 4096 + 63};
        ASSERT_FALSE(toAppleLossless(writeWav(folder.path(u"a.wav"_s), last), folder.path(u"a.m4a"_s))->error());
        EXPECT_EQ(decodedMd5(folder.path(u"a.m4a"_s)), soundMd5(last)) << channels;
    }
}

TEST_F(AudioConversionExactness, ReadsTheLastFramesBehindAnEditListThatCountsMilliseconds)
{
    // 85.35 milliseconds, rounded to the 85 that end in the first packet of 4096 frames.
    const SoundShape shape{.rate = 48000, .frames = 4097};
    const QString m4a = writeByFfmpeg(folder.path(u"a.m4a"_s), shape, {u"-c:a"_s, u"alac"_s});
    EXPECT_EQ(CoreAudioHelper::getFormatInfo(m4a)->totalSamples, 4097);
    ASSERT_FALSE(toWav(m4a, folder.path(u"b.wav"_s))->error());
    EXPECT_EQ(folder.read(u"b.wav"_s), wavBytes(shape));
}

TEST_F(AudioConversionExactness, KnowsTheLengthOfAacWhoseEditListCountsMilliseconds)
{
    for (const int frames : {1023, 1025, 44099, 50001}) {
        const QString m4a = writeByFfmpeg(folder.path(u"a.m4a"_s), {.frames = frames}, {u"-c:a"_s, u"aac"_s});
        EXPECT_EQ(CoreAudioHelper::getFormatInfo(m4a)->totalSamples, frames);
        ASSERT_FALSE(toWav(m4a, folder.path(u"b.wav"_s))->error());
        EXPECT_EQ(folder.read(u"b.wav"_s).size(), 44 + 4 * frames);
    }
}

TEST_F(AudioConversionExactness, DecodesAacToExactlyTheLengthThatWentIn)
{
    for (const int rate : {44100, 48000}) {
        for (const int frames : {1, 1023, 1024, 1025, 44100, 50001}) {
            const SoundShape shape{.rate = rate, .frames = frames};
            const QString m4a = folder.path(u"a.m4a"_s);
            ASSERT_FALSE(toAac(writeWav(folder.path(u"a.wav"_s), shape), m4a)->error());
            EXPECT_EQ(CoreAudioHelper::getFormatInfo(m4a)->totalSamples, frames) << rate;
            EXPECT_EQ(ffprobeStream(m4a)[u"duration_ts"_s], QString::number(frames)) << rate;
            ASSERT_FALSE(toWav(m4a, folder.path(u"b.wav"_s))->error());
            EXPECT_EQ(folder.read(u"b.wav"_s).size(), 44 + 4 * frames) << rate;
        }
    }
}

TEST_F(AudioConversionExactness, CutsTheEncodersDelayFromAacOfOtherMakers)
{
    const SoundShape shape{.frames = 44100};
    const QString m4a = writeByFfmpeg(folder.path(u"a.m4a"_s), shape, {u"-c:a"_s, u"aac"_s, u"-b:a"_s, u"256k"_s});
    ASSERT_FALSE(toWav(m4a, folder.path(u"b.wav"_s))->error());
    const QByteArray decoded = folder.read(u"b.wav"_s).mid(44);
    const QByteArray original = makeSamples(shape);
    ASSERT_EQ(decoded.size(), original.size());
    // In step with the original: the difference is small beside the sound itself.
    const auto *left = reinterpret_cast<const qint16 *>(decoded.constData());
    const auto *right = reinterpret_cast<const qint16 *>(original.constData());
    double difference = 0.0;
    double power = 0.0;
    for (qsizetype i = 0; i < decoded.size() / 2; ++i) {
        difference += static_cast<double>(left[i] - right[i]) * (left[i] - right[i]);
        power += static_cast<double>(right[i]) * right[i];
    }
    EXPECT_LT(difference, power / 100);
}

TEST_F(AudioConversionExactness, WritesWavThatFlacAndShntoolRead)
{
    const QString source = writeAiff(folder.path(u"a.aiff"_s), {.bits = 16, .frames = 588 * 75});
    const QString wav = folder.path(u"a.wav"_s);
    ASSERT_FALSE(toWav(source, wav)->error());
    const ProgramResult info = runProgram(u"shntool"_s, {u"info"_s, wav});
    EXPECT_EQ(info.exitStatus, 0) << info.errors.constData();
    EXPECT_TRUE(info.output.contains("44 bytes") && info.output.contains("Microsoft PCM")) << info.output.constData();
    EXPECT_EQ(runProgram(u"flac"_s, {u"--silent"_s, u"-w"_s, wav}).exitStatus, 0);
    EXPECT_TRUE(sameSound(folder.path(u"a.flac"_s), source));
    for (const int channels : {1, 2, 3, 4, 5, 6, 7, 8}) {
        const QString many = writeAiff(folder.path(u"b.aiff"_s), {.bits = 24, .channels = channels, .frames = 1000});
        ASSERT_FALSE(toWav(many, folder.path(u"b.wav"_s))->error());
        const ProgramResult flac = runProgram(u"flac"_s, {u"--silent"_s, u"--force"_s, folder.path(u"b.wav"_s)});
        EXPECT_EQ(flac.exitStatus, 0) << channels << flac.errors.constData();
    }
}

} // namespace
} // namespace nurv::test
