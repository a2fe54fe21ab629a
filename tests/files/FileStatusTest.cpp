// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FileStatus.h"

#include "support/TestFolder.h"

#include <QFile>

#include <gtest/gtest.h>

#include <functional>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

TEST(FileStatus, TellTheSmallestChangeOfAFile)
{
    const test::TestFolder folder;
    const std::optional<struct stat> before = statusOf(folder.write(u"a"_s, "sound"));
    ASSERT_TRUE(before);
    EXPECT_TRUE(isUntouched(*before, *before));
    const std::function<void(struct stat &)> changes[] = {
        [](struct stat &facts) { ++facts.st_dev; },          [](struct stat &facts) { ++facts.st_ino; },
        [](struct stat &facts) { ++facts.st_size; },         [](struct stat &facts) { ++facts.st_mtim.tv_sec; },
        [](struct stat &facts) { ++facts.st_mtim.tv_nsec; }, [](struct stat &facts) { ++facts.st_ctim.tv_sec; },
        [](struct stat &facts) { ++facts.st_ctim.tv_nsec; },
    };
    for (const auto &change : changes) {
        struct stat now = *before;
        change(now);
        EXPECT_FALSE(isUntouched(*before, now)) << "change " << &change - changes;
    }
}

TEST(FileStatus, TellThatAFileWasWrittenWhoseTimeWasPutBack)
{
    const test::TestFolder folder;
    const QString path = folder.write(u"a"_s, "sound");
    const timespec yesterday{.tv_sec = 1'600'000'000, .tv_nsec = 0};
    const timespec times[] = {yesterday, yesterday};
    const auto putBack = [&] { return ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0); };
    ASSERT_EQ(putBack(), 0);
    const std::optional<struct stat> before = statusOf(path);
    // The clock of the files goes in steps.
    std::optional<struct stat> now = before;
    while (now && now->st_ctim.tv_sec == before->st_ctim.tv_sec && now->st_ctim.tv_nsec == before->st_ctim.tv_nsec) {
        folder.write(u"a"_s, "noise");
        ASSERT_EQ(putBack(), 0);
        now = statusOf(path);
    }
    ASSERT_TRUE(now);
    EXPECT_EQ(now->st_mtim.tv_sec, before->st_mtim.tv_sec);
    EXPECT_FALSE(isUntouched(*before, *now));
}

TEST(FileStatus, SeeALinkThatLeadsNowhere)
{
    const test::TestFolder folder;
    const QString link = folder.makeLink(u"link"_s, folder.path(u"nowhere"_s));
    EXPECT_TRUE(isThere(link));
    EXPECT_TRUE(isLink(link));
    EXPECT_FALSE(statusOf(link));
    EXPECT_FALSE(isThere(folder.path(u"nowhere"_s)));
}

} // namespace
} // namespace nurv
