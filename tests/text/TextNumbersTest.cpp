// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/TextNumbers.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>

using namespace Qt::StringLiterals;
using namespace nurv;

TEST(TextNumbers, ReadsTheDigitsAtTheStartAndNoFurther)
{
    EXPECT_EQ(leadingInteger(u"42% complete"), 42);
    EXPECT_EQ(leadingInteger(u" \t\n 7.9"), 7);
    EXPECT_EQ(leadingInteger(u"-3 dB"), -3);
    EXPECT_EQ(leadingInteger(u"+12"), 12);
    EXPECT_EQ(leadingInteger(u"007"), 7);
    EXPECT_EQ(leadingInteger(u"1,000"), 1);
}

TEST(TextNumbers, GivesZeroWhereNoDigitStands)
{
    for (const QString &text : {u""_s, u"   "_s, u"abc 5"_s, u"-"_s, u"- 5"_s, u"+-5"_s, u"٣"_s, u"\b5"_s}) {
        EXPECT_EQ(leadingInteger(text), 0) << text.toStdString();
        EXPECT_EQ(leadingNumber(text), 0.0) << text.toStdString();
    }
}

TEST(TextNumbers, StopsAtTheEndsOfTheIntegerRanges)
{
    EXPECT_EQ(leadingInteger(u"2147483647"), 2147483647);
    EXPECT_EQ(leadingInteger(u"2147483648"), 2147483647);
    EXPECT_EQ(leadingInteger(u"-2147483648"), std::numeric_limits<int>::min());
    EXPECT_EQ(leadingInteger(u"-99999999999999999999999"), std::numeric_limits<int>::min());
    EXPECT_EQ(leadingInteger64(u"9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(leadingInteger64(u"9223372036854775808"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(leadingInteger64(u"-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(leadingInteger64(u"-9223372036854775809"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(leadingInteger64(u"68719476735 samples"), 68719476735);
}

TEST(TextNumbers, ReadsDecimalsWithThePointWhateverTheLocale)
{
    EXPECT_DOUBLE_EQ(leadingNumber(u" 45.25% "), 45.25);
    EXPECT_DOUBLE_EQ(leadingNumber(u"-0.5"), -0.5);
    EXPECT_DOUBLE_EQ(leadingNumber(u".5"), 0.5);
    EXPECT_DOUBLE_EQ(leadingNumber(u"5."), 5.0);
    EXPECT_DOUBLE_EQ(leadingNumber(u"3,75"), 3.0);
    EXPECT_DOUBLE_EQ(leadingNumber(u"1.2.3"), 1.2);
    EXPECT_DOUBLE_EQ(leadingNumber(u"2e3"), 2.0);
    EXPECT_EQ(leadingNumber(u"inf"), 0.0);
    EXPECT_EQ(leadingNumber(u"nan"), 0.0);
    EXPECT_EQ(leadingNumber(QString(400, u'9')), std::numeric_limits<double>::max());
    EXPECT_EQ(leadingNumber(u"-"_s + QString(400, u'9')), std::numeric_limits<double>::lowest());
    EXPECT_EQ(leadingNumber(u"0."_s + QString(400, u'0') + u"1"_s), 0.0);
}

TEST(TextNumbers, TrimsBackspacesOnlyAndOnlyAtTheEnds)
{
    EXPECT_EQ(trimBackspaces(u"\b\b\b 42%\b7\b\b"), u" 42%\b7"_s);
    EXPECT_EQ(trimBackspaces(u"\n\b"), u"\n"_s);
    EXPECT_EQ(trimBackspaces(u"\b\b"), u""_s);
    EXPECT_EQ(trimBackspaces(u""), u""_s);
}

TEST(TextNumbers, TrimsWhiteSpaceAndLineEndsAtBothEnds)
{
    EXPECT_EQ(trimWhitespaceAndNewlines(u" \t\r\n a b \u00A0\u2028\n"), u"a b"_s);
    EXPECT_EQ(trimWhitespaceAndNewlines(u"\n \n"), u""_s);
}

TEST(TextNumbers, WritesSixDecimalsAsTheCLibraryDoes)
{
    EXPECT_EQ(sixDecimals(0.0), u"0.000000"_s);
    EXPECT_EQ(sixDecimals(12.5), u"12.500000"_s);
    EXPECT_EQ(sixDecimals(-1.0 / 3.0), u"-0.333333"_s);
    EXPECT_EQ(sixDecimals(99.9999999), u"100.000000"_s);
    for (const double number : {1e-7, 2.0 / 3.0, 0.0000005, 123456789.123456789, 1e22, 1.7e308}) {
        std::array<char, 400> expected;
        std::snprintf(expected.data(), expected.size(), "%f", number);
        EXPECT_EQ(sixDecimals(number), QString::fromLatin1(expected.data()));
    }
}
