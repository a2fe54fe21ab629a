// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "PseudoTerminal.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

TEST(ExistingOutputs, StayAndTheirJobsFailByName)
{
    const TestFolder folder;
    writeWav(folder.path(u"in/a.wav"_s), {.seconds = 0.1});
    writeWav(folder.path(u"in/b.wav"_s), {.seconds = 0.1, .seed = 2});
    folder.write(u"in/a.flac"_s, "precious");
    for (const QString &answer : {u"--yes"_s, u"--no"_s}) {
        const ProgramResult result = runNurv({u"encode"_s, u"--beside-source"_s, u"--jobs=1"_s, answer,
                                              folder.path(u"in/a.wav"_s), folder.path(u"in/b.wav"_s)});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_TRUE(result.errors.startsWith(folder.path(u"in/a.wav"_s).toUtf8() + ": ")) << result.errors.constData();
        EXPECT_TRUE(result.errors.split('\n').first().contains("exists")) << result.errors.constData();
        EXPECT_FALSE(result.errors.contains(" -f")) << result.errors.constData();
        EXPECT_EQ(folder.read(u"in/a.flac"_s), "precious");
        EXPECT_TRUE(sameSound(folder.path(u"in/b.wav"_s), folder.path(u"in/b.flac"_s)));
        folder.remove(u"in/b.flac"_s);
    }
}

TEST(ExistingOutputs, NothingIsAskedAboutThemOnATerminal)
{
    const TestFolder folder;
    writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    folder.write(u"a.flac"_s, "precious");
    PseudoTerminal terminal(200, 24, nurvPath(), {u"encode"_s, u"--beside-source"_s, folder.path(u"a.wav"_s)});
    EXPECT_EQ(terminal.finish(), 1) << terminal.received().constData();
    EXPECT_EQ(folder.read(u"a.flac"_s), "precious");
}

TEST(ExistingOutputs, AreReplacedWithOverwriteInEitherFolder)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    folder.write(u"a.flac"_s, "old");
    folder.write(u"out/a.flac"_s, "old");
    EXPECT_EQ(runNurv({u"encode"_s, u"--beside-source"_s, u"--overwrite"_s, wav}).exitStatus, 0);
    EXPECT_TRUE(sameSound(wav, folder.path(u"a.flac"_s)));
    EXPECT_EQ(runNurv({u"encode"_s, u"--output-dir"_s, folder.path(u"out"_s), u"--overwrite"_s, wav}).exitStatus, 0);
    EXPECT_TRUE(sameSound(wav, folder.path(u"out/a.flac"_s)));
}

TEST(ExistingOutputs, OverwriteAnswersNoQuestion)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    const ProgramResult result =
        runNurv({u"encode"_s, u"--beside-source"_s, u"--overwrite"_s, u"--delete-originals"_s, wav});
    EXPECT_EQ(result.exitStatus, 2);
    EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
}

TEST(ExistingOutputs, ArePassedOverOnlyWhenTheyMayHoldTheirSources)
{
    const TestFolder folder;
    const QString whole = writeWav(folder.path(u"in/a.wav"_s), {.seconds = 0.1});
    const QString cut = writeWav(folder.path(u"in/b.wav"_s), {.frames = 4410, .seed = 2});
    const QString text = writeWav(folder.path(u"in/c.wav"_s), {.seconds = 0.1, .seed = 3});
    ASSERT_EQ(runNurv({u"encode"_s, u"--beside-source"_s, whole}).exitStatus, 0);
    writeFlac(folder.path(u"in/b.flac"_s), {.frames = 4409, .seed = 2});
    folder.write(u"in/c.flac"_s, "no sound");
    const ProgramResult result =
        runNurv({u"encode"_s, u"--beside-source"_s, u"--skip-existing"_s, u"--jobs=1"_s, whole, cut, text});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.contains("b.wav: its output b.flac exists already, but is not whole: its output holds "
                                       "4409 of 4410 samples"))
        << result.errors.constData();
    EXPECT_TRUE(result.errors.contains("c.wav: its output c.flac exists already, but is not whole: its output is no "
                                       "sound file"))
        << result.errors.constData();
    EXPECT_FALSE(result.errors.contains("a.wav:")) << result.errors.constData();
    EXPECT_EQ(folder.read(u"in/c.flac"_s), "no sound");
}

TEST(ExistingOutputs, OfAnotherSourceAreToldByTheNameThatWasGiven)
{
    const TestFolder folder;
    writeWav(folder.path(u"show/a.wav"_s), {.seconds = 0.1});
    writeFlac(folder.path(u"show/disc 2/a.flac"_s), {.seconds = 0.1, .seed = 2});
    const ProgramResult result = runNurv(
        {u"encode"_s, u"--format=wv"_s, u"--output-dir"_s, folder.makeFolder(u"out"_s), folder.path(u"show"_s)});
    EXPECT_EQ(result.exitStatus, 1);
    const bool isOneOfBoth = result.errors.contains("disc 2/a.flac: its output a.wv is made from a.wav\n")
                             || result.errors.contains("a.wav: its output a.wv is made from disc 2/a.flac\n");
    EXPECT_TRUE(isOneOfBoth) << result.errors.constData();
}
