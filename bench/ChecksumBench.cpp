// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Checksum lists by `nurv checksum` against the programs of the field:
//
//     create   the MD5 list of 40 files of 100 MiB, against md5sum
//     verify   its check, against md5sum -c
//     small    the MD5 list of 10,000 files of 4 KiB, against md5sum
//     all      all three lists of 40 FLAC files of three minutes, against the three one after another
//     ffp      the check of the fingerprints of 100 FLAC files, against `xargs -P2 flac -t`
//
//     ChecksumBench NURV create|verify|small|all|ffp
#include "BenchFiles.h"
#include "Measure.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace nurv::bench;

namespace {

constexpr int kRounds = 5;

/// Files of bytes that no program knows, in their folder "in".
void makeFiles(const nurv::test::TestFolder &folder, int count, qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    quint32 state = 1;
    for (char &byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    for (int i = 0; i < count; ++i) {
        bytes[0] = static_cast<char>(i);
        folder.write(u"in/%1.bin"_s.arg(i, 5, 10, QChar(u'0')), bytes);
    }
}

void makeFlacFiles(const nurv::test::TestFolder &folder, int count, double seconds)
{
    addNames(nurv::test::writeFlac(folder.path(u"in/0000.flac"_s), {.seconds = seconds}), count);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.size() != 3) {
        std::fprintf(stderr, "usage: ChecksumBench NURV create|verify|small|all|ffp\n");
        return 2;
    }
    const QString nurv = words[1];
    const QString mode = words[2];
    const nurv::test::TestFolder folder;
    const QString in = folder.path(u"in"_s);
    const QString list = folder.path(u"in/list.md5"_s);
    const auto create = [&](const QString &kind, const QString &output) {
        runOrDie(nurv, {u"checksum"_s, u"create"_s, u"--quiet"_s, u"--overwrite"_s, u"--kind"_s, kind, u"--output"_s, output, in});
    };
    const auto shell = [&](const QString &script) { runOrDie(u"bash"_s, {u"-c"_s, script, in}); };
    if (mode == u"create" || mode == u"verify") {
        makeFiles(folder, 40, 100 * 1024 * 1024);
        create(u"md5"_s, folder.path(u"list.md5"_s));
        QFile::rename(folder.path(u"list.md5"_s), list);
        if (mode == u"create")
            compare(u"MD5 list of 4 GiB in 40 files, against md5sum"_s, kRounds, 0.95, [&] { create(u"md5"_s, folder.path(u"ours"_s)); },
                    [&] { shell(u"cd \"$0\" && md5sum *.bin >../theirs"_s); });
        else
            compare(u"check of an MD5 list of 4 GiB in 40 files, against md5sum -c"_s, kRounds, 0.95,
                    [&] { runOrDie(nurv, {u"checksum"_s, u"verify"_s, u"--quiet"_s, list}); },
                    [&] { shell(u"cd \"$0\" && tail -n +3 list.md5 | md5sum -c --quiet"_s); });
    } else if (mode == u"small") {
        makeFiles(folder, 10'000, 4096);
        compare(u"MD5 list of 10,000 small files, against md5sum"_s, kRounds, 1.0, [&] { create(u"md5"_s, folder.path(u"ours"_s)); },
                [&] { shell(u"cd \"$0\" && md5sum *.bin >../theirs"_s); });
    } else if (mode == u"all") {
        makeFlacFiles(folder, 40, 180.0);
        folder.makeFolder(u"out"_s);
        compare(u"all lists of 40 FLAC files, against the three kinds one after another"_s, kRounds, 0.6,
                [&] {
                    runOrDie(nurv, {u"checksum"_s, u"create"_s, u"--quiet"_s, u"--kind=all"_s, u"--output-dir"_s,
                                    folder.path(u"out"_s), in});
                },
                [&] {
                    for (const QString &kind : {u"md5"_s, u"st5"_s, u"ffp"_s})
                        create(kind, folder.path(u"single"_s));
                });
    } else {
        makeFlacFiles(folder, 100, 60.0);
        create(u"ffp"_s, folder.path(u"list.ffp"_s));
        QFile::rename(folder.path(u"list.ffp"_s), folder.path(u"in/list.ffp"_s));
        compare(u"check of the fingerprints of 100 FLAC files, against xargs -P2 flac -t"_s, kRounds, 2.0,
                [&] { runOrDie(nurv, {u"checksum"_s, u"verify"_s, u"--quiet"_s, folder.path(u"in/list.ffp"_s)}); },
                [&] { shell(u"cd \"$0\" && printf '%s\\0' *.flac | xargs -0 -P2 -n1 flac -t -s"_s); });
    }
    return 0;
}
