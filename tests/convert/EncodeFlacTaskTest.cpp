// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeFlacTask.h"

#include "convert/ConvertFixture.h"
#include "programs/Transcript.h"
#include "support/LogLines.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class EncodeFlacTaskTest : public test::ConvertFixture {
protected:
    std::shared_ptr<EncodeFlacTask> makeFake(const QByteArray &script, const QString &source)
    {
        if (QFile::exists(tools.path(u"flac"_s)))
            tools.remove(u"flac"_s);
        tools.addFake(u"flac"_s, script);
        auto results = std::make_shared<NURVTaskResults>();
        auto task = std::make_shared<EncodeFlacTask>(source, &queue(), tools.path(u"flac"_s),
                                                     QStringList{source, u"-o"_s, out.path(u"x.flac"_s)}, results);
        results->addTaskInSet(*task);
        return task;
    }
    /// An AIFF file with tags, made by another program.
    [[nodiscard]] QString taggedAiff(const QString &name) const
    {
        const QString path = folder.path(name);
        const test::ProgramResult made = test::runProgram(
            u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, test::writeWav(folder.path(u"plain.wav"_s)), u"-write_id3v2"_s,
                          u"1"_s, u"-metadata"_s, u"title=Über uns = %1"_s, u"-metadata"_s, u"artist=The Band"_s,
                          u"-metadata"_s, u"album=Live"_s, u"-metadata"_s, u"track=7/12"_s, path});
        EXPECT_EQ(made.exitStatus, 0) << made.errors.constData();
        return path;
    }

    test::ProgramFolder tools;
};

TEST_F(EncodeFlacTaskTest, ShowsTheFiguresOfARecordedRun)
{
    const QString goOn = folder.path(u"go-on"_s);
    const auto task = makeFake("append=@-1:x;replay=" + test::transcriptPath(u"flac-encode"_s).toUtf8()
                                   + ";until-read;"
                                     "out=\\b\\b99% complete, ratio=0.370;wait-file="
                                   + goOn.toUtf8(),
                               folder.path(u"x.wav"_s));
    EXPECT_EQ(task->textField().text, u"x.wav");
    queue().addTask(task);
    ASSERT_TRUE(test::waitUntil([&] { return task->progressIndicator().value == 99.0; }));
    EXPECT_EQ(task->topTextField().text, u"Encoding to Flac: 99% ratio=0.370");
    EXPECT_EQ(task->textField().text, u"x.wav");
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_EQ(task->topTextField().text, u"Complete; not proven");
}

TEST_F(EncodeFlacTaskTest, WritesItsReportIntoTheFirstSlotOfTheBatch)
{
    const auto first = makeFake("out=first;exit=1", folder.path(u"1.wav"_s));
    tools.addFake(u"second"_s, "out=\\b second \\n;exit=1");
    const auto second = std::make_shared<EncodeFlacTask>(folder.path(u"2.wav"_s), &queue(), tools.path(u"second"_s),
                                                         QStringList{u"-o"_s, out.path(u"2.flac"_s)}, first->results());
    first->results()->addTaskInSet(*second);
    NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), 1);
    queue().addTasks({first, second});
    ASSERT_TRUE(finish());
    EXPECT_EQ(outputWindows, QStringList{u"firstsecond\n\n"_s});
}

TEST_F(EncodeFlacTaskTest, DropsTheReportUnlessItFailed)
{
    const auto good = makeFake("append=@-1:x;out=fine", folder.path(u"x.wav"_s));
    queue().addTask(good);
    ASSERT_TRUE(finish());
    EXPECT_EQ(good->results(), nullptr);
    EXPECT_TRUE(outputWindows.isEmpty());

    const auto bad = makeFake("out=broken;exit=1", folder.path(u"x.wav"_s));
    queue().addTask(bad);
    ASSERT_TRUE(finish());
    EXPECT_TRUE(bad->error());
    EXPECT_EQ(outputWindows, QStringList{u"broken\n"_s});
}

TEST_F(EncodeFlacTaskTest, CopiesTheTagsOfAiffSources)
{
    for (const QString &name : {u"a.aiff"_s, u"b.AIF"_s}) {
        const QString source = taggedAiff(u"tagged.aiff"_s);
        const QString renamed = folder.path(name);
        ASSERT_TRUE(QFile::rename(source, renamed));
        tools.addReal(u"flac"_s);
        tools.addReal(u"metaflac"_s);
        EncodeTab tab(controller);
        run(tab, {renamed});
        const QString output = out.path(name.section(u'.', 0, 0) + u".flac"_s);
        const QStringList tags = test::metaflacTags(output);
        EXPECT_TRUE(tags.contains(u"TITLE=Über uns = %1"_s)) << qPrintable(tags.join(u'|'));
        EXPECT_TRUE(tags.contains(u"ARTIST=The Band"_s));
        EXPECT_TRUE(tags.contains(u"ALBUM=Live"_s));
        EXPECT_TRUE(tags.contains(u"TRACKNUMBER=7"_s));
        EXPECT_TRUE(tags.contains(u"TRACKTOTAL=12"_s));
        EXPECT_EQ(test::ffprobeTags(output).value(u"title"_s), u"Über uns = %1");
        EXPECT_TRUE(test::sameSound(renamed, output));
        tools.remove(u"flac"_s);
        tools.remove(u"metaflac"_s);
    }
}

TEST_F(EncodeFlacTaskTest, CopiesNoTagsForWavSources)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s));
    tools.addReal(u"flac"_s);
    EncodeTab tab(controller);
    run(tab, {source});
    EXPECT_TRUE(test::metaflacTags(out.path(u"a.flac"_s)).filter(u"ENCODER=Nurv"_s).isEmpty());
}

TEST_F(EncodeFlacTaskTest, CopiesTagsAlsoWhenTheEncoderFails)
{
    const QString source = taggedAiff(u"a.aiff"_s);
    const QString made = test::writeFlac(folder.path(u"made.flac"_s));
    const QString output = out.path(u"a.flac"_s);
    tools.addFake(u"flac"_s, "copy=" + made.toUtf8() + ':' + output.toUtf8() + ";exit=1");
    tools.addReal(u"metaflac"_s);
    EncodeTab tab(controller);
    run(tab, {source});
    ASSERT_EQ(endedTasks.size(), 1U);
    EXPECT_TRUE(endedTasks[0]->error());
    EXPECT_TRUE(test::metaflacTags(output).contains(u"TITLE=Über uns = %1"_s));
}

TEST_F(EncodeFlacTaskTest, LeavesTheTagsOfAFileAloneThatItMayNotReplace)
{
    const QString source = taggedAiff(u"a.aiff"_s);
    const QString output = test::writeFlac(out.path(u"a.flac"_s));
    ASSERT_EQ(test::runProgram(u"metaflac"_s, {u"--set-tag=TITLE=Another song"_s, output}).exitStatus, 0);
    const QByteArray before = out.read(u"a.flac"_s);
    tools.addReal(u"flac"_s);
    tools.addReal(u"metaflac"_s);
    EncodeTab tab(controller);
    run(tab, {source});
    ASSERT_EQ(endedTasks.size(), 1U);
    EXPECT_TRUE(endedTasks[0]->error());
    EXPECT_EQ(out.read(u"a.flac"_s), before);
}

TEST_F(EncodeFlacTaskTest, KeepsItsStateWhenTagsCannotBeWritten)
{
    const test::LogLines log;
    const QString source = taggedAiff(u"a.aiff"_s);
    // All of the sound, in a file that takes no tags of that kind.
    tools.addFake(u"flac"_s, "copy=" + folder.path(u"plain.wav"_s).toUtf8() + ":@-1");
    EncodeTab tab(controller);
    run(tab, {source});
    ASSERT_EQ(endedTasks.size(), 1U);
    EXPECT_FALSE(endedTasks[0]->error());
    EXPECT_EQ(endedTasks[0]->topTextField().text,
              u"Complete; its tags were not copied: Unable to open the output file for tagging.");
    EXPECT_EQ(outputWindows.size(), 1) << "not in the log only";
    EXPECT_EQ(log.with(u"Unable to open the output file for tagging."_s).size(), 1);
}

TEST_F(EncodeFlacTaskTest, LeavesAFileAloneThatItDidNotMake)
{
    const QString source = taggedAiff(u"a.aiff"_s);
    const QString other = test::writeFlac(out.path(u"a.flac"_s));
    const QByteArray before = out.read(u"a.flac"_s);
    NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), 0);
    EncodeTab tab(controller);
    prompts.expectOutputFolder(out.path());
    tab.addFile(source);
    tab.executeCommand();
    queue().cancelAllTasks();
    ASSERT_TRUE(finish());
    EXPECT_EQ(out.read(u"a.flac"_s), before);
    EXPECT_EQ(out.list(), QStringList{u"a.flac"_s});
}

TEST_F(EncodeFlacTaskTest, OverwritesAnOutputBesideItsSourceWhenTheUserAgrees)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.seed = 2});
    test::writeFlac(folder.path(u"a.flac"_s), {.seed = 3});
    tools.addReal(u"flac"_s);
    EncodeTab tab(controller);
    tab.sourceEncodeButton.setOn(true);
    prompts.expectAsk(u"One of the output files already exists and will be overwritten.  "
                      "Are you sure you want to continue?"_s,
                      {u"No"_s, u"Yes"_s}, u"Yes"_s);
    runBeside(tab, {source});
    EXPECT_TRUE(test::sameSound(source, folder.path(u"a.flac"_s)));
}

TEST_F(EncodeFlacTaskTest, FailsInsteadOfOverwritingInTheChosenFolder)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.seed = 2});
    out.write(u"a.flac"_s, "precious");
    tools.addReal(u"flac"_s);
    EncodeTab tab(controller);
    run(tab, {source});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_EQ(out.read(u"a.flac"_s), "precious");
    EXPECT_TRUE(outputWindows.value(0).contains(u"already exists"_s)) << qPrintable(outputWindows.join(u'|'));
}

TEST_F(EncodeFlacTaskTest, RefusesATruncatedFlacFile)
{
    test::writeFlac(folder.path(u"whole.flac"_s), {.seconds = 5});
    const QString source = folder.write(u"cut.flac"_s, folder.read(u"whole.flac"_s).first(60'000));
    tools.addReal(u"flac"_s);
    set(u"warnOnDelete", false);
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    run(tab, {source});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_TRUE(endedTasks.at(0)->report().contains(u"cut.flac: ERROR"_s)) << qPrintable(endedTasks.at(0)->report());
    EXPECT_TRUE(out.list().isEmpty());
    EXPECT_TRUE(folder.exists(u"cut.flac"_s));
}

TEST_F(EncodeFlacTaskTest, EncodesWithLaxWhatIsOutsideTheSubset)
{
    const QString source = test::writeWav(folder.path(u"a.wav"_s), {.rate = 100'001});
    tools.addReal(u"flac"_s);
    EncodeTab tab(controller);
    run(tab, {source});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_TRUE(endedTasks.at(0)->report().contains(u"NOT_STREAMABLE"_s)) << qPrintable(endedTasks.at(0)->report());
    EXPECT_EQ(out.list(), QStringList());
    tab.flacLaxButton.setOn(true);
    run(tab, {source});
    EXPECT_TRUE(test::sameSound(source, out.path(u"a.flac"_s)));
}

} // namespace
} // namespace nurv
