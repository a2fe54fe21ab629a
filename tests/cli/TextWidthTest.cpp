// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ColumnWidth.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv;

TEST(TextWidth, CountsWideCharactersTwiceAndMarksNotAtAll)
{
    EXPECT_EQ(displayWidth(u"abc"_s), 3);
    EXPECT_EQ(displayWidth(u"曲です"_s), 6);
    EXPECT_EQ(displayWidth(u"e\u0301"_s), 1);
    EXPECT_EQ(displayWidth(QString::fromUtf8("\xF0\x9F\x8E\xB5")), 2); // a note, beyond the first plane
}

TEST(TextWidth, ElidesInTheMiddleWithinTheColumns)
{
    EXPECT_EQ(elideMiddle(u"short.wav"_s, 9), u"short.wav"_s);
    EXPECT_EQ(elideMiddle(u"track01-long.wav"_s, 9), u"trac….wav"_s);
    EXPECT_EQ(elideMiddle(u"曲曲曲曲曲"_s, 6), u"曲…曲"_s);
    EXPECT_EQ(elideMiddle(u"abc"_s, 1), u"…"_s);
    EXPECT_EQ(elideMiddle(u"abc"_s, 0), QString());
    for (int columns = 0; columns < 14; ++columns)
        EXPECT_LE(displayWidth(elideMiddle(u"a曲e\u0301b曲c.wav"_s, columns)), columns);
}

TEST(TextWidth, ElidesAtTheEndWithinTheColumns)
{
    EXPECT_EQ(elideEnd(u"Encoding"_s, 8), u"Encoding"_s);
    EXPECT_EQ(elideEnd(u"Encoding"_s, 5), u"Enco…"_s);
    EXPECT_EQ(elideEnd(u"曲曲曲"_s, 4), u"曲…"_s);
}
