// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The proof that an output holds the sound of its source, on ten minutes of sound: every
// format against the WAV file that it was made of, measured beside the ffmpeg program that
// decodes the format alone, and beside the program that made it: what a proof adds to a
// conversion. The bundled programs are those of NURV_TOOLS. With a part of a title, only the
// proofs that have it.
//
//     ProofBench [TITLE]
#include "Measure.h"
#include "samples/SoundComparison.h"
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
/// Both sides are decoded and compared, on two processors.
constexpr double kGoal = 1.5;
/// A conversion with its proof takes no more than twice as long as without.
constexpr double kEncodingGoal = 1.0;

using Relation = nurv::SoundComparison::Relation;

void prove(const QString &source, const QString &output, Relation relation = Relation::Equal)
{
    const auto result = nurv::SoundComparison::compare({source}, {output}, relation, {}, {});
    if (!result.isProven) {
        std::fprintf(stderr, "%s to %s: %s\n", qPrintable(source), qPrintable(output), qPrintable(result.difference));
        std::exit(1);
    }
}

void decodeByFfmpeg(const QString &path)
{
    runOrDie(u"ffmpeg"_s,
             {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-y"_s, u"-i"_s, path, u"-f"_s, u"s16le"_s, u"/dev/null"_s});
}

struct Format {
    QString title;
    QString file;
    QString program;
    QStringList arguments; ///< in front of source and file
};

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QString only = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    const nurv::test::TestFolder folder;
    const QString wav = nurv::test::writeWav(folder.path(u"source.wav"_s), {.seconds = 600.0});
    const QString tools = qEnvironmentVariable("NURV_TOOLS") + u'/';
    const auto path = [&folder](const char *name) { return folder.path(QString::fromLatin1(name)); };
    const QStringList ffmpeg = {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-y"_s, u"-i"_s, wav};
    const QList<Format> formats = {
        {u"AIFF"_s, path("a.aiff"), u"ffmpeg"_s, ffmpeg + QStringList{path("a.aiff")}},
        {u"FLAC"_s, path("a.flac"), u"flac"_s, {u"--silent"_s, wav, u"-o"_s, path("a.flac")}},
        {u"WavPack"_s, path("a.wv"), u"wavpack"_s, {u"-q"_s, wav, u"-o"_s, path("a.wv")}},
        {u"TTA"_s, path("a.tta"), tools + u"ttaenc"_s, {u"-e"_s, wav, u"-o"_s, path("a.tta")}},
        {u"Monkey's Audio, normal"_s, path("2.ape"), tools + u"mac"_s, {wav, path("2.ape"), u"-c2000"_s}},
        {u"Monkey's Audio, extra high"_s, path("4.ape"), tools + u"mac"_s, {wav, path("4.ape"), u"-c4000"_s}},
        {u"Shorten"_s, path("a.shn"), tools + u"shorten"_s, {wav, path("a.shn")}},
        {u"Apple Lossless"_s, path("a.m4a"), u"ffmpeg"_s, ffmpeg + QStringList{u"-c:a"_s, u"alac"_s, path("a.m4a")}},
    };
    for (const Format &format : formats) {
        if (!format.title.contains(only))
            continue;
        runOrDie(format.program, format.arguments);
        prove(wav, format.file); // once beforehand, so that both are in memory
        compare(
            u"WAV to "_s + format.title, kRounds, kGoal, [&] { prove(wav, format.file); },
            [&] { decodeByFfmpeg(format.file); });
        compare(
            u"WAV to %1, beside its encoding"_s.arg(format.title), kRounds, kEncodingGoal,
            [&] { prove(wav, format.file); },
            [&] {
                QFile::remove(format.file);
                runOrDie(format.program, format.arguments);
            });
    }
    const QString flac = path("a.flac");
    const QString wavPack = path("a.wv");
    if (only.isEmpty()) {
        compare(
            u"FLAC to WavPack"_s, kRounds, kGoal, [&] { prove(flac, wavPack); },
            [&] {
                decodeByFfmpeg(flac);
                decodeByFfmpeg(wavPack);
            });
        compare(
            u"FLAC contained in FLAC"_s, kRounds, kGoal, [&] { prove(flac, flac, Relation::Contained); },
            [&] {
                decodeByFfmpeg(flac);
                decodeByFfmpeg(flac);
            });
    }
    return 0;
}
