// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/ReservedFile.h"

#include "support/TestFolder.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

struct ReservedFileTest : ::testing::Test {
    test::TestFolder folder;
    const QString path = folder.path(u"out.wav"_s);
};

} // namespace

TEST_F(ReservedFileTest, OneOfTwoGetsTheName)
{
    ReservedFile first;
    ASSERT_TRUE(first.make(path));
    EXPECT_TRUE(first.isMade());
    EXPECT_TRUE(first.isInPlace());
    EXPECT_EQ(QFileInfo(path).size(), 0);
    ReservedFile second;
    EXPECT_FALSE(second.make(path));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_FALSE(second.isMade());
    EXPECT_TRUE(second.remove());
    EXPECT_TRUE(first.isInPlace());
}

TEST_F(ReservedFileTest, IsStillTheSameWhenAProgramHasWrittenIntoIt)
{
    ReservedFile file;
    ASSERT_TRUE(file.make(path));
    folder.write(u"out.wav"_s, "sound");
    EXPECT_TRUE(file.isInPlace());
    EXPECT_TRUE(file.remove());
    EXPECT_EQ(folder.list(), QStringList());
}

TEST_F(ReservedFileTest, LeavesWhatHasTakenItsName)
{
    ReservedFile file;
    ASSERT_TRUE(file.make(path));
    ASSERT_TRUE(QFile::remove(path));
    folder.write(u"out.wav"_s, "mine");
    EXPECT_FALSE(file.isInPlace());
    EXPECT_TRUE(file.remove());
    EXPECT_EQ(folder.read(u"out.wav"_s), "mine");
}

TEST_F(ReservedFileTest, FollowsNoLink)
{
    folder.makeLink(u"out.wav"_s, folder.path(u"nowhere"_s));
    ReservedFile file;
    EXPECT_FALSE(file.make(path));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_FALSE(folder.exists(u"nowhere"_s));
}

TEST_F(ReservedFileTest, TellsWhyThereIsNone)
{
    ReservedFile file;
    EXPECT_FALSE(file.make(folder.path(u"gone/out.wav"_s)));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(file.isInPlace());
    EXPECT_TRUE(file.remove());
}

} // namespace nurv
