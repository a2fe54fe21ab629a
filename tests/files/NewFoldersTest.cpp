// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/NewFolders.h"

#include "support/TestFolder.h"

#include <QFileInfo>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {

TEST(NewFolders, MakesThoseThatAreMissing)
{
    const test::TestFolder folder;
    folder.write(u"show/disc1/01.wav"_s, "sound");
    EXPECT_EQ(makeFoldersBelow(folder.path(), folder.path(u"show/disc1/a b/c"_s)), std::nullopt);
    EXPECT_TRUE(QFileInfo(folder.path(u"show/disc1/a b/c"_s)).isDir());
    EXPECT_EQ(folder.read(u"show/disc1/01.wav"_s), "sound");
    EXPECT_EQ(makeFoldersBelow(folder.path(), folder.path()), std::nullopt);
    EXPECT_EQ(makeFoldersBelow(u"/"_s, folder.path(u"root"_s)), std::nullopt);
    EXPECT_TRUE(QFileInfo(folder.path(u"root"_s)).isDir());
}

TEST(NewFolders, FollowNoLinkBelowTheirRoot)
{
    const test::TestFolder folder;
    const test::TestFolder outside;
    folder.makeFolder(u"out"_s);
    for (const QString &target : {outside.path(), outside.path(u"nothing"_s)}) {
        const QString link = folder.makeLink(u"out/show"_s, target);
        EXPECT_EQ(makeFoldersBelow(folder.path(u"out"_s), folder.path(u"out/show/disc1"_s)),
                  u"its folder %1 is a link"_s.arg(link));
        folder.remove(u"out/show"_s);
    }
    EXPECT_EQ(outside.list(), QStringList());
    EXPECT_FALSE(QFileInfo::exists(outside.path(u"nothing"_s)));
    const QString root = folder.makeLink(u"root"_s, outside.path());
    EXPECT_EQ(makeFoldersBelow(root, root + u"/show"_s), std::nullopt) << "it was named by the user";
    EXPECT_TRUE(QFileInfo(outside.path(u"show"_s)).isDir());
}

TEST(NewFolders, TellWhatIsInTheWay)
{
    const test::TestFolder folder;
    folder.write(u"show"_s, "a file");
    const auto obstacle = makeFoldersBelow(folder.path(), folder.path(u"show/disc1"_s));
    EXPECT_EQ(obstacle, u"its folder %1 cannot be made: Not a directory"_s.arg(folder.path(u"show"_s)));
    EXPECT_TRUE(makeFoldersBelow(folder.path(u"nowhere"_s), folder.path(u"nowhere/a"_s)));
    EXPECT_TRUE(makeFoldersBelow(folder.path(u"sho"_s), folder.path(u"show"_s))) << "a beginning of a name is no folder";
}

} // namespace nurv
