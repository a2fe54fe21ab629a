// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/RegularExpression.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

using namespace Qt::StringLiterals;
using nurv::RegularExpression;

TEST(RegularExpression, FindsTheFirstMatchWithItsGroups)
{
    const RegularExpression expression(u"(\\d+)\\.(?:(\\w+)|(!))"_s);
    ASSERT_TRUE(expression.isValid());
    const auto match = expression.findFirst(u"\U0001D11E track 12.flac 13.!");
    ASSERT_TRUE(match);
    EXPECT_EQ(match->text(), u"12.flac"_s);
    EXPECT_EQ(match->text(1), u"12"_s);
    EXPECT_EQ(match->text(2), u"flac"_s);
    EXPECT_FALSE(match->hasGroup(3));
    EXPECT_EQ(match->text(3), QString());
    EXPECT_EQ(match->groupCount(), 3U);
    EXPECT_EQ(match->start(), 9);
    EXPECT_EQ(match->end(), 16);

    const auto next = expression.findFirst(u"\U0001D11E track 12.flac 13.!", match->end());
    ASSERT_TRUE(next);
    EXPECT_EQ(next->text(3), u"!"_s);
    EXPECT_FALSE(expression.findFirst(u"12.a", 5));
    EXPECT_FALSE(expression.findFirst(u"12.a", -1));
}

TEST(RegularExpression, MatchesTheWholeTextOnlyWhenAskedForTheWhole)
{
    const RegularExpression expression(u"[a-f0-9]{4}"_s);
    EXPECT_TRUE(expression.matchWhole(u"09af"));
    EXPECT_FALSE(expression.matchWhole(u"09af "));
    EXPECT_TRUE(expression.findFirst(u"09af "));
}

TEST(RegularExpression, FindsEveryMatchEmptyOnesIncluded)
{
    EXPECT_EQ(RegularExpression(u"\\d\\d:\\d\\d"_s).findAll(u"01:10 02:20 0:30").size(), 2U);
    EXPECT_EQ(RegularExpression(u"x*"_s).findAll(u"axb").size(), 4U);
}

TEST(RegularExpression, ReplacesEveryMatch)
{
    const RegularExpression expression(u"(\\w+)\\.(\\w+)"_s);
    EXPECT_EQ(expression.replaceAll(u"a.b, c.d", u"$2-$1"_s), u"b-a, d-c"_s);
    EXPECT_EQ(expression.replaceAll(u"none", u"x"_s), u"none"_s);
    EXPECT_EQ(expression.replaceAll(u"a.b", u"\\$1"_s), u"$1"_s);
    // A group that does not exist: the text stays.
    EXPECT_EQ(expression.replaceAll(u"a.b", u"$9"_s), u"a.b"_s);
}

TEST(RegularExpression, SplitsIntoPiecesEmptyOnesIncluded)
{
    const RegularExpression lineEnd(u"\\r\\n|\\r|\\n"_s);
    EXPECT_EQ(lineEnd.split(u"a\r\nb\n\nc\r"), (QStringList{u"a"_s, u"b"_s, u""_s, u"c"_s, u""_s}));
    EXPECT_EQ(lineEnd.split(u"a"), QStringList{u"a"_s});
    EXPECT_EQ(lineEnd.split(u""), QStringList{u""_s});
}

TEST(RegularExpression, HonoursItsOptions)
{
    EXPECT_TRUE(RegularExpression(u"straße"_s, RegularExpression::CaseInsensitive).matchWhole(u"STRASSE"));
    EXPECT_FALSE(RegularExpression(u"a.b"_s).matchWhole(u"a\nb"));
    EXPECT_TRUE(RegularExpression(u"a.b"_s, RegularExpression::DotMatchesLineEnds).matchWhole(u"a\nb"));
    EXPECT_EQ(RegularExpression(u"^\\d"_s, RegularExpression::AnchorsMatchAtLines).findAll(u"1\n2\n3").size(), 3U);
}

TEST(RegularExpression, ReportsAPatternThatIsNone)
{
    const RegularExpression expression(u"a(b"_s);
    EXPECT_FALSE(expression.isValid());
    EXPECT_TRUE(expression.errorText().contains(u"U_REGEX_MISMATCHED_PAREN"_s)) << expression.errorText().toStdString();
    EXPECT_FALSE(expression.findFirst(u"ab"));
    EXPECT_TRUE(expression.findAll(u"ab").empty());
    EXPECT_EQ(expression.replaceAll(u"ab", u"x"_s), u"ab"_s);
    EXPECT_EQ(expression.split(u"ab"), QStringList{u"ab"_s});
}

TEST(RegularExpression, GivesUpASearchThatWouldNeverEnd)
{
    const RegularExpression expression(u"(a+)+b"_s);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(expression.findFirst(QString(60, u'a')));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
    EXPECT_TRUE(expression.findFirst(u"aab"));
}

TEST(RegularExpression, MayBeUsedFromSeveralThreadsAtOnce)
{
    const RegularExpression expression(u"(\\d+)%"_s);
    std::vector<std::thread> threads;
    std::array<int, 4> found{};
    for (std::size_t index = 0; index < found.size(); ++index)
        threads.emplace_back([&expression, &count = found[index], index] {
            const QString text = u"at %1% of it"_s.arg(index);
            for (int round = 0; round < 500; ++round)
                count += expression.findFirst(text)->text(1) == QString::number(index) ? 1 : 0;
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(found, (std::array<int, 4>{500, 500, 500, 500}));
}
