// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/LeftoverRemoval.h"

#include "files/FileStatus.h"
#include "support/SystemCallRecorder.h"
#include "support/TestFolder.h"

#include <QFile>

#include <gtest/gtest.h>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class LeftoverRemoval : public ::testing::Test {
protected:
    /// What was found at that path just now.
    [[nodiscard]] Leftover found(Leftover::Plan plan) const
    {
        const std::optional<struct stat> facts = statusOf(path);
        EXPECT_TRUE(facts);
        return {.kind = Leftover::Kind::Aside,
                .plan = plan,
                .path = QFile::encodeName(path),
                .output = QFile::encodeName(output),
                .reason = {},
                .identity = FileIdentity::of(facts.value_or(std::remove_reference_t<decltype(*facts)>{})),
                .outcome = Leftover::Outcome::Open};
    }

    test::TestFolder folder;
    QString path = folder.write(u".nurv-1.kept"_s, "the user's");
    QString output = folder.path(u"a.flac"_s);
};

TEST_F(LeftoverRemoval, LeavesWhatHasChangedSinceItWasFound)
{
    for (const Leftover::Plan plan : {Leftover::Plan::Remove, Leftover::Plan::PutBack}) {
        Leftover leftover = found(plan);
        ASSERT_TRUE(QFile::rename(folder.write(u"another"_s, "somebody else's"), folder.path(u"yet another"_s)));
        ASSERT_TRUE(QFile::remove(path) && QFile::rename(folder.path(u"yet another"_s), path));
        carryOut(leftover);
        EXPECT_EQ(leftover.outcome, Leftover::Outcome::Left);
        EXPECT_EQ(leftover.reason, u"it has changed just now");
        EXPECT_EQ(folder.read(u".nurv-1.kept"_s), "somebody else's");
    }
}

TEST_F(LeftoverRemoval, PutsNothingBackOverAFileThatCameMeanwhile)
{
    for (const bool knowsFlags : {true, false}) {
        Leftover leftover = found(Leftover::Plan::PutBack);
        folder.write(u"a.flac"_s, "somebody else's");
        test::SystemCallRecorder calls;
        if (!knowsFlags)
            calls.forgetRenameFlags();
        carryOut(leftover);
        EXPECT_EQ(leftover.outcome, Leftover::Outcome::Left);
        EXPECT_EQ(folder.read(u"a.flac"_s), "somebody else's");
        EXPECT_EQ(folder.read(u".nurv-1.kept"_s), "the user's");
    }
}

TEST_F(LeftoverRemoval, PutsAFileBackWhereTheFileSystemKnowsNoFlags)
{
    Leftover leftover = found(Leftover::Plan::PutBack);
    test::SystemCallRecorder calls;
    calls.forgetRenameFlags();
    carryOut(leftover);
    EXPECT_EQ(leftover.outcome, Leftover::Outcome::PutBack);
    EXPECT_EQ(folder.list(), QStringList{u"a.flac"_s});
    EXPECT_EQ(folder.read(u"a.flac"_s), "the user's");
}

TEST_F(LeftoverRemoval, HasPutAFileBackWhenItsNameIsOnTheDisk)
{
    Leftover leftover = found(Leftover::Plan::PutBack);
    const test::SystemCallRecorder calls;
    carryOut(leftover);
    EXPECT_EQ(leftover.outcome, Leftover::Outcome::PutBack);
    const qsizetype named = calls.indexOf(u"rename "_s + path);
    ASSERT_GE(named, 0);
    EXPECT_TRUE(calls.calls().mid(named).contains(u"fsync "_s + folder.path()))
        << qPrintable(calls.calls().join(u'\n'));
}

TEST_F(LeftoverRemoval, TellsThatTheNameMayNotBeOnTheDisk)
{
    Leftover leftover = found(Leftover::Plan::PutBack);
    test::SystemCallRecorder calls;
    calls.fail(u"fsync "_s + folder.path(), EIO);
    carryOut(leftover);
    EXPECT_EQ(leftover.outcome, Leftover::Outcome::Left) << "its journal stays";
    EXPECT_EQ(leftover.reason, u"Input/output error");
}

} // namespace
} // namespace nurv
