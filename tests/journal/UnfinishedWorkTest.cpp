// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/UnfinishedWork.h"

#include "files/FileDescriptor.h"
#include "journal/JournalFixture.h"
#include "journal/OutputJournal.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/WaitUntil.h"

#include <QDateTime>

#include <QDir>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

namespace nurv {

namespace {

class UnfinishedWorkTest : public test::JournalTest {
protected:
    UnfinishedWorkTest()
    {
        folder.write(u"a.wav"_s, "sound of a");
        folder.write(u"b.wav"_s, "sound of b");
        folder.write(u"c.wav"_s, "sound of c");
    }
    [[nodiscard]] QStringList planned() const
    {
        return {two("plan", u"a.flac"_s, u"a.wav"_s), two("plan", u"b.flac"_s, u"b.wav"_s),
                two("plan", u"c.flac"_s, u"c.wav"_s), u"begin"_s};
    }
    /// Kills a process in the middle of the making of a.flac.
    void killAtA() const { test::runAndKill(planned() << step("begun", u"a.flac"_s) << write(u"a.flac"_s, u"half"_s)); }
    [[nodiscard]] bool hasSources() const
    {
        return folder.read(u"a.wav"_s) == "sound of a" && folder.read(u"b.wav"_s) == "sound of b"
               && folder.read(u"c.wav"_s) == "sound of c";
    }
};

} // namespace

TEST_F(UnfinishedWorkTest, RemovesWhatWasBegunAndNotEndedAndNamesTheSources)
{
    test::runAndKill(planned() << step("begun", u"a.flac"_s) << write(u"a.flac"_s, u"whole"_s)
                               << step("ended", u"a.flac"_s) << step("begun", u"b.flac"_s)
                               << write(u"b.flac"_s, u"half"_s));
    EXPECT_THAT(found(), ElementsAre(u"remove b.flac"_s));
    EXPECT_THAT(sources(), ElementsAre(u"b.wav"_s, u"c.wav"_s));
    EXPECT_TRUE(folder.exists(u"b.flac"_s)) << "looking changes nothing";

    const UnfinishedWork done = UnfinishedWork::find().cleanUp();
    EXPECT_THAT(told(done), ElementsAre(u"removed b.flac"_s));
    EXPECT_THAT(done.sources(), ElementsAre(folder.path(u"b.wav"_s), folder.path(u"c.wav"_s)));
    EXPECT_EQ(folder.list(), (QStringList{u"a.flac"_s, u"a.wav"_s, u"b.wav"_s, u"c.wav"_s}));
    EXPECT_EQ(folder.read(u"a.flac"_s), "whole");
    EXPECT_TRUE(hasSources());
    EXPECT_THAT(shelf.journals(), IsEmpty());
}

TEST_F(UnfinishedWorkTest, AProcessThatEndsInOrderLeavesNothing)
{
    test::runToTheEnd(planned() << step("begun", u"a.flac"_s) << write(u"a.flac"_s, u"whole"_s)
                                << step("ended", u"a.flac"_s) << u"finish"_s);
    EXPECT_THAT(shelf.journals(), IsEmpty());
    EXPECT_TRUE(UnfinishedWork::find().isEmpty());
}

TEST_F(UnfinishedWorkTest, AJournalWithoutAnythingOpenGoesUnasked)
{
    QStringList steps = planned();
    for (const QString &name : {u"a.flac"_s, u"b.flac"_s, u"c.flac"_s})
        steps << step("begun", name) << write(name, u"whole"_s) << step("ended", name);
    test::runAndKill(steps);
    EXPECT_EQ(shelf.journals().size(), 1);
    EXPECT_TRUE(UnfinishedWork::find().isEmpty());
    EXPECT_THAT(shelf.journals(), IsEmpty());
    EXPECT_EQ(folder.read(u"a.flac"_s), "whole");
}

TEST_F(UnfinishedWorkTest, WhatSomebodyElseHasPutThereIsNotTold)
{
    test::runAndKill(planned() << step("begun", u"a.flac"_s));
    folder.write(u"b.flac"_s, "of another program");
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_THAT(sources(), ElementsAre(u"a.wav"_s, u"c.wav"_s));
    EXPECT_THAT(cleaned(), IsEmpty());
    EXPECT_EQ(folder.read(u"b.flac"_s), "of another program");
}

TEST_F(UnfinishedWorkTest, AFileThatStoodThereBeforeStays)
{
    folder.write(u"a.flac"_s, "precious");
    test::runAndKill(planned() << step("begun", u"a.flac"_s));
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_THAT(cleaned(), IsEmpty());
    EXPECT_EQ(folder.read(u"a.flac"_s), "precious");
}

TEST_F(UnfinishedWorkTest, AFileThatWasReplacedInItsPlaceIsOnlyNamed)
{
    folder.write(u"a.flac"_s, "precious");
    test::runAndKill(planned() << step("begun", u"a.flac"_s) << write(u"a.flac"_s, u"half of another"_s));
    EXPECT_EQ(reason(), u"something stood there before, which it may have replaced"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left a.flac"_s));
    EXPECT_EQ(folder.read(u"a.flac"_s), "half of another");
    EXPECT_THAT(shelf.journals(), IsEmpty()) << "told once";
}

TEST_F(UnfinishedWorkTest, NeitherALinkNorAFolderIsRemoved)
{
    folder.write(u"precious.flac"_s, "precious");
    killAtA();
    folder.remove(u"a.flac"_s);
    folder.makeLink(u"a.flac"_s, folder.path(u"precious.flac"_s));
    EXPECT_EQ(reason(), u"it is no regular file"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left a.flac"_s));
    EXPECT_EQ(folder.read(u"precious.flac"_s), "precious");
    EXPECT_TRUE(folder.exists(u"a.flac"_s));

    folder.remove(u"a.flac"_s);
    killAtA();
    folder.remove(u"a.flac"_s);
    folder.write(u"a.flac/inside.flac"_s, "precious");
    EXPECT_THAT(cleaned(), ElementsAre(u"left a.flac"_s));
    EXPECT_EQ(folder.read(u"a.flac/inside.flac"_s), "precious");
}

TEST_F(UnfinishedWorkTest, WithoutItsSourceAnOutputStays)
{
    killAtA();
    folder.remove(u"a.wav"_s);
    EXPECT_EQ(reason(), u"its source is not there"_s);
    EXPECT_THAT(sources(), ElementsAre(u"b.wav"_s, u"c.wav"_s));
    EXPECT_THAT(cleaned(), ElementsAre(u"left a.flac"_s));
    EXPECT_EQ(folder.read(u"a.flac"_s), "half");
}

TEST_F(UnfinishedWorkTest, WhenItsSourceHasChangedAnOutputStays)
{
    killAtA();
    folder.write(u"a.wav"_s, "other");
    EXPECT_EQ(reason(), u"its source is not what it was"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left a.flac"_s));
    EXPECT_TRUE(folder.exists(u"a.flac"_s));
}

TEST_F(UnfinishedWorkTest, AnOutputThatIsItsSourceStays)
{
    killAtA();
    folder.remove(u"a.flac"_s);
    ASSERT_EQ(::link(QFile::encodeName(folder.path(u"a.wav"_s)).constData(),
                     QFile::encodeName(folder.path(u"a.flac"_s)).constData()),
              0);
    EXPECT_EQ(reason(), u"it is its source"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left a.flac"_s));
    EXPECT_TRUE(hasSources());
}

TEST_F(UnfinishedWorkTest, WhatWasMadeByHandLaterStays)
{
    killAtA();
    // As if the mark were a minute older than the file.
    const QByteArray begun = QByteArray::number((QDateTime::currentSecsSinceEpoch() - 60) * 1'000'000'000);
    shelf.changeWord("begun", 2, begun);
    shelf.changeWord("nurv-journal", 6, begun);
    EXPECT_EQ(reason(), u"it came to be at another time than the one that was begun"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left a.flac"_s));
    EXPECT_TRUE(folder.exists(u"a.flac"_s));
}

TEST_F(UnfinishedWorkTest, WhatWasMadeByHandAtOnceInANewFolderStays)
{
    const QString output = u"out/a.flac"_s;
    folder.makeFolder(u"out"_s);
    test::runAndKill({two("plan", output, u"a.wav"_s), u"begin"_s, step("begun", output), write(output, u"half"_s)});
    ASSERT_TRUE(QDir(folder.path()).rename(u"out"_s, u"moved"_s));
    folder.write(output, "theirs");
    EXPECT_EQ(reason(), u"its folder may be another one than the one that it was begun in"_s);
    EXPECT_THAT(found(), ElementsAre(u"leave out/a.flac"_s));
    // The same behind a link; and the very folder, which is found again behind one.
    folder.remove(output);
    ASSERT_TRUE(QDir(folder.path()).rmdir(u"out"_s));
    folder.write(u"theirs/a.flac"_s, "theirs");
    ASSERT_TRUE(QFile::link(folder.path(u"theirs"_s), folder.path(u"out"_s)));
    EXPECT_THAT(found(), ElementsAre(u"leave out/a.flac"_s));
    ASSERT_TRUE(QFile::remove(folder.path(u"out"_s)));
    ASSERT_TRUE(QFile::link(folder.path(u"moved"_s), folder.path(u"out"_s)));
    EXPECT_THAT(cleaned(), ElementsAre(u"removed out/a.flac"_s));
    EXPECT_EQ(folder.read(u"theirs/a.flac"_s), "theirs");
    EXPECT_FALSE(folder.exists(u"moved/a.flac"_s));
}

TEST_F(UnfinishedWorkTest, AJournalThatTellsNoFolderIsUnderstood)
{
    killAtA();
    shelf.changeWord("begun", 3, "-");
    EXPECT_THAT(found(), ElementsAre(u"remove a.flac"_s));
}

TEST_F(UnfinishedWorkTest, WhatIsOlderThanItsMarkStays)
{
    killAtA();
    shelf.changeWord("begun", 2, QByteArray::number((QDateTime::currentSecsSinceEpoch() + 60) * 1'000'000'000));
    EXPECT_EQ(reason(), u"it is older than the job that was to make it"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left a.flac"_s));
    EXPECT_TRUE(folder.exists(u"a.flac"_s));
}

TEST_F(UnfinishedWorkTest, AnotherBatchThatMakesTheOutputTakesItOver)
{
    killAtA();
    folder.remove(u"a.flac"_s);
    test::runToTheEnd({two("plan", u"a.flac"_s, u"a.wav"_s), u"begin"_s, step("begun", u"a.flac"_s),
                       write(u"a.flac"_s, u"whole"_s), step("ended", u"a.flac"_s), u"finish"_s});
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_THAT(sources(), ElementsAre(u"b.wav"_s, u"c.wav"_s));
    EXPECT_THAT(cleaned(), IsEmpty());
    EXPECT_EQ(folder.read(u"a.flac"_s), "whole");
}

TEST_F(UnfinishedWorkTest, AnotherBatchThatOnlyPlansTheOutputTakesNothingOver)
{
    killAtA();
    test::runToTheEnd({two("plan", u"a.flac"_s, u"a.wav"_s), u"begin"_s, u"finish"_s});
    EXPECT_THAT(cleaned(), ElementsAre(u"removed a.flac"_s));
}

TEST_F(UnfinishedWorkTest, TheJournalOfAProcessThatLivesIsNotLookedAt)
{
    {
        const test::LivingProcess living(planned() << step("begun", u"a.flac"_s) << write(u"a.flac"_s, u"half"_s));
        EXPECT_EQ(shelf.journals().size(), 1);
        EXPECT_TRUE(UnfinishedWork::find().isEmpty());
        // Nor after its batch has gone with something open.
        const test::LivingProcess other({two("plan", u"b.flac"_s, u"b.wav"_s), u"begin"_s, step("begun", u"b.flac"_s),
                                         write(u"b.flac"_s, u"half"_s), u"finish"_s});
        EXPECT_EQ(shelf.journals().size(), 2);
        EXPECT_TRUE(UnfinishedWork::find().isEmpty());
    }
    EXPECT_THAT(found(), UnorderedElementsAre(u"remove a.flac"_s, u"remove b.flac"_s));
}

TEST_F(UnfinishedWorkTest, OfTwoProcessesThatWereKilledEachJournalCounts)
{
    killAtA();
    test::runAndKill(
        {two("plan", u"b.flac"_s, u"b.wav"_s), u"begin"_s, step("begun", u"b.flac"_s), write(u"b.flac"_s, u"half"_s)});
    const UnfinishedWork work = UnfinishedWork::find();
    EXPECT_EQ(work.runs().size(), 2);
    EXPECT_EQ(work.leftoversTo(Leftover::Plan::Remove).size(), 2);
    EXPECT_THAT(work.sources(),
                UnorderedElementsAre(folder.path(u"a.wav"_s), folder.path(u"b.wav"_s), folder.path(u"c.wav"_s)));
    EXPECT_EQ(work.cleanUp().leftoversThatWere(Leftover::Outcome::Removed).size(), 2);
    EXPECT_TRUE(UnfinishedWork::find().isEmpty());
}

TEST_F(UnfinishedWorkTest, WhatAProgramHasOpenForWritingWaits)
{
    killAtA();
    {
        const FileDescriptor writing(
            ::open(QFile::encodeName(folder.path(u"a.flac"_s)).constData(), O_WRONLY | O_CLOEXEC));
        EXPECT_EQ(reason(), u"a program is still at work on it"_s);
        EXPECT_THAT(cleaned(), ElementsAre(u"left a.flac"_s));
        EXPECT_EQ(shelf.journals().size(), 1) << "to be told again";
    }
    const FileDescriptor reading(::open(QFile::encodeName(folder.path(u"a.flac"_s)).constData(), O_RDONLY | O_CLOEXEC));
    EXPECT_THAT(cleaned(), ElementsAre(u"removed a.flac"_s));
}

TEST_F(UnfinishedWorkTest, EndsTheProgramsThatOutlivedTheirProcess)
{
    // It makes its output anew for ever: nothing but its end helps.
    const QString script = u"while :; do echo more >> '%1'; sleep 0.01; done"_s.arg(folder.path(u"a.flac"_s));
    test::runAndKill(planned() << step("begun", u"a.flac"_s) << write(u"a.flac"_s, u"half"_s)
                               << u"start=/bin/sh|-c|"_s + script);
    // It is one of its own only once it runs.
    EXPECT_TRUE(test::waitUntil([] { return UnfinishedWork::find().runningPrograms() >= 1; }));
    EXPECT_TRUE(folder.exists(u"a.flac"_s));
    const UnfinishedWork done = UnfinishedWork::find().cleanUp();
    EXPECT_THAT(told(done), ElementsAre(u"removed a.flac"_s));
    EXPECT_EQ(done.runningPrograms(), 0);
    EXPECT_THAT(shelf.journals(), IsEmpty());
    EXPECT_FALSE(folder.exists(u"a.flac"_s));
}

TEST_F(UnfinishedWorkTest, EndsAProgramThatDoesNotListen)
{
    test::runAndKill(planned() << step("begun", u"a.flac"_s) << write(u"a.flac"_s, u"half"_s)
                               << u"start="_s + test::fakeProgramPath() + u"|ignore-term|hang"_s);
    EXPECT_TRUE(test::waitUntil([] { return UnfinishedWork::find().runningPrograms() == 1; }));
    EXPECT_EQ(UnfinishedWork::find().cleanUp().runningPrograms(), 0);
}

TEST_F(UnfinishedWorkTest, NamesOfAnyLettersSurvive)
{
    const QString name = u"new\nline %41 'quote\" \u00E9 \U0001D11E tab\t"_s;
    folder.write(name + u".wav"_s, "sound");
    test::runAndKill({two("plan", name + u".flac"_s, name + u".wav"_s), u"begin"_s, step("begun", name + u".flac"_s),
                      write(name + u".flac"_s, u"half"_s)});
    EXPECT_THAT(sources(), ElementsAre(name + u".wav"_s));
    EXPECT_THAT(cleaned(), ElementsAre(u"removed "_s + name + u".flac"_s));
    EXPECT_TRUE(folder.exists(name + u".wav"_s));
}

TEST_F(UnfinishedWorkTest, AfterAnotherStartOfTheSystemOutputsWithoutAMarkAreOnlyNamed)
{
    killAtA();
    shelf.pretendAnotherBoot();
    folder.write(u"b.flac"_s, "maybe ours");
    // It may have been begun only: nothing is known of its length.
    EXPECT_THAT(found(), ElementsAre(u"leave a.flac"_s, u"leave b.flac"_s));
    EXPECT_THAT(sources(), ElementsAre(u"c.wav"_s));
    EXPECT_THAT(cleaned(), ElementsAre(u"left a.flac"_s, u"left b.flac"_s));
    EXPECT_EQ(folder.read(u"a.flac"_s), "half");
    EXPECT_EQ(folder.read(u"b.flac"_s), "maybe ours");
    EXPECT_THAT(shelf.journals(), IsEmpty());
}

TEST_F(UnfinishedWorkTest, AfterAnotherStartOfTheSystemWhatIsKnownToBeIncompleteIsRemoved)
{
    // The encoder writes the length at first and the signature at last.
    test::writeFlac(folder.path(u"whole.flac"_s), {.seconds = 0.1});
    QByteArray flac = folder.read(u"whole.flac"_s);
    const QByteArray sealed = flac;
    flac.replace(26, 16, QByteArray(16, '\0'));
    test::runAndKill(planned() << step("begun", u"a.flac"_s) << write(u"a.flac"_s, {}) << step("begun", u"b.flac"_s)
                               << write(u"b.flac"_s, u"x"_s) << step("begun", u"c.flac"_s)
                               << write(u"c.flac"_s, u"x"_s));
    folder.write(u"b.flac"_s, flac);
    folder.write(u"c.flac"_s, sealed);
    shelf.pretendAnotherBoot();
    EXPECT_THAT(cleaned(), ElementsAre(u"removed a.flac"_s, u"removed b.flac"_s, u"left c.flac"_s));
    EXPECT_EQ(folder.read(u"c.flac"_s), sealed);
}

TEST_F(UnfinishedWorkTest, WithALineMissingTheMarksAreNotBelieved)
{
    killAtA();
    const QString journal = shelf.journals().first();
    shelf.write(journal, shelf.read(journal) + "ended 0 12");
    EXPECT_EQ(reason(), u"it may be complete"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left a.flac"_s));
    EXPECT_EQ(folder.read(u"a.flac"_s), "half");
}

TEST_F(UnfinishedWorkTest, WhatCannotBeRemovedIsToldAgain)
{
    killAtA();
    const UnfinishedWork work = UnfinishedWork::find();
    // Another file of the same name between the look and the removal.
    folder.remove(u"a.flac"_s);
    folder.write(u"a.flac"_s, "precious, and from somebody else");
    shelf.changeWord("begun", 2, QByteArray::number((QDateTime::currentSecsSinceEpoch() - 60) * 1'000'000'000));
    EXPECT_THAT(told(work.cleanUp()), ElementsAre(u"left a.flac"_s));
    EXPECT_EQ(folder.read(u"a.flac"_s), "precious, and from somebody else");
}

} // namespace nurv
