// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "originals/OutputBatch.h"
#include "originals/OutputClaim.h"
#include "originals/ReplacedFile.h"
#include "originals/SourceRetirement.h"
#include "programs/ProgramOutput.h"

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
///     takeOutput ──> beginOutput ──> the work, tags ──> examineOutput ──> keepOrDropOutput
///                                                            ──> deleteSourceIfDone ──> releaseOutput
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

    /// A file with a name of its own that is made on the way and removed again; empty for
    /// most.
    [[nodiscard]] virtual QString intermediateFile() const { return {}; }

    /// Whether the source is deleted once the job has succeeded.
    [[nodiscard]] bool deleteOriginal() const { return m_retirement.wishes().deletesSources; }
    void setDeleteOriginal(bool deleteOriginal);

    /// The source stays, whatever comes out of it; see SourceRetirement::doubt.
    void keepSource(const QString &reason) { m_retirement.doubt(reason); }

    /// Why the source stays, as far as that is known.
    [[nodiscard]] const std::optional<QString> &reasonToKeepSource() const { return m_retirement.doubtReason(); }

    /// What speaks against taking the file that has the output's name for a whole output; nothing: as far as its
    /// header tells, it is one.
    [[nodiscard]] std::optional<QString> faultOfExistingOutput() const;

    /// Makes the conversion a member of a batch. Before any member of it is started.
    void setBatch(std::shared_ptr<OutputBatch> batch);

    /// The job that this is.
    [[nodiscard]] std::shared_ptr<NURVTask> asTask() const;

protected:
    /// Names the job's row after the source. `task` is this very object.
    Conversion(NURVTask &task, const QString &fileName);

    /// For an output whose samples cannot be the source's: see SourceRetirement::Wishes.
    void setOutputIsLossy();
    /// For a program that takes no notice of the decoders that it starts.
    void setDecoderUnwatched();
    /// Takes the output for this job and looks at what is there now. GUI thread. Returns
    /// why it is not to be had, as a line without the source's name: another job makes it,
    /// it is another source of the batch, or a file that is to stay.
    [[nodiscard]] std::optional<QString> takeOutput();
    /// Right before the output is made: looks again, moves a file aside that is to be
    /// replaced (`replaces`: by what makes the output, in a batch that leaves it to that),
    /// and notes the output in the journal. Throws NurvFailure when the file stays in the way.
    void beginOutput(bool replaces);
    /// Behind `beginOutput`, for a program that writes over whatever has the output's name: makes that an empty file, so that
    /// no two programs write to one. Throws NurvFailure when somebody was faster.
    void reserveOutput() const;
    /// Whether a job of the same batch makes a file of that name.
    [[nodiscard]] bool isOutputOfBatch(const QString &path) const;
    /// Around the making of the intermediate file.
    void noteIntermediateBegun();
    void noteIntermediateGone();
    /// What has the output's name is not this job's; a file that was moved aside for it gets its name back.
    void disownOutput();
    /// Before the queue is told of the end and starts further jobs.
    void releaseOutput() { m_claim.release(); }

    /// Whether there was a file in the output's place before the work began.
    [[nodiscard]] bool outputExisted() const { return m_outputBefore.has_value(); }
    [[nodiscard]] bool outputIsSource() const;
    /// Whether the output is a file with something in it, made since `takeOutput`.
    [[nodiscard]] bool hasMadeOutput() const;
    /// Whether what has the output's name is another file than before, empty or not.
    [[nodiscard]] bool hasTouchedOutput() const;
    /// Removes a file of the output's folder that is not what its name says, with a line in the log if it
    /// stays: a folder, or one in a folder that has the other's name now, does.
    void removeHalfMade(const QString &path) const;

    /// Shows what a chunk of a program's output means, and reports it.
    void showChunk(const ChunkReport &report);

    /// Remembers what the programs wrote, and notices when they told of damage.
    void keepForReport(const QString &text);
    /// The same for a reason, which begins a line.
    void keepReasonForReport(const QString &reason);
    /// Of a job that has something to tell: the source's path, then the end of what was
    /// kept. Otherwise `usual`: the slots of a set tell no member from another.
    [[nodiscard]] QString reportOr(const QString &usual) const;

    /// What the job's row and the report begin with: the first problem counts.
    void noteProblem(const QString &problem);
    /// "path: problem", as the report has it.
    [[nodiscard]] QString problemLine(const QString &problem) const;

    /// The job was cancelled before its tags were in the output, which is removed when it is settled: it would be taken
    /// for a finished one.
    void noteTagsMissed() { m_missesTags = true; }

    /// The source may be more than what the output has of it: it stays, and the report
    /// is shown although the job did not fail. `reason` is a line without a full stop.
    void doubtSource(const QString &reason);
    /// The same for a source that is damaged.
    void noteDamage(const QString &reason);
    [[nodiscard]] bool isDamaged() const { return m_isDamaged; }
    /// Before its tags are copied: throws NurvFailure when it is not.
    void checkThatSourceIsThere() const;
    /// The output could not take the tags: the source stays, and the row says so.
    void noteLostTags(const QString &reason);
    /// The same for a cover picture that could not be copied; does nothing without a fault.
    void noteLostPicture(const std::optional<QString> &fault);

    /// The output stands, with its tags: after the end of the application, too.
    void noteComplete();
    /// Compares what was made with the source, before a deletion sample by sample. Blocks
    /// for all of that; for a worker. Nothing of the job is changed: see `takeVerdict`.
    [[nodiscard]] SourceRetirement::Verdict examineOutput();
    /// What the verdict means to the job: it has failed, or its source stays.
    void takeVerdict(const SourceRetirement::Verdict &verdict);
    /// What was replaced goes, when the output is whole, or gets its name back. Once the
    /// error flag is final, before the source goes. Never throws; once only.
    void keepOrDropOutput();
    /// Deletes the source if that was asked for, the job succeeded, and nothing speaks
    /// against it. What stays is named. Once at most.
    void deleteSourceIfDone();
    /// Lets go of the result set unless the job, or another one that shares the set, has
    /// something to report: it failed, met damage or could not do all.
    void dropResultsUnlessFailed();

private:
    [[nodiscard]] std::optional<QString> somethingInTheWay() const;
    void removeEmptyOutput() const;
    void keepEndOfReport();
    void lookAtOutput();
    /// What holds for every job that has come to its end.
    void noteEnding();
    [[nodiscard]] bool outputIsAnotherSource() const;
    [[nodiscard]] bool sharesSetWithDamage() const;
    [[nodiscard]] bool hasToTell() const;
    void showProof(double percent);
    void noteKept(const QString &reason);
    void noteLost(const QString &whyItStays, const QString &problem);
    /// Reports a line, in a set of its own when the job has dropped its set already.
    void tell(const QString &problem);
    void restoreReplaced();
    void putReplacedBack();

    NURVTask &m_task;
    QString m_ownText; ///< what the report is made of, as it was written
    std::shared_ptr<OutputBatch> m_batch;
    OutputClaim m_claim;
    SourceRetirement m_retirement;
    std::unique_ptr<ReplacedFile> m_replaced;
    std::optional<struct stat> m_outputBefore;
    std::optional<struct stat> m_outputFolder; ///< when the output was taken
    timespec m_since = {};                     ///< then, too
    bool m_hasBegunOutput = false;
    bool m_missesTags = false;
    bool m_isDamaged = false;
    bool m_hasDeletedSource = false;
};

} // namespace nurv
