// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/FormatScan.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

TEST(FormatTexts, TellMinutesAndWholeSeconds)
{
    EXPECT_EQ(parseTimeAsString(125.7), u"2:05");
    EXPECT_EQ(parseTimeAsString(0.0), u"0:00");
    EXPECT_EQ(parseTimeAsString(59.999), u"0:59");
    EXPECT_EQ(parseTimeAsString(60.0), u"1:00");
    EXPECT_EQ(parseTimeAsString(669.5), u"11:09");
    EXPECT_EQ(parseTimeAsString(36'010.0), u"600:10");
}

TEST(FormatTexts, TellMegabytesOfAMillion)
{
    EXPECT_EQ(parseSizeFromTimeAsString(300.0, 44100, 16, 2), u"52.92 MB");
    EXPECT_EQ(parseSizeFromTimeAsString(1.0, 192000, 24, 2), u"1.15 MB");
    EXPECT_EQ(parseSizeFromTimeAsString(36'000.0, 96000, 24, 6), u"62208.00 MB") << "more than 32 bits hold";
    EXPECT_EQ(parseSizeFromTimeAsString(0.0, 0, 0, 0), u"0.00 MB");
}

} // namespace
} // namespace nurv
