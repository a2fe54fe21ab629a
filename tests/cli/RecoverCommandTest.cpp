// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/KilledProcess.h"
#include "NurvProgram.h"
#include "PseudoTerminal.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QJsonArray>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;
using ::testing::IsEmpty;

namespace {

/// A run that was killed when "a.flac" was complete, "b.flac" half made, and the user's
/// "c.flac" moved aside; "d.wav" had its turn yet to come.
class RecoverCommand : public ::testing::Test {
protected:
    RecoverCommand()
    {
        for (const QString &name : {u"a.wav"_s, u"b.wav"_s, u"c.wav"_s, u"d.wav"_s})
            writeWav(folder.path(name), {.seconds = 0.1});
        folder.write(u"c.flac"_s, "precious");
        QStringList steps;
        for (const QString &name : {u"a"_s, u"b"_s, u"c"_s, u"d"_s})
            steps.append(u"plan=%1.flac|%1.wav"_s.arg(folder.path(name)));
        steps += QStringList{u"begin"_s,
                             u"begun="_s + folder.path(u"a.flac"_s),
                             u"write=%1|whole"_s.arg(folder.path(u"a.flac"_s)),
                             u"ended="_s + folder.path(u"a.flac"_s),
                             u"begun="_s + folder.path(u"b.flac"_s),
                             u"write=%1|half"_s.arg(folder.path(u"b.flac"_s)),
                             u"aside=%1|%2"_s.arg(folder.path(u"c.flac"_s), folder.path(kAside)),
                             u"rename=%1|%2"_s.arg(folder.path(u"c.flac"_s), folder.path(kAside))};
        runAndKill(steps);
    }
    [[nodiscard]] QByteArray path(const QString &name) const { return folder.path(name).toUtf8(); }
    [[nodiscard]] bool isUntouched() const
    {
        return folder.read(u"b.flac"_s) == "half" && folder.exists(kAside) && !folder.exists(u"c.flac"_s);
    }
    void expectCleanedUp() const
    {
        EXPECT_EQ(folder.list(),
                  (QStringList{u"a.flac"_s, u"a.wav"_s, u"b.wav"_s, u"c.flac"_s, u"c.wav"_s, u"d.wav"_s}));
        EXPECT_EQ(folder.read(u"a.flac"_s), "whole");
        EXPECT_EQ(folder.read(u"c.flac"_s), "precious");
        EXPECT_THAT(shelf.journals(), IsEmpty());
    }
    [[nodiscard]] QByteArray list() const
    {
        return "Half made:\n  " + path(u"b.flac"_s) + "\nMoved aside, and to go back:\n  " + path(kAside) + ", of "
               + path(u"c.flac"_s) + "\n";
    }
    [[nodiscard]] QByteArray sources() const
    {
        return "These sources were not finished:\n  " + path(u"b.wav"_s) + "\n  " + path(u"c.wav"_s) + "\n  "
               + path(u"d.wav"_s) + "\n";
    }

    const QString kAside = u".nurv-0123456789ab.kept"_s;
    JournalShelf shelf;
    TestFolder folder;
};

const QByteArray kQuestion = "Shall nurv remove 1 file (4 bytes) and put 1 file back?";

} // namespace

TEST(RecoverCommandAlone, WithNothingLeftBehindThereIsNothingToDo)
{
    const ProgramResult result = runNurv({u"recover"_s});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output, "Nothing was left behind.\n");
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(runNurv({u"recover"_s, u"--quiet"_s, u"--yes"_s}).output, "");
}

TEST_F(RecoverCommand, RemovesPutsBackAndNamesTheSources)
{
    const ProgramResult result = runNurv({u"recover"_s, u"--yes"_s});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output, list() + "1 file removed, 1 file put back.\n" + sources());
    EXPECT_EQ(result.errors, "");
    expectCleanedUp();
    EXPECT_EQ(runNurv({u"recover"_s}).output, "Nothing was left behind.\n");
}

TEST_F(RecoverCommand, ADryRunOnlyLists)
{
    const ProgramResult result = runNurv({u"recover"_s, u"--dry-run"_s, u"--yes"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.output, list() + sources());
    EXPECT_TRUE(isUntouched());
    EXPECT_EQ(runNurv({u"recover"_s, u"--dry-run"_s}).output, result.output);
}

TEST_F(RecoverCommand, WithoutATerminalNothingIsDoneUnasked)
{
    const ProgramResult result = runNurv({u"recover"_s});
    EXPECT_EQ(result.exitStatus, 2);
    EXPECT_EQ(result.errors, "nurv: " + kQuestion
                                 + " Answered \"No\", since there is no terminal to ask on; --yes answers \"Yes\".\n");
    EXPECT_TRUE(isUntouched());
    EXPECT_EQ(runNurv({u"recover"_s, u"--no"_s}).exitStatus, 1);
    EXPECT_TRUE(isUntouched());
}

TEST_F(RecoverCommand, OnATerminalEnterAloneChangesNothing)
{
    {
        PseudoTerminal terminal(200, 24, nurvPath(), {u"recover"_s});
        ASSERT_TRUE(terminal.waitFor(kQuestion + " [Yes/No, default No] ")) << terminal.received().constData();
        terminal.type("\n");
        EXPECT_EQ(terminal.finish(), 1);
        EXPECT_TRUE(isUntouched());
    }
    {
        PseudoTerminal terminal(200, 24, nurvPath(), {u"recover"_s});
        ASSERT_TRUE(terminal.waitFor("default No] "));
        terminal.type("\x03");
        EXPECT_EQ(terminal.finish(), 130);
        EXPECT_TRUE(isUntouched());
    }
    PseudoTerminal terminal(200, 24, nurvPath(), {u"recover"_s});
    ASSERT_TRUE(terminal.waitFor("default No] "));
    terminal.type("y\n");
    EXPECT_EQ(terminal.finish(), 0);
    expectCleanedUp();
}

TEST_F(RecoverCommand, AQuestionWithoutAListNamesTheFiles)
{
    PseudoTerminal terminal(500, 24, nurvPath(), {u"recover"_s, u"--quiet"_s});
    ASSERT_TRUE(terminal.waitFor(kQuestion + ' ' + path(u"b.flac"_s) + ", " + path(kAside)))
        << terminal.received().constData();
    terminal.type("y\n");
    EXPECT_EQ(terminal.finish(), 0);
    expectCleanedUp();
}

TEST_F(RecoverCommand, GivesOneJsonObjectPerFileAndOneForTheWhole)
{
    const ProgramResult result = runNurv({u"recover"_s, u"--yes"_s, u"--json"_s});
    EXPECT_EQ(result.exitStatus, 0);
    const QList<QJsonObject> objects = jsonLines(result.output);
    ASSERT_EQ(objects.size(), 3);
    EXPECT_EQ(objects[0], (QJsonObject{{u"type"_s, u"leftover"_s},
                                       {u"kind"_s, u"output"_s},
                                       {u"path"_s, folder.path(u"b.flac"_s)},
                                       {u"state"_s, u"removed"_s}}));
    EXPECT_EQ(objects[1], (QJsonObject{{u"type"_s, u"leftover"_s},
                                       {u"kind"_s, u"aside"_s},
                                       {u"path"_s, folder.path(kAside)},
                                       {u"output"_s, folder.path(u"c.flac"_s)},
                                       {u"state"_s, u"put back"_s}}));
    EXPECT_EQ(objects[2][u"type"_s], u"recover"_s);
    EXPECT_EQ(objects[2][u"exitStatus"_s], 0);
    EXPECT_EQ(objects[2][u"sources"_s].toArray().size(), 3);
    expectCleanedUp();
}

TEST_F(RecoverCommand, WhatMayBeCompleteIsNamedAndEndsWithStatus1)
{
    shelf.pretendAnotherBoot();
    writeWav(folder.path(u"b.wav"_s));
    writeFlac(folder.path(u"b.flac"_s));
    const QByteArray finished = folder.read(u"b.flac"_s);
    const ProgramResult result = runNurv({u"recover"_s, u"--yes"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.output.contains("Not touched, for you to look at:\n  " + path(u"b.flac"_s)))
        << result.output.constData();
    EXPECT_EQ(folder.read(u"b.flac"_s), finished);
    EXPECT_EQ(folder.read(u"c.flac"_s), "precious");
    EXPECT_THAT(shelf.journals(), IsEmpty());
}

TEST_F(RecoverCommand, AnUnusableJournalIsNamedAndEndsWithStatus1)
{
    EXPECT_EQ(runNurv({u"recover"_s, u"--yes"_s}).exitStatus, 0);
    const QString name = u"0123456789abcdef0123456789abcdef.journal"_s;
    shelf.write(name, "garbage");
    for (int i = 0; i < 2; ++i) {
        const ProgramResult result = runNurv({u"recover"_s, u"--yes"_s});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_EQ(result.output,
                  "Journals that cannot be used:\n  " + shelf.path(name).toUtf8() + ": it is no journal\n");
    }
}

TEST_F(RecoverCommand, TheNextBatchSaysOnceWhatIsThereAndGoesOn)
{
    folder.makeFolder(u"out"_s);
    const ProgramResult result =
        runNurv({u"encode"_s, u"--output-dir"_s, folder.path(u"out"_s), folder.path(u"d.wav"_s)});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    const QByteArray note = "nurv: an earlier run left 2 unfinished files (b.flac, .nurv-0123456789ab.kept); \"nurv "
                            "recover\" clears that up\n";
    EXPECT_TRUE(result.errors.startsWith(note)) << result.errors.constData();
    EXPECT_EQ(result.errors.count("nurv recover"), 1);
    EXPECT_TRUE(isUntouched());
    EXPECT_TRUE(sameSound(folder.path(u"d.wav"_s), folder.path(u"out/d.flac"_s)));

    EXPECT_EQ(runNurv({u"recover"_s, u"--yes"_s}).exitStatus, 0);
    const ProgramResult quiet =
        runNurv({u"decode"_s, u"--output-dir"_s, folder.path(u"out"_s), u"--quiet"_s, folder.path(u"out/d.flac"_s)});
    EXPECT_FALSE(quiet.errors.contains("earlier run")) << quiet.errors.constData();
}
