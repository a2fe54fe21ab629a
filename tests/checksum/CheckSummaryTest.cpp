// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/CheckSummary.h"

#include "checksum/VerifyListFixture.h"
#include "checksum/VerifyMD5Task.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QByteArray kDigestOfAbc = "900150983cd24fb0d6963f7d28e17f72";

struct CheckSummaryTest : test::VerifyListFixture {
    /// Checks the lists in one set, one after the other from the last to the first; returns what the window shows.
    QString windowOf(const QStringList &lists)
    {
        const auto results = std::make_shared<NURVTaskResults>();
        results->setFrame(std::make_shared<CheckSummary>(CheckSummary::Kind::Lists));
        std::vector<std::shared_ptr<NURVTask>> tasks;
        for (const QString &list : lists) {
            tasks.push_back(std::make_shared<VerifyMD5Task>(&queue, list, results));
            results->addTaskInSet(*tasks.back());
        }
        outputWindows.clear();
        for (auto task = tasks.rbegin(); task != tasks.rend(); ++task)
            run(*task);
        reports = results->results();
        EXPECT_EQ(outputWindows.size(), 1);
        return outputWindows.value(0);
    }
    QString reports;
};

TEST_F(CheckSummaryTest, SaysFirstWhatIsWrongAndLastHowMuchIsGood)
{
    folder.write(u"a.wav"_s, "abc");
    folder.write(u"other.wav"_s, "abd");
    const QString good = folder.write(u"good.md5"_s, (kDigestOfAbc + " *a.wav\n").repeated(2));
    const QString bad = folder.write(u"bad.md5"_s, kDigestOfAbc + " *a.wav\n" + kDigestOfAbc + " *gone.wav\n" + kDigestOfAbc
                                                       + " *other.wav\nno entry\n");
    const QString window = windowOf({good, bad, folder.path(u"gone.md5"_s)});
    EXPECT_EQ(reports, u"Verify MD5: good.md5\na.wav : OK\na.wav : OK\n\n"
                       "Verify MD5: bad.md5\na.wav : OK\ngone.wav : FAILED\nother.wav : FAILED\nno entry : Invalid checksum format\n"
                       "1 of 4 files is missing\n1 of 4 files is another one\n1 of 4 lines is no entry\n\n"
                       "Verify MD5: gone.md5\nthe list cannot be read: No such file or directory\n\n");
    EXPECT_EQ(window, u"bad.md5: 1 of 4 files is missing, 1 of 4 files is another one, 1 of 4 lines is no entry\n"
                      "    gone.wav: missing (No such file or directory)\n"
                      "    other.wav: different\n"
                      "    no entry: invalid\n"
                      "gone.md5: the list cannot be read: No such file or directory\n\n"_s
                          + reports + u"1 of 3 lists good; 3 of 6 entries good\n"_s);
}

TEST_F(CheckSummaryTest, OfGoodListsOnlyCounts)
{
    folder.write(u"a.wav"_s, "abc");
    const QString window = windowOf({folder.write(u"good.md5"_s, kDigestOfAbc + " *a.wav\n")});
    EXPECT_EQ(window, u"Verify MD5: good.md5\na.wav : OK\n\n1 of 1 list good; 1 of 1 entry good\n");
}

TEST_F(CheckSummaryTest, NamesNoMoreFailuresThanAnybodyReads)
{
    const QByteArray longName(300, 'x');
    const QString window =
        windowOf({folder.write(u"bad.md5"_s, (kDigestOfAbc + " *" + longName + '\n').repeated(250))});
    const QString head = window.section(u"\n\n"_s, 0, 0);
    EXPECT_EQ(head.count(u'\n'), 101) << qPrintable(head);
    EXPECT_TRUE(head.endsWith(u"\n    and 150 more"_s)) << qPrintable(head);
    EXPECT_FALSE(head.contains(QString::fromLatin1(longName)));
    EXPECT_EQ(reports.count(QString::fromLatin1(longName) + u" : FAILED\n"_s), 250);
}

TEST_F(CheckSummaryTest, CountsACanceledCheckAsNotGood)
{
    const auto results = std::make_shared<NURVTaskResults>();
    const auto summary = std::make_shared<CheckSummary>(CheckSummary::Kind::Lists);
    results->setFrame(summary);
    const auto task = std::make_shared<VerifyMD5Task>(&queue, folder.write(u"l.md5"_s, "x"), results);
    results->addTaskInSet(*task);
    queue.hold();
    queue.addTask(task);
    task->cancelTask();
    queue.release();
    ASSERT_TRUE(finish());
    EXPECT_EQ(summary->head(), u"l.md5: canceled\n\n");
    EXPECT_EQ(summary->foot(), u"0 of 1 list good; 0 of 0 entries good\n");
}

} // namespace
} // namespace nurv
