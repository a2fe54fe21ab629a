// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/NumberFormat.h"

#include <gtest/gtest.h>

namespace nurv::test {

namespace {

TEST(NumberFormat, WritesOneNumber)
{
    EXPECT_EQ(formattedNumber("%02d", 7), "07");
    EXPECT_EQ(formattedNumber("disc %-3u|", 7), "disc 7  |");
    EXPECT_EQ(formattedNumber("%.3d", 7), "007");
    EXPECT_EQ(formattedNumber("%5x", 26), "   1a");
    EXPECT_EQ(formattedNumber("100%% %d", 1), "100% 1");
    EXPECT_EQ(formattedNumber("none", 1), "none");
    EXPECT_EQ(formattedNumber("", 1), "");
}

TEST(NumberFormat, RefusesWhatWouldReadOrWriteMemory)
{
    for (const char *format : {"%s", "%n", "%d%d", "%", "%ld", "%*d", "%999d", "%.999d", "%c", "%p", "%02"})
        EXPECT_FALSE(formattedNumber(format, 1)) << format;
}

} // namespace

} // namespace nurv::test
