// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchCounts.h"
#include "cli/SourceNames.h"
#include "text/HumanUnits.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nurv {

TEST(HumanUnits, SizesHaveTwoDigitsAndADecimalUnit)
{
    EXPECT_EQ(sizeText(0), u"0 bytes"_s);
    EXPECT_EQ(sizeText(1), u"1 byte"_s);
    EXPECT_EQ(sizeText(999), u"999 bytes"_s);
    EXPECT_EQ(sizeText(1000), u"1.0 kB"_s);
    EXPECT_EQ(sizeText(9949), u"9.9 kB"_s);
    EXPECT_EQ(sizeText(9960), u"10 kB"_s);
    EXPECT_EQ(sizeText(98'400'000), u"98 MB"_s);
    EXPECT_EQ(sizeText(999'499'999), u"999 MB"_s);
    EXPECT_EQ(sizeText(999'600'000), u"1.0 GB"_s);
    EXPECT_EQ(sizeText(1'300'000'000), u"1.3 GB"_s);
    EXPECT_EQ(sizeText(std::numeric_limits<qint64>::max()), u"9.2 EB"_s);
}

TEST(HumanUnits, DurationsAreAsCoarseAsTheyAreLong)
{
    EXPECT_EQ(durationText(0ms), u"under 1 s"_s);
    EXPECT_EQ(durationText(999ms), u"under 1 s"_s);
    EXPECT_EQ(durationText(1000ms), u"1 s"_s);
    EXPECT_EQ(durationText(9400ms), u"9 s"_s);
    EXPECT_EQ(durationText(59'600ms), u"1 min 0 s"_s);
    EXPECT_EQ(durationText(200s), u"3 min 20 s"_s);
    EXPECT_EQ(durationText(7500s), u"2 h 5 min"_s);
}

TEST(HumanUnits, DurationsToTheMinute)
{
    EXPECT_EQ(aboutDurationText(400ms), u"under 1 s"_s);
    EXPECT_EQ(aboutDurationText(59'400ms), u"59 s"_s);
    EXPECT_EQ(aboutDurationText(59'600ms), u"1 min"_s);
    EXPECT_EQ(aboutDurationText(200s), u"3 min"_s);
    EXPECT_EQ(aboutDurationText(3599s), u"1 h 0 min"_s);
    EXPECT_EQ(aboutDurationText(7530s), u"2 h 6 min"_s);
}

TEST(ClosingLine, NamesOnlyWhatThereIs)
{
    EXPECT_EQ(closingLine({.files = 3, .done = 3}, 2s), u"3 of 3 done; in 2 s"_s);
    EXPECT_EQ(closingLine({.failed = 1,
                           .files = 2000,
                           .done = 1999,
                           .originalsKept = 1,
                           .sourceBytes = 98'000'000,
                           .outputBytes = 52'000'000},
                          9s),
              u"1999 of 2000 done, 1 original kept; 98 MB to 52 MB in 9 s"_s);
    EXPECT_EQ(closingLine({.complete = 6,
                           .failed = 6,
                           .canceled = 3,
                           .files = 15,
                           .done = 5,
                           .originalsKept = 2,
                           .failedOtherwise = 4,
                           .notInFull = 1,
                           .skippedExisting = 12,
                           .refused = 7,
                           .notProven = 6},
                          0s),
              u"5 of 27 done, 4 failed, 3 canceled, 2 originals kept, 1 not in full, 6 not proven, "
              "12 existed already, 7 refused; in under 1 s"_s);
}

TEST(SourceNames, OfOneFolderTellThePartBelowIt)
{
    SourceNames names;
    names.add(u"../shows/"_s, u"/m/shows"_s, true);
    EXPECT_EQ(names.nameOf(u"/m/shows/disc1/a.wav"_s), u"disc1/a.wav"_s);
    EXPECT_EQ(names.nameOf(u"/m/shows/a.wav"_s), u"a.wav"_s);
    EXPECT_EQ(names.nameOf(u"/m/shows"_s), u"../shows/"_s);
    EXPECT_EQ(names.nameOf(u"/m/showstopper/a.wav"_s), u"/m/showstopper/a.wav"_s);
}

TEST(SourceNames, OfSeveralFoldersTellThemApart)
{
    SourceNames names;
    names.add(u"disc1"_s, u"/m/disc1"_s, true);
    names.add(u"./disc2/"_s, u"/m/disc2"_s, true);
    EXPECT_EQ(names.nameOf(u"/m/disc1/a.wav"_s), u"disc1/a.wav"_s);
    EXPECT_EQ(names.nameOf(u"/m/disc2/x/a.wav"_s), u"./disc2/x/a.wav"_s);
}

TEST(SourceNames, OfFilesAreAsTheyWereGiven)
{
    SourceNames names;
    names.add(u"x/../a.wav"_s, u"/m/a.wav"_s, false);
    names.add(u"/m/a.wav"_s, u"/m/a.wav"_s, false);
    names.add(u"/m"_s, u"/m"_s, true);
    EXPECT_EQ(names.nameOf(u"/m/a.wav"_s), u"x/../a.wav"_s);
    EXPECT_EQ(names.nameOf(u"/m/b.wav"_s), u"/m/b.wav"_s);
}

TEST(SourceNames, OfTheRootHaveNoTwoSlashes)
{
    SourceNames names;
    names.add(u"/"_s, u"/"_s, true);
    EXPECT_EQ(names.nameOf(u"/m/a.wav"_s), u"m/a.wav"_s);
    names.add(u"/x"_s, u"/x"_s, true);
    EXPECT_EQ(names.nameOf(u"/m/a.wav"_s), u"/m/a.wav"_s);
    EXPECT_EQ(SourceNames().nameOf(u"/m/a.wav"_s), u"/m/a.wav"_s);
}

} // namespace nurv
