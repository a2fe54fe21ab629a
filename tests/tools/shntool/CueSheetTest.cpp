// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/CueSheet.h"

#include <gmock/gmock.h>

#include <sstream>

namespace nurv::test {

namespace {

using ::testing::ElementsAre;

CueSheet read(const std::string &text)
{
    std::istringstream input(text);
    return CueSheet::read(input);
}

constexpr const char *kSheet = "REM made by hand\r\n"
                               "PERFORMER \"Somebody\"\r\n"
                               "TITLE \"Al\"bum\"\r\n"
                               "FILE \"a 12:34:56.wav\" WAVE\r\n"
                               "  TRACK 01 AUDIO\r\n"
                               "    TITLE \"One\"\r\n"
                               "    INDEX 01 00:00:00\r\n"
                               "\tTRACK 02 AUDIO\r\n"
                               "\tTITLE Two\r\n"
                               "\tPERFORMER \"Other\"\r\n"
                               "    INDEX 00 01:00:10\r\n"
                               "    INDEX 01 01:02:10\r\n";

TEST(CueSheet, TakesPlacesFromTheirFirstIndex)
{
    EXPECT_THAT(read(kSheet).places, ElementsAre("00:00.00", "01:02.10"));
}

TEST(CueSheet, TellsTitlesAndPerformersOfTracksFromThoseOfTheAlbum)
{
    const CueSheet sheet = read(kSheet);
    EXPECT_TRUE(sheet.isSheet);
    EXPECT_EQ(sheet.album, "Al\"bum");
    ASSERT_EQ(sheet.tracks.size(), 2U);
    EXPECT_EQ(sheet.tracks[0].title, "One");
    EXPECT_EQ(sheet.tracks[0].performer, "Somebody");
    EXPECT_EQ(sheet.tracks[1].title, "Two");
    EXPECT_EQ(sheet.tracks[1].performer, "Other");
}

TEST(CueSheet, ReadsAListWhereTheFirstLineBeginsNoSheet)
{
    const CueSheet list = read("0:01.10\n  1000  \nINDEX 01 00:02:03\nwords\n");
    EXPECT_FALSE(list.isSheet);
    EXPECT_THAT(list.places, ElementsAre("0:01.10", "1000", "00:02.03", ""));
    EXPECT_FALSE(read("TITLE\n").isSheet);
    EXPECT_FALSE(read("title x\n").isSheet);
    EXPECT_TRUE(read("\xEF\xBB\xBFTITLE x\n").isSheet);
}

TEST(CueSheet, KeepsOnlyTheStartOfEndlessLines)
{
    const CueSheet list = read(std::string(1'000'000, '1'));
    ASSERT_EQ(list.places.size(), 1U);
    EXPECT_LT(list.places.front().size(), 4096U);
}

/// Whatever is read, there is more.
class EndlessText final : public std::streambuf {
protected:
    int_type underflow() override
    {
        m_line = "1000\n";
        setg(m_line.data(), m_line.data(), m_line.data() + m_line.size());
        return traits_type::to_int_type(m_line.front());
    }

private:
    std::string m_line;
};

TEST(CueSheet, EndsWhereNoSheetIsThatLong)
{
    EndlessText text;
    std::istream input(&text);
    const CueSheet list = CueSheet::read(input);
    EXPECT_EQ(list.places.front(), "1000");
    EXPECT_EQ(list.places.back(), "") << "which is no place";
}

TEST(CueNames, FillsInTheFieldsAndTakesThemAsTheyAre)
{
    const CueSheet sheet = read(kSheet);
    EXPECT_EQ(CueNames("%n-%p-%a-%t %x %", "").nameOf(sheet, 1, "02"), "02-Other-Al\"bum-Two %x %");
}

TEST(CueNames, ReplacesLettersInPairs)
{
    CueSheet sheet;
    sheet.tracks.push_back({.title = "a:b/c", .performer = {}});
    EXPECT_EQ(CueNames("%t", ":-/_x").nameOf(sheet, 0, "1"), "a-b_c");
}

} // namespace

} // namespace nurv::test
