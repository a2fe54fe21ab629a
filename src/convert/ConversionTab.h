// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BaseTab.h"
#include "app/Control.h"
#include "originals/OriginalsControls.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace nurv {

class Conversion;
class NURVTask;
class NURVTaskResults;

/// The base of the tabs that make files of files and can delete those: from the press of
/// the button to the queue.
///
///     questions ──> Batch ──> makeConversions ──> ConversionBatch ──> queue
///                               one job per file, unless the tab has another rule
///
/// A tab says in `makeConversion` which job suits a source.
class ConversionTab : public BaseTab {
    Q_OBJECT

public:
    /// Each output goes beside its source instead of into one chosen folder.
    CheckControl besideSourceButton;
    CheckControl deleteOriginalsButton;
    OriginalsControls originals;

    void executeCommand() final;
    /// Makes the jobs that the button would queue, and asks them.
    [[nodiscard]] NeededPrograms neededPrograms() const final;

protected:
    /// What holds for all jobs of one press of the button.
    struct Batch {
        std::optional<QString> chosenFolder;      ///< nothing: beside each source
        bool keepsFolders = false;                ///< those of the sources are made again below the chosen folder
        bool overwrite = false;                   ///< outputs that exist may be replaced
        std::shared_ptr<NURVTaskResults> results; ///< of all jobs together; null: each has its own
    };

    /// `besideSourceSetting`: the key that keeps where the outputs go.
    ConversionTab(NURVController &controller, const QString &label, const QString &besideSourceSetting);

    /// The folder of a source's output.
    [[nodiscard]] QString folderFor(const Batch &batch, const QString &source) const;

    /// Asks what is to be asked before outputs go beside their sources. False: the user does
    /// not want to go on.
    [[nodiscard]] virtual bool confirmBesideSources(Batch & /*batch*/) { return true; }
    /// Whether the jobs report into one set, which `afterBatchTask` can follow.
    [[nodiscard]] virtual bool sharesResults() const { return false; }
    /// The job to run when all of a shared set have stopped; usually none.
    [[nodiscard]] virtual std::shared_ptr<NURVTask> afterBatchTask(const Batch & /*batch*/) const { return nullptr; }
    /// The jobs of the list, in the order in which they are queued: one per file, where
    /// `makeConversion` has one. A tab that joins or splits files has its own rule.
    [[nodiscard]] virtual std::vector<std::shared_ptr<Conversion>> makeConversions(const Batch &batch) const;
    /// The job that suits the source; null when none does.
    [[nodiscard]] virtual std::shared_ptr<Conversion> makeConversion(const Batch &batch,
                                                                     const QString &source) const = 0;

private:
    [[nodiscard]] bool chooseOutput(Batch &batch);
    void shareResults(Batch &batch) const;
    void queueJobs(const Batch &batch);
};

} // namespace nurv
