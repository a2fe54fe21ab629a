// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/DecodeText.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv;

TEST(DecodeText, ReadsUtf16AndUtf32ByTheirMarks)
{
    // "é日\n", written out by hand.
    EXPECT_EQ(decodeText(QByteArray("\xFF\xFE\xE9\x00\xE5\x65\n\x00", 8)), u"\u00E9\u65E5\n"_s);
    EXPECT_EQ(decodeText(QByteArray("\xFE\xFF\x00\xE9\x65\xE5\x00\n", 8)), u"\u00E9\u65E5\n"_s);
    EXPECT_EQ(decodeText(QByteArray("\xFF\xFE\x00\x00\xE9\x00\x00\x00", 8)), u"\u00E9"_s);
    EXPECT_EQ(decodeText(QByteArray("\x00\x00\xFE\xFF\x00\x00\x00\xE9", 8)), u"\u00E9"_s);
}

TEST(DecodeText, ReadsUtf16WithoutAMark)
{
    const QByteArray little("T\0i\0t\0l\0e\0 \0\xE9\0\n\0", 16);
    EXPECT_EQ(decodeText(little), u"Title \u00E9\n"_s);
    QByteArray big;
    for (qsizetype at = 0; at < little.size(); at += 2)
        big.append(little.at(at + 1)).append(little.at(at));
    EXPECT_EQ(decodeText(big), u"Title \u00E9\n"_s);
}

TEST(DecodeText, ReadsShortWesternTextsInTheirOldEncoding)
{
    // The bytes are those of Windows-1252: é, ö, ñ, curly quotes, dash, euro.
    EXPECT_EQ(decodeText("Caf\xE9"), u"Caf\u00E9"_s);
    EXPECT_EQ(decodeText("Bj\xF6rk\n"), u"Bj\u00F6rk\n"_s);
    EXPECT_EQ(decodeText("01. Ma\xF1" "ana 3:45\n02. Don\x92t \x96 \x93Stop\x94\n"),
              u"01. Ma\u00F1ana 3:45\n02. Don\u2019t \u2013 \u201CStop\u201D\n"_s);
    EXPECT_EQ(decodeText("\x80 5"), u"\u20AC 5"_s);
}

TEST(DecodeText, DetectsOtherEncodingsOfLongerTexts)
{
    // "東京の夜は静かです。雨が降っています。" in Shift JIS, by iconv.
    const QByteArray shiftJis = QByteArray::fromHex("938c8b9e82cc96e982cd90c382a982c582b7814289"
                                                    "4a82aa8d7e82c182c482a282dc82b78142");
    EXPECT_EQ(decodeText(shiftJis), u"東京の夜は静かです。雨が降っています。"_s);
    // "Ночь, улица, фонарь, аптека, бессмысленный и тусклый свет." in KOI8-R, by iconv.
    const QByteArray koi8 = QByteArray::fromHex("eecfded82c20d5ccc9c3c12c20c6cfcec1d2d82c20c1d0d4c5cbc12c20c2"
                                                "c5d3d3cdd9d3ccc5ceced9ca20c920d4d5d3cbccd9ca20d3d7c5d42e");
    EXPECT_EQ(decodeText(koi8), u"Ночь, улица, фонарь, аптека, бессмысленный и тусклый свет."_s);
}

TEST(DecodeText, DoesNotTrustTheDetectorOnAFewLetters)
{
    EXPECT_EQ(decodeText("F\xFCr Elise\nDie sch\xF6ne M\xFCllerin\n"), u"F\u00FCr Elise\nDie sch\u00F6ne M\u00FCllerin\n"_s);
    EXPECT_EQ(decodeText("\xC1g\xE6tis byrjun\nN\xFD batter\xED\nHjarta\xF0 hamast\n"),
              u"\u00C1g\u00E6tis byrjun\nN\u00FD batter\u00ED\nHjarta\u00F0 hamast\n"_s);
}

TEST(DecodeText, GivesATextForAnyBytes)
{
    QByteArray bytes;
    for (int value = 0; value < 256; ++value)
        bytes.append(static_cast<char>(value));
    EXPECT_EQ(decodeText(bytes).size(), 256);
    EXPECT_EQ(decodeText(QByteArray("\xFF", 1)).size(), 1);
}
