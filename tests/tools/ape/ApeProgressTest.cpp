// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeProgress.h"

#include <gtest/gtest.h>

namespace nurv::test {

namespace {

TEST(ApeProgress, TellsTheShareTheRemainingTimeAndTheTimeSoFar)
{
    EXPECT_EQ(apeProgressLine(0.123, 3.4), "Progress: 12.3% (24.2 seconds remaining, 3.4 seconds total)          \r");
    EXPECT_EQ(apeProgressLine(0, 0.04), "Progress: 0.0% (0.0 seconds remaining, 0.0 seconds total)          \r");
    EXPECT_EQ(apeProgressLine(1, 125.06), "Progress: 100.0% (0.0 seconds remaining, 125.1 seconds total)          \r");
}

} // namespace

} // namespace nurv::test
