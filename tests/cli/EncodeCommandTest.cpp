// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"

#include <QFile>
#include <QJsonArray>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

/// The calls that a logged tool was made with, without the program itself.
QList<QByteArray> callsIn(const TestFolder &folder, const QString &log)
{
    QList<QByteArray> calls = folder.read(log).split('\n');
    calls.removeAll(QByteArray());
    return calls;
}

} // namespace

TEST(EncodeCommand, EncodesAFolderIntoAnotherOneWithoutLoss)
{
    const TestFolder folder;
    const QString first = writeWav(folder.path(u"in/a.wav"_s), {.seconds = 0.2});
    const QString second = writeWav(folder.path(u"in/deep/b 10.wav"_s), {.seconds = 0.2, .seed = 2});
    const QByteArray before = folder.read(u"in/a.wav"_s);
    folder.makeFolder(u"out"_s);

    const ProgramResult result = runNurv(
        {u"encode"_s, u"--format"_s, u"flac"_s, u"--output-dir"_s, folder.path(u"out"_s), folder.path(u"in"_s)});

    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(sameSound(first, folder.path(u"out/a.flac"_s)));
    EXPECT_TRUE(sameSound(second, folder.path(u"out/b 10.flac"_s)));
    EXPECT_EQ(folder.read(u"in/a.wav"_s), before);
    EXPECT_EQ(folder.list(), (QStringList{u"in/a.wav"_s, u"in/deep/b 10.wav"_s, u"out/a.flac"_s, u"out/b 10.flac"_s}));
    QList<QByteArray> lines = result.errors.trimmed().split('\n');
    EXPECT_TRUE(lines.takeLast().startsWith("2 of 2 done; ")) << result.errors.constData();
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(lines, (QList<QByteArray>{"a.wav: Complete", "deep/b 10.wav: Complete"}));
}

TEST(EncodeCommand, EveryOptionReachesTheProgram)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const ProgramFolder tools;
    tools.addLogged(u"flac"_s, folder.path(u"log"_s));
    const QString flac = folder.path(u"a.flac"_s);

    EXPECT_EQ(runNurv({u"encode"_s, u"--beside-source"_s, u"--level=8"_s, u"--verify"_s, wav}).exitStatus, 0);
    EXPECT_EQ(
        runNurv({u"encode"_s, u"--beside-source"_s, u"--lax"_s, u"--keep-foreign-metadata"_s, u"--overwrite"_s, wav})
            .exitStatus,
        0);
    folder.remove(u"a.flac"_s);
    EXPECT_EQ(runNurv({u"encode"_s, u"--beside-source"_s, wav}).exitStatus, 0);

    const QByteArray source = wav.toUtf8();
    const QByteArray end = source + "\t-o\t" + flac.toUtf8();
    EXPECT_EQ(callsIn(folder, u"log"_s),
              (QList<QByteArray>{"-8\t-V\t" + end, "--lax\t--keep-foreign-metadata\t-f\t" + end, "-5\t" + end}));
}

TEST(EncodeCommand, SaysWhereAnOptionHasNoEffect)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    ASSERT_EQ(runProgram(u"wavpack"_s, {u"-q"_s, wav, u"-o"_s, folder.path(u"b.wv"_s)}).exitStatus, 0);
    ASSERT_EQ(runNurv({u"encode"_s, u"--format=m4a"_s, u"--output-dir"_s, folder.path(), wav}).exitStatus, 0);
    ASSERT_EQ(runNurv({u"encode"_s, u"--format=ape"_s, u"--output-dir"_s, folder.path(), wav}).exitStatus, 0);
    folder.makeFolder(u"out"_s);
    const auto notes = [&folder](const QStringList &options, const QStringList &names) {
        QStringList arguments{u"encode"_s, u"--overwrite"_s, u"--yes"_s, u"--output-dir"_s, folder.path(u"out"_s)};
        arguments += options;
        for (const QString &name : names)
            arguments += folder.path(name);
        const ProgramResult result = runNurv(arguments);
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
        QStringList lines;
        for (const QByteArray &line : result.errors.split('\n')) {
            if (line.contains("no effect"))
                lines.append(QString::fromUtf8(line));
        }
        return lines;
    };
    EXPECT_EQ(notes({u"--level=8"_s}, {u"a.wav"_s}), QStringList());
    EXPECT_EQ(notes({}, {u"b.wv"_s, u"a.m4a"_s}), QStringList());
    EXPECT_EQ(notes({u"--level=8"_s}, {u"b.wv"_s, u"a.m4a"_s}),
              QStringList{u"nurv: --level has no effect on 2 WavPack or Apple Lossless sources: flac's own level counts"_s});
    EXPECT_EQ(notes({u"--lax"_s}, {u"b.wv"_s}),
              QStringList{u"nurv: --lax has no effect on 1 WavPack or Apple Lossless source: flac's own level counts"_s});
    EXPECT_EQ(notes({u"--lax"_s, u"--level=0"_s}, {u"a.wav"_s}),
              QStringList{u"nurv: --level has no effect together with --lax: flac's own level counts"_s});
    EXPECT_EQ(notes({u"--lax"_s, u"--verify"_s}, {u"a.ape"_s}),
              QStringList{u"nurv: --verify has no effect on 1 Shorten or Monkey's Audio source together with --lax"_s});
    EXPECT_EQ(notes({u"--level=8"_s, u"--quiet"_s}, {u"b.wv"_s}), QStringList());
}

TEST(EncodeCommand, ChoicesStoredByTheWindowCountForNothingAndStayAsTheyAre)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const QByteArray stored = "[General]\nencodeFlacLevel=0\nencodeOutputFormat=1\nencodeToSourceDirectory=0\n"
                              "flacVerifyButton=1\nflacGenerateFFPButton=1\n";
    folder.write(u"settings.ini"_s, stored);
    const ProgramFolder tools;
    tools.addLogged(u"flac"_s, folder.path(u"log"_s));

    const ProgramResult result = runProgram(u"env"_s, {u"NURV_SETTINGS="_s + folder.path(u"settings.ini"_s), nurvPath(),
                                                       u"encode"_s, u"--beside-source"_s, u"--lax"_s, wav});

    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_EQ(callsIn(folder, u"log"_s),
              QList<QByteArray>{"--lax\t" + wav.toUtf8() + "\t-o\t" + folder.path(u"a.flac"_s).toUtf8()});
    EXPECT_EQ(folder.read(u"settings.ini"_s), stored);
    EXPECT_FALSE(folder.exists(u"fingerprint.ffp.txt"_s));
}

TEST(EncodeCommand, PreferencesOfTheUserCount)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    folder.write(u"settings.ini"_s, "[General]\nffpExtension=ffp\ntrashOrDelete=1\n");

    const ProgramResult result =
        runProgram(u"env"_s, {u"NURV_SETTINGS="_s + folder.path(u"settings.ini"_s), nurvPath(), u"encode"_s,
                              u"--beside-source"_s, u"--ffp"_s, u"--delete-originals"_s, u"--yes"_s, wav});

    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_EQ(folder.list(), (QStringList{u"a.flac"_s, u"fingerprint.ffp"_s, u"settings.ini"_s}));
    const ProgramResult md5 = runProgram(u"metaflac"_s, {u"--show-md5sum"_s, folder.path(u"a.flac"_s)});
    EXPECT_TRUE(folder.read(u"fingerprint.ffp"_s).split('\n').contains("a.flac:" + md5.output.trimmed()));
}

TEST(EncodeCommand, NeverRunsMoreJobsAtOnceThanAskedFor)
{
    const TestFolder folder;
    for (const QString &name : {u"a.wav"_s, u"b.wav"_s, u"c.wav"_s})
        folder.write(name, "x");
    const ProgramFolder tools;
    // Fails when another one is at work at the same time.
    tools.addFake(u"flac"_s, "exec=" + folder.write(u"alone.sh"_s, "").toUtf8());
    folder.write(u"alone.sh"_s, "#!/bin/sh\nmkdir '" + folder.path(u"lock"_s).toUtf8()
                                    + "' || exit 1\nsleep 0.1\nfor output; do :; done\necho made > \"$output\"\nrmdir '"
                                    + folder.path(u"lock"_s).toUtf8() + "'\n");
    QFile::setPermissions(folder.path(u"alone.sh"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QStringList arguments{u"encode"_s, u"--beside-source"_s, folder.path(u"a.wav"_s), folder.path(u"b.wav"_s),
                                folder.path(u"c.wav"_s)};
    EXPECT_EQ(runNurv(arguments + QStringList{u"--jobs=1"_s}).exitStatus, 0);
    for (const QString &name : {u"a.flac"_s, u"b.flac"_s, u"c.flac"_s})
        folder.remove(name);
    EXPECT_EQ(runNurv(arguments + QStringList{u"--jobs=3"_s}).exitStatus, 1);
}

TEST(EncodeCommand, AFailedJobGivesStatus1AndOneLine)
{
    const TestFolder folder;
    folder.write(u"bad.wav"_s, "this is no sound at all");
    writeWav(folder.path(u"good.wav"_s), {.seconds = 0.1});
    const QStringList arguments{u"encode"_s, u"--beside-source"_s, u"--jobs=1"_s, folder.path()};
    const ProgramResult result = runNurv(arguments);
    EXPECT_EQ(result.exitStatus, 1);
    // What an output window would show of a failed job is in its line.
    EXPECT_EQ(result.output, "");
    const QList<QByteArray> lines = result.errors.trimmed().split('\n');
    ASSERT_EQ(lines.size(), 3) << result.errors.constData();
    EXPECT_EQ(lines[0], "bad.wav: not a WAVE file; treating as a raw file");
    EXPECT_EQ(lines[1], "good.wav: Complete");
    EXPECT_TRUE(lines[2].startsWith("1 of 2 done, 1 failed; ")) << lines[2].constData();
    EXPECT_TRUE(folder.exists(u"good.flac"_s));

    folder.remove(u"good.flac"_s);
    EXPECT_EQ(runNurv(arguments + QStringList{u"--quiet"_s}).errors, lines[0] + '\n');
}

TEST(EncodeCommand, VerboseShowsWhatTheProgramsOfTheFailedJobWroteAndNoOthers)
{
    const TestFolder folder;
    folder.write(u"bad.wav"_s, "this is no sound at all");
    writeWav(folder.path(u"good.wav"_s), {.seconds = 0.1});
    const ProgramResult result =
        runNurv({u"encode"_s, u"--beside-source"_s, u"--jobs=1"_s, u"--verbose"_s, folder.path()});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.output, "");
    const qsizetype end = result.errors.indexOf("good.wav: Complete\n");
    ASSERT_GT(end, 0) << result.errors.constData();
    const QByteArray ofBad = result.errors.left(end);
    EXPECT_TRUE(ofBad.startsWith("bad.wav: not a WAVE file; treating as a raw file\n    ")) << ofBad.constData();
    EXPECT_TRUE(ofBad.contains("\n    ERROR: for encoding a raw file")) << ofBad.constData();
    EXPECT_EQ(result.errors.count("ABSOLUTELY NO WARRANTY"), 1);
    EXPECT_FALSE(result.errors.mid(end).contains("    "));
}

TEST(EncodeCommand, FailsWhenTheListOfTheOutputsCannotBeWritten)
{
    const TestFolder folder;
    writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const QString list = folder.makeFolder(u"fingerprint.ffp.txt"_s);
    const ProgramResult result = runNurv({u"encode"_s, u"--ffp"_s, u"--beside-source"_s, folder.path(u"a.wav"_s)});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.contains("Unable to write " + list.toUtf8())) << result.errors.constData();
    EXPECT_TRUE(folder.exists(u"a.flac"_s));
}

TEST(EncodeCommand, GivesOneJsonObjectPerJobAndOneForTheBatch)
{
    const TestFolder folder;
    folder.write(u"bad.wav"_s, "this is no sound at all");
    folder.write(u"cover.jpg"_s, "picture");
    writeWav(folder.path(u"good \"1\".wav"_s), {.seconds = 0.1});
    const ProgramResult result =
        runNurv({u"encode"_s, u"--json"_s, u"--jobs=1"_s, u"--beside-source"_s, folder.path()});
    EXPECT_EQ(result.exitStatus, 1);
    const QList<QJsonObject> objects = jsonLines(result.output);
    ASSERT_EQ(objects.size(), 3) << result.output.constData();
    EXPECT_EQ(objects[0][u"type"_s], u"job"_s);
    EXPECT_EQ(objects[0][u"title"_s], u"bad.wav"_s);
    EXPECT_EQ(objects[0][u"source"_s], folder.path(u"bad.wav"_s));
    EXPECT_EQ(objects[0][u"status"_s], u"error"_s);
    EXPECT_TRUE(objects[0][u"report"_s].toString().contains(u"ERROR"_s));
    EXPECT_EQ(objects[0][u"reason"_s], u"not a WAVE file; treating as a raw file"_s);
    EXPECT_EQ(objects[0][u"original"_s], u"untouched"_s);
    EXPECT_EQ(objects[1][u"title"_s], u"good \"1\".wav"_s);
    EXPECT_EQ(objects[1][u"status"_s], u"complete"_s);
    EXPECT_EQ(objects[1][u"reason"_s], QString());
    EXPECT_EQ(objects[2][u"type"_s], u"batch"_s);
    EXPECT_EQ(objects[2][u"jobs"_s], 2);
    EXPECT_EQ(objects[2][u"complete"_s], 1);
    EXPECT_EQ(objects[2][u"failed"_s], 1);
    EXPECT_EQ(objects[2][u"canceled"_s], 0);
    EXPECT_EQ(objects[2][u"exitStatus"_s], 1);
    EXPECT_EQ(objects[2][u"refused"_s].toArray().size(), 0);
    EXPECT_EQ(objects[2][u"skipped"_s].toArray().size(), 1);
    // The words for people are no part of it.
    EXPECT_TRUE(result.errors.contains("\n1 of 2 done, 1 failed; ")) << result.errors.constData();
}

TEST(EncodeCommand, AMissingProgramGivesStatus3BeforeAnythingIsQueued)
{
    const TestFolder folder;
    writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const ProgramFolder tools;
    const ProgramResult result = runNurv({u"encode"_s, u"--beside-source"_s, folder.path(u"a.wav"_s)});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_TRUE(result.errors.contains("\"flac\"")) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains("\n    It was looked for in the folder " + tools.path().toUtf8() + ".\n"));
    EXPECT_FALSE(result.errors.contains("a.wav: "));
    EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
}

TEST(EncodeCommand, EncodesToEveryFormatAndBackWithoutLoss)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.5});
    for (const QString &format : {u"shn"_s, u"wv"_s, u"flac"_s, u"tta"_s, u"ape"_s, u"m4a"_s}) {
        SCOPED_TRACE(qPrintable(format));
        const QString out = folder.makeFolder(format);
        const ProgramResult encoded = runNurv({u"encode"_s, u"--format"_s, format, u"--output-dir"_s, out, wav});
        EXPECT_EQ(encoded.exitStatus, 0) << encoded.errors.constData();
        const QString output = folder.path(format + u"/a."_s + format);
        EXPECT_TRUE(sameSound(wav, output));
        for (const QString &back : {u"wav"_s, u"aiff"_s}) {
            const ProgramResult decoded = runNurv({u"decode"_s, u"--format"_s, back, u"--output-dir"_s, out, output});
            EXPECT_EQ(decoded.exitStatus, 0) << decoded.errors.constData();
            EXPECT_TRUE(sameSound(wav, folder.path(format + u"/a."_s + back)));
        }
    }
    EXPECT_EQ(folder.list().size(), 1 + 6 * 3) << qPrintable(folder.list().join(u'\n'));
}

TEST(EncodeCommand, PassesTheModeAndTheLevelOn)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const ProgramFolder tools;
    const QString log = folder.path(u"log"_s);
    tools.addLogged(u"wavpack"_s, log);
    tools.addLogged(u"mac"_s, log);
    const auto encode = [&](const QStringList &options) {
        EXPECT_EQ(runNurv(QStringList{u"encode"_s, u"--beside-source"_s, wav} + options).exitStatus, 0);
    };
    encode({u"--format=wv"_s, u"--mode=high"_s});
    folder.remove(u"a.wv"_s);
    encode({u"--format=wv"_s});
    encode({u"--format=ape"_s, u"--level=4000"_s});
    folder.remove(u"a.ape"_s);
    encode({u"--format=ape"_s});
    const QList<QByteArray> calls = folder.read(u"log"_s).trimmed().split('\n');
    ASSERT_EQ(calls.size(), 4);
    EXPECT_TRUE(calls[0].startsWith("-h\t")) << calls[0].constData();
    EXPECT_TRUE(calls[1].startsWith("-f\t")) << calls[1].constData();
    EXPECT_TRUE(calls[2].endsWith("\t-c4000")) << calls[2].constData();
    EXPECT_TRUE(calls[3].endsWith("\t-c2000")) << calls[3].constData();
}

TEST(EncodeCommand, GivesEveryJobItsSourceAlsoWhenTitlesAreTheSame)
{
    const TestFolder folder;
    for (const QString &name : {u"1/a.wav"_s, u"2/a.wav"_s, u"3/a.wav"_s})
        writeWav(folder.path(name), {.seconds = 0.1});
    const ProgramResult result =
        runNurv({u"encode"_s, u"--json"_s, u"--format=tta"_s, u"--jobs=3"_s, u"--beside-source"_s, folder.path()});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    QStringList sources;
    for (const QJsonObject &object : jsonLines(result.output)) {
        if (object[u"type"_s] == u"job"_s)
            sources.append(object[u"source"_s].toString());
    }
    sources.sort();
    EXPECT_EQ(sources, (QStringList{folder.path(u"1/a.wav"_s), folder.path(u"2/a.wav"_s), folder.path(u"3/a.wav"_s)}));
}

TEST(EncodeCommand, AFailureIsNotLoggedBesidesItsLineAndItsReport)
{
    const TestFolder folder;
    folder.write(u"bad.wav"_s, "this is no sound at all");
    for (const QStringList &options : {QStringList(), QStringList{u"--quiet"_s}}) {
        const ProgramResult result = runNurv(QStringList{u"encode"_s, u"--beside-source"_s, folder.path()} + options);
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_FALSE(result.errors.contains("nurv.engine")) << result.errors.constData();
    }
}

TEST(EncodeCommand, AProgramThatVanishesDuringTheBatchGivesStatus3)
{
    const TestFolder folder;
    folder.write(u"a.wav"_s, "x");
    folder.write(u"b.wav"_s, "x");
    const ProgramFolder tools;
    tools.addFake(u"flac"_s, "delete=" + tools.path(u"flac"_s).toUtf8());
    const ProgramResult result = runNurv({u"encode"_s, u"--beside-source"_s, u"--jobs=1"_s, folder.path()});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_TRUE(result.errors.contains("\nb.wav: \"flac\" could not be started: No such file or directory\n"))
        << result.errors.constData();
}

TEST(EncodeCommand, AReaderThatGoesAwayDoesNotStopTheWorkButCounts)
{
    const TestFolder folder;
    for (int i = 0; i < 4; ++i)
        writeWav(folder.path(u"in/%1.wav"_s.arg(i)), {.seconds = 0.1});
    // The reader is gone before the program begins.
    const QString script = u"{ until [ -e \"$1/gone\" ]; do sleep 0.01; done; "
                           "\"$0\" encode --json --quiet --beside-source \"$1/in\"; echo $? >\"$1/status\"; } "
                           "| { exec <&-; >\"$1/gone\"; }"_s;
    const ProgramResult result = runProgram(u"bash"_s, {u"-c"_s, script, nurvPath(), folder.path()});
    EXPECT_EQ(folder.read(u"status"_s), "1\n");
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(folder.list().size(), 8 + 2);
}

TEST(EncodeCommand, AReaderThatTakesOneLineOnlyCounts)
{
    const TestFolder folder;
    folder.write(u"first.wav"_s, "x");
    folder.write(u"second.wav"_s, "x");
    const ProgramFolder tools;
    // The second job ends when the reader has gone.
    tools.addFake(u"flac"_s, "when=second.wav;wait-file=" + folder.path(u"gone"_s).toUtf8());
    const QString script = u"{ \"$0\" encode --json --quiet --jobs 1 --beside-source \"$1\"; echo $? >\"$1/status\"; } "
                           "| { head -1; exec <&-; >\"$1/gone\"; }"_s;
    const ProgramResult result = runProgram(u"bash"_s, {u"-c"_s, script, nurvPath(), folder.path()});
    EXPECT_EQ(folder.read(u"status"_s), "1\n");
    ASSERT_EQ(jsonLines(result.output).size(), 1) << result.output.constData();
    EXPECT_EQ(jsonLines(result.output)[0][u"title"_s], u"first.wav"_s);
}

TEST(EncodeCommand, AnOutputThatIsFullIsTold)
{
    const ProgramResult result = runProgram(u"bash"_s, {u"-c"_s, u"\"$0\" --help >/dev/full"_s, nurvPath()});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.errors, "nurv: standard output cannot be written: No space left on device\n");
}
