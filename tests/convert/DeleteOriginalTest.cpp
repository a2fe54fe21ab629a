// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertFixture.h"
#include "convert/ShortenFixture.h"
#include "support/LogLines.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class DeleteOriginalTest : public test::ConvertFixture {
protected:
    DeleteOriginalTest() { set(u"warnOnDelete", false); }

    test::ProgramFolder tools;
};

TEST_F(DeleteOriginalTest, RemovesTheSourceOfASuccessfulConversion)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    tools.addReal(u"flac"_s);
    EncodeTab encode(controller);
    encode.deleteOriginalsButton.setOn(true);
    run(encode, {wav});
    EXPECT_TRUE(folder.list().isEmpty());
    DecodeTab decode(controller);
    decode.deleteOriginalsButton.setOn(true);
    run(decode, {out.path(u"a.flac"_s)});
    EXPECT_EQ(out.list(), QStringList{u"a.wav"_s});
}

TEST_F(DeleteOriginalTest, RemovesTheSourceOfEveryJobThatRunsShntool)
{
    const QString sound = test::writeWav(folder.path(u"sound.wav"_s));
    tools.addReal(u"shntool"_s);
    tools.addReal(u"flac"_s);
    const QString forDecoding = test::writeShorten(tools, sound, folder.path(u"1.shn"_s));
    const QString forFlac = test::writeShorten(tools, sound, folder.path(u"2.shn"_s));
    const QString forShorten = test::writeWav(folder.path(u"3.wav"_s));
    DecodeTab decode(controller);
    decode.deleteOriginalsButton.setOn(true);
    run(decode, {forDecoding});
    EncodeTab encode(controller);
    encode.deleteOriginalsButton.setOn(true);
    run(encode, {forFlac});
    ASSERT_TRUE(encode.outputFormatMatrix.selectTitle(u"SHN"_s));
    encode.deleteOriginalsButton.setOn(true);
    run(encode, {forShorten});
    EXPECT_EQ(out.list(), (QStringList{u"1.wav"_s, u"2.flac"_s, u"3.shn"_s}));
    EXPECT_EQ(folder.list(), QStringList{u"sound.wav"_s});
}

TEST_F(DeleteOriginalTest, KeepsTheSourceWhenTheProgramFails)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    tools.addFake(u"flac"_s, "create=@-1;exit=1");
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    run(tab, {wav});
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
}

TEST_F(DeleteOriginalTest, KeepsTheSourceOfAProgramThatSucceedsWithoutOutput)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    tools.addFake(u"flac"_s, "exit=0");
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    run(tab, {wav});
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_TRUE(endedTasks.at(0)->report().contains(u"its program made no output"_s));
}

TEST_F(DeleteOriginalTest, KeepsAWavThatHoldsMoreThanItsHeaderSays)
{
    QByteArray bytes = test::wavBytes({.seconds = 2.0});
    const qsizetype size = bytes.indexOf("data") + 4;
    bytes.replace(size, 4, QByteArray("\x00\x10\x00\x00", 4)); // 4096 of some 350,000 bytes
    const QString wav = folder.write(u"a.wav"_s, bytes);
    tools.addReal(u"flac"_s);
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    run(tab, {wav});
    EXPECT_TRUE(out.exists(u"a.flac"_s)) << "flac is content with it";
    EXPECT_EQ(folder.read(u"a.wav"_s), bytes);
}

TEST_F(DeleteOriginalTest, StaysActiveUntilTheOutputIsOnTheDisk)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    tools.addReal(u"flac"_s);
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    bool wasThere = false;
    QObject::connect(&controller.taskQueue(), &NURVTaskQueue::taskEnded, &tab,
                     [&] { wasThere = out.exists(u"a.flac"_s) && !folder.exists(u"a.wav"_s); });
    run(tab, {wav});
    EXPECT_TRUE(wasThere) << "when the queue is told, the source has gone and its output stands";
}

TEST_F(DeleteOriginalTest, KeepsTheSourceWhenTheJobIsCancelledWhileItRuns)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    tools.addFake(u"flac"_s, "create=@-1;wait-file=" + folder.path(u"go-on"_s).toUtf8());
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    prompts.expectOutputFolder(out.path());
    tab.addFile(wav);
    tab.executeCommand();
    ASSERT_TRUE(test::waitUntil([&] { return out.exists(u"a.flac"_s); }));
    queue().cancelAllTasks();
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_EQ(endedTasks.at(0)->textField().text, u"Canceled");
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
}

TEST_F(DeleteOriginalTest, KeepsASourceThatWasEncodedInPlace)
{
    const test::LogLines log;
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s));
    const QByteArray before = test::decodedMd5(flac);
    tools.addReal(u"flac"_s);
    EncodeTab tab(controller);
    tab.sourceEncodeButton.setOn(true);
    tab.deleteOriginalsButton.setOn(true);
    prompts.expectAsk(u"One of the output files already exists and will be overwritten.  "
                      "Are you sure you want to continue?"_s,
                      {u"No"_s, u"Yes"_s}, u"Yes"_s);
    runBeside(tab, {flac});
    EXPECT_FALSE(endedTasks.at(0)->error());
    EXPECT_EQ(folder.list(), QStringList{u"a.flac"_s});
    EXPECT_EQ(test::decodedMd5(flac), before);
    EXPECT_EQ(log.with(u"Kept"_s).size(), 1);
}

TEST_F(DeleteOriginalTest, KeepsASourceWhoseTagsCouldNotBeCopied)
{
    const QString aiff = test::writeAiff(folder.path(u"a.aiff"_s));
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    {
        const test::LogLines log;
        // Succeeds with a file that has all of the sound and takes no tags.
        const QString wav = test::writeWav(folder.path(u"sound"_s));
        tools.addFake(u"flac"_s, "copy=" + wav.toUtf8() + ":@-1");
        run(tab, {aiff});
        ASSERT_TRUE(QFile::remove(wav));
        EXPECT_FALSE(endedTasks.at(0)->error()) << qPrintable(endedTasks.at(0)->report());
        EXPECT_EQ(folder.list(), QStringList{u"a.aiff"_s});
        EXPECT_EQ(log.with(u"Kept, since only it has the tags: "_s + aiff).size(), 1);
    }
    out.remove(u"a.flac"_s);
    ASSERT_TRUE(QFile::remove(tools.path(u"flac"_s)));
    tools.addReal(u"flac"_s);
    tab.deleteOriginalsButton.setOn(true);
    run(tab, {aiff});
    EXPECT_EQ(folder.list(), QStringList());
    EXPECT_EQ(out.list(), QStringList{u"a.flac"_s});
}

TEST_F(DeleteOriginalTest, KeepsADamagedSourceThatWasDecodedThroughItsErrors)
{
    test::writeFlac(folder.path(u"whole.flac"_s), {.seconds = 5});
    QByteArray bytes = folder.read(u"whole.flac"_s);
    folder.remove(u"whole.flac"_s);
    const QString cut = folder.write(u"cut.flac"_s, bytes.first(60'000));
    const QString broken = folder.write(u"broken.flac"_s, QByteArray(bytes).replace(60'000, 100, QByteArray(100, 'x')));
    const QString mismatch = folder.write(u"mismatch.flac"_s, QByteArray(bytes).replace(26, 16, QByteArray(16, 'x')));
    tools.addReal(u"flac"_s);
    DecodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    tab.decodeFlacThroughErrors.setOn(true);
    run(tab, {cut, broken, mismatch});
    ASSERT_EQ(endedTasks.size(), 3U);
    EXPECT_EQ(folder.list(), (QStringList{u"broken.flac"_s, u"cut.flac"_s, u"mismatch.flac"_s}));
    for (const auto &task : endedTasks) {
        EXPECT_TRUE(task->error()) << "the proof finds the damage as well";
        EXPECT_EQ(task->outcome().original, TaskOutcome::Original::Kept);
        EXPECT_TRUE(task->report().contains(u"MD5 signature mismatch"_s)) << qPrintable(task->report());
    }
    EXPECT_EQ(outputWindows.size(), 3);
}

TEST_F(DeleteOriginalTest, ShowsOnlyWhatTheDamagedFileOfABatchHasToTell)
{
    // The damaged one ends first.
    NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), 1);
    const QString good = test::writeFlac(folder.path(u"good.flac"_s));
    QByteArray bytes = folder.read(u"good.flac"_s);
    const QString broken = folder.write(u"broken.flac"_s, bytes.replace(26, 16, QByteArray(16, 'x')));
    tools.addReal(u"flac"_s);
    DecodeTab tab(controller);
    tab.decodeFlacThroughErrors.setOn(true);
    run(tab, {broken, good});
    ASSERT_EQ(endedTasks.size(), 2U);
    EXPECT_TRUE(endedTasks[0]->report().contains(u"MD5 signature mismatch"_s)) << qPrintable(endedTasks[0]->report());
    EXPECT_EQ(endedTasks[1]->report(), QString());
    ASSERT_EQ(outputWindows.size(), 1);
    EXPECT_TRUE(outputWindows[0].contains(u"MD5 signature mismatch"_s)) << qPrintable(outputWindows[0]);
}

TEST_F(DeleteOriginalTest, KeepsATruncatedSourceThatWasEncoded)
{
    const QString wav = folder.write(u"a.wav"_s, test::wavBytes({}).first(100'000));
    const QString aiff = folder.write(u"b.aiff"_s, test::aiffBytes({}).first(100'000));
    const QString whole = test::writeWav(folder.path(u"c.wav"_s));
    tools.addReal(u"flac"_s);
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    run(tab, {wav, aiff, whole});
    ASSERT_EQ(endedTasks.size(), 3U);
    EXPECT_EQ(folder.list(), (QStringList{u"a.wav"_s, u"b.aiff"_s}));
    ASSERT_EQ(outputWindows.size(), 1);
    EXPECT_TRUE(outputWindows[0].contains(u"a.wav: WARNING: unexpected EOF"_s)) << qPrintable(outputWindows[0]);
    for (const auto &task : endedTasks)
        EXPECT_EQ(task->error(), task->title() != u"c.wav") << qPrintable(task->report());
}

TEST_F(DeleteOriginalTest, NoticesDamageThatIsToldInTwoPieces)
{
    tools.addFake(u"flac"_s, "create=@-1;append=@-1:x;out=\\b\\b*** Got err;until-read;out=or code 0:LOST_SYNC\\n");
    const QString flac = folder.write(u"a.flac"_s, "fLaC");
    DecodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    tab.originals.proveButton.setOn(false);
    run(tab, {flac});
    EXPECT_FALSE(endedTasks.at(0)->error());
    EXPECT_TRUE(folder.exists(u"a.flac"_s));
}

TEST_F(DeleteOriginalTest, MovesTheSourceToTheTrashWhenTheSettingSaysSo)
{
    set(u"trashOrDelete", 1);
    const QString wav = test::writeWav(folder.path(u"trash me.wav"_s));
    tools.addReal(u"flac"_s);
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    run(tab, {wav});
    EXPECT_FALSE(folder.exists(u"trash me.wav"_s));
    const QString trash = QString::fromLocal8Bit(qgetenv("XDG_DATA_HOME")) + u"/Trash/files/trash me.wav"_s;
    EXPECT_TRUE(QFile::exists(trash));
}

} // namespace
} // namespace nurv
