// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "PseudoTerminal.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

const QByteArray kDeleteQuestion = "You have chosen to delete the original files. Are you sure you want to continue? "
                                   "They will be deleted for good.";

} // namespace

TEST(Questions, WithoutATerminalNothingIsDeletedAndTheTextSaysWhy)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const ProgramResult result = runNurv({u"encode"_s, u"--beside-source"_s, u"--delete-originals"_s, wav});
    EXPECT_EQ(result.exitStatus, 2);
    EXPECT_EQ(result.errors, "nurv: " + kDeleteQuestion
                                 + " Answered \"No\", since there is no terminal to ask on; --yes answers \"Yes\".\n");
    EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
}

TEST(Questions, YesDeletesTheOriginals)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    EXPECT_EQ(runNurv({u"encode"_s, u"--beside-source"_s, u"--delete-originals"_s, u"--yes"_s, wav}).exitStatus, 0);
    EXPECT_EQ(folder.list(), QStringList{u"a.flac"_s});
}

TEST(Questions, OnATerminalTheUserIsAskedAndEnterAloneChangesNothing)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const QStringList arguments{u"encode"_s, u"--beside-source"_s, u"--delete-originals"_s, wav};
    {
        PseudoTerminal terminal(120, 24, nurvPath(), arguments);
        ASSERT_TRUE(terminal.waitFor("continue? They will be deleted for good. [Yes/No, default No] "));
        terminal.type("\n");
        EXPECT_EQ(terminal.finish(), 1);
        EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
    }
    PseudoTerminal terminal(120, 24, nurvPath(), arguments);
    ASSERT_TRUE(terminal.waitFor("continue? They will be deleted for good. [Yes/No, default No] "));
    terminal.type("what\ny\n");
    EXPECT_EQ(terminal.finish(), 0);
    EXPECT_EQ(folder.list(), QStringList{u"a.flac"_s});
}

TEST(Questions, CtrlCAtAQuestionEndsWithStatus130)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    PseudoTerminal terminal(120, 24, nurvPath(), {u"encode"_s, u"--beside-source"_s, u"--delete-originals"_s, wav});
    ASSERT_TRUE(terminal.waitFor("default No] "));
    terminal.type("\x03");
    EXPECT_EQ(terminal.finish(), 130);
    EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
}

TEST(Questions, OnATerminalTheUserIsAskedForTheOutputFolder)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    folder.makeFolder(u"out"_s);
    PseudoTerminal terminal(200, 24, nurvPath(), {u"encode"_s, wav});
    ASSERT_TRUE(terminal.waitFor("Choose output directory [Enter alone: cancel]: "));
    terminal.type(folder.path(u"none"_s).toUtf8() + "\n");
    ASSERT_TRUE(terminal.waitFor("nurv: the output folder does not exist: " + folder.path(u"none"_s).toUtf8()));
    terminal.type(folder.path(u"out"_s).toUtf8() + "\n");
    EXPECT_EQ(terminal.finish(), 0) << terminal.received().constData();
    EXPECT_EQ(folder.list(), (QStringList{u"a.wav"_s, u"out/a.flac"_s}));
}

TEST(Questions, AnEmptyAnswerAndTheEndOfTheInputGiveNoOutputFolder)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    for (const QByteArray &keys : {QByteArray("\n"), QByteArray("\x04")}) {
        PseudoTerminal terminal(200, 24, nurvPath(), {u"encode"_s, wav});
        ASSERT_TRUE(terminal.waitFor("Choose output directory"));
        terminal.type(keys);
        EXPECT_EQ(terminal.finish(), 1) << terminal.received().constData();
        EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
    }
}

TEST(Questions, TheQuestionOnTheTerminalNamesNumberSizeAndExamples)
{
    const TestFolder folder;
    for (int i = 1; i <= 4; ++i)
        folder.write(u"in/%1.wav"_s.arg(i), QByteArray(9000, 'x'));
    PseudoTerminal terminal(200, 24, nurvPath(),
                            {u"encode"_s, u"--beside-source"_s, u"--delete-originals"_s, folder.path(u"in"_s)});
    ASSERT_TRUE(terminal.waitFor("nurv: 4 files, 36 kB: 1.wav, 2.wav, 3.wav, ...\r\n" + kDeleteQuestion
                                 + " [Yes/No, default No] "))
        << terminal.received().constData();
    terminal.type("what\nn\n");
    EXPECT_EQ(terminal.finish(), 1);
    // Once, however often the question is.
    EXPECT_EQ(terminal.received().count("4 files"), 1);
    EXPECT_EQ(terminal.received().count("default No"), 2);
    EXPECT_EQ(folder.list().size(), 4);
}
