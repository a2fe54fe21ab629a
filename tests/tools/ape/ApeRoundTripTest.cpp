// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeEncoder.h"
#include "ape/ApeError.h"
#include "ApeSounds.h"
#include "support/AudioFixtures.h"
#include "support/InputFile.h"
#include "support/OutputFile.h"
#include "support/TestFolder.h"

#include <QFile>

#include <gtest/gtest.h>

#include <tuple>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

void expectTheSameBack(const QByteArray &wav, ApeLevel level)
{
    EXPECT_TRUE(isSame(decoded(encoded(wav, level)), wav)) << static_cast<int>(level);
}

/// Bits, channels.
class ApeRoundTrip : public ::testing::TestWithParam<std::tuple<unsigned, unsigned>> {
protected:
    [[nodiscard]] static PcmShape shape()
    {
        return {.bits = std::get<0>(GetParam()), .channels = std::get<1>(GetParam())};
    }
};

TEST_P(ApeRoundTrip, GivesBackEverySound)
{
    for (const Sound sound : {Sound::Silence, Sound::Square, Sound::Alternation, Sound::Noise, Sound::Bursts,
                              Sound::Sweep, Sound::EqualChannels, Sound::OneChannel, Sound::Music}) {
        SCOPED_TRACE(static_cast<int>(sound));
        const QByteArray wav = wavOf(sound, shape(), 30000);
        for (const ApeLevel level : kApeLevels)
            expectTheSameBack(wav, level);
    }
}

TEST_P(ApeRoundTrip, GivesBackTheShortestSounds)
{
    for (const size_t blocks : {1U, 2U, 15U, 16U, 17U, 1023U, 1024U, 1025U, 4095U, 4096U, 4097U}) {
        SCOPED_TRACE(blocks);
        const QByteArray wav = wavOf(Sound::Sweep, shape(), blocks);
        for (const ApeLevel level : kApeLevels)
            expectTheSameBack(wav, level);
    }
}

TEST_P(ApeRoundTrip, GivesBackLengthsAroundFrames)
{
    const size_t frame = apeBlocksPerFrame(ApeLevel::Fast);
    for (const size_t blocks : {frame - 1, frame, frame + 1, 2 * frame, 2 * frame + 1}) {
        SCOPED_TRACE(blocks);
        const QByteArray wav = wavOf(Sound::Square, shape(), blocks);
        for (const ApeLevel level : {ApeLevel::Fast, ApeLevel::Normal, ApeLevel::High})
            expectTheSameBack(wav, level);
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, ApeRoundTrip,
                         ::testing::Combine(::testing::Values(8U, 16U, 24U), ::testing::Values(1U, 2U)));

TEST(ApeLongFrames, GivesBackLengthsAroundFrames)
{
    for (const ApeLevel level : {ApeLevel::ExtraHigh, ApeLevel::Insane}) {
        const size_t frame = apeBlocksPerFrame(level);
        for (const size_t blocks : {frame, frame + 1})
            expectTheSameBack(wavOf(Sound::Square, {.bits = 8, .channels = 1}, blocks), level);
    }
}

TEST(ApeStoredParts, AreGivenBackByteForByte)
{
    const PcmShape shape{.bits = 8, .channels = 1};
    const QByteArray pcm = pcmOf(makeSamples(Sound::Music, shape, 1001), shape);
    const QByteArray plain = wavOf(pcm, shape);
    const QByteArray before = riffChunk("LIST", "INFO1") + riffChunk("fact", "four");
    const QByteArray chunked = plain.first(36) + before + plain.mid(36) + '\0' + riffChunk("id3 ", "odd");
    for (const ApeLevel level : kApeLevels) {
        expectTheSameBack(plain, level); // without the pad byte that it should have
        expectTheSameBack(chunked, level);
        expectTheSameBack(chunked + "rubbish behind the last chunk", level);
    }
}

TEST(ApeStoredParts, HoldAnIncompleteLastBlock)
{
    const PcmShape shape{.bits = 24};
    const QByteArray pcm = pcmOf(makeSamples(Sound::Music, shape, 500), shape);
    const QByteArray wav = wavOf(pcm + "abcde", shape) + '\0' + riffChunk("LIST", "INFO");
    expectTheSameBack(wav, ApeLevel::Normal);
}

TEST(ApeStoredParts, KeepAHeaderThatAnnouncesMoreThanThereIs)
{
    const QByteArray wav = wavOf(Sound::Music, {}, 100000);
    expectTheSameBack(wav.first(200'003), ApeLevel::Normal);
}

TEST(ApeStoredParts, KeepExtensibleHeaders)
{
    expectTheSameBack(wavBytes({.bits = 24, .frames = 5000, .extensible = true}), ApeLevel::High);
}

/// The number that encoding the file fails with.
int errorOf(const QByteArray &wav)
{
    try {
        return encoded(wav, ApeLevel::Normal).isEmpty() ? 0 : 1;
    } catch (const ToolError &error) {
        return static_cast<int>(apeErrorNumber(error));
    }
}

TEST(ApeEncoderInput, IsRefusedWithTheNumberThatTellsWhy)
{
    const auto changed = [](QByteArray wav, qsizetype at, char value) {
        wav[at] = value;
        return wav;
    };
    const QByteArray wav = wavOf(Sound::Music, {}, 100);
    EXPECT_EQ(errorOf(wav), 1);
    EXPECT_EQ(errorOf("no sound at all"), 1002);
    EXPECT_EQ(errorOf(changed(wav, 3, 'X')), 1013);
    EXPECT_EQ(errorOf(wavBytes({.bits = 32, .frames = 10})), 1005);
    EXPECT_EQ(errorOf(wavBytes({.channels = 3, .frames = 10})), 1007);
    EXPECT_EQ(errorOf(changed(wav, 20, 3)), 1013);
    EXPECT_EQ(errorOf(wavOf(Sound::Music, {.rate = 0}, 100)), 1006);
    EXPECT_EQ(errorOf(wavOf(Sound::Music, {}, 0)), 1008);
    QByteArray empty = wavOf({}, PcmShape{}) + riffChunk("LIST", "INFO");
    empty[4] = static_cast<char>(empty.size() - 8);
    EXPECT_EQ(errorOf(empty), 1008);
}

/// The number that encoding fails with when the file gets another size after its header was read.
int errorOfChanging(const QByteArray &wav, qint64 size)
{
    const TestFolder folder;
    const QString path = folder.write(u"a.wav"_s, wav);
    InputFile input(path.toStdString());
    ApeEncoder encoder(input, ApeLevel::Fast);
    OutputFile output(folder.path(u"a.ape"_s).toStdString(), input);
    EXPECT_TRUE(QFile::resize(path, size));
    try {
        encoder.encode(output);
    } catch (const ToolError &error) {
        return static_cast<int>(apeErrorNumber(error));
    }
    return 0;
}

TEST(ApeEncoderInput, IsRefusedWhenItsSizeChangesMeanwhile)
{
    QByteArray wav = wavOf(Sound::Music, {}, 300'000);
    EXPECT_EQ(errorOfChanging(wav, wav.size()), 0);
    EXPECT_EQ(errorOfChanging(wav, wav.size() / 2), 1000);
    EXPECT_EQ(errorOfChanging(wav, wav.size() + 1), 1000);
    // The chunks behind the sound.
    EXPECT_EQ(errorOfChanging(wav + riffChunk("LIST", QByteArray(1000, 'x')), wav.size() + 500), 1000);
    // The size unknown.
    wav.replace(40, 4, QByteArray(4, '\xFF'));
    EXPECT_EQ(errorOfChanging(wav, wav.size()), 0);
    EXPECT_EQ(errorOfChanging(wav, wav.size() / 2), 1000);
    EXPECT_EQ(errorOfChanging(wav, wav.size() * 2), 1000);
}

} // namespace

} // namespace nurv::test
