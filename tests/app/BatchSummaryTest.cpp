// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BatchSummary.h"

#include "engine/NURVTask.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// A job that has ended with an outcome.
class EndedTask final : public NURVTask {
public:
    explicit EndedTask(const TaskOutcome &outcome) : NURVTask(nullptr) { ownOutcome() = outcome; }
    using NURVTask::warn;
};

TaskOutcome outcomeOf(const QString &output, qint64 sourceBytes, qint64 outputBytes)
{
    TaskOutcome outcome;
    outcome.output = output;
    outcome.sourceBytes = sourceBytes;
    outcome.outputBytes = outputBytes;
    return outcome;
}

} // namespace

TEST(BatchSummary, AddsUpFilesFoldersAndSizes)
{
    BatchSummary summary;
    summary.add(EndedTask(outcomeOf(u"/home/anna/Music/1.flac"_s, 1000, 600)));
    summary.add(EndedTask(outcomeOf(u"/home/anna/Music/2.flac"_s, 3000, 1880)));
    summary.add(EndedTask(outcomeOf(u"/home/anna/Music/list.st5"_s, 0, 50)));
    EXPECT_EQ(summary.done, 3);
    EXPECT_EQ(summary.files, 3);
    EXPECT_EQ(summary.percentSmaller(), 38);
    EXPECT_EQ(summary.commonFolder(), u"/home/anna/Music"_s);
}

TEST(BatchSummary, AJobWithSeveralFilesNamesTheirFolder)
{
    BatchSummary summary;
    TaskOutcome set = outcomeOf(u"/home/anna/Music/fixed"_s, 4000, 4000);
    set.outputFiles = 11;
    summary.add(EndedTask(set));
    EXPECT_EQ(summary.files, 11);
    EXPECT_EQ(summary.commonFolder(), u"/home/anna/Music/fixed"_s);
    EXPECT_EQ(summary.percentSmaller(), 0);
}

TEST(BatchSummary, OfSeveralFoldersTheOneAboveIsCommon)
{
    BatchSummary summary;
    summary.add(EndedTask(outcomeOf(u"/home/anna/Music/disc 1/1.flac"_s, 10, 5)));
    summary.add(EndedTask(outcomeOf(u"/home/anna/Music/disc 10/1.flac"_s, 10, 5)));
    EXPECT_EQ(summary.folders.size(), 2);
    EXPECT_EQ(summary.commonFolder(), u"/home/anna/Music"_s);
    summary.add(EndedTask(outcomeOf(u"/home/anna/Music/1.flac"_s, 10, 5)));
    EXPECT_EQ(summary.commonFolder(), u"/home/anna/Music"_s);
    summary.add(EndedTask(outcomeOf(u"/srv/1.flac"_s, 10, 5)));
    EXPECT_EQ(summary.commonFolder(), QString()) << "the root says nothing";
}

TEST(BatchSummary, WhatWasMadeLargerIsSo)
{
    BatchSummary summary;
    EXPECT_EQ(summary.percentSmaller(), std::nullopt);
    summary.add(EndedTask(outcomeOf(u"/m/1.wav"_s, 1000, 1680)));
    EXPECT_EQ(summary.percentSmaller(), -68);
}

TEST(BatchSummary, WhatIsNotAsItWasAskedForIsCounted)
{
    BatchSummary summary;
    EndedTask failed(outcomeOf(u"/m/1.flac"_s, 1000, 10));
    failed.setError(true);
    summary.add(failed);
    EndedTask canceled({});
    canceled.setError(true);
    canceled.setCancelled(true);
    summary.add(canceled);
    TaskOutcome kept = outcomeOf(u"/m/2.flac"_s, 1000, 600);
    kept.original = TaskOutcome::Original::Kept;
    kept.problem = u"it was written to meanwhile"_s;
    kept.proof = TaskOutcome::Proof::NotProven;
    summary.add(EndedTask(kept));
    EndedTask warned(outcomeOf(u"/m/3.flac"_s, 1000, 600));
    warned.warn(u"the tags were not copied"_s);
    summary.add(warned);
    EXPECT_EQ(summary.failed, 1);
    EXPECT_EQ(summary.canceled, 1);
    EXPECT_EQ(summary.done, 2);
    EXPECT_EQ(summary.originalsKept, 1);
    EXPECT_EQ(summary.notInFull, 1);
    EXPECT_EQ(summary.notProven, 1);
    EXPECT_EQ(summary.files, 2) << "what a failed job left is no result";
    EXPECT_EQ(summary.percentSmaller(), 40);
}

} // namespace nurv
