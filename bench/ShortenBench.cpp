// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The bundled `shorten` on ten minutes of compact disc sound: restoring against ffmpeg, which
// has a decoder of its own, and compressing against `flac -0`, as nothing else writes Shorten.
//
//     ShortenBench SHORTEN
#include "Measure.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace nurv::bench;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: ShortenBench SHORTEN\n");
        return 2;
    }
    constexpr int kRounds = 7;
    const QString shorten = QCoreApplication::arguments().at(1);
    const nurv::test::TestFolder folder;
    const QString wav = nurv::test::writeWav(folder.path(u"in.wav"_s), {.seconds = 600});
    const QString shn = folder.path(u"in.shn"_s);
    const QString out = folder.path(u"out.wav"_s);
    const QString flac = folder.path(u"out.flac"_s);

    const auto compress = [&] { runOrDie(shorten, {wav, shn}); };
    const auto flacCompress = [&] { runOrDie(u"flac"_s, {u"-0"_s, u"-s"_s, u"-f"_s, u"-o"_s, flac, wav}); };
    const auto restore = [&] { runOrDie(shorten, {u"-x"_s, shn, out}); };
    const auto ffmpegRestore = [&] {
        runOrDie(u"ffmpeg"_s, {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, shn, out});
    };
    compare(u"shorten against flac -0"_s, kRounds, 1.0, compress, flacCompress);
    compare(u"shorten -x against ffmpeg"_s, kRounds, 1.0, restore, ffmpegRestore);

    const double megabytes = static_cast<double>(QFileInfo(wav).size()) / 1e6;
    std::printf("shorten: %.0f MB/s in, shorten -x: %.0f MB/s out; the file takes %.1f %%, with flac -0 %.1f %%\n",
                1000 * megabytes / millisecondsOf(compress), 1000 * megabytes / millisecondsOf(restore),
                static_cast<double>(QFileInfo(shn).size()) / megabytes / 1e4,
                static_cast<double>(QFileInfo(flac).size()) / megabytes / 1e4);
    return 0;
}
