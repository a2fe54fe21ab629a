// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/StagedFixture.h"

#include "support/SystemCallRecorder.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

/// Files of others under the names that a job of several stages uses, before it and between its stages.
class GuardedStagesTest : public test::StagedFixture {
protected:
    GuardedStagesTest() { test::writeWav(folder.path(u"sound.wav"_s)); }

    /// A job whose decoder does that besides its work, before flac is started.
    std::shared_ptr<StagedTask> wavpackToFlac(const QByteArray &meanwhile)
    {
        setFake(u"wvunpack"_s, "copy=" + folder.path(u"sound.wav"_s).toUtf8() + ":@-2;" + meanwhile);
        return makeEncoder(folder.write(u"a.wv"_s, "source"), u"FLAC"_s);
    }
    [[nodiscard]] QByteArray output() const { return out.path(u"a.flac"_s).toUtf8(); }
    /// The closing of the file that an output was before it got its tags, right behind that.
    [[nodiscard]] QString closingOfUntagged() const { return u"close "_s + out.path(u"a.wv (deleted)"_s); }
};

TEST_F(GuardedStagesTest, ALinkThatComesBetweenTheStagesIsNotFollowed)
{
    const QString precious = folder.write(u"precious"_s, "precious");
    addFake(u"flac"_s, "append=@-1:made");
    const auto task = runJob(wavpackToFlac("link=" + precious.toUtf8() + ':' + output()));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->report().contains(u"its output name is a link"_s)) << qPrintable(task->report());
    EXPECT_TRUE(calls(u"flac"_s).isEmpty());
    EXPECT_EQ(folder.read(u"precious"_s), "precious");
}

TEST_F(GuardedStagesTest, OneWithTheNameOfATemporaryFileThatComesBetweenTheStagesStays)
{
    addFake(u"flac"_s, "append=@-1:made");
    const auto task = runJob(wavpackToFlac("append=" + output() + ".metadata_edit:somebody's"));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(calls(u"flac"_s).isEmpty());
    EXPECT_EQ(out.read(u"a.flac.metadata_edit"_s), "somebody's");
}

TEST_F(GuardedStagesTest, NoStageBeginsWhenItsLastOneWouldMeetALink)
{
    out.makeLink(u"a.flac"_s, folder.write(u"precious"_s, "precious"));
    addFake(u"wvunpack"_s, "append=@-2:sound");
    addFake(u"flac"_s, "append=@-1:made");
    EXPECT_TRUE(runJob(makeEncoder(folder.write(u"a.wv"_s, "source"), u"FLAC"_s))->error());
    EXPECT_TRUE(calls(u"wvunpack"_s).isEmpty());
    EXPECT_EQ(folder.read(u"precious"_s), "precious");
}

TEST_F(GuardedStagesTest, AnOutputThatComesBetweenTheStagesStays)
{
    const auto task = wavpackToFlac("append=" + output() + ":somebody's");
    addFake(u"flac"_s, "append=@-1:made");
    const auto batch = std::make_shared<OutputBatch>();
    batch->existingOutputs = ExistingOutputs::Refuse;
    task->setBatch(batch);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->report().contains(u"exists already"_s)) << qPrintable(task->report());
    EXPECT_EQ(out.read(u"a.flac"_s), "somebody's");
}

TEST_F(GuardedStagesTest, OneThatTheProgramDidNotTouchStaysWhenItIsKilled)
{
    out.write(u"a.flac"_s, "somebody's");
    setFake(u"flac"_s, "signal=9");
    EXPECT_TRUE(runJob(wavpackToFlac({}))->error());
    EXPECT_EQ(out.read(u"a.flac"_s), "somebody's");
}

TEST_F(GuardedStagesTest, AReplacedOneComesBackInThePlaceOfWhatAProgramMadeThatFailed)
{
    out.write(u"a.wav"_s, "old");
    setFake(u"ttaenc"_s, "append=@-1:by and by;exit=1");
    const auto task = makeDecoder(folder.write(u"a.tta"_s, "source"), u"WAV"_s);
    const auto batch = std::make_shared<OutputBatch>();
    batch->existingOutputs = ExistingOutputs::Replace;
    task->setBatch(batch);
    runJob(task);
    EXPECT_TRUE(task->error());
    EXPECT_EQ(out.list(), QStringList{u"a.wav"_s});
    EXPECT_EQ(out.read(u"a.wav"_s), "old");
}

TEST_F(GuardedStagesTest, OneThatComesBeforeItsProgramBeginsStaysWhenTheJobIsCutShort)
{
    setFake(u"wvunpack"_s, "append=@-2:half;create=" + folder.path(u"waits"_s).toUtf8() + ";hang");
    addFake(u"flac"_s, "append=@-1:made");
    const auto task = makeEncoder(folder.write(u"a.wv"_s, "source"), u"FLAC"_s);
    queue().addTask(task);
    ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
    out.write(u"a.flac"_s, "somebody's");
    task->cancelTask();
    ASSERT_TRUE(finish());
    EXPECT_TRUE(calls(u"flac"_s).isEmpty());
    EXPECT_EQ(out.read(u"a.flac"_s), "somebody's");
}

TEST_F(GuardedStagesTest, AnOutputThatGoesWhileItGetsItsTagsFailsTheJob)
{
    const QString source =
        test::writeByFfmpeg(folder.path(u"a.m4a"_s), {}, {u"-c:a"_s, u"alac"_s, u"-metadata"_s, u"title=Song"_s});
    tools.addReal(u"wavpack"_s);
    const auto task = makeEncoder(source, u"WV"_s);
    bool hasGone = false;
    {
        test::SystemCallRecorder calls;
        calls.before(closingOfUntagged(), [&] { hasGone = QFile::remove(out.path(u"a.wv"_s)); });
        runJob(task);
    }
    ASSERT_TRUE(hasGone);
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(task->report().contains(u"made no output"_s)) << qPrintable(task->report());
}

TEST_F(GuardedStagesTest, AnOutputGoesWhoseJobIsCancelledWhileItGetsItsTags)
{
    const QString source =
        test::writeByFfmpeg(folder.path(u"a.m4a"_s), {}, {u"-c:a"_s, u"alac"_s, u"-metadata"_s, u"title=Song"_s});
    tools.addReal(u"wavpack"_s);
    const auto task = makeEncoder(source, u"WV"_s);
    test::SystemCallRecorder calls;
    calls.before(closingOfUntagged(), [&] { task->cancelTask(); });
    runJob(task);
    EXPECT_EQ(task->textField().text, u"Canceled");
    EXPECT_EQ(out.list(), QStringList()) << "nobody knows which of its tags it has";
    EXPECT_TRUE(QFile::exists(source));
}

TEST_F(GuardedStagesTest, AnOutputIsFlushedBehindItsTagsAndBeforeItsSourceGoes)
{
    const QString source =
        test::writeByFfmpeg(folder.path(u"a.m4a"_s), {}, {u"-c:a"_s, u"alac"_s, u"-metadata"_s, u"title=Song"_s});
    tools.addReal(u"wavpack"_s);
    const auto task = makeEncoder(source, u"WV"_s);
    task->setDeleteOriginal(true);
    const test::SystemCallRecorder calls;
    runJob(task);
    EXPECT_FALSE(task->error()) << qPrintable(task->report());
    const QStringList made = calls.calls();
    const QString path = out.path(u"a.wv"_s);
    const auto tagged = made.indexOf(closingOfUntagged());
    const auto flushed = made.lastIndexOf(u"fsync "_s + path);
    const auto gone = made.indexOf(u"unlink "_s + source);
    ASSERT_GE(tagged, 0) << qPrintable(made.join(u'\n'));
    EXPECT_LT(tagged, flushed);
    EXPECT_LT(flushed, gone);
}

TEST_F(GuardedStagesTest, TheRowTellsThatAnotherJobConvertsTheSource)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    tools.addReal(u"ttaenc"_s);
    setFake(u"mac"_s, "append=@-2:made;create=" + folder.path(u"waits"_s).toUtf8()
                          + ";wait-file=" + folder.path(u"go-on"_s).toUtf8());
    queue().addTask(makeEncoder(wav, u"APE"_s));
    ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
    const auto task = makeEncoder(wav, u"TTA"_s);
    task->setDeleteOriginal(true);
    queue().addTask(task);
    // The row is painted once the job is done.
    EXPECT_TRUE(test::waitUntil([&] { return task->topTextField().text.startsWith(u"Complete"_s); }));
    EXPECT_EQ(task->topTextField().text, u"Complete; original kept: another job converts it, too");
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_TRUE(QFile::exists(wav));
}

TEST_F(GuardedStagesTest, TheSourceStaysThatAnotherJobBeginsToConvertDuringTheProof)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    tools.addReal(u"ttaenc"_s);
    setFake(u"mac"_s, "append=@-2:made;wait-file=" + folder.path(u"go-on"_s).toUtf8());
    const auto other = makeEncoder(wav, u"APE"_s);
    bool hasBegun = false;
    QObject::connect(&queue(), &NURVTaskQueue::rowChanged, &controller, [&](int row) {
        const QString status = queue().panelArray()[static_cast<std::size_t>(row)]->topTextField().text;
        if (status == u"Proving: 100%" && !std::exchange(hasBegun, true))
            queue().addTask(other);
    });
    const auto task = makeEncoder(wav, u"TTA"_s);
    task->setDeleteOriginal(true);
    queue().addTask(task);
    EXPECT_TRUE(test::waitUntil([&] { return task->isDone(); }));
    EXPECT_TRUE(hasBegun);
    EXPECT_TRUE(test::waitUntil([&] { return task->outcome().original == TaskOutcome::Original::Kept; }));
    EXPECT_TRUE(QFile::exists(wav));
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_TRUE(QFile::exists(wav));
}

} // namespace
} // namespace nurv
