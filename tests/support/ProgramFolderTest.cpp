// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ProgramFolder.h"

#include "support/TestProgram.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

TEST(ProgramFolder, StandsInForTheResourceFolderWhileItLives)
{
    const QByteArray before = qgetenv("NURV_TOOLS");
    {
        const ProgramFolder tools;
        EXPECT_EQ(qEnvironmentVariable("NURV_TOOLS"), tools.path());
    }
    EXPECT_EQ(qgetenv("NURV_TOOLS"), before);
}

TEST(ProgramFolder, PutsAFakeUnderTheNameOfARealProgram)
{
    const ProgramFolder tools;
    const QString flac = tools.addFake(u"flac"_s, "out=fake \n; args; exit=7");
    const ProgramResult result = runProgram(flac, {u"-d"_s, u"exit=3"_s});
    EXPECT_EQ(result.output, "fake arg 1: -d\narg 2: exit=3\n");
    EXPECT_EQ(result.exitStatus, 7);
}

TEST(ProgramFolder, GivesAFakeItsScriptWhereverPathLedToIt)
{
    const ProgramFolder tools;
    tools.addFake(u"flac"_s, "out=fake");
    const ProgramResult result = runProgram(u"/bin/sh"_s, {u"-c"_s, u"PATH='%1'; flac -d"_s.arg(tools.path())});
    EXPECT_EQ(result.output, "fake");
    EXPECT_EQ(result.exitStatus, 0);
}

TEST(ProgramFolder, LogsTheCallsOfARealProgram)
{
    const ProgramFolder tools;
    const TestFolder folder;
    const QString flac = tools.addLogged(u"flac"_s, folder.path(u"a;b.log"_s));
    const ProgramResult result = runProgram(flac, {u"--version"_s});
    EXPECT_TRUE(result.output.startsWith("flac ")) << result.output.constData();
    EXPECT_EQ(folder.read(u"a;b.log"_s), "--version\n");
}

TEST(ProgramFolder, HoldsTheRealPrograms)
{
    const ProgramFolder tools;
    tools.addAllReal();
    EXPECT_EQ(runProgram(tools.path(u"metaflac"_s), {u"--version"_s}).exitStatus, 0);
    tools.remove(u"metaflac"_s);
    EXPECT_EQ(runProgram(tools.path(u"metaflac"_s), {u"--version"_s}).exitStatus, -1);
}

} // namespace nurv::test
