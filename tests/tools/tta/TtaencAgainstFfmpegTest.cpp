// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "RunTtaenc.h"
#include "TtaSounds.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

constexpr uint32_t kLowRate = 8000;
constexpr uint32_t kFrameLength = 8359; // at the low rate

/// The samples that ffmpeg finds in a file.
QByteArray decodedByFfmpeg(const QString &path, unsigned bits)
{
    const QString format = bits == 8 ? u"u8"_s : u"s%1le"_s.arg(bits);
    const ProgramResult result =
        runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-err_detect"_s, u"explode"_s, u"-i"_s, path, u"-c:a"_s,
                                 u"pcm_"_s + format, u"-f"_s, format, u"-"_s});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    return result.output;
}

/// Encodes with both, compares the files, decodes each with the other program.
void expectTheSame(Sound sound, const TtaHeader &shape)
{
    const TestFolder folder;
    const std::vector<uint8_t> pcm = makePcm(sound, shape);
    const QByteArray wav = wavOf(pcm, shape);
    const QString wavPath = folder.write(u"x.wav"_s, wav);
    const QString ours = folder.path(u"ours.tta"_s);
    const QString theirs = folder.path(u"theirs.tta"_s);
    const QString back = folder.path(u"back.wav"_s);

    const ProgramResult encoded = runTtaenc({wavPath, u"-o"_s, ours});
    ASSERT_EQ(encoded.exitStatus, 0) << encoded.errors.constData();
    // Bit-exact output has no tag behind the last frame.
    const ProgramResult reference =
        runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, wavPath, u"-fflags"_s, u"+bitexact"_s, theirs});
    ASSERT_EQ(reference.exitStatus, 0) << reference.errors.constData();
    EXPECT_TRUE(folder.read(u"ours.tta"_s) == folder.read(u"theirs.tta"_s));

    const ProgramResult decoded = runTtaenc({theirs, u"-o"_s, back});
    ASSERT_EQ(decoded.exitStatus, 0) << decoded.errors.constData();
    EXPECT_TRUE(folder.read(u"back.wav"_s) == wav);
    // The decoder of ffmpeg has no place for five channels.
    if (shape.channels != 5) {
        EXPECT_TRUE(decodedByFfmpeg(ours, shape.bitsPerSample) == toQt(pcm));
    }
}

/// Channels, bits.
class TtaencAgainstFfmpeg : public ::testing::TestWithParam<std::tuple<unsigned, unsigned>> {
protected:
    void expectTheSameFor(Sound sound, uint32_t samples) const
    {
        const auto [channels, bits] = GetParam();
        SCOPED_TRACE(std::to_string(static_cast<int>(sound)) + ", " + std::to_string(samples) + " samples");
        expectTheSame(sound, shapeOf(channels, bits, samples, kLowRate));
    }
};

TEST_P(TtaencAgainstFfmpeg, WritesTheSameBytesForEverySound)
{
    for (const Sound sound :
         {Sound::Silence, Sound::Square, Sound::Noise, Sound::FullScale, Sound::Sweep, Sound::Music})
        expectTheSameFor(sound, 2 * kFrameLength + 777);
}

TEST_P(TtaencAgainstFfmpeg, WritesTheSameBytesForLengthsAroundAFrame)
{
    for (const uint32_t samples : {kFrameLength - 1, kFrameLength})
        expectTheSameFor(Sound::Music, samples);
    // ffmpeg aborts where a last frame of one sample is larger than twice that sample.
    const auto [channels, bits] = GetParam();
    if (bits == 8 || channels * bits == 16)
        return;
    for (const uint32_t samples : {1U, kFrameLength + 1, 2 * kFrameLength + 1})
        expectTheSameFor(Sound::Silence, samples);
}

INSTANTIATE_TEST_SUITE_P(Shapes, TtaencAgainstFfmpeg,
                         ::testing::Combine(::testing::Values(1U, 2U, 3U, 4U, 5U, 6U),
                                            ::testing::Values(8U, 16U, 24U)));

TEST(TtaencAgainstFfmpegAtRates, WritesTheSameBytes)
{
    for (const uint32_t rate : {11025U, 22050U, 44100U, 48000U, 96000U, 192000U}) {
        SCOPED_TRACE(rate);
        expectTheSame(Sound::Music, shapeOf(2, 16, rate * 5 / 4, rate));
    }
}

TEST(TtaencAgainstFfmpegAtLength, WritesTheSameBytesForTenMinutes)
{
    const TestFolder folder;
    const TtaHeader part = shapeOf(2, 16, 44100 * 10);
    const std::vector<uint8_t> tenSeconds = makePcm(Sound::Music, part);
    const TtaHeader shape = shapeOf(2, 16, part.sampleCount * 60);
    std::vector<uint8_t> pcm;
    for (int i = 0; i < 60; ++i)
        pcm.insert(pcm.end(), tenSeconds.begin(), tenSeconds.end());
    const QByteArray wav = wavOf(pcm, shape);
    const QString wavPath = folder.write(u"x.wav"_s, wav);
    ASSERT_EQ(runTtaenc({wavPath, u"-o"_s, folder.path(u"ours.tta"_s)}).exitStatus, 0);
    ASSERT_EQ(runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, wavPath, u"-fflags"_s, u"+bitexact"_s,
                                       folder.path(u"theirs.tta"_s)})
                  .exitStatus,
              0);
    EXPECT_TRUE(folder.read(u"ours.tta"_s) == folder.read(u"theirs.tta"_s));
    ASSERT_EQ(runTtaenc({folder.path(u"theirs.tta"_s), u"-o"_s, folder.path(u"back.wav"_s)}).exitStatus, 0);
    EXPECT_TRUE(folder.read(u"back.wav"_s) == wav);
}

} // namespace

} // namespace nurv::test
