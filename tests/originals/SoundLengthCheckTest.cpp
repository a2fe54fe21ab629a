// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "originals/SoundLengthCheck.h"

#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <QtEndian>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class SoundLengthCheckTest : public ::testing::Test {
protected:
    /// A WAV file of 22050 frames whose data chunk says that it has `frames`.
    QString lyingWav(const QString &name, quint32 frames)
    {
        QByteArray bytes = test::wavBytes({.frames = 22050});
        qToLittleEndian<quint32>(frames * 4, bytes.data() + bytes.indexOf("data") + 4);
        return folder.write(name, bytes);
    }

    test::TestFolder folder;
    QString wav = test::writeWav(folder.path(u"a.wav"_s), {.frames = 22050});
};

TEST_F(SoundLengthCheckTest, FindsNothingWhereTheLengthsAgree)
{
    for (const QString &output : {test::writeFlac(folder.path(u"a.flac"_s), {.frames = 22050}),
                                  test::writeAiff(folder.path(u"a.aiff"_s), {.frames = 22050})}) {
        const SoundLengthCheck check = SoundLengthCheck::of({wav}, {output});
        EXPECT_EQ(check.fault, std::nullopt) << qPrintable(*check.fault);
        EXPECT_TRUE(check.isKnown);
    }
}

TEST_F(SoundLengthCheckTest, KnowsNothingForSureWhenOneOfTheSourcesHasNoChecksum)
{
    const QString sound = test::writeFlac(folder.path(u"sound.flac"_s), {.frames = 22050});
    QByteArray bytes = folder.read(u"sound.flac"_s);
    const QString unsure = folder.write(u"unsure.flac"_s, bytes.replace(26, 16, QByteArray(16, '\0')));
    const QString both = test::writeWav(folder.path(u"both.wav"_s), {.frames = 44100});
    EXPECT_TRUE(SoundLengthCheck::of({sound, sound}, {both}).isKnown);
    for (const QStringList &sources : {QStringList{unsure, sound}, QStringList{sound, unsure}}) {
        const SoundLengthCheck check = SoundLengthCheck::of(sources, {both});
        EXPECT_EQ(check.fault, std::nullopt);
        EXPECT_FALSE(check.isKnown) << qPrintable(sources.join(u' '));
    }
}

TEST_F(SoundLengthCheckTest, FindsAnOutputThatHoldsLess)
{
    const QString output = test::writeFlac(folder.path(u"a.flac"_s), {.frames = 22049});
    EXPECT_EQ(SoundLengthCheck::of({wav}, {output}).fault, u"its output holds 22049 of 22050 samples");
}

TEST_F(SoundLengthCheckTest, TakesAnOutputThatHoldsMoreThanItsSourceTells)
{
    const QString output = test::writeFlac(folder.path(u"a.flac"_s), {.frames = 22051});
    EXPECT_EQ(SoundLengthCheck::of({wav}, {output}).fault, std::nullopt);
}

TEST_F(SoundLengthCheckTest, FindsAnOutputWithoutSound)
{
    const QString output = test::writeWav(folder.path(u"b.wav"_s), {.seconds = 0});
    EXPECT_EQ(SoundLengthCheck::of({wav}, {output}).fault, u"its output holds no sound");
    EXPECT_EQ(SoundLengthCheck::of({folder.write(u"x.wav"_s, "noise")}, {output}).fault, u"its output holds no sound");
}

TEST_F(SoundLengthCheckTest, FindsAnOutputThatIsNoSoundFile)
{
    const QString output = folder.write(u"a.flac"_s, "no sound at all");
    EXPECT_EQ(SoundLengthCheck::of({wav}, {output}).fault, u"its output is no sound file");
}

TEST_F(SoundLengthCheckTest, FindsAnOutputWhoseHeaderPromisesSomethingElse)
{
    const QString more = lyingWav(u"more.wav"_s, 30'000);
    EXPECT_EQ(SoundLengthCheck::of({wav}, {more}).fault,
              u"its output is not whole: its header promises 30000 samples, it holds 22050");
    const QString none = lyingWav(u"none.wav"_s, 0);
    EXPECT_EQ(SoundLengthCheck::of({wav}, {none}).fault,
              u"its output is not whole: its header promises 0 samples, it holds 22050");
}

TEST_F(SoundLengthCheckTest, BelievesWhatASourceHoldsAndNotAHeaderThatSaysLess)
{
    const QString source = lyingWav(u"crashed.wav"_s, 0);
    const QString cut = test::writeFlac(folder.path(u"cut.flac"_s), {.frames = 100});
    EXPECT_EQ(SoundLengthCheck::of({source}, {cut}).fault, u"its output holds 100 of 22050 samples");
    const QString whole = test::writeFlac(folder.path(u"whole.flac"_s), {.frames = 22050});
    EXPECT_EQ(SoundLengthCheck::of({source}, {whole}).fault, std::nullopt);
}

TEST_F(SoundLengthCheckTest, NamesASourceThatHoldsLessThanItPromises)
{
    const QString source = lyingWav(u"cut.wav"_s, 44'100);
    const QString output = test::writeFlac(folder.path(u"a.flac"_s), {.frames = 22050});
    EXPECT_EQ(SoundLengthCheck::of({source}, {output}).fault,
              u"damaged: its header promises 44100 samples, the file holds 22050");
}

TEST_F(SoundLengthCheckTest, FindsAnotherRateAndOtherChannels)
{
    const QString rate = test::writeFlac(folder.path(u"rate.flac"_s), {.rate = 48000, .frames = 22050});
    EXPECT_EQ(SoundLengthCheck::of({wav}, {rate}).fault,
              u"its output has 2 channels at 48000 Hz instead of 2 at 44100 Hz");
    const QString mono = test::writeFlac(folder.path(u"mono.flac"_s), {.channels = 1, .frames = 22050});
    EXPECT_EQ(SoundLengthCheck::of({wav}, {mono}).fault,
              u"its output has 1 channels at 44100 Hz instead of 2 at 44100 Hz");
}

TEST_F(SoundLengthCheckTest, DoesNotKnowTheLengthOfAStream)
{
    // Total samples of 0 mean "unknown" in STREAMINFO (RFC 9639, 8.2).
    QByteArray bytes;
    {
        test::writeFlac(folder.path(u"b.flac"_s), {.frames = 22050});
        bytes = folder.read(u"b.flac"_s);
    }
    bytes[21] = static_cast<char>(bytes[21] & 0xF0);
    // Nor is there an MD5.
    bytes.replace(22, 20, QByteArray(20, '\0'));
    const QString source = folder.write(u"pipe.flac"_s, bytes);
    const SoundLengthCheck check = SoundLengthCheck::of({source}, {wav});
    EXPECT_EQ(check.fault, std::nullopt);
    EXPECT_FALSE(check.isKnown);
    const QString less = test::writeWav(folder.path(u"less.wav"_s), {.frames = 22049});
    EXPECT_EQ(SoundLengthCheck::of({source}, {less}).fault, u"its output holds 22049 of 22050 samples"_s)
        << "by its last frame";
}

TEST_F(SoundLengthCheckTest, AddsUpSourcesAndOutputs)
{
    const QString first = test::writeWav(folder.path(u"1.wav"_s), {.frames = 10'000});
    const QString second = test::writeWav(folder.path(u"2.wav"_s), {.frames = 12'050});
    EXPECT_EQ(SoundLengthCheck::of({first, second}, {wav}).fault, std::nullopt);
    EXPECT_EQ(SoundLengthCheck::of({wav}, {first, second}).fault, std::nullopt);
    EXPECT_EQ(SoundLengthCheck::of({wav}, {first}).fault, u"its output holds 10000 of 22050 samples");
}

TEST_F(SoundLengthCheckTest, ComparesALossyOutputByItsDuration)
{
    const QString mp3 = test::writeByFfmpeg(folder.path(u"a.mp3"_s), {.frames = 22050});
    const QString opus = test::writeByFfmpeg(folder.path(u"a.opus"_s), {.frames = 22050}, {u"-ar"_s, u"48000"_s});
    for (const QString &output : {mp3, opus}) {
        const SoundLengthCheck check = SoundLengthCheck::ofLossy(wav, output);
        EXPECT_EQ(check.fault, std::nullopt) << qPrintable(*check.fault);
    }
    const QString longer = test::writeWav(folder.path(u"longer.wav"_s), {.frames = 44100});
    EXPECT_TRUE(SoundLengthCheck::ofLossy(longer, mp3).fault.value_or(QString()).startsWith(u"its output lasts "_s));
    const QString mono = test::writeWav(folder.path(u"mono.wav"_s), {.channels = 1, .frames = 22050});
    EXPECT_EQ(SoundLengthCheck::ofLossy(mono, opus).fault, u"its output has 2 channels instead of 1");
    EXPECT_EQ(SoundLengthCheck::ofLossy(wav, folder.write(u"b.mp3"_s, "no sound")).fault, u"its output is no sound file");
}

} // namespace
} // namespace nurv
