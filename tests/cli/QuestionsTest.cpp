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

const QByteArray kDeleteQuestion = "You have chosen to delete the original files. Are you sure you want to continue?";
const QByteArray kClashQuestion =
    "One of the output files already exists and will be overwritten. Are you sure you want to continue?";

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

TEST(Questions, AnOutputThatExistsStaysUnlessOverwritingIsAskedFor)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    folder.write(u"a.flac"_s, "precious");

    const ProgramResult unanswered = runNurv({u"encode"_s, u"--beside-source"_s, wav});
    EXPECT_EQ(unanswered.exitStatus, 2);
    EXPECT_TRUE(unanswered.errors.contains(kClashQuestion + " Answered \"No\"")) << unanswered.errors.constData();
    EXPECT_TRUE(unanswered.errors.contains("--overwrite answers \"Yes\""));

    // The option answers no other question.
    const QString other = writeWav(folder.path(u"b.wav"_s), {.seconds = 0.1});
    const ProgramResult deleting =
        runNurv({u"encode"_s, u"--beside-source"_s, u"--overwrite"_s, u"--delete-originals"_s, other});
    EXPECT_EQ(deleting.exitStatus, 2);
    EXPECT_TRUE(deleting.errors.contains(kDeleteQuestion + " Answered \"No\"")) << deleting.errors.constData();
    EXPECT_TRUE(folder.exists(u"b.wav"_s));

    const ProgramResult declined = runNurv({u"encode"_s, u"--beside-source"_s, u"--no"_s, wav});
    EXPECT_EQ(declined.exitStatus, 1);
    EXPECT_EQ(declined.errors, "nurv: " + kClashQuestion + " Answered \"No\".\n");
    EXPECT_EQ(folder.read(u"a.flac"_s), "precious");

    EXPECT_EQ(runNurv({u"encode"_s, u"--beside-source"_s, u"--overwrite"_s, wav}).exitStatus, 0);
    EXPECT_TRUE(sameSound(wav, folder.path(u"a.flac"_s)));
}

TEST(Questions, OnATerminalTheUserIsAskedAndEnterAloneChangesNothing)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const QStringList arguments{u"encode"_s, u"--beside-source"_s, u"--delete-originals"_s, wav};
    {
        PseudoTerminal terminal(120, 24, nurvPath(), arguments);
        ASSERT_TRUE(terminal.waitFor("continue? [Yes/No, default No] "));
        terminal.type("\n");
        EXPECT_EQ(terminal.finish(), 1);
        EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
    }
    PseudoTerminal terminal(120, 24, nurvPath(), arguments);
    ASSERT_TRUE(terminal.waitFor("continue? [Yes/No, default No] "));
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

TEST(Questions, OverwriteReplacesNothingInAnOutputFolderAndSaysSo)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    folder.write(u"out/a.flac"_s, "precious");
    const ProgramResult result =
        runNurv({u"encode"_s, u"--overwrite"_s, u"--output-dir"_s, folder.path(u"out"_s), wav});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.startsWith("nurv: --overwrite counts for --beside-source only: "
                                         "an output that exists in the output folder is never replaced\n"))
        << result.errors.constData();
    EXPECT_EQ(folder.read(u"out/a.flac"_s), "precious");
}
