// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/AudioConversionFixture.h"

#include <QtEndian>

#include <cmath>

using namespace Qt::StringLiterals;

namespace nurv::test {
namespace {

using EncodeCoreAudioSyncTest = AudioConversionFixture;

/// The names of the top-level boxes of an MPEG-4 file, in their order.
QList<QByteArray> boxes(const QByteArray &file)
{
    QList<QByteArray> names;
    for (qsizetype at = 0; at + 8 <= file.size();) {
        const quint32 size = qFromBigEndian<quint32>(file.constData() + at);
        names.append(file.mid(at + 4, 4));
        if (size < 8)
            break;
        at += size;
    }
    return names;
}

TEST_F(EncodeCoreAudioSyncTest, NamesTheOutputInMessages)
{
    NURVTask job(nullptr);
    const auto name = [&job](FourCharCode format, FourCharCode file) {
        return EncodeCoreAudioSync(job, u"a"_s, u"b"_s, format, file).formatStringValue();
    };
    EXPECT_EQ(name(kFormatAAC, kFileM4A), u"AAC");
    EXPECT_EQ(name(kFormatAppleLossless, kFileM4A), u"Apple Lossless");
    EXPECT_EQ(name(kFormatLinearPCM, kFileAIFF), u"AIFF");
    EXPECT_EQ(name(kFormatLinearPCM, kFileWave), u"WAV");
    EXPECT_EQ(name(kFormatLinearPCM, kFileM4A), u"WAV");
    EXPECT_TRUE(name(fourCharCode("mp3 "), kFileM4A).isNull());
}

TEST_F(EncodeCoreAudioSyncTest, PutsTheIndexBeforeTheSound)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.seconds = 20.0});
    for (const FourCharCode format : {kFormatAppleLossless, kFormatAAC}) {
        ASSERT_FALSE(convert(source, folder.path(u"a.m4a"_s), format, kFileM4A)->error());
        const QList<QByteArray> names = boxes(folder.read(u"a.m4a"_s));
        ASSERT_GE(names.indexOf("moov"), 1) << names.join(' ').constData();
        EXPECT_EQ(names.first(), "ftyp");
        EXPECT_LT(names.indexOf("moov"), names.indexOf("mdat")) << names.join(' ').constData();
        EXPECT_EQ(names.count("mdat"), 1);
    }
}

TEST_F(EncodeCoreAudioSyncTest, PutsTheIndexBeforeSoundOfUnknownLength)
{
    // FLAC from a pipe to a pipe does not tell its length.
    const SoundShape shape{.frames = 30000};
    const ProgramResult flac = runProgram(u"flac"_s, {u"--silent"_s, u"-c"_s, u"-"_s}, wavBytes(shape));
    ASSERT_EQ(flac.exitStatus, 0);
    QByteArray bytes = flac.output;
    bytes.replace(21, 5, QByteArray(1, static_cast<char>(bytes[21] & '\xF0')) + QByteArray(4, '\0'));
    const QString m4a = folder.path(u"a.m4a"_s);
    ASSERT_FALSE(toAppleLossless(folder.write(u"a.flac"_s, bytes), m4a)->error());
    const QList<QByteArray> names = boxes(folder.read(u"a.m4a"_s));
    EXPECT_LT(names.indexOf("moov"), names.indexOf("mdat")) << names.join(' ').constData();
    EXPECT_EQ(decodedMd5(m4a), soundMd5(shape));
    EXPECT_TRUE(shown.isEmpty()) << "there is no share of an unknown length";
}

TEST_F(EncodeCoreAudioSyncTest, GivesTheSameFileForTheSameSound)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.seconds = 2.0});
    for (const FourCharCode format : {kFormatAppleLossless, kFormatAAC}) {
        ASSERT_FALSE(convert(source, folder.path(u"a.m4a"_s), format, kFileM4A)->error());
        ASSERT_FALSE(convert(source, folder.path(u"b.m4a"_s), format, kFileM4A)->error());
        EXPECT_EQ(folder.read(u"a.m4a"_s), folder.read(u"b.m4a"_s));
        EXPECT_TRUE(ffprobeTags(folder.path(u"a.m4a"_s)).value(u"encoder"_s).isEmpty());
    }
}

TEST_F(EncodeCoreAudioSyncTest, ShowsEachFurtherPercentOfItsPassesTimesTheirFrames)
{
    // 32768 bytes are 8192 frames; 10 full passes and one of 2000 frames.
    const int frames = 10 * 8192 + 2000;
    ASSERT_FALSE(toAiff(writeWav(folder.path(u"a.wav"_s), {.frames = frames}), folder.path(u"a.aiff"_s))->error());
    QStringList expected;
    for (int pass = 1; pass <= 10; ++pass)
        expected.append(u"Encoding to AIFF: %1%"_s.arg(pass * 8192 * 100.0 / frames, 0, 'f', 6));
    // The last pass counts as 11 of its own size, less than was shown before.
    EXPECT_EQ(shown, expected);
    ASSERT_FALSE(values.isEmpty());
    EXPECT_DOUBLE_EQ(values.last(), 10 * 8192 * 100.0 / frames);
}

TEST_F(EncodeCoreAudioSyncTest, ShowsNoStepOfOnePercentOrLess)
{
    // 250 passes of 0.4 percent: every third makes more than one.
    SoundShape empty{.bits = 8, .channels = 2, .seconds = 0.0};
    QByteArray head = wavBytes(empty);
    const quint32 bytes = qToLittleEndian(quint32{250 * 32768});
    head.replace(40, 4, QByteArray(reinterpret_cast<const char *>(&bytes), 4));
    const QString source = folder.write(u"a.wav"_s, head);
    ASSERT_TRUE(QFile::resize(source, head.size() + 250 * 32768));
    ASSERT_FALSE(toAiff(source, folder.path(u"a.aiff"_s))->error());
    ASSERT_EQ(shown.size(), 83);
    EXPECT_EQ(shown.first(), u"Encoding to AIFF: 1.200000%");
    EXPECT_EQ(shown.last(), u"Encoding to AIFF: 99.600000%");
}

TEST_F(EncodeCoreAudioSyncTest, StopsAfterTheBufferInHandWhenCancelled)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.frames = 100 * 8192});
    onProgress = [](NURVTask &job) { job.setCancelled(true); };
    const auto job = toAiff(source, folder.path(u"a.aiff"_s));
    EXPECT_FALSE(job->error());
    EXPECT_EQ(job->results()->results(), u"\n");
    EXPECT_EQ(job->textField().text, u"Canceled");
    EXPECT_EQ(shown.size(), 1);
    // Two passes until the first percent is passed; the partial output is the job's to remove.
    EXPECT_EQ(folder.read(u"a.aiff"_s).size(), 54 + 2 * 32768);
}

TEST_F(EncodeCoreAudioSyncTest, FailsForASourceThatIsNoAudioFile)
{
    const QString source = folder.write(u"a.wav"_s, "no sound at all");
    const QString output = folder.write(u"a.m4a"_s, "an older file");
    const LogLines log;
    const auto job = toAppleLossless(source, output);
    EXPECT_TRUE(job->error());
    EXPECT_EQ(job->results()->results(), failure(source, u"Apple Lossless"_s, u"ExtAudioFileOpenURL failed dta?"_s));
    EXPECT_EQ(job->topTextField().text, u"Error");
    EXPECT_EQ(failureText + u'\n', job->results()->results());
    EXPECT_EQ(log.with(u"Exception ExtAudioFileOpenURL failed dta?"_s).size(), 1);
    EXPECT_EQ(folder.read(u"a.m4a"_s), "an older file");
}

TEST_F(EncodeCoreAudioSyncTest, FailsForASourceThatIsMissing)
{
    const QString source = folder.path(u"missing.wav"_s);
    EXPECT_EQ(toWav(source, folder.path(u"a.wav"_s))->results()->results(),
              failure(source, u"WAV"_s, u"ExtAudioFileOpenURL failed wht?"_s));
    EXPECT_FALSE(folder.exists(u"a.wav"_s));
}

TEST_F(EncodeCoreAudioSyncTest, ReplacesTheTextOfTheFirstSlotOfItsSet)
{
    const auto set = std::make_shared<NURVTaskResults>();
    NURVTask first(nullptr);
    NURVTask second(nullptr);
    for (NURVTask *job : {&first, &second}) {
        job->setResults(set);
        set->addTaskInSet(*job);
        set->appendResults(u"so far"_s, *job);
    }
    EncodeCoreAudioSync(second, u"/missing"_s, u"/out"_s, kFormatLinearPCM, kFileWave).doEncodeCall();
    EXPECT_TRUE(second.error());
    EXPECT_EQ(set->results(), u"Error encoding /missing to WAV:\nExtAudioFileOpenURL failed wht?\nso far\n");
}

TEST_F(EncodeCoreAudioSyncTest, FailsAlsoWithoutAResultSet)
{
    NURVTask job(nullptr);
    job.setResults(nullptr);
    EncodeCoreAudioSync(job, u"/missing"_s, u"/out"_s, kFormatLinearPCM, kFileWave).doEncodeCall();
    EXPECT_TRUE(job.error());
}

TEST_F(EncodeCoreAudioSyncTest, FailsForAnOutputThatCannotBeMade)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.frames = 100});
    EXPECT_EQ(toAiff(source, folder.path(u"missing/a.aiff"_s))->results()->results(),
              failure(source, u"AIFF"_s, u"ExtAudioFileCreateWithURL failed wht?"_s));
    EXPECT_EQ(toAiff(source, folder.path())->results()->results(),
              failure(source, u"AIFF"_s, u"ExtAudioFileCreateWithURL failed prm?"_s));
    EXPECT_EQ(convert(source, folder.path(u"b"_s), kFormatAppleLossless, fourCharCode("caff"))->results()->results(),
              failure(source, u"Apple Lossless"_s, u"ExtAudioFileCreateWithURL failed typ?"_s));
    EXPECT_EQ(convert(source, folder.path(u"b"_s), fourCharCode("ima4"), kFileAIFF)->results()->results(),
              failure(source, u""_s, u"ExtAudioFileCreateWithURL failed fmt?"_s));
    EXPECT_FALSE(folder.exists(u"b"_s));
}

TEST_F(EncodeCoreAudioSyncTest, ErasesAnExistingOutput)
{
    const SoundShape shape{.frames = 100};
    const QString output = folder.write(u"b.aiff"_s, QByteArray(100000, 'x'));
    ASSERT_FALSE(toAiff(writeWav(folder.path(u"a.wav"_s), shape), output)->error());
    EXPECT_EQ(folder.read(u"b.aiff"_s), aiffBytes(shape));
}

TEST_F(EncodeCoreAudioSyncTest, HalvesTheHighSampleRatesForAac)
{
    const QList<std::pair<int, int>> rates = {{96000, 48000}, {192000, 48000}, {88200, 44100}, {176400, 44100},
                                              {48000, 48000}, {44100, 44100},  {32000, 32000}, {8000, 8000}};
    for (const auto &[from, to] : rates) {
        const QString source = writeWav(folder.path(u"a.wav"_s), {.rate = from, .bits = 24, .frames = from / 2});
        ASSERT_FALSE(toAac(source, folder.path(u"a.m4a"_s))->error()) << from;
        const auto stream = ffprobeStream(folder.path(u"a.m4a"_s));
        EXPECT_EQ(stream[u"codec_name"_s], u"aac");
        EXPECT_EQ(stream[u"sample_rate"_s], QString::number(to));
        ASSERT_FALSE(toWav(folder.path(u"a.m4a"_s), folder.path(u"b.wav"_s))->error());
        EXPECT_EQ(folder.read(u"b.wav"_s).size(), 44 + 4 * (to / 2)) << from;
    }
}

TEST_F(EncodeCoreAudioSyncTest, KeepsPitchAndLevelWhenItHalvesTheSampleRate)
{
    const QString source =
        writeWav(folder.path(u"a.wav"_s), {.rate = 96000, .bits = 24, .channels = 1, .frames = 96000});
    ASSERT_FALSE(
        toAac(source, folder.path(u"a.m4a"_s), [](auto &conversion) { conversion.setBitrate(192000); })->error());
    ASSERT_FALSE(toWav(folder.path(u"a.m4a"_s), folder.path(u"b.wav"_s))->error());
    const QByteArray decoded = folder.read(u"b.wav"_s).mid(44);
    const QByteArray same = makeSamples({.rate = 48000, .bits = 16, .channels = 1, .frames = 48000});
    ASSERT_EQ(decoded.size(), same.size());
    // The fixture's tone is the same one at either rate; its noise is not.
    const auto *left = reinterpret_cast<const qint16 *>(decoded.constData());
    const auto *right = reinterpret_cast<const qint16 *>(same.constData());
    double difference = 0.0;
    double power = 0.0;
    for (qsizetype i = 0; i < 48000; ++i) {
        difference += static_cast<double>(left[i] - right[i]) * (left[i] - right[i]);
        power += static_cast<double>(right[i]) * right[i];
    }
    EXPECT_LT(difference, power / 100);
}

TEST_F(EncodeCoreAudioSyncTest, RefusesAacOfASampleRateThatTheEncoderLacks)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.rate = 37800, .frames = 100});
    EXPECT_EQ(toAac(source, folder.path(u"a.m4a"_s))->results()->results(),
              failure(source, u"AAC"_s, u"ExtAudioFileCreateWithURL failed fmt?"_s));
}

TEST_F(EncodeCoreAudioSyncTest, GivesSixChannelsOfAacTheStandardSurroundLayout)
{
    const QString six = writeAiff(folder.path(u"a.aiff"_s), {.channels = 6, .frames = 20000});
    ASSERT_FALSE(toAac(six, folder.path(u"a.m4a"_s))->error());
    EXPECT_EQ(ffprobeStream(folder.path(u"a.m4a"_s))[u"channel_layout"_s], u"5.1");
    const QString two = writeWav(folder.path(u"b.wav"_s), {.channels = 2, .frames = 20000});
    ASSERT_FALSE(toAac(two, folder.path(u"b.m4a"_s))->error());
    EXPECT_EQ(ffprobeStream(folder.path(u"b.m4a"_s))[u"channel_layout"_s], u"stereo");
}

TEST_F(EncodeCoreAudioSyncTest, KeepsTheOrderOfTheSixChannels)
{
    // The fixture's channels are tones of 220 Hz and its multiples.
    const SoundShape shape{.rate = 48000, .channels = 6, .frames = 48000};
    const QString source = writeWav(folder.path(u"a.wav"_s), shape);
    ASSERT_FALSE(
        toAac(source, folder.path(u"a.m4a"_s), [](auto &conversion) { conversion.setBitrate(640000); })->error());
    ASSERT_FALSE(toWav(folder.path(u"a.m4a"_s), folder.path(u"b.wav"_s))->error());
    const QByteArray decoded = folder.read(u"b.wav"_s).mid(68);
    const QByteArray original = makeSamples(shape);
    ASSERT_EQ(decoded.size(), original.size());
    const auto *left = reinterpret_cast<const qint16 *>(decoded.constData());
    const auto *right = reinterpret_cast<const qint16 *>(original.constData());
    for (int channel = 0; channel < 6; ++channel) {
        double difference = 0.0;
        double power = 0.0;
        for (qsizetype i = channel; i < 48000 * 6; i += 6) {
            difference += std::pow(left[i] - right[i], 2.0);
            power += std::pow(right[i], 2.0);
        }
        // The low-frequency channel's band ends below the tone.
        if (channel == 3)
            EXPECT_GT(difference, power / 2);
        else
            EXPECT_LT(difference, power / 10) << channel;
    }
}

TEST_F(EncodeCoreAudioSyncTest, EncodesAacOfOneToEightChannels)
{
    for (int channels = 1; channels <= 8; ++channels) {
        const QString source =
            writeWav(folder.path(u"a.wav"_s), {.rate = 48000, .channels = channels, .frames = 10000});
        ASSERT_FALSE(toAac(source, folder.path(u"a.m4a"_s))->error()) << channels << qPrintable(failureText);
        EXPECT_EQ(ffprobeStream(folder.path(u"a.m4a"_s))[u"channels"_s], QString::number(channels));
    }
}

TEST_F(EncodeCoreAudioSyncTest, EncodesAacAtTheBitRateGiven)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.seconds = 4.0});
    for (const std::uint32_t mode : {0U, 1U, 2U}) {
        for (const std::uint32_t rate : {96000U, 192000U}) {
            ASSERT_FALSE(toAac(source, folder.path(u"a.m4a"_s), [&](EncodeCoreAudioSync &conversion) {
                             conversion.setMode(mode);
                             conversion.setBitrate(rate);
                         })->error());
            const double measured = ffprobeStream(folder.path(u"a.m4a"_s))[u"bit_rate"_s].toDouble();
            EXPECT_NEAR(measured, rate, rate * 0.1) << mode;
        }
    }
}

TEST_F(EncodeCoreAudioSyncTest, EncodesAacLargerTheHigherTheQuality)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.seconds = 5.0});
    qsizetype former = 0;
    for (const std::uint32_t quality : {1U, 44U, 88U, 127U}) {
        ASSERT_FALSE(toAac(source, folder.path(u"a.m4a"_s), [&](EncodeCoreAudioSync &conversion) {
                         conversion.setMode(3);
                         conversion.setQuality(quality);
                         EXPECT_EQ(conversion.mode(), 3U);
                         EXPECT_EQ(conversion.quality(), quality);
                     })->error());
        const qsizetype size = folder.read(u"a.m4a"_s).size();
        EXPECT_GT(size, former) << quality;
        former = size;
    }
}

TEST_F(EncodeCoreAudioSyncTest, FailsForAacSettingsOutOfRange)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.channels = 1, .frames = 1000});
    const QString output = folder.path(u"a.m4a"_s);
    const auto resultOf = [&](const Configure &configure) {
        return toAac(source, output, configure)->results()->results();
    };
    const LogLines log;
    // 6144 bits for 1024 frames of one channel are 264600 bits per second.
    EXPECT_EQ(resultOf([](auto &conversion) { conversion.setBitrate(264600); }), u"\n");
    EXPECT_EQ(resultOf([](auto &conversion) { conversion.setBitrate(264601); }),
              failure(source, u"AAC"_s, u"kAudioConverterEncodeBitRate failed !dat"_s));
    EXPECT_EQ(log.with(u"ExtAudioFileGetProperty kAudioConverterEncodeBitRate failure"_s).size(), 1);
    EXPECT_EQ(resultOf([](auto &conversion) { conversion.setQuality(128); }),
              failure(source, u"AAC"_s, u"AudioConverterSetProperty vbrqfailed"_s));
    EXPECT_EQ(log.with(u"AudioConverterSetProperty vbrq failure"_s).size(), 1);
    EXPECT_EQ(resultOf([](auto &conversion) { conversion.setMode(4); }),
              failure(source, u"AAC"_s, u"kAudioCodecBitRateFormat failed"_s));
    EXPECT_EQ(log.with(u"AudioConverterSetProperty kAudioCodecBitRateFormat failure"_s).size(), 1);
}

TEST_F(EncodeCoreAudioSyncTest, FailsForAacInAContainerWithoutConverter)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.frames = 1000});
    EXPECT_EQ(convert(source, folder.path(u"b.wav"_s), kFormatAAC, kFileWave)->results()->results(),
              failure(source, u"AAC"_s, u"ExtAudioFileCreateWithURL failed fmt?"_s));
}

TEST_F(EncodeCoreAudioSyncTest, KeepsItsSourceWhenThatIsTheOutputByAnyName)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.frames = 1000});
    const QByteArray before = folder.read(u"a.wav"_s);
    ASSERT_TRUE(QFile::link(source, folder.path(u"symbolic.wav"_s)));
    ASSERT_EQ(::link(QFile::encodeName(source).constData(), QFile::encodeName(folder.path(u"hard.wav"_s)).constData()),
              0);
    for (const QString &name : {u"a.wav"_s, u"symbolic.wav"_s, u"hard.wav"_s}) {
        EXPECT_EQ(toWav(source, folder.path(name))->results()->results(),
                  failure(source, u"WAV"_s, u"ExtAudioFileCreateWithURL failed prm?"_s));
        EXPECT_EQ(folder.read(u"a.wav"_s), before);
    }
}

} // namespace
} // namespace nurv::test
