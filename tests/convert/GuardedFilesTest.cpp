// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertFixture.h"

#include "base/WorkerThreads.h"
#include "support/SystemCallRecorder.h"

#include <QElapsedTimer>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

/// Files of others under the names that a job of one program uses, before it and meanwhile.
class GuardedFilesTest : public test::ConvertFixture {
protected:
    GuardedFilesTest() { set(u"warnOnDelete", false); }

    /// Calls `work` once, on the GUI thread, when the job's row says that.
    void when(const QString &status, const std::function<void()> &work)
    {
        QObject::connect(&queue(), &NURVTaskQueue::rowChanged, &controller, [this, status, work](int row) {
            if (queue().panelArray()[static_cast<std::size_t>(row)]->topTextField().text == status && !m_hasWorked) {
                m_hasWorked = true;
                work();
            }
        });
    }
    [[nodiscard]] bool hasWorked() const { return m_hasWorked; }
    /// Waits for them while this thread, which would end their jobs, handles nothing.
    [[nodiscard]] static bool workersHaveEnded()
    {
        QElapsedTimer timer;
        timer.start();
        while (workerThreads::runningCount() > 0 && timer.elapsed() < 20'000)
            std::this_thread::yield();
        return workerThreads::runningCount() == 0;
    }

    test::ProgramFolder tools;

private:
    bool m_hasWorked = false;
};

TEST_F(GuardedFilesTest, AnEmptyOneStaysInThePlaceOfAnOutputThatWasNotMade)
{
    out.write(u"a.flac"_s, "");
    tools.addFake(u"flac"_s, "exit=1");
    EncodeTab tab(controller);
    run(tab, {test::writeWav(folder.path(u"a.wav"_s))});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_EQ(out.list(), QStringList{u"a.flac"_s});
}

TEST_F(GuardedFilesTest, OneWithTheNameOfATemporaryFileKeepsTheProgramFromIt)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    tools.addFake(u"flac"_s, "append=@-1:made");
    for (const QString &suffix : {u".tmp,fl-ac+en'c"_s, u".metadata_edit"_s}) {
        endedTasks.clear();
        out.write(u"a.flac"_s + suffix, "precious");
        EncodeTab tab(controller);
        run(tab, {wav});
        EXPECT_TRUE(endedTasks.at(0)->error());
        EXPECT_EQ(out.list(), QStringList{u"a.flac"_s + suffix});
        EXPECT_EQ(out.read(u"a.flac"_s + suffix), "precious");
        out.remove(u"a.flac"_s + suffix);
    }
}

TEST_F(GuardedFilesTest, OneOfAnotherFolderOfTheSameNameIsNotTakenForHalfMade)
{
    out.makeFolder(u"album"_s);
    tools.addFake(u"flac"_s, "append=@-1:half;create=" + folder.path(u"waits"_s).toUtf8()
                                 + ";wait-file=" + folder.path(u"go-on"_s).toUtf8() + ";signal=9");
    EncodeTab tab(controller);
    prompts.expectOutputFolder(out.path(u"album"_s));
    tab.addFile(test::writeWav(folder.path(u"a.wav"_s)));
    tab.executeCommand();
    ASSERT_TRUE(test::waitUntil([&] { return folder.exists(u"waits"_s); }));
    ASSERT_TRUE(QFile::rename(out.path(u"album"_s), out.path(u"moved"_s)));
    out.write(u"album/a.flac"_s, "somebody's");
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_EQ(out.read(u"album/a.flac"_s), "somebody's");
}

TEST_F(GuardedFilesTest, OneWithTheNameThatShntoolGivesIsNoneOfItsOutputs)
{
    // What shntool makes of "01.SHN" is "01.SHN.wav" at first.
    const QString source = folder.write(u"01.SHN"_s, "a source");
    for (const QByteArray &script : {QByteArray("exit=0"), QByteArray("exit=1"), QByteArray("signal=9")}) {
        endedTasks.clear();
        out.write(u"01.SHN.wav"_s, "somebody's");
        if (QFile::exists(tools.path(u"shntool"_s)))
            tools.remove(u"shntool"_s);
        tools.addFake(u"shntool"_s, script);
        DecodeTab tab(controller);
        run(tab, {source});
        EXPECT_TRUE(endedTasks.at(0)->error()) << script.constData();
        EXPECT_EQ(out.list(), QStringList{u"01.SHN.wav"_s});
        EXPECT_EQ(out.read(u"01.SHN.wav"_s), "somebody's");
    }
}

TEST_F(GuardedFilesTest, ALinkWithTheNameThatShntoolGivesIsNotFollowed)
{
    const QString precious = folder.write(u"precious"_s, "precious");
    out.makeLink(u"01.SHN.wav"_s, precious);
    tools.addFake(u"shntool"_s, "append=" + out.path(u"01.SHN.wav"_s).toUtf8() + ":sound");
    DecodeTab tab(controller);
    run(tab, {folder.write(u"01.SHN"_s, "a source")});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_EQ(folder.read(u"precious"_s), "precious");
}

TEST_F(GuardedFilesTest, WhatGotTheNameThatShntoolGivesMeanwhileStaysWhenThatFails)
{
    // shntool gives its output the name when it is whole: this is somebody else's.
    const QString source = folder.write(u"01.SHN"_s, "a source");
    for (const QByteArray &end : {QByteArray("exit=1"), QByteArray("signal=9")}) {
        endedTasks.clear();
        if (QFile::exists(tools.path(u"shntool"_s)))
            tools.remove(u"shntool"_s);
        tools.addFake(u"shntool"_s, "append=" + out.path(u"01.SHN.wav"_s).toUtf8() + ":somebody's;" + end);
        DecodeTab tab(controller);
        run(tab, {source});
        EXPECT_TRUE(endedTasks.at(0)->error());
        EXPECT_EQ(out.list(), QStringList{u"01.SHN.wav"_s});
        EXPECT_EQ(out.read(u"01.SHN.wav"_s), "somebody's");
        out.remove(u"01.SHN.wav"_s);
    }
}

TEST_F(GuardedFilesTest, OneThatWasNotReplacedGetsNoTagsOfTheSource)
{
    const QString aiff = test::writeByFfmpeg(folder.path(u"a.aiff"_s), {},
                                             {u"-write_id3v2"_s, u"1"_s, u"-metadata"_s, u"title=Of the source"_s});
    test::writeFlac(out.path(u"a.flac"_s));
    const QByteArray before = out.read(u"a.flac"_s);
    tools.addFake(u"flac"_s, "exit=1");
    EncodeTab tab(controller);
    run(tab, {aiff});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_EQ(out.read(u"a.flac"_s), before);
}

TEST_F(GuardedFilesTest, TheSourceIsNoneThatMayBeReplaced)
{
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s));
    const QByteArray before = folder.read(u"a.flac"_s);
    tools.addFake(u"flac"_s, "create=@-1");
    EncodeTab tab(controller);
    tab.sourceEncodeButton.setOn(true);
    tab.originals.existingOutputs = ExistingOutputs::Replace;
    runBeside(tab, {flac});
    ASSERT_EQ(endedTasks.size(), 1U);
    EXPECT_TRUE(endedTasks[0]->report().contains(u"its output would replace it"_s))
        << qPrintable(endedTasks[0]->report());
    EXPECT_EQ(folder.read(u"a.flac"_s), before);
}

TEST_F(GuardedFilesTest, OneIsNotReplacedByTheSoundOfADamagedSource)
{
    test::writeFlac(folder.path(u"a.flac"_s));
    QByteArray bytes = folder.read(u"a.flac"_s);
    folder.write(u"a.flac"_s, bytes.replace(26, 16, QByteArray(16, 'x'))); // the MD5 of its samples
    out.write(u"a.wav"_s, "old");
    tools.addReal(u"flac"_s);
    DecodeTab tab(controller);
    tab.decodeFlacThroughErrors.setOn(true);
    tab.originals.existingOutputs = ExistingOutputs::Replace;
    run(tab, {folder.path(u"a.flac"_s)});
    ASSERT_EQ(endedTasks.size(), 1U);
    EXPECT_TRUE(endedTasks[0]->error());
    EXPECT_EQ(out.list(), QStringList{u"a.wav"_s});
    EXPECT_EQ(out.read(u"a.wav"_s), "old");
}

TEST_F(GuardedFilesTest, TheSourceGoesWhenTheJournalIsOnTheDisk)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    tools.addReal(u"flac"_s);
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    const test::SystemCallRecorder calls;
    run(tab, {wav});
    const qsizetype gone = calls.indexOf(u"unlink "_s + wav);
    ASSERT_GE(gone, 0) << qPrintable(calls.calls().join(u'\n'));
    const qsizetype output = calls.indexOf(u"fsync "_s + out.path(u"a.flac"_s));
    const qsizetype journal = calls.indexOf(u"fdatasync "_s);
    ASSERT_GE(output, 0);
    EXPECT_LT(output, gone);
    ASSERT_GE(journal, 0) << "it tells which output is finished";
    EXPECT_LT(journal, gone);
}

TEST_F(GuardedFilesTest, TheSourceStaysWhenTheJobIsCancelledAfterTheLookAtItsOutput)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    tools.addReal(u"flac"_s);
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    tab.originals.proveButton.setOn(false);
    std::atomic<bool> isLooking = false;
    std::atomic<bool> mayGoOn = false;
    test::SystemCallRecorder calls;
    calls.before(u"fsync "_s + out.path(u"a.flac"_s), [&] {
        isLooking = true;
        while (!mayGoOn)
            std::this_thread::yield();
    });
    prompts.expectOutputFolder(out.path());
    tab.addFile(wav);
    tab.executeCommand();
    EXPECT_TRUE(test::waitUntil([&] { return isLooking.load(); }));
    mayGoOn = true;
    EXPECT_TRUE(workersHaveEnded());
    queue().cancelAllTasks();
    ASSERT_TRUE(finish());
    EXPECT_EQ(endedTasks.at(0)->textField().text, u"Canceled");
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
}

TEST_F(GuardedFilesTest, TheReplacedOneIsBackAlsoWhenTheApplicationEndsDuringTheProof)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.seconds = 20});
    out.write(u"a.flac"_s, "old");
    tools.addReal(u"flac"_s);
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    tab.originals.existingOutputs = ExistingOutputs::Replace;
    when(u"Proving: 0%"_s, [this] { queue().cancelAllTasks(); });
    prompts.expectOutputFolder(out.path());
    tab.addFile(wav);
    tab.executeCommand();
    ASSERT_TRUE(test::waitUntil([this] { return hasWorked(); }));
    EXPECT_TRUE(workersHaveEnded());
    EXPECT_EQ(out.read(u"a.flac"_s), "old");
    ASSERT_TRUE(finish());
    EXPECT_EQ(out.read(u"a.flac"_s), "old");
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
}

} // namespace
} // namespace nurv
