// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The bundled `ttaenc` on ten minutes of stereo sound against ffmpeg on one thread, both ways.
//
//     TtaBench TTAENC
#include "Measure.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QCoreApplication>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace nurv::bench;

namespace {

void runFfmpeg(const QString &input, const QString &output)
{
    runOrDie(u"ffmpeg"_s, {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-y"_s, u"-threads"_s, u"1"_s, u"-i"_s, input, output});
}

void measure(const QString &ttaenc, int bits)
{
    constexpr int kRounds = 7;
    constexpr double kGoal = 0.8;
    const nurv::test::TestFolder folder;
    const QString wav = nurv::test::writeWav(folder.path(u"in.wav"_s), {.bits = bits, .seconds = 600});
    const QString tta = folder.path(u"ours.tta"_s);
    const QString back = folder.path(u"ours.wav"_s);
    // The files of one program are the other's, too: both write the same bytes.
    const auto encode = [&] { runOrDie(ttaenc, {u"-e"_s, wav, u"-o"_s, tta}); };
    const auto decode = [&] { runOrDie(ttaenc, {u"-d"_s, tta, u"-o"_s, back}); };
    const auto test = [&] { runOrDie(ttaenc, {u"-t"_s, tta}); };
    compare(u"ttaenc -e, %1 bits, against ffmpeg"_s.arg(bits), kRounds, kGoal, encode,
            [&] { runFfmpeg(wav, folder.path(u"theirs.tta"_s)); });
    compare(u"ttaenc -d, %1 bits, against ffmpeg"_s.arg(bits), kRounds, kGoal, decode,
            [&] { runFfmpeg(tta, folder.path(u"theirs.wav"_s)); });
    compare(u"ttaenc -t, %1 bits, against ffmpeg decoding"_s.arg(bits), kRounds, kGoal, test,
            [&] { runFfmpeg(tta, folder.path(u"theirs.wav"_s)); });
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: TtaBench TTAENC\n");
        return 2;
    }
    const QString ttaenc = QCoreApplication::arguments().at(1);
    measure(ttaenc, 16);
    measure(ttaenc, 24);
    return 0;
}
