// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/RegularExpressionFinder.h"

#include "support/LogLines.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

TEST(RegularExpressionFinder, FindsTheFirstMatchOfOneTextAfterTheOther)
{
    RegularExpressionFinder finder(u"[0-9]+$"_s);
    EXPECT_TRUE(finder.findFirst(u"\U0001D11E 1 a 22"));
    EXPECT_EQ(finder.start(), 7);
    EXPECT_EQ(finder.end(), 9);
    EXPECT_FALSE(finder.findFirst(u"1 a"));
    EXPECT_EQ(finder.start(), -1);
    EXPECT_TRUE(finder.findFirst(QStringView(u"123456").sliced(2, 2))) << "the text ends where its view does";
    EXPECT_EQ(finder.start(), 0);
    EXPECT_EQ(finder.end(), 2);
    EXPECT_FALSE(finder.findFirst(QStringView()));
}

TEST(RegularExpressionFinder, FindsAnEmptyMatch)
{
    RegularExpressionFinder finder(u"x*"_s);
    EXPECT_TRUE(finder.findFirst(u"a"));
    EXPECT_EQ(finder.start(), 0);
    EXPECT_EQ(finder.end(), 0);
}

TEST(RegularExpressionFinder, FindsNothingWithAPatternThatIsNotValidAndLogsIt)
{
    const LogLines log;
    RegularExpressionFinder finder(u"("_s);
    EXPECT_FALSE(finder.findFirst(u"("));
    EXPECT_EQ(log.of(u"nurv.text"_s), QStringList(u"regular expression not valid: U_REGEX_MISMATCHED_PAREN"_s));
}

TEST(RegularExpressionFinder, GivesUpASearchThatTakesFarTooLongAndGoesOnWithTheNext)
{
    const LogLines log;
    RegularExpressionFinder finder(u"^(a+)+b$"_s);
    EXPECT_FALSE(finder.findFirst(QString(64, u'a')));
    EXPECT_EQ(log.of(u"nurv.text"_s).size(), 1);
    EXPECT_TRUE(finder.findFirst(u"aab"));
}

} // namespace nurv::test
