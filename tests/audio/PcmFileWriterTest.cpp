// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/PcmFileWriter.h"

#include "audio/AudioOutputFile.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <QtEndian>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using namespace test;

AudioStreamDescription pcm(std::uint32_t flags, std::uint32_t bits, std::uint32_t channels)
{
    AudioStreamDescription format;
    format.sampleRate = 44100;
    format.formatId = kFormatLinearPCM;
    format.formatFlags = flags;
    format.bitsPerChannel = bits;
    format.channelsPerFrame = channels;
    format.bytesPerFrame = bits / 8 * channels;
    format.bytesPerPacket = format.bytesPerFrame;
    format.framesPerPacket = 1;
    return format;
}

/// A file of `frames` silent frames for which `expectedFrames` were planned.
QByteArray silentFile(const TestFolder &folder, FourCharCode type, const AudioStreamDescription &format,
                      std::int64_t expectedFrames, std::uint32_t frames)
{
    AudioOutputFile file;
    EXPECT_EQ(file.create(folder.path(u"out"_s), [](const struct stat &) { return false; }), AudioFileStatus::Ok);
    PcmFileWriter writer(file, type, format, expectedFrames);
    EXPECT_EQ(writer.begin(), AudioFileStatus::Ok);
    const QByteArray silence(static_cast<qsizetype>(frames * format.bytesPerFrame), '\0');
    EXPECT_EQ(writer.write(reinterpret_cast<const std::uint8_t *>(silence.constData()), frames), AudioFileStatus::Ok);
    EXPECT_EQ(writer.finish(), AudioFileStatus::Ok);
    EXPECT_TRUE(file.close());
    return folder.read(u"out"_s);
}

TEST(PcmFileWriter, CorrectsTheHeaderWhenFewerOrMoreFramesCame)
{
    const TestFolder folder;
    for (const std::int64_t expected : {0, 100, 5}) {
        const QByteArray wav = silentFile(folder, kFileWave, pcm(kLittleEndianIntegers, 16, 2), expected, 10);
        ASSERT_EQ(wav.size(), 84);
        EXPECT_EQ(qFromLittleEndian<quint32>(wav.constData() + 4), 76U);
        EXPECT_EQ(qFromLittleEndian<quint32>(wav.constData() + 40), 40U);
        const QByteArray aiff = silentFile(folder, kFileAIFF, pcm(kBigEndianIntegers, 8, 1), expected, 11);
        ASSERT_EQ(aiff.size(), 54 + 12) << "with the pad byte";
        EXPECT_EQ(qFromBigEndian<quint32>(aiff.constData() + 4), 58U);
        EXPECT_EQ(qFromBigEndian<quint32>(aiff.constData() + 22), 11U);
        EXPECT_EQ(qFromBigEndian<quint32>(aiff.constData() + 42), 19U);
    }
}

TEST(PcmFileWriter, TakesThe64BitSizesOfRf64ForMoreThanFourGibibytes)
{
    const TestFolder folder;
    const AudioStreamDescription format = pcm(kLittleEndianIntegers, 16, 2);
    // 2^30 frames of 4 bytes are exactly too many.
    const QByteArray wav = silentFile(folder, kFileWave, format, std::int64_t{1} << 30, 10);
    EXPECT_TRUE(wav.startsWith(QByteArray("RF64\xff\xff\xff\xffWAVEds64\x1c\0\0\0", 20)));
    EXPECT_EQ(qFromLittleEndian<quint64>(wav.constData() + 20), static_cast<quint64>(wav.size()) - 8);
    EXPECT_EQ(qFromLittleEndian<quint64>(wav.constData() + 28), 40U);
    EXPECT_EQ(qFromLittleEndian<quint64>(wav.constData() + 36), 10U);
    EXPECT_EQ(ffprobeStream(folder.path(u"out"_s))[u"duration_ts"_s], u"10");
    EXPECT_TRUE(silentFile(folder, kFileWave, format, (std::int64_t{1} << 30) - 100, 10).startsWith("RIFF"));
}

TEST(PcmFileWriter, RefusesWhatItsContainersCannotHold)
{
    const AudioStreamDescription good = pcm(kBigEndianIntegers, 16, 2);
    EXPECT_EQ(PcmFileWriter::check(kFileAIFF, good, (std::int64_t{1} << 30) - 100), AudioFileStatus::Ok);
    EXPECT_EQ(PcmFileWriter::check(kFileAIFF, good, std::int64_t{1} << 30), AudioFileStatus::TooLarge);
    EXPECT_EQ(PcmFileWriter::check(kFileWave, good, 0), AudioFileStatus::UnsupportedDataFormat) << "big-endian";
    EXPECT_EQ(PcmFileWriter::check(kFileAIFF, pcm(kBigEndianIntegers, 16, 9), 0),
              AudioFileStatus::UnsupportedDataFormat);
    EXPECT_EQ(PcmFileWriter::check(kFileAIFF, pcm(kBigEndianIntegers, 20, 2), 0),
              AudioFileStatus::UnsupportedDataFormat);
    EXPECT_EQ(PcmFileWriter::check(kFileAIFF, pcm(kBigEndianIntegers, 0, 2), 0),
              AudioFileStatus::UnsupportedDataFormat);
}

} // namespace
} // namespace nurv
