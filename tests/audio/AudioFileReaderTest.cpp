// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/AudioFileReader.h"

#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <numeric>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using namespace test;
using Precision = AudioFileReader::Precision;

AudioStreamDescription clientFormat(int rate, int bits, int channels)
{
    AudioStreamDescription format;
    format.sampleRate = rate;
    format.formatId = kFormatLinearPCM;
    format.formatFlags = kBigEndianIntegers;
    format.bitsPerChannel = static_cast<std::uint32_t>(bits);
    format.channelsPerFrame = static_cast<std::uint32_t>(channels);
    format.bytesPerFrame = static_cast<std::uint32_t>(bits / 8 * channels);
    format.bytesPerPacket = format.bytesPerFrame;
    format.framesPerPacket = 1;
    return format;
}

AudioStreamDescription formatOf(const QString &path)
{
    AudioFileReader reader;
    AudioStreamDescription format;
    EXPECT_EQ(reader.open(path), AudioFileStatus::Ok) << qPrintable(path);
    EXPECT_EQ(reader.fileDataFormat(format), AudioFileStatus::Ok) << qPrintable(path);
    return format;
}

/// The frames that each call delivered until the end; the status that ended it.
AudioFileStatus readAll(AudioFileReader &reader, std::uint32_t bytesPerFrame, std::uint32_t framesPerCall,
                        std::vector<std::uint32_t> &counts)
{
    std::vector<std::uint8_t> buffer(std::size_t{bytesPerFrame} * framesPerCall);
    for (;;) {
        std::uint32_t frames = framesPerCall;
        const AudioFileStatus status = reader.read(buffer.data(), frames);
        if (status != AudioFileStatus::Ok || frames == 0)
            return status;
        counts.push_back(frames);
    }
}

TEST(AudioStreamDescription, ShowsCodesAsFourCharacters)
{
    EXPECT_EQ(fourCharText(0x616C6163), u"alac");
    EXPECT_EQ(fourCharText(kFormatAAC), u"aac ");
    EXPECT_EQ(fourCharText(0x0000FF41), u"???A");
    EXPECT_EQ(statusText(AudioFileStatus::UnsupportedDataFormat), u"fmt?");
}

TEST(AudioFileReader, DescribesTheSamplesAsTheFileKeepsThem)
{
    const TestFolder folder;
    const AudioStreamDescription wav =
        formatOf(writeWav(folder.path(u"a.wav"_s), {.rate = 48000, .bits = 24, .frames = 10}));
    EXPECT_EQ(wav.sampleRate, 48000.0);
    EXPECT_EQ(wav.formatId, kFormatLinearPCM);
    EXPECT_EQ(wav.formatFlags, 0x0CU);
    EXPECT_EQ(wav.bytesPerFrame, 6U);
    EXPECT_EQ(wav.bytesPerPacket, 6U);
    EXPECT_EQ(wav.framesPerPacket, 1U);
    EXPECT_EQ(wav.channelsPerFrame, 2U);
    EXPECT_EQ(wav.bitsPerChannel, 24U);
    EXPECT_EQ(wav.reserved, 0U);
    const AudioStreamDescription aiff = formatOf(writeAiff(folder.path(u"a.aiff"_s), {.frames = 10}));
    EXPECT_EQ(aiff.formatFlags, 0x0EU);
    const AudioStreamDescription alac =
        formatOf(writeByFfmpeg(folder.path(u"a.m4a"_s), {.frames = 10}, {u"-c:a"_s, u"alac"_s}));
    EXPECT_EQ(alac.formatId, 0x616C6163U);
    EXPECT_EQ(alac.formatFlags, 1U);
    EXPECT_EQ(alac.framesPerPacket, 4096U);
    EXPECT_EQ(alac.bytesPerFrame, 0U);
    const AudioStreamDescription wide = formatOf(writeByFfmpeg(folder.path(u"b.m4a"_s), {.bits = 24, .frames = 10},
                                                               {u"-c:a"_s, u"alac"_s, u"-sample_fmt"_s, u"s32p"_s}));
    EXPECT_EQ(wide.formatFlags, 3U);
    EXPECT_EQ(wide.bitsPerChannel, 24U);
    const AudioStreamDescription aac =
        formatOf(writeByFfmpeg(folder.path(u"c.m4a"_s), {.frames = 5000}, {u"-c:a"_s, u"aac"_s}));
    EXPECT_EQ(aac.formatId, 0x61616320U);
    EXPECT_EQ(aac.bitsPerChannel, 0U);
}

TEST(AudioFileReader, DeliversFullBuffersUntilTheEnd)
{
    const TestFolder folder;
    const SoundShape shape{.frames = 10001};
    const QStringList files = {writeWav(folder.path(u"a.wav"_s), shape), writeAiff(folder.path(u"a.aiff"_s), shape),
                               writeFlac(folder.path(u"a.flac"_s), shape),
                               writeByFfmpeg(folder.path(u"a.m4a"_s), shape, {u"-c:a"_s, u"alac"_s}),
                               writeByFfmpeg(folder.path(u"b.m4a"_s), shape, {u"-c:a"_s, u"aac"_s})};
    for (const QString &path : files) {
        AudioFileReader reader;
        ASSERT_EQ(reader.open(path), AudioFileStatus::Ok);
        ASSERT_EQ(reader.setClientFormat(clientFormat(44100, 16, 2), Precision::Exact), AudioFileStatus::Ok);
        std::vector<std::uint32_t> counts;
        EXPECT_EQ(readAll(reader, 4, 1000, counts), AudioFileStatus::Ok) << qPrintable(path);
        ASSERT_EQ(counts.size(), 11U) << qPrintable(path);
        EXPECT_EQ(std::count(counts.begin(), counts.end(), 1000U), 10) << qPrintable(path);
        EXPECT_EQ(counts.back(), 1U);
    }
}

TEST(AudioFileReader, WidensSamplesOnRequest)
{
    const TestFolder folder;
    const SoundShape shape{.channels = 1, .frames = 5};
    const QByteArray samples = makeSamples(shape);
    for (const QString &path : {writeWav(folder.path(u"a.wav"_s), shape), writeFlac(folder.path(u"a.flac"_s), shape)}) {
        AudioFileReader reader;
        ASSERT_EQ(reader.open(path), AudioFileStatus::Ok);
        ASSERT_EQ(reader.setClientFormat(clientFormat(44100, 32, 1), Precision::Exact), AudioFileStatus::Ok);
        QByteArray buffer(20, 'x');
        std::uint32_t frames = 5;
        ASSERT_EQ(reader.read(reinterpret_cast<std::uint8_t *>(buffer.data()), frames), AudioFileStatus::Ok);
        ASSERT_EQ(frames, 5U);
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(buffer.mid(4 * i, 4), QByteArray(1, samples[2 * i + 1]) + samples[2 * i] + QByteArray(2, '\0'));
    }
}

TEST(AudioFileReader, RefusesClientFormatsThatAreNotTheFiles)
{
    const TestFolder folder;
    AudioFileReader reader;
    EXPECT_EQ(reader.setClientFormat(clientFormat(48000, 24, 2), Precision::Exact), AudioFileStatus::NotOpen);
    ASSERT_EQ(reader.open(writeWav(folder.path(u"a.wav"_s), {.rate = 48000, .bits = 24, .frames = 10})),
              AudioFileStatus::Ok);
    const auto refuses = [&reader](const AudioStreamDescription &format) {
        return reader.setClientFormat(format, Precision::Rounded) == AudioFileStatus::UnsupportedDataFormat;
    };
    const AudioStreamDescription good = clientFormat(48000, 24, 2);
    EXPECT_FALSE(refuses(good));
    EXPECT_TRUE(refuses(clientFormat(44100, 24, 2))) << "another sample rate";
    EXPECT_TRUE(refuses(clientFormat(48000, 24, 1))) << "fewer channels";
    EXPECT_FALSE(refuses(clientFormat(48000, 16, 2))) << "fewer bits, where they may be rounded";
    EXPECT_EQ(reader.setClientFormat(clientFormat(48000, 16, 2), Precision::Exact), AudioFileStatus::UnsupportedDataFormat);
    EXPECT_TRUE(refuses(clientFormat(48000, 20, 2))) << "20 bits in 2 bytes";
    EXPECT_TRUE(refuses(clientFormat(48000, 64, 2)));
    AudioStreamDescription other = good;
    other.formatFlags = kLittleEndianIntegers;
    EXPECT_TRUE(refuses(other));
    other = good;
    other.framesPerPacket = 2;
    EXPECT_TRUE(refuses(other));
}

TEST(AudioFileReader, ReadsNothingBeforeItIsOpenAndHasAForm)
{
    const TestFolder folder;
    AudioFileReader reader;
    std::uint8_t buffer[64] = {};
    std::uint32_t frames = 4;
    EXPECT_EQ(reader.read(buffer, frames), AudioFileStatus::NotOpen);
    EXPECT_EQ(frames, 0U);
    ASSERT_EQ(reader.open(writeWav(folder.path(u"a.wav"_s), {.frames = 10})), AudioFileStatus::Ok);
    frames = 4;
    EXPECT_EQ(reader.read(buffer, frames), AudioFileStatus::NotOpen);
    EXPECT_EQ(reader.open(folder.path(u"missing"_s)), AudioFileStatus::Unspecified);
    std::int64_t length = 0;
    EXPECT_EQ(reader.lengthFrames(length), AudioFileStatus::NotOpen);
}

TEST(AudioFileReader, SaysThatACutFileEndsTooEarly)
{
    const TestFolder folder;
    const SoundShape shape{.frames = 30000};
    for (const QString &path : {writeWav(folder.path(u"a.wav"_s), shape), writeAiff(folder.path(u"a.aiff"_s), shape),
                                writeFlac(folder.path(u"a.flac"_s), shape)}) {
        ASSERT_TRUE(QFile::resize(path, QFileInfo(path).size() / 2));
        AudioFileReader reader;
        ASSERT_EQ(reader.open(path), AudioFileStatus::Ok);
        std::int64_t length = 0;
        ASSERT_EQ(reader.lengthFrames(length), AudioFileStatus::Ok);
        EXPECT_EQ(length, 30000) << "what the header says";
        ASSERT_EQ(reader.setClientFormat(clientFormat(44100, 16, 2), Precision::Exact), AudioFileStatus::Ok);
        std::vector<std::uint32_t> counts;
        EXPECT_EQ(readAll(reader, 4, 1000, counts), AudioFileStatus::InvalidFile) << qPrintable(path);
        EXPECT_LT(std::accumulate(counts.begin(), counts.end(), 0U), 30000U);
    }
}

} // namespace
} // namespace nurv
