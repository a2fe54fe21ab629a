// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "PseudoTerminal.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"

#include <QFile>
#include <QJsonArray>

#include <gtest/gtest.h>

#include <algorithm>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

const QByteArray kDeletion = "nurv: You have chosen to delete the original files. Are you sure you want to continue? "
                             "Answered \"No\", since there is no terminal to ask on; --yes answers \"Yes\".\n";
constexpr int kSectorFrames = 588;
constexpr int kFrameBytes = 4;
const QStringList kEdits{u"trim"_s, u"pad"_s, u"strip"_s, u"join"_s};

/// The samples of the files, one after the other, as another decoder has them.
QByteArray sound(const QStringList &paths)
{
    QByteArray joined;
    for (const QString &path : paths) {
        const ProgramResult decoded =
            runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, u"file:"_s + path, u"-f"_s,
                                     u"s16le"_s, u"-c:a"_s, u"pcm_s16le"_s, u"-"_s});
        EXPECT_EQ(decoded.exitStatus, 0) << qPrintable(path) << decoded.errors.constData();
        joined += decoded.output;
    }
    return joined;
}

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

/// The object of the only job.
QJsonObject jobOf(const ProgramResult &result)
{
    QJsonObject job;
    int count = 0;
    for (const QJsonObject &object : jsonLines(result.output)) {
        if (object[u"type"_s] != u"job"_s)
            continue;
        job = object;
        ++count;
    }
    EXPECT_EQ(count, 1) << result.output.constData();
    EXPECT_FALSE(job[u"report"_s].toString().contains(u'\b'));
    return job;
}

/// Files in the folder "in", and an empty folder "out".
class SHNtoolCommandTest : public ::testing::Test {
protected:
    [[nodiscard]] static ProgramResult shntool(const QStringList &arguments)
    {
        return runNurv(QStringList{u"shntool"_s} + arguments);
    }
    /// An edit with its outputs in "out".
    [[nodiscard]] ProgramResult edit(const QString &command, const QStringList &arguments) const
    {
        return shntool(QStringList{command, u"--output-dir"_s, out} + arguments);
    }
    /// A sound of 16 bits between stretches of digital silence.
    QString writeSilentEnds(const QString &name, SoundShape shape = {.frames = 30'000}) const
    {
        const QByteArray silence(qsizetype{20'000} * kFrameBytes, '\0');
        const QByteArray samples = silence + makeSamples(shape) + silence;
        constexpr qsizetype kHeader = 44;
        shape.frames = samples.size() / kFrameBytes;
        return folder.write(name, wavBytes(shape).first(kHeader) + samples);
    }
    /// A file that the edit has something to do with.
    QString writeFor(const QString &command, const QString &name, std::uint32_t seed = 1) const
    {
        if (command == u"trim")
            return writeSilentEnds(name, {.frames = 30'000, .seed = seed});
        if (command == u"strip")
            return folder.write(name,
                                wavBytes({.frames = 10 * kSectorFrames, .seed = seed}, riffChunk("note", "by hand")));
        return writeWav(folder.path(name), {.frames = 75 * kSectorFrames + 17, .seed = seed});
    }
    /// A cue sheet of two tracks, of which the second begins after a second.
    QString writeSheet(const QString &name = u"points.cue"_s) const
    {
        return folder.write(name, "FILE \"a.wav\" WAVE\n  TRACK 01 AUDIO\n    TITLE \"Zw\xc3\xb6lf\"\n"
                                  "    INDEX 01 00:00:00\n  TRACK 02 AUDIO\n    TITLE \"Two\"\n"
                                  "    INDEX 01 00:01:00\n");
    }

    TestFolder folder;
    QString out = folder.makeFolder(u"out"_s);
};

/// Three files of two discs.
class SHNtoolLengthTest : public SHNtoolCommandTest {
protected:
    SHNtoolLengthTest()
    {
        writeFlac(folder.path(u"in/s-d1t01.flac"_s), {.frames = 75 * kSectorFrames});
        writeWav(folder.path(u"in/s-d1t02.wav"_s), {.frames = 150 * kSectorFrames});
        writeWav(folder.path(u"in/s-d2t01.wav"_s), {.frames = 30 * kSectorFrames});
    }
    [[nodiscard]] ProgramResult lengths(const QStringList &options) const
    {
        return shntool(QStringList{u"len"_s, folder.path(u"in"_s)} + options);
    }
};

} // namespace

TEST_F(SHNtoolLengthTest, IsShntoolsOwnTableUnlessAnotherIsWanted)
{
    const ProgramResult result = lengths({});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_TRUE(result.errors.startsWith("Running shntool LEN: Complete\n3 of 3 done; ")) << result.errors.constData();
    const QList<QByteArray> lines = result.output.split('\n');
    ASSERT_GE(lines.size(), 5) << result.output.constData();
    EXPECT_TRUE(lines[0].contains("expanded size"));
    EXPECT_TRUE(lines[1].startsWith("     0:01.00 ") && lines[1].endsWith("  s-d1t01.flac")) << lines[1].constData();
    EXPECT_TRUE(lines[2].startsWith("     0:02.00 ") && lines[2].endsWith("  s-d1t02.wav")) << lines[2].constData();
    EXPECT_TRUE(lines[3].startsWith("     0:00.30 ") && lines[3].endsWith("  s-d2t01.wav")) << lines[3].constData();
    EXPECT_TRUE(lines[4].startsWith("     0:03.30 ") && lines[4].endsWith("  (3 files)")) << lines[4].constData();
    EXPECT_EQ(lengths({u"--kind=normal"_s}).output, result.output);
}

TEST_F(SHNtoolLengthTest, IsASetListWithTheNamesOfTheFilesOrOthers)
{
    EXPECT_EQ(lengths({u"--kind=fileset"_s}).output, "01. s-d1t01.flac  00:01.00\n02. s-d1t02.wav   00:02.00\n"
                                                     "03. s-d2t01.wav   00:00.30\n\nTotal: 00:03.30\n \n\n\n");
    const QString names = folder.write(u"set.txt"_s, "05/08/1977\n1. Intro\n2. L\xc3\xa4nger\n3. End\n");
    const ProgramResult named = lengths({u"--kind=fileset"_s, u"--names"_s, names});
    EXPECT_EQ(named.exitStatus, 0) << named.errors.constData();
    EXPECT_EQ(named.output, "01. Intro   00:01.00\n02. L\xc3\xa4nger  00:02.00\n03. End     00:00.30\n"
                            "\nTotal: 00:03.30\n \n\n\n");
}

TEST_F(SHNtoolLengthTest, IsASetListOfEachDisc)
{
    const QString names = folder.write(u"set.txt"_s, "1 A\n2 B\n3 C\n");
    const ProgramResult result = lengths({u"--kind=disc"_s, u"--names"_s, names});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_EQ(result.output, "Disc 1\n\n01. A  00:01.00\n02. B  00:02.00\n\nDisc 1 Total: 00:03.00\n \n\n\n"
                             "Disc 2\n\n01. C  00:00.30\n\nDisc 2 Total: 00:00.30\n \n\n\n");
}

TEST_F(SHNtoolLengthTest, TellsOfFilesThatAreNoSoundAndOfAllOthers)
{
    folder.write(u"in/s-d1t03.wav"_s, "no sound");
    for (const QString &kind : {u"normal"_s, u"fileset"_s, u"disc"_s}) {
        SCOPED_TRACE(qPrintable(kind));
        const ProgramResult result = lengths({u"--json"_s, u"--kind"_s, kind});
        EXPECT_EQ(result.exitStatus, 1);
        QString reports;
        QStringList reasons;
        for (const QJsonObject &object : jsonLines(result.output)) {
            reports += object[u"report"_s].toString();
            if (object[u"status"_s] == u"error"_s)
                reasons.append(object[u"reason"_s].toString());
        }
        EXPECT_EQ(reasons, QStringList{u"none of the builtin format modules handle input file: [%1]"_s.arg(
                               folder.path(u"in/s-d1t03.wav"_s))});
        for (const QString &name : {u"s-d1t01.flac"_s, u"s-d1t02.wav"_s, u"s-d1t03.wav"_s, u"s-d2t01.wav"_s})
            EXPECT_TRUE(reports.contains(name)) << qPrintable(reports);
    }
}

TEST_F(SHNtoolLengthTest, RefusesNamesThatCannotBeRead)
{
    const std::vector<std::pair<QString, QByteArray>> cases{
        {folder.path(u"gone.txt"_s), "There is no such file"}, {folder.write(u"empty.txt"_s, ""), ""}, {out, ""}};
    for (const auto &[path, reason] : cases) {
        const ProgramResult result = lengths({u"--kind=disc"_s, u"--names"_s, path});
        EXPECT_EQ(result.exitStatus, 2) << qPrintable(path);
        EXPECT_TRUE(result.errors.contains("nurv shntool len: --names " + path.toUtf8() + ": " + reason))
            << result.errors.constData();
        EXPECT_EQ(result.output, QByteArray());
    }
}

TEST_F(SHNtoolCommandTest, InfoTellsOfEveryFile)
{
    const QString flac = writeFlac(folder.path(u"in/a.flac"_s), {.frames = 75 * kSectorFrames});
    const QString wav = writeWav(folder.path(u"in/b.wav"_s), {.rate = 48'000, .bits = 24, .frames = 1000});
    const ProgramResult result = shntool({u"info"_s, flac, wav});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_EQ(result.errors.split('\n').first(), "Running SHNTool Info: Complete");
    const qsizetype second = result.output.indexOf("\nFile name:                    " + wav.toUtf8() + '\n');
    const qsizetype first = result.output.indexOf("\nFile name:                    " + flac.toUtf8() + '\n');
    ASSERT_GE(first, 0) << result.output.constData();
    ASSERT_GT(second, first) << result.output.constData();
    EXPECT_LT(result.output.indexOf("\nSamples/sec:                  44100\n"), second);
    EXPECT_GT(result.output.indexOf("\nSamples/sec:                  48000\n"), second);
    const QJsonObject job = jobOf(shntool({u"info"_s, u"--json"_s, wav}));
    EXPECT_EQ(job[u"title"_s], u"Running SHNTool Info"_s);
    EXPECT_TRUE(job[u"report"_s].toString().contains(u"Bits/sample:                  24\n"_s));
}

TEST_F(SHNtoolCommandTest, InfoTellsWhatIsWrongWithAFile)
{
    const QString wav = writeWav(folder.path(u"a.wav"_s));
    ASSERT_TRUE(QFile::resize(wav, 100'000));
    const ProgramResult cut = shntool({u"info"_s, wav});
    EXPECT_EQ(cut.exitStatus, 0) << cut.errors.constData();
    EXPECT_TRUE(cut.output.contains("File probably truncated:    yes (missing 76444 bytes)")) << cut.output.constData();
    const QString text = folder.write(u"b.wav"_s, "no sound");
    const ProgramResult result = shntool({u"info"_s, u"--json"_s, text});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(jobOf(result)[u"reason"_s], u"none of the builtin format modules handle input file: [%1]"_s.arg(text));
}

TEST_F(SHNtoolCommandTest, CmpKnowsTheSameSoundInTwoFormats)
{
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.frames = 20 * 44'100});
    const QString flac = writeFlac(folder.path(u"b.flac"_s), {.frames = 20 * 44'100});
    const QByteArray report = "Comparing [" + wav.toUtf8() + "] (0:20.00) and [" + flac.toUtf8()
                              + "] (0:20.00) : 100% OK\n\nContents of these files are identical.\n";
    const ProgramResult result = shntool({u"cmp"_s, wav, flac});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_EQ(result.output, report + '\n');
    const ProgramResult asJson = shntool({u"cmp"_s, u"--json"_s, wav, flac});
    EXPECT_EQ(asJson.exitStatus, 0);
    const QJsonObject job = jobOf(asJson);
    EXPECT_EQ(job[u"status"_s], u"complete"_s);
    EXPECT_EQ(job[u"report"_s].toString().toUtf8(), report);
    const QJsonObject batch = jsonLines(asJson.output).last();
    EXPECT_EQ(batch[u"exitStatus"_s], 0);
    EXPECT_EQ(batch[u"outputs"_s][0][u"text"_s].toString().toUtf8(), report + '\n');
}

TEST_F(SHNtoolCommandTest, CmpEndsWithStatus1ForAnotherSound)
{
    const QString one = writeWav(folder.path(u"a.wav"_s), {.frames = 44'100});
    QByteArray bytes = folder.read(u"a.wav"_s);
    bytes[44 + 1000] = static_cast<char>(bytes[44 + 1000] ^ 1);
    const QString other = folder.write(u"b.wav"_s, bytes);
    const ProgramResult result = shntool({u"cmp"_s, one, other});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.errors, "shntool compare: WAVE data differs at byte offset: 1001\n");
    const QJsonObject job = jobOf(shntool({u"cmp"_s, u"--json"_s, one, other}));
    EXPECT_EQ(job[u"status"_s], u"error"_s);
    EXPECT_EQ(job[u"reason"_s], u"WAVE data differs at byte offset: 1001"_s);
}

TEST_F(SHNtoolCommandTest, CmpDoesNotEndWellForAFileThatIsLonger)
{
    const QString one = writeWav(folder.path(u"a.wav"_s), {.frames = 44'100});
    const QByteArray samples = makeSamples({.frames = 44'100});
    const QString longer = folder.write(u"b.wav"_s, wavBytes({.frames = 44'101}).first(44) + samples + "last");
    const ProgramResult result = shntool({u"cmp"_s, u"--json"_s, one, longer});
    EXPECT_EQ(result.exitStatus, 1);
    const QJsonObject job = jobOf(result);
    EXPECT_EQ(job[u"reason"_s], u"one of the files is longer than the other"_s);
    EXPECT_TRUE(job[u"report"_s].toString().contains(u"identical (up to the first 176400 bytes of WAVE data)"_s))
        << result.output.constData();
}

TEST_F(SHNtoolCommandTest, CmpTakesTwoFilesAndSaysSo)
{
    const QString a = writeWav(folder.path(u"in/a.wav"_s), {.seconds = 0.1});
    const QString b = writeWav(folder.path(u"in/b.wav"_s), {.seconds = 0.1});
    const QString c = writeWav(folder.path(u"in/c.wav"_s), {.seconds = 0.1});
    // A file that is given twice is one file.
    for (const QStringList &files : {QStringList{a}, QStringList{a, a}, QStringList{a, a, a}, QStringList{a, b, c},
                                     QStringList{folder.path(u"in"_s)}}) {
        const ProgramResult result = shntool(QStringList{u"cmp"_s} + files);
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_EQ(result.errors, "shntool compare: need exactly two files to process\n");
    }
}

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
    ASSERT_TRUE(terminal.waitFor("continue? [Yes/No, default No] ")) << terminal.received().constData();
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

TEST_F(SHNtoolCommandTest, SplitsTheFirstFileOnlyAndSaysSo)
{
    const QString a = writeWav(folder.path(u"in/a.wav"_s), {.frames = 2 * 44'100});
    const QString b = writeWav(folder.path(u"in/b.wav"_s), {.frames = 2 * 44'100, .seed = 2});
    const QByteArray note = "nurv: split takes one file: only " + a.toUtf8() + " is split\n";
    const QString sheet = writeSheet();
    const ProgramResult result = edit(u"split"_s, {u"--points"_s, sheet, a, b});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_TRUE(result.errors.startsWith(note)) << result.errors.constData();
    EXPECT_TRUE(sound({out + u"/01 Zwölf.flac"_s, out + u"/02 Two.flac"_s}) == sound({a}));
    folder.remove(u"out/02 Two.flac"_s);
    folder.remove(u"out/01 Zwölf.flac"_s);
    EXPECT_EQ(edit(u"split"_s, {u"--quiet"_s, u"--points"_s, sheet, a, b}).errors, QByteArray());
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

TEST_F(SHNtoolCommandTest, CueWritesASheet)
{
    const QStringList sources{writeFlac(folder.path(u"in/a.flac"_s), {.frames = 75 * kSectorFrames}),
                              writeWav(folder.path(u"in/b.wav"_s), {.frames = kSectorFrames, .seed = 2})};
    const QByteArray sheet = "FILE \"joined.wav\" WAVE\n  TRACK 01 AUDIO\n    INDEX 01 0:00:00\n"
                             "  TRACK 02 AUDIO\n    INDEX 01 0:01:00\n\n";
    const QString path = folder.path(u"out/x.cue"_s);
    const ProgramResult result = shntool({u"cue"_s, u"--json"_s, u"--output"_s, path, folder.path(u"in"_s)});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_EQ(jobOf(result)[u"output"_s], path);
    EXPECT_EQ(folder.read(u"out/x.cue"_s), sheet);
    folder.write(u"out/x.cue"_s, "mine");
    const ProgramResult refused = shntool(QStringList{u"cue"_s, u"--output"_s, path} + sources);
    EXPECT_EQ(refused.exitStatus, 2);
    EXPECT_EQ(refused.errors, "nurv: " + path.toUtf8()
                                  + " exists already. Do you want to replace it? Answered \"No\", since there is no "
                                    "terminal to ask on; --yes answers \"Yes\".\n");
    EXPECT_EQ(folder.read(u"out/x.cue"_s), "mine");
    for (const QString &agreement : {u"--overwrite"_s, u"--yes"_s}) {
        folder.write(u"out/x.cue"_s, "mine");
        EXPECT_EQ(shntool(QStringList{u"cue"_s, agreement, u"--output"_s, path} + sources).exitStatus, 0);
        EXPECT_EQ(folder.read(u"out/x.cue"_s), sheet);
    }
    EXPECT_EQ(folder.list().size(), 3);
}

TEST_F(SHNtoolCommandTest, CueReplacesNoSourceNoLinkAndNothingWhenItFails)
{
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.frames = 75 * kSectorFrames});
    const QByteArray before = folder.read(u"a.wav"_s);
    const QString victim = folder.write(u"victim.cue"_s, "mine");
    const QString link = folder.makeLink(u"link.cue"_s, victim);
    const ProgramResult asSource = shntool({u"cue"_s, u"--overwrite"_s, u"--output"_s, wav, wav});
    EXPECT_EQ(asSource.exitStatus, 1);
    EXPECT_EQ(asSource.errors, "nurv: a.wav cannot be the cue sheet: It is one of the files that it is to tell of.\n");
    EXPECT_TRUE(folder.read(u"a.wav"_s) == before);
    const ProgramResult asSound = shntool({u"cue"_s, u"--output"_s, folder.path(u"new.flac"_s), wav});
    EXPECT_EQ(asSound.exitStatus, 1);
    EXPECT_EQ(asSound.errors, "nurv: new.flac cannot be the cue sheet: Its name is that of a sound file.\n");
    const ProgramResult asLink = shntool({u"cue"_s, u"--overwrite"_s, u"--output"_s, link, wav});
    EXPECT_EQ(asLink.exitStatus, 1);
    EXPECT_TRUE(asLink.errors.startsWith("Creating CUE sheet: its output name link.cue is a link\n"))
        << asLink.errors.constData();
    const QString text = folder.write(u"no.wav"_s, "no sound");
    const ProgramResult failed = shntool({u"cue"_s, u"--json"_s, u"--overwrite"_s, u"--output"_s, victim, text});
    EXPECT_EQ(failed.exitStatus, 1);
    EXPECT_FALSE(jobOf(failed)[u"reason"_s].toString().isEmpty());
    EXPECT_EQ(folder.read(u"victim.cue"_s), "mine");
    const ProgramResult without = shntool({u"cue"_s, wav});
    EXPECT_EQ(without.exitStatus, 2);
    EXPECT_EQ(without.errors, "nurv: --output is needed, since there is no terminal to ask on: Save CUE sheet as\n");
    EXPECT_EQ(folder.list(), (QStringList{u"a.wav"_s, u"link.cue"_s, u"no.wav"_s, u"victim.cue"_s}));
}

TEST_F(SHNtoolCommandTest, CueWarnsOfAFileThatIsCut)
{
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.frames = 75 * kSectorFrames});
    ASSERT_TRUE(QFile::resize(wav, 50'000));
    const ProgramResult result = shntool({u"cue"_s, u"--json"_s, u"--output"_s, out + u"/x.cue"_s, wav});
    EXPECT_EQ(jsonLines(result.output).last()[u"warnings"_s].toArray().size(), 1) << result.output.constData();
    EXPECT_TRUE(result.output.contains("a.wav holds less sound than its header tells")) << result.output.constData();
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
