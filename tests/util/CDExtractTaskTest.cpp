// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/CDExtractTask.h"

#include "base/Version.h"
#include "journal/KilledProcess.h"
#include "journal/UnfinishedWork.h"
#include "programs/Transcript.h"
#include "support/FileSizeLimit.h"
#include "util/CDExtractFixture.h"

#include <QRegularExpression>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QStringList kThree{u"1 Track.aiff"_s, u"2 Track.aiff"_s, u"3 Track.aiff"_s};

class CDExtractTaskTest : public test::CDExtractFixture {
protected:
    QByteArray makingThree()
    {
        return making(u"audio_01.wav"_s, 1) + making(u"audio_02.wav"_s, 2) + making(u"audio_03.wav"_s, 3);
    }
    static QByteArray replaying()
    {
        return "replay=" + QFile::encodeName(test::transcriptPath(u"icedax-paranoia"_s)) + ';';
    }
    [[nodiscard]] QStringList tracksThere() const { return out.list().filter(u".wav"_s); }
};

TEST_F(CDExtractTaskTest, NamesTheFilesAsTheTracks)
{
    tools.addFake(u"cdda2wav"_s,
                  "log=" + QFile::encodeName(folder.path(u"calls"_s)) + ';' + makingThree() + replaying());
    const auto job = makeJob(u"1+3"_s, kThree);
    EXPECT_EQ(job->sourceCount(), 3);
    run(job);
    EXPECT_FALSE(job->error()) << qPrintable(job->report());
    EXPECT_EQ(out.list(), (QStringList{u"01 Track.wav"_s, u"02 Track.wav"_s, u"03 Track.wav"_s, u"Show.log.txt"_s}));
    EXPECT_EQ(out.read(u"01 Track.wav"_s), sound(1));
    EXPECT_EQ(out.read(u"02 Track.wav"_s), sound(2));
    EXPECT_EQ(out.read(u"03 Track.wav"_s), sound(3));
    EXPECT_EQ(folder.read(u"calls"_s), "-B\t-L\t1\t-H\t-t\t1+3\t-paranoia\t-Owav\tdev=/dev/sr0\n");
    EXPECT_EQ(job->outcome().output, out.path());
    EXPECT_EQ(job->outcome().outputFiles, 3);
    EXPECT_EQ(job->outcome().outputBytes, 3 * sound(1).size());
    EXPECT_EQ(job->outcome().problem, QString());
    QByteArray told;
    for (const QByteArray &chunk : test::transcriptChunks(u"icedax-paranoia"_s))
        told += chunk;
    EXPECT_EQ(out.read(u"Show.log.txt"_s),
              u"Nurv %1 (build %2)\n"_s.arg(shortVersionString(), buildVersion()).toUtf8() + told);
}

TEST_F(CDExtractTaskTest, ShowsWhatItDoes)
{
    tools.addFake(u"cdda2wav"_s, makingThree()
                                     + "out=begin;until-read;out=\\r  42%;until-read;out= 100%;until-read;"
                                       "out=  0 rderr, 0 skip, 0 atom, 3 edge\\n;until-read;out=\\r   7%;until-read;"
                                       "out=  1 rderr, 0 sk;until-read;out=ip, 0 atom\\n;until-read;out=x;until-read;"
                                       "out=  1 rderr, 0 skip, 0 atom\\n;until-read;out=end");
    const auto job = makeJob(u"1+3"_s, kThree);
    run(job);
    EXPECT_FALSE(job->error()) << qPrintable(job->report());
    for (const QString &status : {u"Extracting CD Track: 42%"_s, u"Extracting CD Track: 100%"_s,
                                  u"Extracting CD Track: 7%"_s, u"Renaming CD Tracks"_s})
        EXPECT_TRUE(statuses.contains(status)) << qPrintable(statuses.join(u'|'));
    QStringList shown = mainLines;
    shown.removeAll(QString());
    EXPECT_EQ(shown.filter(u"Track"_s).filter(QRegularExpression(u"^0"_s)),
              (QStringList{u"01 Track"_s, u"02 Track"_s, u"03 Track"_s}))
        << qPrintable(shown.join(u'|'));
    EXPECT_TRUE(shown.contains(u"Writing Log File"_s));
    ASSERT_EQ(outputWindows.size(), 1);
    EXPECT_TRUE(outputWindows.front().startsWith(u"begin"_s)) << qPrintable(outputWindows.front());
    EXPECT_FALSE(outputWindows.front().contains(u"42%"_s)) << qPrintable(outputWindows.front());
}

TEST_F(CDExtractTaskTest, TakesTheFileOfASingleTrackUnderEitherName)
{
    for (const QString &made : {u"audio.wav"_s, u"audio_07.wav"_s}) {
        tools.addFake(u"cdda2wav"_s, making(made, 7));
        const auto job = makeJob(u"7+7"_s, {u"7 Encore.aiff"_s});
        run(job);
        EXPECT_FALSE(job->error()) << qPrintable(job->report());
        EXPECT_EQ(tracksThere(), QStringList{u"07 Encore.wav"_s});
        EXPECT_EQ(out.read(u"07 Encore.wav"_s), sound(7));
        EXPECT_EQ(job->outcome().output, out.path(u"07 Encore.wav"_s));
        EXPECT_EQ(job->outcome().outputFiles, 0) << "the one that has a name";
        out.remove(u"07 Encore.wav"_s);
        tools.remove(u"cdda2wav"_s);
    }
}

TEST_F(CDExtractTaskTest, LeavesTracksAfterAGap)
{
    tools.addFake(u"cdda2wav"_s, making(u"audio_01.wav"_s, 1) + making(u"audio_02.wav"_s, 2));
    const auto job = makeJob(u"1+2"_s, {u"1 a.aiff"_s, u"2 b.aiff"_s, u"5 e.aiff"_s});
    run(job);
    EXPECT_FALSE(job->error()) << qPrintable(job->report());
    EXPECT_EQ(tracksThere(), (QStringList{u"01 a.wav"_s, u"02 b.wav"_s}));
    EXPECT_EQ(job->outcome().problem, u"05 e.aiff was not copied, since it stands behind a gap in the numbers");
    const auto longer = makeJob(u"1+1"_s, {u"1 c.aiff"_s, u"5 e.aiff"_s, u"6 f.aiff"_s, u"7 g.aiff"_s});
    longer->setDiscName(u"Longer"_s);
    tools.remove(u"cdda2wav"_s);
    tools.addFake(u"cdda2wav"_s, making(u"audio.wav"_s, 1));
    run(longer);
    EXPECT_EQ(longer->outcome().problem,
              u"05 e.aiff and 2 more were not copied, since they stand behind a gap in the numbers");
    EXPECT_TRUE(longer->report().contains(longer->outcome().problem)) << qPrintable(longer->report());
}

TEST_F(CDExtractTaskTest, LeavesTheNameOfOneFileOfAll)
{
    tools.addFake(u"cdda2wav"_s, making(u"audio.wav"_s, 1));
    const auto job = makeJob(u"1+3"_s, kThree, true);
    run(job);
    EXPECT_FALSE(job->error()) << qPrintable(job->report());
    EXPECT_EQ(tracksThere(), QStringList{u"audio.wav"_s});
    EXPECT_EQ(job->outcome().output, out.path(u"audio.wav"_s));
}

TEST_F(CDExtractTaskTest, TellsOfATrackThatIsNotThereAfterwards)
{
    tools.addFake(u"cdda2wav"_s, making(u"audio_01.wav"_s, 1) + making(u"audio_03.wav"_s, 3));
    const auto job = makeJob(u"1+3"_s, kThree);
    run(job);
    EXPECT_TRUE(job->error());
    EXPECT_EQ(job->outcome().problem, u"cdda2wav made no audio_02.wav");
    EXPECT_EQ(tracksThere(), (QStringList{u"01 Track.wav"_s, u"03 Track.wav"_s}));
    EXPECT_TRUE(out.exists(u"Show.log.txt"_s));
    tools.remove(u"cdda2wav"_s);
    tools.addFake(u"cdda2wav"_s, "out=x");
    const auto joined = makeJob(u"1+3"_s, kThree, true);
    run(joined);
    EXPECT_EQ(joined->outcome().problem, u"cdda2wav made no audio.wav");
}

TEST_F(CDExtractTaskTest, ReplacesNoSoundThatIsThere)
{
    const struct {
        QString there;
        QString range;
        bool isOneFile;
        QString problem; ///< empty: it goes on
    } cases[] = {
        {u"audio_02.wav"_s, u"1+3"_s, false, u"audio_02.wav is there already"_s},
        {u"02 Track.wav"_s, u"1+3"_s, false, u"02 Track.wav is there already"_s},
        {u"audio.wav"_s, u"1+3"_s, true, u"audio.wav is there already"_s},
        {u"audio_01.wav"_s, u"1+3"_s, true, u"audio_01.wav is there already"_s},
        {u"audio.wav"_s, u"1+1"_s, false, u"audio.wav is there already"_s},
        {u"audio_01.wav"_s, u"1+1"_s, true, u"audio_01.wav is there already"_s},
        {u"audio.wav"_s, u"1+3"_s, false, u""_s},
        {u"02 Track.wav"_s, u"1+3"_s, true, u""_s},
        {u"04 Track.wav"_s, u"1+3"_s, false, u""_s},
    };
    for (const auto &[there, range, isOneFile, problem] : cases) {
        SCOPED_TRACE(qPrintable(there + u' ' + range));
        out.write(there, "mine");
        tools.addFake(u"cdda2wav"_s, "create=" + QFile::encodeName(folder.path(u"started"_s)) + ";exit=1");
        const auto job = makeJob(range, kThree, isOneFile);
        run(job);
        EXPECT_TRUE(job->error());
        EXPECT_EQ(out.read(there), "mine");
        EXPECT_EQ(folder.exists(u"started"_s), problem.isEmpty());
        if (!problem.isEmpty()) {
            EXPECT_EQ(job->outcome().problem, problem);
            EXPECT_EQ(job->report(), problem + u'\n');
            EXPECT_EQ(out.list(), QStringList{there});
        }
        for (const QString &name : out.list())
            out.remove(name);
        if (folder.exists(u"started"_s))
            folder.remove(u"started"_s);
        tools.remove(u"cdda2wav"_s);
    }
}

TEST_F(CDExtractTaskTest, FollowsNoLink)
{
    tools.addFake(u"cdda2wav"_s, "exit=0");
    const QString victim = folder.write(u"victim"_s, "mine");
    const std::pair<QString, QString> cases[] = {
        {u"audio_01.wav"_s, u"its output name audio_01.wav is a link"_s},
        {u"03 Track.wav"_s, u"its output name 03 Track.wav is a link"_s},
        {u"Show.log.txt"_s, u"the name Show.log.txt of its log is that of a link"_s},
    };
    for (const auto &[name, problem] : cases) {
        for (const QString &target : {victim, u"/nowhere/at/all"_s}) {
            ASSERT_EQ(::symlink(QFile::encodeName(target).constData(), QFile::encodeName(out.path(name)).constData()),
                      0);
            const auto job = makeJob(u"1+3"_s, kThree);
            run(job);
            EXPECT_TRUE(job->error());
            EXPECT_EQ(job->outcome().problem, problem);
            ASSERT_EQ(::unlink(QFile::encodeName(out.path(name)).constData()), 0);
        }
    }
    EXPECT_EQ(folder.read(u"victim"_s), "mine");
}

TEST_F(CDExtractTaskTest, ReplacesNothingThatCameMeanwhile)
{
    const QString victim = folder.write(u"victim"_s, "mine");
    tools.addFake(u"cdda2wav"_s,
                  makingThree() + "append=02 Track.wav:theirs;link=" + QFile::encodeName(victim) + ":Show.log.txt");
    const auto job = makeJob(u"1+3"_s, kThree);
    run(job);
    EXPECT_TRUE(job->error());
    EXPECT_EQ(out.read(u"02 Track.wav"_s), "theirs");
    EXPECT_EQ(out.read(u"audio_02.wav"_s), sound(2));
    EXPECT_EQ(out.read(u"03 Track.wav"_s), sound(3));
    EXPECT_TRUE(job->outcome().problem.startsWith(u"audio_02.wav could not be named 02 Track.wav: "_s))
        << qPrintable(job->outcome().problem);
    EXPECT_EQ(folder.read(u"victim"_s), "mine");
    EXPECT_TRUE(out.read(u"Show.log.txt"_s).startsWith("Nurv "));
}

TEST_F(CDExtractTaskTest, RefusesARangeThatIsNotThatOfTheList)
{
    tools.addFake(u"cdda2wav"_s, "create=" + QFile::encodeName(folder.path(u"started"_s)));
    for (const QString &range : {u"-1+0"_s, u"0+0"_s, u"1+4"_s, u"3+1"_s, u"2+3"_s, u"1+100"_s, u""_s, u"all"_s}) {
        const auto job = makeJob(range, kThree);
        run(job);
        EXPECT_TRUE(job->error()) << qPrintable(range);
        EXPECT_FALSE(job->outcome().problem.isEmpty()) << qPrintable(range);
    }
    EXPECT_FALSE(folder.exists(u"started"_s));
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(CDExtractTaskTest, KeepsWhatWasReadBeforeAFailure)
{
    tools.addFake(u"cdda2wav"_s,
                  making(u"audio_01.wav"_s, 1) + making(u"audio_02.wav"_s, 2)
                      + "out=  0 rderr, 0 skip, 0 atom\\n\\r  7%\\nicedax: Input/output error. read failed\\n;exit=6");
    const auto job = makeJob(u"1+3"_s, kThree);
    run(job);
    EXPECT_TRUE(job->error());
    EXPECT_EQ(job->outcome().problem,
              u"icedax: Input/output error. read failed; 02 Track.wav may not be read to its end");
    EXPECT_EQ(tracksThere(), (QStringList{u"01 Track.wav"_s, u"02 Track.wav"_s}));
    EXPECT_EQ(job->outcome().output, out.path());
    EXPECT_TRUE(job->report().contains(u"01 Track.wav was made, and stays\n"_s)) << qPrintable(job->report());
    EXPECT_FALSE(job->report().contains(u"01 Track.wav may not be read to its end"_s)) << qPrintable(job->report());
    EXPECT_TRUE(job->report().contains(u"02 Track.wav may not be read to its end\n"_s)) << qPrintable(job->report());
    EXPECT_TRUE(out.read(u"Show.log.txt"_s).contains("Input/output error"));
}

TEST_F(CDExtractTaskTest, TellsTheStatusOfAProgramThatSaysNothing)
{
    tools.addFake(u"cdda2wav"_s, "exit=6");
    const auto job = makeJob(u"1+3"_s, kThree);
    run(job);
    EXPECT_TRUE(job->error());
    EXPECT_EQ(job->outcome().problem, u"cdda2wav ended with status 6");
    EXPECT_EQ(out.list(), QStringList{u"Show.log.txt"_s});
}

TEST_F(CDExtractTaskTest, TellsOfAProgramThatWasKilled)
{
    tools.addFake(u"cdda2wav"_s, making(u"audio_01.wav"_s, 1) + "signal=9");
    const auto job = makeJob(u"1+3"_s, kThree);
    run(job);
    EXPECT_TRUE(job->error());
    EXPECT_TRUE(job->outcome().problem.startsWith(u"cdda2wav was ended by signal 9"_s))
        << qPrintable(job->outcome().problem);
    EXPECT_EQ(tracksThere(), QStringList{u"01 Track.wav"_s});
    EXPECT_EQ(job->report().count(u"was ended by signal"_s), 1);
}

TEST_F(CDExtractTaskTest, KeepsNoFileWithoutSound)
{
    const QString header = test::writeWav(folder.path(u"header.wav"_s));
    ASSERT_TRUE(QFile::resize(header, 44));
    tools.addFake(u"cdda2wav"_s, making(u"audio_01.wav"_s, 1) + "out=  0 rderr, 0 skip, 0 atom\\n;until-read;copy="
                                     + QFile::encodeName(header) + ":audio_02.wav;create=audio_03.wav;exit=6");
    const auto job = makeJob(u"1+3"_s, kThree);
    run(job);
    EXPECT_TRUE(job->error());
    EXPECT_EQ(tracksThere(), QStringList{u"01 Track.wav"_s});
    EXPECT_EQ(job->outcome().problem, u"0 rderr, 0 skip, 0 atom");
}

TEST_F(CDExtractTaskTest, KeepsTheWholeTracksOfACancelledRun)
{
    tools.addFake(u"cdda2wav"_s, making(u"audio_01.wav"_s, 1) + "out=  0 rderr, 0 skip, 0 atom\\n;until-read;"
                                     + making(u"audio_02.wav"_s, 2)
                                     + "create=" + QFile::encodeName(folder.path(u"started"_s))
                                     + ";wait-file=" + QFile::encodeName(folder.path(u"go"_s)) + ";exit=1");
    const auto job = makeJob(u"1+3"_s, kThree);
    queue().addTask(job);
    ASSERT_TRUE(test::waitUntil([this] { return folder.exists(u"started"_s); }));
    job->cancelTask();
    folder.write(u"go"_s, "");
    settle();
    EXPECT_TRUE(job->cancelled());
    EXPECT_FALSE(job->error());
    EXPECT_EQ(tracksThere(), QStringList{u"01 Track.wav"_s});
    EXPECT_TRUE(job->report().contains(u"01 Track.wav was made, and stays\n"_s)) << qPrintable(job->report());
    EXPECT_TRUE(out.exists(u"Show.log.txt"_s));
}

TEST_F(CDExtractTaskTest, NotesWhatAKilledProcessWouldLeave)
{
    const test::JournalShelf shelf;
    tools.addFake(u"cdda2wav"_s, making(u"audio_01.wav"_s, 1)
                                     + "out=  0 rderr, 0 skip, 0 atom\\n;until-read;create=audio_02.wav;create="
                                     + QFile::encodeName(folder.path(u"started"_s))
                                     + ";wait-file=" + QFile::encodeName(folder.path(u"go"_s)));
    const auto job = makeJob(u"1+3"_s, kThree);
    queue().addTask(job);
    ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"started"_s) && job->logOutput().contains(u"atom"_s); }));
    ASSERT_EQ(shelf.journals().size(), 1);
    const QString journal = shelf.journals().front();
    QStringList left;
    {
        // What is not locked is that of a process which is no more.
        const test::JournalShelf copied;
        copied.write(journal, shelf.read(journal));
        const UnfinishedWork work = UnfinishedWork::find();
        for (const UnfinishedRun &run : work.runs()) {
            for (const Leftover &leftover : run.leftovers)
                left.append(QFile::decodeName(leftover.path));
        }
    }
    // The first track is whole.
    EXPECT_EQ(left, QStringList{out.path(u"audio_02.wav"_s)});
    folder.write(u"go"_s, "");
    settle();
    EXPECT_EQ(shelf.journals(), QStringList());
}

TEST_F(CDExtractTaskTest, DoesNothingWhenItWasCancelledBeforeItsStart)
{
    tools.addFake(u"cdda2wav"_s, makingThree());
    const auto job = makeJob(u"1+3"_s, kThree);
    queue().hold();
    queue().addTask(job);
    job->cancelTask();
    queue().release();
    settle();
    EXPECT_TRUE(job->cancelled());
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(CDExtractTaskTest, NamesAProgramThatIsMissing)
{
    const auto job = makeJob(u"1+3"_s, kThree);
    run(job);
    EXPECT_TRUE(job->error());
    EXPECT_TRUE(job->report().contains(u"It is provided by the package \"icedax\"."_s)) << qPrintable(job->report());
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(CDExtractTaskTest, TellsOfSoundThatIsCutOnAFullDisk)
{
    // The program did not notice.
    tools.addFake(u"cdda2wav"_s, makingThree() + "out=done");
    const QString cut = folder.path(u"sound2.wav"_s);
    ASSERT_TRUE(QFile::resize(cut, 1000));
    const auto job = makeJob(u"1+3"_s, kThree);
    run(job);
    EXPECT_TRUE(job->error());
    EXPECT_EQ(job->outcome().problem, u"02 Track.wav holds less sound than its header tells");
    EXPECT_EQ(tracksThere().size(), 3);
}

TEST_F(CDExtractTaskTest, TellsOfALogThatCouldNotBeWritten)
{
    tools.addFake(u"cdda2wav"_s, makingThree() + "flood=200000");
    out.write(u"Show.log.txt"_s, "old");
    const auto job = makeJob(u"1+3"_s, kThree);
    queue().addTask(job);
    {
        const test::FileSizeLimit limit(100'000);
        settle();
    }
    EXPECT_TRUE(job->error());
    EXPECT_TRUE(job->outcome().problem.startsWith(u"the log Show.log.txt could not be written: "_s))
        << qPrintable(job->outcome().problem);
    EXPECT_EQ(out.read(u"Show.log-2.txt"_s), "old");
    EXPECT_EQ(tracksThere(), (QStringList{u"01 Track.wav"_s, u"02 Track.wav"_s, u"03 Track.wav"_s}));
}

TEST_F(CDExtractTaskTest, BeginsTheLogWhereTheProgramNamesItself)
{
    tools.addFake(u"cdda2wav"_s, makingThree() + "out=noise\\n;out=cdda2wav: reading\\n");
    out.write(u"Show.log.txt"_s, "old");
    run(makeJob(u"1+3"_s, kThree));
    EXPECT_TRUE(out.read(u"Show.log.txt"_s).endsWith(")\ncdda2wav: reading\n"))
        << out.read(u"Show.log.txt"_s).constData();
}

TEST_F(CDExtractTaskTest, TakesNoPathFromTheNameOfADisc)
{
    const std::pair<QString, QString> cases[] = {
        {u"Show"_s, u"Show"_s},
        {u"../../etc"_s, u".._.._etc"_s},
        {u"a\nb\x1b[31m"_s, u"a_b_[31m"_s},
        {u"a\u202Eb"_s, u"a_b"_s},
        {u""_s, u"CD"_s},
        {u"cdda:host=sr0"_s, u"cdda:host=sr0"_s},
        {QString(500, u'x'), QString(200, u'x')},
        {QString(300, u'ü'), QString(100, u'ü')},
    };
    for (const auto &[name, safe] : cases) {
        const auto job = makeJob(u"1+3"_s, kThree);
        job->setDiscName(name);
        EXPECT_EQ(job->discName(), safe);
    }
    tools.addFake(u"cdda2wav"_s, makingThree());
    const auto job = makeJob(u"1+3"_s, kThree);
    job->setDiscName(QString(300, u'ü'));
    run(job);
    EXPECT_FALSE(job->error()) << qPrintable(job->report());
    EXPECT_TRUE(out.exists(QString(100, u'ü') + u".log.txt"_s));
}

TEST_F(CDExtractTaskTest, RunsOnceForOneFolderAtATime)
{
    tools.addFake(u"cdda2wav"_s, "first=" + QFile::encodeName(folder.path(u"started"_s)) + ';' + makingThree()
                                     + "wait-file=" + QFile::encodeName(folder.path(u"go"_s)) + ";exit=0;end;exit=1");
    const auto job = makeJob(u"1+3"_s, kThree, true);
    queue().addTask(job);
    ASSERT_TRUE(test::waitUntil([this] { return folder.exists(u"started"_s); }));
    const auto other = makeJob(u"1+3"_s, kThree);
    other->setDiscName(u"Other"_s);
    queue().addTask(other);
    other->startTask();
    ASSERT_TRUE(test::waitUntil([&] { return other->isDone(); }));
    EXPECT_TRUE(other->error());
    EXPECT_FALSE(other->outcome().problem.isEmpty());
    EXPECT_FALSE(out.exists(u"Other.log.txt"_s));
    folder.write(u"go"_s, "");
    settle();
}

} // namespace
} // namespace nurv
