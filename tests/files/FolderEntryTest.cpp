// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FolderEntry.h"

#include "files/FileStatus.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

struct FolderEntryTest : ::testing::Test {
    /// Somebody puts a link to a folder of his choice into the place of the one that is open.
    void swapFolders() const
    {
        ASSERT_TRUE(QDir(folder.path()).rename(u"music"_s, u"aside"_s));
        folder.makeLink(u"music"_s, folder.path(u"private"_s));
    }

    const timespec start = FolderEntry::now();
    test::TestFolder folder;
    const QString song = folder.write(u"music/01.wav"_s, "sound");
    const QString secret = folder.write(u"private/01.wav"_s, "secret");
};

bool tellsWhenFilesWereMade(const QString &path)
{
    struct statx facts = {};
    return ::statx(AT_FDCWD, qPrintable(path), 0, STATX_BTIME, &facts) == 0 && (facts.stx_mask & STATX_BTIME) != 0;
}

} // namespace

TEST_F(FolderEntryTest, RemovesInTheFolderThatWasOpened)
{
    const FolderEntry entry(song);
    swapFolders();
    EXPECT_TRUE(entry.remove());
    EXPECT_EQ(folder.list(), (QStringList{u"private/01.wav"_s}));
    EXPECT_FALSE(entry.remove());
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(FolderEntryTest, MovesInTheFolderThatWasOpened)
{
    const FolderEntry entry(song);
    swapFolders();
    EXPECT_TRUE(entry.moveTo(QFile::encodeName(folder.path(u"moved"_s))));
    EXPECT_EQ(folder.read(u"moved"_s), "sound");
    EXPECT_EQ(folder.read(u"private/01.wav"_s), "secret");
}

TEST_F(FolderEntryTest, LooksIntoTheFolderThatWasOpened)
{
    const FolderEntry entry(song);
    const auto before = statusOf(song);
    swapFolders();
    ASSERT_TRUE(before && entry.facts());
    EXPECT_TRUE(isUntouched(*before, *entry.facts()));
}

TEST_F(FolderEntryTest, ChangesThePermissionsOfAFileAndOfNoLink)
{
    EXPECT_TRUE(FolderEntry(song).changeMode(0640, start));
    EXPECT_EQ(statusOf(song)->st_mode & 0777U, 0640U);
    ASSERT_TRUE(FolderEntry(secret).changeMode(0600, start));
    const QString link = folder.makeLink(u"music/link"_s, secret);
    EXPECT_FALSE(FolderEntry(link).changeMode(0644, start));
    EXPECT_EQ(errno, ELOOP);
    EXPECT_FALSE(FolderEntry(folder.path(u"music"_s)).changeMode(0777, start));
    EXPECT_EQ(statusOf(secret)->st_mode & 0777U, 0600U);
}

TEST_F(FolderEntryTest, OpensNoFileThatWasPutInThePlaceOfAnother)
{
    ASSERT_TRUE(FolderEntry(secret).changeMode(0600, start));
    // Later than any file of this test, on file systems with coarse clocks too.
    timespec later = FolderEntry::now();
    ++later.tv_sec;
    ASSERT_TRUE(QFile::remove(song));
    ASSERT_TRUE(QFile::rename(secret, song));
    if (tellsWhenFilesWereMade(song)) {
        EXPECT_FALSE(FolderEntry(song).changeMode(0644, later)) << "it is older than what it stands in for";
        EXPECT_EQ(statusOf(song)->st_mode & 0777U, 0600U);
    }
    EXPECT_TRUE(FolderEntry(song).changeMode(0400, later)) << "nobody gains by that";

    ASSERT_EQ(::link(qPrintable(song), qPrintable(secret)), 0);
    EXPECT_FALSE(FolderEntry(song).changeMode(0644, start)) << "it is somebody's under another name, too";
    EXPECT_EQ(statusOf(secret)->st_mode & 0777U, 0400U);
    ASSERT_EQ(::chmod(qPrintable(song), 0644), 0);
    EXPECT_FALSE(FolderEntry(song).changeMode(0620, start));
    EXPECT_EQ(statusOf(song)->st_mode & 0777U, 0600U) << "others lose what they are to lose";
}

TEST_F(FolderEntryTest, TellsWhenThereIsNoFolder)
{
    const FolderEntry entry(folder.path(u"nowhere/a"_s));
    EXPECT_FALSE(entry.isFolderOpen());
    EXPECT_FALSE(entry.facts());
    EXPECT_FALSE(entry.remove());
}

} // namespace nurv
