// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FileFlush.h"

#include "support/SystemCallRecorder.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class FileFlush : public ::testing::Test {
protected:
    test::TestFolder folder;
    QString path = folder.write(u"a.flac"_s, "sound");
    QString ofFile = u"fsync "_s + path;
    QString ofFolder = u"fsync "_s + folder.path();
};

TEST_F(FileFlush, TakesTheFileAndThenItsName)
{
    const test::SystemCallRecorder calls;
    EXPECT_TRUE(flushToDisk(path));
    QStringList flushes = calls.calls();
    flushes.removeIf([](const QString &call) { return !call.startsWith(u"fsync "_s); });
    EXPECT_EQ(flushes, (QStringList{ofFile, ofFolder}));
}

TEST_F(FileFlush, TellsThatAFileMayNotBeOnTheDisk)
{
    for (const int error : {EIO, EINVAL, ENOSPC}) {
        test::SystemCallRecorder calls;
        calls.fail(ofFile, error);
        EXPECT_FALSE(flushToDisk(path));
        EXPECT_EQ(errno, error);
    }
    EXPECT_FALSE(flushToDisk(folder.path(u"missing"_s)));
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(FileFlush, TellsThatANameMayNotBeOnTheDisk)
{
    test::SystemCallRecorder calls;
    calls.fail(u"fsync "_s + folder.path(), EIO);
    EXPECT_FALSE(flushFolderToDisk(folder.path()));
    EXPECT_EQ(errno, EIO);
}

TEST_F(FileFlush, TakesNoOffenceAtAFileSystemThatKeepsFoldersByItself)
{
    for (const int error : {EINVAL, ENOTSUP}) {
        test::SystemCallRecorder calls;
        calls.fail(u"fsync "_s + folder.path(), error);
        EXPECT_TRUE(flushFolderToDisk(folder.path()));
    }
}

} // namespace
} // namespace nurv
