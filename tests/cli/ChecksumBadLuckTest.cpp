// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QFile>

#include <gtest/gtest.h>

#include <optional>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsMemoryOurs = false; // a sanitizer needs much of its own
#else
constexpr bool kIsMemoryOurs = true;
#endif

const QByteArray kDigestOfAbc = "900150983cd24fb0d6963f7d28e17f72";

ProgramResult checksum(const QStringList &arguments)
{
    return runNurv(QStringList{u"checksum"_s} + arguments);
}

/// Without the right of root to read and write everything; nothing where that cannot be given up.
std::optional<ProgramResult> checksumWithPermissions(const QStringList &arguments)
{
    if (::geteuid() != 0)
        return checksum(arguments);
    const QStringList without{u"--bounding-set"_s, u"-dac_override,-dac_read_search"_s};
    if (runProgram(u"setpriv"_s, without + QStringList{u"true"_s}).exitStatus != 0)
        return std::nullopt;
    return runProgram(u"setpriv"_s, without + QStringList{nurvPath(), u"checksum"_s} + arguments);
}

void lock(const QString &path)
{
    EXPECT_EQ(::chmod(QFile::encodeName(path).constData(), 0), 0);
}

} // namespace

TEST(ChecksumBadLuck, TellsFilesThatMayNotBeRead)
{
    const TestFolder folder;
    const QStringList files{writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.2}), writeFlac(folder.path(u"b.flac"_s), {.seconds = 0.2})};
    for (const QString &kind : {u"md5"_s, u"st5"_s, u"ffp"_s})
        ASSERT_EQ(checksum(QStringList{u"create"_s, u"--kind"_s, kind, u"--output"_s, folder.path(u"l."_s + kind)} + files).exitStatus, 0);
    lock(files[1]);
    for (const QString &kind : {u"md5"_s, u"st5"_s, u"ffp"_s}) {
        const auto result = checksumWithPermissions({u"verify"_s, u"--json"_s, folder.path(u"l."_s + kind)});
        if (!result)
            GTEST_SKIP() << "root cannot give up its rights here";
        EXPECT_EQ(result->exitStatus, 1);
        QStringList states;
        for (const QJsonObject &object : jsonLines(result->output)) {
            if (object[u"type"_s] == u"entry"_s)
                states.append(object[u"name"_s].toString() + u'=' + object[u"state"_s].toString());
        }
        EXPECT_EQ(states, (QStringList{u"a.flac=ok"_s, u"b.flac=unreadable"_s})) << qPrintable(kind);
        EXPECT_TRUE(result->errors.contains("1 of 2 files could not be read")) << result->errors.constData();
    }
    for (const QString &kind : {u"md5"_s, u"st5"_s, u"ffp"_s, u"all"_s}) {
        const QStringList place = kind == u"all" ? QStringList{u"--output-dir"_s, folder.makeFolder(u"all"_s)}
                                                 : QStringList{u"--output"_s, folder.path(u"new."_s + kind)};
        const auto result = checksumWithPermissions(QStringList{u"create"_s, u"--kind"_s, kind} + place + files);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->exitStatus, 1) << qPrintable(kind);
        EXPECT_TRUE(result->errors.contains("b.flac: Permission denied\n")) << result->errors.constData();
    }
}

TEST(ChecksumBadLuck, TellsAListThatMayNotBeReadOrWritten)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"show/a.wav"_s), {.seconds = 0.1});
    const QString list = folder.write(u"l.md5"_s, kDigestOfAbc + " *a.wav\n");
    lock(list);
    const auto result = checksumWithPermissions({u"verify"_s, list});
    if (!result)
        GTEST_SKIP() << "root cannot give up its rights here";
    EXPECT_EQ(result->exitStatus, 1);
    EXPECT_TRUE(result->errors.contains("l.md5: Permission denied")) << result->errors.constData();
    ASSERT_EQ(::chmod(QFile::encodeName(folder.path(u"show"_s)).constData(), 0555), 0);
    for (const QString &kind : {u"md5"_s, u"st5"_s, u"all"_s}) {
        const auto created = checksumWithPermissions({u"create"_s, u"--kind"_s, kind, u"--beside-source"_s, wav});
        EXPECT_EQ(created->exitStatus, 1) << qPrintable(kind);
        EXPECT_TRUE(created->errors.contains("Unable to write ") && created->errors.contains(": Permission denied"))
            << created->errors.constData();
    }
    ASSERT_EQ(::chmod(QFile::encodeName(folder.path(u"show"_s)).constData(), 0755), 0);
    EXPECT_EQ(folder.list(), (QStringList{u"l.md5"_s, u"show/a.wav"_s}));
}

TEST(ChecksumBadLuck, ChecksAListOfAMillionLinesInBoundedMemory)
{
    const TestFolder folder;
    folder.write(u"a.wav"_s, "abc");
    const QByteArray entries = kDigestOfAbc + " *a.wav\n" + kDigestOfAbc + " *a track that is not there.wav\n";
    const QString list = folder.write(u"l.md5"_s, "#\n" + entries.repeated(500'000));
    const MeasuredResult result = runMeasured(folder, {u"checksum"_s, u"verify"_s, list});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.contains("l.md5: 500000 of 1000000 files are missing\n"));
    EXPECT_EQ(result.errors.count("    a track that is not there.wav: missing"), 500'000);
    if (kIsMemoryOurs) {
        EXPECT_LT(result.peakBytes, qint64{1280} << 20);
    }
}

TEST(ChecksumBadLuck, ReadsNoListOfLinesThatNoListHas)
{
    const TestFolder folder;
    const struct Case {
        qint64 size;
        const char *reason;
    } cases[] = {
        // Zeros, which take no room: a line of 1 GB, and one of 100 MiB, which may still be read.
        {1LL << 30, "the list has more than 128 MiB"},
        {100LL << 20, "the list has a line of more than 65536 characters"},
    };
    for (const QString &kind : {u"md5"_s, u"st5"_s, u"ffp"_s}) {
        for (const Case &one : cases) {
            const QString list = folder.write(u"l."_s + kind, kDigestOfAbc + " *a.wav\n");
            ASSERT_TRUE(QFile::resize(list, one.size));
            for (const QStringList &options : {QStringList{}, QStringList{u"--any-list"_s}}) {
                const MeasuredResult result = runMeasured(folder, QStringList{u"checksum"_s, u"verify"_s, list} + options);
                EXPECT_EQ(result.exitStatus, 1);
                EXPECT_TRUE(result.errors.contains(one.reason)) << result.errors.left(500).constData();
                if (kIsMemoryOurs) {
                    EXPECT_LT(result.peakBytes, qint64{500} << 20);
                }
            }
        }
    }
    const MeasuredResult ofLines =
        runMeasured(folder, {u"checksum"_s, u"verify"_s, folder.write(u"l.md5"_s, QByteArray("\n").repeated(2'000'001))});
    EXPECT_EQ(ofLines.exitStatus, 1);
    EXPECT_TRUE(ofLines.errors.contains("the list has more than 2000000 lines")) << ofLines.errors.constData();
}

TEST(ChecksumBadLuck, TestsNoShortenFileWhichNoProgramCan)
{
    const TestFolder folder;
    const QString shn = folder.write(u"show/a.shn"_s, "ajkg");
    const ProgramResult result = checksum({u"test"_s, shn});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.contains("a.shn: not a file of a kind that this command takes")) << result.errors.constData();
    // One of a folder was not asked for; that nothing is left is told all the same.
    EXPECT_EQ(checksum({u"test"_s, folder.path(u"show"_s)}).exitStatus, 1);
}
