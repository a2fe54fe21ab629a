// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

ProgramResult checksum(const QStringList &arguments)
{
    return runNurv(QStringList{u"checksum"_s} + arguments);
}

/// Three short FLAC files, in a folder "show".
QString makeShow(const TestFolder &folder)
{
    for (int i = 1; i <= 3; ++i)
        writeFlac(folder.path(u"show/t0%1.flac"_s.arg(i)), {.seconds = 1.0, .seed = static_cast<std::uint32_t>(i)});
    return folder.path(u"show"_s);
}

void damage(const TestFolder &folder, const QString &name)
{
    QByteArray bytes = folder.read(name);
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
    folder.write(name, bytes);
}

} // namespace

TEST(ChecksumCommand, WritesAndChecksEveryKindOfList)
{
    const TestFolder folder;
    const QString show = makeShow(folder);
    for (const auto &[kind, list] : {std::pair{u"md5"_s, u"md5sum.md5"_s}, std::pair{u"st5"_s, u"checksum.st5"_s},
                                     std::pair{u"ffp"_s, u"fingerprint.ffp.txt"_s}}) {
        const ProgramResult created = checksum({u"create"_s, u"--kind"_s, kind, u"--beside-source"_s, show + u"/t01.flac"_s,
                                                show + u"/t02.flac"_s, show + u"/t03.flac"_s});
        EXPECT_EQ(created.exitStatus, 0) << created.errors.constData();
        const ProgramResult verified = checksum({u"verify"_s, show + u'/' + list});
        EXPECT_EQ(verified.exitStatus, 0) << verified.errors.constData();
        for (const char *name : {"t01.flac : OK\n", "t02.flac : OK\n", "t03.flac : OK\n"})
            EXPECT_TRUE(verified.output.contains(name)) << verified.output.constData();
    }
}

TEST(ChecksumCommand, NamesWhatIsWrongAndEndsWithStatus1)
{
    const TestFolder folder;
    const QString show = makeShow(folder);
    for (const QString &kind : {u"md5"_s, u"st5"_s, u"ffp"_s})
        ASSERT_EQ(checksum({u"create"_s, u"--kind"_s, kind, u"--output"_s, show + u"/l."_s + kind, show}).exitStatus, 0);
    damage(folder, u"show/t02.flac"_s);
    folder.remove(u"show/t03.flac"_s);
    for (const QString &kind : {u"md5"_s, u"st5"_s, u"ffp"_s}) {
        const ProgramResult result = checksum({u"verify"_s, u"--json"_s, show + u"/l."_s + kind});
        EXPECT_EQ(result.exitStatus, 1) << qPrintable(kind);
        QStringList states;
        for (const QJsonObject &object : jsonLines(result.output)) {
            if (object[u"type"_s] == u"entry"_s && object[u"name"_s].toString().endsWith(u".flac"_s))
                states.append(object[u"name"_s].toString() + u'=' + object[u"state"_s].toString());
        }
        EXPECT_EQ(states, (QStringList{u"t01.flac=ok"_s, kind == u"ffp" ? u"t02.flac=damaged"_s : u"t02.flac=different"_s,
                                       u"t03.flac=missing"_s}));
        EXPECT_TRUE(result.errors.contains("    t03.flac: missing")) << result.errors.constData();
        EXPECT_TRUE(result.errors.contains("1 of 3 files is missing")) << result.errors.constData();
    }
}

TEST(ChecksumCommand, NeverEndsWellForAListThatSaysNothing)
{
    const TestFolder folder;
    for (const auto &[name, bytes] : {std::pair{u"empty.md5"_s, QByteArray()}, std::pair{u"latin.md5"_s, QByteArray("\xe4 *\xe4\n")},
                                     std::pair{u"empty.st5"_s, QByteArray(";nothing\n")}, std::pair{u"empty.ffp"_s, QByteArray()}}) {
        const ProgramResult result = checksum({u"verify"_s, folder.write(name, bytes)});
        EXPECT_EQ(result.exitStatus, 1) << qPrintable(name);
        EXPECT_TRUE(result.errors.contains("the list ")) << result.errors.constData();
    }
    EXPECT_NE(checksum({u"verify"_s, folder.path(u"gone.md5"_s)}).exitStatus, 0);
}

TEST(ChecksumCommand, TellsAFileThatCouldNotBeReadForItsList)
{
    const TestFolder folder;
    writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    folder.makeLink(u"b.wav"_s, folder.path(u"gone"_s));
    const ProgramResult result =
        checksum({u"create"_s, u"--output"_s, folder.path(u"l.md5"_s), folder.path(u"a.wav"_s), folder.path(u"b.wav"_s)});
    EXPECT_EQ(result.exitStatus, 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains("b.wav")) << result.errors.constData();
}

TEST(ChecksumCommand, AsksBeforeItReplacesAList)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const QString list = folder.write(u"l.md5"_s, "precious");
    EXPECT_NE(checksum({u"create"_s, u"--output"_s, list, wav}).exitStatus, 0);
    EXPECT_EQ(folder.read(u"l.md5"_s), "precious");
    EXPECT_EQ(checksum({u"create"_s, u"--overwrite"_s, u"--output"_s, list, wav}).exitStatus, 0);
    EXPECT_TRUE(folder.read(u"l.md5"_s).endsWith(" *a.wav\n"));
}

TEST(ChecksumCommand, WritesAllListsAsTheSingleKindsDo)
{
    const TestFolder folder;
    const QString show = makeShow(folder);
    writeWav(folder.path(u"show/t04.wav"_s), {.seconds = 0.5, .seed = 9});
    folder.write(u"show/notes.txt"_s, "notes");
    folder.makeFolder(u"all"_s);
    const ProgramResult result = checksum({u"create"_s, u"--kind=all"_s, u"--output-dir"_s, folder.path(u"all"_s), show});
    ASSERT_EQ(result.exitStatus, 0) << result.errors.constData();
    for (const auto &[kind, list] : {std::pair{u"md5"_s, u"md5sum.md5"_s}, std::pair{u"st5"_s, u"checksum.st5"_s},
                                     std::pair{u"ffp"_s, u"fingerprint.ffp.txt"_s}}) {
        ASSERT_EQ(checksum({u"create"_s, u"--kind"_s, kind, u"--output"_s, folder.path(u"single"_s), u"--overwrite"_s, show}).exitStatus, 0);
        // But for the moment in their first lines.
        const auto entries = [&folder](const QString &name) { const QByteArray text = folder.read(name); return text.sliced(text.indexOf('\n')); };
        EXPECT_EQ(entries(u"all/"_s + list), entries(u"single"_s)) << qPrintable(kind);
    }
}

TEST(ChecksumCommand, ReplacesThreeListsInOneGoOnlyWhenItIsTold)
{
    const TestFolder folder;
    const QString show = makeShow(folder);
    const QStringList create{u"create"_s, u"--kind=all"_s, show};
    const QStringList beside{u"--beside-source"_s};
    const QStringList elsewhere{u"--output-dir"_s, show};
    ASSERT_EQ(checksum(create + beside).exitStatus, 0);
    const QStringList names{u"show/md5sum.md5"_s, u"show/checksum.st5"_s, u"show/fingerprint.ffp.txt"_s};
    QList<QByteArray> entries;
    for (const QString &name : names) {
        entries.append(folder.read(name).split('\n').mid(1).join('\n'));
        folder.write(name, "old");
    }
    for (const QStringList &options : {beside, elsewhere}) {
        const ProgramResult refused = checksum(create + options);
        EXPECT_NE(refused.exitStatus, 0);
        EXPECT_TRUE(refused.errors.contains("md5sum.md5, checksum.st5, fingerprint.ffp.txt exist already. Do you want to replace them?"))
            << refused.errors.constData();
        EXPECT_EQ(folder.read(names[0]), "old");
    }
    for (const QStringList &options : {beside + QStringList{u"--yes"_s}, elsewhere + QStringList{u"--overwrite"_s}}) {
        for (const QString &name : names)
            folder.write(name, "old");
        ASSERT_EQ(checksum(create + options).exitStatus, 0);
        for (qsizetype i = 0; i < names.size(); ++i)
            EXPECT_EQ(folder.read(names[i]).split('\n').mid(1).join('\n'), entries[i]) << qPrintable(names[i]);
    }
}

TEST(ChecksumCommand, SeesDamageWhileItWritesAllLists)
{
    const TestFolder folder;
    const QString show = makeShow(folder);
    damage(folder, u"show/t02.flac"_s);
    folder.makeFolder(u"all"_s);
    const ProgramResult result = checksum({u"create"_s, u"--kind=all"_s, u"--output-dir"_s, folder.path(u"all"_s), show});
    EXPECT_EQ(result.exitStatus, 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains("t02.flac is not whole: ")) << result.errors.constData();
    EXPECT_FALSE(result.errors.contains("t01.flac is not whole"));
}

TEST(ChecksumCommand, SaysWhatHasNoPlaceInAList)
{
    const TestFolder folder;
    const QString show = makeShow(folder);
    folder.write(u"show/notes.txt"_s, "notes");
    for (const auto &[kind, note] :
         {std::pair{u"ffp"_s, "nurv: 1 of 4 files have no place in an FFP list, which holds FLAC files\n"},
          std::pair{u"st5"_s, "nurv: 1 of 4 files have no place in an ST5 list, which holds what shntool reads\n"}}) {
        const ProgramResult result = checksum({u"create"_s, u"--kind"_s, kind, u"--output"_s, folder.path(kind), show});
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
        EXPECT_TRUE(result.errors.contains(note)) << result.errors.constData();
    }
    EXPECT_EQ(checksum({u"create"_s, u"--kind=md5"_s, u"--output"_s, folder.path(u"md5"_s), show}).errors.count("no place"), 0);
}

TEST(ChecksumCommand, ShowsTheReportsOfGoodListsBesideABadOne)
{
    const TestFolder folder;
    const QString show = makeShow(folder);
    for (const QString &name : {u"a"_s, u"b"_s, u"c"_s})
        ASSERT_EQ(checksum({u"create"_s, u"--output"_s, folder.path(name + u".md5"_s), show + u"/t01.flac"_s}).exitStatus, 0);
    for (const QString &name : {u"a"_s, u"b"_s, u"c"_s})
        folder.write(name + u".md5"_s, folder.read(name + u".md5"_s).replace("*", "*show/"));
    folder.write(u"b.md5"_s, folder.read(u"b.md5"_s).replace("t01", "t09"));
    const QStringList lists{folder.path(u"a.md5"_s), folder.path(u"b.md5"_s), folder.path(u"c.md5"_s)};
    const ProgramResult result = checksum(QStringList{u"verify"_s} + lists);
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.output, "Verify MD5: a.md5\nt01.flac : OK\n\nVerify MD5: c.md5\nt01.flac : OK\n\n"
                             "2 of 3 lists good; 2 of 3 entries good\n");
    EXPECT_TRUE(result.errors.contains("b.md5: 1 of 1 file is missing\n    show/t09.flac: missing")) << result.errors.constData();
    // The window, as JSON has it, holds the reports of all in their order.
    const ProgramResult asJson = checksum(QStringList{u"verify"_s, u"--json"_s} + lists);
    const QString window = jsonLines(asJson.output).last()[u"outputs"_s][0][u"text"_s].toString();
    EXPECT_TRUE(window.startsWith(u"b.md5: 1 of 1 file is missing\n    show/t09.flac: missing"_s)) << qPrintable(window);
    EXPECT_TRUE(window.contains(u"\n\nVerify MD5: a.md5\nt01.flac : OK\n\nVerify MD5: b.md5\nt09.flac : FAILED\n"_s)) << qPrintable(window);
    EXPECT_TRUE(window.endsWith(u"\n\n2 of 3 lists good; 2 of 3 entries good\n"_s)) << qPrintable(window);
}

TEST(ChecksumCommand, TestsLosslessFiles)
{
    const TestFolder folder;
    const QString show = makeShow(folder);
    EXPECT_EQ(checksum({u"test"_s, show}).exitStatus, 0);
    damage(folder, u"show/t02.flac"_s);
    const ProgramResult result = checksum({u"test"_s, u"--json"_s, show});
    EXPECT_EQ(result.exitStatus, 1);
    for (const QJsonObject &object : jsonLines(result.output)) {
        if (object[u"type"_s] != u"job"_s)
            continue;
        const bool isDamaged = object[u"source"_s].toString().endsWith(u"t02.flac"_s);
        EXPECT_EQ(object[u"status"_s], isDamaged ? u"error"_s : u"complete"_s);
    }
}

TEST(ChecksumCommand, RefusesWhatDoesNotGoTogether)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const std::vector<std::pair<QStringList, QByteArray>> cases{
        {{u"create"_s, u"--kind=sha"_s, wav}, "nurv checksum create: --kind takes one of md5, st5, ffp, all, not \"sha\"."},
        {{u"create"_s, u"--beside-source"_s, u"--output=x"_s, wav},
         "nurv checksum create: --output and --beside-source cannot both be given."},
        {{u"create"_s, u"--overwrite"_s, u"--beside-source"_s, wav}, "nurv checksum create: --overwrite goes with --output or --output-dir only."},
        {{u"verify"_s}, "nurv checksum verify: no files are given."},
    };
    for (const auto &[arguments, sentence] : cases) {
        const ProgramResult result = checksum(arguments);
        EXPECT_EQ(result.exitStatus, 2) << sentence.constData();
        EXPECT_EQ(result.errors.split('\n').first(), sentence);
    }
    EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
}
