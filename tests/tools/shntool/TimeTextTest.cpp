// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/TimeText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace nurv::test {

namespace {

TEST(TimeText, RoundsToMilliseconds)
{
    const TimeText time(false);
    EXPECT_EQ(time.ofSeconds(0), "0:00.000");
    EXPECT_EQ(time.ofSeconds(59.9994), "0:59.999");
    EXPECT_EQ(time.ofSeconds(59.9996), "1:00.000");
}

TEST(TimeText, SplitsHoursOffOnRequest)
{
    EXPECT_EQ(TimeText(false).ofSeconds(3661), "61:01.000");
    EXPECT_EQ(TimeText(true).ofSeconds(3661), "1:01:01.000");
}

TEST(TimeText, TellsSomethingOfLengthsThatNoNumberHolds)
{
    const std::string most = TimeText(false).ofSeconds(1e15);
    EXPECT_EQ(TimeText(false).ofSeconds(std::ldexp(1, 64)), most);
    EXPECT_EQ(TimeText(false).ofSeconds(std::numeric_limits<double>::infinity()), most);
}

} // namespace

} // namespace nurv::test
