// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Damaged sources, full disks.
#include "convert/AudioConversionFixture.h"
#include "support/FileSizeLimit.h"

#include <random>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv::test {
namespace {

using AudioConversionBadLuck = AudioConversionFixture;

TEST_F(AudioConversionBadLuck, FailsWhenTheDiskIsFull)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.seconds = 3.0});
    const QString written = u"ExtAudioFileWrite failed"_s;
    const FileSizeLimit disk(100'000);
    EXPECT_EQ(toWav(source, folder.path(u"b.wav"_s))->results()->results(), failure(source, u"WAV"_s, written));
    EXPECT_EQ(toAiff(source, folder.path(u"b.aiff"_s))->results()->results(), failure(source, u"AIFF"_s, written));
    EXPECT_EQ(toAppleLossless(source, folder.path(u"b.m4a"_s))->results()->results(),
              failure(source, u"Apple Lossless"_s, written));
}

TEST_F(AudioConversionBadLuck, FailsWhenOnlyTheEndDoesNotFit)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.seconds = 1.0});
    for (const FourCharCode format : {kFormatAppleLossless, kFormatAAC}) {
        ASSERT_FALSE(convert(source, folder.path(u"whole.m4a"_s), format, kFileM4A)->error());
        const qsizetype size = folder.read(u"whole.m4a"_s).size();
        // What is buffered reaches the file when it is closed.
        const FileSizeLimit disk(static_cast<rlim_t>(size - 1));
        EXPECT_TRUE(convert(source, folder.path(u"b.m4a"_s), format, kFileM4A)->error());
        EXPECT_TRUE(failureText.endsWith(u"ExtAudioFileWrite failed")) << qPrintable(failureText);
    }
}

TEST_F(AudioConversionBadLuck, RefusesALengthThatNoFileHas)
{
    // RF64 with 2^62 bytes of sound (EBU Tech 3306).
    QByteArray bytes = wavBytes({.seconds = 0.1});
    bytes.replace(0, 8, QByteArray("RF64\xFF\xFF\xFF\xFF", 8));
    const QByteArray sizes = QByteArray("ds64\x1C\0\0\0", 8) + QByteArray(8, '\0') + QByteArray("\0\0\0\0\0\0\0\x40", 8)
                             + QByteArray(12, '\0');
    bytes.insert(12, sizes);
    bytes.replace(bytes.indexOf("data") + 4, 4, QByteArray(4, '\xFF'));
    const QString source = folder.write(u"a.wav"_s, bytes);
    EXPECT_TRUE(toWav(source, folder.path(u"b.wav"_s))->error());
    EXPECT_TRUE(failureText.contains(u"ExtAudioFileOpenURL failed"_s)) << qPrintable(failureText);
}

TEST_F(AudioConversionBadLuck, ReportsASourceThatEndsTooEarly)
{
    const SoundShape shape{.seconds = 3.0};
    const QStringList sources = {
        writeWav(folder.path(u"a.wav"_s), shape),
        writeAiff(folder.path(u"a.aiff"_s), shape),
        writeFlac(folder.path(u"a.flac"_s), shape),
        writeByFfmpeg(folder.path(u"a.m4a"_s), shape, {u"-c:a"_s, u"alac"_s, u"-movflags"_s, u"+faststart"_s}),
        writeByFfmpeg(folder.path(u"b.m4a"_s), shape, {u"-c:a"_s, u"aac"_s, u"-movflags"_s, u"+faststart"_s}),
    };
    for (const QString &source : sources) {
        QFile file(source);
        for (const qint64 size : {file.size() - 1, file.size() * 2 / 3, file.size() / 2}) {
            // A byte less is a byte of the last frame, but for padding.
            if (size == file.size() - 1 && (source.endsWith(u".flac") || source.endsWith(u"b.m4a")))
                continue;
            ASSERT_TRUE(file.resize(size));
            const auto job = toWav(source, folder.path(u"out.wav"_s));
            EXPECT_EQ(job->results()->results(), failure(source, u"WAV"_s, u"ExtAudioFileRead failed"_s)) << size;
        }
    }
}

TEST_F(AudioConversionBadLuck, ReportsDamageInsideOfFlac)
{
    const QString source = writeFlac(folder.path(u"a.flac"_s), {.seconds = 3.0});
    QByteArray bytes = folder.read(u"a.flac"_s);
    for (qsizetype i = bytes.size() / 2; i < bytes.size() / 2 + 40; ++i)
        bytes[i] = static_cast<char>(~bytes[i]);
    folder.write(u"a.flac"_s, bytes);
    EXPECT_EQ(toWav(source, folder.path(u"a.wav"_s))->results()->results(),
              failure(source, u"WAV"_s, u"ExtAudioFileRead failed"_s));
}

TEST_F(AudioConversionBadLuck, SurvivesDamageAnywhere)
{
    std::mt19937 random(7);
    const SoundShape shape{.frames = 9000};
    for (const QString &name : {u"a.wav"_s, u"a.aiff"_s, u"a.flac"_s, u"a.m4a"_s, u"b.m4a"_s, u"f.aiff"_s}) {
        QStringList how;
        if (name == u"a.m4a")
            how = {u"-c:a"_s, u"alac"_s};
        else if (name == u"f.aiff")
            how = {u"-c:a"_s, u"pcm_f32be"_s};
        writeByFfmpeg(folder.path(name), shape, how);
        const QByteArray whole = folder.read(name);
        for (int round = 0; round < 60; ++round) {
            QByteArray damaged = whole;
            for (int hits = 0; hits < 1 + round % 8; ++hits) {
                // Headers are the interesting part.
                const auto range =
                    static_cast<unsigned long>(round % 2 == 0 ? std::min<qsizetype>(whole.size(), 800) : whole.size());
                damaged[static_cast<qsizetype>(random() % range)] = static_cast<char>(random());
            }
            const QString path = folder.write(u"damaged"_s, damaged);
            NURVTask job(nullptr);
            const bool isLossy = round % 3 == 0;
            EncodeCoreAudioSync(job, path, folder.path(u"out"_s), isLossy ? kFormatAAC : kFormatLinearPCM,
                                isLossy ? kFileM4A : kFileWave)
                .doEncodeCall();
            EXPECT_EQ(job.error(), !job.report().isEmpty());
        }
    }
}

TEST_F(AudioConversionBadLuck, EndsSoonForAHeaderThatPromisesTooMuch)
{
    QByteArray bytes = wavBytes({.frames = 10});
    bytes.replace(22, 2, QByteArray("\xff\xff", 2)); // channels
    bytes.replace(32, 2, QByteArray("\xfe\xff", 2)); // bytes per frame
    EXPECT_TRUE(toWav(folder.write(u"a.wav"_s, bytes), folder.path(u"b.wav"_s))->error());
    bytes = wavBytes({.frames = 10});
    bytes.replace(22, 2, QByteArray(2, '\0'));
    EXPECT_TRUE(toWav(folder.write(u"a.wav"_s, bytes), folder.path(u"b.wav"_s))->error());
}

TEST_F(AudioConversionBadLuck, WritesToNothingButRegularFiles)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.frames = 1000});
    const QString pipe = folder.path(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &output : {pipe, u"/dev/null"_s, u"/dev/full"_s})
        EXPECT_EQ(toAiff(source, output)->results()->results(),
                  failure(source, u"AIFF"_s, u"ExtAudioFileCreateWithURL failed prm?"_s));
}

TEST_F(AudioConversionBadLuck, RefusesAiffBeyondFourGibibytesBeforeItBegins)
{
    // Five gibibytes of silence that take no room on the disk.
    QByteArray bytes = "RF64" + QByteArray(4, '\xff') + "WAVE" + riffChunk("ds64", QByteArray(28, '\0'))
                       + wavBytes({.seconds = 0.0}).mid(12);
    const qint64 size = qint64{5} << 30;
    const qint64 riffSize = size + bytes.size() - 8;
    bytes.replace(20, 8, QByteArray(reinterpret_cast<const char *>(&riffSize), 8));
    bytes.replace(28, 8, QByteArray(reinterpret_cast<const char *>(&size), 8));
    bytes.replace(bytes.size() - 4, 4, QByteArray(4, '\xff'));
    const QString source = folder.write(u"a.wav"_s, bytes);
    ASSERT_TRUE(QFile::resize(source, bytes.size() + size));
    const QString output = folder.write(u"a.aiff"_s, "an older file");
    EXPECT_EQ(toAiff(source, output)->results()->results(),
              failure(source, u"AIFF"_s, u"ExtAudioFileCreateWithURL failed off?"_s));
    EXPECT_EQ(folder.read(u"a.aiff"_s), "an older file");
}

} // namespace
} // namespace nurv::test
