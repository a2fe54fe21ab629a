// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FileNames.h"

#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace nurv;

namespace {

void touch(const QByteArray &path)
{
    const int descriptor = ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    ASSERT_GE(descriptor, 0) << path.toStdString();
    ::close(descriptor);
}

} // namespace

TEST(FileNames, RefuseArgumentsThatAreNoUtf8AndKeepTheOthersByteForByte)
{
    EXPECT_FALSE(fileNameFromBytes("caf\xE9.flac"));
    EXPECT_FALSE(fileNameFromBytes("\xFF"));
    EXPECT_FALSE(fileNameFromBytes("cut\xE2\x82"));
    for (const QByteArray &name : {QByteArray("caf\xC3\xA9.flac"), QByteArray("cafe\xCC\x81"), QByteArray("\xEF\xBB\xBFmark"),
                                   QByteArray("\xF0\x9D\x84\x9E"), QByteArray("line\nend"), QByteArray()}) {
        const auto text = fileNameFromBytes(name);
        ASSERT_TRUE(text) << name.toStdString();
        EXPECT_EQ(QFile::encodeName(*text), name);
    }
}

TEST(FileNames, ShowBytesThatAreNoUtf8ByTheirNumbers)
{
    EXPECT_EQ(displayName("caf\xE9.flac"), u"caf\\xE9.flac"_s);
    EXPECT_EQ(displayName("caf\xC3\xA9.flac"), u"caf\u00E9.flac"_s);
    EXPECT_EQ(displayName("\xC3\xE9\xC3\xA9\xE2\x82"), u"\\xC3\\xE9\u00E9\\xE2\\x82"_s);
}

TEST(FileNames, ListAFolderInTheOrderOfTheFileSystem)
{
    const test::TestFolder folder;
    for (const QString &name : {u"b10.flac"_s, u"b2.flac"_s, u".hidden"_s, u"\u00E9.flac"_s})
        folder.write(name, "x");
    folder.makeFolder(u"sub"_s);

    QStringList expected;
    DIR *raw = ::opendir(QFile::encodeName(folder.path()).constData());
    while (const dirent *entry = ::readdir(raw)) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..")
            expected.append(QString::fromUtf8(name));
    }
    ::closedir(raw);

    const FolderListing listing = listFolder(folder.path());
    EXPECT_EQ(listing.names.size(), 5);
    EXPECT_EQ(listing.names, expected);
    EXPECT_EQ(listing.refused, QStringList());
    EXPECT_EQ(listing.error, QString());
}

TEST(FileNames, TellWhichEntriesOfAFolderWereRefused)
{
    const test::TestFolder folder;
    folder.write(u"good.flac"_s, "x");
    touch(QFile::encodeName(folder.path()) + "/bad\xE9.flac");
    const FolderListing listing = listFolder(folder.path());
    EXPECT_EQ(listing.names, QStringList{u"good.flac"_s});
    EXPECT_EQ(listing.refused, QStringList{u"bad\\xE9.flac"_s});
    EXPECT_EQ(::unlink((QFile::encodeName(folder.path()) + "/bad\xE9.flac").constData()), 0);
}

TEST(FileNames, TellWhyAFolderCannotBeListed)
{
    const test::TestFolder folder;
    EXPECT_EQ(listFolder(folder.path(u"none"_s)).error, u"No such file or directory"_s);
    EXPECT_EQ(listFolder(folder.write(u"file"_s, "x")).error, u"Not a directory"_s);
}
