// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolLenTask.h"

#include "shntool/SHNtoolFixture.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class SHNToolLenTaskTest : public test::SHNtoolFixture {
protected:
    /// What the distribution's shntool, which reads WAV by itself, writes of the files.
    static QStringList referenceTable(const QStringList &files)
    {
        const test::ProgramResult said = test::runProgram(u"/usr/bin/shntool"_s, QStringList{u"len"_s} + files);
        EXPECT_EQ(said.exitStatus, 0) << said.errors.constData();
        return QString::fromUtf8(said.output).split(u'\n');
    }
    /// The length in a line of its table.
    static QString lengthIn(const QString &line) { return line.trimmed().section(u' ', 0, 0); }
    /// Sounds of the lengths in seconds, as CDs have them.
    QStringList makeFiles(const QStringList &names, const QList<double> &seconds)
    {
        QStringList files;
        for (qsizetype i = 0; i < names.size(); ++i)
            files.append(test::writeWav(folder.path(names.at(i)), {.seconds = seconds.at(i % seconds.size())}));
        return files;
    }
    QString report(const QStringList &files, const QString &kind, const QStringList &names = {})
    {
        execute(u"len"_s, files, u"flac"_s, [&](SHNtoolTab &tab) {
            tab.shnLenMatrix.selectTitle(kind);
            tab.trackNamesEntered(names);
        });
        EXPECT_EQ(windows.size(), 1);
        return windows.isEmpty() ? QString() : windows.takeLast();
    }
};

TEST_F(SHNToolLenTaskTest, ShowsTheTableWithNamesInsteadOfPaths)
{
    const QStringList files = makeFiles({u"a b.wav"_s, u"größe.wav"_s}, {3.0, 65.5});
    QStringList wanted = referenceTable(files);
    for (QString &line : wanted)
        line.replace(folder.path() + u'/', QString());
    EXPECT_EQ(report(files, SHNToolLenTask::kNormal), wanted.join(u'\n') + u'\n');
    EXPECT_TRUE(statuses.contains(u"Running"_s));
}

TEST_F(SHNToolLenTaskTest, MakesASetListOfTheFiles)
{
    const QStringList files = makeFiles({u"a.wav"_s, u"longer name.wav"_s}, {3.0, 65.5});
    const QStringList table = referenceTable(files);
    // The names are those of the files, filled up to the longest and a blank.
    EXPECT_EQ(report(files, SHNToolLenTask::kFileset), u"01. a.wav            0%1\n02. longer name.wav  0%2\n\nTotal: 0%3\n \n\n\n"_s.arg(
                                                           lengthIn(table[1]), lengthIn(table[2]), lengthIn(table[3])));
}

TEST_F(SHNToolLenTaskTest, TakesTheNamesThatWereEntered)
{
    const QStringList files = makeFiles({u"a.wav"_s, u"b.wav"_s}, {1.0});
    EXPECT_EQ(report(files, SHNToolLenTask::kFileset, {u"Intro"_s, u"A longer song"_s}),
              u"01. Intro          00:01.00\n02. A longer song  00:01.00\n\nTotal: 00:02.00\n \n\n\n");
}

TEST_F(SHNToolLenTaskTest, LaysOutLinesByThePatternOfTheSettings)
{
    SettingsStore::instance().setValue(u"shntoolNamesFormat"_s, u"%name (%time)"_s);
    const QStringList files = makeFiles({u"a.wav"_s}, {1.0});
    EXPECT_EQ(report(files, SHNToolLenTask::kFileset), u"a.wav  (00:01.00)\n\nTotal: (00:01.00)\n \n\n\n");
}

TEST_F(SHNToolLenTaskTest, MakesASetListPerDisc)
{
    const QStringList files = makeFiles({u"sh77-x1t01.wav"_s, u"sh77d1t02.wav"_s, u"sh77d2t01.wav"_s}, {1.0, 2.0, 4.0});
    const QString list = report({files[1], files[2]}, SHNToolLenTask::kByDisc);
    EXPECT_EQ(list, u"Disc 1\n\n01. sh77d1t02.wav  00:02.00\n\nDisc 1 Total: 00:02.00\n \n\n\n"
                    "Disc 2\n\n01. sh77d2t01.wav  00:04.00\n\nDisc 2 Total: 00:04.00\n \n\n\n");
}

TEST_F(SHNToolLenTaskTest, GivesEachDiscItsNames)
{
    const QStringList files = makeFiles({u"sh77d1t01.wav"_s, u"sh77d1t02.wav"_s, u"sh77d2t01.wav"_s}, {1.0});
    const QString list = report(files, SHNToolLenTask::kByDisc, {u"One"_s, u"Two"_s, u"Three"_s});
    EXPECT_TRUE(list.contains(u"01. One    00:01.00\n02. Two    00:01.00\n"_s)) << qPrintable(list);
    EXPECT_TRUE(list.contains(u"01. Three  00:01.00\n"_s)) << qPrintable(list);
}

TEST_F(SHNToolLenTaskTest, WritesLengthsOfOtherSoundInMilliseconds)
{
    const QStringList files{test::writeWav(folder.path(u"a.wav"_s), {.rate = 48'000, .bits = 24, .frames = 60'000})};
    const QStringList table = referenceTable(files);
    EXPECT_EQ(lengthIn(table[1]), u"0:01.250");
    EXPECT_EQ(report(files, SHNToolLenTask::kFileset), u"01. a.wav  00:01.250\n\nTotal: 00:01.250\n \n\n\n");
}

TEST_F(SHNToolLenTaskTest, ListsThirtyFilesOfEveryFormat)
{
    const QString wav = test::writeWav(folder.path(u"source/s.wav"_s), {.frames = 588 * 80});
    QStringList files;
    for (int i = 1; i <= 30; ++i) {
        const QString name = u"t%1"_s.arg(i, 2, 10, QChar(u'0'));
        const QStringList words{u"wav"_s, u"flac"_s, u"shn"_s, u"tta"_s, u"ape"_s};
        const QString format = words.at(i % words.size());
        QString path = folder.path(name + u'.' + format);
        if (format == u"wav")
            EXPECT_TRUE(QFile::copy(wav, path));
        else if (format == u"flac" || format == u"tta")
            test::writeByFfmpeg(path, {.frames = 588 * 80});
        else if (format == u"shn")
            EXPECT_EQ(test::runProgram(tools.path() + u"/shorten"_s, {wav, path}).exitStatus, 0);
        else
            EXPECT_EQ(test::runProgram(tools.path() + u"/mac"_s, {wav, path, u"-c1000"_s}).exitStatus, 0);
        files.append(path);
    }
    const QString list = report(files, SHNToolLenTask::kFileset);
    const QStringList lines = list.split(u'\n');
    ASSERT_GE(lines.size(), 32);
    EXPECT_TRUE(lines[0].startsWith(u"01. t01.flac  00:01.05"_s)) << qPrintable(list);
    for (int i = 0; i < 30; ++i)
        EXPECT_TRUE(lines[i].contains(u" 00:01.05"_s)) << qPrintable(lines[i]);
    EXPECT_EQ(lines[31], u"Total: 00:32.00");
}

TEST_F(SHNToolLenTaskTest, KeepsLongTimesAsTheyAre)
{
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s, "out=    length     expanded size    cdr  WAVE problems  fmt   ratio  filename\\n"
                                "     3:07.45        1764044 B   ---   --   -----    wav  1.0000  /x/a.wav\\n"
                                "   123:07.45        1764044 B   ---   --   -----    wav  1.0000  /x/b.wav\\n"
                                "   126:15.15        3528088 B                            1.0000  (2 files)\\n");
    EXPECT_EQ(report({folder.write(u"a.wav"_s, "x"), folder.write(u"b.wav"_s, "x")}, SHNToolLenTask::kFileset),
              u"01. a.wav  03:07.45\n02. b.wav  123:07.45\n\nTotal: 126:15.15\n \n\n\n");
}

TEST_F(SHNToolLenTaskTest, TellsOfAFileThatIsNoSound)
{
    const QStringList files{folder.write(u"a.wav"_s, "no sound"), test::writeWav(folder.path(u"b.wav"_s))};
    const auto jobs = execute(u"len"_s, files, u"flac"_s, [](SHNtoolTab &tab) { tab.shnLenMatrix.setSelectedIndex(1); });
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_TRUE(jobs[0]->error());
    EXPECT_TRUE(jobs[0]->outcome().problem.contains(u"a.wav"_s)) << qPrintable(jobs[0]->outcome().problem);
    ASSERT_EQ(windows.size(), 1);
    EXPECT_TRUE(windows[0].contains(u"none of the builtin format modules handle input file"_s)) << qPrintable(windows[0]);
}

TEST_F(SHNToolLenTaskTest, GivesNoFileTheNameOfOneThatCannotBeRead)
{
    for (qsizetype bad = 0; bad < 3; ++bad) {
        SCOPED_TRACE(bad);
        QStringList files;
        for (const QString &name : {u"a.wav"_s, u"b.wav"_s, u"c.wav"_s})
            files.append(test::writeWav(folder.path(name)));
        folder.write(QStringList{u"a.wav"_s, u"b.wav"_s, u"c.wav"_s}.at(bad), "no sound");
        windows.clear();
        execute(u"len"_s, files, u"flac"_s, [](SHNtoolTab &tab) {
            tab.shnLenMatrix.setSelectedIndex(1);
            tab.trackNamesEntered({u"One"_s, u"Two"_s, u"Three"_s});
        });
        QStringList names{u"One"_s, u"Two"_s, u"Three"_s};
        names.removeAt(bad);
        ASSERT_EQ(windows.size(), 1);
        const QStringList lines = windows[0].split(u'\n');
        ASSERT_GE(lines.size(), 3);
        EXPECT_TRUE(lines[0].startsWith(u"01. "_s + names[0])) << qPrintable(windows[0]);
        EXPECT_TRUE(lines[1].startsWith(u"02. "_s + names[1])) << qPrintable(windows[0]);
        EXPECT_EQ(lines[2], QString());
    }
}

TEST_F(SHNToolLenTaskTest, KeepsTheOrderOfALongTableWithFilesThatCannotBeRead)
{
    QStringList files;
    for (int i = 0; i < 60; ++i)
        files.append(i % 7 == 3 ? folder.write(u"t%1.wav"_s.arg(i), "no sound") : test::writeWav(folder.path(u"t%1.wav"_s.arg(i))));
    execute(u"len"_s, files);
    ASSERT_EQ(windows.size(), 1);
    const QStringList lines = windows[0].split(u'\n');
    ASSERT_GE(lines.size(), 61);
    EXPECT_TRUE(lines[0].contains(u"expanded size"_s));
    for (int i = 0; i < 60; ++i)
        EXPECT_TRUE(lines[i + 1].contains(u"t%1.wav"_s.arg(i))) << qPrintable(lines[i + 1]);
}

} // namespace
} // namespace nurv
