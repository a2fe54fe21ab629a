// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/UnfinishedFiles.h"

#include "app/PathNames.h"
#include "app/TestApplication.h"
#include "engine/NURVTaskQueue.h"
#include "engine/TestTasks.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace nurv::test {

namespace {

/// A tab makes a job of every file of its list, and clears the list.
class UnfinishedFilesTest : public ::testing::Test {
protected:
    std::vector<std::shared_ptr<HeldTask>> execute(CountingTab &tab)
    {
        std::vector<std::shared_ptr<HeldTask>> jobs;
        tab.whileExecuting = [&] {
            for (const QString &path : tab.fileNames()) {
                jobs.push_back(std::make_shared<HeldTask>(&queue));
                jobs.back()->setSourcePath(path);
                queue.addTask(jobs.back());
            }
            tab.clearFiles();
        };
        EXPECT_TRUE(application.controller.execute(tab));
        return jobs;
    }
    void settle(const std::shared_ptr<HeldTask> &job, bool failed = false)
    {
        job->finish(failed);
        Q_EMIT queue.taskSettled(job);
    }

    TestApplication application;
    NURVTaskQueue &queue = application.controller.taskQueue();
    CountingTab &encode = application.tab(u"encode"_s);
    CountingTab &decode = application.tab(u"decode"_s);
    UnfinishedFiles files{application.controller};
    TestFolder folder;
};

} // namespace

TEST_F(UnfinishedFilesTest, WhatFailedOrWasCanceledGoesBackToItsListAndNothingElse)
{
    encode.addMatchedFiles({u"/m/show/1.wav"_s, u"/m/show/2.wav"_s, u"/m/show/3.wav"_s}, {u"/m"_s, u"/m"_s, u"/m"_s});
    const auto jobs = execute(encode);
    ASSERT_EQ(jobs.size(), 3U);
    int changes = 0;
    QObject::connect(&files, &UnfinishedFiles::changed, &files, [&changes] { ++changes; });
    settle(jobs[0]);
    EXPECT_EQ(files.count(), 0);
    EXPECT_EQ(changes, 0);
    settle(jobs[1], true);
    EXPECT_EQ(files.count(), 1);
    jobs[2]->setCancelled(true);
    settle(jobs[2]);
    EXPECT_EQ(files.count(), 2);
    EXPECT_EQ(changes, 2);

    application.controller.selectTab(u"decode"_s);
    files.putBack();
    EXPECT_THAT(encode.fileNames(), ElementsAre(u"/m/show/2.wav"_s, u"/m/show/3.wav"_s));
    EXPECT_EQ(encode.relativeFolderOf(u"/m/show/2.wav"_s), u"show"_s) << "as when they were added";
    EXPECT_EQ(application.controller.selectedTabViewItem(), u"encode"_s);
    EXPECT_EQ(files.count(), 0);
    EXPECT_EQ(changes, 3);
    files.putBack();
    EXPECT_EQ(encode.fileNames().size(), 2);
    EXPECT_EQ(changes, 3);
}

TEST_F(UnfinishedFilesTest, AJobThatHasDeletedItsSourceLeavesNothingToPutBack)
{
    encode.addMatchedFiles({u"/m/1.wav"_s, u"/m/2.wav"_s});
    const auto jobs = execute(encode);
    jobs[0]->ownOutcome().original = TaskOutcome::Original::Deleted;
    settle(jobs[0], true);
    jobs[1]->ownOutcome().original = TaskOutcome::Original::Kept;
    settle(jobs[1], true);
    files.putBack();
    EXPECT_THAT(encode.fileNames(), ElementsAre(u"/m/2.wav"_s));
}

TEST_F(UnfinishedFilesTest, JobsThatNoTabAddedAreNotItsBusiness)
{
    const auto job = std::make_shared<HeldTask>(&queue);
    job->setSourcePath(u"/m/1.wav"_s);
    queue.addTask(job);
    settle(job, true);
    EXPECT_EQ(files.count(), 0);
}

TEST_F(UnfinishedFilesTest, WhatIsTriedAgainIsNotPutBackTwice)
{
    encode.addMatchedFiles({u"/m/1.wav"_s});
    decode.addMatchedFiles({u"/m/1.wav"_s});
    settle(execute(encode)[0], true);
    settle(execute(decode)[0], true);
    EXPECT_EQ(files.count(), 2);
    encode.addMatchedFiles({u"/m/1.wav"_s});
    const auto again = execute(encode);
    EXPECT_EQ(files.count(), 1) << "the other page's";
    settle(again[0]);
    files.putBack();
    EXPECT_THAT(encode.fileNames(), IsEmpty());
    EXPECT_THAT(decode.fileNames(), ElementsAre(u"/m/1.wav"_s));
    EXPECT_EQ(application.controller.selectedTabViewItem(), u"decode"_s);
}

TEST_F(UnfinishedFilesTest, AListThatATabWalksIsNotChanged)
{
    encode.addMatchedFiles({u"/m/1.wav"_s});
    settle(execute(encode)[0], true);
    encode.addMatchedFiles({u"/m/2.wav"_s});
    encode.whileExecuting = [this] {
        files.putBack();
        EXPECT_THAT(encode.fileNames(), ElementsAre(u"/m/2.wav"_s));
        encode.clearFiles();
    };
    EXPECT_TRUE(application.controller.execute(encode));
    EXPECT_THAT(encode.fileNames(), ElementsAre(u"/m/1.wav"_s));
}

} // namespace nurv::test
