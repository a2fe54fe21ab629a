// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVAsyncNSTask.h"
#include "files/ReservedFile.h"
#include "originals/OutputClaim.h"

#include <QString>

#include <memory>
#include <optional>

#include <sys/stat.h>

namespace nurv {

class OutputJournal;

/// A WAV or AIFF file with pre-emphasis to one without, by `sox`.
///
/// Its report goes to the first slot of the batch, behind those of the jobs that ended before it. An output that is there
/// already stays; one that is half made goes.
class DeEmphasisTask final : public NURVAsyncNSTask {
public:
    /// `arguments`: see sox::deEmphasisArguments. `results`: the set of the batch, to which it is to be added.
    DeEmphasisTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                   std::shared_ptr<NURVTaskResults> results);
    ~DeEmphasisTask() override;

    [[nodiscard]] QString report() const override { return m_totalOutput; }
    void startTask() override;

protected:
    void processTaskOutput(const QString &chunk) override;
    void failWith(const QString &reason) override;
    void cleanup() override;
    void finalCleanup() override;

private:
    [[nodiscard]] const QString &fileName() const { return sourcePath(); }
    [[nodiscard]] QString outputFile() const { return arguments().at(2); }
    [[nodiscard]] std::optional<QString> takeOutput();
    [[nodiscard]] std::optional<QString> reserveOutput();
    [[nodiscard]] std::optional<QString> faultOfOutput() const;
    void removeOutput() const;
    void examineOutput();
    void fail(const QString &problem);

    QString m_totalOutput;
    OutputClaim m_claim;
    ReservedFile m_output;                    ///< sox writes under the very name
    std::shared_ptr<OutputJournal> m_journal; ///< while the job runs
};

} // namespace nurv
