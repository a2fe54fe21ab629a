// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AllocationMeter.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <thread>
#include <vector>

namespace nurv::test {

namespace {

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

TEST(AllocationMeter, CountsWhatLivesAtTheSameTime)
{
    const auto before = std::make_unique<std::vector<char>>(10 * kMebibyte);
    const AllocationMeter meter;
    for (int i = 0; i < 5; ++i)
        const std::vector<char> oneAfterTheOther(2 * kMebibyte);
    EXPECT_GE(meter.peakBytes(), 2 * kMebibyte);
    EXPECT_LT(meter.peakBytes(), 3 * kMebibyte);
    const std::vector<char> first(2 * kMebibyte);
    const std::vector<char> second(3 * kMebibyte);
    EXPECT_GE(meter.peakBytes(), 5 * kMebibyte);
    EXPECT_LT(meter.peakBytes(), 6 * kMebibyte);
    EXPECT_EQ(meter.largestRequest(), 3 * kMebibyte);
}

TEST(AllocationMeter, CountsOnAllThreadsAndWithAnyAlignment)
{
    struct alignas(4096) Page {
        char bytes[4096];
    };
    const AllocationMeter meter;
    std::thread([] { const std::vector<Page> pages(512); }).join();
    EXPECT_EQ(meter.largestRequest(), 2 * kMebibyte);
    EXPECT_GE(meter.peakBytes(), 2 * kMebibyte);
}

TEST(AllocationMeter, RefusesAndCountsWhatNobodyNeeds)
{
    const AllocationMeter meter;
    EXPECT_THROW(std::vector<char>(std::size_t{1} << 40), std::bad_alloc);
    EXPECT_EQ(meter.largestRequest(), std::size_t{1} << 40);
    EXPECT_LT(meter.peakBytes(), kMebibyte);
}

} // namespace

} // namespace nurv::test
