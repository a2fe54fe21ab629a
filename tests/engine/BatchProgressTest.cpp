// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/BatchProgress.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace std::chrono_literals;

namespace nurv {

namespace {

using Ending = BatchProgress::Ending;
using std::chrono::microseconds;

constexpr qint64 kMegabyte = 1'000'000;

/// A job of a batch that is acted out.
struct ActedJob {
    std::string kind;
    qint64 bytes = 0;
    double bytesPerSecond = 0.0;

    [[nodiscard]] microseconds duration() const
    {
        return microseconds(static_cast<std::int64_t>(static_cast<double>(bytes) / bytesPerSecond * 1e6));
    }
};

/// What was said at one time of the batch, and what was true.
struct Statement {
    double timeShare = 0.0; ///< of the whole batch
    std::optional<microseconds> said;
    microseconds remaining{0};
};

class BatchProgressTest : public ::testing::Test {
protected:
    microseconds now{5'000'000};
    BatchProgress progress{[this] { return now; }};

    std::size_t addOf(const std::string &kind, qint64 bytes)
    {
        const std::size_t job = progress.add(kind);
        progress.learnSize(job, bytes);
        return job;
    }
    void run(std::size_t job, microseconds duration)
    {
        progress.begin(job);
        now += duration;
        progress.end(job, Ending::Done);
    }

    /// Runs the jobs in their order, as many at once as there are slots, in steps of a part of a second.
    std::vector<Statement> actOut(const std::vector<ActedJob> &jobs, std::size_t slots, bool tellsProgress)
    {
        struct Running {
            std::size_t number;
            microseconds begun;
        };
        const microseconds start = now;
        for (const ActedJob &job : jobs)
            addOf(job.kind, job.bytes);
        std::vector<Statement> statements;
        std::vector<microseconds> times;
        std::vector<Running> running;
        for (std::size_t next = 0; next < jobs.size() || !running.empty(); now += 50ms) {
            std::erase_if(running, [&](const Running &one) {
                const bool hasEnded = now - one.begun >= jobs[one.number].duration();
                if (hasEnded)
                    progress.end(one.number, Ending::Done);
                return hasEnded;
            });
            for (; running.size() < slots && next < jobs.size(); ++next) {
                progress.begin(next);
                running.push_back({next, now});
            }
            for (const Running &one : running) {
                const double share = static_cast<double>((now - one.begun).count())
                                     / static_cast<double>(jobs[one.number].duration().count());
                if (tellsProgress)
                    progress.advance(one.number, 100.0 * share);
            }
            statements.push_back({.said = progress.remaining()});
            times.push_back(now);
        }
        const microseconds end = times.back();
        for (std::size_t place = 0; place < statements.size(); ++place) {
            statements[place].remaining = end - times[place];
            statements[place].timeShare =
                static_cast<double>((times[place] - start).count()) / static_cast<double>((end - start).count());
        }
        return statements;
    }

    /// From a third of the batch on, until its last seconds.
    static void expectWithinAFactorOfTwo(const std::vector<Statement> &statements)
    {
        int checked = 0;
        for (const Statement &statement : statements) {
            if (statement.timeShare < 1.0 / 3.0 || statement.remaining < 5s)
                continue;
            ASSERT_TRUE(statement.said.has_value()) << statement.timeShare;
            ++checked;
            EXPECT_LE(*statement.said, statement.remaining * 2) << "after " << statement.timeShare << " of the batch";
            EXPECT_GE(*statement.said * 2, statement.remaining) << "after " << statement.timeShare << " of the batch";
        }
        EXPECT_GT(checked, 100);
    }
};

} // namespace

TEST_F(BatchProgressTest, SaysNothingUntilSomethingWasMeasured)
{
    const std::size_t first = addOf("encode", 10 * kMegabyte);
    addOf("encode", 30 * kMegabyte);
    EXPECT_EQ(progress.remaining(), std::nullopt);
    progress.begin(first);
    EXPECT_EQ(progress.remaining(), std::nullopt);
    progress.advance(first, 0.5);
    EXPECT_EQ(progress.remaining(), std::nullopt) << "a look after no time at all tells no speed";
    now += 4s;
    progress.advance(first, 40.0);
    EXPECT_EQ(progress.remaining(), 36s) << "the 6 s of the first, 30 of the second";
    now += 6s;
    progress.end(first, Ending::Done);
    EXPECT_EQ(progress.remaining(), 30s);
    EXPECT_EQ(progress.elapsed(), 10s);
}

TEST_F(BatchProgressTest, EstimatesFromBytesAndNotFromCounts)
{
    const std::size_t small = addOf("encode", kMegabyte);
    addOf("encode", 99 * kMegabyte);
    run(small, 1s);
    EXPECT_EQ(progress.remaining(), 99s);
    EXPECT_DOUBLE_EQ(progress.share(), 0.01);
}

TEST_F(BatchProgressTest, EachKindOfJobHasItsSpeed)
{
    const std::size_t fast = addOf("checksum", 100 * kMegabyte);
    const std::size_t slow = addOf("encode", 10 * kMegabyte);
    addOf("checksum", 100 * kMegabyte);
    addOf("encode", 10 * kMegabyte);
    run(fast, 1s);
    run(slow, 20s);
    EXPECT_EQ(progress.remaining(), 21s);
}

TEST_F(BatchProgressTest, DealsTheWorkToAsManyJobsAsRunAtOnce)
{
    std::vector<std::size_t> jobs;
    for (int i = 0; i < 9; ++i)
        jobs.push_back(addOf("encode", 10 * kMegabyte));
    run(jobs[0], 10s);
    progress.begin(jobs[1]);
    progress.begin(jobs[2]);
    EXPECT_EQ(progress.remaining(), 40s) << "eight of 10 s, two at once";
}

TEST_F(BatchProgressTest, ALongLastJobTakesAsLongAsItTakes)
{
    std::vector<std::size_t> jobs;
    for (int i = 0; i < 4; ++i)
        jobs.push_back(addOf("encode", 10 * kMegabyte));
    addOf("encode", 500 * kMegabyte);
    run(jobs[0], 10s);
    progress.begin(jobs[1]);
    progress.begin(jobs[2]);
    progress.begin(jobs[3]);
    EXPECT_EQ(progress.remaining(), 510s) << "behind one of three, and no third of it";
}

TEST_F(BatchProgressTest, IsWithinAFactorOfTwoAfterAThirdOfABatchOfUnequalFiles)
{
    // The sizes of a night's recordings: tunings of seconds beside jams of half an hour, the longest ones last.
    std::vector<ActedJob> jobs;
    for (const qint64 size : {35, 3, 120, 61, 8, 240, 44, 90, 2, 150, 30, 75, 12, 55, 400, 21, 66, 5, 130, 310})
        jobs.push_back({"encode", size * kMegabyte, 8e6});
    expectWithinAFactorOfTwo(actOut(jobs, 3, true));
}

TEST_F(BatchProgressTest, IsSoWithoutAnyProgressOfTheJobs)
{
    std::vector<ActedJob> jobs;
    for (const qint64 size : {35, 3, 120, 61, 8, 240, 44, 90, 2, 150, 30, 75, 12, 55, 200, 21, 66, 5, 130, 110})
        jobs.push_back({"fingerprint", size * kMegabyte, 8e6});
    expectWithinAFactorOfTwo(actOut(jobs, 2, false));
}

TEST_F(BatchProgressTest, IsSoWithKindsOfDifferentSpeeds)
{
    std::vector<ActedJob> jobs;
    for (int i = 0; i < 12; ++i) {
        jobs.push_back({"encode", (i % 5 + 1) * 20 * kMegabyte, 5e6});
        jobs.push_back({"verify", (i % 3 + 1) * 40 * kMegabyte, 60e6});
    }
    expectWithinAFactorOfTwo(actOut(jobs, 2, true));
}

TEST_F(BatchProgressTest, IsSoWithMoreJobsThanItLooksAtOneByOne)
{
    std::vector<ActedJob> jobs;
    for (int i = 0; i < 3000; ++i)
        jobs.push_back({"encode", (i * 37 % 100 + 1) * kMegabyte / 10, 20e6});
    expectWithinAFactorOfTwo(actOut(jobs, 4, true));
}

TEST_F(BatchProgressTest, AJobOfUnknownSizeCountsForAsMuchAsTheOthersOnAverage)
{
    const std::size_t known = addOf("encode", 10 * kMegabyte);
    const std::size_t other = addOf("encode", 30 * kMegabyte);
    const std::size_t unknown = progress.add("encode");
    run(known, 10s);
    EXPECT_EQ(progress.remaining(), 50s);
    EXPECT_NEAR(progress.share(), 10.0 / 60.0, 1e-9);
    progress.begin(other);
    progress.learnSize(unknown, 70 * kMegabyte);
    EXPECT_EQ(progress.remaining(), 100s);
    progress.learnSize(unknown, 5 * kMegabyte);
    EXPECT_EQ(progress.remaining(), 100s) << "what it knows stays";
}

TEST_F(BatchProgressTest, WithoutAnySizeEachJobCountsForOne)
{
    const std::size_t first = progress.add("rip");
    progress.add("rip");
    progress.add("rip");
    run(first, 30s);
    EXPECT_NEAR(progress.share(), 1.0 / 3.0, 1e-9);
    EXPECT_EQ(progress.remaining(), 60s);
}

TEST_F(BatchProgressTest, AJobThatFailedOrWasCancelledTellsNoSpeed)
{
    const std::size_t failed = addOf("encode", 10 * kMegabyte);
    const std::size_t canceled = addOf("encode", 10 * kMegabyte);
    const std::size_t good = addOf("encode", 10 * kMegabyte);
    addOf("encode", 10 * kMegabyte);
    progress.begin(failed);
    now += 10ms;
    progress.end(failed, Ending::Failed);
    progress.end(canceled, Ending::Canceled);
    EXPECT_EQ(progress.remaining(), std::nullopt);
    EXPECT_EQ(progress.failed(), 1);
    EXPECT_EQ(progress.canceled(), 1);
    EXPECT_DOUBLE_EQ(progress.share(), 0.5) << "nothing of theirs is left to do";
    run(good, 10s);
    EXPECT_EQ(progress.remaining(), 10s);
    EXPECT_EQ(progress.ended(), 3);
    EXPECT_EQ(progress.total(), 4);
}

TEST_F(BatchProgressTest, TheBarDoesNotGoBackAtTheNextStageOfAJob)
{
    const std::size_t job = addOf("encode", 10 * kMegabyte);
    addOf("encode", 10 * kMegabyte);
    progress.begin(job);
    progress.advance(job, 80.0);
    EXPECT_DOUBLE_EQ(progress.share(), 0.4);
    progress.advance(job, 5.0);
    EXPECT_DOUBLE_EQ(progress.share(), 0.4);
    progress.advance(job, -1.0);
    progress.advance(job, 900.0);
    EXPECT_DOUBLE_EQ(progress.share(), 0.5);
}

TEST_F(BatchProgressTest, IsFullOnceAllHaveEndedAndNotBefore)
{
    EXPECT_DOUBLE_EQ(progress.share(), 0.0);
    const std::size_t first = addOf("encode", 0);
    const std::size_t second = addOf("encode", 0);
    run(first, 1s);
    EXPECT_LT(progress.share(), 1.0);
    progress.end(second, Ending::Canceled);
    EXPECT_DOUBLE_EQ(progress.share(), 1.0);
    EXPECT_EQ(progress.remaining(), 0s);
    progress.end(second, Ending::Failed);
    EXPECT_EQ(progress.ended(), 2) << "a job ends once";
    EXPECT_EQ(progress.failed(), 0);
}

} // namespace nurv
