// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/JournalFixture.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace nurv {

namespace {

/// "a.flac" is a user's file, which is made anew from "a.wav" and waits aside meanwhile.
class AsideTest : public test::JournalTest {
protected:
    AsideTest()
    {
        folder.write(u"a.wav"_s, "sound");
        folder.write(kOutput, "precious");
    }
    /// Moves the user's file aside, does the steps and is killed.
    void killAfter(const QStringList &steps) const
    {
        test::runAndKill(QStringList{two("plan", kOutput, u"a.wav"_s), u"begin"_s, two("aside", kOutput, kAside),
                                     two("rename", kOutput, kAside)}
                         + steps);
    }

    const QString kOutput = u"a.flac"_s;
    const QString kAside = u".nurv-0123456789ab.kept"_s;
};

} // namespace

TEST_F(AsideTest, GoesBackWhenNothingIsInItsPlace)
{
    killAfter({});
    EXPECT_THAT(found(), ElementsAre(u"put-back .nurv-0123456789ab.kept"_s));
    EXPECT_THAT(sources(), ElementsAre(u"a.wav"_s));
    EXPECT_THAT(cleaned(), ElementsAre(u"back .nurv-0123456789ab.kept"_s));
    EXPECT_EQ(folder.list(), (QStringList{kOutput, u"a.wav"_s}));
    EXPECT_EQ(folder.read(kOutput), "precious");
    EXPECT_THAT(shelf.journals(), IsEmpty());
}

TEST_F(AsideTest, GoesBackInThePlaceOfAnUnfinishedOutput)
{
    killAfter({step("begun", kOutput), write(kOutput, u"half"_s)});
    EXPECT_THAT(cleaned(), ElementsAre(u"removed a.flac"_s, u"back .nurv-0123456789ab.kept"_s));
    EXPECT_EQ(folder.list(), (QStringList{kOutput, u"a.wav"_s}));
    EXPECT_EQ(folder.read(kOutput), "precious");
}

TEST_F(AsideTest, StaysBesideAFinishedOutputAndIsNamed)
{
    killAfter({step("begun", kOutput), write(kOutput, u"whole"_s), step("ended", kOutput)});
    EXPECT_EQ(reason(), u"another file stands in its place: it was finished"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left .nurv-0123456789ab.kept"_s));
    EXPECT_EQ(folder.read(kOutput), "whole");
    EXPECT_EQ(folder.read(kAside), "precious");
}

TEST_F(AsideTest, StaysBesideAnOutputOfWhichNothingIsKnown)
{
    killAfter({step("begun", kOutput), write(kOutput, u"whole or half"_s)});
    shelf.pretendAnotherBoot();
    EXPECT_EQ(reason(), u"another file stands in its place: it may be complete"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left .nurv-0123456789ab.kept"_s));
    EXPECT_EQ(folder.read(kOutput), "whole or half");
    EXPECT_EQ(folder.read(kAside), "precious");
}

TEST_F(AsideTest, GoesBackAfterAnotherStartOfTheSystem)
{
    killAfter({step("begun", kOutput)});
    shelf.pretendAnotherBoot();
    EXPECT_THAT(cleaned(), ElementsAre(u"back .nurv-0123456789ab.kept"_s));
    EXPECT_EQ(folder.read(kOutput), "precious");
}

TEST_F(AsideTest, GoesBackAlsoWhenItHasChangedSinceTheBatchBegan)
{
    test::runAndKill({two("plan", kOutput, u"a.wav"_s), u"begin"_s, write(kOutput, u"precious, and better"_s),
                      two("aside", kOutput, kAside), two("rename", kOutput, kAside), step("begun", kOutput),
                      write(kOutput, u"half"_s)});
    EXPECT_THAT(cleaned(), ElementsAre(u"removed a.flac"_s, u"back .nurv-0123456789ab.kept"_s));
    EXPECT_EQ(folder.read(kOutput), "precious, and better");
}

TEST_F(AsideTest, IsNotTakenForItWhenItIsAnotherFile)
{
    killAfter({});
    folder.write(kAside, "something else");
    EXPECT_EQ(reason(), u"it is no longer what was moved there"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left .nurv-0123456789ab.kept"_s));
    EXPECT_FALSE(folder.exists(kOutput));
    EXPECT_EQ(folder.read(kAside), "something else");
}

TEST_F(AsideTest, ANoteAloneMovesNothing)
{
    test::runAndKill({two("plan", kOutput, u"a.wav"_s), u"begin"_s, two("aside", kOutput, kAside)});
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_THAT(sources(), ElementsAre(u"a.wav"_s));
    EXPECT_THAT(cleaned(), IsEmpty());
    EXPECT_EQ(folder.read(kOutput), "precious");
}

TEST_F(AsideTest, WhenTheUsersFileHasGoneTheOutputIsTakenForWhole)
{
    killAfter({step("begun", kOutput), write(kOutput, u"whole"_s), step("back", kOutput)});
    folder.remove(kAside);
    EXPECT_EQ(reason(), u"it may be complete"_s);
    EXPECT_THAT(cleaned(), ElementsAre(u"left a.flac"_s));
    EXPECT_EQ(folder.read(kOutput), "whole");
}

TEST_F(AsideTest, AUsersFileThatIsBackStays)
{
    killAfter({step("begun", kOutput), two("rename", kAside, kOutput)});
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_THAT(cleaned(), IsEmpty());
    EXPECT_EQ(folder.read(kOutput), "precious");
}

} // namespace nurv
