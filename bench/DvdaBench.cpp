// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The bundled `dvda` on ten tracks of five minutes, 24 bits and 96 kHz, against `cp` of the same files.
//
//     DvdaBench DVDA
#include "BenchFiles.h"
#include "Measure.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace nurv::bench;

namespace {

/// The most memory that the program had so far, in MiB; 0 once it has ended.
double peakOf(qint64 process)
{
    QFile status(u"/proc/%1/status"_s.arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
    }
    return 0;
}

void printPeak(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(program, arguments);
    double peak = 0;
    while (!process.waitForFinished(5) && process.state() != QProcess::NotRunning)
        peak = std::max(peak, peakOf(process.processId()));
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        std::fprintf(stderr, "dvda failed\n");
        std::exit(1);
    }
    std::printf("dvda: %.1f MiB of memory at most, goal 64\n", peak);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: DvdaBench DVDA\n");
        return 2;
    }
    constexpr int kTracks = 10;
    constexpr int kRounds = 5;
    constexpr double kGoal = 4;
    const QString dvda = QCoreApplication::arguments().at(1);
    const nurv::test::TestFolder folder;
    addNames(nurv::test::writeWav(folder.path(u"in/0000.wav"_s), {.rate = 96000, .bits = 24, .seconds = 300}), kTracks);
    QStringList tracks;
    for (int i = 0; i < kTracks; ++i)
        tracks.append(folder.path(u"in/%1.wav"_s.arg(i, 4, 10, QChar(u'0'))));
    const auto author = [&] { return QStringList{u"-o"_s, emptyFolder(folder, u"disc"_s), u"-g"_s} + tracks; };
    printPeak(dvda, author());
    // Removing what the round before made is part of neither.
    QList<double> ours;
    QList<double> theirs;
    for (int round = 0; round < kRounds; ++round) {
        const QStringList arguments = author();
        ours.append(millisecondsOf([&] { runOrDie(dvda, arguments); }));
        const QString copies = emptyFolder(folder, u"copies"_s);
        theirs.append(millisecondsOf([&] { runOrDie(u"cp"_s, tracks + QStringList{copies}); }));
    }
    std::printf("dvda, ten tracks of five minutes at 24/96: %.0f ms against %.0f ms of cp (medians of %d), ratio %.2f, "
                "goal %.0f\n",
                median(ours), median(theirs), kRounds, median(ours) / median(theirs), kGoal);
    return 0;
}
