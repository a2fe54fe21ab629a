// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FileDescriptor.h"
#include "journal/JournalFixture.h"
#include "journal/RunningPrograms.h"
#include "process/ChildProcess.h"
#include "process/ProcessEnvironment.h"
#include "process/ProcessMark.h"
#include "support/ProgramFolder.h"
#include "support/WaitUntil.h"

#include <gmock/gmock.h>

#include <memory>

#include <fcntl.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

namespace nurv {

namespace {

const QString kStage = u"Nurv-00000042-AbCd1234.wav"_s;
const QString kPart = u".nurv-abcdef012345.part"_s;
const QString kFolder = u".nurv-shntool-AbCd12"_s;

class TemporaryFilesTest : public test::JournalTest {
protected:
    TemporaryFilesTest() { folder.write(u"a.wav"_s, "sound"); }
    /// Begins a.flac, does the steps and is killed.
    void killAfter(const QStringList &steps) const
    {
        test::runAndKill(QStringList{two("plan", u"a.flac"_s, u"a.wav"_s), u"begin"_s, step("begun", u"a.flac"_s)}
                         + steps);
    }
};

} // namespace

TEST_F(TemporaryFilesTest, WhatWasNotedGoes)
{
    test::runAndKill({step("temporary", kStage), write(kStage, u"x"_s),
                      step("temporary", u"Nurv-00000042-other123.wav"_s),
                      step("gone", u"Nurv-00000042-other123.wav"_s)});
    folder.write(u"Nurv-00000042-other123.wav"_s, "of somebody else");
    EXPECT_THAT(found(), ElementsAre(u"remove "_s + kStage));
    EXPECT_THAT(cleaned(), ElementsAre(u"removed "_s + kStage));
    EXPECT_EQ(folder.list(), (QStringList{u"Nurv-00000042-other123.wav"_s, u"a.wav"_s}));
    EXPECT_THAT(shelf.journals(), IsEmpty());
}

TEST_F(TemporaryFilesTest, AProcessThatEndsInOrderLeavesNoJournalOfThem)
{
    test::runToTheEnd({step("temporary", kStage), step("gone", kStage)});
    EXPECT_THAT(shelf.journals(), IsEmpty());
}

TEST_F(TemporaryFilesTest, WhatIsLeftAtAnOrderlyEndGoesToo)
{
    test::runToTheEnd({step("temporary", kStage), write(kStage, u"x"_s)});
    EXPECT_THAT(cleaned(), ElementsAre(u"removed "_s + kStage));
}

TEST_F(TemporaryFilesTest, AnotherNameIsNeverTakenForOne)
{
    folder.write(u"precious.wav"_s, "x");
    test::runAndKill({step("temporary", u"precious.wav"_s), write(u"precious.wav"_s, u"changed"_s),
                      step("temporary", u".nurv-123456789012.kept"_s), write(u".nurv-123456789012.kept"_s, u"x"_s)});
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_EQ(folder.list(), (QStringList{u".nurv-123456789012.kept"_s, u"a.wav"_s, u"precious.wav"_s}));
}

TEST_F(TemporaryFilesTest, ALinkUnderTheNameStays)
{
    folder.write(u"precious.wav"_s, "x");
    test::runAndKill({step("temporary", kStage)});
    folder.makeLink(kStage, folder.path(u"precious.wav"_s));
    EXPECT_EQ(reason(), u"it is not what was noted"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left "_s + kStage));
    EXPECT_EQ(folder.read(u"precious.wav"_s), "x");
}

TEST_F(TemporaryFilesTest, WhatAProgramHasOpenWaits)
{
    test::runAndKill({step("temporary", kStage), write(kStage, u"x"_s)});
    {
        const FileDescriptor reading(::open(QFile::encodeName(folder.path(kStage)).constData(), O_RDONLY | O_CLOEXEC));
        EXPECT_THAT(cleaned(), ElementsAre(u"left "_s + kStage));
    }
    EXPECT_THAT(cleaned(), ElementsAre(u"removed "_s + kStage));
}

TEST_F(TemporaryFilesTest, WhatBundledProgramsWereMakingGoes)
{
    killAfter(
        {write(kPart, u"x"_s), write(u"a.flac.metadata_edit"_s, u"x"_s), write(u"a.flac.tmp,fl-ac+en'c"_s, u"x"_s),
         write(u"a-temp-57809.flac"_s, u"x"_s)});
    folder.write(kFolder + u"/a.flac"_s, "x");
    EXPECT_THAT(cleaned(), UnorderedElementsAre(u"removed "_s + kPart, u"removed "_s + kFolder,
                                                u"removed a.flac.metadata_edit"_s, u"removed a.flac.tmp,fl-ac+en'c"_s,
                                                u"removed a-temp-57809.flac"_s));
    EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
    EXPECT_FALSE(folder.exists(kFolder));
}

TEST_F(TemporaryFilesTest, WhatWasKilledBeforeItsNoteGoes)
{
    killAfter({write(kStage, u""_s), write(u"Nurv-00000042-other123.wav"_s, u"x"_s)});
    EXPECT_THAT(cleaned(), ElementsAre(u"removed "_s + kStage)) << "what is in use is never empty for long";
}

TEST_F(TemporaryFilesTest, WhatWasKilledOnTheWayToAnOutputGoes)
{
    test::runAndKill({two("plan", u"a.flac"_s, u"a.wav"_s), u"begin"_s, write(kStage, u""_s)});
    EXPECT_THAT(cleaned(), ElementsAre(u"removed "_s + kStage));
}

TEST_F(TemporaryFilesTest, WhatIsOlderThanTheBatchStays)
{
    folder.write(kPart, "x");
    folder.write(u"a.flac.metadata_edit"_s, "x");
    folder.write(kFolder + u"/a.flac"_s, "x");
    killAfter({});
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_THAT(cleaned(), IsEmpty());
    EXPECT_EQ(folder.list().size(), 4);
}

TEST_F(TemporaryFilesTest, WhatLooksAlikeStays)
{
    killAfter({write(u".nurv-abcdef012345.part.flac"_s, u"x"_s), write(u"b.flac.metadata_edit"_s, u"x"_s),
               write(u"song.part"_s, u"x"_s), write(u"a-temp-.flac"_s, u"x"_s), write(u"a-temp-5x.flac"_s, u"x"_s),
               write(u"b-temp-5.flac"_s, u"x"_s), write(u"a-temp-5.wav"_s, u"x"_s), write(kStage, u"x"_s)});
    EXPECT_THAT(found(), IsEmpty()) << "the last one nobody has noted, and its process may have another journal";
}

TEST_F(TemporaryFilesTest, APartThatIsOpenWaits)
{
    killAfter({write(kPart, u"x"_s)});
    const FileDescriptor open(::open(QFile::encodeName(folder.path(kPart)).constData(), O_WRONLY | O_CLOEXEC));
    EXPECT_THAT(cleaned(), ElementsAre(u"left "_s + kPart));
    EXPECT_TRUE(folder.exists(kPart));
}

TEST_F(TemporaryFilesTest, AFolderInWhichAProgramWorksWaits)
{
    killAfter({});
    folder.write(kFolder + u"/a.flac"_s, "x");
    {
        const FileDescriptor open(
            ::open(QFile::encodeName(folder.path(kFolder + u"/a.flac"_s)).constData(), O_WRONLY | O_CLOEXEC));
        EXPECT_THAT(cleaned(), ElementsAre(u"left "_s + kFolder));
    }
    folder.makeFolder(kFolder + u"/inner"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left "_s + kFolder)) << "what is in it nobody knows";
    EXPECT_TRUE(folder.exists(kFolder + u"/inner"_s));
}

TEST_F(TemporaryFilesTest, WhileAnotherProcessHasAProgramInTheFolderWhatIsFreshWaits)
{
    killAfter({write(kPart, u"x"_s)});
    auto child = std::make_unique<ChildProcess>();
    ASSERT_FALSE(child->start({.launchPath = test::fakeProgramPath(),
                               .arguments = {u"hang"_s},
                               .environment = processEnvironment(),
                               .workingDirectory = folder.path()}));
    EXPECT_TRUE(test::waitUntil([] { return !RunningPrograms::now().startedBy(processMark()).isEmpty(); }));
    EXPECT_THAT(cleaned(), ElementsAre(u"left "_s + kPart));
    child.reset();
    EXPECT_THAT(cleaned(), ElementsAre(u"removed "_s + kPart));
}

} // namespace nurv
