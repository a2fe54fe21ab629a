// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/Conversion.h"
#include "engine/NURVAsyncNSTask.h"

#include <functional>

namespace nurv {

/// One file converted by one program: what the five conversion jobs have in common.
///
///     child ──> processTaskOutput(chunk) ──> parseOutput ──> status line, progress, report
///       └─ end ──> finishOutput: tags ──> a worker examines the output ──> cleanup: the source is
///                                                              deleted if that was asked for
///
/// Lives on the GUI thread like every command job. Between the end of the program and
/// `takeExamination` the job is its worker's: status line, report, outcome and error flag.
class ConversionTask : public NURVAsyncNSTask, public Conversion {
public:
    /// Fails when another running job, or an earlier one of the batch, makes the output.
    void startTask() final;

    /// Of a job that failed or met damage: the source's path, then the end of what its program wrote,
    /// then why the job failed. The slots of the set tell no member from another.
    [[nodiscard]] QString report() const override;

protected:
    /// Names the job's row after the source.
    ConversionTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                   const QString &fileName);

    void processTaskOutput(const QString &chunk) final;
    void failWith(const QString &reason) final;
    /// Lets go of the output, before the queue starts further jobs.
    void finalCleanup() override { releaseOutput(); }
    /// Removes what a program left half made, finishes and examines the output, then stops.
    void completeStop() final;
    /// Why the format has no place for the source, as far as its header tells; its program may not say it where anybody
    /// reads it. GUI thread.
    [[nodiscard]] virtual std::optional<QString> refusal() const { return std::nullopt; }
    /// Whether the program replaces a file in its output's place.
    [[nodiscard]] virtual bool replacesOutput() const { return false; }
    /// Copies tags, where the job does that: after the program has ended, before what was
    /// made is looked at. Once, whatever became of the program, when there is an output.
    virtual void finishOutput() {}
    [[nodiscard]] virtual ChunkReport parseOutput(const QString &chunk) const = 0;

    /// Whether the program ended well, whatever became of the job.
    [[nodiscard]] bool programSucceeded() const;
    /// Runs `copy`, which copies tags to the output, unless the output is not this
    /// job's: it was there before and the program failed. What `copy` throws goes to
    /// the log: the output then stays without tags and the job's state as it is.
    void copyTags(const std::function<void()> &copy);

private:
    void removeHalfMadeFiles() const;
    /// Gives what a program has made under another name the output's one.
    void takeIntermediateFile();
    /// With its tags, or without what a failed program has left. Blocks; a worker where there is one.
    void finishMadeOutput();
    void takeExamination(const SourceRetirement::Verdict &verdict);
    void finishStop();

    bool m_intermediateExisted = false;
};

} // namespace nurv
