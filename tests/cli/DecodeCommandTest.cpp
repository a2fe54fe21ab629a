// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

TEST(DecodeCommand, DecodesFlacToWavAndAiffWithoutLoss)
{
    const TestFolder folder;
    const QString flac = writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.2});
    const QByteArray before = folder.read(u"a.flac"_s);
    folder.makeFolder(u"out"_s);
    EXPECT_EQ(runNurv({u"decode"_s, u"--beside-source"_s, flac}).exitStatus, 0);
    EXPECT_EQ(runNurv({u"decode"_s, u"--format=aiff"_s, u"--output-dir"_s, folder.path(u"out"_s), flac}).exitStatus, 0);
    EXPECT_TRUE(sameSound(flac, folder.path(u"a.wav"_s)));
    EXPECT_TRUE(sameSound(flac, folder.path(u"out/a.aiff"_s)));
    EXPECT_EQ(folder.read(u"a.flac"_s), before);
    EXPECT_EQ(folder.list(), (QStringList{u"a.flac"_s, u"a.wav"_s, u"out/a.aiff"_s}));
}

TEST(DecodeCommand, RemovesTheOriginalOnlyAfterSuccess)
{
    const TestFolder folder;
    writeFlac(folder.path(u"good.flac"_s), {.seconds = 0.1});
    folder.write(u"bad.flac"_s, "fLaC and then nothing of use");
    const ProgramResult result =
        runNurv({u"decode"_s, u"--beside-source"_s, u"--delete-originals"_s, u"--yes"_s, folder.path()});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(folder.exists(u"bad.flac"_s));
    EXPECT_FALSE(folder.exists(u"good.flac"_s));
    EXPECT_TRUE(folder.exists(u"good.wav"_s));
}

TEST(DecodeCommand, NamesWhatShntoolCannotWriteAiffWithout)
{
    const TestFolder folder;
    const ProgramFolder tools;
    tools.addReal(u"shntool"_s);
    const QString source = folder.write(u"a.shn"_s, "ajkg and then nothing of use");
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", tools.path().toUtf8());
    const ProgramResult aiff = runNurv({u"decode"_s, u"--format=aiff"_s, u"--beside-source"_s, source});
    const ProgramResult wav = runNurv({u"decode"_s, u"--format=wav"_s, u"--beside-source"_s, source});
    qputenv("PATH", path);
    EXPECT_EQ(aiff.exitStatus, 3);
    EXPECT_TRUE(aiff.errors.contains("\"sox\" could not be started")) << aiff.errors.constData();
    EXPECT_FALSE(aiff.errors.contains("shorten")) << aiff.errors.constData();
    // The file is no good, but nothing is missing.
    EXPECT_EQ(wav.exitStatus, 1);
    EXPECT_FALSE(wav.errors.contains("could not be started")) << wav.errors.constData();
}

TEST(DecodeCommand, AnOutputThatExistsIsNotReplaced)
{
    const TestFolder folder;
    writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.1});
    folder.write(u"a.wav"_s, "precious");
    const ProgramResult result = runNurv({u"decode"_s, u"--beside-source"_s, folder.path(u"a.flac"_s)});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(folder.read(u"a.wav"_s), "precious");
}
