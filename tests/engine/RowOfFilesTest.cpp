// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/RowOfFiles.h"

#include "base/GuiThread.h"
#include "engine/TestTasks.h"
#include "support/WaitUntil.h"

#include <QScopeGuard>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace nurv {
namespace {

using Shown = std::vector<qsizetype>;

struct RowOfFilesTest : ::testing::Test {
    std::shared_ptr<test::HeldTask> task = std::make_shared<test::HeldTask>(nullptr);
    Shown shown; ///< what was painted, one after the other

    [[nodiscard]] RowOfFiles::Paint paint()
    {
        return [this](qsizetype done) {
            EXPECT_TRUE(isGuiThread());
            shown.push_back(done);
        };
    }
};

TEST_F(RowOfFilesTest, ShowsAtFirstThatNoneIsDone)
{
    const RowOfFiles row(*task, 3, paint());
    EXPECT_EQ(shown, Shown{0});
}

TEST_F(RowOfFilesTest, ShowsOnceHowFarItIsWhenTheGuiThreadGetsToIt)
{
    RowOfFiles row(*task, 5, paint());
    for (qsizetype i = 0; i < 4; ++i)
        row.markDone(i);
    EXPECT_EQ(shown, Shown{0}) << "nobody waits for it";
    ASSERT_TRUE(test::waitUntil([this] { return shown.size() == 2; }));
    EXPECT_EQ(shown, (Shown{0, 4}));
    row.markDone(4);
    ASSERT_TRUE(test::waitUntil([this] { return shown.size() == 3; }));
    EXPECT_EQ(shown, (Shown{0, 4, 5}));
}

TEST_F(RowOfFilesTest, CountsThoseOfWhichAllBeforeAreDone)
{
    RowOfFiles row(*task, 4, paint());
    row.markDone(1);
    row.markDone(2);
    row.markDone(0);
    ASSERT_TRUE(test::waitUntil([this] { return shown.size() == 2; }));
    EXPECT_EQ(shown, (Shown{0, 3}));
}

TEST_F(RowOfFilesTest, ShowsAtItsEndWhatWasDoneAndNothingLater)
{
    {
        RowOfFiles row(*task, 2, paint());
        row.markDone(0);
        row.markDone(1);
    }
    EXPECT_EQ(shown, (Shown{0, 2}));
    bool isReached = false;
    postToGuiThread([&] { isReached = true; });
    ASSERT_TRUE(test::waitUntil([&] { return isReached; }));
    EXPECT_EQ(shown, (Shown{0, 2}));
}

TEST_F(RowOfFilesTest, TakesFilesFromSeveralThreads)
{
    constexpr qsizetype kFiles = 2000;
    // The end of the row waits for this thread.
    std::atomic<bool> isOver = false;
    std::thread job([this, &isOver] {
        const auto end = qScopeGuard([&isOver] { isOver = true; });
        RowOfFiles row(*task, kFiles, paint());
        std::thread odd([&] {
            for (qsizetype i = 1; i < kFiles; i += 2)
                row.markDone(i);
        });
        for (qsizetype i = 0; i < kFiles; i += 2)
            row.markDone(i);
        odd.join();
    });
    EXPECT_TRUE(test::waitUntil([&isOver] { return isOver.load(); }));
    job.join();
    EXPECT_EQ(shown.back(), kFiles);
    EXPECT_TRUE(std::is_sorted(shown.begin(), shown.end()));
}

} // namespace
} // namespace nurv
