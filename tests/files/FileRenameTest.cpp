// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FileRename.h"

#include "support/SystemCallRecorder.h"
#include "support/TestFolder.h"

#include <QFile>

#include <gtest/gtest.h>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class FileRenameTest : public ::testing::Test {
protected:
    [[nodiscard]] QByteArray path(const QString &name) const { return QFile::encodeName(folder.path(name)); }

    test::TestFolder folder;
};

TEST_F(FileRenameTest, TakesANameThatNothingHas)
{
    folder.write(u"a"_s, "sound");
    ASSERT_TRUE(renameToFreeName(path(u"a"_s), path(u"b"_s)));
    EXPECT_EQ(folder.list(), QStringList{u"b"_s});
    EXPECT_EQ(folder.read(u"b"_s), "sound");
}

TEST_F(FileRenameTest, LeavesBothFilesWhenTheNameIsTaken)
{
    folder.write(u"a"_s, "new");
    folder.write(u"b"_s, "old");
    EXPECT_FALSE(renameToFreeName(path(u"a"_s), path(u"b"_s)));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(folder.read(u"a"_s), "new");
    EXPECT_EQ(folder.read(u"b"_s), "old");
}

TEST_F(FileRenameTest, TakesALinkThatLeadsNowhereForAName)
{
    folder.write(u"a"_s, "new");
    folder.makeLink(u"b"_s, folder.path(u"nowhere"_s));
    EXPECT_FALSE(renameToFreeName(path(u"a"_s), path(u"b"_s)));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(folder.read(u"a"_s), "new");
}

TEST_F(FileRenameTest, TellsThatThereIsNothingToRename)
{
    EXPECT_FALSE(renameToFreeName(path(u"missing"_s), path(u"b"_s)));
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(FileRenameTest, LooksForTheNameWhereTheFileSystemCannotTell)
{
    folder.write(u"a"_s, "new");
    folder.write(u"b"_s, "old");
    test::SystemCallRecorder calls;
    calls.forgetRenameFlags();
    EXPECT_FALSE(renameToFreeName(path(u"a"_s), path(u"b"_s)));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(folder.read(u"b"_s), "old");
    EXPECT_TRUE(renameToFreeName(path(u"a"_s), path(u"c"_s)));
    EXPECT_EQ(folder.list(), (QStringList{u"b"_s, u"c"_s}));
}

} // namespace
} // namespace nurv
