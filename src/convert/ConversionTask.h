// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/OutputClaim.h"
#include "convert/ToolOutputParsers.h"
#include "engine/NURVAsyncNSTask.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace nurv {

/// One file converted by one program: what the five conversion jobs have in common.
///
///     child ──> processTaskOutput(chunk) ──> parseOutput ──> status line, progress, report
///       └─ end ──> cleanup: tags, then the source is deleted if that was asked for
///
/// Lives on the GUI thread like every command job.
class ConversionTask : public NURVAsyncNSTask {
public:
    /// The source, as an absolute path.
    [[nodiscard]] const QString &fileName() const { return m_fileName; }
    /// The file that the program makes.
    [[nodiscard]] virtual QString outputFile() const = 0;

    /// Whether the source is deleted once the job has succeeded.
    [[nodiscard]] bool deleteOriginal() const { return m_deleteOriginal; }
    void setDeleteOriginal(bool deleteOriginal) { m_deleteOriginal = deleteOriginal; }

    /// Makes the job a member of a batch. Before the start.
    void setBatch(std::shared_ptr<ConversionBatch> batch) { m_batch = std::move(batch); }

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
    void finalCleanup() override { m_claim.release(); }
    /// Removes what a killed program left half made, has an output that is to replace
    /// its source written to the disk, then stops.
    void completeStop() final;
    [[nodiscard]] virtual toolOutput::ChunkReport parseOutput(const QString &chunk) const = 0;

    /// Shows the next status line.
    void showStatus(const QString &text);
    /// Whether the program ended well, whatever became of the job.
    [[nodiscard]] bool programSucceeded() const;
    /// Runs `copy`, which copies tags to the output, unless the output is not this
    /// job's: it was there before and the program failed. What `copy` throws goes to
    /// the log: the output then stays without tags and the job's state as it is.
    void copyTags(const std::function<void()> &copy);
    /// Deletes the source if that was asked for, the job succeeded, and nothing speaks
    /// against it: see `reasonToKeepOriginal`. What stays is named in the log.
    void deleteSourceIfDone();
    /// Lets go of the result set unless the job failed or its batch met damage:
    /// nothing is to be reported.
    void dropResultsUnlessFailed();

private:
    /// Why the source may be the only copy of something although the job succeeded.
    [[nodiscard]] std::optional<QString> reasonToKeepOriginal() const;
    void keepForReport(const QString &text);
    void removeHalfMadeFiles() const;
    void removeHalfMade(const QString &path) const;

    QString m_fileName;
    QString m_ownText; ///< what `report` is made of, as it was written
    std::shared_ptr<ConversionBatch> m_batch;
    OutputClaim m_claim;
    bool m_toldOfDamage = false;
    bool m_outputExisted = false;
    bool m_temporaryExisted = false;
    bool m_deleteOriginal = false;
    bool m_outputIsOnDisk = false;
    bool m_sourceHasTheOnlyTags = false;
};

} // namespace nurv
