// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/LossyComparison.h"

#include "samples/SoundLength.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using namespace test;

constexpr std::int64_t kFrames = 66'150;

class LossyComparisonTest : public ::testing::Test {
protected:
    TestFolder folder;
    QString wav = writeWav(folder.path(u"a.wav"_s), {.frames = kFrames});
    QList<double> told;

    [[nodiscard]] SoundComparison::Result compare(const QString &output, const QString &source = {})
    {
        told.clear();
        return LossyComparison::compare(
            source.isEmpty() ? wav : source, output, [this](double percent) { told.append(percent); }, [] { return false; });
    }
    /// The sound of that many frames, encoded by the program of the extension.
    [[nodiscard]] QString encoded(const QString &name, std::int64_t frames = kFrames, int channels = 2)
    {
        const QString source = writeWav(folder.path(u"source.wav"_s), {.channels = channels, .frames = frames});
        const QString output = folder.path(name);
        const ProgramResult result =
            name.endsWith(u".mp3"_s)    ? runProgram(u"lame"_s, {u"--quiet"_s, u"-V"_s, u"4"_s, source, output})
            : name.endsWith(u".opus"_s) ? runProgram(u"opusenc"_s, {u"--quiet"_s, source, output})
                                        : runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, source, output});
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
        return output;
    }
};

TEST_F(LossyComparisonTest, ProvesWhatLastsAsLong)
{
    for (const QString &name : {u"a.mp3"_s, u"a.opus"_s, u"a.m4a"_s}) {
        const SoundComparison::Result result = compare(encoded(name));
        EXPECT_TRUE(result.isProven) << qPrintable(result.difference);
        EXPECT_GT(result.frames, kFrames - 1);
        EXPECT_FALSE(told.isEmpty());
    }
}

TEST_F(LossyComparisonTest, SeesAnOutputThatIsTooShortOrTooLong)
{
    for (const QString &name : {u"a.mp3"_s, u"a.opus"_s, u"a.m4a"_s}) {
        for (const std::int64_t frames : {kFrames - 2'600, kFrames + 2'600}) {
            const SoundComparison::Result result = compare(encoded(QString::number(frames) + name, frames));
            EXPECT_FALSE(result.isProven) << qPrintable(name) << frames;
            EXPECT_TRUE(result.difference.startsWith(u"the output lasts "_s)) << qPrintable(result.difference);
        }
    }
}

TEST_F(LossyComparisonTest, SeesAnotherNumberOfChannels)
{
    EXPECT_EQ(compare(encoded(u"a.opus"_s, kFrames, 1)).difference, u"the output has 1 channels instead of 2");
}

TEST_F(LossyComparisonTest, SeesACutOutput)
{
    for (const QString &name : {u"a.mp3"_s, u"a.opus"_s, u"a.m4a"_s}) {
        const QString output = encoded(name);
        ASSERT_TRUE(QFile::resize(output, QFileInfo(output).size() * 3 / 4));
        const SoundComparison::Result result = compare(output);
        EXPECT_FALSE(result.isProven) << qPrintable(name);
        EXPECT_FALSE(result.difference.isEmpty());
    }
}

TEST_F(LossyComparisonTest, SeesAnOutputWithoutSound)
{
    // Less than a frame of sound, and none in the output.
    const QString blink = writeWav(folder.path(u"blink.wav"_s), {.rate = 48000, .frames = 700});
    const QString empty = writeWav(folder.path(u"empty.wav"_s), {.rate = 48000, .frames = 1});
    const QString opus = folder.path(u"a.opus"_s);
    ASSERT_EQ(runProgram(u"opusenc"_s, {u"--quiet"_s, empty, opus}).exitStatus, 0);
    QByteArray bytes = folder.read(u"a.opus"_s);
    // Its last page says that it ends where it begins: at the samples before the sound. Nobody looks at the checksum.
    const qsizetype last = bytes.lastIndexOf("OggS");
    bytes.replace(last + 6, 8, QByteArray(8, '\0'));
    folder.write(u"a.opus"_s, bytes);
    const SoundComparison::Result result = compare(opus, blink);
    EXPECT_FALSE(result.isProven);
    EXPECT_FALSE(result.difference.isEmpty());
}

TEST_F(LossyComparisonTest, TakesNothingForASourceThatIsLossyItself)
{
    const QString mp3 = encoded(u"a.mp3"_s);
    EXPECT_EQ(compare(mp3, mp3).difference, u"the source is lossy: nothing made of it stands for it");
}

TEST_F(LossyComparisonTest, SeesWhatCannotBeDecoded)
{
    const QString output = folder.write(u"a.opus"_s, "OggS and nothing else");
    EXPECT_FALSE(compare(output).isProven);
    EXPECT_TRUE(compare(output).difference.startsWith(u"the output cannot be decoded to its end: "_s));
    const QString source = folder.write(u"b.flac"_s, "fLaC and nothing else");
    EXPECT_TRUE(compare(encoded(u"b.mp3"_s), source).difference.startsWith(u"the source cannot be decoded to its end: "_s));
    EXPECT_FALSE(compare(folder.path(u"nowhere.mp3"_s)).isProven);
}

TEST_F(LossyComparisonTest, IsGivenUpWhenNobodyWantsIt)
{
    const auto result = LossyComparison::compare(wav, encoded(u"a.mp3"_s), {}, [] { return true; });
    EXPECT_TRUE(result.wasGivenUp);
    EXPECT_FALSE(result.isProven);
}

TEST_F(LossyComparisonTest, KnowsTheLengthOfWhatIsThereOfAnMp3)
{
    for (const auto &[name, arguments] : {std::pair{u"v.mp3"_s, QStringList{u"-V"_s, u"2"_s}},
                                         std::pair{u"c.mp3"_s, QStringList{u"-b"_s, u"128"_s}},
                                         std::pair{u"m.mp3"_s, QStringList{u"-m"_s, u"m"_s}},
                                         std::pair{u"low.mp3"_s, QStringList{u"--resample"_s, u"22.05"_s}}}) {
        const QString mp3 = folder.path(name);
        ASSERT_EQ(runProgram(u"lame"_s, QStringList{u"--quiet"_s} + arguments + QStringList{wav, mp3}).exitStatus, 0);
        const auto seconds = [&mp3] {
            const SoundLength length = soundLength(mp3).value_or(SoundLength{});
            return static_cast<double>(length.roughFrames.value_or(0)) / length.sampleRateHz;
        };
        EXPECT_NEAR(seconds(), 1.5, 0.1) << qPrintable(name);
        ASSERT_TRUE(QFile::resize(mp3, QFileInfo(mp3).size() / 2));
        EXPECT_NEAR(seconds(), 0.75, 0.1) << qPrintable(name);
    }
}

} // namespace
} // namespace nurv
