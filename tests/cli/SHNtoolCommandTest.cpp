// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "SHNtoolCommandFixture.h"

#include "PseudoTerminal.h"
#include "support/ProgramFolder.h"
#include "support/WaitUntil.h"

#include <QDir>
#include <QFile>

#include <csignal>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

using SHNtoolCommandTest = SHNtoolCommandFixture;

const QByteArray kDeletion =
    "nurv: You have chosen to delete the original files. Are you sure you want to continue? They will be deleted for "
    "good. Answered \"No\", since there is no terminal to ask on; --yes answers \"Yes\".\n";
const QStringList kEdits{u"trim"_s, u"pad"_s, u"strip"_s, u"join"_s};

/// What is left of the samples without the digital silence at both ends.
QByteArray withoutSilence(const QByteArray &samples)
{
    const QByteArray silence(kFrameBytes, '\0');
    qsizetype begin = 0;
    qsizetype end = samples.size();
    while (begin < end && samples.sliced(begin, kFrameBytes) == silence)
        begin += kFrameBytes;
    while (end > begin && samples.sliced(end - kFrameBytes, kFrameBytes) == silence)
        end -= kFrameBytes;
    return samples.sliced(begin, end - begin);
}

} // namespace

TEST_F(SHNtoolCommandTest, EditsLoseNoSampleInAnyFormat)
{
    for (const QString &format : {u"flac"_s, u"shn"_s, u"aiff"_s, u"wav"_s}) {
        for (const QString &command : kEdits) {
            SCOPED_TRACE(qPrintable(command + u' ' + format));
            const QStringList sources{writeFor(command, u"in/a.wav"_s), writeFor(command, u"in/b.wav"_s, 2)};
            const QList<QByteArray> before{folder.read(u"in/a.wav"_s), folder.read(u"in/b.wav"_s)};
            const ProgramResult result = edit(command, QStringList{u"--format"_s, format} + sources);
            EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
            EXPECT_TRUE(result.errors.contains("\n2 of 2 done; ")) << result.errors.constData();
            EXPECT_EQ(result.output, QByteArray());
            const QString ending = command == u"trim"  ? u"-trimmed."_s
                                   : command == u"pad" ? u"-padded."_s
                                                       : u"-stripped."_s;
            QStringList outputs{out + u"/a"_s + ending + format, out + u"/b"_s + ending + format};
            if (command == u"join")
                outputs = QStringList{out + u"/joined."_s + format};
            EXPECT_EQ(folder.list().size(), 2 + outputs.size()) << qPrintable(folder.list().join(u'\n'));
            EXPECT_TRUE((QList<QByteArray>{folder.read(u"in/a.wav"_s), folder.read(u"in/b.wav"_s)}) == before);
            if (command == u"join") {
                EXPECT_TRUE(sound(outputs) == sound(sources));
            } else {
                for (qsizetype i = 0; i < outputs.size(); ++i) {
                    const QByteArray had = sound({sources[i]});
                    const QByteArray has = sound({outputs[i]});
                    const qsizetype rest = kSectorFrames - 17;
                    const QByteArray wanted = command == u"trim"  ? withoutSilence(had)
                                              : command == u"pad" ? had + QByteArray(rest * kFrameBytes, '\0')
                                                                  : had;
                    EXPECT_TRUE(has == wanted) << has.size() << " bytes instead of " << wanted.size();
                }
            }
            for (const QString &path : outputs)
                QFile::remove(path);
        }
    }
}

TEST_F(SHNtoolCommandTest, StripLeavesNothingButTheSound)
{
    const SoundShape shape{.frames = 10 * kSectorFrames};
    const QString source = folder.write(u"a.wav"_s, wavBytes(shape, riffChunk("LIST", "INFO"), riffChunk("note", "x")));
    EXPECT_EQ(edit(u"strip"_s, {u"--format=wav"_s, source}).exitStatus, 0);
    EXPECT_TRUE(folder.read(u"out/a-stripped.wav"_s) == wavBytes(shape));
}

TEST_F(SHNtoolCommandTest, EditsGoBesideTheFirstFile)
{
    for (const QString &command : kEdits) {
        SCOPED_TRACE(qPrintable(command));
        const TestFolder show;
        for (const auto &[name, seed] : {std::pair{u"disc1/a.wav"_s, 1U}, std::pair{u"disc2/b.wav"_s, 2U}}) {
            writeFor(command, name, seed);
            show.write(name, folder.read(name));
        }
        const ProgramResult result = shntool({command, u"--beside-source"_s, u"--format=wav"_s,
                                              show.path(u"disc1/a.wav"_s), show.path(u"disc2/b.wav"_s)});
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
        const QStringList made = show.list().filter(u"disc1/"_s);
        EXPECT_EQ(made.size(), command == u"join" ? 2 : 3) << qPrintable(made.join(u'\n'));
        EXPECT_EQ(show.list().filter(u"disc2/"_s).size(), 1);
    }
}

TEST_F(SHNtoolCommandTest, EditsReplaceNothing)
{
    for (const QString &command : kEdits) {
        SCOPED_TRACE(qPrintable(command));
        const QString name = command == u"trim"    ? u"out/a-trimmed.flac"_s
                             : command == u"pad"   ? u"out/a-padded.flac"_s
                             : command == u"strip" ? u"out/a-stripped.flac"_s
                                                   : u"out/joined.flac"_s;
        folder.write(name, "mine");
        const QStringList sources{writeFor(command, u"in/a.wav"_s), writeFor(command, u"in/b.wav"_s, 2)};
        const ProgramResult result = edit(command, QStringList{u"--yes"_s} + sources);
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_TRUE(result.errors.contains("a file of the name of its output exists already"))
            << result.errors.constData();
        EXPECT_EQ(folder.read(name), "mine");
    }
}

TEST_F(SHNtoolCommandTest, EditsDeleteWhatIsProvenOnceThatIsAgreedTo)
{
    for (const QString &command : kEdits) {
        SCOPED_TRACE(qPrintable(command));
        const QStringList sources{writeFor(command, u"in/a.wav"_s), writeFor(command, u"in/b.wav"_s, 2)};
        const QByteArray had = sound(sources);
        const ProgramResult result = edit(
            command, QStringList{u"--json"_s, u"--delete-originals"_s, u"--drop-metadata"_s, u"--yes"_s} + sources);
        // What stays although its deletion was asked for is told.
        const bool isTrim = command == u"trim";
        EXPECT_EQ(result.exitStatus, isTrim ? 1 : 0) << result.errors.constData();
        EXPECT_TRUE(result.errors.contains(isTrim ? "\n1 of 2 done, 1 original kept; " : "\n2 of 2 done; "))
            << result.errors.constData();
        const QStringList left = folder.list().filter(u"in/"_s);
        EXPECT_EQ(left, command == u"trim" ? QStringList{u"in/a.wav"_s} : QStringList());
        for (const QJsonObject &object : jsonLines(result.output)) {
            if (object[u"type"_s] != u"job"_s)
                continue;
            EXPECT_EQ(object[u"status"_s], u"complete"_s);
            EXPECT_EQ(object[u"original"_s], command == u"trim" ? u"kept"_s : u"deleted"_s);
            EXPECT_EQ(object[u"proof"_s], u"proven"_s);
        }
        QStringList made;
        for (const QString &name : folder.list().filter(u"out/"_s))
            made.append(folder.path(name));
        if (command == u"join" || command == u"strip") {
            EXPECT_TRUE(sound(made) == had);
        }
        for (const QString &path : made + sources)
            QFile::remove(path);
    }
}

TEST_F(SHNtoolCommandTest, EditsKeepASourceWhoseChunksWouldBeLost)
{
    const QString source = writeFor(u"strip"_s, u"a.wav"_s);
    const QByteArray before = folder.read(u"a.wav"_s);
    const ProgramResult result = edit(u"strip"_s, {u"--json"_s, u"--delete-originals"_s, u"--yes"_s, source});
    EXPECT_EQ(jobOf(result)[u"original"_s], u"kept"_s);
    EXPECT_TRUE(folder.read(u"a.wav"_s) == before);
    EXPECT_TRUE(folder.exists(u"out/a-stripped.flac"_s));
}

TEST_F(SHNtoolCommandTest, EditsDeleteNothingWithoutATerminalOrAgreement)
{
    for (const QString &command : kEdits) {
        SCOPED_TRACE(qPrintable(command));
        const QStringList sources{writeFor(command, u"in/a.wav"_s), writeFor(command, u"in/b.wav"_s, 2)};
        const ProgramResult result = edit(command, QStringList{u"--delete-originals"_s} + sources);
        EXPECT_EQ(result.exitStatus, 2);
        EXPECT_EQ(result.errors, kDeletion);
        EXPECT_EQ(folder.list(), (QStringList{u"in/a.wav"_s, u"in/b.wav"_s}));
    }
    PseudoTerminal terminal(
        200, 24, nurvPath(),
        {u"shntool"_s, u"join"_s, u"--output-dir"_s, out, u"--delete-originals"_s, folder.path(u"in"_s)});
    ASSERT_TRUE(terminal.waitFor("continue? They will be deleted for good. [Yes/No, default No] "))
        << terminal.received().constData();
    terminal.type("n\n");
    EXPECT_EQ(terminal.finish(), 1);
    EXPECT_EQ(folder.list(), (QStringList{u"in/a.wav"_s, u"in/b.wav"_s}));
}

TEST_F(SHNtoolCommandTest, PreviewsMakeNothingAndAskNothing)
{
    const QString sheet = writeSheet();
    const std::vector<std::pair<QString, QByteArray>> cases{
        {u"trim"_s, "a-trimmed.flac  up to 0:01.44\nb-trimmed.flac  up to 0:01.44\n\n"},
        {u"pad"_s, "a-padded.flac  0:01.01\nb-padded.flac  0:01.01\n\n"},
        {u"strip"_s, "a-stripped.flac  0:00.10\nb-stripped.flac  0:00.10\n\n"},
        {u"join"_s, "joined.flac  0:02.00  does not end on a sector boundary\n\n"},
    };
    for (const auto &[command, text] : cases) {
        SCOPED_TRACE(qPrintable(command));
        const QStringList sources{writeFor(command, u"in/a.wav"_s), writeFor(command, u"in/b.wav"_s, 2)};
        for (const QStringList &options : {QStringList(), QStringList{u"--delete-originals"_s}}) {
            const ProgramResult result = edit(command, QStringList{u"--preview"_s} + options + sources);
            EXPECT_EQ(result.exitStatus, 0);
            EXPECT_EQ(result.errors, "Preview: Complete\n");
            EXPECT_EQ(result.output, text);
            EXPECT_EQ(folder.list(), (QStringList{u"in/a.wav"_s, u"in/b.wav"_s, u"points.cue"_s}));
        }
        const QJsonObject job = jobOf(edit(command, QStringList{u"--preview"_s, u"--json"_s} + sources));
        EXPECT_EQ(job[u"title"_s], u"Preview"_s);
        EXPECT_EQ(job[u"report"_s].toString().toUtf8(), text.chopped(1));
    }
    const QString source = writeWav(folder.path(u"in/a.wav"_s), {.frames = 3 * 44'100});
    const ProgramResult split = edit(u"split"_s, {u"--preview"_s, u"--points"_s, sheet, source});
    EXPECT_EQ(split.exitStatus, 0);
    EXPECT_EQ(split.errors, "Preview: Complete\n");
    EXPECT_EQ(split.output, "01 Zw\xc3\xb6lf.flac  0:01.00\n02 Two.flac    0:02.00\n\n");
    EXPECT_EQ(folder.list(), (QStringList{u"in/a.wav"_s, u"in/b.wav"_s, u"points.cue"_s}));
}

TEST_F(SHNtoolCommandTest, PreviewsNeedNoProgram)
{
    const ProgramFolder nothing;
    const QString source = writeFor(u"pad"_s, u"a.wav"_s);
    EXPECT_EQ(edit(u"pad"_s, {u"--preview"_s, source}).exitStatus, 0);
    const ProgramResult result = edit(u"pad"_s, {source});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_TRUE(result.errors.startsWith("nurv: \"shntool\" could not be started: it is not there\n"))
        << result.errors.constData();
}

TEST_F(SHNtoolCommandTest, PreviewsTellWhatWouldFail)
{
    const QString source = writeFor(u"strip"_s, u"a.wav"_s);
    folder.write(u"out/a-stripped.flac"_s, "mine");
    const ProgramResult result = edit(u"strip"_s, {u"--preview"_s, source, folder.write(u"b.wav"_s, "no sound")});
    EXPECT_TRUE(result.output.contains("\n\nThis would fail:\n  a-stripped.flac exists already\n"
                                       "  b.wav: its header does not tell how long it is\n"))
        << result.output.constData();
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.startsWith("Preview: this would fail\n")) << result.errors.constData();
    EXPECT_EQ(folder.read(u"out/a-stripped.flac"_s), "mine");
}

TEST_F(SHNtoolCommandTest, SplitsAtACueSheetOrAList)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.frames = 3 * 44'100 + 17});
    const ProgramResult sheet = edit(u"split"_s, {u"--points"_s, writeSheet(), source});
    EXPECT_EQ(sheet.exitStatus, 0) << sheet.errors.constData();
    EXPECT_TRUE(sheet.errors.contains("\n1 of 1 done; ")) << sheet.errors.constData();
    EXPECT_TRUE(sound({out + u"/01 Zwölf.flac"_s, out + u"/02 Two.flac"_s}) == sound({source}));
    const QString list = folder.write(u"list.txt"_s, "0:01\r\n0:02.37\r\n");
    const ProgramResult points = edit(u"split"_s, {u"--json"_s, u"--format=wav"_s, u"--points"_s, list, source});
    EXPECT_EQ(points.exitStatus, 0) << points.errors.constData();
    EXPECT_EQ(jobOf(points)[u"original"_s], u"untouched"_s);
    EXPECT_TRUE(sound({out + u"/split-track01.wav"_s, out + u"/split-track02.wav"_s, out + u"/split-track03.wav"_s})
                == sound({source}));
    EXPECT_EQ(sound({out + u"/split-track02.wav"_s}).size(), (75 + 37) * kSectorFrames * kFrameBytes);
    EXPECT_EQ(folder.list().size(), 3 + 2 + 3) << qPrintable(folder.list().join(u'\n'));
}

TEST_F(SHNtoolCommandTest, SplitsOneFileAtATime)
{
    const QString a = writeWav(folder.path(u"in/a.wav"_s), {.frames = 2 * 44'100});
    const QString b = writeWav(folder.path(u"in/b.wav"_s), {.frames = 2 * 44'100, .seed = 2});
    const ProgramResult result = edit(u"split"_s, {u"--points"_s, writeSheet(), a, b});
    EXPECT_EQ(result.exitStatus, 2);
    EXPECT_TRUE(result.errors.startsWith("nurv shntool split: split takes one file, and these are 2.\n"))
        << result.errors.constData();
    EXPECT_EQ(folder.list(), (QStringList{u"in/a.wav"_s, u"in/b.wav"_s, u"points.cue"_s}));
}

TEST_F(SHNtoolCommandTest, SplitsNothingWithinASample)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    for (const char *point : {"6\n", "1e3\n", "-5\n"}) {
        SCOPED_TRACE(point);
        const ProgramResult result =
            edit(u"split"_s, {u"--format=wav"_s, u"--points"_s, folder.write(u"p.txt"_s, point), source});
        EXPECT_NE(result.exitStatus, 0);
        EXPECT_TRUE(result.errors.contains("lies within a sample")) << result.errors.constData();
        EXPECT_EQ(folder.list(), (QStringList{u"a.wav"_s, u"p.txt"_s}));
    }
}

TEST_F(SHNtoolCommandTest, NamesTheFileThatItFailedAt)
{
    const QString a = writeSilentEnds(u"in/a.wav"_s);
    const QString b = writeSilentEnds(u"in/b.wav"_s, {.frames = 30'000, .seed = 2});
    const QString cut = folder.write(u"in/c.wav"_s, folder.read(u"in/b.wav"_s).first(30));
    const ProgramResult joined = edit(u"join"_s, {a, cut, b});
    EXPECT_EQ(joined.exitStatus, 1);
    EXPECT_TRUE(joined.errors.startsWith("Joining Files: c.wav: reached end of file")) << joined.errors.constData();
    const QString flac = writeFlac(folder.path(u"in/d.flac"_s), {.seconds = 3});
    folder.write(u"in/d.flac"_s, folder.read(u"in/d.flac"_s).first(100'000));
    const ProgramResult trimmed = edit(u"trim"_s, {a, flac, b});
    EXPECT_EQ(trimmed.exitStatus, 1);
    EXPECT_TRUE(trimmed.errors.startsWith("Running SHNTool Trim: d.flac: error while reading"))
        << trimmed.errors.constData();
}

TEST_F(SHNtoolCommandTest, IsClearedUpAfterWhenItWasKilled)
{
    const QString sheet = writeSheet();
    for (const QString &command : {u"trim"_s, u"pad"_s, u"strip"_s, u"split"_s, u"join"_s}) {
        SCOPED_TRACE(qPrintable(command));
        QStringList sources{writeFor(command, u"in/a.wav"_s)};
        if (command == u"join")
            sources.append(writeFor(command, u"in/b.wav"_s, 2));
        const QStringList before = folder.list();
        const ProgramFolder tools;
        tools.addAllReal();
        tools.remove(u"shorten"_s);
        // Its encoder never ends, so that it is at work when it is killed.
        tools.addFake(u"shorten"_s, "create=" + folder.path(u"waits"_s).toUtf8() + ";hang");
        {
            QStringList arguments{u"shntool"_s, command, u"--format=shn"_s, u"--output-dir"_s, out};
            if (command == u"split")
                arguments << u"--points"_s << sheet;
            RunningNurv run(arguments + sources);
            ASSERT_TRUE(waitUntil([this] { return folder.exists(u"waits"_s); }));
            EXPECT_FALSE(QDir(out).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
            run.sendSignal(SIGKILL);
            static_cast<void>(run.finish());
        }
        folder.remove(u"waits"_s);
        const ProgramResult recovered = runNurv({u"recover"_s, u"--yes"_s});
        EXPECT_EQ(recovered.exitStatus, 0) << recovered.errors.constData();
        EXPECT_EQ(folder.list(), before) << recovered.output.constData() << recovered.errors.constData();
        EXPECT_TRUE(QDir(out).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
        EXPECT_TRUE(recovered.output.contains("in/a.wav")) << recovered.output.constData();
    }
}

TEST_F(SHNtoolCommandTest, SplitsNothingWithoutPointsThatCanBeRead)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    const ProgramResult without = edit(u"split"_s, {source});
    EXPECT_EQ(without.exitStatus, 2);
    EXPECT_EQ(without.errors, "nurv: --points is needed, since there is no terminal to ask on: Choose file with split "
                              "point data\n");
    const ProgramResult missing = edit(u"split"_s, {u"--points"_s, folder.path(u"gone.cue"_s), source});
    EXPECT_EQ(missing.exitStatus, 2);
    EXPECT_TRUE(missing.errors.startsWith("nurv: --points: ")
                && missing.errors.endsWith(": No such file or directory\n"))
        << missing.errors.constData();
    EXPECT_NE(edit(u"split"_s, {u"--points"_s, folder.path(u"out"_s), source}).exitStatus, 0);
    const ProgramResult empty = edit(u"split"_s, {u"--points"_s, folder.write(u"empty.txt"_s, ""), source});
    EXPECT_NE(empty.exitStatus, 0);
    EXPECT_TRUE(empty.errors.contains("The split points cannot be read")) << empty.errors.constData();
    EXPECT_TRUE(empty.errors.contains("it is empty")) << empty.errors.constData();
    EXPECT_EQ(folder.list(), (QStringList{u"a.wav"_s, u"empty.txt"_s}));
}

TEST_F(SHNtoolCommandTest, SplitFailsForPointsThatDoNotFit)
{
    const QString source = writeWav(folder.path(u"a.wav"_s), {.frames = 2 * 44'100});
    for (const char *points : {"0:09\n", "0:01\n0:01\n", "later\n", "\n"}) {
        SCOPED_TRACE(points);
        const ProgramResult result =
            edit(u"split"_s, {u"--json"_s, u"--points"_s, folder.write(u"p.txt"_s, points), source});
        EXPECT_EQ(result.exitStatus, 1);
        const QString reason = jobOf(result)[u"reason"_s].toString();
        EXPECT_FALSE(reason.isEmpty());
        EXPECT_FALSE(reason.contains(u"shntool ["_s)) << qPrintable(reason);
        EXPECT_EQ(folder.list(), (QStringList{u"a.wav"_s, u"p.txt"_s}));
    }
}

TEST_F(SHNtoolCommandTest, KeepsDamagedFilesAndSaysWhy)
{
    const QString good = writeFlac(folder.path(u"in/a.flac"_s), {.frames = 3 * 44'100});
    const QString text = folder.write(u"in/text.wav"_s, "no sound");
    const QString cut = writeSilentEnds(u"in/cut.wav"_s);
    ASSERT_TRUE(QFile::resize(cut, 150'000));
    QByteArray bytes = folder.read(u"in/a.flac"_s);
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 0x55);
    const QString broken = folder.write(u"in/broken.flac"_s, bytes);
    const QStringList before = folder.list();
    for (const QString &bad : {text, cut, broken}) {
        for (const QString &command : kEdits) {
            SCOPED_TRACE(qPrintable(command + u' ' + bad));
            const QStringList files = command == u"join" ? QStringList{good, bad} : QStringList{bad};
            const ProgramResult result = edit(
                command, QStringList{u"--json"_s, u"--delete-originals"_s, u"--drop-metadata"_s, u"--yes"_s} + files);
            EXPECT_EQ(result.exitStatus, 1);
            const QJsonObject job = jobOf(result);
            EXPECT_EQ(job[u"status"_s], u"error"_s);
            EXPECT_EQ(job[u"original"_s], u"kept"_s);
            EXPECT_FALSE(job[u"reason"_s].toString().isEmpty());
            EXPECT_FALSE(job[u"reason"_s].toString().contains(u"shntool ["_s))
                << qPrintable(job[u"reason"_s].toString());
            for (const QString &name : before)
                EXPECT_TRUE(folder.exists(name));
        }
        const ProgramResult split = edit(u"split"_s, {u"--points"_s, folder.write(u"p.txt"_s, "0:00.50\n"), bad});
        EXPECT_EQ(split.exitStatus, 1) << qPrintable(bad);
        EXPECT_EQ(shntool({u"cmp"_s, good, bad}).exitStatus, 1) << qPrintable(bad);
    }
    EXPECT_TRUE(folder.read(u"in/broken.flac"_s) == bytes);
}

TEST_F(SHNtoolCommandTest, RefusesWhatIsNotThereAndDoesTheRest)
{
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.frames = 75 * kSectorFrames});
    const QString dangling = folder.makeLink(u"dangling.wav"_s, folder.path(u"gone"_s));
    const QString pipe = folder.path(u"pipe.wav"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &path : {dangling, pipe, folder.path(u"gone.wav"_s)}) {
        SCOPED_TRACE(qPrintable(path));
        const ProgramResult result = shntool({u"len"_s, path, wav});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_TRUE(result.errors.contains(path.toUtf8())) << result.errors.constData();
        EXPECT_TRUE(result.output.contains("  a.wav\n")) << result.output.constData();
    }
}

TEST_F(SHNtoolCommandTest, TakesFoldersInsteadOfFiles)
{
    const QStringList sources{writeFor(u"pad"_s, u"in/disc1/a.wav"_s), writeFor(u"pad"_s, u"in/disc2/b.wav"_s, 2)};
    folder.write(u"in/notes.txt"_s, "notes");
    EXPECT_EQ(edit(u"join"_s, {folder.path(u"in"_s)}).exitStatus, 0);
    EXPECT_TRUE(sound({out + u"/joined.flac"_s}) == sound(sources));
    for (const QString &command : {u"len"_s, u"info"_s, u"cmp"_s}) {
        const ProgramResult result = shntool({command, folder.makeFolder(u"empty"_s)});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_EQ(result.errors, "nurv: there is nothing to do: no file was found that can be worked on\n");
    }
    for (const QString &command : kEdits)
        EXPECT_EQ(edit(command, {folder.path(u"empty"_s)}).exitStatus, 1);
}

TEST_F(SHNtoolCommandTest, TakesNamesOfAllKinds)
{
    QStringList names{u"-o a.wav"_s, u"blanks  in it .wav"_s, u"[x] $(y) \"z\" 'w' %s.wav"_s, u"Größe\u0301.wav"_s,
                      u"\U0001F3B8\uFE0F.wav"_s};
    names.sort();
    for (qsizetype i = 0; i < names.size(); ++i)
        writeFor(u"pad"_s, u"in/"_s + names[i], static_cast<std::uint32_t>(i + 1));
    const ProgramResult result = edit(u"pad"_s, {folder.path(u"in"_s)});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    for (const QString &name : std::as_const(names)) {
        const QByteArray had = sound({folder.path(u"in/"_s + name)});
        const QString made = out + u'/' + name.chopped(4) + u"-padded.flac"_s;
        EXPECT_TRUE(QFile::exists(made)) << qPrintable(made);
        EXPECT_TRUE(sound({made}) == had + QByteArray(qsizetype{kSectorFrames - 17} * kFrameBytes, '\0'))
            << qPrintable(name);
    }
    // As a word that could be an option, and behind the end of the options.
    const ProgramResult inFolder =
        runProgram(u"sh"_s, {u"-c"_s, u"cd \"$1\" && exec \"$2\" shntool len -- '-o a.wav'"_s, u"sh"_s,
                             folder.path(u"in"_s), nurvPath()});
    EXPECT_EQ(inFolder.exitStatus, 0) << inFolder.errors.constData();
    EXPECT_TRUE(inFolder.output.contains("  -o a.wav\n")) << inFolder.output.constData();
}

TEST_F(SHNtoolCommandTest, KeepsAFileWhoseOutputWouldHaveTooLongAName)
{
    const QString name = QString(246, u'x') + u".wav"_s;
    for (const QString &command : {u"trim"_s, u"pad"_s, u"strip"_s}) {
        SCOPED_TRACE(qPrintable(command));
        const QString source = writeFor(command, u"in/"_s + name);
        const ProgramResult result =
            edit(command, {u"--json"_s, u"--delete-originals"_s, u"--drop-metadata"_s, u"--yes"_s, source});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_EQ(jobOf(result)[u"original"_s], u"kept"_s);
        EXPECT_EQ(folder.list(), QStringList{u"in/"_s + name});
        const ProgramResult preview = edit(command, {u"--preview"_s, source});
        EXPECT_TRUE(preview.output.contains("\nThis would fail:\n")) << preview.output.constData();
        EXPECT_TRUE(preview.output.contains(" is too long for the name of a file\n")) << preview.output.constData();
    }
    // What gets a name of its own is made.
    const QString a = writeWav(folder.path(u"in/"_s + name), {.frames = 2 * 44'100});
    EXPECT_EQ(edit(u"split"_s, {u"--points"_s, writeSheet(), a}).exitStatus, 0);
    EXPECT_EQ(edit(u"join"_s, {a, out + u"/02 Two.flac"_s}).exitStatus, 0);
    EXPECT_TRUE(sound({out + u"/joined.flac"_s}) == sound({a, out + u"/02 Two.flac"_s}));
}

TEST_F(SHNtoolCommandTest, RefusesWhatDoesNotGoTogether)
{
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const std::vector<std::pair<QStringList, QByteArray>> cases{
        {{}, "nurv shntool: a further word is needed; there are len, info, cmp, trim, pad, strip, split, join, cue."},
        {{u"fix"_s, wav},
         "nurv shntool: unknown command \"fix\"; there are len, info, cmp, trim, pad, strip, split, join, cue."},
        {{u"len"_s}, "nurv shntool len: no files are given."},
        {{u"len"_s, u"--kind=all"_s, wav}, "nurv shntool len: --kind takes one of normal, fileset, disc, not \"all\"."},
        {{u"len"_s, u"--names=x"_s, wav},
         "nurv shntool len: --names goes with --kind fileset or disc only, not with normal."},
        {{u"info"_s, u"--format=wav"_s, wav}, "nurv shntool info: unknown option \"--format\"."},
        {{u"cmp"_s, u"--output-dir=x"_s, wav}, "nurv shntool cmp: unknown option \"--output-dir\"."},
        {{u"trim"_s, wav}, "nurv shntool trim: --output-dir DIR or --beside-source is needed."},
        {{u"pad"_s, u"--beside-source"_s, u"--output-dir"_s, out, wav},
         "nurv shntool pad: --output-dir and --beside-source cannot both be given."},
        {{u"strip"_s, u"--beside-source"_s, u"--format=ogg"_s, wav},
         "nurv shntool strip: --format takes one of shn, flac, aiff, wav, not \"ogg\"."},
        {{u"split"_s, u"--beside-source"_s, u"--delete-originals"_s, wav},
         "nurv shntool split: unknown option \"--delete-originals\"."},
        {{u"join"_s, u"--output-dir"_s, folder.path(u"gone"_s), wav},
         "nurv shntool join: the output folder does not exist: " + folder.path(u"gone"_s).toUtf8() + '.'},
        {{u"cue"_s, u"--overwrite"_s, wav}, "nurv shntool cue: --overwrite goes with --output only."},
    };
    for (const auto &[arguments, sentence] : cases) {
        const ProgramResult result = shntool(arguments);
        EXPECT_EQ(result.exitStatus, 2) << sentence.constData();
        EXPECT_EQ(result.errors.split('\n').first(), sentence);
        EXPECT_EQ(result.output, QByteArray());
    }
    EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
}
