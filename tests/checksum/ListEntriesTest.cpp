// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/ListEntries.h"

#include "base/NurvFailure.h"
#include "support/TestFolder.h"

#include <QFile>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using namespace checksumList;

TEST(ListEntries, EndLinesAtEveryLineEndOfUnicode)
{
    EXPECT_EQ(linesOf(u"a\nb\r\nc\u2028d\u2029e\u0085f\vg\fh"),
              (QStringList{u"a"_s, u"b"_s, QString(), u"c"_s, u"d"_s, u"e"_s, u"f"_s, u"g"_s, u"h"_s}));
    EXPECT_EQ(linesOf(u"a\n"), (QStringList{u"a"_s, QString()}));
    EXPECT_EQ(linesOf(u""), QStringList{QString()});
    // What ends no line.
    EXPECT_EQ(linesOf(u"a\tb\x1c c"), QStringList{u"a\tb\x1c c"_s});
}

TEST(ListEntries, OfMd5ListsLieBetweenTheFirstTwoMarks)
{
    const auto entries = md5Entries({u"#comment"_s, u";comment"_s, QString(), u" # no comment *x"_s, u"  abc * a b.wav *rest "_s,
                                     u"abc  two blanks.wav"_s});
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[0].expected, u"# no comment");
    EXPECT_EQ(entries[1].expected, u"abc");
    EXPECT_EQ(entries[1].name, u" a b.wav");
    EXPECT_FALSE(entries[2].isEntry());
    EXPECT_EQ(entries[2].line, u"abc  two blanks.wav");
}

TEST(ListEntries, OfSt5ListsAreWholeLines)
{
    const auto entries = st5Entries({u";c"_s, u"  ; c"_s, u" 0f  [shntool]  a.wav "_s, u"0f a.wav"_s});
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].line, u"0f  [shntool]  a.wav");
    EXPECT_EQ(entries[0].name, u"a.wav");
    EXPECT_FALSE(entries[1].isEntry());
}

TEST(ListEntries, OfFingerprintListsHaveTheirNamesFirst)
{
    const auto entries = ffpEntries({u";c"_s, u" a b.flac : 0F "_s, u"a:b:c"_s, u"no mark"_s});
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[0].name, u"a b.flac");
    EXPECT_EQ(entries[0].expected, u"0F");
    EXPECT_EQ(entries[1].name, u"a");
    EXPECT_EQ(entries[1].expected, u"b");
    EXPECT_FALSE(entries[2].isEntry());
}

TEST(ListEntries, AreJoinedToTheFolderOfTheirList)
{
    EXPECT_EQ(listedPath(u"/music/show"_s, u"t01.flac"_s), u"/music/show/t01.flac");
    EXPECT_EQ(listedPath(u"/music/show"_s, u"/cd2/t01.flac"_s), u"/music/show/cd2/t01.flac");
    EXPECT_EQ(listedPath(u"/"_s, u"a"_s), u"/a");
}

TEST(ListEntries, AreReadFromRegularFilesOfUtf8Only)
{
    const test::TestFolder folder;
    EXPECT_EQ(readList(folder.write(u"good.md5"_s, "\xc3\xa4\n")), u"ä\n");
    EXPECT_THROW(static_cast<void>(readList(folder.write(u"latin1.md5"_s, "\xe4\n"))), NurvFailure);
    EXPECT_THROW(static_cast<void>(readList(folder.path(u"missing.md5"_s))), NurvFailure);
    EXPECT_THROW(static_cast<void>(readList(folder.makeFolder(u"folder.md5"_s))), NurvFailure);
    const QString pipe = folder.path(u"pipe.md5"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_THROW(static_cast<void>(readList(pipe)), NurvFailure);
    // A gigabyte that holds nothing: it is not read.
    const QString large = folder.write(u"large.md5"_s, "");
    ASSERT_TRUE(QFile::resize(large, 1LL << 30));
    EXPECT_THROW(static_cast<void>(readList(large)), NurvFailure);
}

} // namespace
} // namespace nurv
