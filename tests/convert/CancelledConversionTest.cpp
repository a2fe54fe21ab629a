// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertFixture.h"

#include "process/ChildProcess.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using CancelledConversionTest = test::ConvertFixture;

TEST_F(CancelledConversionTest, StartsNothingWhenCancelledWhileWaiting)
{
    const test::ProgramFolder tools;
    tools.addFake(u"flac"_s, "log=" + folder.path(u"log"_s).toUtf8() + ";wait-file=" + folder.path(u"go-on"_s).toUtf8()
                                 + ";append=@-1:sound");
    NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), 1);
    EncodeTab tab(controller);
    prompts.expectOutputFolder(out.path());
    tab.addMatchedFiles({test::writeWav(folder.path(u"1.wav"_s)), test::writeWav(folder.path(u"2.wav"_s))});
    tab.executeCommand();
    const auto tasks = queuedConversions();
    ASSERT_EQ(tasks.size(), 2U);
    tasks[1]->cancelTask();
    EXPECT_EQ(tasks[1]->textField().text, u"Canceled");
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_EQ(out.list(), QStringList{u"1.flac"_s});
    EXPECT_EQ(folder.read(u"log"_s).count('\n'), 1);
    EXPECT_TRUE(folder.exists(u"2.wav"_s));
}

TEST_F(CancelledConversionTest, LetsTheProgramFinishWhenCancelledWhileRunning)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.seconds = 60});
    const QByteArray before = folder.read(u"a.wav"_s);
    EncodeTab tab(controller);
    tab.flacSlider.setIntegerValue(8);
    prompts.expectOutputFolder(out.path());
    tab.addFile(wav);
    tab.executeCommand();
    ASSERT_TRUE(test::waitUntil([&] { return children::runningCount() == 1; }));
    queue().cancelAllTasks();
    ASSERT_TRUE(finish());
    EXPECT_EQ(endedTasks.at(0)->textField().text, u"Canceled");
    EXPECT_FALSE(endedTasks.at(0)->error());
    EXPECT_EQ(children::runningCount(), 0);
    EXPECT_EQ(folder.read(u"a.wav"_s), before);
    EXPECT_EQ(out.list(), QStringList{u"a.flac"_s});
    EXPECT_TRUE(test::sameSound(wav, out.path(u"a.flac"_s)));
    EXPECT_TRUE(outputWindows.isEmpty());
}

} // namespace
} // namespace nurv
