// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Measure.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryFile>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace nurv::bench {

double millisecondsOf(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    const qsizetype middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

void runOrDie(const QString &program, const QStringList &arguments, const QByteArray &input)
{
    QTemporaryFile inputFile;
    if (!inputFile.open() || inputFile.write(input) != input.size() || !inputFile.flush()) {
        std::fprintf(stderr, "no temporary file\n");
        std::exit(1);
    }
    QProcess process;
    process.setStandardInputFile(inputFile.fileName());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        std::fprintf(stderr, "%s failed with status %d\n", qPrintable(program), process.exitCode());
        std::exit(1);
    }
}

void compare(const QString &title, int rounds, double goal, const std::function<void()> &ours,
             const std::function<void()> &theirs)
{
    QList<double> ourTimes;
    QList<double> theirTimes;
    QList<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        ourTimes.append(millisecondsOf(ours));
        theirTimes.append(millisecondsOf(theirs));
        ratios.append(ourTimes.last() / theirTimes.last());
    }
    const auto [least, most] = std::minmax_element(ratios.cbegin(), ratios.cend());
    std::printf("%s: %.0f ms against %.0f ms (medians of %d), ratio %.3f, goal %.2f; "
                "ratios of the rounds %.3f to %.3f\n",
                qPrintable(title), median(ourTimes), median(theirTimes), rounds, median(ourTimes) / median(theirTimes),
                goal, *least, *most);
    std::fflush(stdout);
}

} // namespace nurv::bench
