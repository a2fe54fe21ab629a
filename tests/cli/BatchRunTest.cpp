// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchRun.h"

#include "app/BaseTab.h"
#include "app/NURVController.h"
#include "base/GuiThread.h"
#include "base/NurvFailure.h"
#include "cli/Console.h"
#include "cli/ConsolePrompts.h"
#include "cli/LogOutput.h"
#include "desktop/NullDesktopServices.h"
#include "engine/NURVInProcessTask.h"
#include "engine/NURVTaskQueue.h"
#include "engine/NURVTaskResults.h"
#include "NurvProgram.h"
#include "process/ChildProcess.h"
#include "toolbox/Toolbox.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <memory>
#include <optional>
#include <thread>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using Original = TaskOutcome::Original;
using Proof = TaskOutcome::Proof;

/// An outcome of which a test names only what matters to it.
struct ScriptedOutcome {
    QString output = {};
    Original original = Original::Untouched;
    Proof proof = Proof::NotNeeded;
    QString problem = {};
    qint64 sourceBytes = 0;
    qint64 outputBytes = 0;

    void writeTo(TaskOutcome &outcome) const { outcome = {output, original, proof, problem, sourceBytes, outputBytes}; }
};

/// A job that ends as a test says; its outcome is there only when it is settled.
class OutcomeTask final : public NURVInProcessTask {
public:
    struct Script {
        QString source = {};
        ScriptedOutcome outcome = {};
        QString failure = {}; ///< what is said when it fails
        QString report = {};  ///< of a job that does not fail
        QString warning = {};
        std::function<void(NURVTask &task)> work = {}; ///< on its thread, before all that
    };

    OutcomeTask(NURVTaskQueue *queue, Script script) : NURVInProcessTask(queue), m_script(std::move(script))
    {
        setSourcePath(m_script.source);
        setTitle(m_script.source.isEmpty() ? u"list"_s : m_script.source.section(u'/', -1));
    }

protected:
    void doStartTask() override
    {
        if (m_script.work)
            m_script.work(*this);
        if (!m_script.failure.isEmpty())
            failWith(m_script.failure);
        appendResultsForSelf(m_script.report);
        if (!m_script.warning.isEmpty())
            warn(m_script.warning);
    }
    void afterCompletion() override { m_script.outcome.writeTo(ownOutcome()); }

private:
    Script m_script;
};

/// A tab that makes a job of each script, all with one result set.
class ScriptTab final : public BaseTab {
public:
    explicit ScriptTab(NURVController &controller) : BaseTab(controller, u"encode"_s) {}

    std::vector<OutcomeTask::Script> scripts;
    QStringList existing;
    QString failure; ///< thrown when the jobs are queued

    void executeCommand() override
    {
        NURVTaskQueue &queue = nurvController().taskQueue();
        const auto results = std::make_shared<NURVTaskResults>();
        std::vector<std::shared_ptr<NURVTask>> tasks;
        for (const OutcomeTask::Script &script : scripts) {
            tasks.push_back(std::make_shared<OutcomeTask>(&queue, script));
            results->addTaskInSet(*tasks.back());
            tasks.back()->setResults(results);
        }
        setPassedOver(existing);
        queue.addTasks(tasks);
        if (!failure.isEmpty())
            throw NurvFailure(failure);
    }
};

class BatchRunTest : public ::testing::Test {
protected:
    BatchRunTest() { names.add(u"in"_s, u"/m/in"_s, true); }

    void add(const OutcomeTask::Script &script) { tab.scripts.push_back(script); }

    ExitStatus run(BatchReport::Options options = {})
    {
        options.names = names;
        ::testing::internal::CaptureStdout();
        ::testing::internal::CaptureStderr();
        ExitStatus status{};
        {
            ConsolePrompts consolePrompts(console, {});
            BatchRun batch(controller.taskQueue(), consolePrompts, console,
                           {.report = options, .programIsMissing = [] { return false; }});
            status = batch.run(tab);
            batch.printBatchObject(status, {}, {});
        }
        output = QByteArray::fromStdString(::testing::internal::GetCapturedStdout());
        errors = QByteArray::fromStdString(::testing::internal::GetCapturedStderr());
        lines = QString::fromUtf8(errors).split(u'\n', Qt::SkipEmptyParts);
        return status;
    }

    /// The closing line without its duration.
    [[nodiscard]] QString closing() const
    {
        return lines.isEmpty() ? QString() : lines.last().section(u"in under"_s, 0, 0);
    }

    NullDesktopServices services;
    Console console;
    LogOutput log{console};
    ConsolePrompts prompts{console, {}};
    NURVController controller{prompts, services, toolbox()};
    ScriptTab tab{controller};
    SourceNames names;
    QByteArray output;
    QByteArray errors;
    QStringList lines;
};

} // namespace

TEST_F(BatchRunTest, TellsWhatWasDoneInALinePerJobAndAClosingLine)
{
    add({.source = u"/m/in/disc1/a.wav"_s,
         .outcome = {.output = u"/o/a.flac"_s,
                     .original = Original::Deleted,
                     .proof = Proof::Proven,
                     .sourceBytes = 60'000'000,
                     .outputBytes = 30'000'000}});
    add({.source = u"/m/in/b.wav"_s, .outcome = {.sourceBytes = 38'000'000, .outputBytes = 22'000'000}});
    EXPECT_EQ(run(), ExitStatus::Ok);
    EXPECT_EQ(output, "");
    ASSERT_EQ(lines.size(), 3) << errors.constData();
    EXPECT_TRUE(lines.contains(u"disc1/a.wav: Complete"_s));
    EXPECT_TRUE(lines.contains(u"b.wav: Complete"_s));
    EXPECT_EQ(lines.last(), u"2 of 2 done; 98 MB to 52 MB in under 1 s"_s);

    EXPECT_EQ(run({.quiet = true}), ExitStatus::Ok);
    EXPECT_EQ(errors, "");
}

TEST_F(BatchRunTest, AnOriginalThatWasKeptIsToldWhateverTheOptionsAndGivesStatus1)
{
    add({.source = u"/m/in/a.wav"_s,
         .outcome = {.original = Original::Kept, .problem = u"14 tags and a picture have no place in a WAV file"_s}});
    const QString told = u"a.wav: Complete; original kept: 14 tags and a picture have no place in a WAV file"_s;
    EXPECT_EQ(run(), ExitStatus::Failed);
    EXPECT_EQ(lines.first(), told);
    EXPECT_EQ(closing(), u"0 of 1 done, 1 original kept; "_s);
    EXPECT_EQ(run({.quiet = true}), ExitStatus::Failed);
    EXPECT_EQ(lines, QStringList{told});
    tab.scripts.front().outcome.problem.clear();
    EXPECT_EQ(run(), ExitStatus::Failed);
    EXPECT_EQ(lines.first(), u"a.wav: Complete; original kept"_s);
}

TEST_F(BatchRunTest, AFailedJobIsToldByItsProblem)
{
    add({.source = u"/m/in/disc046/Track 05.wav"_s,
         .outcome = {.original = Original::Kept,
                     .problem = u"damaged: its header promises 22050 samples, the file holds 0"_s},
         .failure = u"banner\nERROR: something else\n"_s});
    EXPECT_EQ(run(), ExitStatus::Failed);
    EXPECT_EQ(lines.first(), u"disc046/Track 05.wav: damaged: its header promises 22050 samples, the file holds 0; "
                             "original kept"_s);
    EXPECT_EQ(closing(), u"0 of 1 done, 1 original kept; "_s);
    EXPECT_EQ(output, "");

    tab.scripts.front().outcome = {};
    EXPECT_EQ(run({.quiet = true}), ExitStatus::Failed);
    EXPECT_EQ(lines, QStringList{u"disc046/Track 05.wav: something else"_s});
}

TEST_F(BatchRunTest, ATabThatThrowsGivesStatus1AndItsReason)
{
    tab.failure = u"the disk is gone"_s;
    EXPECT_EQ(run(), ExitStatus::Failed);
    EXPECT_TRUE(errors.contains("The command could not be carried out. the disk is gone")) << errors.constData();
    add({.source = u"/m/in/a.wav"_s});
    EXPECT_EQ(run(), ExitStatus::Failed) << "what was queued before is done, and not all that was asked for";
    EXPECT_EQ(closing(), u"1 of 1 done; "_s);
}

TEST_F(BatchRunTest, VerboseAddsTheReportOfThatJobOnly)
{
    add({.source = u"/m/in/a.wav"_s,
         .outcome = {.problem = u"its tags did not arrive"_s},
         .report = u"one\n\ntwo\n"_s});
    add({.source = u"/m/in/b.wav"_s, .report = u"never shown\n"_s});
    EXPECT_EQ(run({.verbose = true}), ExitStatus::Failed);
    EXPECT_TRUE(errors.contains("a.wav: Complete; its tags did not arrive\n    one\n    two\n")) << errors.constData();
    EXPECT_FALSE(errors.contains("never shown"));
    EXPECT_EQ(output, "");
    EXPECT_EQ(closing(), u"1 of 2 done, 1 not in full; "_s);
    EXPECT_EQ(run(), ExitStatus::Failed);
    EXPECT_FALSE(errors.contains("    ")) << errors.constData();
}

TEST_F(BatchRunTest, TheReportOfASetInWhichNothingWentWrongGoesToStandardOutput)
{
    add({.source = u"/m/in/a.wav"_s, .report = u"sum of a"_s});
    add({.source = u"/m/in/b.wav"_s, .report = u"sum of b"_s});
    EXPECT_EQ(run({.quiet = true}), ExitStatus::Ok);
    EXPECT_EQ(output, "sum of a\nsum of b\n");
    EXPECT_EQ(errors, "");
}

TEST_F(BatchRunTest, WhatIsNotProvenIsSaidAndCountedButNoFailure)
{
    add({.source = u"/m/in/a.shn"_s, .outcome = {.proof = Proof::NotProven}});
    EXPECT_EQ(run(), ExitStatus::Ok);
    EXPECT_EQ(lines.first(), u"a.shn: Complete; not proven"_s);
    EXPECT_EQ(closing(), u"1 of 1 done, 1 not proven; "_s);
    EXPECT_EQ(run({.quiet = true}), ExitStatus::Ok);
    EXPECT_EQ(errors, "");
}

TEST_F(BatchRunTest, AListThatWasNotWrittenIsNoFileOfTheBatch)
{
    add({.source = u"/m/in/a.wav"_s});
    add({.source = {}, .warning = u"Unable to write /o/a.md5: No space left on device"_s});
    EXPECT_EQ(run(), ExitStatus::Failed);
    EXPECT_TRUE(lines.contains(u"list: Unable to write /o/a.md5: No space left on device"_s)) << errors.constData();
    EXPECT_EQ(closing(), u"1 of 1 done, 1 not in full; "_s);
}

TEST_F(BatchRunTest, WhatExistedAlreadyIsNoErrorAndCounted)
{
    tab.existing = {u"/m/in/a.wav"_s, u"/m/in/b.wav"_s};
    EXPECT_EQ(run(), ExitStatus::Ok);
    EXPECT_EQ(closing(), u"0 of 2 done, 2 existed already; "_s);
    add({.source = u"/m/in/c.wav"_s});
    EXPECT_EQ(run(), ExitStatus::Ok);
    EXPECT_EQ(closing(), u"1 of 3 done, 2 existed already; "_s);
}

TEST_F(BatchRunTest, ABatchWithoutAnyJobHasNoClosingLine)
{
    EXPECT_EQ(run(), ExitStatus::Failed);
    EXPECT_EQ(errors, "");
}

TEST_F(BatchRunTest, WhatWasRefusedIsPartOfTheClosingLine)
{
    add({.source = u"/m/in/a.wav"_s});
    EXPECT_EQ(run({.refused = 2}), ExitStatus::Ok);
    EXPECT_EQ(closing(), u"1 of 1 done, 2 refused; "_s);
}

TEST_F(BatchRunTest, NoProgramIsStartedOnceTheEndWasOrdered)
{
    QString whyNot;
    add({.source = u"/m/in/a.wav"_s, .work = [&whyNot](NURVTask &task) {
             ::kill(::getpid(), SIGTERM);
             while (!task.cancelled())
                 std::this_thread::yield();
             // Behind what takes the signal; no longer possible when that was all.
             static_cast<void>(runOnGuiThread([] {}));
             whyNot = runChild({.launchPath = u"/bin/true"_s, .arguments = {}, .environment = {}, .workingDirectory = {}})
                          .startError;
         }});
    EXPECT_EQ(run(), ExitStatus::Interrupted);
    EXPECT_EQ(whyNot, u"Operation canceled");
    children::terminateAll(std::chrono::milliseconds(0), false);
    guiThreadGate::open();
}

TEST_F(BatchRunTest, AnObjectTellsTheOutcomeOfASettledJob)
{
    add({.source = u"/m/in/a.wav"_s,
         .outcome = {.output = u"/o/a.flac"_s,
                     .original = Original::Trashed,
                     .proof = Proof::Proven,
                     .sourceBytes = 9'000'000'000,
                     .outputBytes = 5'000'000'000}});
    add({.source = u"/m/in/b.wav"_s,
         .outcome = {.original = Original::Kept, .proof = Proof::NotProven, .problem = u"the sound differs"_s},
         .failure = u"ERROR: the sound differs"_s});
    add({.source = u"/m/in/c.wav"_s, .outcome = {.original = Original::Deleted, .proof = Proof::NotProven}});
    tab.existing = {u"/m/in/d.wav"_s};
    EXPECT_EQ(run({.json = true, .quiet = true}), ExitStatus::Failed);
    EXPECT_EQ(errors, "");
    const QList<QJsonObject> objects = test::jsonLines(output);
    ASSERT_EQ(objects.size(), 4) << output.constData();
    QHash<QString, QJsonObject> jobs;
    for (const QJsonObject &object : objects)
        jobs.insert(object[u"source"_s].toString(), object);
    const QJsonObject trashed = jobs[u"/m/in/a.wav"_s];
    EXPECT_EQ(trashed[u"output"_s], u"/o/a.flac"_s);
    EXPECT_EQ(trashed[u"original"_s], u"trashed"_s);
    EXPECT_EQ(trashed[u"proof"_s], u"proven"_s);
    EXPECT_EQ(trashed[u"reason"_s], QString());
    EXPECT_EQ(trashed[u"sourceBytes"_s].toInteger(), 9'000'000'000);
    EXPECT_EQ(trashed[u"outputBytes"_s].toInteger(), 5'000'000'000);
    const QJsonObject failed = jobs[u"/m/in/b.wav"_s];
    EXPECT_TRUE(failed[u"output"_s].isNull());
    EXPECT_EQ(failed[u"status"_s], u"error"_s);
    EXPECT_EQ(failed[u"original"_s], u"kept"_s);
    EXPECT_EQ(failed[u"reason"_s], u"the sound differs"_s);
    const QJsonObject batch = objects.last();
    EXPECT_EQ(batch[u"type"_s], u"batch"_s);
    EXPECT_EQ(batch[u"jobs"_s], 3);
    EXPECT_EQ(batch[u"complete"_s], 2);
    EXPECT_EQ(batch[u"failed"_s], 1);
    EXPECT_EQ(batch[u"kept"_s], 1);
    EXPECT_EQ(batch[u"notProven"_s], 1);
    EXPECT_EQ(batch[u"skippedExisting"_s], 1);
    EXPECT_EQ(batch[u"sourceBytes"_s].toInteger(), 9'000'000'000);
    EXPECT_EQ(batch[u"exitStatus"_s], 1);
}

} // namespace nurv
