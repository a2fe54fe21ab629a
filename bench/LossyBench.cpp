// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Lossy encoding of 20 FLAC files of three minutes by `nurv lossy` with two jobs: MP3 against `xargs -P2`
// with `flac | lame`, AAC against `xargs -P2` with the ffmpeg program and the same settings of its encoder.
//
//     LossyBench NURV mp3|aac [COUNT]
#include "BenchFiles.h"
#include "Measure.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QCoreApplication>
#include <QDir>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace nurv::bench;

namespace {

constexpr double kSeconds = 180.0;
constexpr int kDefaultCount = 20;
constexpr int kRounds = 3;
constexpr double kMp3Goal = 1.03;
constexpr double kAacGoal = 1.0;

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    const bool isAac = words.value(2) == u"aac";
    const int count = words.size() == 4 ? words[3].toInt() : kDefaultCount;
    if (words.size() < 3 || words.size() > 4 || (!isAac && words[2] != u"mp3") || count <= 0) {
        std::fprintf(stderr, "usage: LossyBench NURV mp3|aac [COUNT]\n");
        return 2;
    }
    const nurv::test::TestFolder folder;
    addNames(nurv::test::writeFlac(folder.path(u"in/0000.flac"_s), {.seconds = kSeconds}), count);

    // The fast search at the wanted rate is what the constant mode stands for.
    const QStringList ownOptions = isAac ? QStringList{u"--encoder=aac"_s, u"--mode=cbr"_s, u"--bitrate=192"_s}
                                         : QStringList{u"--encoder=mp3"_s, u"--mode=vbr"_s, u"--quality=2"_s};
    const auto ours = [&] {
        runOrDie(words[1], QStringList{u"lossy"_s} + ownOptions
                               + QStringList{u"--jobs=2"_s, u"--quiet"_s, u"--output-dir"_s, emptyFolder(folder, u"ours"_s),
                                             folder.path(u"in"_s)});
    };
    const QString script = isAac ? u"exec ffmpeg -v error -nostdin -y -i \"$1\" -map 0:a -c:a aac -aac_coder fast -b:a 192k "
                                   "-movflags +faststart \"$0/$(basename \"$1\" .flac).m4a\""_s
                                 : u"set -o pipefail; flac -d -c -s \"$1\" | lame --quiet -V 2 - "
                                   "\"$0/$(basename \"$1\" .flac).mp3\""_s;
    const auto theirs = [&] {
        const QString out = emptyFolder(folder, u"theirs"_s);
        QByteArray arguments;
        for (const QString &name : QDir(folder.path(u"in"_s)).entryList(QDir::Files))
            arguments += folder.path(u"in/"_s + name).toLocal8Bit() + '\0';
        runOrDie(u"xargs"_s, {u"-0"_s, u"-P2"_s, u"-n1"_s, u"bash"_s, u"-c"_s, script, out}, arguments);
    };
    theirs(); // the sources come from the disk once
    compare(u"%1 FLACs of three minutes to %2"_s.arg(count).arg(isAac ? u"AAC, against ffmpeg"_s : u"MP3, against flac | lame"_s),
            kRounds, isAac ? kAacGoal : kMp3Goal, ours, theirs);
    return 0;
}
