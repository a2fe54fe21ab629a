// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/UtilFixture.h"

#include "programs/Mkisofs.h"

#include "util/DVDAuthorTask.h"
#include "util/DiscImageCheck.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class DVDAuthorTaskTest : public test::UtilFixture {
protected:
    DVDAuthorTaskTest() { tools.addAllReal(); }

    QStringList makeSounds(int count = 3)
    {
        QStringList paths;
        for (int i = 1; i <= count; ++i)
            paths.append(test::writeWav(folder.path(u"t %1.wav"_s.arg(i)), {.rate = 96000, .bits = 24, .seed = static_cast<unsigned>(i)}));
        return paths;
    }
    std::shared_ptr<NURVTask> author(const QStringList &paths)
    {
        prompts.expectOutputFolder(out.path());
        const auto jobs = execute(UtilTab::kDvdAudioDisc, paths);
        return jobs.size() == 1 ? jobs.front() : nullptr;
    }
    /// The real program by its path.
    static QString real(const QString &name)
    {
        const test::ProgramFolder folder;
        return QFileInfo(folder.addReal(name)).canonicalFilePath();
    }
    [[nodiscard]] QStringList filesInImage() const
    {
        QStringList names;
        const auto listed = test::runProgram(u"isoinfo"_s, {u"-f"_s, u"-i"_s, out.path(u"image.iso"_s)});
        for (const QString &line : QString::fromUtf8(listed.output).split(u'\n', Qt::SkipEmptyParts))
            names.append(line.section(u';', 0, 0));
        return names;
    }
};

TEST_F(DVDAuthorTaskTest, LeavesAnImageAndALog)
{
    const auto job = author(makeSounds());
    ASSERT_TRUE(job && isDone(job));
    EXPECT_EQ(out.list(), (QStringList{u"image.iso"_s, u"log.txt"_s}));
    EXPECT_EQ(tab.fileNames(), QStringList());
    EXPECT_TRUE(outputWindows.isEmpty());
    EXPECT_EQ(job->title(), u"Authoring AUDIO_TS directory");
    EXPECT_EQ(job->outcome().output, out.path(u"image.iso"_s));
    EXPECT_EQ(job->sourceCount(), 3);
    EXPECT_EQ(filesInImage(), (QStringList{u"/AUDIO_TS"_s, u"/VIDEO_TS"_s, u"/AUDIO_TS/ATS_01_0.BUP"_s,
                                           u"/AUDIO_TS/ATS_01_0.IFO"_s, u"/AUDIO_TS/ATS_01_1.AOB"_s,
                                           u"/AUDIO_TS/AUDIO_PP.IFO"_s, u"/AUDIO_TS/AUDIO_TS.BUP"_s,
                                           u"/AUDIO_TS/AUDIO_TS.IFO"_s}));
    for (const QString &status : {u"Authoring AUDIO_TS directory"_s, u"Making .ISO Image"_s, u"Checking .ISO Image"_s})
        EXPECT_TRUE(statuses.contains(status)) << qPrintable(statuses.join(u'\n'));
}

TEST_F(DVDAuthorTaskTest, StartsBothProgramsWithTheirArguments)
{
    const QStringList sounds = makeSounds(2);
    const QString log = folder.path(u"log"_s);
    for (const QString &program : {u"dvda"_s, u"mkisofs"_s}) {
        tools.remove(program);
        tools.addLogged(program, log);
    }
    ASSERT_TRUE(isDone(author(sounds)));
    EXPECT_EQ(QString::fromUtf8(folder.read(u"log"_s)),
              u"-l\t%1\t-P0\t-S\t-f\t-o\t%2\t-g\t%3\n-o\t%4\t-dvd-audio\t%2\n"_s.arg(
                  out.path(u"log.txt"_s), out.path(u"DVD-AUDIO"_s), sounds.join(u'\t'), out.path(u"image.iso"_s)));
}

TEST_F(DVDAuthorTaskTest, ShowsWhichFileIsWrittenAndHowFarTheImageIs)
{
    const QStringList sounds = makeSounds();
    setFake(u"dvda"_s, "out=[Nurv]  Processing 00 /m/one.wav\\n;until-read;out=[Nurv]  Processing 02 /m/three.wav\\n;until-read;exit=1");
    EXPECT_TRUE(author(sounds)->error());
    tools.remove(u"dvda"_s);
    tools.addReal(u"dvda"_s);
    setFake(u"mkisofs"_s, "err= 45.25% done, estimate finish x\\n;until-read;exit=1");
    EXPECT_TRUE(author(sounds)->error());
    for (const QString &status : {u"Processing: one.wav"_s, u"Processing: three.wav"_s, u"Making .ISO Image: 45.250000%"_s})
        EXPECT_TRUE(statuses.contains(status)) << qPrintable(statuses.join(u'\n'));
    for (const double bar : {33.0, 100.0, 45.25})
        EXPECT_TRUE(bars.contains(bar)) << bar;
}

TEST_F(DVDAuthorTaskTest, KeepsWhatDvdaSaysWhenItFails)
{
    QStringList sounds = makeSounds(2);
    sounds.append(test::writeWav(folder.path(u"t 3.wav"_s), {.rate = 96000, .bits = 24}));
    tab.setCommand(UtilTab::kDvdAudioDisc);
    tab.addMatchedFiles(sounds);
    // Between the look at the formats and the start.
    ASSERT_TRUE(QFile::resize(sounds.at(1), 5000));
    const auto job = author({});
    ASSERT_NE(job, nullptr);
    EXPECT_TRUE(job->error());
    EXPECT_TRUE(job->outcome().problem.contains(u"t 2.wav"_s)) << qPrintable(job->outcome().problem);
    EXPECT_EQ(outputWindows.size(), 1);
    EXPECT_EQ(out.list(), QStringList(u"log.txt"_s));
}

TEST_F(DVDAuthorTaskTest, ADiscThatWasNotMadeWholeKeepsItsFolder)
{
    const QStringList sounds = makeSounds(1);
    const QByteArray mkisofs = real(u"mkisofs"_s).toUtf8();
    const std::vector<std::pair<QByteArray, QString>> faults{
        {"echo 'mkisofs: no room' >&2; exit 1\n", u"no room"_s},
        {"kill -9 $$\n", u"mkisofs was ended by signal 9"_s},
        {"exit 0\n", u"image.iso is not what was authored: the image is no image of a disc"_s},
        {mkisofs + " \"$@\"; truncate -s -100K \"$2\"\n", u"image.iso is not what was authored: the image ends too early"_s},
        {mkisofs + " \"$@\"; printf x | dd of=\"$2\" bs=2048 seek=420 conv=notrunc status=none\n",
         u"image.iso is not what was authored: ATS_01_1.AOB is another one in the image"_s},
        {mkisofs + " \"$@\"; printf xxx | dd of=\"$4/AUDIO_TS/ATS_01_0.BUP\" bs=1 seek=40 conv=notrunc status=none\n",
         u"image.iso is not what was authored: ATS_01_0.BUP is another one in the image"_s},
        {mkisofs + " \"$@\"; echo more >> \"$4/AUDIO_TS/ATS_01_2.AOB\"\n",
         u"image.iso is not what was authored: the image holds something else than the folder"_s}};
    for (const auto &[script, problem] : faults) {
        SCOPED_TRACE(script.constData());
        setScript(u"mkisofs"_s, script);
        const auto job = author(sounds);
        EXPECT_TRUE(job->error());
        EXPECT_TRUE(job->outcome().problem.startsWith(problem)) << qPrintable(job->outcome().problem);
        EXPECT_TRUE(job->report().contains(out.path(u"DVD-AUDIO"_s) + u" stays there"_s)) << qPrintable(job->report());
        EXPECT_TRUE(job->outcome().problem.endsWith(u"; DVD-AUDIO stays there"_s))
            << qPrintable(job->outcome().problem);
        EXPECT_FALSE(out.exists(u"image.iso"_s));
        EXPECT_TRUE(out.exists(u"DVD-AUDIO/AUDIO_TS/ATS_01_1.AOB"_s));
        QDir(out.path()).removeRecursively();
        QDir().mkpath(out.path());
    }
}

TEST_F(DVDAuthorTaskTest, StartsNothingWhereSomethingIs)
{
    const QStringList sounds = makeSounds(1);
    out.write(u"image.iso"_s, "mine");
    EXPECT_EQ(author(sounds)->outcome().problem, u"image.iso is there already: move it away, or choose another folder");
    EXPECT_EQ(out.read(u"image.iso"_s), "mine");
    out.remove(u"image.iso"_s);
    out.write(u"DVD-AUDIO/AUDIO_TS/AUDIO_TS.IFO"_s, "mine");
    EXPECT_EQ(author(sounds)->outcome().problem, u"DVD-AUDIO is there already: move it away, or choose another folder");
    EXPECT_EQ(out.list(), QStringList(u"DVD-AUDIO/AUDIO_TS/AUDIO_TS.IFO"_s));
    QDir(out.path(u"DVD-AUDIO"_s)).removeRecursively();
    out.makeLink(u"image.iso"_s, folder.path(u"precious"_s));
    EXPECT_EQ(author(sounds)->outcome().problem, u"image.iso is there already, as a link");
    EXPECT_FALSE(folder.exists(u"precious"_s));
}

TEST_F(DVDAuthorTaskTest, AnImageThatCameMeanwhileStays)
{
    const QStringList sounds = makeSounds(1);
    const QByteArray image = out.path(u"image.iso"_s).toUtf8();
    setScript(u"dvda"_s, "echo mine > '" + image + "'; exec " + real(u"dvda"_s).toUtf8() + " \"$@\"\n");
    EXPECT_EQ(author(sounds)->outcome().problem,
              u"image.iso is there already: move it away, or choose another folder; DVD-AUDIO stays there");
    EXPECT_EQ(out.read(u"image.iso"_s), "mine\n");
    ASSERT_TRUE(QDir(out.path(u"DVD-AUDIO"_s)).removeRecursively());
    out.remove(u"image.iso"_s);
    out.remove(u"log.txt"_s);

    tools.remove(u"dvda"_s);
    tools.addReal(u"dvda"_s);
    setScript(u"mkisofs"_s, "echo mine > '" + image + "'; echo 'mkisofs: exists' >&2; exit 1\n");
    EXPECT_EQ(author(sounds)->outcome().problem, u"exists; DVD-AUDIO stays there");
    EXPECT_EQ(out.read(u"image.iso"_s), "mine\n");
}

TEST_F(DVDAuthorTaskTest, TellsWhatTheProgramBehindTheImageHasTold)
{
    EXPECT_EQ(mkisofs::reasonOfFailure(u"mkisofs: genisoimage failed with status 28:\n 45.25% done, estimate finish x\n"
                                       "genisoimage: No space left on device. cannot fwrite 32768*1\n"),
              u"genisoimage failed with status 28: genisoimage: No space left on device. cannot fwrite 32768*1");
    EXPECT_EQ(mkisofs::reasonOfFailure(u"mkisofs: genisoimage failed with status 2:\n"),
              u"genisoimage failed with status 2:");
    EXPECT_EQ(mkisofs::reasonOfFailure(u"noise\nmkisofs: no room\nmore\n"), u"no room");
}

TEST_F(DVDAuthorTaskTest, ACancelledOneLeavesNoFolder)
{
    const QString waits = folder.path(u"waits"_s);
    const QByteArray waiting = ": > " + waits.toUtf8() + "; exec sleep 1000\n";
    for (const bool isAuthored : {false, true}) {
        setScript(isAuthored ? u"mkisofs"_s : u"dvda"_s, waiting);
        if (isAuthored) {
            tools.remove(u"dvda"_s);
            tools.addReal(u"dvda"_s);
        }
        prompts.expectOutputFolder(out.path());
        tab.setCommand(UtilTab::kDvdAudioDisc);
        tab.addMatchedFiles(makeSounds(1));
        tab.executeCommand();
        ASSERT_TRUE(test::waitUntil([&] { return QFile::exists(waits); }, std::chrono::seconds(30)));
        EXPECT_EQ(out.exists(u"DVD-AUDIO"_s), isAuthored);
        queue().panelArray().back()->cancelTask();
        settle();
        EXPECT_EQ(endedTasks.back()->textField().text, u"Canceled");
        EXPECT_FALSE(out.exists(u"DVD-AUDIO"_s));
        EXPECT_FALSE(out.exists(u"image.iso"_s));
        QFile::remove(waits);
        QFile::remove(out.path(u"log.txt"_s));
    }
}

TEST_F(DVDAuthorTaskTest, AnImageThatNobodyHasComparedGoes)
{
    QObject::connect(&queue(), &NURVTaskQueue::rowChanged, &controller, [this](int row) {
        const auto &task = queue().panelArray()[static_cast<std::size_t>(row)];
        if (task->topTextField().text == u"Checking .ISO Image")
            task->cancelTask();
    });
    EXPECT_TRUE(author(makeSounds(1))->cancelled());
    EXPECT_EQ(out.list(), QStringList(u"log.txt"_s));
}

TEST_F(DVDAuthorTaskTest, WhatSomebodyPutIntoTheFolderStaysAndIsTold)
{
    setScript(u"mkisofs"_s, real(u"mkisofs"_s).toUtf8() + " \"$@\"; echo mine > \"$4/notes.txt\"\n");
    const auto job = author(makeSounds(1));
    EXPECT_FALSE(job->error()) << qPrintable(job->report());
    ASSERT_EQ(job->warnings().size(), 1);
    EXPECT_TRUE(job->warnings().first().startsWith(u"DVD-AUDIO stays there: "_s));
    EXPECT_EQ(out.list(), (QStringList{u"DVD-AUDIO/notes.txt"_s, u"image.iso"_s, u"log.txt"_s}));
}

TEST_F(DVDAuthorTaskTest, MakesAllFormatsAndManyTracks)
{
    for (const test::SoundShape &shape : {test::SoundShape{.channels = 1, .seconds = 0.1},
                                          {.rate = 48000, .bits = 24, .channels = 6, .seconds = 0.1, .extensible = true},
                                          {.rate = 192000, .bits = 24, .seconds = 0.1, .extensible = true}}) {
        QStringList sounds;
        for (int i = 1; i <= 99; ++i)
            sounds.append(test::writeFlac(folder.path(u"%1.flac"_s.arg(i, 2, 10, QChar(u'0'))), shape));
        ASSERT_TRUE(isDone(author(sounds)));
        EXPECT_TRUE(out.read(u"log.txt"_s).contains("99 tracks"));
        EXPECT_TRUE(QFile::remove(out.path(u"image.iso"_s)));
        EXPECT_TRUE(QFile::remove(out.path(u"log.txt"_s)));
    }
}

} // namespace
} // namespace nurv
