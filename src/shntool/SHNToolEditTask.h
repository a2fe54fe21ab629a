// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVAsyncNSTask.h"
#include "originals/OutputClaim.h"
#include "originals/SourceRetirement.h"

#include <QSet>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace nurv {

class OutputJournal;

/// Files that one run of shntool edits: what trimming, padding, stripping, joining and splitting have in common.
///
///     child ──> processTaskOutput(chunk) ──> status line, progress, report
///       └─ end ──> a worker examines the outputs ──> cleanup: sources are deleted if that was asked for;
///                                                    a report stays only when there is something to tell
///
/// Lives on the GUI thread like every command job; between the end of the program and the stop the outcome is the
/// worker's.
class SHNToolEditTask : public NURVAsyncNSTask {
public:
    ~SHNToolEditTask() override;

    /// Whether the sources go once their outputs are there.
    void setDeleteOriginal(bool deleteOriginal) { m_wishes.deletesSources = deleteOriginal; }
    [[nodiscard]] bool deleteOriginal() const { return m_wishes.deletesSources; }
    /// Whether that takes a proof, and outputs that hold all metadata.
    void setDeletionNeeds(bool proof, bool metadata);

    [[nodiscard]] QStringList sourcePaths() const override;
    [[nodiscard]] int sourceCount() const override;
    /// Fails when another running job makes one of the outputs, or a link or one of the sources has its name.
    void startTask() final;

protected:
    /// What is made of what.
    struct Work {
        QStringList sources;
        /// Of each output the names that it may get, absolute paths: the first that is there is the output.
        std::vector<QStringList> outputs;
        /// The run makes more than these, and their number shows afterwards.
        bool hasMoreOutputs = false;
        SoundComparison::Relation relation = SoundComparison::Relation::Equal;
        /// Why the sources stay whatever was asked for; empty: they may go.
        QString whyItStays = {};
        /// They do so in every job of the kind: no news for the report.
        bool staysAlways = false;
    };

    SHNToolEditTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                    std::vector<Work> works);

    /// Of trim, pad or strip: one output of each source. `ending`: see shntool::editedNames.
    [[nodiscard]] static std::vector<Work> editsOfEach(const QStringList &arguments, const QString &ending,
                                                       SoundComparison::Relation relation);

    void processTaskOutput(const QString &chunk) override;
    /// What the chunk means for row and report.
    virtual void showOutput(const QString &chunk) = 0;
    /// Right before the program starts; GUI thread.
    virtual void willStart() {}
    /// The outputs of a work that only the run told. Worker, or the GUI thread after a run that failed.
    virtual void findOutputs(Work & /*work*/) {}
    void completeStop() final;
    void cleanup() override;
    void finalCleanup() override;

    [[nodiscard]] std::vector<Work> &works() { return m_works; }
    /// The output of an edit of one file: "Padding: 45.000000%", and all of it in the report.
    void showSingleEdit(const QString &chunk, const QString &operation);
    /// Shows the progress, and the text as the status line.
    void showProgress(const QString &status, double percent);

private:
    [[nodiscard]] std::optional<QString> takeAll();
    /// Notes the outputs, for a process that is killed.
    void beginJournal();
    /// What the program made it has finished.
    void endJournal();
    /// Looks at one work's outputs.
    [[nodiscard]] SourceRetirement::Verdict examine(std::size_t place);
    void findAllOutputs();
    /// The first of the names that this job has made; empty: none.
    [[nodiscard]] QString madeOf(const QStringList &names) const;
    void examineAll();
    void noteVerdict(const Work &work, const SourceRetirement::Verdict &verdict);
    void noteKept(const Work &work, const QString &reason);
    void noteFailure(const QString &reason);
    void retireAll();
    void tellWhatWasMade();
    [[nodiscard]] QString whyItFailed() const;

    std::vector<Work> m_works;
    SourceRetirement::Wishes m_wishes;
    std::vector<std::unique_ptr<SourceRetirement>> m_retirements;    ///< of each work, once the job runs
    std::vector<std::vector<std::unique_ptr<OutputClaim>>> m_claims; ///< of each work
    std::shared_ptr<OutputJournal> m_journal;       ///< while the job runs
    QSet<QString> m_thereBefore;                    ///< what had the name of an output when the job began
    QString m_output;                               ///< the end of what the program wrote
    std::optional<TaskOutcome::Proof> m_leastProof; ///< of the works so far
    QSet<QString> m_kept;                           ///< sources whose deletion was asked for, and that are there still
    bool m_hasToTell = false;
};

} // namespace nurv
