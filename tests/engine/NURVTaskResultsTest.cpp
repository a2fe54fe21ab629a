// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVTaskResults.h"

#include "engine/NURVTask.h"
#include "engine/ReportFrame.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

struct ThreeTasks : ::testing::Test {
    std::shared_ptr<NURVTask> first = std::make_shared<NURVTask>(nullptr);
    std::shared_ptr<NURVTask> second = std::make_shared<NURVTask>(nullptr);
    std::shared_ptr<NURVTask> third = std::make_shared<NURVTask>(nullptr);
    NURVTaskResults set;

    void SetUp() override
    {
        set.addTaskInSet(*first);
        set.addTaskInSet(*second);
        set.addTaskInSet(*third);
    }
};

using NURVTaskResultsTest = ThreeTasks;

TEST_F(NURVTaskResultsTest, KeepsListOrderWhenTheThirdJobWritesFirst)
{
    set.appendResults(u"3"_s, *third);
    set.appendResults(u"1"_s, *first);
    set.appendResults(u"2"_s, *second);
    EXPECT_EQ(set.results(), u"1\n2\n3\n");
}

TEST_F(NURVTaskResultsTest, GivesAnEmptyLineForAJobWithoutText)
{
    set.appendResults(u"a"_s, *first);
    set.appendResults(u"c"_s, *third);
    EXPECT_EQ(set.results(), u"a\n\nc\n");
}

TEST_F(NURVTaskResultsTest, WritesToTheFirstSlotWhenNoJobIsNamed)
{
    set.appendResults(u"x"_s);
    set.appendResults(u"y"_s);
    EXPECT_EQ(set.results(), u"xy\n\n\n");
    set.setResults(u"z"_s);
    EXPECT_EQ(set.results(), u"z\n\n\n");
}

TEST_F(NURVTaskResultsTest, TellsItsFrameOfMembersThatStopAndStandsInIt)
{
    struct Frame final : ReportFrame {
        void addMember(int place, const NURVTask &task) override { stopped += QString::number(place) + task.title(); }
        [[nodiscard]] QString head() const override { return u"head\n"_s + stopped + u'\n'; }
        [[nodiscard]] QString foot() const override { return u"foot\n"_s; }
        QString stopped;
    };
    EXPECT_EQ(set.windowText(), set.results());
    set.setFrame(std::make_shared<Frame>());
    NURVTask stranger(nullptr);
    third->setTitle(u"c"_s);
    first->setTitle(u"a"_s);
    set.noteStop(*third);
    set.noteStop(stranger);
    set.noteStop(*first);
    set.appendResults(u"text"_s, *first);
    EXPECT_EQ(set.results(), u"text\n\n\n");
    EXPECT_EQ(set.windowText(), u"head\n2c0a\ntext\n\n\nfoot\n");
    EXPECT_EQ(set.placeOf(*third), 2);
    EXPECT_EQ(set.placeOf(stranger), -1);
}

TEST_F(NURVTaskResultsTest, LosesWhatANonMemberWrites)
{
    const NURVTask stranger(nullptr);
    set.appendResults(u"lost"_s, stranger);
    set.setResults(u"lost"_s, stranger);
    EXPECT_EQ(set.results(), u"\n\n\n");
}

TEST_F(NURVTaskResultsTest, LosesATextWithoutAJobWhileTheSetIsEmpty)
{
    NURVTaskResults empty;
    empty.appendResults(u"lost"_s);
    empty.setResults(u"lost"_s);
    EXPECT_EQ(empty.results(), QString());
}

TEST_F(NURVTaskResultsTest, ReplacesTheSlotOfAJob)
{
    set.appendResults(u"old"_s, *second);
    set.setResults(u"new"_s, *second);
    EXPECT_EQ(set.results(), u"\nnew\n\n");
}

TEST_F(NURVTaskResultsTest, ResetsTheFirstSlotOfAJobThatIsAddedTwice)
{
    set.appendResults(u"b"_s, *second);
    set.addTaskInSet(*second);
    EXPECT_EQ(set.memberCount(), 4);
    EXPECT_EQ(set.results(), u"\n\n\n") << "the second place has no slot of its own";
    set.appendResults(u"again"_s, *second);
    EXPECT_EQ(set.results(), u"\nagain\n\n");
}

TEST_F(NURVTaskResultsTest, CountsAMemberThatIsGoneAsDone)
{
    first->stopTask();
    second->stopTask();
    EXPECT_FALSE(set.allTasksDone());
    third.reset();
    EXPECT_TRUE(set.allTasksDone());
}

TEST_F(NURVTaskResultsTest, GivesTheReportToOneCallerOnly)
{
    EXPECT_FALSE(set.takeReport());
    set.setTaskSetDone(true);
    EXPECT_TRUE(set.takeReport());
    EXPECT_FALSE(set.takeReport());
}

TEST_F(NURVTaskResultsTest, HandsTheFollowUpJobToOneCallerOnly)
{
    const auto next = std::make_shared<NURVTask>(nullptr);
    set.setTaskAfterSetDone(next);
    EXPECT_EQ(set.finishIfAllDone(), nullptr);
    EXPECT_FALSE(set.taskSetDone());
    for (const auto &task : {first, second, third})
        task->stopTask();
    EXPECT_EQ(set.finishIfAllDone(), next);
    EXPECT_TRUE(set.taskSetDone());
    EXPECT_EQ(set.finishIfAllDone(), nullptr);
}

TEST_F(NURVTaskResultsTest, TakesTextsFromManyThreads)
{
    std::vector<std::thread> writers;
    for (const NURVTask *task : {first.get(), second.get(), third.get()}) {
        writers.emplace_back([this, task] {
            for (int i = 0; i < 1000; ++i)
                set.appendResults(u"x"_s, *task);
        });
    }
    for (std::thread &writer : writers)
        writer.join();
    const QString line = QString(1000, u'x') + u'\n';
    EXPECT_EQ(set.results(), line + line + line);
}

TEST_F(NURVTaskResultsTest, TakesTheTextsOfOneJobFromManyThreads)
{
    // Without the lock one of them would write over what another writes, which two processors show within milliseconds.
    constexpr int kTexts = 100'000;
    std::vector<std::thread> writers;
    for (int i = 0; i < 4; ++i) {
        writers.emplace_back([this] {
            for (int text = 0; text < kTexts; ++text)
                set.appendResults(u"x"_s, *second);
        });
    }
    for (std::thread &writer : writers)
        writer.join();
    EXPECT_EQ(set.results(*second), QString(4 * kTexts, u'x'));
}

} // namespace
} // namespace nurv
