// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "SHNtoolCommandFixture.h"

#include <QFile>
#include <QJsonArray>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

using SHNtoolReportsTest = SHNtoolCommandFixture;

/// Three files of two discs.
class SHNtoolLengthTest : public SHNtoolCommandFixture {
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
        EXPECT_TRUE(lengths({u"--kind"_s, kind}).errors.contains("\n3 of 4 done, 1 failed; "));
        EXPECT_TRUE(lengths({u"--kind"_s, kind}).output.contains("s-d2t01.wav"));
        QString reports;
        QStringList reasons;
        for (const QJsonObject &object : jsonLines(result.output)) {
            reports += object[u"report"_s].toString();
            if (object[u"status"_s] == u"error"_s)
                reasons.append(object[u"reason"_s].toString());
        }
        EXPECT_EQ(reasons, QStringList{u"s-d1t03.wav: it is no sound file that shntool knows"_s});
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

TEST_F(SHNtoolReportsTest, InfoTellsOfEveryFile)
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

TEST_F(SHNtoolReportsTest, InfoTellsWhatIsWrongWithAFile)
{
    const QString wav = writeWav(folder.path(u"a.wav"_s));
    ASSERT_TRUE(QFile::resize(wav, 100'000));
    const ProgramResult cut = shntool({u"info"_s, wav});
    EXPECT_EQ(cut.exitStatus, 0) << cut.errors.constData();
    EXPECT_TRUE(cut.output.contains("File probably truncated:    yes (missing 76444 bytes)")) << cut.output.constData();
    const QString text = folder.write(u"b.wav"_s, "no sound");
    const ProgramResult result = shntool({u"info"_s, u"--json"_s, text});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(jobOf(result)[u"reason"_s], u"b.wav: it is no sound file that shntool knows"_s);
    // What there is to tell of the others is told.
    const ProgramResult both = shntool({u"info"_s, text, wav});
    EXPECT_EQ(both.exitStatus, 1);
    EXPECT_TRUE(both.output.contains("File name:                    " + wav.toUtf8())) << both.output.constData();
    EXPECT_TRUE(both.errors.contains("\n1 of 2 done, 1 failed; ")) << both.errors.constData();
}

TEST_F(SHNtoolReportsTest, CmpKnowsTheSameSoundInTwoFormats)
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

TEST_F(SHNtoolReportsTest, CmpEndsWithStatus1ForAnotherSound)
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

TEST_F(SHNtoolReportsTest, CmpDoesNotEndWellForAFileThatIsLonger)
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

TEST_F(SHNtoolReportsTest, CmpTakesTwoFilesAndSaysSo)
{
    const QString a = writeWav(folder.path(u"in/a.wav"_s), {.seconds = 0.1});
    const QString b = writeWav(folder.path(u"in/b.wav"_s), {.seconds = 0.1});
    const QString c = writeWav(folder.path(u"in/c.wav"_s), {.seconds = 0.1});
    // A file that is given twice is one file.
    for (const QStringList &files : {QStringList{a}, QStringList{a, a}, QStringList{a, a, a}, QStringList{a, b, c},
                                     QStringList{folder.path(u"in"_s)}}) {
        const ProgramResult result = shntool(QStringList{u"cmp"_s} + files);
        EXPECT_EQ(result.exitStatus, 2);
        EXPECT_TRUE(result.errors.startsWith("nurv shntool cmp: cmp compares two files, and th")) << result.errors.constData();
    }
}

TEST_F(SHNtoolReportsTest, CueWritesASheet)
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

TEST_F(SHNtoolReportsTest, CueReplacesNoSourceNoLinkAndNothingWhenItFails)
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

TEST_F(SHNtoolReportsTest, CueWarnsOfAFileThatIsCut)
{
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.frames = 75 * kSectorFrames});
    ASSERT_TRUE(QFile::resize(wav, 50'000));
    const ProgramResult result = shntool({u"cue"_s, u"--json"_s, u"--output"_s, out + u"/x.cue"_s, wav});
    EXPECT_EQ(jsonLines(result.output).last()[u"warnings"_s].toArray().size(), 1) << result.output.constData();
    EXPECT_TRUE(result.output.contains("a.wav holds less sound than its header tells")) << result.output.constData();
}
