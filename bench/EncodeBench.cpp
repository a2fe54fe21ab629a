// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Encoding to FLAC by `nurv encode` against `xargs -P2` with the same command lines.
//
//     EncodeBench NURV short|long
#include "BenchFiles.h"
#include "Measure.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QCoreApplication>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace nurv::bench;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    const bool isLong = words.value(2) == u"long";
    if (words.size() != 3 || (!isLong && words[2] != u"short")) {
        std::fprintf(stderr, "usage: EncodeBench NURV short|long\n");
        return 2;
    }
    const nurv::test::TestFolder folder;
    const int count = isLong ? 8 : 200;
    addNames(nurv::test::writeWav(folder.path(u"in/0000.wav"_s), {.seconds = isLong ? 600.0 : 1.0}), count);
    const QString flac = qEnvironmentVariable("NURV_TOOLS") + u"/flac"_s;

    const auto ours = [&] {
        runOrDie(words[1], {u"encode"_s, u"--level=5"_s, u"--jobs=2"_s, u"--quiet"_s, u"--output-dir"_s,
                            emptyFolder(folder, u"ours"_s), folder.path(u"in"_s)});
    };
    const auto theirs = [&] {
        const QString out = emptyFolder(folder, u"theirs"_s);
        QByteArray arguments;
        for (int i = 0; i < count; ++i) {
            const QString name = u"%1"_s.arg(i, 4, 10, QChar(u'0'));
            arguments += QByteArray("-5") + '\0' + folder.path(u"in/"_s + name + u".wav"_s).toLocal8Bit() + '\0' + "-o"
                         + '\0' + (out + u'/' + name + u".flac"_s).toLocal8Bit() + '\0';
        }
        runOrDie(u"xargs"_s, {u"-0"_s, u"-P2"_s, u"-n4"_s, flac}, arguments);
    };
    theirs(); // the sources come from the disk once
    compare(isLong ? u"8 WAVs of ten minutes, against xargs"_s : u"200 WAVs of one second, against xargs"_s,
            isLong ? 3 : 7, isLong ? 1.02 : 1.10, ours, theirs);
    return 0;
}
