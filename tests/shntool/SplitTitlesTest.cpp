// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SplitTitles.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using Names = QMap<QString, QString>;

TEST(SplitTitles, NumberTheTitlesOfACueSheet)
{
    const QString sheet = u"PERFORMER \"Band\"\r\nTITLE \"Album\"\r\nFILE \"a.wav\" WAVE\r\n  TRACK 01 AUDIO\r\n    TITLE \"Intro\"\r\n"
                          "    INDEX 01 00:00:00\r\n  TRACK 02 AUDIO\r\n    TITLE Song 2\r\n    INDEX 01 03:00:00\r\n"_s;
    EXPECT_EQ(splitTitles::read(sheet, u"flac"_s),
              (Names{{u"split-track01.flac"_s, u"01 Intro.flac"_s}, {u"split-track02.flac"_s, u"02 Song 2.flac"_s}}));
}

TEST(SplitTitles, CountTracksByTheirOrderAndBeyondNine)
{
    QString sheet;
    for (int i = 0; i < 11; ++i)
        sheet += u"TRACK 99 AUDIO\nTITLE \"T\"\n"_s;
    const Names names = splitTitles::read(sheet, u"wav"_s);
    EXPECT_EQ(names.size(), 11);
    EXPECT_EQ(names.value(u"split-track09.wav"_s), u"09 T.wav");
    EXPECT_EQ(names.value(u"split-track10.wav"_s), u"10 T.wav");
    EXPECT_EQ(names.value(u"split-track11.wav"_s), u"11 T.wav");
}

TEST(SplitTitles, LeaveATrackWithoutATitleItsName)
{
    EXPECT_EQ(splitTitles::read(u"TRACK 01 AUDIO\nTRACK 02 AUDIO\nTITLE \"Two\"\n"_s, u"shn"_s),
              (Names{{u"split-track01.shn"_s, u"split-track01.shn"_s}, {u"split-track02.shn"_s, u"02 Two.shn"_s}}));
}

TEST(SplitTitles, TakeOneQuotationMarkOffEachEnd)
{
    EXPECT_EQ(splitTitles::read(u"TRACK 01\nTITLE \"\"Quoted\"\"\n"_s, u"flac"_s).value(u"split-track01.flac"_s), u"01 \"Quoted\".flac");
    EXPECT_EQ(splitTitles::read(u"TRACK 01\nTITLE\n"_s, u"flac"_s).value(u"split-track01.flac"_s), u"01 .flac");
}

TEST(SplitTitles, KnowWordsInCapitalsOnly)
{
    EXPECT_EQ(splitTitles::read(u"track 01\ntitle \"a\"\n"_s, u"flac"_s), Names());
}

TEST(SplitTitles, HaveNoneForAListOfPoints)
{
    EXPECT_EQ(splitTitles::read(u"0:03\n0:05.12\n"_s, u"flac"_s), Names());
    EXPECT_EQ(splitTitles::read(QString(), u"flac"_s), Names());
}

TEST(SplitTitles, GiveATitleWithoutATrackToNoPiece)
{
    // No program makes a piece with the number 0.
    const Names albumOnly{{u"split-track00.flac"_s, u"00 Album.flac"_s}};
    EXPECT_EQ(splitTitles::read(u"TITLE \"Album\"\n"_s, u"flac"_s), albumOnly);
    EXPECT_EQ(splitTitles::read(u"TITLE \"First\"\nTITLE \"Album\"\n0:03\n0:05\n"_s, u"flac"_s), albumOnly);
    // The first track takes the place of the album.
    EXPECT_EQ(splitTitles::read(u"TITLE \"Album\"\nTRACK 01 AUDIO\n"_s, u"flac"_s),
              (Names{{u"split-track01.flac"_s, u"split-track01.flac"_s}}));
}

TEST(SplitTitles, TakeTheLastOfSeveralTitlesOfATrack)
{
    EXPECT_EQ(splitTitles::read(u"TRACK 01\nTITLE \"a\"\nTITLE \"b\"\n"_s, u"wav"_s),
              (Names{{u"split-track01.wav"_s, u"01 b.wav"_s}}));
}

TEST(SplitTitles, StandInLinesThatEndInAnyWay)
{
    const Names both{{u"split-track01.flac"_s, u"01 One.flac"_s}, {u"split-track02.flac"_s, u"02 Two.flac"_s}};
    for (const QString &end : {u"\n"_s, u"\r\n"_s, u"\r"_s}) {
        const QStringList lines{u"TRACK 01"_s, u"  TITLE \"One\"\t"_s, u"TRACK 02"_s, u"TITLE Two"_s};
        EXPECT_EQ(splitTitles::read(lines.join(end), u"flac"_s), both);
        EXPECT_EQ(splitTitles::read(lines.join(end) + end, u"flac"_s), both);
    }
}

TEST(SplitTitles, CannotBeNamesOfFoldersOrTooLong)
{
    EXPECT_TRUE(splitTitles::canBeName(u"03 Song.flac"_s));
    EXPECT_FALSE(splitTitles::canBeName(u"03 AC/DC.flac"_s));
    EXPECT_FALSE(splitTitles::canBeName(u"03 ../x.flac"_s));
    EXPECT_TRUE(splitTitles::canBeName(QString(255, u'a')));
    EXPECT_FALSE(splitTitles::canBeName(QString(256, u'a')));
    EXPECT_FALSE(splitTitles::canBeName(QString(128, QChar(0xE4)))) << "256 bytes of UTF-8";
    EXPECT_FALSE(splitTitles::canBeName(u"a"_s + QChar(0) + u"b"_s));
}

} // namespace
} // namespace nurv
