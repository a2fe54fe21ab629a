// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Cdda2wav.h"

#include "programs/Transcript.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

// There was no drive: the transcript "icedax-paranoia" is put together from the format strings of icedax 1.1.11, in
// the order in which it prints them.
QString transcript()
{
    QByteArray all;
    for (const QByteArray &chunk : test::transcriptChunks(u"icedax-paranoia"_s))
        all += chunk;
    return QString::fromUtf8(all);
}

TEST(Cdda2wav, ReadsEachTrackIntoAFileOrAllIntoOne)
{
    EXPECT_EQ(cdda2wav::extractionArguments(u"1+3"_s, false, u"/dev/sr0"_s),
              (QStringList{u"-B"_s, u"-L"_s, u"1"_s, u"-H"_s, u"-t"_s, u"1+3"_s, u"-paranoia"_s, u"-Owav"_s,
                           u"dev=/dev/sr0"_s}));
    EXPECT_EQ(
        cdda2wav::extractionArguments(u"7+7"_s, true, u"/dev/sr12"_s),
        (QStringList{u"-L"_s, u"1"_s, u"-H"_s, u"-t"_s, u"7+7"_s, u"-paranoia"_s, u"-Owav"_s, u"dev=/dev/sr12"_s}));
}

TEST(Cdda2wav, TakesRangesThatADiscCanHave)
{
    const struct {
        QString text;
        int first;
        int last; ///< 0: none
    } cases[] = {
        {u"1+3"_s, 1, 3},   {u"7+7"_s, 7, 7},     {u"9+10"_s, 9, 10},
        {u"1+99"_s, 1, 99}, {u"99+99"_s, 99, 99}, {u"1+100"_s, 0, 0},
        {u"0+3"_s, 0, 0},   {u"-1+0"_s, 0, 0},    {u"3+1"_s, 0, 0},
        {u""_s, 0, 0},      {u"5"_s, 0, 0},       {u"+"_s, 0, 0},
        {u"1+"_s, 0, 0},    {u"+1"_s, 0, 0},      {u'1' + QString(400, u'0') + u"+2"_s, 0, 0},
    };
    for (const auto &[text, first, last] : cases) {
        SCOPED_TRACE(qPrintable(text));
        const std::optional<cdda2wav::TrackRange> range = cdda2wav::trackRange(text);
        ASSERT_EQ(range.has_value(), last != 0);
        if (!range)
            continue;
        EXPECT_EQ(range->first, first);
        EXPECT_EQ(range->last, last);
        EXPECT_EQ(cdda2wav::rangeText(*range), text);
    }
}

TEST(Cdda2wav, NamesWhatARunWrites)
{
    using Names = QStringList;
    EXPECT_EQ(cdda2wav::fileName(9), u"audio_09.wav");
    EXPECT_EQ(cdda2wav::fileName(10), u"audio_10.wav");
    EXPECT_EQ(cdda2wav::trackFileNames({.first = 7, .last = 7}, 7), (Names{u"audio.wav"_s, u"audio_07.wav"_s}));
    EXPECT_EQ(cdda2wav::trackFileNames({.first = 9, .last = 10}, 10), Names{u"audio_10.wav"_s});
    EXPECT_EQ(cdda2wav::writtenNames({.first = 9, .last = 10}, false), (Names{u"audio_09.wav"_s, u"audio_10.wav"_s}));
    EXPECT_EQ(cdda2wav::writtenNames({.first = 1, .last = 2}, true),
              (Names{u"audio.wav"_s, u"audio_01.wav"_s, u"audio_02.wav"_s}));
    EXPECT_EQ(cdda2wav::writtenNames({.first = 7, .last = 7}, false), (Names{u"audio.wav"_s, u"audio_07.wav"_s}));
}

TEST(Cdda2wav, StripsThePercentageAtTheEnd)
{
    const std::pair<QString, QString> cases[] = {
        {u"42%"_s, u""_s},
        {u"\n\r a 42%"_s, u" a "_s},
        {u"42% b\r\n\n"_s, u"42% b"_s},
        {u"42%\n"_s, u""_s},
        {u"  /  /  /          0%"_s, u"  /  /  /          "_s},
        {u"%"_s, u"%"_s},
        {u"4"_s, u"4"_s},
        {u""_s, u""_s},
        {u"\n\n"_s, u""_s},
    };
    for (const auto &[chunk, text] : cases)
        EXPECT_EQ(cdda2wav::stripPercent(chunk), text) << qPrintable(chunk);
}

TEST(Cdda2wav, TakesPercentagesWordByWord)
{
    const std::pair<QString, QStringList> cases[] = {
        {u"42%"_s, {u"42"_s}},
        {u"\r 0/ 2/ 1/     12  42%\r 0/ 2/ 1/     12  43%"_s, {u"42"_s, u"43"_s}},
        {u"1%2%\n3%"_s, {u"1"_s, u"3"_s}},
        {u"%"_s, {QString()}},
        {u"a b"_s, {}},
        {u"\t x%y z"_s, {u"x"_s}},
    };
    for (const auto &[chunk, texts] : cases)
        EXPECT_EQ(cdda2wav::percentages(chunk), texts) << qPrintable(chunk);
}

TEST(Cdda2wav, KnowsTheSummaryOfATrack)
{
    EXPECT_TRUE(cdda2wav::isEndOfTrack(u"  0 rderr, 0 skip, 0 atom, 3 edge, 0 drop, 0 dup, 0 drift"));
    EXPECT_TRUE(cdda2wav::isEndOfTrack(u"x4294967295 rderr, 12 skip, 7 atom"));
    EXPECT_FALSE(cdda2wav::isEndOfTrack(u"0 rderr, 0 skip,  0 atom"));
    EXPECT_FALSE(cdda2wav::isEndOfTrack(u"rderr, 0 skip, 0 atom"));
    EXPECT_FALSE(cdda2wav::isEndOfTrack(u"100%"));
}

TEST(Cdda2wav, ReadsTheSameWhereverChunksAreCut)
{
    const QString all = transcript();
    const QStringList percentages{u"0"_s, u"0"_s, u"42"_s, u"100"_s, u"7"_s, u"100"_s, u"50"_s, u"100"_s};
    ASSERT_GT(all.size(), 1000);
    for (qsizetype cut = 0; cut <= all.size(); ++cut) {
        cdda2wav::OutputReader reader;
        const cdda2wav::OutputReader::Reading first = reader.read(QStringView(all).first(cut));
        const cdda2wav::OutputReader::Reading second = reader.read(QStringView(all).sliced(cut));
        ASSERT_EQ(first.percentages + second.percentages, percentages) << cut;
        ASSERT_EQ(first.endedTracks + second.endedTracks, 3) << cut;
    }
    cdda2wav::OutputReader reader;
    QStringList read;
    int endedTracks = 0;
    for (const QChar character : all) {
        const cdda2wav::OutputReader::Reading reading = reader.read(QStringView(&character, 1));
        read += reading.percentages;
        endedTracks += reading.endedTracks;
    }
    EXPECT_EQ(read, percentages);
    EXPECT_EQ(endedTracks, 3);
}

TEST(Cdda2wav, KeepsLittleOfALongWord)
{
    cdda2wav::OutputReader reader;
    for (int count = 0; count < 1000; ++count)
        EXPECT_TRUE(reader.read(QString(1000, u'9')).percentages.isEmpty());
    const QStringList percentages = reader.read(u"%").percentages;
    ASSERT_EQ(percentages.size(), 1);
    EXPECT_LE(percentages.front().size(), 100);
}

TEST(Cdda2wav, TellsTheLastLineThatIsNoProgress)
{
    EXPECT_EQ(cdda2wav::lastLine(u"icedax: No such device.\n\r  3%"), u"icedax: No such device.");
    EXPECT_EQ(cdda2wav::lastLine(u" a \n\n"), u"a");
    EXPECT_EQ(cdda2wav::lastLine(u"\r 42%"), u"");
    EXPECT_EQ(cdda2wav::lastLine(QString(1000, u'x')).size(), 300);
}

TEST(Cdda2wav, BeginsTheLogWhereTheProgramNamesItself)
{
    EXPECT_EQ(cdda2wav::logText(u"warning\ncdda2wav: a\ncdda2wav: b\n"_s), u"cdda2wav: a\ncdda2wav: b\n");
    EXPECT_EQ(cdda2wav::logText(u"icedax: a\n"_s), u"icedax: a\n");
    EXPECT_EQ(cdda2wav::logText(QString()), QString());
}

} // namespace
} // namespace nurv
