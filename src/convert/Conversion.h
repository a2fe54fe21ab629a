// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/OutputClaim.h"
#include "convert/ToolOutputParsers.h"

#include <QString>

#include <memory>
#include <optional>

#include <sys/stat.h>

namespace nurv {

class NURVTask;

/// The conversion of one file, whatever does the work: its output, its place in the
/// batch, what it has to report, and whether its source may go. Every conversion job
/// is a task and, beside that, one of these.
///
///     takeOutput ──> the work ──> doubts, if any ──> deleteSourceIfDone ──> releaseOutput
///
/// Used by one thread at a time: the GUI thread before the start, then whichever
/// thread the job works on.
class Conversion {
public:
    virtual ~Conversion();
    Conversion(const Conversion &) = delete;
    Conversion &operator=(const Conversion &) = delete;

    /// The source, as an absolute path.
    [[nodiscard]] const QString &fileName() const;
    /// The file that the conversion makes.
    [[nodiscard]] virtual QString outputFile() const = 0;

    /// Whether the source is deleted once the job has succeeded.
    [[nodiscard]] bool deleteOriginal() const { return m_deleteOriginal; }
    void setDeleteOriginal(bool deleteOriginal) { m_deleteOriginal = deleteOriginal; }

    /// Makes the conversion a member of a batch. Before any member of it is started.
    void setBatch(std::shared_ptr<ConversionBatch> batch);

    /// The job that this is.
    [[nodiscard]] std::shared_ptr<NURVTask> asTask() const;

protected:
    /// Names the job's row after the source. `task` is this very object.
    Conversion(NURVTask &task, const QString &fileName);

    /// Takes the output for this job and looks at what is there now. GUI thread. Returns
    /// why it is not to be had: another job makes it, or it is another source of the batch.
    [[nodiscard]] std::optional<QString> takeOutput();
    /// Looks again, right before the output is made: what came there since is somebody else's.
    void lookAtOutput();
    /// Before the queue is told of the end and starts further jobs.
    void releaseOutput() { m_claim.release(); }

    /// Whether there was a file in the output's place before the work began.
    [[nodiscard]] bool outputExisted() const { return m_outputBefore.has_value(); }
    [[nodiscard]] bool outputIsSource() const;
    /// Whether the output is a file with something in it, made since `takeOutput`.
    [[nodiscard]] bool hasMadeOutput() const;
    /// Whether what has the output's name is another file than before, empty or not.
    [[nodiscard]] bool hasTouchedOutput() const;
    /// Removes a file that is not what its name says, with a line in the log if it stays.
    static void removeHalfMade(const QString &path);
    /// Also true for a link that leads nowhere.
    [[nodiscard]] static bool isThere(const QString &path);

    /// Shows the next status line.
    void showStatus(const QString &text);
    /// Shows what a chunk of a program's output means, and reports it.
    void showChunk(const toolOutput::ChunkReport &report);

    /// Remembers what the programs wrote, and notices when they told of damage.
    void keepForReport(const QString &text);
    /// The same for a reason, which begins a line.
    void keepReasonForReport(const QString &reason);
    /// Of a job that failed or met damage: the source's path, then the end of what was
    /// kept. Otherwise `usual`: the slots of a set tell no member from another.
    [[nodiscard]] QString reportInstead(const QString &usual) const;

    /// The source may be more than what the output has of it: it stays, and the report
    /// is shown although the job did not fail. `reason` ends the sentence "kept, since".
    void doubtSource(const QString &reason);
    /// The same for a source that is damaged.
    void noteDamage(const QString &reason);
    [[nodiscard]] bool isDamaged() const { return m_isDamaged; }
    /// Before its tags are copied: throws NurvFailure when it is not.
    void checkThatSourceIsThere() const;
    /// The output could not take the tags.
    void keepSourceForItsTags() { m_sourceHasTheOnlyTags = true; }
    /// The output has been written through to the disk.
    void setOutputIsOnDisk(bool isOnDisk) { m_outputIsOnDisk = isOnDisk; }
    /// Deletes the source if that was asked for, the job succeeded, and nothing speaks
    /// against it. What stays is named in the log. Once at most.
    void deleteSourceIfDone();
    /// Lets go of the result set unless the job, or another one that shares the set, has
    /// something to report: it failed or met damage.
    void dropResultsUnlessFailed();

private:
    [[nodiscard]] bool outputIsAnotherSource() const;
    [[nodiscard]] bool sharesSetWithDamage() const;
    /// Why the source may be the only copy of something although the job succeeded.
    [[nodiscard]] std::optional<QString> reasonToKeepOriginal() const;

    NURVTask &m_task;
    QString m_ownText; ///< what the report is made of, as it was written
    std::shared_ptr<ConversionBatch> m_batch;
    OutputClaim m_claim;
    std::optional<struct stat> m_sourceBefore;
    std::optional<struct stat> m_outputBefore;
    std::optional<QString> m_doubt;
    bool m_isDamaged = false;
    bool m_deleteOriginal = false;
    bool m_outputIsOnDisk = false;
    bool m_sourceHasTheOnlyTags = false;
    bool m_hasDeletedSource = false;
};

} // namespace nurv
