// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ProgramRunSync.h"

#include "process/ResourceFolder.h"
#include "support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <signal.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class ProgramRunSyncTest : public ::testing::Test {
protected:
    ProgramRunSync::Ending run(const QStringList &script)
    {
        return ProgramRunSync(test::fakeProgramPath(), script).run([this](const QString &chunk) {
            chunks.append(chunk);
            return true;
        });
    }

    QStringList chunks;
};

TEST_F(ProgramRunSyncTest, HandsTextOverAsItComes)
{
    const ProgramRunSync::Ending ending = run({u"out=1% \\b\\b"_s, u"until-read"_s, u"err=2% "_s});
    EXPECT_EQ(chunks, (QStringList{u"1% \b\b"_s, u"2% "_s}));
    EXPECT_TRUE(ending.succeeded());
    EXPECT_FALSE(ending.wasCutShort());
    EXPECT_TRUE(ending.startFailure.isEmpty());
}

TEST_F(ProgramRunSyncTest, HoldsACutCharacterBackForTheNextChunk)
{
    run({u"out=caf\\xc3"_s, u"until-read"_s, u"out=\\xa9 x"_s});
    EXPECT_EQ(chunks, (QStringList{u"caf"_s, u"\u00e9 x"_s}));
}

TEST_F(ProgramRunSyncTest, GivesNoTextForBytesThatAreNone)
{
    run({u"out=\\xff\\xfe"_s, u"until-read"_s, u"out=ok"_s});
    EXPECT_EQ(chunks, QStringList{u"ok"_s});
}

TEST_F(ProgramRunSyncTest, GivesTheToolTheEnvironmentOfTheTools)
{
    run({u"env=NSUnbufferedIO"_s, u"env=PATH"_s, u"stdin"_s, u"fds"_s});
    EXPECT_EQ(chunks.join(QString()), u"NSUnbufferedIO=YES\nPATH=%1:%2\nstdin: /dev/null\nfds: 0 1 2\n"_s.arg(
                                          qEnvironmentVariable("PATH"), pathToCommandLineTools()));
}

TEST_F(ProgramRunSyncTest, AppendsAFurtherFolderToThePath)
{
    ProgramRunSync tool(test::fakeProgramPath(), {u"env=PATH"_s});
    tool.appendToPATH(u"/more"_s);
    QString output;
    static_cast<void>(tool.run([&](const QString &chunk) {
        output += chunk;
        return true;
    }));
    EXPECT_EQ(output, u"PATH=%1:%2:/more\n"_s.arg(qEnvironmentVariable("PATH"), pathToCommandLineTools()));
}

TEST_F(ProgramRunSyncTest, TellsHowTheToolEnded)
{
    const ProgramRunSync::Ending failed = run({u"exit=3"_s});
    EXPECT_EQ(failed.exit->status, 3);
    EXPECT_FALSE(failed.succeeded());
    EXPECT_FALSE(failed.wasCutShort());
    const ProgramRunSync::Ending killed = run({u"signal=9"_s});
    EXPECT_EQ(killed.exit->signal, SIGKILL);
    EXPECT_TRUE(killed.wasCutShort());
}

TEST_F(ProgramRunSyncTest, EndsAToolThatIsNotWantedAnyMore)
{
    const ProgramRunSync::Ending byChunk =
        ProgramRunSync(test::fakeProgramPath(), {u"out=overwrite? "_s, u"hang"_s}).run([](const QString &) { return false; });
    EXPECT_TRUE(byChunk.wasStopped);
    EXPECT_TRUE(byChunk.wasCutShort());
    const ProgramRunSync::Ending silent = ProgramRunSync(test::fakeProgramPath(), {u"hang"_s})
                                           .run([](const QString &) { return true; }, [] { return true; });
    EXPECT_TRUE(silent.wasStopped);
    EXPECT_EQ(children::runningCount(), 0);
}

TEST_F(ProgramRunSyncTest, NamesAToolThatCannotBeStarted)
{
    const test::ProgramFolder tools;
    const ProgramRunSync::Ending ending =
        ProgramRunSync(tools.path(u"wavpack"_s), {}).run([](const QString &) { return true; });
    EXPECT_FALSE(ending.exit);
    EXPECT_FALSE(ending.succeeded());
    EXPECT_TRUE(ending.startFailure.contains(u"\"wavpack\""_s)) << qPrintable(ending.startFailure);
    EXPECT_TRUE(ending.startFailure.contains(tools.path())) << qPrintable(ending.startFailure);
    EXPECT_TRUE(ending.startFailure.contains(u"package"_s)) << qPrintable(ending.startFailure);
}

} // namespace
} // namespace nurv
