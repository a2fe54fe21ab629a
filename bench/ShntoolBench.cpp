// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The bundled `shntool` against the distribution's, which finds its decoders in the same folder: the lengths of 200
// FLAC files, and four ways through an hour of stereo sound. Then the memory of ours for a minute and for an hour.
//
//     ShntoolBench TOOLS
#include "Measure.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QCoreApplication>

#include <cstdio>

#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace nurv::bench;

namespace {

constexpr int kRounds = 5;
constexpr double kGoal = 0.9;

const QString kTheirs = u"/usr/bin/shntool"_s;

/// The same call of both programs. The second one has a folder of its own for what it makes.
void compareCalls(const QString &title, const QString &ours, double goal, const QStringList &arguments)
{
    compare(
        title, kRounds, goal, [&] { runOrDie(ours, arguments); }, [&] { runOrDie(kTheirs, arguments); });
}

void measureLengths(const QString &ours)
{
    constexpr int kFiles = 200;
    constexpr double kLengthGoal = 0.3;
    const nurv::test::TestFolder folder;
    QStringList call{u"len"_s};
    for (int i = 0; i < kFiles; ++i)
        call.append(
            nurv::test::writeFlac(folder.path(u"%1.flac"_s.arg(i)), {.seconds = 5, .seed = static_cast<unsigned>(i)}));
    compareCalls(u"shntool len of 200 FLAC files"_s, ours, kLengthGoal, call);
}

void measureHour(const QString &ours)
{
    const nurv::test::TestFolder folder;
    const QString hour = nurv::test::writeFlac(folder.path(u"hour.flac"_s), {.seconds = 3600});
    const QStringList output{u"-q"_s, u"-O"_s, u"always"_s, u"-d"_s, folder.path()};
    compareCalls(u"shntool hash of an hour"_s, ours, kGoal, {u"hash"_s, u"-q"_s, hour});
    compareCalls(u"shntool split of an hour"_s, ours, kGoal,
                 QStringList{u"split"_s} + output + QStringList{u"-l"_s, u"6:00.01"_s, hour});
    QStringList parts;
    for (int i = 1; i <= 10; ++i) {
        const QString part = folder.path(u"split-track%1.wav"_s.arg(i, 2, 10, QChar(u'0')));
        const QString flac = folder.path(u"part%1.flac"_s.arg(i, 2, 10, QChar(u'0')));
        runOrDie(u"flac"_s, {u"-s"_s, u"-f"_s, u"-o"_s, flac, part});
        parts.append(flac);
    }
    compareCalls(u"shntool join of an hour"_s, ours, kGoal, QStringList{u"join"_s} + output + parts);
    // Now every border is in the middle of a sector.
    const QString odd = nurv::test::writeFlac(folder.path(u"part00.flac"_s), {.frames = 44'100 + 100});
    compareCalls(u"shntool fix of an hour"_s, ours, kGoal, QStringList{u"fix"_s} + output + QStringList{odd} + parts);
}

/// In MiB, of the children so far.
double largestChild()
{
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

void measureMemory(const QString &ours)
{
    const nurv::test::TestFolder folder;
    for (const int seconds : {60, 3600}) {
        // By a program: what this one holds when it starts a child counts as the child's.
        const QString wav = folder.path(u"a.wav"_s);
        runOrDie(u"sox"_s, {u"-R"_s, u"-n"_s, u"-r"_s, u"44100"_s, u"-c"_s, u"2"_s, u"-b"_s, u"16"_s, wav, u"synth"_s,
                            QString::number(seconds), u"pinknoise"_s});
        runOrDie(ours, {u"conv"_s, u"-q"_s, u"-O"_s, u"always"_s, u"-a"_s, u"b"_s, u"-d"_s, folder.path(), wav});
        std::printf("shntool conv of %d s: %.1f MiB at most\n", seconds, largestChild());
    }
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: ShntoolBench TOOLS\n");
        return 2;
    }
    const QString tools = QCoreApplication::arguments().at(1);
    const QString ours = tools + u"/shntool"_s;
    qputenv("PATH", qgetenv("PATH") + ':' + tools.toLocal8Bit());
    measureMemory(ours);
    measureLengths(ours);
    measureHour(ours);
    return 0;
}
