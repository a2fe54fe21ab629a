// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/VerifyMD5Task.h"

#include "checksum/VerifyListFixture.h"

#include <QFile>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QByteArray kDigestOfAbc = "900150983cd24fb0d6963f7d28e17f72";
const QByteArray kDigestOfNothing = "d41d8cd98f00b204e9800998ecf8427e";

using VerifyMD5TaskTest = test::VerifyListFixture;

TEST_F(VerifyMD5TaskTest, ReportsEveryFileOfTheList)
{
    folder.write(u"a.wav"_s, "abc");
    folder.write(u"b c.wav"_s, "abd");
    const QString list = folder.write(u"md5sum.md5"_s, "#MD5 checksums\n\n" + kDigestOfAbc + " *a.wav\n" + kDigestOfAbc
                                                           + " *b c.wav\n");
    const auto task = verify<VerifyMD5Task>(list);
    EXPECT_EQ(report, u"Verify MD5: md5sum.md5\na.wav : OK\nb c.wav : FAILED\n1 of 2 files is another one\n");
    EXPECT_TRUE(task->error());
    EXPECT_EQ(statesOf(*task), (std::vector{State::Ok, State::Different}));
    EXPECT_EQ(task->title(), u"md5sum.md5");
    EXPECT_TRUE(statuses.contains(u"Verifying a.wav"_s)) << qPrintable(statuses.join(u'|'));
    EXPECT_TRUE(statuses.contains(u"Verifying MD5 file"_s));
    EXPECT_EQ(progress, 100.0);
    EXPECT_EQ(outputWindows.size(), 1);
}

TEST_F(VerifyMD5TaskTest, AddsNothingToTheReportOfAGoodList)
{
    folder.write(u"a.wav"_s, "abc");
    const auto task = verify<VerifyMD5Task>(folder.write(u"l.md5"_s, kDigestOfAbc + " *a.wav\n"));
    EXPECT_EQ(report, u"Verify MD5: l.md5\na.wav : OK\n");
    EXPECT_FALSE(task->error());
    EXPECT_EQ(statesOf(*task), std::vector{State::Ok});
    EXPECT_EQ(outputWindows, QStringList{u"Verify MD5: l.md5\na.wav : OK\n\n"_s});
}

TEST_F(VerifyMD5TaskTest, CountsAMissingFileAlsoWhereItsLineSaysOk)
{
    const auto task =
        verify<VerifyMD5Task>(folder.write(u"l.md5"_s, kDigestOfNothing + " *gone.wav\n" + kDigestOfAbc + " *gone too.wav\n"));
    EXPECT_EQ(report, u"Verify MD5: l.md5\ngone.wav : OK\ngone too.wav : FAILED\n2 of 2 files are missing\n");
    EXPECT_TRUE(task->error());
    EXPECT_EQ(statesOf(*task), (std::vector{State::Missing, State::Missing}));
    EXPECT_EQ(task->outcome().problem, u"2 of 2 files are missing");
}

TEST_F(VerifyMD5TaskTest, ComparesDigestsCharacterForCharacter)
{
    folder.write(u"a.wav"_s, "abc");
    verify<VerifyMD5Task>(folder.write(u"l.md5"_s, kDigestOfAbc.toUpper() + " *a.wav\n"));
    EXPECT_EQ(report, u"Verify MD5: l.md5\na.wav : FAILED\n1 of 1 file is another one\n"
                      "try 'Understand lists of other programs' (--any-list)\n");
}

TEST_F(VerifyMD5TaskTest, NamesLinesThatAreNoEntries)
{
    folder.write(u"a.wav"_s, "abc");
    const auto task = verify<VerifyMD5Task>(folder.write(u"l.md5"_s, " " + kDigestOfAbc + "  a.wav \n"));
    EXPECT_EQ(report, u"Verify MD5: l.md5\n"_s + QString::fromLatin1(kDigestOfAbc)
                          + u"  a.wav : Invalid checksum format\n1 of 1 line is no entry\n"
                            "try 'Understand lists of other programs' (--any-list)\n"_s);
    EXPECT_EQ(statesOf(*task), std::vector{State::NotAnEntry});
}

TEST_F(VerifyMD5TaskTest, FindsNoFileForAnEntryWithoutAName)
{
    const auto task = verify<VerifyMD5Task>(folder.write(u"l.md5"_s, kDigestOfAbc + " * \n" + kDigestOfAbc + " * *x\n"));
    EXPECT_EQ(report.count(u" : FAILED\n"_s), 2) << qPrintable(report);
    EXPECT_TRUE(task->error());
}

TEST_F(VerifyMD5TaskTest, FindsNoFileForANameThatNoFileCanHave)
{
    folder.write(u"a.wav"_s, "abc");
    const auto task =
        verify<VerifyMD5Task>(folder.write(u"l.md5"_s, kDigestOfAbc + QByteArray(" *a.wav\0gone.wav\n", 17)));
    EXPECT_EQ(statesOf(*task), std::vector{State::Missing});
    EXPECT_TRUE(task->error());
}

TEST_F(VerifyMD5TaskTest, FindsFilesInFoldersBelowTheList)
{
    folder.write(u"cd2/t01.wav"_s, "abc");
    folder.write(u"x.wav"_s, "abc");
    const QByteArray list = kDigestOfAbc + " */cd2/t01.wav\r\n" + kDigestOfAbc + " *cd2/t01.wav\r\n" + kDigestOfAbc
                            + " *cd2/../x.wav\r\n";
    const auto task = verify<VerifyMD5Task>(folder.write(u"l.md5"_s, list));
    EXPECT_EQ(report, u"Verify MD5: l.md5\nt01.wav : OK\nt01.wav : OK\nx.wav : OK\n");
    EXPECT_FALSE(task->error());
}

TEST_F(VerifyMD5TaskTest, NeitherWaitsForNorReadsWhatIsNoFile)
{
    ASSERT_EQ(::mkfifo(QFile::encodeName(folder.path(u"pipe"_s)).constData(), 0600), 0);
    folder.makeFolder(u"folder"_s);
    folder.makeLink(u"zero"_s, u"/dev/zero"_s);
    const auto task = verify<VerifyMD5Task>(folder.write(u"l.md5"_s, kDigestOfNothing + " *pipe\n" + kDigestOfNothing
                                                                         + " *folder\n" + kDigestOfNothing + " *zero\n"));
    EXPECT_EQ(statesOf(*task), (std::vector{State::Unreadable, State::Unreadable, State::Unreadable}));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(report.endsWith(u"3 of 3 files could not be read\n"_s)) << qPrintable(report);
}

TEST_F(VerifyMD5TaskTest, FailsForAListThatIsEmptyOrCannotBeRead)
{
    for (const auto &[name, bytes, line] :
         {std::tuple{u"empty.md5"_s, QByteArray(""), u"the list has no entries\n"_s},
          std::tuple{u"comments.md5"_s, QByteArray("#only\n;this\n\n"), u"the list has no entries\n"_s},
          std::tuple{u"latin1.md5"_s, kDigestOfAbc + " *\xe4.wav\n", u"the list is no UTF-8 text, try 'Understand lists of other programs' (--any-list)\n"_s}}) {
        const auto task = verify<VerifyMD5Task>(folder.write(name, bytes));
        EXPECT_TRUE(task->error()) << qPrintable(name);
        EXPECT_EQ(report, u"Verify MD5: %1\n%2"_s.arg(name, line));
    }
    const auto task = verify<VerifyMD5Task>(folder.path(u"gone.md5"_s));
    EXPECT_TRUE(task->error());
    EXPECT_TRUE(report.startsWith(u"Verify MD5: gone.md5\nthe list cannot be read: "_s)) << qPrintable(report);
}

TEST_F(VerifyMD5TaskTest, ReportsNothingButTheCancellation)
{
    folder.write(u"a.wav"_s, "abc");
    // A file that takes long enough, and takes no room: it is canceled in its middle.
    const QString large = folder.write(u"b.wav"_s, "");
    ASSERT_TRUE(QFile::resize(large, 1LL << 38));
    const auto results = std::make_shared<NURVTaskResults>();
    const auto task = std::make_shared<VerifyMD5Task>(
        &queue, folder.write(u"l.md5"_s, kDigestOfAbc + " *a.wav\n" + kDigestOfAbc + " *b.wav\n"), results);
    results->addTaskInSet(*task);
    queue.addTask(task);
    ASSERT_TRUE(test::waitUntil([&] { return progress >= 50.0; }));
    task->cancelTask();
    ASSERT_TRUE(finish());
    EXPECT_EQ(results->results(*task), u"Verify MD5: l.md5\nCanceled\n");
    EXPECT_EQ(task->textField().text, u"Canceled");
}

TEST_F(VerifyMD5TaskTest, ChecksALongList)
{
    folder.write(u"a.wav"_s, "abc");
    QByteArray list;
    for (int i = 0; i < 4000; ++i)
        list += kDigestOfAbc + (i % 2 == 0 ? " *a.wav\n" : "  a.wav\n");
    const auto task = verify<VerifyMD5Task>(folder.write(u"l.md5"_s, list));
    EXPECT_EQ(task->outcome().problem, u"2000 of 4000 lines are no entries");
    EXPECT_EQ(report.count(u" : OK\n"_s), 2000);
}

} // namespace
} // namespace nurv
