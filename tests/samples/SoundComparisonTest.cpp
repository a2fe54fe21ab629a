// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/SoundComparison.h"

#include "SampleFixtures.h"
#include "support/TestProgram.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using namespace test;
using Relation = SoundComparison::Relation;
using Result = SoundComparison::Result;

const SoundShape kSound{.frames = 30'000};
constexpr qsizetype kHeaderBytes = 44;
constexpr qsizetype kFrameBytes = 4;

/// A WAV file of 16 bits with those samples.
QByteArray wavOf(const QByteArray &samples, int channels = 2)
{
    QByteArray wav = wavBytes({.channels = channels, .frames = 1}).left(kHeaderBytes);
    wav = patched(wav, 40, little32(static_cast<std::uint32_t>(samples.size())));
    return patched(wav, 4, little32(static_cast<std::uint32_t>(samples.size()) + 36)) + samples;
}

struct SoundComparisonTest : ::testing::Test {
    TestFolder folder;
    std::vector<double> told;
    QByteArray samples = makeSamples(kSound);

    [[nodiscard]] Result compare(const QStringList &sources, const QStringList &outputs,
                                 Relation relation = Relation::Equal)
    {
        told.clear();
        return SoundComparison::compare(
            sources, outputs, relation, [this](double percent) { told.push_back(percent); }, [] { return false; });
    }
    [[nodiscard]] QString write(const QString &name, const QByteArray &ofSamples) const
    {
        return folder.write(name, wavOf(ofSamples));
    }
    void expectProven(const Result &result, std::int64_t frames) const
    {
        EXPECT_TRUE(result.isProven) << qPrintable(result.difference);
        EXPECT_EQ(result.difference, QString());
        EXPECT_EQ(result.frames, frames);
        EXPECT_FALSE(result.wasGivenUp);
        ASSERT_FALSE(told.empty());
        EXPECT_EQ(told.front(), 0.0);
        EXPECT_EQ(told.back(), 100.0);
        EXPECT_TRUE(std::ranges::is_sorted(told));
        EXPECT_LE(told.size(), 102U);
    }
    void expectDifference(const Result &result, const QString &difference) const
    {
        EXPECT_FALSE(result.isProven);
        EXPECT_EQ(result.difference, difference);
        EXPECT_FALSE(result.wasGivenUp);
        EXPECT_TRUE(std::ranges::is_sorted(told));
    }
    [[nodiscard]] QByteArray frames(qsizetype from, qsizetype count) const
    {
        return samples.mid(from * kFrameBytes, count * kFrameBytes);
    }
};

QByteArray silence(qsizetype frameCount)
{
    return QByteArray(frameCount * kFrameBytes, '\0');
}

TEST_F(SoundComparisonTest, ProvesEveryFormatAgainstEveryOther)
{
    QStringList paths;
    for (const QString &kind : {u"wav"_s, u"aiff"_s, u"flac"_s, u"wv"_s, u"tta"_s, u"ape3000"_s, u"shn"_s, u"m4a"_s})
        paths << makeSound(folder, kind, kSound);
    for (const QString &source : paths) {
        for (const QString &output : paths) {
            SCOPED_TRACE(::testing::Message() << qPrintable(source) << " to " << qPrintable(output));
            expectProven(compare({source}, {output}), 30'000);
        }
    }
}

TEST_F(SoundComparisonTest, NamesTheFirstSampleThatIsDifferent)
{
    const QString source = write(u"source.wav"_s, samples);
    for (const auto &[frame, channel, time] : {std::tuple(0, 1, u"0:00.000"_s), std::tuple(22'050, 2, u"0:00.500"_s),
                                               std::tuple(29'999, 1, u"0:00.680"_s)}) {
        QByteArray other = samples;
        for (qsizetype at = frame * kFrameBytes + (channel - 1) * 2; at < other.size(); at += 1000)
            other[at] = static_cast<char>(other[at] ^ 1);
        expectDifference(compare({source}, {write(u"output.wav"_s, other)}),
                         u"sample %1 of channel %2 (at %3) is different"_s.arg(frame).arg(channel).arg(time));
    }
}

TEST_F(SoundComparisonTest, CountsWhatAnOutputLacks)
{
    const QString source = write(u"source.wav"_s, samples);
    expectDifference(compare({source}, {write(u"output.wav"_s, frames(0, 29'999))}),
                     u"its output holds 29999 of 30000 samples"_s);
    expectDifference(compare({source}, {write(u"output.wav"_s, samples + silence(3))}),
                     u"its output holds 30003 samples, the source 30000"_s);
    // To the real end of the source, whatever its header says.
    const QByteArray crashed = patched(wavOf(samples), 40, little32(0));
    expectDifference(compare({folder.write(u"crashed.wav"_s, crashed)}, {write(u"output.wav"_s, frames(0, 10))}),
                     u"its output holds 10 of 30000 samples"_s);
    expectProven(compare({folder.path(u"crashed.wav"_s)}, {source}), 30'000);
}

TEST_F(SoundComparisonTest, DoesNotTakeAnOutputWhoseHeaderOthersWouldBelieve)
{
    const QString source = write(u"source.wav"_s, samples);
    for (const auto &[size, promised] : {std::pair(0U, 0), std::pair(40'000U, 10'000), std::pair(240'000U, 60'000)}) {
        const QByteArray lying = patched(wavOf(samples), 40, little32(size));
        expectDifference(compare({source}, {folder.write(u"output.wav"_s, lying)}),
                         u"the output is damaged: its header promises %1 samples, it holds 30000"_s.arg(promised));
    }
}

TEST_F(SoundComparisonTest, TellsWhichSideIsDamaged)
{
    const QString good = write(u"good.wav"_s, samples);
    const QString flac = makeSound(folder, u"flac"_s, kSound);
    const QByteArray bytes = folder.read(u"sound.flac"_s);
    const QString damaged = folder.write(u"damaged.flac"_s, patched(bytes, bytes.size() / 2, "xxxx"));
    EXPECT_EQ(compare({damaged}, {good}).difference.left(22), u"the source is damaged: "_s.left(22));
    EXPECT_EQ(compare({good}, {damaged}).difference.left(22), u"the output is damaged: "_s.left(22));
    const QString text = folder.write(u"text.flac"_s, "some text, not a sound");
    EXPECT_EQ(compare({text}, {good}).difference.left(30), u"the source cannot be decoded: "_s);
    EXPECT_EQ(compare({good}, {text}).difference.left(30), u"the output cannot be decoded: "_s);
    expectDifference(compare({good}, {folder.path(u"missing.flac"_s)}),
                     u"the output cannot be decoded: No such file or directory"_s);
    // A damaged source is damaged, even where its output is as short as what comes of it.
    const QString cut = folder.write(u"cut.wav"_s, wavOf(samples).chopped(400));
    expectDifference(compare({cut}, {write(u"output.wav"_s, frames(0, 29'900))}),
                     u"the source is damaged: its header promises 30000 samples, it holds 29900"_s);
    expectDifference(compare({cut}, {write(u"output.wav"_s, frames(0, 10))}),
                     u"the source is damaged: its header promises 30000 samples, it holds 29900"_s);
}

TEST_F(SoundComparisonTest, ProvesNothingWithoutSound)
{
    const QString empty = write(u"empty.wav"_s, {});
    const QString sound = write(u"sound.wav"_s, samples);
    for (const Relation relation : {Relation::Equal, Relation::Prefix, Relation::Contained}) {
        expectDifference(compare({empty}, {empty}, relation), u"the source holds no sound"_s);
        expectDifference(compare({sound}, {empty}, relation), u"the output holds no sound"_s);
        expectDifference(compare({empty}, {sound}, relation), u"the source holds no sound"_s);
    }
    expectDifference(compare({sound}, {}), u"there is no output"_s);
    expectDifference(compare({}, {sound}), u"there is no source"_s);
}

TEST_F(SoundComparisonTest, ProvesNothingOfLossyFiles)
{
    const QString lossy = writeByFfmpeg(folder.path(u"lossy.m4a"_s), kSound);
    const QString sound = write(u"sound.wav"_s, samples);
    expectDifference(compare({lossy}, {sound}), u"the source is lossy: what it was made of is not in it"_s);
    expectDifference(compare({sound}, {lossy}), u"the output is lossy: what it was made of is not in it"_s);
}

TEST_F(SoundComparisonTest, ComparesFormatsBeforeSamples)
{
    const QString source = write(u"source.wav"_s, samples);
    const auto other = [this](const SoundShape &shape) { return writeWav(folder.path(u"other.wav"_s), shape); };
    expectDifference(compare({source}, {other({.rate = 48000})}),
                     u"its output has a sample rate of 48000 instead of 44100 Hz"_s);
    expectDifference(compare({source}, {other({.channels = 1})}), u"its output has 1 instead of 2 channels"_s);
    expectDifference(compare({source}, {other({.bits = 8})}), u"its output has samples of 8 instead of 16 bits"_s);
    const QString floats = folder.path(u"float.wav"_s);
    runOrFail(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, source, u"-c:a"_s, u"pcm_f32le"_s, floats});
    expectDifference(compare({source}, {floats}), u"its output has floating-point numbers instead of integers"_s);
    expectProven(compare({floats}, {floats}), 30'000);
    const QString wide = folder.path(u"wide.wav"_s);
    runOrFail(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, source, u"-c:a"_s, u"pcm_s24le"_s, wide});
    expectProven(compare({source}, {wide}), 30'000);
    expectDifference(compare({wide}, {source}), u"its output has samples of 16 instead of 24 bits"_s);
}

TEST_F(SoundComparisonTest, ComparesJoinedFiles)
{
    const QString whole = write(u"whole.wav"_s, samples);
    const QString first = write(u"1.wav"_s, frames(0, 10'001));
    const QString second = makeSound(folder, u"flac"_s, kSound);
    runOrFail(u"flac"_s, {u"--silent"_s, u"--force"_s, u"-o"_s, second, write(u"2.wav"_s, frames(10'001, 19'999))});
    expectProven(compare({whole}, {first, second}), 30'000);
    expectProven(compare({first, second}, {whole}), 30'000);
    expectProven(compare({first, second}, {first, second}), 30'000);
    expectDifference(compare({whole}, {second, first}), u"sample 0 of channel 1 (at 0:00.000) is different"_s);
    expectDifference(compare({whole}, {first}), u"its output holds 10001 of 30000 samples"_s);
    const QString lying = folder.write(u"lying.wav"_s, patched(wavOf(frames(10'001, 19'999)), 40, little32(0)));
    expectDifference(compare({whole}, {first, lying}),
                     u"the output \"lying.wav\" is damaged: its header promises 0 samples, it holds 19999"_s);
    const QString mono = folder.write(u"mono.wav"_s, wavOf(frames(10'001, 19'999), 1));
    expectDifference(compare({first, mono}, {whole}),
                     u"the source \"mono.wav\" cannot be joined: its rate, channels or "
                     "kind of samples are not those of the first file"_s);
    const QString wide = folder.path(u"wide.wav"_s);
    runOrFail(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, folder.path(u"2.wav"_s), u"-c:a"_s, u"pcm_s24le"_s, wide});
    expectDifference(compare({first, wide}, {whole}), u"its output has samples of 16 instead of 24 bits"_s);
}

TEST_F(SoundComparisonTest, PrefixAllowsSilenceBehindTheSources)
{
    const QString source = write(u"source.wav"_s, samples);
    const auto padded = [this](const QByteArray &behind) { return write(u"padded.wav"_s, samples + behind); };
    expectProven(compare({source}, {padded({})}, Relation::Prefix), 30'000);
    expectProven(compare({source}, {padded(silence(500))}, Relation::Prefix), 30'500);
    expectProven(compare({source}, {padded(silence(200'000))}, Relation::Prefix), 230'000);
    expectProven(compare({source}, {source, write(u"more.wav"_s, silence(588))}, Relation::Prefix), 30'588);
    expectDifference(compare({source}, {padded(patched(silence(500), 4 * 400 + 2, "x"))}, Relation::Prefix),
                     u"sample 30400 of channel 2 (at 0:00.689) is not silent"_s);
    expectDifference(compare({source}, {write(u"output.wav"_s, frames(0, 29'999))}, Relation::Prefix),
                     u"its output holds 29999 of 30000 samples"_s);
    expectDifference(
        compare({source}, {write(u"output.wav"_s, patched(samples, 0, "xx") + silence(5))}, Relation::Prefix),
        u"sample 0 of channel 1 (at 0:00.000) is different"_s);
    // The silence of eight bits is 128.
    const SoundShape narrow{.bits = 8, .channels = 1, .frames = 1'000};
    const QByteArray eight = wavBytes(narrow);
    const QByteArray longer = patched(eight + QByteArray(24, '\x80'), 40, little32(1'024));
    expectProven(compare({folder.write(u"8.wav"_s, eight)}, {folder.write(u"8p.wav"_s, longer)}, Relation::Prefix),
                 1'024);
}

TEST_F(SoundComparisonTest, ContainedAllowsAnyStretch)
{
    const QString source = write(u"source.wav"_s, samples);
    for (const auto &[from, count] : {std::pair(0, 30'000), std::pair(0, 1), std::pair(0, 10'000), std::pair(1, 29'999),
                                      std::pair(20'000, 10'000), std::pair(29'999, 1), std::pair(777, 1'234)})
        expectProven(compare({source}, {write(u"part.wav"_s, frames(from, count))}, Relation::Contained), count);
    const QString notFound = u"its output is no stretch of the source"_s;
    expectDifference(compare({source}, {write(u"part.wav"_s, samples + silence(1))}, Relation::Contained), notFound);
    expectDifference(compare({source}, {write(u"part.wav"_s, silence(1) + frames(0, 100))}, Relation::Contained),
                     notFound);
    expectDifference(
        compare({source}, {write(u"part.wav"_s, patched(frames(5, 20'000), 70'000, "xx"))}, Relation::Contained),
        notFound);
    expectDifference(
        compare({source}, {write(u"part.wav"_s, frames(5, 10'000) + frames(10'006, 10'000))}, Relation::Contained),
        notFound);
    // Half a frame later the samples are there, but of the other channel.
    expectDifference(compare({source}, {write(u"part.wav"_s, samples.mid(2, 4'000))}, Relation::Contained), notFound);
}

TEST_F(SoundComparisonTest, ContainedFindsWhatBeginsLikeManyOtherPlaces)
{
    // Longer than a block, so that the beginning alone is everywhere.
    const QByteArray quiet = silence(100'000);
    const QString source = write(u"source.wav"_s, quiet + frames(0, 5'000) + quiet + frames(5'000, 5'000) + quiet);
    const auto part = [this](const QByteArray &bytes) { return write(u"part.wav"_s, bytes); };
    expectProven(compare({source}, {part(silence(70'000) + frames(0, 5'000))}, Relation::Contained), 75'000);
    expectProven(compare({source}, {part(silence(70'000) + frames(5'000, 5'000))}, Relation::Contained), 75'000);
    expectProven(compare({source}, {part(quiet + frames(5'000, 5'000) + quiet)}, Relation::Contained), 205'000);
    expectProven(compare({source}, {part(silence(99'999))}, Relation::Contained), 99'999);
    const QString notFound = u"its output is no stretch of the source"_s;
    expectDifference(compare({source}, {part(silence(100'001))}, Relation::Contained), notFound);
    expectDifference(compare({source}, {part(silence(70'000) + frames(1, 5'000))}, Relation::Contained), notFound);
    expectDifference(compare({source}, {part(silence(400'000))}, Relation::Contained), notFound);
}

TEST_F(SoundComparisonTest, ContainedWorksAcrossFilesAndFormats)
{
    const QString first = write(u"1.wav"_s, frames(0, 12'345));
    const QString second = folder.path(u"2.flac"_s);
    runOrFail(u"flac"_s, {u"--silent"_s, u"-o"_s, second, write(u"2.wav"_s, frames(12'345, 17'655))});
    expectProven(compare({first, second}, {write(u"part.wav"_s, frames(10'000, 10'000))}, Relation::Contained), 10'000);
    expectProven(compare({first, second},
                         {write(u"a.wav"_s, frames(100, 1'000)), write(u"b.wav"_s, frames(1'100, 20'000))},
                         Relation::Contained),
                 21'000);
}

TEST_F(SoundComparisonTest, ContainedWantsAWholeSource)
{
    const QString cut = folder.write(u"cut.wav"_s, wavOf(samples).chopped(4'000));
    expectDifference(compare({cut}, {write(u"part.wav"_s, frames(10, 100))}, Relation::Contained),
                     u"the source is damaged: its header promises 30000 samples, it holds 29000"_s);
}

TEST_F(SoundComparisonTest, GivesUpWhenItIsUnwanted)
{
    const QString source = write(u"source.wav"_s, silence(2'000'000));
    for (const Relation relation : {Relation::Equal, Relation::Prefix, Relation::Contained}) {
        for (const int patience : {0, 1, 5, 20}) {
            int asked = 0;
            const Result result = SoundComparison::compare(
                {source}, {source}, relation, [](double) {}, [&asked, patience] { return ++asked > patience; });
            EXPECT_TRUE(result.wasGivenUp);
            EXPECT_FALSE(result.isProven);
            EXPECT_EQ(result.difference, QString());
            EXPECT_EQ(asked, patience + 1);
        }
    }
}

TEST_F(SoundComparisonTest, NeedsNobodyWhoListens)
{
    const QString source = write(u"source.wav"_s, samples);
    EXPECT_TRUE(SoundComparison::compare({source}, {source}, Relation::Equal, {}, {}).isProven);
    EXPECT_TRUE(SoundComparison::compare({source}, {source}, Relation::Contained, {}, {}).isProven);
}

} // namespace
TEST_F(SoundComparisonTest, TakesAFlacFileWithAPictureOfAnUnknownKind)
{
    const QString wav = write(u"a.wav"_s, samples);
    const QString flac = writeFlac(folder.path(u"a.flac"_s), kSound);
    const QString icon = folder.write(u"a.ico"_s, "an icon");
    const ProgramResult imported = runProgram(
        u"metaflac"_s, {u"--import-picture-from=3|image/x-icon||16x16x24|"_s + icon, flac});
    ASSERT_EQ(imported.exitStatus, 0) << imported.errors.constData();
    expectProven(compare({flac}, {wav}), kSound.frames);
}

} // namespace nurv
