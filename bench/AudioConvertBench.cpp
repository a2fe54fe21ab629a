// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Ten minutes of sound converted in the process against the ffmpeg program doing the
// same, and the memory that a conversion takes. Both use one thread, but for the decoder
// of ffmpeg. With a part of a title, only the conversions that have it.
//
//     AudioConvertBench [TITLE]
#include "convert/EncodeCoreAudioSync.h"
#include "engine/NURVTask.h"
#include "Measure.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace nurv::bench;

namespace {

constexpr int kRounds = 5;
constexpr double kGoal = 0.95;
constexpr double kMostMemoryMiB = 64.0;

struct Sample {
    QString title;
    QString source;
    QString output;
    nurv::FourCharCode formatType;
    nurv::FourCharCode fileType;
    QStringList arguments; ///< of the ffmpeg program, for the same output
};

void convert(const Sample &sample, const QString &output)
{
    nurv::NURVTask job(nullptr);
    nurv::EncodeCoreAudioSync sync(job, sample.source, output, sample.formatType, sample.fileType);
    sync.setBitrate(sample.formatType == nurv::kFormatAAC ? 192'000 : 0);
    sync.setMode(1);
    sync.doEncodeCall();
    if (job.error()) {
        std::fprintf(stderr, "%s\n", qPrintable(sync.failureText()));
        std::exit(1);
    }
}

/// The process's largest resident size since its last reset, in MiB.
double peakMiB()
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0.0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6, line.size() - 6 - 3).trimmed().toDouble() / 1024.0;
    }
    return 0.0;
}

void resetPeak()
{
    QFile file(u"/proc/self/clear_refs"_s);
    if (!file.open(QIODevice::WriteOnly) || file.write("5") != 1)
        std::fprintf(stderr, "the largest size cannot be reset\n");
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const nurv::test::TestFolder folder;
    const nurv::test::SoundShape cd{.seconds = 600.0};
    const nurv::test::SoundShape studio{.rate = 96000, .bits = 24, .seconds = 600.0};
    const QString wav = nurv::test::writeWav(folder.path(u"cd.wav"_s), cd);
    const QString wide = nurv::test::writeWav(folder.path(u"studio.wav"_s), studio);
    const QString aiff = folder.path(u"cd.aiff"_s);
    const QString m4a = folder.path(u"cd.m4a"_s);
    runOrDie(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, wav, aiff});
    runOrDie(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, wav, u"-c:a"_s, u"alac"_s, m4a});

    using namespace nurv;
    const QStringList moovFirst = {u"-movflags"_s, u"+faststart"_s};
    const QList<Sample> samples = {
        {u"WAV to Apple Lossless"_s, wav, u"out.m4a"_s, kFormatAppleLossless, kFileM4A,
         QStringList{u"-c:a"_s, u"alac"_s} + moovFirst},
        {u"24-bit 96 kHz WAV to Apple Lossless"_s, wide, u"out.m4a"_s, kFormatAppleLossless, kFileM4A,
         QStringList{u"-c:a"_s, u"alac"_s} + moovFirst},
        {u"Apple Lossless to WAV"_s, m4a, u"out.wav"_s, kFormatLinearPCM, kFileWave, {}},
        {u"Apple Lossless to AIFF"_s, m4a, u"out.aiff"_s, kFormatLinearPCM, kFileAIFF, {}},
        {u"WAV to AIFF"_s, wav, u"out.aiff"_s, kFormatLinearPCM, kFileAIFF, {}},
        {u"AIFF to WAV"_s, aiff, u"out.wav"_s, kFormatLinearPCM, kFileWave, {}},
        {u"WAV to AAC, 192 kbit/s"_s, wav, u"out.m4a"_s, kFormatAAC, kFileM4A,
         QStringList{u"-c:a"_s, u"aac"_s, u"-b:a"_s, u"192k"_s} + moovFirst},
    };
    for (const Sample &sample : samples) {
        if (argc > 1 && !sample.title.contains(QString::fromLocal8Bit(argv[1])))
            continue;
        const QString ours = folder.path(u"ours-"_s + sample.output);
        const QString theirs = folder.path(u"theirs-"_s + sample.output);
        resetPeak();
        convert(sample, ours); // once beforehand, so that the source is in memory for both
        std::printf("%s: %.1f MiB resident at most, goal %.0f\n", qPrintable(sample.title), peakMiB(), kMostMemoryMiB);
        compare(
            sample.title, kRounds, kGoal, [&] { convert(sample, ours); },
            [&] {
                runOrDie(u"ffmpeg"_s, QStringList{u"-v"_s, u"error"_s, u"-nostdin"_s, u"-y"_s, u"-i"_s, sample.source}
                                          + sample.arguments + QStringList{theirs});
            });
    }
    return 0;
}
